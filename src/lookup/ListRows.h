#pragma once

// The rows of a lookup list as they are shown: a table of display texts, kept as one
// UTF-16 buffer with the cells' offsets (a QString per cell would cost several times
// the memory at a million rows), and the search for the row of a value.

#include <QtCore/QList>
#include <QtCore/QString>

#include <memory>
#include <span>
#include <vector>

namespace velmora::detail {

class ListRows
{
public:
    explicit ListRows(int columnCount = 0);
    ~ListRows();
    ListRows(ListRows &&) noexcept;
    ListRows &operator=(ListRows &&) noexcept;
    ListRows(const ListRows &);
    ListRows &operator=(const ListRows &);

    int columnCount() const { return m_columns; }
    int rowCount() const { return m_rows; }
    bool isEmpty() const { return m_rows == 0; }

    // The cell's text; empty for a row or column that does not exist. The view stays
    // valid until the rows change.
    QStringView cell(int row, int column) const;

    // Sets the number of columns of an empty table (a table with rows keeps its own).
    void setColumnCount(int columns);
    // Adds a row at the end: cells beyond columnCount are dropped, missing ones empty.
    // Throws std::length_error when the table cannot address more text or rows.
    void appendRow(std::span<const QStringView> cells);
    void appendRow(std::initializer_list<QStringView> cells)
    {
        appendRow(std::span<const QStringView>(cells.begin(), cells.size()));
    }
    // Puts a row in front of all others (the new-item row): takes time in proportion to
    // the table, once.
    void prependRow(std::span<const QStringView> cells);
    void prependRow(std::initializer_list<QStringView> cells)
    {
        prependRow(std::span<const QStringView>(cells.begin(), cells.size()));
    }
    void clear();
    // Room for rows and characters, when the caller knows them.
    void reserve(int rows, qsizetype characters);
    // Memory held by the table, its search indexes included, in bytes.
    qsizetype bytesUsed() const;

    // The lowest row from firstRow on whose cell in the column equals text, both sides
    // trimmed of blanks (U+0020) and in upper case (QString::toUpper); -1 when none
    // does. A search index is built for the column on first use and dropped when the
    // rows change, so a search takes constant time on average. Not safe to call from
    // two threads at once (the index is built on the fly).
    int findRow(int column, QStringView text, int firstRow = 0) const;
    // The same answer found row by row, without an index.
    int findRowScan(int column, QStringView text, int firstRow = 0) const;

private:
    struct ColumnIndex;

    const ColumnIndex &indexOf(int column) const;
    void appendCells(std::span<const QStringView> cells);
    void dropIndexes();

    int m_columns = 0;
    int m_rows = 0;
    QString m_text; // every cell, one after the other
    QList<quint32> m_offsets; // cell i is m_text[m_offsets[i], m_offsets[i + 1])
    mutable std::vector<std::unique_ptr<ColumnIndex>> m_indexes; // per column, built lazily
};

} // namespace velmora::detail
