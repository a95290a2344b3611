#include "Regional.h"
#include "Text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::detail {

namespace {

// ---------------------------------------------------------------------------------
// Decimal digits of a double
// ---------------------------------------------------------------------------------

// Numbers are shown with at most 15 significant digits, as the platform shows them:
// the binary noise beyond (0.1 + 0.2 == 0.30000000000000004) is neither shown nor
// rounded on.
constexpr int SignificantDigits = 15;

// A magnitude as decimal digits: value == 0.<digits> x 10^point, so `point` digits
// stand before the decimal point (point may be negative or exceed the digit count).
// The digits carry no leading or trailing zeros; zero has no digits at all.
struct Decimal
{
    std::string digits;
    int point = 0;

    bool isZero() const { return digits.empty(); }
};

void dropTrailingZeros(Decimal &d)
{
    while (!d.digits.empty() && d.digits.back() == '0')
        d.digits.pop_back();
    if (d.digits.empty())
        d.point = 0;
}

// |value| to 15 significant digits; value must be finite. to_chars is used because
// it ignores the C locale that Qt sets from the environment.
Decimal toDecimal(double value)
{
    Decimal d;
    if (value == 0)
        return d;
    char buf[64];
    const auto res = std::to_chars(buf, buf + sizeof buf, std::fabs(value),
                                   std::chars_format::scientific, SignificantDigits - 1);
    const std::string_view text(buf, res.ptr - buf); // "d.dddddddddddddde+XX"
    const size_t e = text.find('e');
    for (char c : text.substr(0, e))
        if (c != '.')
            d.digits += c;
    std::string_view exponent = text.substr(e + 1);
    if (!exponent.empty() && exponent.front() == '+')
        exponent.remove_prefix(1);
    int exp10 = 0;
    std::from_chars(exponent.data(), exponent.data() + exponent.size(), exp10);
    d.point = exp10 + 1;
    dropTrailingZeros(d);
    return d;
}

// Rounds to `places` decimals, half away from zero (the digits are a magnitude, so
// a 5 or more in the first dropped digit always rounds up).
void roundTo(Decimal &d, int places)
{
    const qint64 keep = qint64(d.point) + places;
    if (keep >= qint64(d.digits.size()))
        return;
    if (keep < 0) {
        d = {};
        return;
    }
    const bool up = d.digits[size_t(keep)] >= '5';
    d.digits.resize(size_t(keep));
    if (up) {
        qint64 i = keep - 1;
        while (i >= 0 && d.digits[size_t(i)] == '9')
            d.digits[size_t(i--)] = '0';
        if (i < 0) {
            d.digits.insert(d.digits.begin(), '1');
            ++d.point;
        } else {
            ++d.digits[size_t(i)];
        }
    }
    dropTrailingZeros(d);
}

// The digits before the decimal point, without leading zeros ("" below 1).
QString integerDigits(const Decimal &d)
{
    QString out;
    for (int i = 0; i < d.point; ++i)
        out += QLatin1Char(size_t(i) < d.digits.size() ? d.digits[size_t(i)] : '0');
    return out;
}

// The first `places` digits after the decimal point, zeros included.
QString fractionDigits(const Decimal &d, int places)
{
    QString out;
    out.reserve(places);
    for (int i = 0; i < places; ++i) {
        const qint64 at = qint64(d.point) + i;
        const bool inside = at >= 0 && at < qint64(d.digits.size());
        out += QLatin1Char(inside ? d.digits[size_t(at)] : '0');
    }
    return out;
}

// ---------------------------------------------------------------------------------
// Number patterns
// ---------------------------------------------------------------------------------

using Token = NumberToken;

// Splits at ";" outside quotes and escapes; only the first three sections count.
QList<QStringView> splitSections(QStringView pattern)
{
    QList<QStringView> sections;
    qsizetype start = 0;
    bool quoted = false;
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        const QChar c = pattern.at(i);
        if (quoted) {
            quoted = c != u'"';
        } else if (c == u'"') {
            quoted = true;
        } else if (c == u'\\') {
            ++i;
        } else if (c == u';') {
            sections.append(pattern.mid(start, i - start));
            start = i + 1;
        }
    }
    sections.append(pattern.mid(start));
    if (sections.size() > 3)
        sections.resize(3);
    return sections;
}

