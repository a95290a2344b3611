// The date entry rule: the text always shows the whole layout of the empty date, the
// digits are typed over it, the caret jumps over separators, and every digit is
// tested against the calendar as far as the date has been typed.

#include "KeyEngine.h"

#include <QtCore/QDate>

#include <array>

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

} // namespace

void KeyEngine::skipDateSeparator(int direction)
{
    const QString &text = m_box.text();
    const QChar separator = m_s->format().dateSeparator;
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
bool KeyEngine::dateTextValid(QStringView candidate) const
{
    const DateLayout &l = m_s->format().dateLayout[0];
    const DatePartValue m = readDatePart(candidate, l.monthStart, l.monthEnd);
    const DatePartValue d = readDatePart(candidate, l.dayStart, l.dayEnd);
    const DatePartValue y = readDatePart(candidate, l.yearStart, l.yearEnd);
    if (!m.valid || !d.valid || !y.valid)
        return false;
    const int month = m.value == 0 ? 1 : m.value;
    const int day = d.value == 0 ? 28 : d.value;
    const int year = y.value < 1000 ? 2000 : y.value;
    return month <= 12 && day <= 31 && year <= 9999 && QDate(year, month, day).isValid();
}

void KeyEngine::dateAutoTab()
{
    if (m_box.selStart() >= m_s->format().emptyDateText.size() && m_box.selLength() == 0
        && m_s->autoTab)
        sendTab();
}

bool KeyEngine::dateKeyPress(char16_t key)
{
    const QChar separator = m_s->format().dateSeparator;
    if (changeable() && key >= u'0' && key <= u'9') {
        const Removed removed = deleteSelection();
        skipDateSeparator(1);
        const int start = m_box.selStart();
        bool accepted = false;
        if (start < m_box.size()) {
            const QChar old = m_box.text().at(start);
            m_box.put(start, QChar(key)); // the digit types over its place
            if (dateTextValid(m_box.text())) {
                m_box.setSelStart(start + 1);
                skipDateSeparator(1); // the caret rests before a digit place
                accepted = true;
            } else {
                m_box.put(start, old);
                putBack(removed);
                m_box.setSelStart(start); // past the separator it skipped
                m_box.setSelLength(removed.selLength);
                warningBeep();
            }
        }
        dateAutoTab();
        return accepted;
    }
    if (changeable() && !separator.isNull() && key == separator.unicode()) {
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

// Deletion pulls the rest of one date part to the left and pads the part with a space,
// so every part keeps its width.
void KeyEngine::dateDelete(bool isDelete)
{
    const auto parts = dateParts(m_s->format().dateLayout[0]);
    if (!isDelete) {
        if (realSelection())
            return;
        skipDateSeparator(-1);
        const int start = m_box.selStart();
        const DatePart *part = start > 0 ? partAt(parts, start) : nullptr;
        if (!part)
            return;
        m_box.remove(start - 1, 1);
        m_box.insert(part->end - 1, QLatin1Char(' '));
        m_box.setSelStart(start - 1);
        skipDateSeparator(-1);
        return;
    }
    deleteSelection();
    skipDateSeparator(1);
    const int start = m_box.selStart();
    const DatePart *part = start < m_box.size() ? partAt(parts, start + 1) : nullptr;
    if (!part)
        return;
    m_box.remove(start, 1);
    m_box.insert(part->end - 1, QLatin1Char(' '));
    m_box.setSelStart(start);
}

} // namespace velmora::detail
