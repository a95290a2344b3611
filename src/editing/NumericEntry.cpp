// The numeric entry rule: digits, one decimal separator and one leading sign, with
// the integer and decimal places of the format counted under ControlLength.

#include "KeyEngine.h"

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
    return m_host.formatStr().isEmpty() || m_host.parsedFormat().decimalDigits > 0;
}

// Places before and after the decimal separator; signs, spaces and thousands
// separators do not count.
KeyEngine::NumPlaces KeyEngine::numPlaces(const QString &candidate) const
{
    const QChar separator = m_host.parsedFormat().decimalSeparator;
    NumPlaces places;
    bool afterSeparator = false;
    for (const QChar c : candidate) {
        if (!separator.isNull() && c == separator) {
            // Everything after the first separator counts as decimal places.
            if (afterSeparator)
                ++places.decimal;
            afterSeparator = true;
        } else if (isDigit(c)) {
            ++(afterSeparator ? places.decimal : places.integer);
        }
    }
    switch (m_host.controlLength()) {
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

bool KeyEngine::numFull(NumPlaces places) const
{
    const ParsedFormat &format = m_host.parsedFormat();
    return (format.decimalDigits < 1 && places.integer == format.integerDigits)
        || (format.decimalDigits > 0 && places.decimal == format.decimalDigits);
}

// 0 when the candidate keeps the places of the format, 3 after a message. The
// decimal places are tested first: a candidate that breaks both gets one message.
int KeyEngine::checkNumDigits(const QString &candidate)
{
    const ParsedFormat &format = m_host.parsedFormat();
    const NumPlaces places = numPlaces(candidate);
    int result = 0;
    if (places.decimal > format.decimalDigits) {
        warningBeep();
        reportError(8, format.decimalDigits);
        result = 3;
    } else if (places.integer > format.integerDigits) {
        warningBeep();
        reportError(9, format.integerDigits);
        result = 3;
    }
    // The Tab is queued, so it lands after the character has been inserted.
    if (numFull(places) && m_host.autoTab() && m_box.selStart() == textLength())
        sendTab();
    return result;
}

bool KeyEngine::numKeyPress(int *keyObject, int plainKey)
{
    const int k = takeKey(keyObject, plainKey);
    const QChar separator = m_host.parsedFormat().decimalSeparator;
    const QString before = m_box.text();
    const int start = m_box.selStart();
    const int length = m_box.selLength();

    deleteSelection(); // a typed character replaces the selection

    QChar c {char16_t(k)};
    if (k == ' ')
        c = QChar(0x00A0);
    else if ((k == '.' || k == ',') && !separator.isNull())
        c = separator; // either key types the field's decimal separator

    if (m_host.displayMode() == dmLandable) {
        warningBeep();
        return false;
    }

    const QString text = m_box.text();
    int result = 0;
    if (isDigit(c) || (!separator.isNull() && c == separator && decimalSeparatorAllowed())) {
        if (c == separator && text.contains(separator))
            result = 1;
        else if (hasSign(QStringView(text).mid(start)))
            result = 1; // nothing may stand in front of the sign
        else
            result = checkNumDigits(text.left(start) + c + text.mid(start));
    } else if (c == QLatin1Char('+') || c == QLatin1Char('-')) {
        result = start != 0 || hasSign(text) ? 1 : 0;
    } else {
        result = 2;
    }

    if (result == 0) {
        m_box.setText(text.left(start) + c + text.mid(start));
        m_box.setSelStart(start + 1);
        return true;
    }
    m_box.setText(before);
    m_box.setSelStart(start);
    m_box.setSelLength(length);
    if (result != 3) // the place check has sounded its own tone
        warningBeep();
    return false;
}

void KeyEngine::numKeyDown(int &keyCode)
{
    if (keyCode == key::Enter) {
        doEnterAction(keyCode);
        return;
    }
    if (keyCode != key::Backspace && keyCode != key::Delete)
        return;
    const bool isDelete = keyCode == key::Delete;
    keyCode = 0;
    if (m_host.displayMode() == dmLandable) {
        warningBeep();
        return;
    }
    const QString before = m_box.text();
    const int start = m_box.selStart();
    const int length = m_box.selLength();
    if (isDelete) {
        if (length >= 1) {
            deleteSelection();
        } else if (start < before.size()) {
            m_box.setText(QString(before).remove(start, 1));
            m_box.setSelStart(start);
        }
    } else if (!realSelection() && start > 0) {
        m_box.setText(QString(before).remove(start - 1, 1));
        m_box.setSelStart(start - 1);
    }
    // Removing the decimal separator turns the decimal places into integer places,
    // which may then be too many: such a deletion is undone.
    if (checkNumDigits(m_box.text()) != 0) {
        m_box.setText(before);
        m_box.setSelStart(start);
        m_box.setSelLength(length);
    }
}

void KeyEngine::trimLeadingZeros()
{
    const QString text = m_host.storedText();
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
    m_host.setStoredText(sign + text.mid(stop));
}

} // namespace velmora::detail
