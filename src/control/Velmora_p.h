#pragma once

// The private side of a field. It composes owners with narrow jobs: the settings and
// the value (FieldState.h), the key engine, the look of the inner controls
// (Appearance.h) and the filter of the edit box's events (EditBoxEvents.h). Every
// change of the edit box's text goes through writeText(), the one exit of an edit.
// The lookup list (its rows and window) and the focus lifecycle (the exit check on
// leaving) are to be owners of their own beside these, reached through the same exit.

#include "Appearance.h"
#include "EditBoxEvents.h"
#include "FieldState.h"
#include "editing/KeyEngine.h"
#include "format/ValueAssignment.h"

#include <velmora/Velmora.h>

#include <QtCore/QPointer>

class QLabel;
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
    QLineEdit *const txtInput;
    QLabel *lblVis = nullptr;
    QToolButton *cmdList = nullptr;
    detail::FieldSettings set;
    bool visibleByLbl = true;
    detail::FieldValue val;
    detail::Appearance look;
    detail::KeyEngine engine {*this};
    detail::EditBoxEvents events;

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
    void focusOut();
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

    void sendTab();
    void sendShiftTab();
    void dropDown();
};

} // namespace velmora
