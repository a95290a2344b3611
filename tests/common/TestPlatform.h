#pragma once

// A platform for tests: records tones and message boxes instead of showing them,
// and fixes the clock, the Insert toggle and the regional settings.

#include <velmora/Platform.h>

#include <QtCore/QStringList>

namespace velmora::test {

class TestPlatform : public Platform
{
public:
    struct Box
    {
        QString text;
        QString title;
    };

    explicit TestPlatform(const RegionalSettings &rs = RegionalSettings::czech(),
                          QDate today = QDate(2026, 5, 17))
        : regional(rs), fixedToday(today)
    {
        Platform::install(this);
    }
    ~TestPlatform() override { Platform::install(nullptr); }

    void beep(int pitch, int length) override { beeps.append({pitch, length}); }
    void messageBox(const QString &text, const QString &title, QWidget *) override
    {
        boxes.append({text, title});
    }
    QDate today() const override { return fixedToday; }
    QDateTime now() const override { return QDateTime(fixedToday, QTime(10, 0)); }
    bool insertToggled() const override { return insert; }
    void setInsertToggled(bool on) override { insert = on; }
    bool isNtFamily() const override { return nt; }
    RegionalSettings regionalSettings() const override { return regional; }

    void reset()
    {
        beeps.clear();
        boxes.clear();
    }

    RegionalSettings regional;
    QDate fixedToday;
    bool insert = false;
    bool nt = true;
    QList<QPair<int, int>> beeps;
    QList<Box> boxes;
};

// "," decimal, " " thousands, "." date: the Czech set with a plain space.
inline RegionalSettings czechSpace()
{
    return RegionalSettings::czech(QLatin1Char(' '));
}

} // namespace velmora::test
