#pragma once

#include <velmora/Global.h>
#include <velmora/RegionalSettings.h>

#include <QtCore/QDate>
#include <QtCore/QDateTime>
#include <QtCore/QString>

class QWidget;

/// @file
/// The host services a field uses: tone, message box, clock, Insert toggle, regional
/// settings.

namespace velmora {

/// Host services that a field needs from its platform. The default implementation
/// uses Qt; a test installs its own to capture messages and tones without blocking
/// and to fix the clock, the Insert toggle and the regional settings.
///
/// Subclass it, override what should differ, and install() the object; every field
/// asks instance() at the moment it needs a service.
class VELMORA_EXPORT Platform
{
public:
    virtual ~Platform();

    /// The warning tone; @p pitch in Hz and @p length in ms (the field passes 400 and
    /// 150). The default sounds Qt's one system bell, whatever the pitch and length.
    virtual void beep(int pitch, int length);
    /// A modal message box with the exclamation icon and an OK button, titled @p title
    /// and owned by @p owner; returns when it is closed. Fields show their messages
    /// through it, titled with their Label.
    virtual void messageBox(const QString &text, const QString &title, QWidget *owner);
    /// Today's date: completes a partly typed date when the field is left. The default
    /// is the system clock's.
    virtual QDate today() const;
    /// The current time: says how old a lookup list is (Velmora::RefreshInt). The
    /// default is the system clock's.
    virtual QDateTime now() const;
    /// Whether the Insert key is toggled on (typing overwrites in the fields that ask).
    /// A field takes its insert or overwrite mode from it when it is entered. Off in
    /// the default platform until a field sets it.
    virtual bool insertToggled() const;
    /// Called by a field when the user presses Insert in it, so that the toggle is
    /// shared by every field as the keyboard's own Insert state is.
    virtual void setInsertToggled(bool on);
    /// Whether the platform is of the NT family (shortcut-button captions depend on it:
    /// bare letters here, "&" and the letter elsewhere). The default says true.
    virtual bool isNtFamily() const;
    /// The separators and date order that formats and lenient reading use, read when a
    /// field parses its format. The default is RegionalSettings::fromLocale() of the
    /// system locale.
    virtual RegionalSettings regionalSettings() const;

    /// The platform in force. Never null: the default one serves until a host installs
    /// its own.
    static Platform &instance();
    /// Makes @p platform the one in force. It does not take ownership: the object must
    /// live until another is installed; pass nullptr to go back to the default.
    static void install(Platform *platform);

private:
    bool m_insertToggled = false;
};

} // namespace velmora
