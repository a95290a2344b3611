#pragma once

// What the loader tests share: a field's list settings, a measure of cell widths and a
// loaded list as text.

#include "lookup/ListFormat.h"
#include "lookup/ListLoader.h"

namespace velmora::test {

// Characters are 7 units wide, except "i" and blanks with 3: the widest cell is not
// always the longest one.
inline int width(QStringView text)
{
    int w = 0;
    for (QChar c : text)
        w += c == u'i' || c == u' ' ? 3 : 7;
    return w;
}

// Every row as its cells joined by "|".
inline QStringList allRows(const detail::ListRows &rows)
{
    QStringList out;
    for (int r = 0; r < rows.rowCount(); ++r) {
        QStringList cells;
        for (int c = 0; c < rows.columnCount(); ++c)
            cells << rows.cell(r, c).toString();
        out << cells.join(u'|');
    }
    return out;
}

// A field's list settings, applied once the column count is known, and its load options.
struct Field
{
    QString listFormat = QStringLiteral("N#,##0.00|A|D");
    int textCol = 1;
    detail::ParsedFormat pf;
    detail::ListLoadOptions o;

    explicit Field(const RegionalSettings &rs = RegionalSettings::czech(u' '))
    {
        o.parsed = &pf;
        o.regional = rs;
        o.measure = {width, 7, {}};
    }
    // "English" or Czech regional settings; "design": cells as they come (design mode).
    explicit Field(QStringView mode)
        : Field(mode == u"English" ? RegionalSettings::english() : RegionalSettings::czech(u' '))
    {
        o.formatCells = mode != u"design";
    }
    detail::ColumnsReady ready()
    {
        return [this](detail::ListColumns &c, int count) {
            c.setUpperBound(count - 1);
            detail::parseListFormat(listFormat, {textCol, 2, itAlfaNum, {}, o.regional, {}}, c, pf);
        };
    }
};

} // namespace velmora::test
