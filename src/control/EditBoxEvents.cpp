// The edit box's events: what the field does with keys, input-method text, focus and
// the mouse, and what it lets the QLineEdit do itself.

#include "EditBoxEvents.h"
#include "KeyMapping.h"
#include "Velmora_p.h"
#include "format/Text.h"

#include <velmora/Platform.h>

#include <QtGui/QKeyEvent>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>

namespace velmora {

using namespace detail;

namespace {

// Keys that QLineEdit may handle itself: they move, select or copy, never edit.
bool leavesTextAlone(const QKeyEvent &e)
{
    static const QKeySequence::StandardKey editing[] = {
        QKeySequence::Undo,
        QKeySequence::Redo,
        QKeySequence::Cut,
        QKeySequence::Paste,
        QKeySequence::Delete,
        QKeySequence::Backspace,
        QKeySequence::DeleteStartOfWord,
        QKeySequence::DeleteEndOfWord,
        QKeySequence::DeleteEndOfLine,
        QKeySequence::DeleteCompleteLine,
        QKeySequence::InsertParagraphSeparator,
        QKeySequence::InsertLineSeparator,
    };
    for (auto key : editing)
        if (e.matches(key))
            return false;
    return true;
}

bool isTypedText(const QKeyEvent &e)
{
    const QString text = e.text();
    if (text.isEmpty() || !text.at(0).isPrint())
        return false;
    const Qt::KeyboardModifiers mods = e.modifiers();
    const bool ctrl = mods & Qt::ControlModifier;
    const bool alt = mods & Qt::AltModifier;
    return ctrl == alt; // plain, or Ctrl+Alt standing for AltGr
}

} // namespace

namespace detail {

void EditBoxEvents::passOn(QEvent *event)
{
    m_passing = true;
    static_cast<QObject *>(m_field.txtInput)->event(event);
    m_passing = false;
}

bool EditBoxEvents::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_field.txtInput || m_passing)
        return false;
    switch (event->type()) {
    case QEvent::ShortcutOverride: {
        // A character typed without Ctrl or Alt is the field's, never a shortcut. The box
        // would say the same, but only after testing the key against some twenty standard
        // key sequences, which costs a third of a typed key.
        auto *e = static_cast<QKeyEvent *>(event);
        const Qt::KeyboardModifiers mods = e->modifiers();
        const bool plain
            = mods == Qt::NoModifier || mods == Qt::ShiftModifier || mods == Qt::KeypadModifier;
        if (plain && e->key() < Qt::Key_Escape && !m_field.txtInput->isReadOnly()) {
            e->accept();
            return true;
        }
        return false;
    }
    case QEvent::KeyPress:
        return m_field.keyPressed(static_cast<QKeyEvent *>(event));
    case QEvent::KeyRelease:
        m_field.keyReleased(static_cast<QKeyEvent *>(event));
        return false;
    case QEvent::InputMethod:
        return m_field.inputMethod(static_cast<QInputMethodEvent *>(event));
    case QEvent::FocusIn:
        passOn(event);
        m_field.focusIn();
        return true;
    case QEvent::FocusOut:
        m_field.focusOut(static_cast<QFocusEvent *>(event)->reason()); // sees the caret first
        passOn(event);
        return true;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseMove:
        return m_field.mouse(static_cast<QMouseEvent *>(event));
    case QEvent::MouseButtonDblClick:
        return m_field.doubleClick();
    case QEvent::Drop:
        return true; // a drop would put text into the box past the rules
    default:
        return false;
    }
}

} // namespace detail

bool VelmoraPrivate::keyPressed(QKeyEvent *e)
{
    if (e->key() == Qt::Key_Tab || e->key() == Qt::Key_Backtab || e->key() == Qt::Key_Escape)
        return false; // the form's own keys
    QPointer<Velmora> alive(q);
    int code = legacyKeyCode(*e);
    int shift = legacyShift(e->modifiers());
    {
        qint16 k = qint16(code), s = qint16(shift);
        Q_EMIT q->KeyDown(k, s);
        if (!alive)
            return true;
        code = k;
        shift = s;
    }
    if (!apply(engine.keyDown(editSettings(), viewState(), code, shift)))
        return true;
    if (code == 0)
        return true;
    if (isTypedText(*e)) {
        typeCharacters(e->text());
        return true;
    }
    if (!leavesTextAlone(*e))
        return true;
    // Movement and selection keys are the box's own; its text must not change.
    const QString before = txtInput->text();
    events.passOn(e);
    if (!alive)
        return true;
    if (txtInput->text() != before) {
        const QSignalBlocker quiet(txtInput);
        txtInput->setText(before);
    }
    // A key the box ignored (F1 at design time, say) goes on to the form: Qt gives it to
    // the box once more (not to this filter), which ignores it again, and then to the
    // parent.
    return e->isAccepted();
}