std::vector<Token> tokenize(QStringView section)
{
    std::vector<Token> tokens;
    bool pointSeen = false;
    for (qsizetype i = 0; i < section.size(); ++i) {
        const QChar c = section.at(i);
        if (c == u'\\') {
            // A backslash at the very end has nothing to escape and shows itself.
            tokens.push_back({Token::Text, QString(i + 1 < section.size() ? section.at(++i) : c)});
        } else if (c == u'"') {
            // An unclosed quote runs to the end of the section.
            qsizetype end = section.indexOf(u'"', i + 1);
            if (end < 0)
                end = section.size();
            tokens.push_back({Token::Text, section.mid(i + 1, end - i - 1).toString()});
            i = end;
        } else if (c == u'0' || c == u'#') {
            tokens.push_back({Token::Digit, QString(c)});
        } else if (c == u'.' && !pointSeen) {
            // Only the first point is the decimal point; a further one is plain text.
            pointSeen = true;
            tokens.push_back({Token::Point, {}});
        } else if (c == u',') {
            tokens.push_back({Token::Comma, QString(c)});
        } else if (c == u'%') {
            tokens.push_back({Token::Percent, QString(c)});
        } else {
            tokens.push_back({Token::Text, QString(c)});
        }
    }
    return tokens;
}

NumberSection parseSection(QStringView text)
{
    NumberSection s;
    s.isEmpty = text.isEmpty();
    s.tokens = tokenize(text);

    qsizetype firstInt = -1, lastInt = -1;
    int firstZeroPlace = 0; // 1-based integer place of the leftmost "0"
    bool afterPoint = false;
    for (size_t i = 0; i < s.tokens.size(); ++i) {
        const Token &t = s.tokens[i];
        if (t.kind == Token::Point) {
            afterPoint = true;
        } else if (t.kind == Token::Percent) {
            s.percent = true;
        } else if (t.kind == Token::Digit && !afterPoint) {
            if (firstInt < 0)
                firstInt = qsizetype(i);
            lastInt = qsizetype(i);
            ++s.integerPlaces;
            if (t.text == u'0' && firstZeroPlace == 0)
                firstZeroPlace = s.integerPlaces;
        } else if (t.kind == Token::Digit) {
            ++s.decimalPlaces;
            if (t.text == u'0')
                s.minDecimalDigits = s.decimalPlaces;
        }
    }
    // A "0" shows its digit and so forces every place to its right as well.
    s.minIntegerDigits = firstZeroPlace > 0 ? s.integerPlaces - firstZeroPlace + 1 : 0;

    // A comma among the integer places or right after them asks for grouping; any
    // other comma is plain text.
    auto onlyCommasBetween = [&](qsizetype from, qsizetype to) {
        return std::all_of(s.tokens.begin() + from + 1, s.tokens.begin() + to,
                           [](const Token &t) { return t.kind == Token::Comma; });
    };
    afterPoint = false;
    for (qsizetype i = 0; i < qsizetype(s.tokens.size()); ++i) {
        Token &t = s.tokens[size_t(i)];
        afterPoint = afterPoint || t.kind == Token::Point;
        if (t.kind != Token::Comma)
            continue;
        const bool grouping = !afterPoint && firstInt >= 0 && i > firstInt
            && (i < lastInt || onlyCommasBetween(lastInt, i));
        s.grouping = s.grouping || grouping;
        if (!grouping)
            t.kind = Token::Text;
    }
    return s;
}

