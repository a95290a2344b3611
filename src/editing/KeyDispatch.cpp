// Key-down and key-press dispatch, the caret and selection keys, the Enter and arrow
// actions and the overwrite caret.

#include "KeyEngine.h"

#include <climits>

namespace velmora::detail {

KeyEngine::KeyEngine(EditHost &host, EditBox &box) : m_host(host), m_box(box) { }

bool KeyEngine::changeable() const
{
    return m_host.displayMode() == dmChangeable;
}

int KeyEngine::textLength() const
{
    return int(qMin<qsizetype>(m_box.text().size(), INT_MAX));
}

// A single selected character in overwrite mode is only the overwrite caret.
bool KeyEngine::realSelection() const
{
    const int length = m_box.selLength();
    return length >= 2 || (length == 1 && !m_insMode);
}

int KeyEngine::takeKey(int *keyObject, int plainKey)
{
    int k = 0;
    if (plainKey >= 0) {
        k = plainKey;
    } else if (keyObject) {
        k = *keyObject;
        *keyObject = 0; // the edit box must not insert the key itself
    }
    // Anything that is not a UTF-16 code unit counts as the character 0, which every
    // rule refuses.
    return k >= 0 && k <= 0xFFFF ? k : 0;
}

void KeyEngine::warningBeep()
{
    if (!m_holdBack)
        m_host.warningBeep();
}

void KeyEngine::reportError(int number, int value)
{
    if (!m_holdBack)
        m_host.reportError(number, QString::number(value));
}

void KeyEngine::sendTab()
{
    if (m_holdBack)
        m_heldTab = true;
    else
        m_host.sendTab();
}

void KeyEngine::showOverwriteCaret()
{
    if (changeable() && m_box.selLength() == 0 && m_insMode)
        m_box.setSelLength(1);
}

void KeyEngine::deleteSelection()
{
    const int length = m_box.selLength();
    if (length < 1 || !changeable())
        return;
    const int start = m_box.selStart();
    const QString text = m_box.text();
    QString middle;
    if (m_host.inputType() == itDate) {
        // The blanks of the empty date keep the length and the separators.
        middle = m_host.parsedFormat().emptyDateText.mid(start, length);
        middle = middle.leftJustified(length, QLatin1Char(' '), true);
    }
    m_box.setText(text.left(start) + middle + text.mid(qsizetype(start) + length));
    m_box.setSelStart(start);
}

bool KeyEngine::entryRule(int *keyObject, int plainKey)
{
    switch (m_host.inputType()) {
    case itDate:
        return dateKeyPress(keyObject, plainKey);
    case itNum:
        return numKeyPress(keyObject, plainKey);
    case itBool:
        return boolKeyPress(keyObject, plainKey);
    default:
        return alfaNumKeyPress(keyObject, plainKey);
    }
}

void KeyEngine::finishKey()
{
    m_host.setStoredText(m_box.text());
    showOverwriteCaret();
}

void KeyEngine::keyDown(int &keyCode, int &shift)
{
    m_host.raiseKeyDown(keyCode, shift);
    EditScope edit(*this);
    dispatchKeyDown(keyCode, shift);
    finishKey();
}

void KeyEngine::keyPress(int &keyAscii)
{
    m_host.raiseKeyPress(keyAscii);
    EditScope edit(*this);
    entryRule(&keyAscii, -1);
    finishKey();
}

void KeyEngine::doKeyPress(int &keyAscii)
{
    EditScope edit(*this);
    entryRule(nullptr, keyAscii);
    finishKey();
}

void KeyEngine::keyUp(int &keyCode, int &shift)
{
    m_host.raiseKeyUp(keyCode, shift);
}

void KeyEngine::commitText(const QString &text)
{
    for (const QChar c : text) {
        int keyAscii = c.unicode();
        keyPress(keyAscii);
    }
}

void KeyEngine::enterField()
{
    const InpType type = m_host.inputType();
    if (type == itNum)
        trimLeadingZeros();
    m_box.setText(m_host.storedText());
    if (changeable()) {
        m_box.setSelStart(0);
        if (m_host.selectText())
            m_box.setSelLength(textLength());
    }
    // A date is always typed over; the other types follow the keyboard's Insert toggle.
    m_insMode = type == itDate || m_host.insertToggled();
    showOverwriteCaret();
}

void KeyEngine::changeInsertMode()
{
    m_insMode = m_host.inputType() == itDate ? true : !m_insMode;
}

void KeyEngine::setInsMode(bool on)
{
    m_insMode = on;
    m_box.setSelLength(on ? 1 : 0);
}

void KeyEngine::dispatchKeyDown(int &keyCode, int &shift)
{
    using namespace key;
    const int start = m_box.selStart();
    const int length = m_box.selLength();
    const int textLen = textLength();
    const bool sideways = keyCode == Left || keyCode == Right;

    // Shift+Left/Right grow and shrink the selection around the anchor of the last
    // other key.
    if (!(shift != 0 && sideways))
        m_selAnchor = qint16(qBound(0, start, 32767));

    if (keyCode == F1 && m_host.userMode()) {
        keyCode = 0;
        return;
    }
    if (keyCode == Y && shift == CtrlBit && changeable()) {
        const InpType type = m_host.inputType();
        if (type == itBool) {
            keyCode = Backspace;
            boolKeyDown(keyCode);
        } else {
            m_box.setText(type == itDate ? m_host.parsedFormat().emptyDateText : QString());
            m_host.setStoredText(m_box.text());
            m_box.setSelStart(0);
        }
        keyCode = 0;
        shift = 0;
        return;
    }
    if (keyCode == Z && (shift == CtrlBit || shift == (CtrlBit | ShiftBit))) {
        if (shift == CtrlBit)
            undo();
        else
            redo();
        keyCode = 0;
        return;
    }
    if (((shift & ShiftBit) && keyCode == Delete) || ((shift & CtrlBit) && keyCode == X)) {
        cutText();
        keyCode = 0;
        shift = 0;
        return;
    }
    if (((shift & ShiftBit) && keyCode == Insert) || ((shift & CtrlBit) && keyCode == V)) {
        pasteText();
        keyCode = 0;
        shift = 0;
        return;
    }
    if (keyCode == Insert && shift == 0) {
        changeInsertMode();
        m_host.setInsertToggled(!m_host.insertToggled());
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
        const DisplMode mode = m_host.displayMode();
        if (m_host.setList() && (mode == dmChangeable || mode == dmLandable))
            m_host.dropDown();
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
    switch (m_host.inputType()) {
    case itDate:
        dateKeyDown(keyCode);
        break;
    case itNum:
        numKeyDown(keyCode);
        break;
    case itBool:
        boolKeyDown(keyCode);
        break;
    default:
        alfaNumKeyDown(keyCode);
        break;
    }
}

void KeyEngine::doArrowAction(int &keyCode, int &shift)
{
    int arrow = keyCode; // the host may look at it; the decision reads the key itself
    m_host.raiseArrowAction(arrow);
    const ArrAction action = m_host.arrowAction();
    const bool leftRight = action == aaAllTab || action == aaLeftRightTab;
    const bool upDown = action == aaAllTab || action == aaUpDownTab;
    if ((keyCode == key::Left && leftRight) || (keyCode == key::Up && upDown))
        m_host.sendShiftTab();
    else if ((keyCode == key::Right && leftRight) || (keyCode == key::Down && upDown))
        m_host.sendTab();
    keyCode = 0;
    shift = 0;
}

void KeyEngine::doEnterAction(int &keyCode)
{
    switch (m_host.enterAction()) {
    case eaTab:
        sendTab();
        break;
    case eaClearRest:
        if (m_host.displayMode() != dmLandable) {
            const int start = m_box.selStart();
            const QString kept = m_box.text().left(start);
            const InpType type = m_host.inputType();
            if (type == itDate)
                m_box.setText(kept + m_host.parsedFormat().emptyDateText.mid(start));
            else if (type != itBool)
                m_box.setText(kept);
        }
        sendTab();
        break;
    default:
        break;
    }
    keyCode = 0; // Enter never reaches the edit box
}

} // namespace velmora::detail
