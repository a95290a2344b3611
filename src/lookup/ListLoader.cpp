#include "ListLoader.h"
#include "ConnectionString.h"
#include "ListFormat.h"

#include "format/Regional.h"
#include "format/Text.h"

#include <velmora/DatabaseError.h>

#include <QtCore/QDateTime>
#include <QtCore/QHash>
#include <QtSql/QSqlDatabase>
#include <QtSql/QSqlDriver>
#include <QtSql/QSqlError>
#include <QtSql/QSqlQuery>
#include <QtSql/QSqlRecord>

#include <algorithm>

namespace velmora::detail {

namespace {

// The query in a message: its first line, shortened.
QString shownQuery(const QString &sql)
{
    QString s = sql.simplified();
    if (s.size() > 200)
        s = s.left(200) + QStringLiteral("...");
    return s;
}

[[noreturn]] void fail(const QString &what, const QSqlError &error)
{
    const QString driverText = error.text().trimmed();
    throw velmora::DatabaseError(
        driverText.isEmpty() ? what : what + QStringLiteral(": ") + driverText, error);
}

// A database value as the text the list formats: numbers and dates as the regional
// settings write them (so that the display formatter reads them back), Null as "". A
// date with a time of day keeps the time, except in a date column.
QString valueText(const QVariant &v, const RegionalSettings &rs, bool dateColumn)
{
    if (v.isNull())
        return {};
    switch (v.typeId()) {
    case QMetaType::QString:
        return v.toString();
    case QMetaType::Double:
    case QMetaType::Float:
        return numberToString(v.toDouble(), rs);
    case QMetaType::QDate:
        return dateToString(v.toDate(), rs);
    case QMetaType::QDateTime: {
        const QDateTime dt = v.toDateTime();
        const QString date = dateToString(dt.date(), rs);
        return dateColumn || dt.time() == QTime(0, 0)
            ? date
            : date + u' ' + dt.time().toString(QStringLiteral("HH:mm:ss"));
    }
    case QMetaType::QTime:
        return v.toTime().toString(QStringLiteral("HH:mm:ss"));
    case QMetaType::Bool:
        return v.toBool() ? QStringLiteral("True") : QStringLiteral("False");
    case QMetaType::QByteArray:
        return QString::fromUtf8(v.toByteArray());
    default:
        return v.toString(); // the integer types, and whatever else converts
    }
}

// Remembers the formatted texts of a column's cells: dates, codes and prices repeat
// often, and the display formatter is the costly part of a load. A column whose cells
// rarely repeat stops remembering after a trial.
class FormatCache
{
public:
    const QString *find(const QString &raw)
    {
        if (!m_on)
            return nullptr;
        const auto it = m_texts.constFind(raw);
        ++m_lookups;
        if (it != m_texts.cend()) {
            ++m_hits;
            return &*it;
        }
        if (m_lookups == TrialLookups && m_hits * 10 < m_lookups) {
            m_on = false; // mostly distinct values: not worth a lookup per cell
            m_texts = {};
        }
        return nullptr;
    }
    void remember(const QString &raw, const QString &shown)
    {
        if (m_on && m_texts.size() < MaxEntries)
            m_texts.insert(raw, shown);
    }

private:
    static constexpr qsizetype TrialLookups = 4096;
    static constexpr qsizetype MaxEntries = 1 << 16;
    QHash<QString, QString> m_texts;
    qsizetype m_lookups = 0, m_hits = 0;
    bool m_on = true;
};

// Collects the rows of one load: formats and measures each cell, appends the row,
// counts and checks the cancel flag.
class RowBuilder
{
public:
    RowBuilder(const ListLoadOptions &options, LoadedList &out, int columns)
        : m_options(options), m_out(out),
          m_formatter(out.columns, options.parsed, options.regional),
          m_columns(std::max(columns, 0)), m_views(size_t(m_columns)), m_scratch(size_t(m_columns)),
          m_widths(size_t(m_columns)), m_caches(size_t(m_columns)),
          m_measure(bool(options.measure.width)), m_maxChar(options.measure.maxCharWidth)
    {
        m_out.rows = ListRows(m_columns);
        for (int c = 0; c < m_columns; ++c) {
            m_widths[size_t(c)] = out.columns.length(c);
            m_asIs.push_back(!options.formatCells || m_formatter.showsAsIs(c));
        }
    }

