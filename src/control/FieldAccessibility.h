#pragma once

// What assistive technology learns of a field. Screen readers land on the edit box, so
// the box carries the field's name and a short Czech hint of what the field expects. A
// reported message stands in front of the hint, and is announced, until the field next
// changes or validates. The list button, the list window and its table are named after
// the field; the table's rows reach a screen reader through the table's own interface.
// docs/accessibility.md describes what a host sees and how it overrides it.

#include "FieldState.h"

#include <QtCore/QPointer>
#include <QtCore/QString>

class QAccessibleEvent;
class QLabel;
class QLineEdit;
class QWidget;

namespace velmora::detail {

class ListWindow;

// The text a label shows, as plain text: markup and mnemonic ampersands removed.
QString labelPlainText(const QLabel *label);
// The first label beside the field (a child of the field's parent, as a form layout puts
// it) whose buddy is the field or its edit box and that shows some text; null when there
// is none.
const QLabel *buddyLabel(const QWidget *field, const QWidget *box);
// A date format as the user types it: the letters as Czech placeholders (D, M, R) and
// every other character as the date separator, the way the edit box's empty mask shows
// it. "dd/mm/yyyy" with "." gives "DD.MM.RRRR".
QString typedDateLayout(const QString &format, QChar separator);
// The Czech hint of what a field with these settings expects.
QString inputHint(const FieldSettings &set);
// Whether a change of the named property can change the field's name or hint.
bool affectsAccessibility(const char *property);

// Qt passes accessibility events on only while a screen reader listens. A listener sees
// every event a field sends itself, whether or not one does: a tool that watches a form
// for announcements installs one. Returns the listener it replaces.
using AccessibilityListener = void (*)(QAccessibleEvent *event);
AccessibilityListener setAccessibilityListener(AccessibilityListener listener);

class FieldAccessibility
{
public:
    FieldAccessibility(QWidget *field, QLineEdit *box) : m_field(field), m_box(box) { }

    // Names and describes the edit box, the list button and the list window, when the
    // field has one. The name is the Label, else a buddy label's text, else the name the
    // host gave the field; the hint is the description the host gave the field, else
    // one built from the settings.
    void update(const FieldSettings &set, QWidget *listButton, ListWindow *window);
    // Puts the message in front of the hint and announces it.
    void showError(const QString &message);
    void clearError();
    const QString &name() const { return m_name; }

private:
    void describe();

    QWidget *const m_field;
    QLineEdit *const m_box;
    QString m_name;
    QString m_hint;
    QString m_error;
};

} // namespace velmora::detail
