#pragma once

// Conversions between the three forms of a field's value: the stored text (what the
// field keeps and Value returns), the display text (what the edit box shows) and the
// database form (SQLValue), plus the typed value. The same display formatter renders
// the field itself and the columns of its lookup list.

#include "ParsedFormat.h"

#include <velmora/RegionalSettings.h>
#include <velmora/Types.h>

#include <QtCore/QDate>
#include <QtCore/QString>
#include <QtCore/QVariant>

#include <optional>

namespace velmora::detail {

// What the display formatter needs to render one value: the field itself or one
// list column.
struct ValueFormat
{
    int type = itAlfaNum; // an InpType code; any other code leaves values unchanged
    QString format;
    const ParsedFormat *parsed = nullptr; // separators, date layout and empty-date text
    BoolFormat boolFormat; // for itBool
    int dateSlot = 0; // 0: the field's layout, 1: the list's value column
    AlfaNumTrim trim = atLeftRight; // the field's AlfaNumTrim
    RegionalSettings regional;
};

QString displayText(const QString &value, const ValueFormat &vf);

struct BoolDisplay
{
    QString text;
    int row = -1; // 0 true, 1 false, 2 empty (with list rows), -1 empty (without)
};
BoolDisplay boolDisplayText(const QString &value, const BoolFormat &bf, const RegionalSettings &rs,
                            bool listHasRows);
QString boolToSql(const QString &value, const BoolFormat &bf);

QString applyAlfaNumTrim(const QString &text, const ValueFormat &vf);
QString textToValue(const QString &text, const ValueFormat &vf, bool isListColumn = false);

// The day, month and year read from a date text at the positions of a layout
// (blank or missing parts read as 0).
struct DateParts
{
    int day = 0, month = 0, year = 0;
    bool yearBlank = true;
};
DateParts readDateParts(const QString &text, const DateLayout &layout);

// One part of a date text at the 1-based positions start..end: its number (blanks count
// as nothing), whether it is all blank, and whether it holds only digits and blanks.
// A part missing from the layout, or written with one letter, reads as blank.
struct DatePartValue
{
    int value = 0;
    bool blank = true;
    bool valid = true;
    bool gaps = false; // a blank among the places
};
DatePartValue readDatePart(QStringView text, int start, int end);

// The calendar date a date text in the layout of slot stands for; an invalid QDate
// when it is empty, half typed or no calendar date (31.02.2005 is not carried over).
QDate calendarDate(const QString &text, const ParsedFormat &pf, int slot);

// The empty-date text with the parts of a date written at the positions of a layout.
QString dateLayoutText(const QDate &date, const ParsedFormat &pf, int slot);
// Trims blanks on the sides that AlfaNumTrim names.
QString trimSides(const QString &text, AlfaNumTrim trim);

bool isEmptyDate(const QString &text, const ParsedFormat &pf);
// The value as an SQL literal without quotes, from the stored text: a text field's
// Value with every apostrophe doubled, a date as mm/dd/yyyy ("" unless it is a calendar
// date), a number with "." and no grouping, a truth value in its database form.
QString sqlValue(const QString &value, const ValueFormat &vf);
QVariant typedValue(const QString &value, const ValueFormat &vf, bool nullable);
// The field's Value and varValue from its stored text. A date text that is no calendar
// date is Empty as a typed value, however leniently its parts could be read.
QString storedValue(const QString &stored, const ValueFormat &vf);
QVariant storedTypedValue(const QString &stored, const ValueFormat &vf, bool nullable);
// The plain number a numeric text stands for, "." as decimal point, no grouping.
QString plainNumber(double value);

// Completes a partly typed date: a missing month and a blank year come from today,
// two-digit years are widened. Returns the completed display text, or nothing when
// the parts do not make a date.
std::optional<QString> completeDate(const QString &text, const ValueFormat &vf, const QDate &today);
// A complete value pasted whole, as the edited text of a field of the given type: a
// date (regional or ISO) in the field's layout, a number without grouping with the
// field's decimal separator. A null QString when the text is no such value.
QString wholeValueText(int type, const QString &pasted, const ParsedFormat &pf,
                       const RegionalSettings &rs);
// Whether a numeric text is only a sign and/or a decimal separator (discarded on exit).
bool isLoneNumericSign(const QString &text, QChar decimalSeparator);

} // namespace velmora::detail
