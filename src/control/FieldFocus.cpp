// Entering and leaving a field, the exit check and the shortcut buttons.

#include "FieldFocus.h"
#include "Velmora_p.h"
#include "validation/ExitCheck.h"

#include <velmora/Platform.h>

#include <QtCore/QPointer>
#include <QtCore/QScopedValueRollback>
#include <QtGui/QFocusEvent>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>

namespace velmora {

using namespace detail;

namespace detail {

QString shortcutCaption(int index, bool ntFamily)
{
    const QChar letter(u'a' + index);
    if (letter == u'p' || letter == u'u' || letter == u'z')
        return QString();
    return ntFamily ? QString(letter) : QStringLiteral("&") + letter;
}

namespace {

// A button that only carries an access key: it takes no room and draws nothing.
class ShortcutButton final : public QAbstractButton
{
public:
    using QAbstractButton::QAbstractButton;
    QSize sizeHint() const override { return {0, 0}; }

protected:
    void paintEvent(QPaintEvent *) override { }
};

// The field whose exit check is running, if any. The focus it takes (for its message
// or given back after a refused leave) does not move the user out of another field.
const VelmoraPrivate *checking = nullptr;

} // namespace

} // namespace detail

void VelmoraPrivate::focusIn()
{
    if (focus.entered)
        return; // back from a message box, the list window or a refused leave
    focus.entered = true;
    refreshAccessibility(); // a buddy label may have changed its text
    if (set.displayMode == dmChangeable)
        look.setHighlight(true);
    val.lastValue = q->varValue();
    apply(engine.enterField(editSettings(), viewState(), val.text), Origin::Shown);
}

void VelmoraPrivate::focusOut(Qt::FocusReason reason)
{
    // A popup of the field, a message box or another window is not leaving it.
    if (reason == Qt::PopupFocusReason || reason == Qt::ActiveWindowFocusReason)
        return;
    const QWidget *to = QApplication::focusWidget();
    if (to && to->window() != q->window())
        return;
    if (!focus.entered || focus.leaving)
        return;
    if (checking && checking != this) {
        // Another field's check took the focus: this field is done with, unchecked, as
        // if the focus had never come (nothing to report when it was only passed through).
        focus.entered = false;
        exitFocus();
        return;
    }
    focus.leaving = true;
    focus.leftAt = viewState();
    QMetaObject::invokeMethod(
        q, [this] { leave(); }, Qt::QueuedConnection);
}

void VelmoraPrivate::leave()
{
    focus.leaving = false;
    if (!focus.entered || txtInput->hasFocus())
        return; // the focus came back before the check could run
    if (!q->isVisible()) {
        focus.entered = false; // a form that closes is not checked
        return;
    }
    if (set.displayMode == dmChangeable) {
        QPointer<Velmora> alive(q);
        const bool passed = doValidate();
        if (!alive)
            return;
        if (!passed) {
            if (!txtInput->hasFocus() && q->isVisible())
                txtInput->setFocus(Qt::OtherFocusReason);
            // The field is still being edited: a number is made ready for it again, any
            // other text gets its caret back (at the start when completion rewrote it).
            if (set.inputType == itNum)
                apply(engine.enterField(editSettings(), viewState(), val.text), Origin::Shown);
            else if (txtInput->text() != focus.leftAt.text)
                txtInput->setCursorPosition(0);
            else if (focus.leftAt.selLength > 0)
                txtInput->setSelection(focus.leftAt.selStart, focus.leftAt.selLength);
            else
                txtInput->setCursorPosition(focus.leftAt.selStart);
            return;
        }
    }
    focus.entered = false;
    exitFocus();
}

void VelmoraPrivate::exitFocus()
{
    if (!q->isVisible())
        return;
    const Completion c
        = completeEntry(txtInput->text(), valueSettings(), Platform::instance().today());
    if (c.shown && !writeText(*c.shown, c.stored.value_or(val.text), Origin::Shown))
        return;
    if (!notifyListChanged() || !valueChangedCheck())
        return;
    if (!val.changed)
        changedGet();
    focus.exitText = val.text;
    if (set.displayMode == dmChangeable)
        look.setHighlight(false);
    lblVis->setText(txtInput->text());
}

ExitCheckInput VelmoraPrivate::exitCheckInput() const
{
    ExitCheckInput in;
    in.displayMode = set.displayMode;
    in.inputType = set.inputType;
    in.switches = set.switches;
    in.setList = set.setList;
    in.listAddNewItem = set.listAddNewItem;
    in.boxText = txtInput->text();
    in.emptyDateText = set.parsed.emptyDateText;
    in.fieldValue = valueGet();
    in.listIndex = val.listIndex;
    if (set.valueCol >= 0)
        in.valueColumnType = char16_t(list.columns.dataType(set.valueCol));
    in.regional = set.parsed.regional;
    return in;
}

bool VelmoraPrivate::reportExit(int result, const QString &value)
{
    switch (ExitResult(result)) {
    case ExitResult::NotInList:
    case ExitResult::EmptyNotAllowed:
        return report(exitMessage(ExitResult(result)), QString());
    case ExitResult::InvalidNumber:
        return report(exitMessage(ExitResult(result)), value);
    case ExitResult::InvalidDate:
        return report(exitMessage(ExitResult(result)), val.text); // quotes what is stored
    case ExitResult::Accepted:
        break;
    }
    return true;
}

bool VelmoraPrivate::doValidate()
{
    const QScopedValueRollback<const VelmoraPrivate *> scope(checking, this);
    QPointer<Velmora> alive(q);
    val.error = 0;
    access.clearError();
    bool passed = true;
    const Completion c
        = completeEntry(txtInput->text(), valueSettings(), Platform::instance().today());
    if (c.failed) {
        if (!report(2, val.text))
            return false;
        passed = false;
    } else {
        if (c.shown && !writeText(*c.shown, c.stored.value_or(val.text), Origin::Shown))
            return false;
        if (set.displayMode == dmChangeable) {
            const QString value = valueGet();
            const ExitResult result = exitCheck(value, exitCheckInput());
            if (result != ExitResult::Accepted) {
                if (!reportExit(int(result), value))
                    return false;
                passed = false;
            }
        }
    }
    // With messages on a failed check is final; with them off the host decides.
    if (passed || !set.messages) {
        bool cancel = false;
        Q_EMIT q->ValidateEx(cancel);
        if (!alive)
            return false;
        passed = !cancel;
    }
    if (!passed && q->isVisible())
        txtInput->setFocus(Qt::OtherFocusReason);
    return passed;
}

void VelmoraPrivate::createShortcutButtons()
{
    if (!focus.shortcutButtons.isEmpty())
        return;
    const bool nt = Platform::instance().isNtFamily();
    for (int i = 0; i < ShortcutButtonCount; ++i) {
        auto *button = new ShortcutButton(q);
        button->setObjectName(QStringLiteral("cmdShortCut"));
        button->setProperty("Index", i);
        button->setFocusPolicy(Qt::NoFocus);
        button->setGeometry(0, 0, 0, 0);
        button->setText(shortcutCaption(i, nt));
        QObject::connect(button, &QAbstractButton::clicked, q, [this] { shortcutPressed(); });
        button->show();
        focus.shortcutButtons.append(button);
    }
}

void VelmoraPrivate::shortcutPressed()
{
    if (!q->isVisible() || (set.displayMode != dmChangeable && set.displayMode != dmLandable))
        return;
    Platform::instance().beep(400, 150);
    txtInput->setFocus(Qt::ShortcutFocusReason);
}

// --- the exit check, as the host sees it ----------------------------------------------

bool Velmora::DoValidate()
{
    return d->doValidate();
}

qint16 Velmora::VystupniKontrola(const QString &sVal)
{
    return qint16(exitCheck(sVal, d->exitCheckInput()));
}

void Velmora::VystupniKontrolaMsg(qint16 &nNumber, QString &sValue)
{
    d->reportExit(nNumber, sValue);
}

} // namespace velmora
