#pragma once

// The lookup list of a field: the rows its list window shows and the column properties
// they were loaded with, the rows the host adds for the next load, and the window. The
// field's value state keeps only the row that matches its value (FieldValue::listIndex).

#include "lookup/ListColumns.h"
#include "lookup/ListLoader.h"
#include "lookup/ListRows.h"
#include "lookup/ListWindow.h"

#include <QtCore/QAbstractTableModel>
#include <QtCore/QDateTime>
#include <QtCore/QHash>
#include <QtCore/QPointer>

namespace velmora::detail {

// The rows as the list window's table reads them. Only the rows in view are asked for.
class ListTableModel final : public QAbstractTableModel
{
public:
    explicit ListTableModel(const ListRows &rows, QObject *parent)
        : QAbstractTableModel(parent), m_rows(rows)
    { }
    int rowCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : m_rows.rowCount();
    }
    int columnCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : m_rows.columnCount();
    }
    QVariant data(const QModelIndex &index, int role) const override
    {
        if (role != Qt::DisplayRole && role != Qt::AccessibleTextRole)
            return {};
        return m_rows.cell(index.row(), index.column()).toString();
    }
    // The rows are about to be replaced, and have been.
    void beginReplace() { beginResetModel(); }
    void endReplace() { endResetModel(); }
    // A row is about to be added at the end, and has been.
    void beginAppend() { beginInsertRows({}, m_rows.rowCount(), m_rows.rowCount()); }
    void endAppend() { endInsertRows(); }

private:
    const ListRows &m_rows;
};

struct FieldList
{
    ListColumns columns;
    QList<bool> hidden;
    ListRows rows; // what the window shows; row 0 is the new-item row when there is one
    ListItems items; // the host's rows for the next load
    QDateTime loadedAt; // the last load that gave a list; null before
    quint64 loads = 0; // loads that gave a list
    int notifiedIndex = -1; // the row ListChanged was last raised for
    bool fromSql = false; // the rows came from SQLList, so the drop-down may refresh them
    bool loading = false; // a reload the user waits for is under way
    QPointer<ListWindow> window; // created by the first load, kept for the field's life
    // Typing in the open list: the first row of each first letter of the searched column,
    // and the last search, which a longer text of the same start goes on from.
    struct TypeAhead
    {
        int column = -1;
        quint64 loads = ~quint64(0);
        QHash<char16_t, int> firstRow;
        QString text;
        int row = -1;
    } typeAhead;
    ListTableModel *model = nullptr; // the window's
};

} // namespace velmora::detail
