#pragma once

// The private side of a field. It composes owners with narrow jobs: the settings and
// the value (FieldState.h), the key engine, the look of the inner controls
// (Appearance.h) and the filter of the edit box's events (EditBoxEvents.h). Every
// change of the edit box's text goes through writeText(), the one exit of an edit.
// The lookup list (FieldList.h: its rows, columns and window) is one more owner; a row
// chosen in its window reaches the edit box through the same exit. The focus lifecycle
// (FieldFocus.h: entering, the exit check on leaving, the shortcut buttons) is another.

#include "Appearance.h"
#include "EditBoxEvents.h"
#include "FieldAccessibility.h"
#include "FieldFocus.h"
#include "FieldList.h"
#include "FieldState.h"
#include "editing/KeyEngine.h"
#include "format/ValueAssignment.h"
#include "validation/ExitCheck.h"

#include <velmora/Velmora.h>

#include <QtCore/QPointer>

class QLabel;
class QSqlQuery;
class QLineEdit;
class QToolButton;
class QFrame;

namespace velmora {

class VelmoraPrivate final : public detail::EditServices
{
public:
    explicit VelmoraPrivate(Velmora *q);
    ~VelmoraPrivate() override;

    Velmora *const q;
    const quint64 serial; // the order of creation, which the group operations follow
    static VelmoraPrivate *get(const Velmora *field) { return field->d.get(); }
    QLineEdit *const txtInput;
    QLabel *lblVis = nullptr;
    QToolButton *cmdList = nullptr;
    detail::FieldSettings set;
    bool visibleByLbl = true;
    detail::FieldValue val;
    detail::Appearance look;
    detail::KeyEngine engine {*this};
    detail::EditBoxEvents events;
    detail::FieldList list;
    detail::FieldFocus focus;
    detail::FieldAccessibility access {q, txtInput};

    bool runMode() const;
    detail::ValueFormat fieldFormat() const;
    detail::FieldValueSettings valueSettings() const;
    detail::EditSettings editSettings() const;
    detail::EditState viewState() const;
    bool switchOn(detail::Switch which) const { return detail::isOn(which, set.switches); }
    void notify(const char *name);

    // The one exit of an edit: writes the edit box once (and the label), stores the
    // text, and raises Change (and tells the host that Value changed, unless the caller
    // does that itself) only when the shown text really changed. Every function that
    // can run a host's handler returns false when the field was destroyed meanwhile;
    // the caller then returns at once without touching the field.
    enum class Origin { Typed, Assigned, Shown };
    bool writeText(const QString &shown, const QString &stored, Origin origin,
                   bool notifyValue = true, std::optional<detail::EditState> caret = {});
    void replaceBoxText(const QString &before, const QString &after);
    // Applies what an edit of the engine did.
    bool apply(const detail::EditOutcome &outcome, Origin origin = Origin::Typed);
    bool report(int number, const QString &value);

    // The value.
    QString valueGet() const;
    bool valueLet(const QString &value);
    bool letValue(const QString &text);
    bool clear();
    bool valueChangedCheck();
    bool changedGet();
    QVariant typedOf(const QString &text) const;

    // Formats and separators.
    bool parseFormat();
    bool assignFormat(bool isInputType, InpType newType, const QString &newFormat);
    bool assignSeparator(QChar &member, const QString &text, InpType owner, const char *name);

    // Events of the edit box, passed on by the filter.
    bool keyPressed(QKeyEvent *event);
    void keyReleased(QKeyEvent *event);
    bool inputMethod(QInputMethodEvent *event);
    void focusIn();
    void focusOut(Qt::FocusReason reason);
    bool mouse(QMouseEvent *event);
    bool doubleClick();
    void contextMenu(const QPoint &pos);
    bool typeCharacters(const QString &text);

    // Services of the key engine.
    void warningBeep() override;
    bool insertToggled() const override;
    void setInsertToggled(bool on) override;
    QString clipboardText() const override;
    void setClipboardText(const QString &text) override;

    // Entering and leaving (FieldFocus.cpp). leave() runs queued after the focus went
    // to another widget of the window: the exit check, then the steps of leaving.
    void leave();
    void exitFocus();
    bool doValidate();
    detail::ExitCheckInput exitCheckInput() const;
    bool reportExit(int result, const QString &value);
    void createShortcutButtons();
    void shortcutPressed();

    void sendTab();
    void sendShiftTab();

    // Names and describes the field for assistive technology (FieldAccessibility.cpp).
    void refreshAccessibility();

    // The lookup list (FieldListing.cpp).
    bool hasNewItemRow() const { return set.listAddNewItem && set.inputType != itBool; }
    bool listsValue() const { return set.setList && set.inputType != itBool; }
    detail::ListWindow *listWindow(); // created on first use
    detail::ListCellFormatter cellFormatter() const;
    detail::ValueFormat columnFormat(int column) const;
    // Loads the list; throws DatabaseError, the list then being empty. keepOnFailure:
    // the rows shown before stay instead (a refresh by the drop-down).
    void initList(QSqlQuery *rs, bool keepOnFailure = false);
    void addItem(const QString &line);
    // The row whose cell in the column equals the text (trimmed, in upper case); the
    // new-item row is never found; -1 without a window or a match.
    int findListRow(int column, const QString &text) const;
    // The row a value of the field is in: the value shown as a cell of the value column,
    // then found there.
    int valueRow(const QString &value) const;
    // The value column's cell of the row the value matches, when it is a real row.
    std::optional<QString> chosenValueCell() const;
    bool notifyListChanged();
    // The first row whose MatchCol cell starts with the text typed in the open list.
    int typeAheadRow(const QString &text);
    bool dropDown();
    // The list button or a double click: drops the list down where the field may be
    // entered, else sounds the tone.
    void openList();
    bool showList();
    bool addNewItem(const QString &line);
    bool takeListRow(int row);
    void applyListLook();
    void layoutListColumns();
};

} // namespace velmora
