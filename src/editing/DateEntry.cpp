// The date entry rule: the text always shows the whole layout of the empty date, the
// digits are typed over it, the caret jumps over separators, and every digit is
// tested against the calendar as far as the date has been typed.

#include "KeyEngine.h"

#include <QtCore/QDate>

namespace velmora::detail {

namespace {

struct DatePart
{
    int start = 0; // 1-based, inclusive; 0 when the layout has no such part
    int end = 0;
};

// Month, day and year, in the order in which deletion looks for the part at the caret.
std::array<DatePart, 3> dateParts(const DateLayout &layout)
{
    return {{{layout.monthStart, layout.monthEnd},
             {layout.dayStart, layout.dayEnd},
             {layout.yearStart, layout.yearEnd}}};
}

// The first part holding the 1-based position, or nullptr.
const DatePart *partAt(const std::array<DatePart, 3> &parts, int position)
{
    for (const DatePart &part : parts) {
        if (part.start >= 1 && part.start <= position && position <= part.end)
            return &part;
    }
    return nullptr;
}

// The number in a part of the text: spaces count as nothing, so a blank part is 0.
// -1 when the part holds anything else than digits and spaces.
qint64 partValue(const QString &text, DatePart part)
{
    if (part.start < 1 || part.end < part.start)
        return 0; // not in the layout, or written with one letter: never read
    qint64 value = 0;
    int digits = 0;
    for (const QChar c : QStringView(text).mid(part.start - 1, part.end - part.start + 1)) {
        if (c == QLatin1Char(' '))
            continue;
        if (c < QLatin1Char('0') || c > QLatin1Char('9') || ++digits > 9)
            return -1;
        value = value * 10 + (c.unicode() - '0');
    }
    return value;
}

} // namespace

void KeyEngine::skipDateSeparator(int direction)
{
    const QString text = m_box.text();
    const QChar separator = m_host.parsedFormat().dateSeparator;
    int start = m_box.selStart();
    if (direction >= 1) {
        while (start < text.size() && text.at(start) == separator)
            ++start;
    } else {
        while (start >= 1 && text.at(start - 1) == separator)
            --start;
    }
    m_box.setSelStart(start);
}

// The calendar test of a partly typed date. A missing month counts as January and a
// missing day as the 28th, which every month has; an unfinished year counts as 2000,
// a leap year, so 29 February passes until a year is typed that rules it out.
bool KeyEngine::dateTextValid(const QString &candidate) const
{
    const auto parts = dateParts(m_host.parsedFormat().dateLayout[0]);
    qint64 month = partValue(candidate, parts[0]);
    qint64 day = partValue(candidate, parts[1]);
    qint64 year = partValue(candidate, parts[2]);
    if (month < 0 || day < 0 || year < 0)
        return false;
    if (month == 0)
        month = 1;
    if (day == 0)
        day = 28;
    if (year < 1000)
        year = 2000;
    return month <= 12 && day <= 31 && year <= 9999
        && QDate(int(year), int(month), int(day)).isValid();
}

bool KeyEngine::checkDateText(const QString &candidate)
{
    const bool valid = dateTextValid(candidate);
    if (!valid)
        warningBeep();
    return valid;
}

void KeyEngine::dateAutoTab()
{
    if (m_box.selStart() >= m_host.parsedFormat().emptyDateText.size() && m_box.selLength() == 0
        && m_host.autoTab())
        sendTab();
}

bool KeyEngine::dateKeyPress(int *keyObject, int plainKey)
{
    const int k = takeKey(keyObject, plainKey);
    const QChar separator = m_host.parsedFormat().dateSeparator;
    if (changeable() && k >= '0' && k <= '9') {
        const QString before = m_box.text();
        const int length = m_box.selLength();
        deleteSelection();
        skipDateSeparator(1);
        const int start = m_box.selStart();
        bool accepted = false;
        QString candidate = m_box.text();
        if (start < candidate.size()) {
            candidate[start] = QChar(char16_t(k)); // the digit types over its place
            if (checkDateText(candidate)) {
                m_box.setText(candidate);
                m_box.setSelStart(start + 1);
                skipDateSeparator(1); // the caret rests before a digit place
                accepted = true;
            } else {
                m_box.setText(before);
                m_box.setSelStart(start);
                m_box.setSelLength(length);
            }
        }
        dateAutoTab();
        return accepted;
    }
    if (changeable() && !separator.isNull() && k == separator.unicode()) {
        // The separator is never typed: the caret jumps behind the next one.
        const qsizetype next = m_box.text().indexOf(separator, m_box.selStart());
        if (next < 0) {
            warningBeep();
            return false;
        }
        m_box.setSelStart(int(next) + 1);
        return true;
    }
    warningBeep();
    return false;
}

void KeyEngine::dateKeyDown(int &keyCode)
{
    const int k = keyCode;
    if (k != key::Backspace && k != key::Delete && k != key::Enter)
        return;
    if (k != key::Enter && m_host.displayMode() == dmLandable) {
        keyCode = 0;
        warningBeep();
        return;
    }
    if (k == key::Enter) {
        doEnterAction(keyCode);
        return;
    }
    keyCode = 0;
    const auto parts = dateParts(m_host.parsedFormat().dateLayout[0]);
    // Deletion pulls the rest of one date part to the left and pads the part with a
    // space, so every part keeps its width.
    if (k == key::Backspace) {
        if (realSelection())
            return;
        skipDateSeparator(-1);
        const int start = m_box.selStart();
        const DatePart *part = start > 0 ? partAt(parts, start) : nullptr;
        if (!part)
            return;
        const QString text = m_box.text();
        m_box.setText(text.left(start - 1) + text.mid(start, part->end - start) + QLatin1Char(' ')
                      + text.mid(part->end));
        m_box.setSelStart(start - 1);
        skipDateSeparator(-1);
        return;
    }
    deleteSelection();
    skipDateSeparator(1);
    const int start = m_box.selStart();
    const QString text = m_box.text();
    const DatePart *part = start < text.size() ? partAt(parts, start + 1) : nullptr;
    if (!part)
        return;
    m_box.setText(text.left(start) + text.mid(start + 1, part->end - start - 1) + QLatin1Char(' ')
                  + text.mid(part->end));
    m_box.setSelStart(start);
}

} // namespace velmora::detail