// Writes a magnitude, already scaled and rounded, through a section.
QString renderSection(const NumberSection &s, const Decimal &magnitude, const RegionalSettings &rs)
{
    const bool showsDigits = s.integerPlaces + s.decimalPlaces > 0;
    QString whole = integerDigits(magnitude);
    if (whole.size() < s.minIntegerDigits)
        whole.prepend(QString(s.minIntegerDigits - whole.size(), QLatin1Char('0')));
    QString fraction = fractionDigits(magnitude, s.decimalPlaces);
    while (fraction.size() > s.minDecimalDigits && fraction.endsWith(QLatin1Char('0')))
        fraction.chop(1);

    const qsizetype length = whole.size();
    auto appendWhole = [&](QString &out, qsizetype from, qsizetype to) {
        for (qsizetype i = from; i < to; ++i) {
            out += whole.at(i);
            if (s.grouping && i < length - 1 && (length - 1 - i) % 3 == 0)
                out += rs.thousandsSeparator;
        }
    };

    // Integer places are filled from the right; the first place also takes every
    // digit the places cannot hold.
    const qsizetype surplus = length - s.integerPlaces;
    QString out;
    int integerPlace = 0, decimalPlace = 0;
    bool afterPoint = false;
    for (const Token &t : s.tokens) {
        switch (t.kind) {
        case Token::Digit:
            if (afterPoint) {
                if (decimalPlace < fraction.size())
                    out += fraction.at(decimalPlace);
                ++decimalPlace;
            } else {
                const qsizetype at = integerPlace++ + surplus;
                if (at >= 0)
                    appendWhole(out, at == surplus && surplus > 0 ? 0 : at, at + 1);
            }
            break;
        case Token::Point:
            // Without integer places the integer digits stand right before the point.
            if (s.integerPlaces == 0 && showsDigits)
                appendWhole(out, 0, length);
            out += rs.decimalSeparator;
            afterPoint = true;
            break;
        case Token::Comma:
            break;
        case Token::Percent:
        case Token::Text:
            out += t.text;
            break;
        }
    }
    return out;
}

// ---------------------------------------------------------------------------------
// Lenient reading
// ---------------------------------------------------------------------------------

bool isAsciiDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

// The blanks that regional settings use between thousands.
bool isBlankSeparator(QChar c)
{
    return c == u' ' || c == QChar(0x00A0) || c == QChar(0x202F);
}

// The decimal exponent of the first significant digit of whole.fraction x 10^exponent
// (saturated far beyond any double); the digits must not all be zeros.
qint64 leadingExponent(const std::string &whole, const std::string &fraction,
                       const std::string &exponent, bool negativeExponent)
{
    qint64 e = 0;
    for (char c : exponent)
        e = std::min<qint64>(e * 10 + (c - '0'), 1'000'000'000);
    const size_t lead = whole.find_first_not_of('0');
    const qint64 position = lead != std::string::npos
        ? qint64(whole.size() - lead) - 1
        : -qint64(fraction.find_first_not_of('0')) - 1;
    return position + (negativeExponent ? -e : e);
}

// ---------------------------------------------------------------------------------
// Dates
// ---------------------------------------------------------------------------------

// Days since 1970-01-01 of a proleptic Gregorian date with a year 0 (1 BC); exact on
// 64 bits for any int year and any month 1..12.
qint64 daysFromCivil(qint64 y, int m, int d)
{
    y -= m <= 2;
    const qint64 era = (y >= 0 ? y : y - 399) / 400;
    const qint64 yearOfEra = y - era * 400;
    const qint64 dayOfYear = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const qint64 dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + dayOfEra - 719468;
}

constexpr qint64 JulianDayOf1970 = 2440588;

QString fourDigitYear(int year)
{
    const QString digits = QString::number(std::abs(year)).rightJustified(4, QLatin1Char('0'));
    return year < 0 ? QLatin1Char('-') + digits : digits;
}

// Pattern letters are ASCII in either case; no other letter may stand for them.
char16_t asciiLower(QChar c)
{
    return c >= u'A' && c <= u'Z' ? char16_t(c.unicode() + 32) : c.unicode();
}

// Two-digit years are read as 1930..2029.
int widenYear(int year)
{
    return year >= 30 ? 1900 + year : 2000 + year;
}

} // namespace

// ---------------------------------------------------------------------------------
// Formatting
// ---------------------------------------------------------------------------------

std::vector<NumberSection> parseNumberPattern(const QString &pattern)
{
    std::vector<NumberSection> sections;
    for (QStringView t : splitSections(pattern))
        sections.push_back(parseSection(t));
    return sections;
}