    bool isDateColumn(int c) const { return m_formatter.valueFormat(c).type == itDate; }

    // A cell whose text the caller keeps alive until endRow().
    void cell(int c, QStringView raw)
    {
        if (!m_options.formatCells) {
            take(c, raw);
        } else if (m_asIs[size_t(c)]) {
            take(c, trimmedBlanks(raw));
        } else {
            formatted(c, raw.toString());
        }
    }
    // A cell given as a string: kept here until endRow().
    void cell(int c, QString raw)
    {
        if (!m_options.formatCells || m_asIs[size_t(c)]) {
            m_scratch[size_t(c)] = std::move(raw);
            take(c,
                 m_options.formatCells ? trimmedBlanks(m_scratch[size_t(c)])
                                       : QStringView(m_scratch[size_t(c)]));
        } else {
            formatted(c, raw);
        }
    }

    // Appends the row; false once the load is canceled.
    bool endRow()
    {
        m_out.rows.appendRow(m_views);
        ++m_out.sourceRows;
        if (m_out.sourceRows % std::max(m_options.checkEvery, 1) == 0) {
            if (m_options.progress)
                m_options.progress(m_out.sourceRows);
            if (m_options.cancel && m_options.cancel->load(std::memory_order_relaxed)) {
                m_out = LoadedList();
                m_out.canceled = true;
                return false;
            }
        }
        return true;
    }

    // Stores the widths and adds the new-item row.
    void finish()
    {
        if (m_out.canceled)
            return;
        if (m_options.progress && m_out.sourceRows % std::max(m_options.checkEvery, 1) != 0)
            m_options.progress(m_out.sourceRows);
        for (int c = 0; c < m_columns; ++c)
            if (m_widths[size_t(c)] > m_out.columns.length(c))
                m_out.columns.setLength(c, m_widths[size_t(c)]);
        if (m_options.newItemRow) {
            if (m_out.rows.columnCount() == 0)
                m_out.rows.setColumnCount(1);
            const QString text = *m_options.newItemRow;
            m_out.rows.prependRow({QStringView(text)});
            fitColumn(m_out.columns, 0, text, {m_options.measure.width, 0, {}});
        }
    }

private:
    void formatted(int c, const QString &raw)
    {
        QString &shown = m_scratch[size_t(c)];
        FormatCache &cache = m_caches[size_t(c)];
        if (const QString *known = cache.find(raw)) {
            shown = *known;
        } else {
            shown = m_formatter.format(raw, c);
            cache.remember(raw, shown);
        }
        take(c, shown);
    }

    void take(int c, QStringView text)
    {
        m_views[size_t(c)] = text;
        if (!m_measure || text.isEmpty())
            return;
        int &width = m_widths[size_t(c)];
        if (!m_options.measure.mayPass(text, width))
            return; // cannot be wider than the column already is
        width = std::max(width, m_options.measure.width(text));
    }

