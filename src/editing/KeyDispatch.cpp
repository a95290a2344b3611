// Key-down and key-press dispatch, the caret and selection keys, the Enter and arrow
// actions and the overwrite caret.

#include "KeyEngine.h"
#include "format/Text.h"

namespace velmora::detail {

KeyEngine::KeyEngine(EditServices &services) : m_services(services) { }

void KeyEngine::begin(const EditSettings &s, const EditState &box)
{
    m_s = &s;
    m_box.load(box);
    m_out = {};
    m_before = m_box.state();
    m_historyMoved = false;
    m_filterStored = false;
}

EditOutcome KeyEngine::end()
{
    m_out.box = m_box.state();
    // A key that types over or deletes one half of a surrogate pair leaves the other
    // half alone; it becomes the replacement character, in place.
    if (!isWellFormed(m_out.box.text))
        m_out.box.text = wellFormed(m_out.box.text);
    m_out.textChanged = m_out.box.text != m_before.text;
    if (m_out.textChanged && !m_historyMoved) {
        if (m_undo.size() >= 100)
            m_undo.erase(m_undo.begin());
        m_undo.push_back(std::move(m_before));
        m_redo.clear();
    }
    m_out.stored = m_out.box.text;
    if (m_filterStored) {
        const QChar separator = m_s->format().decimalSeparator;
        m_out.stored.removeIf([separator](QChar c) {
            return !(c == QLatin1Char('-') || (c >= QLatin1Char('0') && c <= QLatin1Char('9'))
                     || (!separator.isNull() && c == separator));
        });
    }
    m_before = {};
    m_s = nullptr;
    return std::move(m_out);
}

bool KeyEngine::changeable() const
{
    return m_s->mode == dmChangeable;
}

bool KeyEngine::landable() const
{
    return m_s->mode == dmLandable;
}

// A single selected character in overwrite mode is only the overwrite caret.
bool KeyEngine::realSelection() const
{
    const int length = m_box.selLength();
    return length >= 2 || (length == 1 && !m_insMode);
}

void KeyEngine::warningBeep()
{
    if (m_holdBack)
        return;
    if (m_collapse)
        m_toneHeld = true;
    else
        m_services.warningBeep();
}

void KeyEngine::report(int number, int value)
{
    if (m_holdBack)
        return;
    const Report r {number, QString::number(value)};
    if (!m_collapse || !m_out.reports.contains(r))
        m_out.reports.append(r);
}

void KeyEngine::sendTab()
{
    if (m_holdBack)
        m_heldTab = true;
    else
        m_out.move = FocusMove::Next;
}

void KeyEngine::showOverwriteCaret()
{
    if (changeable() && m_box.selLength() == 0 && m_insMode)
        m_box.setSelLength(1);
}

KeyEngine::Removed KeyEngine::deleteSelection()
{
    const int length = m_box.selLength();
    const int start = m_box.selStart();
    Removed removed {start, QString(), length};
    if (length < 1 || !changeable())
        return removed;
    removed.text = m_box.selText();
    if (m_s->type == itDate) {
        // The blanks of the empty date keep the length and the separators.
        const QString blanks = m_s->format()
                                   .emptyDateText.mid(start, length)
                                   .leftJustified(length, QLatin1Char(' '), true);
        m_box.replace(start, length, blanks);
    } else {
        m_box.remove(start, length);
    }
    m_box.setSelStart(start);
    return removed;
}

void KeyEngine::putBack(const Removed &removed)
{
    if (!removed.text.isEmpty()) {
        if (m_s->type == itDate)
            m_box.replace(removed.start, int(removed.text.size()), removed.text);
        else
            m_box.replace(removed.start, 0, removed.text);
    }
    m_box.setSelStart(removed.start);
    m_box.setSelLength(removed.selLength);
}

bool KeyEngine::entryRule(char16_t key)
{
    switch (m_s->type) {
    case itDate:
        return dateKeyPress(key);
    case itNum:
        return numKeyPress(key) == Entry::Accepted;
    case itBool:
        return boolKeyPress(key);
    default:
        return alfaNumKeyPress(key);
    }
}

EditOutcome KeyEngine::keyDown(const EditSettings &s, const EditState &box, int &keyCode,
                               int &shift)
{
    begin(s, box);
    dispatchKeyDown(keyCode, shift);
    showOverwriteCaret();
    return end();
}

void KeyEngine::typeKey(char16_t key)
{
    entryRule(key);
    showOverwriteCaret();
}

EditOutcome KeyEngine::keyPress(const EditSettings &s, const EditState &box, int key)
{
    begin(s, box);
    typeKey(key >= 0 && key <= 0xFFFF ? char16_t(key) : u'\0');
    return end();
}

EditOutcome KeyEngine::typeText(const EditSettings &s, const EditState &box, QStringView keys)
{
    begin(s, box);
    typeCharacters(keys);
    return end();
}

EditOutcome KeyEngine::enterField(const EditSettings &s, const EditState &box,
                                  const QString &stored)
{
    begin(s, box);
    m_historyMoved = true; // showing the stored text is no edit of the user's
    m_box.setText(s.type == itNum ? withoutLeadingZeros(stored) : stored);
    if (changeable()) {
        m_box.setSelStart(0);
        if (s.selectText)
            m_box.setSelLength(m_box.size());
    }
    // A date is always typed over; the other types follow the keyboard's Insert toggle.
    m_insMode = s.type == itDate || m_services.insertToggled();
    showOverwriteCaret();
    return end();
}

void KeyEngine::changeInsertMode(InpType type)
{
    m_insMode = type == itDate ? true : !m_insMode;
}

EditOutcome KeyEngine::setInsMode(const EditSettings &s, const EditState &box, bool on)
{
    begin(s, box);
    m_insMode = on;
    m_box.setSelLength(on ? 1 : 0);
    return end();
}

void KeyEngine::dispatchKeyDown(int &keyCode, int &shift)
{
    using namespace key;
    const int start = m_box.selStart();
    const int length = m_box.selLength();
    const int textLen = m_box.size();
    const bool sideways = keyCode == Left || keyCode == Right;

    // Shift+Left/Right grow and shrink the selection around the anchor of the last
    // other key.
    if (!(shift != 0 && sideways))
        m_selAnchor = qint16(qBound(0, start, MaxPosition));

    if (keyCode == F1 && m_s->runMode) {
        keyCode = 0;
        return;
    }
    if (keyCode == Y && shift == CtrlBit && changeable()) {
        if (m_s->type == itBool) {
            boolDelete();
        } else {
            m_box.setText(m_s->type == itDate ? m_s->format().emptyDateText : QString());
            m_box.setSelStart(0);
        }
        keyCode = 0;
        shift = 0;
        return;
    }
    if (keyCode == Z && (shift == CtrlBit || shift == (CtrlBit | ShiftBit))) {
        moveHistory(shift == CtrlBit ? m_undo : m_redo, shift == CtrlBit ? m_redo : m_undo);
        keyCode = 0;
        return;
    }
    if (((shift & ShiftBit) && keyCode == Delete) || ((shift & CtrlBit) && keyCode == X)) {
        cut();
        keyCode = 0;
        shift = 0;
        return;
    }
    if (((shift & ShiftBit) && keyCode == Insert) || ((shift & CtrlBit) && keyCode == V)) {
        paste(m_services.clipboardText());
        keyCode = 0;
        shift = 0;
        return;
    }
    if (keyCode == Insert && shift == 0) {
        changeInsertMode(m_s->type);
        m_services.setInsertToggled(!m_services.insertToggled());
        m_box.setSelLength(m_insMode ? 1 : 0);
        return; // the key itself goes on to the edit box
    }
    if (keyCode == Home && shift == 0) {
        m_box.setSelStart(0);
        keyCode = 0;
        return;
    }
    if (keyCode == End && shift == 0) {
        m_box.setSelStart(textLen);
        keyCode = 0;
        return;
    }
    if (keyCode == PageUp || keyCode == PageDown) {
        if (m_s->setList && (changeable() || landable()))
            m_out.dropDown = true;
        keyCode = 0;
        return;
    }
    if (keyCode == Left && shift == 0) {
        if (textLen == 0 || (!realSelection() && start == 0)) {
            doArrowAction(keyCode, shift);
            return;
        }
        if (start >= 1)
            m_box.setSelStart(start - 1);
        else
            m_box.setSelLength(0);
        keyCode = 0;
        return;
    }
    if (keyCode == Left) {
        if (start == m_selAnchor && realSelection()) {
            m_box.setSelLength(length - 1);
        } else if (start >= 1) {
            m_box.setSelStart(start - 1);
            m_box.setSelLength(length + 1);
        }
        keyCode = 0;
        return;
    }
    if (keyCode == Right && shift == 0) {
        if (start == textLen) {
            doArrowAction(keyCode, shift);
            return;
        }
        // With the whole text selected the edit box collapses the selection itself.
        if (length < textLen) {
            m_box.setSelStart(start + 1);
            keyCode = 0;
        }
        return;
    }
    if (keyCode == Right) {
        if (start < m_selAnchor && realSelection()) {
            m_box.setSelStart(start + 1);
            m_box.setSelLength(length - 1);
        } else if (length < textLen) {
            m_box.setSelLength(length + 1);
        }
        keyCode = 0;
        return;
    }
    if ((keyCode == Up || keyCode == Down) && shift == 0) {
        doArrowAction(keyCode, shift);
        return;
    }

    // Every input type: Enter runs the Enter action, Backspace and Delete delete under
    // the type's rule, and every other key is left to the edit box.
    if (keyCode == Enter) {
        doEnterAction();
        keyCode = 0; // Enter never reaches the edit box
        return;
    }
    if (keyCode != Backspace && keyCode != Delete)
        return;
    const bool isDelete = keyCode == Delete;
    keyCode = 0;
    if (landable()) {
        warningBeep();
        return;
    }
    switch (m_s->type) {
    case itDate:
        dateDelete(isDelete);
        break;
    case itNum:
        numDelete(isDelete);
        break;
    case itBool:
        boolDelete();
        break;
    default:
        alfaNumDelete(isDelete);
        break;
    }
}

void KeyEngine::doArrowAction(int &keyCode, int &shift)
{
    m_out.arrowKey = keyCode; // the host may look at it; the decision reads the key itself
    const ArrAction action = m_s->arrowAction;
    const bool leftRight = action == aaAllTab || action == aaLeftRightTab;
    const bool upDown = action == aaAllTab || action == aaUpDownTab;
    if ((keyCode == key::Left && leftRight) || (keyCode == key::Up && upDown))
        m_out.move = FocusMove::Previous;
    else if ((keyCode == key::Right && leftRight) || (keyCode == key::Down && upDown))
        m_out.move = FocusMove::Next;
    keyCode = 0;
    shift = 0;
}

void KeyEngine::doEnterAction()
{
    switch (m_s->enterAction) {
    case eaTab:
        sendTab();
        break;
    case eaClearRest:
        if (!landable()) {
            const int start = m_box.selStart();
            if (m_s->type == itDate)
                m_box.setText(m_box.text().left(start) + m_s->format().emptyDateText.mid(start));
            else if (m_s->type != itBool)
                m_box.setText(m_box.text().left(start));
        }
        sendTab();
        break;
    default:
        break;
    }
}

} // namespace velmora::detail
