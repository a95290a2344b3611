#pragma once

// The focus lifecycle of a field: entering it, the exit check when the focus leaves it
// for another widget of the same window, leaving it, and the shortcut buttons that
// put the focus into it.
//
// Qt cannot refuse a focus change, so leaving is checked after the move: the other
// widget gets the focus, then the queued exit check runs and, when it fails, the focus
// comes back to the field. The field counts as entered from its first focus-in until a
// leave passes the check, so the focus coming back, a message box, the field's own list
// window or another application in between are no new entry and no leaving.

#include "editing/EditBox.h"

#include <QtCore/QList>
#include <QtCore/QString>

class QAbstractButton;
class QWidget;

namespace velmora::detail {

struct FieldFocus
{
    bool entered = false; // entered and not yet left
    bool leaving = false; // a leave is queued or being checked
    QString exitText; // the stored text when the field was last left
    EditState leftAt; // the box when the focus went, given back after a refused leave
    QList<QAbstractButton *> shortcutButtons; // created when the field is first shown
};

// The caption of shortcut button `index`: its letter (a for 0), with "&" before it
// outside the NT family so that the letter is the button's access key; p, u and z have
// none.
QString shortcutCaption(int index, bool ntFamily);
constexpr int ShortcutButtonCount = 26;

} // namespace velmora::detail
