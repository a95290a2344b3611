#pragma once

// Building a lookup list: rows from a database query, from a query the host hands
// over, from rows the host added one by one, or from a boolean field's two texts;
// every cell formatted once for its column and the columns' widths measured.
//
// Loading is synchronous and uses no widget: the caller supplies the text measure of
// its list font. A Qt SQL connection may be used only in the thread that opened it;
// the loader opens its own connection (from a connection string) in the calling
// thread and closes it before it returns, so a load can run in a worker thread of its
// own. The application's default connection and a host's query are read where the
// caller calls from.
//
// A failure throws velmora::DatabaseError and leaves nothing behind: the rows are
// built in a new table that the caller takes only from a load that succeeded.

#include "ListColumns.h"
#include "ListRows.h"

#include "format/CellFormat.h"
#include "format/ParsedFormat.h"
#include "format/ValueConversion.h"

#include <velmora/RegionalSettings.h>

#include <QtCore/QString>

#include <atomic>
#include <functional>
#include <optional>
#include <vector>

class QSqlDatabase;
class QSqlQuery;

namespace velmora::detail {

// The width of texts in the list's font, in the units of the column widths.
struct TextMeasure
{
    std::function<int(QStringView)> width; // none: widths are not measured
    // No character (UTF-16 unit) is wider than this; a cell that cannot be wider than
    // its column is then not measured. 0: every cell is measured.
    int maxCharWidth = 0;
    // A cheap width no smaller than the measured one (the sum of the characters' own
    // widths, say); when set, a cell whose bound does not pass its column's width is not
    // measured. Only the cells that may be the widest are then laid out.
    std::function<int(QStringView)> bound;
    // Whether a cell can be wider than `width`, before it is measured.
    bool mayPass(QStringView text, int width) const
    {
        if (maxCharWidth > 0 && qint64(text.size()) * maxCharWidth <= width)
            return false;
        return !bound || bound(text) > width;
    }
};

// A cell as the list shows it: trimmed of blanks and rendered by the display
// formatter with its column's type and format (a "B" column with its boolean format,
// a "D" column with date slot 1 of the parsed format).
class ListCellFormatter
{
public:
    ListCellFormatter(const ListColumns &columns, const ParsedFormat *parsed,
                      const RegionalSettings &regional);
    QString format(const QString &cell, int column) const;
    // format(cell, column) of a cell already trimmed, written into out, when the column's
    // fast path renders it; false when it must go through format().
    bool formatFast(QStringView trimmed, int column, CellText &out) const;
    // The same for a number from a database: the text format() gives the number as
    // numberToString writes it.
    bool formatFast(double value, int column, CellText &out) const;
    // Whether the column shows its trimmed cells as they are (type "A", no format).
    bool showsAsIs(int column) const;
    const ValueFormat &valueFormat(int column) const;

private:
    const CellFormat &cellFormat(int column) const;

    std::vector<CellFormat> m_formats; // columns 0..upperBound
    std::vector<bool> m_asIs;
    CellFormat m_default;
};

// Widens a column to fit a text: Length becomes the text's width when that is larger.
void fitColumn(ListColumns &columns, int column, QStringView text, const TextMeasure &measure);

struct ListLoadOptions
{
    const ParsedFormat *parsed = nullptr; // the field's parsed format (separators, slot 1)
    RegionalSettings regional;
    // False: cells are taken as they come, neither trimmed nor formatted (the host's
    // design mode).
    bool formatCells = true;
    TextMeasure measure;
    // A row put in front of the loaded ones, its text in column 0 (the new-item row).
    std::optional<QString> newItemRow;
    // Checked every checkEvery rows: once set, the load stops and reports canceled.
    std::atomic<bool> *cancel = nullptr;
    // Called every checkEvery rows and at the end with the number of rows read.
    std::function<void(int rowsRead)> progress;
    int checkEvery = 4096;
};

struct LoadedList
{
    ListRows rows; // the new-item row included
    ListColumns columns; // as the columnsReady step set them, with the measured widths
    int sourceRows = 0; // rows the source gave
    bool canceled = false; // stopped through the cancel flag; rows and columns are empty
};

// Called once the source's column count is known and before any cell is formatted:
// the field sizes the fresh columns and applies its list format there.
using ColumnsReady = std::function<void(ListColumns &columns, int columnCount)>;

// The rows a host adds one by one, each a line of cells separated by tabs.
class ListItems
{
public:
    // The first line after a reset fixes the column count (its tabs + 1); later lines
    // drop the cells beyond it and leave missing ones empty. Returns true when the line
    // started a new collection.
    bool add(const QString &line);
    // The next line starts a new collection.
    void reset();
    bool isStarted() const { return m_started; }
    const ListRows &rows() const { return m_rows; }

private:
    ListRows m_rows;
    bool m_started = false;
};

class ListLoader
{
public:
    explicit ListLoader(ListLoadOptions options);

    // Opens a connection of its own from the connection string, runs the query
    // forward-only, reads every row, and closes and removes the connection again,
    // also when it fails.
    LoadedList fromConnection(const QString &connectionString, const QString &sql,
                              const ColumnsReady &columnsReady) const;
    // Runs the query on an open connection of the caller (QSqlDatabase::database() for
    // the application's default one), which stays open.
    LoadedList fromDatabase(const QSqlDatabase &db, const QString &sql,
                            const ColumnsReady &columnsReady) const;
    // Reads a host's active query from where it stands (its current row first, when it
    // is on one) to its end, and leaves it there.
    LoadedList fromQuery(QSqlQuery &query, const ColumnsReady &columnsReady) const;
    // The rows added by the host.
    LoadedList fromItems(const ListRows &items, const ColumnsReady &columnsReady) const;
    // A boolean field's list: its true and false texts, and an empty row when
    // enableEmpty; the texts are shown as they are and column 0 is as wide as the
    // wider of the two.
    LoadedList fromBool(const BoolFormat &format, bool enableEmpty) const;

private:
    ListLoadOptions m_options;
};

} // namespace velmora::detail