QString formatNumber(double value, const QString &pattern, const RegionalSettings &rs)
{
    if (!std::isfinite(value))
        return {};
    if (pattern.isEmpty())
        return numberToString(value, rs);

    const std::vector<NumberSection> sections = parseNumberPattern(pattern);

    auto sectionFor = [&](bool negative, bool zero) -> size_t {
        size_t i = 0;
        if (zero && sections.size() >= 3)
            i = 2;
        else if (negative && !zero && sections.size() >= 2)
            i = 1;
        return sections[i].isEmpty ? 0 : i;
    };
    auto scaledAndRounded = [&](const NumberSection &s) {
        Decimal d = toDecimal(value);
        if (s.percent && !d.isZero())
            d.point += 2;
        roundTo(d, s.decimalPlaces);
        return d;
    };

    bool negative = value < 0;
    size_t index = sectionFor(negative, value == 0);
    // An empty first section gives the plain form, as an empty pattern does.
    if (sections[index].isEmpty)
        return numberToString(value, rs);
    Decimal magnitude = scaledAndRounded(sections[index]);
    // A negative value too small for its section's decimals is shown as zero is.
    if (negative && magnitude.isZero()) {
        negative = false;
        index = sectionFor(false, true);
        if (sections[index].isEmpty)
            return numberToString(0, rs);
        magnitude = {};
    }
    const NumberSection &section = sections[index];

    QString out = renderSection(section, magnitude, rs);
    // Only the negative section writes its own sign; the first one standing in for
    // it gets a minus in front.
    if (negative && index == 0)
        out.prepend(QLatin1Char('-'));
    return out;
}

QString formatDate(const QDate &date, const QString &pattern, const RegionalSettings &rs)
{
    if (!date.isValid())
        return {};
    if (pattern.isEmpty())
        return dateToString(date, rs);

    QString out;
    for (qsizetype i = 0; i < pattern.size();) {
        const char16_t letter = asciiLower(pattern.at(i));
        if (letter != u'd' && letter != u'm' && letter != u'y') {
            out += pattern.at(i) == u'/' ? rs.dateSeparator : pattern.at(i);
            ++i;
            continue;
        }
        qsizetype run = 0;
        while (i < pattern.size() && asciiLower(pattern.at(i)) == letter)
            ++i, ++run;
        if (letter == u'd')
            out += run == 1 ? QString::number(date.day()) : twoDigits(date.day());
        else if (letter == u'm')
            out += run == 1 ? QString::number(date.month()) : twoDigits(date.month());
        else
            out += run <= 2 ? twoDigits(std::abs(date.year()) % 100) : fourDigitYear(date.year());
    }
    return out;
}

QString formatString(const QString &value, const QString &pattern)
{
    bool leftToRight = false;
    enum { Keep, Lower, Upper } caseMapping = Keep;
    qsizetype placeholders = 0;
    for (QChar c : pattern) {
        if (c == u'!')
            leftToRight = true;
        else if (c == u'<')
            caseMapping = Lower; // the last of "<" and ">" wins
        else if (c == u'>')
            caseMapping = Upper;
        else if (c == u'@' || c == u'&')
            ++placeholders;
    }

    const QString mapped = caseMapping == Lower ? value.toLower()
        : caseMapping == Upper                  ? value.toUpper()
                                                : value;
    // Whole characters: a surrogate pair stays together in one placeholder.
    QList<QStringView> chars;
    for (qsizetype i = 0; i < mapped.size(); ++i) {
        const bool pair = mapped.at(i).isHighSurrogate() && i + 1 < mapped.size()
            && mapped.at(i + 1).isLowSurrogate();
        chars.append(QStringView(mapped).mid(i, pair ? 2 : 1));
        i += pair ? 1 : 0;
    }

    const qsizetype leftOver = std::max<qsizetype>(0, chars.size() - placeholders);
    // From the left placeholder k takes character k; from the right the last
    // placeholder takes the last character, so the characters are shifted by offset.
    const qsizetype offset = leftToRight ? 0 : chars.size() - placeholders;

    QString out;
    auto appendChars = [&](qsizetype from, qsizetype to) {
        for (qsizetype i = from; i < to; ++i)
            out += chars.at(i);
    };
    if (!leftToRight && placeholders > 0)
        appendChars(0, leftOver);
    qsizetype place = 0;
    for (QChar c : pattern) {
        if (c == u'!' || c == u'<' || c == u'>')
            continue;
        if (c != u'@' && c != u'&') {
            out += c;
            continue;
        }
        const qsizetype at = place++ + offset;
        if (at >= 0 && at < chars.size())
            out += chars.at(at);
        else if (c == u'@')
            out += QLatin1Char(' ');
    }
    if (leftToRight || placeholders == 0)
        appendChars(chars.size() - leftOver, chars.size());
    return out;
}

