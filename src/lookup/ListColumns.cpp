#include "ListColumns.h"

#include "format/FormatParser.h"

#include <velmora/Types.h>

#include <stdexcept>
#include <string>

namespace velmora::detail {

namespace {

void checkIndex(int column)
{
    if (column < 0 || column > ListColumns::MaxColumn)
        throw std::out_of_range("ListColumns: column index " + std::to_string(column)
                                + " is outside 0.." + std::to_string(ListColumns::MaxColumn));
}

bool isColumnType(int code)
{
    return code == itNum || code == itAlfaNum || code == itDate || code == itBool;
}

} // namespace

const ListColumns::Column *ListColumns::find(int column) const
{
    checkIndex(column);
    if (m_empty || size_t(column) >= m_columns.size())
        return nullptr;
    return &m_columns[size_t(column)];
}

ListColumns::Column &ListColumns::slot(int column)
{
    checkIndex(column);
    if (m_empty) {
        m_columns.assign(size_t(column) + 1, Column());
        m_empty = false;
    } else if (size_t(column) >= m_columns.size()) {
        m_columns.resize(size_t(column) + 1);
    }
    return m_columns[size_t(column)];
}

QString ListColumns::formatString(int column) const
{
    const Column *c = find(column);
    return c ? c->format : QString();
}

int ListColumns::dataType(int column) const
{
    const Column *c = find(column);
    return c && c->type != 0 ? c->type : int(itAlfaNum);
}

int ListColumns::length(int column) const
{
    const Column *c = find(column);
    return c ? c->length : 0;
}

void ListColumns::setFormatString(int column, const QString &format)
{
    slot(column).format = format;
}

void ListColumns::setDataType(int column, int code)
{
    slot(column).type = isColumnType(code) ? code : int(itAlfaNum);
}

void ListColumns::setLength(int column, int width)
{
    slot(column).length = width;
}

void ListColumns::setUpperBound(int n)
{
    if (n == -1) {
        m_columns.clear();
        m_empty = true;
        return;
    }
    checkIndex(n);
    m_columns.assign(size_t(n) + 1, Column());
    m_empty = false;
}

int ListColumns::appendBoolFormat(const BoolFormat &format)
{
    m_boolFormats.append(format);
    return int(m_boolFormats.size()) - 1;
}

BoolFormat ListColumns::boolFormat(int index) const
{
    if (index >= 0 && index < m_boolFormats.size())
        return m_boolFormats.at(index);
    static const BoolFormat fallback = [] {
        BoolFormat bf;
        QString text = DefaultBoolFormat;
        parseBoolFormat(bf, text);
        return bf;
    }();
    return fallback;
}

} // namespace velmora::detail
