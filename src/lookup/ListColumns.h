#pragma once

// The column properties of a field's lookup list: per column its format string, its
// type code and its display width, plus the boolean formats of the "B" columns.

#include "format/ParsedFormat.h"

#include <QtCore/QList>
#include <QtCore/QString>

#include <vector>

namespace velmora::detail {

// Columns are numbered from 0 with 16-bit indexes. Reading a column beyond the stored
// ones, or while nothing is stored, gives the defaults: format "", type 65 ("A"),
// width 0. Storing into a column grows the array to it. A column index below 0 or
// above MaxColumn is a programming error: every accessor throws std::out_of_range.
class ListColumns
{
public:
    static constexpr int MaxColumn = 32767;

    QString formatString(int column) const;
    // The column's type as a character code: 78 "N", 65 "A", 68 "D" or 66 "B".
    int dataType(int column) const;
    int length(int column) const;

    void setFormatString(int column, const QString &format);
    // Stores 78, 65, 68 or 66 as given; any other code is stored as 65.
    void setDataType(int column, int code);
    void setLength(int column, int width);

    // True until the first store or setUpperBound.
    bool isEmpty() const { return m_empty; }
    // -1 while empty, else the highest column index held.
    int upperBound() const { return m_empty ? -1 : int(m_columns.size()) - 1; }
    // Holds columns 0..n, every one back to the defaults. n = -1 makes the object
    // empty again (a source without columns).
    void setUpperBound(int n);

    // The boolean formats of "B" columns; such a column's format string holds the
    // index of its entry as a decimal number.
    int appendBoolFormat(const BoolFormat &format); // returns the new entry's index
    int boolFormatCount() const { return int(m_boolFormats.size()); }
    // The entry at the index; an index without an entry gives the default format
    // ("ANO;NE;A").
    BoolFormat boolFormat(int index) const;
    void clearBoolFormats() { m_boolFormats.clear(); }

    friend bool operator==(const ListColumns &, const ListColumns &) = default;

private:
    struct Column
    {
        QString format;
        int type = 0; // 0: never stored, reads as 65
        int length = 0;

        friend bool operator==(const Column &, const Column &) = default;
    };

    const Column *find(int column) const;
    Column &slot(int column);

    std::vector<Column> m_columns;
    QList<BoolFormat> m_boolFormats;
    bool m_empty = true;
};

} // namespace velmora::detail
