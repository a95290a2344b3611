#pragma once

// The demo's platform: Czech regional settings whatever the machine's locale, and
// message boxes and tones that are printed instead of shown when nobody can answer them
// (offscreen). Every message box is also kept, so the scripted session can check what
// the user was told.

#include <velmora/Platform.h>

#include <QtCore/QStringList>
#include <QtGui/QGuiApplication>

#include <cstdio>

namespace demo {

class DemoPlatform : public velmora::Platform
{
public:
    struct Box
    {
        QString title, text;
    };

    static bool offscreen()
    {
        return QGuiApplication::platformName() == QLatin1String("offscreen");
    }

    velmora::RegionalSettings regionalSettings() const override
    {
        return velmora::RegionalSettings::czech();
    }
    void messageBox(const QString &text, const QString &title, QWidget *owner) override
    {
        boxes.append({title, text});
        if (!offscreen())
            return velmora::Platform::messageBox(text, title, owner);
        std::printf("  message box \"%s\": %s\n", qPrintable(title), qPrintable(text));
        std::fflush(stdout);
    }
    void beep(int pitch, int length) override
    {
        ++tones;
        if (!offscreen())
            velmora::Platform::beep(pitch, length);
    }

    QList<Box> boxes;
    int tones = 0;
};

} // namespace demo