QString formatNumberText(const QString &value, const QString &pattern, const RegionalSettings &rs)
{
    const std::optional<double> number = toNumber(value, rs);
    return number ? formatNumber(*number, pattern, rs) : value;
}

QString formatDateText(const QString &value, const QString &pattern, const RegionalSettings &rs)
{
    const std::optional<QDate> date = toDate(value, rs);
    return date ? formatDate(*date, pattern, rs) : value;
}

// ---------------------------------------------------------------------------------
// Lenient conversions
// ---------------------------------------------------------------------------------

std::optional<double> toNumber(const QString &text, const RegionalSettings &rs)
{
    // trimmed() takes every Unicode blank, the no-break spaces included.
    QStringView s = QStringView(text).trimmed();
    bool negative = false, signed_ = false;
    if (!s.isEmpty() && (s.front() == u'-' || s.front() == u'+')) {
        negative = s.front() == u'-';
        signed_ = true;
        s = s.sliced(1);
    }
    if (!s.isEmpty() && (s.back() == u'-' || s.back() == u'+')) {
        if (signed_)
            return std::nullopt;
        negative = s.back() == u'-';
        s.chop(1);
    }

    const QChar decimal = rs.decimalSeparator;
    const QChar thousands = rs.thousandsSeparator;
    // When both separators are one character it can only be the decimal point.
    const bool grouped = thousands != decimal;
    const bool blankGroups = isBlankSeparator(thousands);
    // A blank decimal separator stays the decimal point even when the thousands
    // separator is another blank.
    auto isGroup = [&](QChar c) {
        return grouped && c != decimal && (c == thousands || (blankGroups && isBlankSeparator(c)));
    };

    qsizetype i = 0;
    const qsizetype n = s.size();
    auto takeDigits = [&](std::string &into) {
        for (; i < n && isAsciiDigit(s.at(i)); ++i)
            into += char(s.at(i).unicode());
    };

    std::string whole, fraction, exponent;
    while (i < n) {
        takeDigits(whole);
        // A thousands separator only stands between two digits.
        if (!whole.empty() && i + 1 < n && isGroup(s.at(i)) && isAsciiDigit(s.at(i + 1)))
            ++i;
        else
            break;
    }
    if (i < n && s.at(i) == decimal) {
        ++i;
        takeDigits(fraction);
    }
    if (whole.empty() && fraction.empty())
        return std::nullopt;
    bool negativeExponent = false;
    if (i < n && (s.at(i) == u'e' || s.at(i) == u'E')) {
        ++i;
        if (i < n && (s.at(i) == u'+' || s.at(i) == u'-'))
            negativeExponent = s.at(i++) == u'-';
        takeDigits(exponent);
        if (exponent.empty())
            return std::nullopt;
    }
    if (i != n)
        return std::nullopt;

    // Rebuilt in the plain C form that from_chars reads (it ignores the C locale).
    std::string plain = (negative ? "-" : "") + (whole.empty() ? "0" : whole);
    if (!fraction.empty())
        plain += '.' + fraction;
    if (!exponent.empty())
        plain += (negativeExponent ? "e-" : "e") + exponent;
    double value = 0;
    const auto res = std::from_chars(plain.data(), plain.data() + plain.size(), value);
    if (res.ec == std::errc::result_out_of_range) {
        // Out of range either way: too small a number is zero, too large is none.
        if (leadingExponent(whole, fraction, exponent, negativeExponent) >= 0)
            return std::nullopt;
        value = 0;
    } else if (res.ec != std::errc() || res.ptr != plain.data() + plain.size()) {
        return std::nullopt;
    }
    if (!std::isfinite(value))
        return std::nullopt;
    return value == 0 ? 0.0 : value; // no negative zero
}

bool isNumeric(const QString &text, const RegionalSettings &rs)
{
    return toNumber(text, rs).has_value();
}

