#pragma once

// Taking a value into a field, as plain functions: from the field's settings and the
// text given to what the field must show, store and report. The widget applies the
// result; nothing here touches a widget, so every case is tested without one.

#include "ValueConversion.h"

#include <QtCore/QList>
#include <QtCore/QVariant>

#include <optional>

namespace velmora::detail {

// What a field reads when it takes a value.
struct FieldValueSettings
{
    ValueFormat format; // type, FormatStr, parsed format, AlfaNumTrim, regional settings
    qint16 maxLength = 0;
    bool setList = false;
    bool listCheck = true; // the ListCheckValue switch as the switch test resolves it
    bool enableEmpty = true; // the EnableEmpty switch as the switch test resolves it
    // With a lookup list: the row the value was found in (-1: none, or the new-item
    // row) and the stored form of that row's text cell, and whether the list's value
    // column is numeric (a zero value then counts as empty).
    int listRow = -1;
    QString listText;
    bool valueColumnNumeric = false;
};

// A message to report: its number and the value put into its text.
struct Report
{
    int number = 0;
    QString value;

    friend bool operator==(const Report &, const Report &) = default;
};

// A text shown in the field: what the edit box shows, what the field stores, the number
// a numeric value stands for (kept whole, whatever the format shows) and the message
// of a value that is no number or no date (such a value is taken all the same).
struct ShownValue
{
    QString shown;
    QString stored;
    std::optional<double> number;
    std::optional<Report> report;
};

// LetValue: the text normalised for the type, checked, cut to MaxLength and shown.
ShownValue showValue(const QString &text, const FieldValueSettings &s);

// A Value assignment.
struct Assignment
{
    bool clearFirst = false; // the field is cleared (and its Changed baseline reset) first
    std::optional<ShownValue> show; // the text to show; nothing more when empty
    int listIndex = -1; // the matching list row (a boolean field: 0 true, 1 false)
    QList<Report> reports;
    bool checkValueChanged = false;
    bool notifyValue = false; // the host is told that Value changed
};
// currentStored is what the field holds now: a value the list refuses shows it again.
Assignment assignValue(const QString &value, const FieldValueSettings &s,
                       const QString &currentStored);

// The text a typed value (varValue let) stands for in a field of the given type.
QString variantText(const QVariant &value, int type, const RegionalSettings &rs);

// Completing the entry when the user leaves the field: a partial date gets today's
// month and year and four-digit years, a lone numeric sign is dropped, a number is
// shown in its format. Nothing when the text stays as it is; failed when the parts of a
// date make no date.
struct Completion
{
    bool failed = false;
    std::optional<QString> shown;
    std::optional<QString> stored;
};
Completion completeEntry(const QString &boxText, const FieldValueSettings &s, const QDate &today);

// A half-typed date carried from one date layout to another part by part, so that a
// new format or separator keeps what the user has typed so far. The text unchanged when
// it is not in the old layout.
QString moveDateParts(const QString &text, const ParsedFormat &from, const ParsedFormat &to);

} // namespace velmora::detail
