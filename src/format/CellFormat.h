#pragma once

// The display formatter compiled for one value format: the number or date pattern is
// read once, and the values that come in the common shapes (a plain number with the
// regional decimal separator, a date in the regional short or the ISO form) are
// rendered straight from their digits. Every other value, and every string and truth
// value, goes to displayText(), so the result is always the one displayText() gives.
// A lookup list keeps one per column and formats each of its cells with it.

#include "ValueConversion.h"

#include <QtCore/QString>
#include <QtCore/QStringView>
#include <QtCore/QVarLengthArray>

#include <vector>

namespace velmora::detail {

// A cell's text as the fast paths write it: no QString per cell.
using CellText = QVarLengthArray<char16_t, 128>;

class CellFormat
{
public:
    // Keeps a copy of vf: the ParsedFormat it points to must outlive the formatter, as
    // displayText() reads it for the values left to it.
    explicit CellFormat(const ValueFormat &vf);

    // displayText(value, valueFormat()).
    QString format(const QString &value) const;
    QString format(QStringView value) const;

    // format(value) written into out (what it held is replaced) when a fast path renders
    // the value; false when it is left to displayText(), out then holding anything.
    bool formatFast(QStringView value, CellText &out) const;
    // The same for a number as a database gives it: the text of
    // format(numberToString(value, regional)) without the text in between.
    bool formatFast(double value, CellText &out) const;

    const ValueFormat &valueFormat() const { return m_vf; }

    // A step of a compiled number section: a run of `length` integer or decimal places,
    // the decimal point, or a literal (the range from..from + length of the section's
    // text).
    struct NumberStep
    {
        enum Kind : quint8 { IntegerDigit, DecimalDigit, Point, Literal };
        Kind kind;
        int from = 0, length = 0;
    };
    struct NumberPart
    {
        std::vector<NumberStep> steps;
        QString literals;
        bool isEmpty = true;
        bool grouping = false;
        bool percent = false;
        int integerPlaces = 0;
        int decimalPlaces = 0;
        int minIntegerDigits = 0;
        int minDecimalDigits = 0;
    };
    // The digits of a number: 0.digit x 10^point, without leading or trailing zeros,
    // and none at all for zero.
    struct Digits
    {
        char digit[20];
        int count = 0;
        int point = 0;
    };
    struct DateStep
    {
        enum Kind : quint8 { Literal, Day, Day2, Month, Month2, Year2, Year4 };
        Kind kind;
        char16_t literal = 0;
    };

private:
    enum class Kind { Other, Number, Date };

    // The fast paths; false when the value is left to displayText().
    bool formatNumber(QStringView value, CellText &out) const;
    bool renderNumber(bool negative, Digits &m, CellText &out) const;
    bool formatDate(QStringView value, CellText &out) const;

    ValueFormat m_vf;
    Kind m_kind = Kind::Other;
    bool m_fast = false; // the regional separators allow the fast reading

    // Numbers: the sections, the regional separators, and the three separator passes
    // of displayText (regional decimal to a placeholder, regional thousands to the
    // field's, placeholder to the field's decimal); a null "from" skips a pass.
    std::vector<NumberPart> m_parts;
    char16_t m_decimal = 0, m_thousands = 0;
    char16_t m_passFrom[3] = {}, m_passTo[3] = {};

    // Dates: the steps of the pattern, and the separator and the empty-date text of
    // the parsed format.
    std::vector<DateStep> m_dateSteps;
    char16_t m_dateSeparator = 0;
    char16_t m_dateFrom = 0, m_dateTo = 0;
    QString m_emptyDateText;
};

} // namespace velmora::detail
