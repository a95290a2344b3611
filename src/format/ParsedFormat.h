#pragma once

// The parsed form of a field's format string: what the editing rules and the value
// conversions read instead of the raw text. Only the format parsers write it.

#include <velmora/RegionalSettings.h>

#include <QtCore/QChar>
#include <QtCore/QString>

#include <array>

namespace velmora::detail {

struct BoolFormat
{
    QString trueText;
    QString falseText;
    char16_t sqlType = 0; // 'B', 'N', 'A' (upper case) or 0 when the section is empty

    friend bool operator==(const BoolFormat &, const BoolFormat &) = default;
};

// 1-based positions in the date format of the first and last letter of each part;
// 0 where the part does not occur. A part written with one letter keeps End 0.
struct DateLayout
{
    qint16 monthStart = 0, monthEnd = 0;
    qint16 dayStart = 0, dayEnd = 0;
    qint16 yearStart = 0, yearEnd = 0;

    friend bool operator==(const DateLayout &, const DateLayout &) = default;
};

struct ParsedFormat
{
    // The regional settings the format was parsed with; the field's conversions read
    // these, so a value is always read with the separators it was shown with.
    RegionalSettings regional;
    QChar systemDecimalSeparator;
    QChar systemThousandsSeparator;
    QChar systemDateSeparator;
    QChar decimalSeparator; // effective: the configured one, else the regional one
    QChar thousandsSeparator; // effective
    QChar dateSeparator; // effective
    qint16 integerDigits = 0;
    qint16 decimalDigits = 0;
    BoolFormat boolFormat;
    std::array<DateLayout, 2> dateLayout; // 0: the field's own format, 1: the list's value column
    QString emptyDateText;

    friend bool operator==(const ParsedFormat &, const ParsedFormat &) = default;
};

} // namespace velmora::detail
