#pragma once

#include <velmora/Global.h>
#include <velmora/RegionalSettings.h>

#include <QtCore/QDate>
#include <QtCore/QDateTime>
#include <QtCore/QString>

class QWidget;

namespace velmora {

// Host services that a field needs from its platform. The default implementation
// uses Qt; a test installs its own to capture messages and tones without blocking
// and to fix the clock, the Insert toggle and the regional settings.
class VELMORA_EXPORT Platform
{
public:
    virtual ~Platform();

    // The warning tone; pitch in Hz and length in ms (the field passes 400 and 150).
    virtual void beep(int pitch, int length);
    // A modal message box with the exclamation icon and an OK button.
    virtual void messageBox(const QString &text, const QString &title, QWidget *owner);
    virtual QDate today() const;
    virtual QDateTime now() const;
    // Whether the Insert key is toggled on (typing overwrites in the fields that ask).
    virtual bool insertToggled() const;
    // Called by a field when the user presses Insert in it, so that the toggle is
    // shared by every field as the keyboard's own Insert state is.
    virtual void setInsertToggled(bool on);
    // Whether the platform is of the NT family (shortcut-button captions depend on it).
    virtual bool isNtFamily() const;
    virtual RegionalSettings regionalSettings() const;

    // The platform in force. Never null: the default one serves until a host installs
    // its own. install() does not take ownership; pass nullptr to go back to the default.
    static Platform &instance();
    static void install(Platform *platform);

private:
    bool m_insertToggled = false;
};

} // namespace velmora