std::optional<QDate> toDate(const QString &text, const RegionalSettings &rs)
{
    auto isSeparator = [&](QChar c) {
        return c == rs.dateSeparator || c == u'/' || c == u'-' || c == u'.';
    };
    struct Part
    {
        int value = 0;
        qsizetype length = 0;
    };
    Part parts[3];
    int count = 0;
    qsizetype start = 0;
    // Trimmed first, so that blanks around the date are not taken for a separator
    // that is itself a blank.
    const QStringView date = QStringView(text).trimmed();
    for (qsizetype i = 0; i <= date.size(); ++i) {
        if (i < date.size() && !isSeparator(date.at(i)))
            continue;
        if (count == 3)
            return std::nullopt;
        const QStringView digits = date.mid(start, i - start).trimmed();
        // Four digits are the most any part has; longer ones cannot be a date.
        if (digits.isEmpty() || digits.size() > 4)
            return std::nullopt;
        for (QChar c : digits) {
            if (!isAsciiDigit(c))
                return std::nullopt;
            parts[count].value = parts[count].value * 10 + c.digitValue();
        }
        parts[count++].length = digits.size();
        start = i + 1;
    }
    if (count != 3)
        return std::nullopt;

    auto dateIn = [&](int y, int m, int d) -> std::optional<QDate> {
        const int year = parts[y].length <= 2 ? widenYear(parts[y].value) : parts[y].value;
        const QDate date(year, parts[m].value, parts[d].value);
        return date.isValid() ? std::optional<QDate>(date) : std::nullopt;
    };
    // A four-digit first part can only be a year: the ISO form.
    if (parts[0].length == 4)
        return dateIn(0, 1, 2);
    switch (rs.dateOrder) {
    case RegionalSettings::YearMonthDay:
        return dateIn(0, 1, 2);
    case RegionalSettings::DayMonthYear:
        if (auto date = dateIn(2, 1, 0))
            return date;
        return dateIn(2, 0, 1);
    case RegionalSettings::MonthDayYear:
        if (auto date = dateIn(2, 0, 1))
            return date;
        return dateIn(2, 1, 0);
    }
    return std::nullopt;
}

bool isDate(const QString &text, const RegionalSettings &rs)
{
    return toDate(text, rs).has_value();
}

// ---------------------------------------------------------------------------------
// Plain conversions
// ---------------------------------------------------------------------------------

QString numberToString(double value, const RegionalSettings &rs)
{
    if (!std::isfinite(value))
        return {};
    const Decimal d = toDecimal(value);
    if (d.isZero())
        return QStringLiteral("0");

    QString out;
    if (value < 0)
        out += QLatin1Char('-');
    if (d.point > SignificantDigits) {
        // From 1e15 on the exponent form: one digit before the point.
        out += QLatin1Char(d.digits.front());
        if (d.digits.size() > 1) {
            out += rs.decimalSeparator;
            out += QLatin1String(d.digits.data() + 1, qsizetype(d.digits.size() - 1));
        }
        out += QStringLiteral("E+") + twoDigits(d.point - 1);
        return out;
    }
    const QString whole = integerDigits(d);
    out += whole.isEmpty() ? QStringLiteral("0") : whole;
    const int decimals = int(d.digits.size()) - d.point;
    if (decimals > 0) {
        out += rs.decimalSeparator;
        out += fractionDigits(d, decimals);
    }
    return out;
}

QString dateToString(const QDate &date, const RegionalSettings &rs)
{
    if (!date.isValid())
        return {};
    const QString d = twoDigits(date.day());
    const QString m = twoDigits(date.month());
    const QString y = fourDigitYear(date.year());
    const QChar sep = rs.dateSeparator;
    switch (rs.dateOrder) {
    case RegionalSettings::DayMonthYear:
        return d + sep + m + sep + y;
    case RegionalSettings::MonthDayYear:
        return m + sep + d + sep + y;
    case RegionalSettings::YearMonthDay:
        return y + sep + m + sep + d;
    }
    return {};
}

QDate makeDate(int year, int month, int day)
{
    // All arithmetic on 64 bits: months carry into years, then the day counts from
    // the 1st of the month, so no int argument can overflow.
    const qint64 months = qint64(year) * 12 + (qint64(month) - 1);
    const qint64 y = months >= 0 ? months / 12 : -((-months + 11) / 12);
    const int m = int(months - y * 12) + 1;
    const qint64 julianDay = daysFromCivil(y, m, 1) + JulianDayOf1970 + (qint64(day) - 1);

    static const qint64 first = QDate(100, 1, 1).toJulianDay();
    static const qint64 last = QDate(9999, 12, 31).toJulianDay();
    if (julianDay < first || julianDay > last)
        return {};
    return QDate::fromJulianDay(julianDay);
}

} // namespace velmora::detail
