#pragma once

// A platform for tests: records tones and message boxes instead of showing them,
// and fixes the clock and the regional settings.

#include "common/DataRows.h"

#include <velmora/Platform.h>

#include <QtCore/QStringList>

#include <functional>

Q_DECLARE_METATYPE(velmora::RegionalSettings)

namespace velmora::test {

class TestPlatform : public Platform
{
public:
    struct Box
    {
        QString text, title;
    };

    explicit TestPlatform(const RegionalSettings &rs = RegionalSettings::czech()) : regional(rs)
    {
        Platform::install(this);
    }
    ~TestPlatform() override { Platform::install(nullptr); }

    void beep(int pitch, int length) override { beeps.append({pitch, length}); }
    void messageBox(const QString &text, const QString &title, QWidget *) override
    {
        boxes.append({text, title});
        if (whileBoxOpen) // what the host runs while the box is up, once
            std::exchange(whileBoxOpen, {})();
    }
    QDate today() const override { return fixedToday; }
    QDateTime now() const override
    {
        return QDateTime(fixedToday, QTime(10, 0)).addSecs(60 * minutesLater);
    }
    RegionalSettings regionalSettings() const override { return regional; }
    bool isNtFamily() const override { return ntFamily; }

    RegionalSettings regional;
    bool ntFamily = true;
    QDate fixedToday {2026, 5, 17};
    int minutesLater = 0; // the clock moved on since 10:00
    QList<QPair<int, int>> beeps;
    QList<Box> boxes;
    std::function<void()> whileBoxOpen;
};

// "," decimal, " " thousands, "." date: the Czech set with a plain space.
inline RegionalSettings czechSpace()
{
    return RegionalSettings::czech(QLatin1Char(' '));
}

// A row value that depends on the regional set: the one under czechSpace() and the one
// under RegionalSettings::english().
struct PerSet
{
    const char *cz, *en;
};

inline const char *pick(const PerSet &value, bool cz)
{
    return cz ? value.cz : value.en;
}
template<typename T>
const T &pick(const T &value, bool)
{
    return value;
}

// Adds a row under each regional set, "name (cz)" and "name (en)", with the set as the
// first column: a field must behave alike under both, up to the separators and the order
// of the date parts.
template<typename... V>
void rowPerSet(const char *name, const V &...values)
{
    for (const bool cz : {true, false}) {
        const QByteArray tag = name + QByteArray(cz ? " (cz)" : " (en)");
        row(tag.constData(), cz ? czechSpace() : RegionalSettings::english(), pick(values, cz)...);
    }
}

} // namespace velmora::test