bool VelmoraPrivate::typeCharacters(const QString &text)
{
    QPointer<Velmora> alive(q);
    const QString typed = wellFormed(text);
    if (typed.size() == 1) {
        qint16 k = qint16(typed.at(0).unicode());
        Q_EMIT q->KeyPress(k);
        if (!alive)
            return false;
        return apply(engine.keyPress(editSettings(), viewState(), quint16(k)));
    }
    // Characters that arrive together are one edit: each raises KeyPress (the host may
    // change it), then all go through the entry rule and the box is written once.
    QString keys;
    keys.reserve(typed.size());
    for (const QChar c : typed) {
        qint16 k = qint16(c.unicode());
        Q_EMIT q->KeyPress(k);
        if (!alive)
            return false;
        keys += QChar(char16_t(quint16(k)));
    }
    return apply(engine.typeText(editSettings(), viewState(), keys));
}

void VelmoraPrivate::keyReleased(QKeyEvent *e)
{
    qint16 k = qint16(legacyKeyCode(*e)), s = qint16(legacyShift(e->modifiers()));
    Q_EMIT q->KeyUp(k, s);
}

bool VelmoraPrivate::inputMethod(QInputMethodEvent *e)
{
    if (e->commitString().isEmpty())
        return false;
    const QString committed = e->commitString();
    e->setCommitString(QString());
    QPointer<Velmora> alive(q);
    events.passOn(e); // the rest of the event (the preedit text) is the box's
    if (alive)
        typeCharacters(committed);
    return true;
}

bool VelmoraPrivate::mouse(QMouseEvent *e)
{
    qint16 button = qint16((e->buttons() | e->button()) & 7);
    qint16 shift = qint16(legacyShift(e->modifiers()));
    float x = float(e->position().x()), y = float(e->position().y());
    switch (e->type()) {
    case QEvent::MouseButtonPress:
        Q_EMIT q->MouseDown(button, shift, x, y);
        // Pasting the selection with the middle button would pass the rules by.
        return e->button() == Qt::MiddleButton;
    case QEvent::MouseButtonRelease: {
        const bool inside = txtInput->rect().contains(e->position().toPoint());
        const bool left = e->button() == Qt::LeftButton;
        QPointer<Velmora> alive(q);
        Q_EMIT q->MouseUp(button, shift, x, y);
        if (alive && left && inside)
            Q_EMIT q->TxtBoxClick();
        return !alive;
    }
    default: {
        const bool dragging = e->buttons() & Qt::LeftButton;
        QPointer<Velmora> alive(q);
        Q_EMIT q->MouseMove(button, shift, x, y);
        if (!alive)
            return true;
        // Moving the mouse over a field in overwrite mode shows the overwrite caret.
        if (set.displayMode == dmChangeable && engine.insMode() && !txtInput->hasSelectedText()
            && !dragging)
            apply(engine.setInsMode(editSettings(), viewState(), true));
        return false;
    }
    }
}

bool VelmoraPrivate::doubleClick()
{
    QPointer<Velmora> alive(q);
    bool cancel = false;
    Q_EMIT q->TxtBoxDblClick(cancel);
    if (!alive || cancel)
        return true;
    if (!set.setList)
        return false; // the box selects the word
    openList();
    return true;
}

void VelmoraPrivate::contextMenu(const QPoint &pos)
{
    // The box's own menu would edit past the rules; this one goes through them. It
    // belongs to the box, so it goes with the field if the host closes the form while
    // the menu is open; its actions are connected to the field for the same reason.
    QPointer<Velmora> alive(q);
    QPointer<QMenu> menu = new QMenu(txtInput);
    const bool editable = set.displayMode == dmChangeable;
    const bool selected = txtInput->hasSelectedText();
    const auto add = [&](const char *text, bool enabled, auto run) {
        QAction *action = menu->addAction(Velmora::tr(text));
        action->setEnabled(enabled);
        QObject::connect(action, &QAction::triggered, q, run);
    };
    add("Zpět", editable && engine.canUndo(),
        [this] { apply(engine.undo(editSettings(), viewState())); });
    add("Znovu", editable && engine.canRedo(),
        [this] { apply(engine.redo(editSettings(), viewState())); });
    menu->addSeparator();
    add("Vyjmout", editable && selected,
        [this] { apply(engine.cutText(editSettings(), viewState())); });
    add("Kopírovat", selected, [this] { txtInput->copy(); });
    add("Vložit", editable, [this] { apply(engine.pasteText(editSettings(), viewState())); });
    menu->addSeparator();
    add("Vybrat vše", true, [this] { txtInput->selectAll(); });
    menu->exec(txtInput->mapToGlobal(pos));
    if (alive)
        delete menu;
}

} // namespace velmora
