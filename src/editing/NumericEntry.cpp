// The numeric entry rule: digits, one decimal separator and one leading sign, with
// the integer and decimal places of the format counted under ControlLength.

#include "KeyEngine.h"
#include "format/Text.h"

namespace velmora::detail {

namespace {

bool isDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

bool hasSign(QStringView text)
{
    return text.contains(QLatin1Char('+')) || text.contains(QLatin1Char('-'));
}

} // namespace

bool KeyEngine::decimalSeparatorAllowed() const
{
    // A field without a format takes a decimal separator; its places are still checked.
    return m_s->display.format.isEmpty() || m_s->format().decimalDigits > 0;
}

// Everything after the first separator counts as decimal places, a second separator
// included; signs, spaces and thousands separators do not count.
KeyEngine::DigitCount KeyEngine::digitCount()
{
    if (m_digitsVersion == m_box.version())
        return m_digits;
    const QChar separator = m_s->format().decimalSeparator;
    DigitCount d;
    const QString &text = m_box.text();
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (!separator.isNull() && c == separator) {
            if (d.separator >= 0)
                ++d.decimal;
            else
                d.separator = int(i);
        } else if (isDigit(c)) {
            ++(d.separator >= 0 ? d.decimal : d.integer);
        }
    }
    m_digits = d;
    m_digitsVersion = m_box.version();
    return d;
}

KeyEngine::NumPlaces KeyEngine::counted(DigitCount digits) const
{
    NumPlaces places {digits.integer, digits.decimal};
    switch (m_s->controlLength) {
    case clNone:
        return {};
    case clIntegerPart:
        places.decimal = 0;
        break;
    case clDecimalPart:
        places.integer = 0;
        break;
    default:
        break;
    }
    return places;
}

KeyEngine::NumPlaces KeyEngine::numPlaces(QStringView candidate) const
{
    const QChar separator = m_s->format().decimalSeparator;
    DigitCount d;
    for (const QChar c : candidate) {
        if (!separator.isNull() && c == separator) {
            if (d.separator >= 0)
                ++d.decimal;
            else
                d.separator = 0;
        } else if (isDigit(c)) {
            ++(d.separator >= 0 ? d.decimal : d.integer);
        }
    }
    return counted(d);
}

bool KeyEngine::numFull(NumPlaces places) const
{
    const ParsedFormat &format = m_s->format();
    return (format.decimalDigits < 1 && places.integer == format.integerDigits)
        || (format.decimalDigits > 0 && places.decimal == format.decimalDigits);
}

// Whether a candidate keeps the places of the format; a refusal sounds the tone and
// reports the message. The decimal places are tested first: a candidate that breaks
// both gets one message.
bool KeyEngine::checkNumDigits(NumPlaces places, bool caretAtEnd)
{
    const ParsedFormat &format = m_s->format();
    bool fits = true;
    if (places.decimal > format.decimalDigits) {
        warningBeep();
        report(8, format.decimalDigits);
        fits = false;
    } else if (places.integer > format.integerDigits) {
        warningBeep();
        report(9, format.integerDigits);
        fits = false;
    }
    // The Tab is queued, so it lands after the character has been inserted.
    if (numFull(places) && m_s->autoTab && caretAtEnd)
        sendTab();
    return fits;
}

KeyEngine::Entry KeyEngine::numKeyPress(char16_t key)
{
    const QChar separator = m_s->format().decimalSeparator;
    const Removed removed = deleteSelection(); // a typed character replaces the selection

    QChar c(key);
    if (key == u' ')
        c = QChar(0x00A0);
    else if ((key == u'.' || key == u',') && !separator.isNull())
        c = separator; // either key types the field's decimal separator

    if (landable()) {
        warningBeep();
        return Entry::Refused;
    }

    const int start = m_box.selStart();
    const QStringView text = m_box.text();
    const bool isSeparator = !separator.isNull() && c == separator;
    Entry result = Entry::Accepted;
    if (isDigit(c) || (isSeparator && decimalSeparatorAllowed())) {
        DigitCount d = digitCount();
        if (isSeparator && d.separator >= 0) {
            result = Entry::Refused;
        } else if (text.size() >= MaxTextLength || hasSign(text.mid(start))) {
            result = Entry::Refused; // nothing may stand in front of the sign
        } else {
            if (isSeparator) {
                d = DigitCount {int(std::count_if(text.begin(), text.begin() + start, isDigit)),
                                int(std::count_if(text.begin() + start, text.end(), isDigit)),
                                start};
            } else if (d.separator >= 0 && start > d.separator) {
                ++d.decimal;
            } else {
                ++d.integer;
                if (d.separator >= 0)
                    ++d.separator;
            }
            if (checkNumDigits(counted(d), start == text.size())) {
                m_box.insert(start, c);
                m_box.setSelStart(start + 1);
                m_digits = d;
                m_digitsVersion = m_box.version();
                return Entry::Accepted;
            }
            result = Entry::RefusedWithMessage;
        }
    } else if (c == QLatin1Char('+') || c == QLatin1Char('-')) {
        if (start != 0 || hasSign(text) || text.size() >= MaxTextLength) {
            result = Entry::Refused;
        } else {
            m_box.insert(start, c);
            m_box.setSelStart(start + 1);
            return Entry::Accepted;
        }
    } else {
        result = Entry::Refused;
    }

    putBack(removed);
    if (result == Entry::Refused) // a refusal with a message has sounded its own tone
        warningBeep();
    return result;
}

void KeyEngine::numDelete(bool isDelete)
{
    const EditState before = m_box.state();
    const int start = before.selStart;
    if (isDelete) {
        if (before.selLength >= 1) {
            deleteSelection();
        } else if (start < m_box.size()) {
            m_box.remove(start, 1);
            m_box.setSelStart(start);
        }
    } else if (!realSelection() && start > 0) {
        m_box.remove(start - 1, 1);
        m_box.setSelStart(start - 1);
    }
    // Removing the decimal separator turns the decimal places into integer places,
    // which may then be too many: such a deletion is undone.
    if (!checkNumDigits(numPlaces(m_box.text()), m_box.selStart() == m_box.size()))
        m_box.load(before);
}

QString KeyEngine::withoutLeadingZeros(const QString &text)
{
    QString sign;
    int zeros = 0;
    qsizetype stop = 0;
    for (; stop < text.size(); ++stop) {
        const QChar c = text.at(stop);
        if (c == QLatin1Char('+') || c == QLatin1Char('-'))
            sign += c;
        else if (c == QLatin1Char('0'))
            ++zeros;
        else
            break;
    }
    const bool nonZeroDigit = stop < text.size() && text.at(stop) >= QLatin1Char('1')
        && text.at(stop) <= QLatin1Char('9');
    // One zero stays in front of a separator or alone: "000" is 0, "-00,5" is -0,5.
    if (!nonZeroDigit && zeros > 0)
        sign += QLatin1Char('0');
    return stop == 0 ? text : sign + text.mid(stop);
}

} // namespace velmora::detail
