#pragma once

// The two texts that describe a lookup list's columns: ListFormatString (type and
// format of each column) and HideCol (the columns not shown).

#include "ListColumns.h"

#include "format/FormatParser.h"
#include "format/ParsedFormat.h"

#include <velmora/RegionalSettings.h>
#include <velmora/Types.h>

#include <QtCore/QList>
#include <QtCore/QString>

namespace velmora::detail {

// What the list format reads from its field.
struct ListFieldSettings
{
    int textCol = 0; // the column shown in the field; takes the field's type and format
    int valueCol = 0; // the column that gives the field's value
    int inputType = itAlfaNum;
    QString formatStr; // the field's FormatStr
    RegionalSettings regional;
    ConfiguredSeparators configured;
};

// ListFormatString is read column by column: the parts between "|" describe columns
// 0, 1, 2, ... ("A|" is one part, "A||N" three). An empty part leaves its column at the
// defaults; otherwise the first character is the type letter (N, A, D, B; anything
// else means A) and the rest the column's format. The rest of a "B" part is a boolean
// format: it is parsed into a new entry of the columns' boolean formats, whose index
// becomes the column's format string. Then the text column takes the field's own type
// and format, whatever the text said. When the value column is of type "D", its format
// fills date layout slot 1 of pf, so that values of that column read as dates; the
// field's own empty-date text is kept when the field itself is a date field.
//
// The columns are written over, not reset: the caller sizes them first. The boolean
// formats start again from none. The regional separators of pf are read again first.
// Returns the message number of an unusable date format of the value column (5), else 0.
// A negative textCol or valueCol names no column and is ignored.
int parseListFormat(const QString &listFormatString, const ListFieldSettings &settings,
                    ListColumns &columns, ParsedFormat &pf);

// HideCol: items separated by ";", each trimmed of blanks; an item that starts with a
// number (leadingNumber: "2x" counts as 2) marks that column hidden when it lies in
// 0..lastIndex. Reading stops after the last item, or once more items have been read
// than there are columns; an empty item is skipped but counts. The result holds
// columns 0..lastIndex (nothing for a negative lastIndex).
QList<bool> parseHideCol(const QString &hideCol, int lastIndex);

// The number a text starts with, as the classic Val() reads it: blanks, tabs and line
// feeds are skipped anywhere, then an optional sign, digits, an optional "." with
// digits and an optional exponent (E or D); "&H" and "&O" introduce hexadecimal and
// octal integers. Reading stops at the first other character; no number reads as 0.
double leadingNumber(QStringView text);

// A leading number as a column index: rounded half to even, and -1 for anything that
// is no index in 0..MaxColumn.
int leadingIndex(QStringView text);

} // namespace velmora::detail
