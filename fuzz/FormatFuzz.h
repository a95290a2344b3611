#pragma once

// Random inputs for the regional services and the four format parsers, shared by the
// seeded fuzz test and the libFuzzer targets. A check draws its inputs from a source
// of small numbers (pick(n) gives 0 to n - 1) and returns an empty text when every
// property holds, else what broke and the inputs that broke it. The properties are
// the promises of docs/regional.md and of the parsers' headers: results stay in
// bounds, a text written from a value reads back as that value, and what a parser
// leaves behind parses to the same result again.

#include "format/FormatParser.h"
#include "format/Regional.h"

#include <velmora/StrF.h>

#include <QtCore/QHash>
#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>

namespace velmora::test::formatfuzz {

using namespace velmora::detail;
using Pick = std::function<int(int)>;

// ---------------------------------------------------------------------------------
// Reports
// ---------------------------------------------------------------------------------

// A text as it can be pasted into a test: printable ASCII as it is, the rest escaped.
inline QString show(const QString &text)
{
    QString out = QStringLiteral("\"");
    for (const QChar c : QStringView(text).left(120)) {
        if (c.unicode() >= 0x20 && c.unicode() < 0x7f && c != u'"' && c != u'\\')
            out += c;
        else
            out += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
    }
    if (text.size() > 120)
        out += QStringLiteral("...(%1 characters)").arg(text.size());
    return out + u'"';
}
inline QString show(QChar c)
{
    return show(QString(c));
}
inline QString show(double value)
{
    return QString::number(value, 'g', 17);
}
inline QString show(const std::optional<double> &value)
{
    return value ? show(*value) : QStringLiteral("none");
}
inline QString show(QDate date)
{
    return date.isValid()
        ? QStringLiteral("%1-%2-%3").arg(date.year()).arg(date.month()).arg(date.day())
        : QStringLiteral("invalid");
}
inline QString show(const RegionalSettings &rs)
{
    static const char *const orders[] = {"dmy", "mdy", "ymd"};
    return QStringLiteral("{%1 %2 %3 %4}")
        .arg(show(rs.decimalSeparator), show(rs.thousandsSeparator), show(rs.dateSeparator),
             QLatin1String(orders[rs.dateOrder]));
}

// What broke, and the inputs that broke it.
inline QString broke(const char *what, const QStringList &inputs)
{
    return QLatin1String(what) + QStringLiteral(": ") + inputs.join(QStringLiteral(", "));
}

// For the libFuzzer targets: a broken property aborts with its report.
inline int abortIfBroken(const QString &broken)
{
    if (!broken.isEmpty()) {
        std::fprintf(stderr, "%s\n", qPrintable(broken));
        std::abort();
    }
    return 0;
}

// ---------------------------------------------------------------------------------
// Inputs
// ---------------------------------------------------------------------------------

inline QChar oneOf(const Pick &pick, QStringView chars)
{
    return chars.at(pick(int(chars.size())));
}

inline QString textFrom(const Pick &pick, QStringView chars, int maxLength)
{
    QString text;
    for (int n = pick(maxLength + 1); n > 0; --n)
        text += oneOf(pick, chars);
    return text;
}

inline std::string asciiDigits(const Pick &pick, int count)
{
    std::string digits;
    for (int i = 0; i < count; ++i)
        digits += char('0' + pick(10));
    return digits;
}

inline bool isBlank(QChar c)
{
    return c == u' ' || c == QChar(0x00A0) || c == QChar(0x202F);
}

// The two sets of the documentation, and random ones. The random separators are
// characters a regional setting could name, but never digits, signs or the exponent
// letter, which no setting uses for a separator.
inline RegionalSettings randomSettings(const Pick &pick)
{
    switch (pick(5)) {
    case 0:
        return RegionalSettings::czech();
    case 1:
        return RegionalSettings::czech(QLatin1Char(' '));
    case 2:
        return RegionalSettings::english();
    default:
        break;
    }
    static const QString numberSeparators = QStringLiteral(",. '_\u016f\u00a0\u202f");
    static const QString dateSeparators = QStringLiteral("./- ,:\u016f\u00a0");
    RegionalSettings rs;
    rs.decimalSeparator = oneOf(pick, numberSeparators);
    rs.thousandsSeparator = oneOf(pick, numberSeparators);
    rs.dateSeparator = oneOf(pick, dateSeparators);
    rs.dateOrder = RegionalSettings::DateOrder(pick(3));
    return rs;
}

// A number of at most 15 significant digits between 1e-320 and 1e295: the double
// nearest to those digits, which numberToString writes again.
// decimals receives the number of decimal places of those digits.
inline double shortDecimal(const Pick &pick, int &decimals)
{
    std::string digits = asciiDigits(pick, 1 + pick(15));
    int exponent = pick(4) ? pick(13) - 6 : pick(601) - 320; // of the last digit
    if (pick(3) == 0)
        exponent = -int(digits.size()) + 1 + pick(3); // a few integer digits at most
    decimals = std::max(0, -exponent);
    const std::string text = digits + 'e' + std::to_string(exponent);
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return pick(2) ? -value : value;
}

// Any double: from its bits (NaN and infinities included), a short decimal, a
// quotient that needs all 17 digits, or zero.
inline double randomNumber(const Pick &pick, bool &exact, int &decimals)
{
    exact = false;
    decimals = 0;
    switch (pick(4)) {
    case 0: {
        quint64 bits = 0;
        for (int i = 0; i < 4; ++i)
            bits = bits << 16 | quint64(pick(1 << 16));
        return std::bit_cast<double>(bits);
    }
    case 1:
        return double(pick(100000) - 50000) / double(1 + pick(999));
    case 2:
        exact = true;
        return pick(8) ? shortDecimal(pick, decimals) : 0.0;
    default:
        exact = true;
        return shortDecimal(pick, decimals);
    }
}

inline QDate randomDate(const Pick &pick)
{
    int year = 1 + pick(9999);
    if (pick(2))
        year = pick(2) ? 1930 + pick(100) : 1 + pick(200);
    const int month = 1 + pick(12);
    return QDate(year, month, 1 + pick(QDate(year, month, 1).daysInMonth()));
}

// ---------------------------------------------------------------------------------
// Reading numbers
// ---------------------------------------------------------------------------------

// The largest magnitude whose 15-digit text is still a double: numberToString of
// anything larger rounds past the largest double and reads as nothing.
constexpr double LargestReadable = 1.79769313486231e308;

inline bool sameNumber(const std::optional<double> &a, const std::optional<double> &b)
{
    return a.has_value() == b.has_value()
        && (!a || (*a == *b && std::signbit(*a) == std::signbit(*b)));
}

// A number as the lenient reader must take it, with the value it stands for: a sign
// in front or at the end, blanks around, thousands separators between any two
// integer digits, a decimal separator with digits on either side, an exponent.
// Magnitudes stay between 1e-300 and 1e300, where every such text is a double.
struct WrittenNumber
{
    QString text;
    double value = 0;
};

inline WrittenNumber writeNumber(const Pick &pick, const RegionalSettings &rs)
{
    const QChar decimal = rs.decimalSeparator, thousands = rs.thousandsSeparator;
    std::string whole = asciiDigits(pick, pick(4) ? pick(8) : pick(21));
    std::string fraction = asciiDigits(pick, pick(2) ? pick(6) : pick(21));
    // Blanks around a text are not part of it: a blank decimal separator needs digits
    // on both sides.
    if (whole.empty() || (fraction.empty() && isBlank(decimal)))
        whole += char('0' + pick(10));
    if (isBlank(decimal) && fraction.empty() && pick(2))
        fraction = "5";
    const bool point = !fraction.empty() || pick(2);
    const int exponent = pick(3) == 0 ? pick(561) - 280 : 0;

    std::string plain = whole + (fraction.empty() ? "" : "." + fraction);
    if (exponent != 0)
        plain += 'e' + std::to_string(exponent);
    WrittenNumber n;
    std::from_chars(plain.data(), plain.data() + plain.size(), n.value);

    for (size_t i = 0; i < whole.size(); ++i) {
        if (i > 0 && thousands != decimal && pick(4) == 0) {
            // Any of the three blanks stands for a blank thousands separator, but
            // never the decimal separator itself.
            QChar group = thousands;
            if (isBlank(thousands))
                group = oneOf(pick, QStringLiteral(" \u00a0\u202f"));
            if (group != decimal)
                n.text += group;
        }
        n.text += QLatin1Char(whole[i]);
    }
    if (point)
        n.text += decimal + QString::fromStdString(fraction);
    if (exponent != 0 || pick(8) == 0) {
        n.text += oneOf(pick, u"eE");
        if (exponent < 0)
            n.text += u'-';
        else if (pick(2))
            n.text += u'+';
        n.text += QString(pick(2), u'0') + QString::number(std::abs(exponent));
    }
    const int sign = pick(5);
    if (sign == 1 || sign == 3)
        n.value = -n.value;
    if (sign > 0) {
        const QChar c = sign == 1 || sign == 3 ? u'-' : u'+';
        n.text = sign <= 2 ? c + n.text : n.text + c;
    }
    if (n.value == 0)
        n.value = 0; // no negative zero
    n.text = textFrom(pick, u" \u00a0\t", 2) + n.text + textFrom(pick, u" \u00a0\t", 2);
    return n;
}

// The grammar of docs/regional.md as a regular expression, which tells numbers from
// other texts without sharing any code with the reader: one sign in front or at the
// end, integer digits with thousands separators between them, a decimal separator
// with digits on at least one side, an exponent. Blanks around are trimmed first.
inline const QRegularExpression &numberGrammar(const RegionalSettings &rs)
{
    const QChar decimal = rs.decimalSeparator, thousands = rs.thousandsSeparator;
    // Built once per pair of separators: compiling it costs more than the checks.
    static QHash<quint32, QRegularExpression> built;
    QRegularExpression &grammar = built[quint32(decimal.unicode()) << 16 | thousands.unicode()];
    if (!grammar.pattern().isEmpty())
        return grammar;
    QStringList groups;
    const QString groupChars
        = isBlank(thousands) ? QStringLiteral(" \u00a0\u202f") : QString(thousands);
    for (const QChar c : groupChars) {
        if (thousands != decimal && c != decimal)
            groups << QRegularExpression::escape(QString(c));
    }
    const QString point = QRegularExpression::escape(QString(decimal));
    const QString integer = groups.isEmpty()
        ? QStringLiteral("[0-9]+")
        : QStringLiteral("[0-9](?:(?:%1)?[0-9])*").arg(groups.join(u'|'));
    const QString body
        = QStringLiteral("(?:%1(?:%2[0-9]*)?|%2[0-9]+)(?:[eE][+-]?[0-9]+)?").arg(integer, point);
    grammar.setPattern(QStringLiteral("^(?:[+-]?%1|%1[+-])$").arg(body));
    return grammar;
}

// Roughly the decimal exponent of a number's text: its integer digits and the
// exponent. Only large values of it matter, for numbers too large for a double.
inline int roughExponent(const QString &text)
{
    int digits = 0, exponent = 0;
    bool inExponent = false, leading = true, negative = false;
    QChar previous;
    for (const QChar c : text) {
        if (c == u'e' || c == u'E')
            inExponent = true;
        else if (c == u'-' && (previous == u'e' || previous == u'E'))
            negative = true;
        else if (inExponent && c.isDigit())
            exponent = std::min(exponent * 10 + c.digitValue(), 100000);
        else if (!inExponent && c.isDigit() && !(leading && c == u'0'))
            ++digits, leading = false;
        previous = c;
    }
    return digits + (negative ? -exponent : exponent);
}

// toNumber on well-formed numbers, on the same spoilt by a character or two, and on
// random texts: it takes what the grammar allows and reads it right, blanks around
// and a sign added leave a number as it was, and its text from numberToString reads
// back as a number with that very text.
inline QString checkNumberReading(const Pick &pick)
{
    const RegionalSettings rs = randomSettings(pick);
    const QString chars = QStringLiteral("00112233445566778899,.,.  +-eE\u00a0\u202f'x\u0661")
        + rs.decimalSeparator + rs.thousandsSeparator;
    std::optional<double> expected;
    QString text;
    if (pick(3)) {
        const WrittenNumber n = writeNumber(pick, rs);
        text = n.text;
        if (pick(2))
            expected = n.value;
        else if (pick(2))
            text.insert(pick(int(text.size()) + 1), oneOf(pick, chars));
        else if (!text.isEmpty())
            text.remove(pick(int(text.size())), 1);
    } else {
        text = textFrom(pick, chars, 14);
    }
    const auto input = [&] {
        return QStringList {show(text), show(rs)};
    };

    const std::optional<double> got = toNumber(text, rs);
    if (expected && !sameNumber(got, expected))
        return broke("misread",
                     input() << show(got) << QStringLiteral("expected ") + show(expected));
    const bool grammatical = numberGrammar(rs).match(text.trimmed()).hasMatch();
    if (got.has_value() != grammatical && !(grammatical && roughExponent(text) > 300))
        return broke(grammatical ? "number refused" : "no number accepted", input());
    if (isNumeric(text, rs) != got.has_value())
        return broke("isNumeric differs from toNumber", input());
    if (!got)
        return formatNumberText(text, QStringLiteral("0.0"), rs) == text
            ? QString()
            : broke("formatNumberText changed a text that is no number", input());

    const double v = *got;
    if (!std::isfinite(v) || (v == 0 && std::signbit(v)))
        return broke("not a finite number", input() << show(v));
    const QString blanks = QStringLiteral(" \u00a0\t");
    if (!sameNumber(toNumber(blanks + text + blanks, rs), got))
        return broke("blanks around changed the number", input());
    const QString t = text.trimmed();
    const auto isSign = [](QChar c) {
        return c == u'-' || c == u'+';
    };
    if (!isSign(t.front()) && !isSign(t.back())) {
        const double negated = v == 0 ? 0.0 : -v;
        if (!sameNumber(toNumber(u'-' + t, rs), negated)
            || !sameNumber(toNumber(t + u'-', rs), negated)
            || !sameNumber(toNumber(u'+' + t, rs), v))
            return broke("a sign read wrong", input());
        if (toNumber(u'-' + t + u'-', rs))
            return broke("two signs accepted", input());
    }
    if (std::fabs(v) <= LargestReadable) {
        const QString plain = numberToString(v, rs);
        const std::optional<double> back = toNumber(plain, rs);
        if (!back || numberToString(*back, rs) != plain)
            return broke("numberToString does not read back", input() << show(plain));
    }
    return {};
}

// ---------------------------------------------------------------------------------
// Numbers written and read back
// ---------------------------------------------------------------------------------

// A pattern that writes a number toNumber reads: digit places with a "0" last before
// the point, grouping when the settings can tell groups from decimals, decimal places.
struct PlainPattern
{
    QString text;
    QString ungrouped; // the same without the grouping
    int decimals = 0;
};

inline PlainPattern plainPattern(const Pick &pick, const RegionalSettings &rs)
{
    PlainPattern p;
    const QString integer = QString(pick(2), u'#') + QString(1 + pick(3), u'0');
    const int zeros = pick(4), hashes = pick(3);
    p.decimals = zeros + hashes;
    QString fraction;
    if (p.decimals > 0 || pick(4) == 0)
        fraction = u'.' + QString(zeros, u'0') + QString(hashes, u'#');
    p.ungrouped = integer + fraction;
    const bool grouping = rs.thousandsSeparator != rs.decimalSeparator && pick(2);
    p.text = (grouping ? QStringLiteral("#,##") : QString()) + p.ungrouped;
    return p;
}

// numberToString and formatNumber with a plain pattern, read back by toNumber: a
// short decimal comes back exactly, any other double as the nearest 15-digit number
// (and within half the pattern's last place).
inline QString checkNumberRoundTrip(const Pick &pick)
{
    const RegionalSettings rs = randomSettings(pick);
    bool exact = false;
    int decimals = 0;
    const double x = randomNumber(pick, exact, decimals);
    const PlainPattern pattern = plainPattern(pick, rs);
    const auto input = [&] {
        return QStringList {show(x), show(rs), show(pattern.text)};
    };

    const QString plain = numberToString(x, rs);
    const QString formatted = formatNumber(x, pattern.text, rs);
    if (!std::isfinite(x))
        return plain.isEmpty() && formatted.isEmpty() ? QString()
                                                      : broke("text for no number", input());
    if (plain.isEmpty() || formatted.isEmpty())
        return broke("no text for a number", input());
    if (rs.thousandsSeparator != rs.decimalSeparator && plain.contains(rs.thousandsSeparator))
        return broke("numberToString grouped", input() << show(plain));
    const QString mantissa = plain.left(plain.indexOf(u'E'));
    QString digits;
    for (const QChar c : mantissa) {
        if (c.isDigit() && !(digits.isEmpty() && c == u'0'))
            digits += c;
    }
    if (digits.size() > 15 || (mantissa.contains(rs.decimalSeparator) && mantissa.endsWith(u'0')))
        return broke("numberToString wrote more than 15 digits or a trailing zero",
                     input() << show(plain));

    if (std::fabs(x) <= LargestReadable) {
        const std::optional<double> back = toNumber(plain, rs);
        if (!back || (exact && *back != x) || std::fabs(*back - x) > std::fabs(x) * 1e-14)
            return broke("numberToString read back wrong", input() << show(plain) << show(back));
    }

    QString ungrouped = formatted;
    if (pattern.text != pattern.ungrouped)
        ungrouped.remove(rs.thousandsSeparator);
    if (ungrouped != formatNumber(x, pattern.ungrouped, rs))
        return broke("grouping did more than insert separators", input() << show(formatted));
    if (x >= 1 && formatNumber(-x, pattern.text, rs) != u'-' + formatted)
        return broke("negative is not the positive with a minus", input() << show(formatted));

    if (std::fabs(x) <= 1e300) {
        const std::optional<double> back = toNumber(formatted, rs);
        const double step = std::pow(10.0, -pattern.decimals) / 2;
        if (!back || std::fabs(*back - x) > step * (1 + 1e-9) + std::fabs(x) * 1e-14
            || (exact && decimals <= pattern.decimals && *back != x))
            return broke("formatted number read back wrong",
                         input() << show(formatted) << show(back));
    }
    return {};
}

// ---------------------------------------------------------------------------------
// Dates
// ---------------------------------------------------------------------------------

inline int widenedYear(int year)
{
    return year % 100 >= 30 ? 1900 + year % 100 : 2000 + year % 100;
}

// A pattern of the given letters in the regional order, with "/" between them.
inline QString inOrder(RegionalSettings::DateOrder order, const char *day, const char *month,
                       const char *year)
{
    const QString d = QLatin1String(day), m = QLatin1String(month), y = QLatin1String(year);
    switch (order) {
    case RegionalSettings::DayMonthYear:
        return d + u'/' + m + u'/' + y;
    case RegionalSettings::MonthDayYear:
        return m + u'/' + d + u'/' + y;
    case RegionalSettings::YearMonthDay:
        break;
    }
    return y + u'/' + m + u'/' + d;
}

// toDate on random texts and on dates written in many ways: what it accepts is a
// real date of years 1 to 9999, blanks around and any of "/", "-", "." between the
// numbers leave it as it was, and dateToString of it reads back as it.
inline QString checkDateReading(const Pick &pick)
{
    const RegionalSettings rs = randomSettings(pick);
    QString text;
    if (pick(2)) {
        const QString chars
            = QStringLiteral("0011223344556677889901239./-  ,x\u00a0") + rs.dateSeparator;
        text = textFrom(pick, chars, 14);
    } else {
        // A date with random separators and blanks, and parts of any length.
        for (int part = 0; part < 3; ++part) {
            if (part > 0)
                text += oneOf(pick, QStringLiteral("./-") + rs.dateSeparator);
            text += textFrom(pick, u" ", 1) + QString::fromStdString(asciiDigits(pick, 1 + pick(4)))
                + textFrom(pick, u" ", 1);
        }
    }
    const auto input = [&] {
        return QStringList {show(text), show(rs)};
    };

    const std::optional<QDate> got = toDate(text, rs);
    if (isDate(text, rs) != got.has_value())
        return broke("isDate differs from toDate", input());
    if (!got)
        return formatDateText(text, QStringLiteral("yyyy"), rs) == text
            ? QString()
            : broke("formatDateText changed a text that is no date", input());
    if (!got->isValid() || got->year() < 1 || got->year() > 9999)
        return broke("not a date of years 1 to 9999", input() << show(*got));
    if (toDate(QStringLiteral(" \u00a0") + text + QStringLiteral("\t "), rs) != got)
        return broke("blanks around changed the date", input());
    QString mixed = text;
    for (QChar &c : mixed) {
        if (c == u'/' || c == u'-' || c == u'.')
            c = oneOf(pick, u"/-.");
    }
    if (toDate(mixed, rs) != got)
        return broke("another separator changed the date", input() << show(mixed));
    if (toDate(dateToString(*got, rs), rs) != got)
        return broke("dateToString does not read back", input() << show(*got));
    return {};
}

// Dates written by dateToString and by formatDate with the regional short pattern,
// without leading zeros, with two-digit years, in the ISO order and in the other of
// day-month-year and month-day-year, read back by toDate as documented.
inline QString checkDateRoundTrip(const Pick &pick)
{
    const RegionalSettings rs = randomSettings(pick);
    const QDate date = randomDate(pick);
    const int y = date.year(), m = date.month(), d = date.day();
    const auto input = [&] {
        return QStringList {show(date), show(rs)};
    };
    const auto readsAs = [&](const QString &pattern, QDate expected) {
        return toDate(formatDate(date, pattern, rs), rs) == expected;
    };

    const QString plain = dateToString(date, rs);
    if (formatDate(date, inOrder(rs.dateOrder, "dd", "mm", "yyyy"), rs) != plain)
        return broke("the short pattern differs from dateToString", input() << show(plain));
    if (toDate(plain, rs) != date)
        return broke("dateToString read back wrong", input() << show(plain));
    if (!readsAs(inOrder(rs.dateOrder, "d", "m", "yyyy"), date))
        return broke("date without leading zeros read back wrong", input());
    if (!readsAs(inOrder(rs.dateOrder, "dd", "mm", "yy"), QDate(widenedYear(y), m, d)))
        return broke("two-digit year not widened", input());
    if (!readsAs(QStringLiteral("yyyy-mm-dd"), date))
        return broke("ISO date read back wrong", input());
    if (rs.dateOrder != RegionalSettings::YearMonthDay) {
        const auto other = rs.dateOrder == RegionalSettings::DayMonthYear
            ? RegionalSettings::MonthDayYear
            : RegionalSettings::DayMonthYear;
        // The regional order wins whenever it gives a date.
        const QDate expected = d > 12 || d == m ? date : QDate(y, d, m);
        if (!readsAs(inOrder(other, "dd", "mm", "yyyy"), expected))
            return broke("date in the other order read wrong", input());
    }
    const QString pattern = textFrom(pick, u"dmy/-. ", 8);
    if (formatDateText(plain, pattern, rs) != formatDate(date, pattern, rs))
        return broke("formatDateText differs from formatDate", input() << show(pattern));
    return {};
}

// makeDate against QDate's own arithmetic, and the carry of months into years.
inline QString checkMakeDate(const Pick &pick)
{
    const auto anyInt = [&] {
        return pick(4) ? pick(1 << 16) - (1 << 15)
                       : int(quint32(pick(1 << 16)) << 16 | quint32(pick(1 << 16)));
    };
    const int year = pick(3) ? 90 + pick(10000) : anyInt();
    const int month = pick(3) ? pick(14) : anyInt();
    const int day = pick(3) ? pick(33) : anyInt();
    const auto input = [&] {
        return QStringList {QString::number(year), QString::number(month), QString::number(day)};
    };

    const QDate made = makeDate(year, month, day);
    if (made.isValid() && (made.year() < 100 || made.year() > 9999))
        return broke("date outside the years 100 to 9999", input() << show(made));
    if (year >= 100 && year <= 9999 && month >= 1 && month <= 12) {
        QDate expected = QDate(year, month, 1).addDays(qint64(day) - 1);
        if (expected < QDate(100, 1, 1) || expected > QDate(9999, 12, 31))
            expected = QDate();
        if (made != expected)
            return broke("day not counted from the 1st", input() << show(made) << show(expected));
    }
    const int years = pick(41) - 20;
    if (qint64(year) - years == int(qint64(year) - years)
        && qint64(month) + 12 * years == int(qint64(month) + 12 * years)
        && makeDate(year - years, month + 12 * years, day) != made)
        return broke("months not carried into years", input() << QString::number(years));
    return {};
}

// ---------------------------------------------------------------------------------
// Patterns
// ---------------------------------------------------------------------------------

// formatNumber on random patterns, and on patterns made of sections so that what each
// section is used for can be checked: positives take the first, negatives the second
// (with no sign of their own) or the first with a minus, zero the third or the first,
// a fourth section changes nothing, and a negative that rounds to zero is zero.
inline QString checkNumberPattern(const Pick &pick)
{
    const RegionalSettings rs = randomSettings(pick);
    bool exact = false;
    int decimals = 0;
    const double x = randomNumber(pick, exact, decimals);
    const QString pattern = textFrom(pick, u"00##.,,;%\\\"x -()E", pick(20) != 19 ? 20 : 300);
    const QString out = formatNumber(x, pattern, rs);
    if (!std::isfinite(x) ? !out.isEmpty() : out.size() > 2 * pattern.size() + 420)
        return broke("text of a wrong length", {show(x), show(pattern), show(rs), show(out)});

    const QString chars = QStringLiteral("00##..,%x -()E");
    const QString a = textFrom(pick, chars, 8), b = textFrom(pick, chars, 8),
                  c = textFrom(pick, chars, 8), fourth = textFrom(pick, chars, 4);
    const QString three = a + u';' + b + u';' + c;
    // A magnitude no section rounds to zero, and one every section rounds to zero.
    const double m = std::isfinite(x) && std::fabs(x) >= 1 && std::fabs(x) < 1e300
        ? std::fabs(x)
        : 1 + std::fabs(double(pick(1000000))) / 1000;
    const double tiny = 4 * std::pow(10.0, -(three.size() + 5));
    const auto f = [&](double v, const QString &p) {
        return formatNumber(v, p, rs);
    };
    const auto input = [&] {
        return QStringList {show(m), show(three), show(rs)};
    };

    if (!a.isEmpty() && f(-m, a) != u'-' + f(m, a))
        return broke("negative in the first section without its minus", input());
    if (f(m, three) != f(m, a))
        return broke("positive not in the first section", input());
    if (f(-m, three) != (b.isEmpty() ? f(-m, a) : f(m, b)))
        return broke("negative not in its section", input());
    if (f(0, three) != f(0, c.isEmpty() ? a : c))
        return broke("zero not in its section", input());
    if (f(x, three + u';' + fourth) != f(x, three))
        return broke("a fourth section changed the text", input() << show(x));
    if (!(a.isEmpty() && b.isEmpty()) && f(-tiny, three) != f(0, three))
        return broke("negative that rounds to zero not shown as zero", input() << show(tiny));
    if (f(m, u';' + b) != numberToString(m, rs))
        return broke("empty first section not the plain number", input());
    // Quoted text and escaped characters are the same literal text, ";" included.
    const QString literal = oneOf(pick, u"0#.,;%x") + textFrom(pick, u"0#.,;%x", 3);
    QString escaped;
    for (const QChar ch : literal)
        escaped += u'\\' + QString(ch);
    const QString quoted = a + u'"' + literal + u'"' + u';' + b;
    const QString unquoted = a + escaped + u';' + b;
    if (f(x, quoted) != f(x, unquoted) || f(-m, quoted) != f(-m, unquoted))
        return broke("quoted text differs from escaped text", input() << show(literal));
    return {};
}

// formatDate on random patterns: no longer than twice the pattern, the same for
// upper and lower case letters, and a pattern cut between two runs of letters gives
// the texts of its two halves one after the other.
inline QString checkDatePattern(const Pick &pick)
{
    const RegionalSettings rs = randomSettings(pick);
    QDate date = randomDate(pick);
    if (pick(8) == 7)
        date = pick(2) ? QDate() : QDate(pick(2) ? -1 - pick(5000) : 10000 + pick(90000), 2, 28);
    const bool lettersOnly = pick(2);
    const QString pattern = textFrom(pick, lettersOnly ? u"dmyDMY/.- " : u"dmyDMYaT/.- \u00e9", 12);
    const QString out = formatDate(date, pattern, rs);
    const auto input = [&] {
        return QStringList {show(date), show(pattern), show(rs)};
    };

    if (!date.isValid())
        return out.isEmpty() ? QString() : broke("text for an invalid date", input());
    if (pattern.isEmpty())
        return out == dateToString(date, rs) ? QString()
                                             : broke("empty pattern not the short date", input());
    if (out.size() > 2 * pattern.size())
        return broke("text too long", input() << show(out));
    if (lettersOnly
        && formatDate(date, pattern.toUpper(), rs) != formatDate(date, pattern.toLower(), rs))
        return broke("upper and lower case letters differ", input());
    const qsizetype cut = 1 + pick(int(pattern.size()));
    const auto lower = [](QChar c) {
        return c.toLower();
    };
    const bool noCut = cut >= pattern.size()
        || (lower(pattern.at(cut - 1)) == lower(pattern.at(cut))
            && QStringView(u"dmy").contains(lower(pattern.at(cut))));
    if (!noCut
        && out != formatDate(date, pattern.left(cut), rs) + formatDate(date, pattern.mid(cut), rs))
        return broke("halves of the pattern differ from the whole",
                     input() << QString::number(cut));
    return {};
}

// formatString with value characters apart from the pattern's own: every character
// of the value shows once and in order, the pattern's text shows in order, a space
// stands for each "@" left without a character, and "<", ">" and "!" change only
// how the value is mapped and placed, wherever they stand.
inline QString checkStringPattern(const Pick &pick)
{
    static const QStringList valueChars
        = {QStringLiteral("a"),          QStringLiteral("b"),      QStringLiteral("z"),
           QStringLiteral("\u017e"),     QStringLiteral("\u00df"), QStringLiteral("1"),
           QStringLiteral("\U0001F600"), QString(QChar(0xD83D)),   QStringLiteral("\u0130")};
    static const QString literals = QStringLiteral("-().#X");
    QString value;
    for (int n = pick(10); n > 0; --n)
        value += valueChars.at(pick(int(valueChars.size())));
    const QString pattern = textFrom(pick, QStringLiteral("@@@&&!<>") + literals, 12);
    const QString out = formatString(value, pattern);
    const auto input = [&] {
        return QStringList {show(value), show(pattern)};
    };

    QString bare = pattern; // without the marks that show nothing
    bare.remove(u'!').remove(u'<').remove(u'>');
    const qsizetype lower = pattern.lastIndexOf(u'<'), upper = pattern.lastIndexOf(u'>');
    const QString mapped = lower > upper ? value.toLower()
        : upper > lower                  ? value.toUpper()
                                         : value;
    const QString marks = pattern.contains(u'!') ? QStringLiteral("!") : QString();
    if (out.size() > pattern.size() + mapped.size())
        return broke("text too long", input() << show(out));
    if (out != formatString(mapped, marks + bare))
        return broke("case marks do more than map the value", input() << show(out));
    if (lower >= 0 || upper >= 0)
        return {};

    QString valuePart, literalPart;
    qsizetype spaces = 0;
    for (const QChar c : out) {
        if (c == u' ')
            ++spaces;
        else if (literals.contains(c))
            literalPart += c;
        else
            valuePart += c;
    }
    QString patternLiterals = bare;
    patternLiterals.remove(u'@').remove(u'&');
    if (valuePart != value || literalPart != patternLiterals)
        return broke("value or pattern text lost or out of order", input() << show(out));

    // Whole characters: a surrogate pair takes one placeholder.
    qsizetype count = 0;
    for (qsizetype i = 0; i < value.size(); ++i, ++count) {
        if (value.at(i).isHighSurrogate() && i + 1 < value.size()
            && value.at(i + 1).isLowSurrogate())
            ++i;
    }
    QString placeholders;
    for (const QChar c : bare) {
        if (c == u'@' || c == u'&')
            placeholders += c;
    }
    const qsizetype empty = std::max<qsizetype>(0, placeholders.size() - count);
    const QString unfilled = marks.isEmpty() ? placeholders.left(empty) : placeholders.right(empty);
    if (spaces != unfilled.count(u'@'))
        return broke("spaces other than the empty \"@\" places", input() << show(out));
    return {};
}

// ---------------------------------------------------------------------------------
// Format parsers
// ---------------------------------------------------------------------------------

// A long format now and then, around the 32767 characters that positions can hold.
// Rare choices here and elsewhere take the last value of a pick, so that a libFuzzer
// input that runs out of bytes (every pick 0 from then on) stays on the common path.
inline QString formatText(const Pick &pick, QStringView chars, int maxLength)
{
    if (pick(50) != 49)
        return textFrom(pick, chars, maxLength);
    return textFrom(pick, chars, 4) + QString(32760 + pick(16), oneOf(pick, chars))
        + textFrom(pick, chars, 4);
}

inline ConfiguredSeparators randomConfigured(const Pick &pick, const RegionalSettings &rs)
{
    const QString chars = QStringLiteral(",. '-/") + rs.decimalSeparator + rs.thousandsSeparator
        + rs.dateSeparator + QChar(0x6F22);
    const auto one = [&] {
        return pick(2) ? QChar() : separatorFromText(QString(oneOf(pick, chars)));
    };
    const QChar decimal = one(), thousands = one();
    return {decimal, thousands, one()};
}

// parseNumFormat: separators from the settings and the configuration, places in
// bounds and no more than the format has, the widest section wins, the clash of
// separators and nothing else falls back, and the result parses to itself.
inline QString checkNumParser(const Pick &pick)
{
    const RegionalSettings rs = randomSettings(pick);
    const ConfiguredSeparators configured = randomConfigured(pick, rs);
    const QString first = formatText(pick, u"09#..,;x \"", 16);
    const QString second = textFrom(pick, u"09#..,x", 8);
    QString format = first;
    ParsedFormat pf;
    const int message = parseNumFormat(pf, format, rs, configured);
    const auto input = [&] {
        return QStringList {show(first), show(rs)};
    };

    const QChar decimal = configured.decimal.isNull() ? rs.decimalSeparator : configured.decimal;
    const QChar thousands
        = configured.thousands.isNull() ? rs.thousandsSeparator : configured.thousands;
    if (pf.systemDecimalSeparator != rs.decimalSeparator
        || pf.systemThousandsSeparator != rs.thousandsSeparator || pf.decimalSeparator != decimal
        || pf.thousandsSeparator != thousands)
        return broke("separators not the regional or configured ones", input());
    if (message != (decimal == thousands ? 3 : 0))
        return broke("wrong message", input() << QString::number(message));
    if (message == 3)
        return format.isEmpty() && pf.integerDigits == 10 && pf.decimalDigits == 3
            ? QString()
            : broke("no fall-back after the clash", input());
    const qsizetype places = first.count(u'0') + first.count(u'9') + first.count(u'#');
    if (format != first || pf.integerDigits < 0 || pf.decimalDigits < 0
        || pf.integerDigits + pf.decimalDigits > std::min<qsizetype>(places, 2 * 32767))
        return broke("places out of bounds",
                     input() << QString::number(pf.integerDigits)
                             << QString::number(pf.decimalDigits));
    ParsedFormat again = pf;
    if (parseNumFormat(again, format, rs, configured) != 0 || again != pf)
        return broke("parsing the result again changed it", input());

    ParsedFormat one, both;
    QString secondFormat = second, joined = first + u';' + second;
    parseNumFormat(one, secondFormat, rs, configured);
    parseNumFormat(both, joined, rs, configured);
    if (both.integerDigits != std::max(pf.integerDigits, one.integerDigits)
        || both.decimalDigits != std::max(pf.decimalDigits, one.decimalDigits))
        return broke("places of the widest section not kept", input() << show(second));
    return {};
}

// checkAlfaNumFormat accepts exactly the formats of code-page characters, "1>" and
// those with a "?"; separatorFromText keeps a code-page character and gives "?" for
// any other.
inline QString checkAlfaNumParser(const Pick &pick)
{
    const QString chars = QStringLiteral("@&!<>1Aa? \u010d\u20ac\u00a0\u6f22\u0100\U0001F600");
    const QString original = pick(10) != 9 ? formatText(pick, chars, 8) : QStringLiteral("1>");
    QString format = original;
    const int message = checkAlfaNumFormat(format);
    const auto input = [&] {
        return QStringList {show(original)};
    };

    const bool foreign = std::any_of(original.begin(), original.end(),
                                     [](QChar c) { return !isAnsiCharacter(c); });
    const bool accepted = original == u"1>" || !foreign || original.contains(u'?');
    if (message != (accepted ? 0 : 4) || format != (accepted ? original : QString()))
        return broke("wrong verdict", input() << QString::number(message));
    if (checkAlfaNumFormat(format) != 0)
        return broke("the result is refused", input());

    const QChar separator = separatorFromText(original);
    const QChar first = original.isEmpty() ? QChar() : original.front();
    const QChar expected = first.isNull() || isAnsiCharacter(first) ? first : QChar(u'?');
    if (separator != expected || separatorFromText(separatorToText(separator)) != separator)
        return broke("separator not the first code-page character", input());
    return {};
}

// parseDateFormat: the empty-date text is as long as the format (up to 32767) with a
// blank for each letter and the separator elsewhere, each part spans its first to
// its last letter, a part whose last letter lies inside another part makes the format
// fall back to the default, the other slot is untouched, and the result parses to
// itself.
inline QString checkDateParser(const Pick &pick)
{
    const RegionalSettings rs = randomSettings(pick);
    const ConfiguredSeparators configured = randomConfigured(pick, rs);
    const QString original = formatText(pick, u"ddmmyyyy/.-DMx", 14);
    const int slot = pick(4) - 1; // out of range slots count as the nearest one
    const int other = 1 - std::clamp(slot, 0, 1);
    QString format = original;
    ParsedFormat pf;
    pf.dateLayout = {DateLayout {1, 2, 3, 4, 5, 6}, DateLayout {1, 2, 3, 4, 5, 6}};
    const int message = parseDateFormat(pf, format, slot, rs, configured);
    const auto input = [&] {
        return QStringList {show(original), QString::number(slot)};
    };

    // Positions count only within the first 32767 characters.
    const QString read = (original.isEmpty() ? DefaultDateFormat : original).left(32767);
    const auto span = [&](QChar letter) {
        const qsizetype first = read.indexOf(letter), last = read.lastIndexOf(letter);
        return std::pair<qint16, qint16>(qint16(first + 1), qint16(last > first ? last + 1 : 0));
    };
    const std::pair<qint16, qint16> parts[] = {span(u'm'), span(u'd'), span(u'y')};
    bool interleaved = false;
    for (const auto &p : parts) {
        for (const auto &q : parts)
            interleaved = interleaved || (q.first < p.second && p.second < q.second);
    }
    const DateLayout expected = interleaved
        ? DateLayout {4, 5, 1, 2, 7, 10}
        : DateLayout {parts[0].first,  parts[0].second, parts[1].first,
                      parts[1].second, parts[2].first,  parts[2].second};

    const QChar separator = configured.date.isNull() ? rs.dateSeparator : configured.date;
    if (pf.systemDateSeparator != rs.dateSeparator || pf.dateSeparator != separator)
        return broke("separator not the regional or configured one", input());
    if (pf.dateLayout[other] != DateLayout {1, 2, 3, 4, 5, 6})
        return broke("the other slot changed", input());
    if (message != (interleaved ? 5 : 0) || pf.dateLayout[1 - other] != expected)
        return broke("wrong layout or message", input() << QString::number(message));
    if (format != (interleaved || original.isEmpty() ? DefaultDateFormat : original))
        return broke("wrong format after parsing", input());

    const qsizetype n = std::min<qsizetype>(format.size(), 32767);
    if (pf.emptyDateText.size() != n)
        return broke("empty-date text of a wrong length", input());
    for (qsizetype i = 0; i < n; ++i) {
        const bool letter = QStringView(u"dmy").contains(format.at(i));
        if (pf.emptyDateText.at(i) != (letter ? QChar(u' ') : separator))
            return broke("empty-date text not the format's shape", input() << QString::number(i));
    }

    ParsedFormat again = pf;
    if (parseDateFormat(again, format, slot, rs, configured) != 0 || again != pf)
        return broke("parsing the result again changed it", input());
    return {};
}

// parseBoolFormat splits as QString::split does, takes the letter in upper case, and
// the result parses to itself.
inline QString checkBoolParser(const Pick &pick)
{
    const QString original = formatText(pick, u"AaNnEBb;;x ", 12);
    QString format = original;
    BoolFormat bf;
    parseBoolFormat(bf, format);
    const auto input = [&] {
        return QStringList {show(original)};
    };

    if (format != (original.isEmpty() ? DefaultBoolFormat : original))
        return broke("format changed", input());
    const QStringList parts = format.left(32767).split(u';');
    const QString third = parts.value(2);
    const char16_t letter = third.isEmpty() ? 0 : third.front().toUpper().unicode();
    if (bf.trueText != parts.value(0) || bf.falseText != parts.value(1) || bf.sqlType != letter)
        return broke("sections read wrong", input());
    BoolFormat again;
    parseBoolFormat(again, format);
    if (again != bf)
        return broke("parsing the result again changed it", input());
    return {};
}

// The string utilities the parsers build on: VratCast gives the parts of
// QString::split but an empty last one, Nahrad without sets is QString::replace, and
// Pocet counts what Nahrad replaces.
inline QString checkStringUtilities(const Pick &pick)
{
    const QString text = pick(100) != 99 ? textFrom(pick, u"ab;;,", 12) : QString(40000, u'a');
    const QChar separator = oneOf(pick, u";,x");
    const QString what = textFrom(pick, u"ab;", 2), with = textFrom(pick, u"xy", 2);
    const auto input = [&] {
        return QStringList {show(text), show(what), show(with)};
    };
    StrF strf;
    QStringList parts;
    QString part;
    try {
        for (bool more = strf.VratCast(part, text, separator, 1); more; more = strf.VratCast(part))
            parts.append(part);
    } catch (const std::overflow_error &) {
        return text.size() > 32767 ? QString() : broke("overflow on a short text", input());
    }
    QStringList expected = text.split(separator);
    if (expected.back().isEmpty())
        expected.removeLast();
    if (parts != expected || strf.VratCast(part) || !part.isEmpty())
        return broke("VratCast parts differ from split", input() << show(QString(separator)));

    if (what.isEmpty())
        return {};
    const QString replaced = strf.Nahrad(text, what, with);
    if (replaced != QString(text).replace(what, with))
        return broke("Nahrad differs from replace", input() << show(replaced));
    const int count = strf.Pocet(text, what).toInt();
    if (replaced.size() != text.size() + count * (with.size() - what.size()))
        return broke("Pocet does not count what Nahrad replaces", input());
    return {};
}

// ---------------------------------------------------------------------------------
// Areas, one per libFuzzer target
// ---------------------------------------------------------------------------------

inline QString numbers(const Pick &pick)
{
    return pick(2) ? checkNumberReading(pick) : checkNumberRoundTrip(pick);
}

inline QString dates(const Pick &pick)
{
    switch (pick(3)) {
    case 0:
        return checkDateReading(pick);
    case 1:
        return checkDateRoundTrip(pick);
    default:
        return checkMakeDate(pick);
    }
}

inline QString patterns(const Pick &pick)
{
    switch (pick(3)) {
    case 0:
        return checkNumberPattern(pick);
    case 1:
        return checkDatePattern(pick);
    default:
        return checkStringPattern(pick);
    }
}

inline QString formats(const Pick &pick)
{
    switch (pick(5)) {
    case 0:
        return checkNumParser(pick);
    case 1:
        return checkAlfaNumParser(pick);
    case 2:
        return checkDateParser(pick);
    case 3:
        return checkBoolParser(pick);
    default:
        return checkStringUtilities(pick);
    }
}

} // namespace velmora::test::formatfuzz
