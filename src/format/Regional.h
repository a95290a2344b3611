#pragma once

// Regional services: the legacy pattern formatting of numbers, dates and strings,
// the lenient numeric and date tests, and the conversions to number and date. They
// read nothing but the RegionalSettings they are given, so every result is fixed by
// the caller whatever the machine's locale is. docs/regional.md lists the accepted
// forms.

#include <velmora/RegionalSettings.h>

#include <QtCore/QDate>
#include <QtCore/QString>

#include <optional>
#include <vector>

namespace velmora::detail {

// Number pattern: digit places "0" (always shown) and "#" (shown when significant),
// "," between digit places for grouping, "." the decimal point, ";" separating the
// sections positive;negative;zero, "%" (x100), "\x" and "..." literal text; every
// other character is literal. An empty pattern gives numberToString().
// formatNumber(1001.1, "#,###.#", czech) == "1 001,1"
QString formatNumber(double value, const QString &pattern, const RegionalSettings &rs);

// A number pattern as formatNumber reads it: its sections (at most three), each a run
// of tokens with its digit places counted. A formatter that renders many values with
// one pattern reads it once.
struct NumberToken
{
    enum Kind { Digit, Point, Comma, Percent, Text };
    Kind kind;
    QString text; // Text: the literal; Digit: "0" or "#"
};
struct NumberSection
{
    std::vector<NumberToken> tokens;
    bool isEmpty = true; // written as nothing: the first section stands in for it
    bool grouping = false;
    bool percent = false;
    int integerPlaces = 0;
    int decimalPlaces = 0;
    int minIntegerDigits = 0; // from the leftmost integer "0" to the point
    int minDecimalDigits = 0; // from the point to the rightmost decimal "0"
};
std::vector<NumberSection> parseNumberPattern(const QString &pattern);

// Date pattern: d, dd, m, mm, yy, yyyy; "/" shows the regional date separator; other
// characters are literal. formatDate({2005,12,24}, "dd/mm/yyyy", czech) == "24.12.2005"
QString formatDate(const QDate &date, const QString &pattern, const RegionalSettings &rs);

// String pattern: "@" a character or a space, "&" a character or nothing, placeholders
// filled from the right unless "!" is present (then from the left), "<" all lower
// case, ">" all upper case; other characters are literal.
QString formatString(const QString &value, const QString &pattern);

// Applies a number pattern to a text value: a text that is numeric is formatted,
// any other text comes back unchanged.
QString formatNumberText(const QString &value, const QString &pattern, const RegionalSettings &rs);
// Applies a date pattern to a text value: a text that is a date is formatted, any
// other text comes back unchanged.
QString formatDateText(const QString &value, const QString &pattern, const RegionalSettings &rs);

// Lenient numeric test and conversion: blanks around, a leading or trailing sign,
// thousands separators between digits, one decimal separator, an exponent.
std::optional<double> toNumber(const QString &text, const RegionalSettings &rs);
bool isNumeric(const QString &text, const RegionalSettings &rs);

// Lenient date test and conversion: day, month and year in the regional order with
// the regional separator, "/", "-" or "." between them, or ISO yyyy-mm-dd; years
// below 100 are widened (30..99 -> 19xx, 0..29 -> 20xx).
std::optional<QDate> toDate(const QString &text, const RegionalSettings &rs);
bool isDate(const QString &text, const RegionalSettings &rs);

// The platform's plain conversions to text: a number with the regional decimal
// separator and no grouping (up to 15 significant digits, no exponent below 1e15);
// a date as the regional short date (two-digit day and month, four-digit year).
QString numberToString(double value, const RegionalSettings &rs);
QString dateToString(const QDate &date, const RegionalSettings &rs);

// Builds a date from year, month and day, carrying overflowing months and days into
// the next month and year (month 13 is January of the next year, day 32 of January
// is 1 February, day 0 is the last day of the previous month). Invalid on overflow
// of the calendar.
QDate makeDate(int year, int month, int day);

} // namespace velmora::detail
