// The alphanumeric and boolean entry rules and their deletion keys.

#include "KeyEngine.h"
#include "format/Text.h"

namespace velmora::detail {

// Without a string pattern the field shows its text as it is, and an edit need not
// render the whole text again.
bool KeyEngine::plainDisplay() const
{
    return m_s->display.format.isEmpty();
}

// A pattern of nothing but "<", ">" and "!" only maps the case of every character, one by
// one: a typed character is then mapped alone, and the rest of the text, mapped already,
// stays as it is. A long paste into such a field costs its length, not its square.
std::optional<bool> KeyEngine::caseOnlyUpper() const
{
    const QString &format = m_s->display.format;
    if (format.isEmpty())
        return std::nullopt;
    bool upper = false;
    for (const QChar c : format) {
        if (c == QLatin1Char('>'))
            upper = true;
        else if (c == QLatin1Char('<'))
            upper = false; // the last of the two wins
        else if (c != QLatin1Char('!'))
            return std::nullopt;
    }
    if (!format.contains(QLatin1Char('<')) && !format.contains(QLatin1Char('>')))
        return std::nullopt;
    return upper;
}

QString KeyEngine::shown(const QString &text) const
{
    return capped(displayText(text, m_s->display));
}

bool KeyEngine::alfaNumKeyPress(char16_t key)
{
    if (key < 32 || landable()) {
        warningBeep();
        return false;
    }
    // The rule always inserts; overwrite mode works through the selected overwrite
    // caret, which the character replaces.
    deleteSelection();
    const int maxLength = m_s->maxLength;
    if (maxLength >= 1 && m_box.size() >= maxLength) {
        warningBeep();
        report(14, maxLength);
        return false; // the deleted selection stays deleted
    }
    if (m_box.size() >= MaxTextLength) {
        warningBeep(); // a full field refuses the character rather than drop one
        return false;
    }
    const int start = m_box.selStart();
    const std::optional<bool> upper = caseOnlyUpper();
    if (plainDisplay()) {
        m_box.insert(start, QChar(key));
    } else if (upper && !QChar::isSurrogate(key)) {
        const QString one = QString(QChar(key));
        m_box.replace(start, 0, *upper ? one.toUpper() : one.toLower());
        if (m_box.size() > MaxTextLength) // as the whole text rendered and cut would be
            m_box.remove(MaxTextLength, m_box.size() - MaxTextLength);
    } else {
        const QString &text = m_box.text();
        m_box.setText(shown(text.left(start) + QChar(key) + text.mid(start)));
    }
    m_box.setSelStart(start + 1);
    // The field moves on when the caret reaches the last place, not when the text does.
    if (m_box.selStart() == maxLength && m_s->autoTab)
        sendTab();
    return true;
}

void KeyEngine::alfaNumDelete(bool isDelete)
{
    const int start = m_box.selStart();
    if (isDelete) {
        if (m_box.selLength() > 0)
            deleteSelection();
        else if (start < m_box.size())
            m_box.remove(start, 1);
        if (!plainDisplay())
            m_box.setText(shown(m_box.text()));
        m_box.setSelStart(start);
        return;
    }
    // Backspace leaves a real selection alone.
    if (m_box.selLength() > 1 || (m_box.selLength() > 0 && !m_insMode) || start == 0)
        return;
    m_box.remove(start - 1, 1);
    if (!plainDisplay())
        m_box.setText(shown(m_box.text()));
    m_box.setSelStart(start - 1);
}

bool KeyEngine::boolKeyPress(char16_t key)
{
    if (changeable()) {
        const BoolFormat &format = m_s->format().boolFormat;
        const QChar typed = QChar(key).toUpper();
        // The true text is tested first: a letter that begins both gives true.
        if (!format.trueText.isEmpty() && format.trueText.at(0).toUpper() == typed) {
            m_box.setText(format.trueText);
            m_out.listIndex = 0;
            return true;
        }
        if (!format.falseText.isEmpty() && format.falseText.at(0).toUpper() == typed) {
            m_box.setText(format.falseText);
            m_out.listIndex = 1;
            return true;
        }
    }
    warningBeep();
    return false;
}

void KeyEngine::boolDelete()
{
    if (!m_s->enableEmpty) {
        warningBeep();
        return;
    }
    m_box.setText(QString());
    m_out.listIndex = 2; // the empty state of a boolean field
}

} // namespace velmora::detail
