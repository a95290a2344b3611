#include "CellFormat.h"
#include "Regional.h"
#include "Text.h"

#include <QtCore/QVarLengthArray>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

namespace velmora::detail {

namespace {

// The character displayText parks the regional decimal separator on while the
// thousands separator moves.
constexpr char16_t Placeholder = 0x016F;

// At most this many significant digits are read on the fast path: any decimal of 15
// digits comes back from its double with the same 15 digits, as formatNumber writes it.
constexpr int FastDigits = 15;

using Buffer = CellText;
using Digits = CellFormat::Digits;

bool isAsciiDigit(char16_t c)
{
    return c >= u'0' && c <= u'9';
}

char16_t asciiLower(char16_t c)
{
    return c >= u'A' && c <= u'Z' ? char16_t(c + 32) : c;
}

inline void appendTwoDigits(Buffer &out, int n)
{
    const char16_t digits[2] = {char16_t(u'0' + n / 10 % 10), char16_t(u'0' + n % 10)};
    out.append(digits, 2);
}

QString toQString(const Buffer &b)
{
    if (b.isEmpty())
        return {};
    return QString(reinterpret_cast<const QChar *>(b.data()), b.size());
}

// Rounds to `places` decimals, half away from zero.
void roundTo(Digits &m, int places)
{
    const qint64 keep = qint64(m.point) + places;
    if (keep >= m.count)
        return;
    if (keep < 0) {
        m = {};
        return;
    }
    const bool up = m.digit[keep] >= '5';
    m.count = int(keep);
    if (up) {
        int i = m.count - 1;
        while (i >= 0 && m.digit[i] == '9')
            m.digit[i--] = '0';
        if (i < 0) {
            std::memmove(m.digit + 1, m.digit, size_t(m.count));
            m.digit[0] = '1';
            ++m.count;
            ++m.point;
        } else {
            ++m.digit[i];
        }
    }
    while (m.count > 0 && m.digit[m.count - 1] == '0')
        --m.count;
    if (m.count == 0)
        m.point = 0;
}

// The digit of 0.digits x 10^point at decimal place `at` counted from the point
// (0 the first integer digit, point the first decimal).
char16_t digitAt(const Digits &m, qint64 at)
{
    return at >= 0 && at < m.count ? char16_t(m.digit[at]) : u'0';
}

// numberToString of a number below 1e15.
void writePlain(Buffer &out, bool negative, const Digits &m, char16_t decimal)
{
    if (m.count == 0) {
        out.append(u'0');
        return;
    }
    if (negative)
        out.append(u'-');
    if (m.point <= 0)
        out.append(u'0');
    for (int i = 0; i < m.point; ++i)
        out.append(digitAt(m, i));
    if (m.count > m.point) {
        out.append(decimal);
        for (int i = m.point; i < m.count; ++i)
            out.append(digitAt(m, i));
    }
}

// renderSection of Regional.cpp on a rounded magnitude.
void writeSection(Buffer &out, const CellFormat::NumberPart &s, const Digits &m, char16_t decimal,
                  char16_t thousands)
{
    const bool showsDigits = s.integerPlaces + s.decimalPlaces > 0;
    const qint64 integerDigits = std::max(m.point, 0);
    const qint64 padding = std::max<qint64>(s.minIntegerDigits - integerDigits, 0);
    const qint64 length = integerDigits + padding;
    const qint64 fraction = std::max<qint64>(
        s.minDecimalDigits,
        std::min<qint64>(s.decimalPlaces, std::max<qint64>(qint64(m.count) - m.point, 0)));

    // The integer digits from..to, with a separator after each group of three.
    auto appendWhole = [&](qint64 from, qint64 to) {
        qint64 toGroup = (length - 1 - from) % 3; // digits until a separator follows
        for (qint64 i = from; i < to; ++i) {
            out.append(i < padding ? u'0' : digitAt(m, i - padding));
            if (toGroup-- == 0) {
                if (s.grouping && i < length - 1)
                    out.append(thousands);
                toGroup = 2;
            }
        }
    };
    // Integer places are filled from the right; the first place also takes every digit
    // the places cannot hold. A run of places writes the digits of all its places.
    const qint64 surplus = length - s.integerPlaces;
    qint64 integerPlace = 0, decimalPlace = 0;
    for (const CellFormat::NumberStep &step : s.steps) {
        switch (step.kind) {
        case CellFormat::NumberStep::IntegerDigit: {
            const qint64 first = integerPlace + surplus;
            const qint64 last = first + step.length - 1;
            if (last >= 0)
                appendWhole(integerPlace == 0 && surplus > 0 ? 0 : std::max<qint64>(first, 0),
                            last + 1);
            integerPlace += step.length;
            break;
        }
        case CellFormat::NumberStep::DecimalDigit:
            for (qint64 d = decimalPlace; d < std::min(decimalPlace + step.length, fraction); ++d)
                out.append(digitAt(m, m.point + d));
            decimalPlace += step.length;
            break;
        case CellFormat::NumberStep::Point:
            if (s.integerPlaces == 0 && showsDigits)
                appendWhole(0, length);
            out.append(decimal);
            break;
        case CellFormat::NumberStep::Literal:
            out.append(reinterpret_cast<const char16_t *>(s.literals.constData()) + step.from,
                       step.length);
            break;
        }
    }
}

CellFormat::NumberPart compile(const NumberSection &section)
{
    CellFormat::NumberPart part;
    part.isEmpty = section.isEmpty;
    part.grouping = section.grouping;
    part.percent = section.percent;
    part.integerPlaces = section.integerPlaces;
    part.decimalPlaces = section.decimalPlaces;
    part.minIntegerDigits = section.minIntegerDigits;
    part.minDecimalDigits = section.minDecimalDigits;
    bool afterPoint = false;
    for (const NumberToken &t : section.tokens) {
        using Step = CellFormat::NumberStep;
        switch (t.kind) {
        case NumberToken::Digit: {
            // Neighbouring places are written as one run.
            const Step::Kind kind = afterPoint ? Step::DecimalDigit : Step::IntegerDigit;
            if (part.steps.empty() || part.steps.back().kind != kind)
                part.steps.push_back({kind, 0, 0});
            ++part.steps.back().length;
            break;
        }
        case NumberToken::Point:
            afterPoint = true;
            part.steps.push_back({Step::Point});
            break;
        case NumberToken::Comma:
            break;
        case NumberToken::Percent:
        case NumberToken::Text:
            // Neighbouring literals are written as one.
            if (part.steps.empty() || part.steps.back().kind != Step::Literal)
                part.steps.push_back({Step::Literal, int(part.literals.size()), 0});
            part.literals += t.text;
            part.steps.back().length += int(t.text.size());
            break;
        }
    }
    return part;
}

std::vector<CellFormat::DateStep> compileDate(const QString &pattern, const RegionalSettings &rs)
{
    using Step = CellFormat::DateStep;
    std::vector<Step> steps;
    if (pattern.isEmpty()) {
        // dateToString: the regional short date.
        const Step sep {Step::Literal, rs.dateSeparator.unicode()};
        switch (rs.dateOrder) {
        case RegionalSettings::DayMonthYear:
            return {{Step::Day2}, sep, {Step::Month2}, sep, {Step::Year4}};
        case RegionalSettings::MonthDayYear:
            return {{Step::Month2}, sep, {Step::Day2}, sep, {Step::Year4}};
        case RegionalSettings::YearMonthDay:
            return {{Step::Year4}, sep, {Step::Month2}, sep, {Step::Day2}};
        }
        return {};
    }
    for (qsizetype i = 0; i < pattern.size();) {
        const char16_t c = pattern.at(i).unicode();
        const char16_t letter = asciiLower(c);
        if (letter != u'd' && letter != u'm' && letter != u'y') {
            steps.push_back({Step::Literal, c == u'/' ? rs.dateSeparator.unicode() : c});
            ++i;
            continue;
        }
        qsizetype run = 0;
        while (i < pattern.size() && asciiLower(pattern.at(i).unicode()) == letter)
            ++i, ++run;
        if (letter == u'd')
            steps.push_back({run == 1 ? Step::Day : Step::Day2});
        else if (letter == u'm')
            steps.push_back({run == 1 ? Step::Month : Step::Month2});
        else
            steps.push_back({run <= 2 ? Step::Year2 : Step::Year4});
    }
    return steps;
}

bool isValidDate(int year, int month, int day)
{
    if (year < 1 || month < 1 || month > 12 || day < 1)
        return false;
    static constexpr int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    return day <= days[month - 1] + (month == 2 && leap ? 1 : 0);
}

// A sign in front, digits, and the regional decimal separator with more digits, all
// of at most 15 significant digits below 1e15 and far above the smallest double;
// else false.
bool readNumber(QStringView value, char16_t decimal, bool &negative, Digits &m)
{
    const qsizetype n = value.size();
    qsizetype i = 0;
    negative = false;
    if (n > 0 && (value[0] == u'-' || value[0] == u'+')) {
        negative = value[0] == u'-';
        ++i;
    }
    bool anyDigit = false, afterPoint = false;
    int kept = 0; // digits from the first significant one, trailing zeros included
    for (; i < n; ++i) {
        const char16_t c = value[i].unicode();
        if (isAsciiDigit(c)) {
            anyDigit = true;
            if (kept == 0 && c == u'0') {
                if (afterPoint)
                    --m.point; // a zero right after the point
                continue;
            }
            if (kept == int(sizeof m.digit))
                return false;
            m.digit[kept++] = char(c);
            if (!afterPoint)
                ++m.point;
        } else if (c == decimal && !afterPoint) {
            afterPoint = true;
        } else {
            return false;
        }
    }
    if (!anyDigit)
        return false;
    m.count = kept;
    while (m.count > 0 && m.digit[m.count - 1] == '0')
        --m.count;
    if (m.count == 0) {
        m.point = 0;
        negative = false; // zero has no sign
    }
    return m.count <= FastDigits && m.point <= FastDigits && m.point > -290;
}

// The digits of n (below 10^18) with the point `scale` places from the right.
void integerDigits(quint64 n, int scale, Digits &m)
{
    char buf[20];
    int length = 0;
    for (; n > 0; n /= 10)
        buf[length++] = char('0' + n % 10);
    m.count = 0;
    for (int i = length - 1; i >= 0; --i)
        m.digit[m.count++] = buf[i];
    m.point = length - scale;
    while (m.count > 0 && m.digit[m.count - 1] == '0')
        --m.count;
}

// The digits numberToString writes for a positive finite magnitude: its 15 significant
// digits, trailing zeros dropped; false when numberToString writes an exponent (from
// 1e15 on) or the number is too small for readNumber, both left to the text route.
// A decimal of at most 15 significant digits that reads back as the same double is
// those digits, so amounts with few decimals are found without a conversion routine.
bool digitsOf(double magnitude, Digits &m)
{
    if (magnitude < 1e15) {
        static constexpr double Scales[] = {1, 10, 100, 1000, 10000, 1e5, 1e6};
        for (int scale = 0; scale < int(std::size(Scales)); ++scale) {
            const double scaled = magnitude * Scales[scale];
            if (scaled >= 1e15)
                break;
            const double whole = std::nearbyint(scaled);
            if (whole != 0 && whole / Scales[scale] == magnitude) {
                integerDigits(quint64(whole), scale, m);
                return true;
            }
        }
    }
    char buf[64];
    const auto res = std::to_chars(buf, buf + sizeof buf, magnitude, std::chars_format::scientific,
                                   FastDigits - 1);
    m = {};
    const char *p = buf;
    for (; p < res.ptr && *p != 'e'; ++p)
        if (*p != '.')
            m.digit[m.count++] = *p;
    int exp10 = 0;
    if (p < res.ptr) {
        const char *e = p + 1;
        if (e < res.ptr && *e == '+')
            ++e;
        std::from_chars(e, res.ptr, exp10);
    }
    m.point = exp10 + 1;
    while (m.count > 0 && m.digit[m.count - 1] == '0')
        --m.count;
    return m.point <= FastDigits && m.point > -290;
}

// Three parts of one to four digits between separators, read as toDate reads them;
// false for anything else and for no calendar date.
bool readDate(QStringView value, char16_t separator, RegionalSettings::DateOrder order, int &year,
              int &month, int &day)
{
    int part[3] = {}, length[3] = {};
    int count = 0;
    for (qsizetype i = 0; i <= value.size(); ++i) {
        const char16_t c = i < value.size() ? value[i].unicode() : 0;
        if (i < value.size() && isAsciiDigit(c)) {
            if (count == 3 || length[count] == 4)
                return false;
            part[count] = part[count] * 10 + (c - u'0');
            ++length[count];
        } else if (i == value.size() || c == separator || c == u'/' || c == u'-' || c == u'.') {
            if (count == 3 || length[count] == 0)
                return false;
            ++count;
        } else {
            return false;
        }
    }
    if (count != 3)
        return false;
    auto dateIn = [&](int y, int mo, int d) {
        year = length[y] <= 2 ? (part[y] >= 30 ? 1900 : 2000) + part[y] : part[y];
        month = part[mo];
        day = part[d];
        return isValidDate(year, month, day);
    };
    if (length[0] == 4)
        return dateIn(0, 1, 2);
    switch (order) {
    case RegionalSettings::YearMonthDay:
        return dateIn(0, 1, 2);
    case RegionalSettings::DayMonthYear:
        return dateIn(2, 1, 0) || dateIn(2, 0, 1);
    case RegionalSettings::MonthDayYear:
        return dateIn(2, 0, 1) || dateIn(2, 1, 0);
    }
    return false;
}

} // namespace

CellFormat::CellFormat(const ValueFormat &vf) : m_vf(vf)
{
    static const ParsedFormat none;
    const ParsedFormat &pf = vf.parsed ? *vf.parsed : none;
    const RegionalSettings &rs = vf.regional;
    if (vf.type == itNum) {
        m_kind = Kind::Number;
        for (const NumberSection &s : parseNumberPattern(vf.format))
            m_parts.push_back(compile(s));
        m_decimal = rs.decimalSeparator.unicode();
        m_thousands = rs.thousandsSeparator.unicode();
        // A decimal separator that toNumber would take for a sign, an exponent, a digit
        // or a blank to trim is left to it.
        const QChar d = rs.decimalSeparator;
        m_fast = !d.isNull() && !d.isSpace() && !isAsciiDigit(m_decimal)
            && !QStringView(u"+-eE").contains(d);
        const QChar from[3]
            = {pf.systemDecimalSeparator, pf.systemThousandsSeparator, QChar(Placeholder)};
        const QChar to[3] = {QChar(Placeholder), pf.thousandsSeparator, pf.decimalSeparator};
        for (int i = 0; i < 3; ++i) {
            const bool skipped = from[i].isNull() || to[i].isNull() || from[i] == to[i];
            m_passFrom[i] = skipped ? 0 : from[i].unicode();
            m_passTo[i] = to[i].unicode();
        }
    } else if (vf.type == itDate) {
        m_kind = Kind::Date;
        m_dateSteps = compileDate(vf.format, rs);
        m_dateSeparator = rs.dateSeparator.unicode();
        // A digit for a separator would split the parts of a date.
        m_fast = !isAsciiDigit(m_dateSeparator);
        if (!pf.systemDateSeparator.isNull() && !pf.dateSeparator.isNull()
            && pf.systemDateSeparator != pf.dateSeparator) {
            m_dateFrom = pf.systemDateSeparator.unicode();
            m_dateTo = pf.dateSeparator.unicode();
        }
        m_emptyDateText = pf.emptyDateText;
    }
}

QString CellFormat::format(const QString &value) const
{
    return format(QStringView(value));
}

QString CellFormat::format(QStringView value) const
{
    Buffer out;
    if (formatFast(value, out))
        return toQString(out);
    return displayText(value.toString(), m_vf);
}

bool CellFormat::formatFast(QStringView value, CellText &out) const
{
    out.clear();
    return m_kind == Kind::Number ? formatNumber(value, out)
                                  : m_kind == Kind::Date && formatDate(value, out);
}

bool CellFormat::formatFast(double value, CellText &out) const
{
    out.clear();
    if (m_kind != Kind::Number)
        return false;
    if (!std::isfinite(value))
        return true; // numberToString gives no text for it, and no text shows as none
    if (!m_fast)
        return false;
    Digits m;
    if (value != 0 && !digitsOf(std::fabs(value), m))
        return false;
    return renderNumber(value < 0 && m.count > 0, m, out);
}

bool CellFormat::formatNumber(QStringView value, CellText &out) const
{
    if (value.isEmpty())
        return true;
    bool negative = false;
    Digits m;
    if (!m_fast || !readNumber(value, m_decimal, negative, m))
        return false;
    return renderNumber(negative, m, out);
}

bool CellFormat::renderNumber(bool negative, Digits &m, CellText &buffer) const
{
    // formatNumber of Regional.cpp, on the digits.
    auto partFor = [&](bool minus, bool zero) -> size_t {
        size_t i = 0;
        if (zero && m_parts.size() >= 3)
            i = 2;
        else if (minus && !zero && m_parts.size() >= 2)
            i = 1;
        return m_parts[i].isEmpty ? 0 : i;
    };
    size_t index = partFor(negative, m.count == 0);
    if (m_parts[index].isEmpty) {
        writePlain(buffer, negative, m, m_decimal);
    } else {
        if (m_parts[index].percent && m.count > 0)
            m.point += 2;
        roundTo(m, m_parts[index].decimalPlaces);
        bool zeroSection = false;
        if (negative && m.count == 0) {
            negative = false;
            index = partFor(false, true);
            zeroSection = m_parts[index].isEmpty;
        }
        if (zeroSection) {
            buffer.append(u'0');
        } else {
            if (negative && index == 0)
                buffer.append(u'-');
            writeSection(buffer, m_parts[index], m, m_decimal, m_thousands);
        }
    }
    if (buffer.size() > MaxTextLength)
        return false; // displayText then replaces without looking at the neighbours

    // The three separator passes of displayText in one, from the right: a separator is
    // replaced when the character after it (as the pass before left it) is a digit or
    // "#", or when it is the last one.
    auto digitOrHash = [](char16_t c) {
        return isAsciiDigit(c) || c == u'#';
    };
    char16_t next[3] = {};
    for (qsizetype i = buffer.size() - 1; i >= 0; --i) {
        const bool last = i == buffer.size() - 1;
        char16_t c = buffer[i];
        if (c != m_passFrom[0] && c != m_passFrom[1] && c != m_passFrom[2]) {
            next[0] = next[1] = next[2] = c; // no pass touches it
            continue;
        }
        for (int pass = 0; pass < 3; ++pass) {
            const char16_t before = c;
            if (m_passFrom[pass] && c == m_passFrom[pass] && (last || digitOrHash(next[pass])))
                c = m_passTo[pass];
            next[pass] = before;
        }
        buffer[i] = c;
    }
    return true;
}

bool CellFormat::formatDate(QStringView value, CellText &buffer) const
{
    if (std::all_of(value.begin(), value.end(), [](QChar c) { return c == u' '; })) {
        buffer.append(reinterpret_cast<const char16_t *>(m_emptyDateText.constData()),
                      m_emptyDateText.size());
        return true;
    }
    int year = 0, month = 0, day = 0;
    if (!m_fast || !readDate(value, m_dateSeparator, m_vf.regional.dateOrder, year, month, day))
        return false;
    // Every step writes four units at most: written in place, then cut to length.
    buffer.resize(qsizetype(m_dateSteps.size()) * 4);
    char16_t *out = buffer.data();
    const auto two = [&out](int n) {
        *out++ = char16_t(u'0' + n / 10 % 10);
        *out++ = char16_t(u'0' + n % 10);
    };
    for (const DateStep &step : m_dateSteps) {
        switch (step.kind) {
        case DateStep::Literal:
            *out++ = step.literal;
            break;
        case DateStep::Day:
        case DateStep::Month: {
            const int n = step.kind == DateStep::Day ? day : month;
            if (n >= 10)
                *out++ = char16_t(u'0' + n / 10);
            *out++ = char16_t(u'0' + n % 10);
            break;
        }
        case DateStep::Day2:
            two(day);
            break;
        case DateStep::Month2:
            two(month);
            break;
        case DateStep::Year2:
            two(year % 100);
            break;
        case DateStep::Year4:
            two(year / 100);
            two(year % 100);
            break;
        }
    }
    buffer.resize(out - buffer.data());
    if (m_dateFrom)
        std::replace(buffer.begin(), buffer.end(), m_dateFrom, m_dateTo);
    if (buffer.size() < m_emptyDateText.size())
        buffer.insert(buffer.cbegin(), u' ');
    return true;
}

} // namespace velmora::detail
