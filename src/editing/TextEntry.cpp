// The alphanumeric and boolean entry rules and their deletion keys.

#include "KeyEngine.h"

namespace velmora::detail {

bool KeyEngine::alfaNumKeyPress(int *keyObject, int plainKey)
{
    const int k = takeKey(keyObject, plainKey);
    if (k < 32 || m_host.displayMode() == dmLandable) {
        warningBeep();
        return false;
    }
    // The rule always inserts; overwrite mode works through the selected overwrite
    // caret, which the character replaces.
    deleteSelection();
    const int maxLength = m_host.maxLength();
    if (maxLength >= 1 && textLength() >= maxLength) {
        warningBeep();
        reportError(14, maxLength);
        return false; // the deleted selection stays deleted
    }
    const int start = m_box.selStart();
    const QString text = m_box.text();
    m_box.setText(m_host.displayText(text.left(start) + QChar(char16_t(k)) + text.mid(start)));
    m_box.setSelStart(start + 1);
    // The field moves on when the caret reaches the last place, not when the text does.
    if (m_box.selStart() == maxLength && m_host.autoTab())
        sendTab();
    return true;
}

void KeyEngine::alfaNumKeyDown(int &keyCode)
{
    const int k = keyCode;
    if (k == key::Enter) {
        doEnterAction(keyCode);
        return;
    }
    if (k != key::Backspace && k != key::Delete)
        return;
    keyCode = 0;
    if (m_host.displayMode() == dmLandable) {
        warningBeep();
        return;
    }
    const int start = m_box.selStart();
    if (k == key::Delete) {
        if (m_box.selLength() > 0)
            deleteSelection();
        else if (start < textLength())
            m_box.setText(m_box.text().remove(start, 1));
        m_box.setText(m_host.displayText(m_box.text()));
        m_box.setSelStart(start);
        return;
    }
    // Backspace leaves a real selection alone.
    if (m_box.selLength() > 1 || (m_box.selLength() > 0 && !m_insMode) || start == 0)
        return;
    m_box.setText(m_host.displayText(m_box.text().remove(start - 1, 1)));
    m_box.setSelStart(start - 1);
}

bool KeyEngine::boolKeyPress(int *keyObject, int plainKey)
{
    const int k = takeKey(keyObject, plainKey);
    if (changeable()) {
        const BoolFormat &format = m_host.parsedFormat().boolFormat;
        const QChar typed = QChar(char16_t(k)).toUpper();
        // The true text is tested first: a letter that begins both gives true.
        if (!format.trueText.isEmpty() && format.trueText.at(0).toUpper() == typed) {
            m_box.setText(format.trueText);
            m_host.setListIndex(0);
            return true;
        }
        if (!format.falseText.isEmpty() && format.falseText.at(0).toUpper() == typed) {
            m_box.setText(format.falseText);
            m_host.setListIndex(1);
            return true;
        }
    }
    warningBeep();
    return false;
}

void KeyEngine::boolKeyDown(int &keyCode)
{
    if (keyCode == key::Enter) {
        doEnterAction(keyCode);
        return;
    }
    if (keyCode != key::Backspace && keyCode != key::Delete)
        return;
    keyCode = 0;
    if (m_host.displayMode() == dmLandable || !m_host.isSet(QStringLiteral("EnableEmpty"))) {
        warningBeep();
        return;
    }
    m_box.setText(QString());
    m_host.setListIndex(2); // the empty state of a boolean field
}

} // namespace velmora::detail
