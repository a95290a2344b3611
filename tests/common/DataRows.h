#pragma once

// Compact Qt Test tables: columns<T...>({names}) declares the columns of a table and
// row(name, values...) adds a named row. The values must have the column types
// exactly (5.0 for a double column), except that a string literal fills a QString one.

#include <QtTest/QTest>

#include <array>

namespace velmora::test {

template<typename... T>
void columns(const std::array<const char *, sizeof...(T)> &names)
{
    size_t i = 0;
    (QTest::addColumn<T>(names[i++]), ...);
}

inline QString cell(const char *text)
{
    return QString::fromUtf8(text);
}
template<typename T>
const T &cell(const T &value)
{
    return value;
}

template<typename... V>
void row(const char *name, const V &...values)
{
    (QTest::newRow(name) << ... << cell(values));
}

} // namespace velmora::test