    const ListLoadOptions &m_options;
    LoadedList &m_out;
    ListCellFormatter m_formatter;
    int m_columns;
    std::vector<QStringView> m_views;
    std::vector<QString> m_scratch;
    std::vector<int> m_widths;
    std::vector<bool> m_asIs;
    std::vector<FormatCache> m_caches;
    bool m_measure;
    int m_maxChar;
};

// Reads a positioned or fresh query to its end.
void readQuery(QSqlQuery &query, const ListLoadOptions &options, LoadedList &out,
               const ColumnsReady &columnsReady, const QString &what)
{
    const int columns = query.record().count();
    if (columnsReady)
        columnsReady(out.columns, columns);
    RowBuilder rows(options, out, columns);
    std::vector<bool> dateColumn(size_t(std::max(columns, 0)));
    for (int c = 0; c < columns; ++c)
        dateColumn[size_t(c)] = rows.isDateColumn(c);
    bool onRow = query.isValid() || (query.at() == QSql::BeforeFirstRow && query.next());
    while (onRow) {
        for (int c = 0; c < columns; ++c)
            rows.cell(c, valueText(query.value(c), options.regional, dateColumn[size_t(c)]));
        if (!rows.endRow())
            return;
        onRow = query.next();
    }
    // next() also answers false when the rows break off: the error tells.
    if (query.lastError().type() != QSqlError::NoError)
        fail(QStringLiteral("reading the rows of %1 failed").arg(what), query.lastError());
    rows.finish();
}

LoadedList runQuery(const QSqlDatabase &db, const QString &sql, const ListLoadOptions &options,
                    const ColumnsReady &columnsReady, const QString &where)
{
    QSqlQuery query(db);
    query.setForwardOnly(true);
    const QString what = QStringLiteral("the list query \"%1\" on %2").arg(shownQuery(sql), where);
    if (!query.exec(sql))
        fail(QStringLiteral("running %1 failed").arg(what), query.lastError());
    LoadedList out;
    readQuery(query, options, out, columnsReady, what);
    return out;
}

QString describe(const QSqlDatabase &db)
{
    ConnectionSettings cs;
    cs.driver = db.driverName();
    cs.databaseName = db.databaseName();
    cs.hostName = db.hostName();
    cs.port = db.port();
    cs.userName = db.userName();
    if (cs.driver == u"QODBC")
        return QStringLiteral("the QODBC connection \"%1\"").arg(db.connectionName());
    return cs.describe();
}

// A connection of the loader's own, removed when the load ends whichever way it ends.
class OwnConnection
{
public:
    OwnConnection()
    {
        static std::atomic<quint64> counter {0};
        m_name = QStringLiteral("velmora-list-%1").arg(++counter);
    }
    ~OwnConnection()
    {
        {
            QSqlDatabase db = QSqlDatabase::database(m_name, false);
            if (db.isValid())
                db.close();
        }
        QSqlDatabase::removeDatabase(m_name);
    }
    OwnConnection(const OwnConnection &) = delete;
    OwnConnection &operator=(const OwnConnection &) = delete;
    const QString &name() const { return m_name; }

private:
    QString m_name;
};

// What every column's format starts from: the field's parsed format, the list's
// regional settings, and the date layout of the list's value column.
ValueFormat listValueFormat(const ParsedFormat *parsed, const RegionalSettings &regional)
{
    ValueFormat vf;
    vf.parsed = parsed;
    vf.regional = regional;
    vf.dateSlot = 1;
    return vf;
}

} // namespace

ListCellFormatter::ListCellFormatter(const ListColumns &columns, const ParsedFormat *parsed,
                                     const RegionalSettings &regional)
    : m_default(listValueFormat(parsed, regional))
{
    for (int c = 0; c <= columns.upperBound(); ++c) {
        ValueFormat vf = m_default.valueFormat();
        vf.type = columns.dataType(c);
        vf.format = columns.formatString(c);
        if (vf.type == itBool)
            vf.boolFormat = columns.boolFormat(leadingIndex(vf.format));
        m_asIs.push_back(vf.type == itAlfaNum && vf.format.isEmpty());
        // Each column's pattern is read here once, not again for every cell.
        m_formats.emplace_back(vf);
    }
}

const CellFormat &ListCellFormatter::cellFormat(int column) const
{
    return column >= 0 && size_t(column) < m_formats.size() ? m_formats[size_t(column)] : m_default;
}

const ValueFormat &ListCellFormatter::valueFormat(int column) const
{
    return cellFormat(column).valueFormat();
}

bool ListCellFormatter::showsAsIs(int column) const
{
    return column >= 0 && size_t(column) < m_asIs.size() ? m_asIs[size_t(column)] : true;
}

QString ListCellFormatter::format(const QString &cell, int column) const
{
    return cellFormat(column).format(trimBlanks(cell));
}

void fitColumn(ListColumns &columns, int column, QStringView text, const TextMeasure &measure)
{
    if (!measure.width || text.isEmpty())
        return;
    const int length = columns.length(column);
    if (!measure.mayPass(text, length))
        return;
    const int width = measure.width(text);
    if (width > length)
        columns.setLength(column, width);
}

bool ListItems::add(const QString &line)
{
    const bool starting = !m_started;
    const QList<QStringView> cells = QStringView(line).split(u'\t');
    if (starting) {
        m_rows = ListRows(int(cells.size()));
        m_started = true;
    }
    m_rows.appendRow(std::span<const QStringView>(cells.data(), size_t(cells.size())));
    return starting;
}

void ListItems::reset()
{
    m_rows = ListRows();
    m_started = false;
}

ListLoader::ListLoader(ListLoadOptions options) : m_options(std::move(options)) { }

LoadedList ListLoader::fromConnection(const QString &connectionString, const QString &sql,
                                      const ColumnsReady &columnsReady) const
{
    const ConnectionSettings settings = parseConnectionString(connectionString);
    OwnConnection connection;
    QSqlDatabase db = QSqlDatabase::addDatabase(settings.driver, connection.name());
    settings.applyTo(db);
    if (!db.open())
        fail(QStringLiteral("cannot connect to %1").arg(settings.describe()), db.lastError());
    return runQuery(db, sql, m_options, columnsReady, settings.describe());
}

LoadedList ListLoader::fromDatabase(const QSqlDatabase &db, const QString &sql,
                                    const ColumnsReady &columnsReady) const
{
    if (!db.isValid())
        fail(QStringLiteral("there is no database connection to load the list from "
                            "(the application has no default connection)"),
             QSqlError(QString(), QString(), QSqlError::ConnectionError));
    if (!db.isOpen()) {
        QSqlDatabase opened = db;
        if (!opened.open())
            fail(QStringLiteral("cannot connect to %1").arg(describe(db)), opened.lastError());
    }
    return runQuery(db, sql, m_options, columnsReady, describe(db));
}

LoadedList ListLoader::fromQuery(QSqlQuery &query, const ColumnsReady &columnsReady) const
{
    if (!query.isActive())
        fail(QStringLiteral("the query given for the list has not been run (it is not active)"),
             query.lastError());
    LoadedList out;
    readQuery(
        query, m_options, out, columnsReady,
        QStringLiteral("the query \"%1\" given for the list").arg(shownQuery(query.lastQuery())));
    return out;
}

LoadedList ListLoader::fromItems(const ListRows &items, const ColumnsReady &columnsReady) const
{
    LoadedList out;
    const int columns = items.columnCount();
    if (columnsReady)
        columnsReady(out.columns, columns);
    RowBuilder rows(m_options, out, columns);
    for (int r = 0; r < items.rowCount(); ++r) {
        for (int c = 0; c < columns; ++c)
            rows.cell(c, items.cell(r, c));
        if (!rows.endRow())
            return out;
    }
    rows.finish();
    return out;
}

LoadedList ListLoader::fromBool(const BoolFormat &format, bool enableEmpty) const
{
    LoadedList out;
    out.columns.setUpperBound(0);
    out.rows = ListRows(1);
    out.rows.appendRow({QStringView(format.trueText)});
    out.rows.appendRow({QStringView(format.falseText)});
    if (enableEmpty)
        out.rows.appendRow({QStringView()});
    out.sourceRows = out.rows.rowCount();
    if (m_options.measure.width)
        out.columns.setLength(0,
                              std::max(m_options.measure.width(format.trueText),
                                       m_options.measure.width(format.falseText)));
    return out;
}

} // namespace velmora::detail
