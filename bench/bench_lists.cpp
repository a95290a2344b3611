// List loading benchmark: what loading a big lookup list costs through the plain ways Qt
// and SQLite offer, as anchors for the field's own loader.
//
// The list: N rows (1,000,000 unless --rows says otherwise) of three columns, an amount
// (12345.67), a text ("Customer 123456 of Brno", some city names with Czech letters) and a
// date, generated once into an SQLite file in a temporary directory and, when a PostgreSQL
// server is given (VELMORA_PG_ENV, --pg-env or the --pg-* options), into a table there.
// Every scenario reads all rows of SELECT amount, name, day ... ORDER BY id.
//
// Anchors, by scenario:
//   Load from SQLite      a) sqlite3 C API, one std::string per cell
//                         b) QSqlQueryModel, fetchMore until canFetchMore() is false
//                         c) forward-only QSqlQuery (QSQLITE), one QString per cell
//                         c-odbc) the same through QODBC and the driver "SQLite3"
//   Load from PostgreSQL  d) forward-only QSqlQuery (QPSQL), one QString per cell
//                         d-odbc) the same through QODBC and "PostgreSQL Unicode"
//                         d-odbc-cursor) the same with UseDeclareFetch=1;Fetch=10000
//   First drop-down       e) a QComboBox given the N texts (addItems), shown, its popup
//                            shown and painted (offscreen platform)
//   Find a value          f) row-by-row search of a present value in the text column:
//                            trimmed, upper-cased equality, lowest row wins; the figure is
//                            the median of one lookup
// The field's side, marked "Velmora side" below, runs each scenario through a field:
//   Load from SQLite      InitList of a field with SQLConnect "Driver=QSQLITE;...", the
//                         query above and ListFormatString "N#,##0.00|A|D"
//   Load from PostgreSQL  the same over "Driver=QPSQL;..." (its connect is in the figure)
//   First drop-down       Page Down in the loaded field's edit box until its list window
//                         has painted; and type-ahead in the open list, per typed key
//   Find a value          setValue of a field whose list is the text column, per lookup,
//                         and the row search alone (ListRows::findRow), per lookup
// Each Velmora line gives its ratio to the scenario's anchors and the targets it meets.
//
// Honest peaks: every measured run is a process of its own (this program, started again
// with --child), which opens its connection and warms up on the first 1000 rows, resets
// its peak resident size (/proc/self/clear_refs) and then runs the phase once. The
// figures are the wall time of the phase and VmHWM after it less VmRSS before it: the
// memory the phase took at its worst, whatever it freed before the end. A run in one
// process after another would find the freed memory of the last one and show no growth.
//
// Rounds: in each round every phase runs --per-round times, interleaved so that load
// from elsewhere on the machine falls on all alike. Rounds repeat until the medians of
// the last --window rounds agree within 5 % for every phase, up to --max-rounds;
// otherwise the result says "noisy".

#include "BenchStats.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDate>
#include <QtCore/QEventLoop>
#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTimer>
#include <QtCore/QUrl>
#include <QtSql/QSqlDatabase>
#include <QtSql/QSqlError>
#include <QtSql/QSqlQuery>
#include <QtSql/QSqlQueryModel>
#include <QtTest/QTest>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QTableView>
#include <QtWidgets/QVBoxLayout>

#include <velmora/Velmora.h>

#include "lookup/ListRows.h"

#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

using velmora::bench::medianOf;
using velmora::bench::spreadOf;

namespace {

using Clock = std::chrono::steady_clock;

constexpr double StableSpread = 0.05;
constexpr qint64 WarmUpRows = 1000;

double msSince(Clock::time_point t0)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - t0).count();
}

// A time in ms with the digits that count: lookups take microseconds, loads seconds.
QString msText(double ms)
{
    return QString::asprintf("%11.*f", ms >= 100 ? 1 : ms >= 1 ? 2 : 5, ms);
}

// ---------------------------------------------------------------------------------------
// The list

const char *const Cities[] = {"Brno",    "Praha",          "Ostrava",          "Plzeň",
                              "Olomouc", "Ústí nad Labem", "České Budějovice", "Zlín"};

// Row i (from 1): the amount in cents, the text and the date.
qint64 centsOf(qint64 i)
{
    return (i * 7919 + 1234567) % 10000000;
}

std::string nameOf(qint64 i)
{
    char buf[96];
    std::snprintf(buf, sizeof buf, "Customer %06lld of %s", static_cast<long long>(i),
                  Cities[i % std::size(Cities)]);
    return buf;
}

QDate dayOf(qint64 i)
{
    return QDate(2000, 1, 1).addDays((i * 37) % 9000);
}

const QString ListQuery = QStringLiteral("SELECT amount, name, day FROM bench_lists ORDER BY id");

QString limited(qint64 rows)
{
    return ListQuery + QStringLiteral(" LIMIT %1").arg(rows);
}

// The row whose text every load reports back, to prove it read the whole list right.
qint64 checkRow(qint64 rows)
{
    return rows / 2 + 1;
}

QString sqliteError(sqlite3 *db)
{
    return QString::fromUtf8(sqlite3_errmsg(db));
}

// Writes the list into a new SQLite file: one transaction, one prepared insert.
bool writeSqlite(const QString &file, qint64 rows, QString &why)
{
    sqlite3 *db = nullptr;
    if (sqlite3_open(QFile::encodeName(file).constData(), &db) != SQLITE_OK) {
        why = sqliteError(db);
        sqlite3_close(db);
        return false;
    }
    const auto exec = [&](const char *sql) {
        if (sqlite3_exec(db, sql, nullptr, nullptr, nullptr) == SQLITE_OK)
            return true;
        why = sqliteError(db);
        return false;
    };
    bool ok = exec("PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF;"
                   "CREATE TABLE bench_lists (id INTEGER PRIMARY KEY, amount REAL, name TEXT,"
                   " day DATE); BEGIN");
    sqlite3_stmt *insert = nullptr;
    ok = ok
        && sqlite3_prepare_v2(db, "INSERT INTO bench_lists VALUES (?, ?, ?, ?)", -1, &insert,
                              nullptr)
            == SQLITE_OK;
    for (qint64 i = 1; ok && i <= rows; ++i) {
        const std::string name = nameOf(i);
        const QByteArray day = dayOf(i).toString(Qt::ISODate).toLatin1();
        sqlite3_bind_int64(insert, 1, i);
        sqlite3_bind_double(insert, 2, double(centsOf(i)) / 100);
        sqlite3_bind_text(insert, 3, name.data(), int(name.size()), SQLITE_TRANSIENT);
        sqlite3_bind_text(insert, 4, day.constData(), int(day.size()), SQLITE_TRANSIENT);
        ok = sqlite3_step(insert) == SQLITE_DONE && sqlite3_reset(insert) == SQLITE_OK;
    }
    if (!ok && why.isEmpty())
        why = sqliteError(db);
    sqlite3_finalize(insert);
    ok = ok && exec("COMMIT");
    sqlite3_close(db);
    return ok;
}

// ---------------------------------------------------------------------------------------
// The PostgreSQL server, from a file of key=value lines as the test run writes it

struct PgServer
{
    QString host, db, user, password, odbcSysIni;
    int port = 0;

    bool given() const { return !host.isEmpty(); }
    QString toText() const
    {
        return QStringLiteral("host=%1\nport=%2\ndb=%3\nuser=%4\npassword=%5\nodbcsysini=%6\n")
            .arg(host)
            .arg(port)
            .arg(db, user, password, odbcSysIni);
    }
    static PgServer fromText(const QByteArray &text)
    {
        PgServer s;
        for (const QByteArray &line : text.split('\n')) {
            const qsizetype eq = line.indexOf('=');
            if (eq <= 0)
                continue;
            const QByteArray key = line.left(eq);
            const QString value = QString::fromUtf8(line.mid(eq + 1));
            if (key == "host")
                s.host = value;
            else if (key == "port")
                s.port = value.toInt();
            else if (key == "db")
                s.db = value;
            else if (key == "user")
                s.user = value;
            else if (key == "password")
                s.password = value;
            else if (key == "odbcsysini")
                s.odbcSysIni = value;
        }
        return s;
    }
    QString odbcString(const QString &extra = QString()) const
    {
        return QStringLiteral("Driver={PostgreSQL Unicode};Server=%1;Port=%2;Database=%3;Uid=%4;"
                              "Pwd=%5")
                   .arg(host)
                   .arg(port)
                   .arg(db, user, password)
            + extra;
    }
};

QSqlDatabase openPostgres(const PgServer &s, const QString &name)
{
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), name);
    db.setHostName(s.host);
    db.setPort(s.port);
    db.setDatabaseName(s.db);
    db.setUserName(s.user);
    db.setPassword(s.password);
    db.open();
    return db;
}

// Writes the list into the table bench_lists: multi-row inserts of 1000 rows in one
// transaction, then VACUUM ANALYZE so that the first read sets no hint bits.
bool writePostgres(QSqlDatabase &db, qint64 rows, QString &why)
{
    QSqlQuery q(db);
    const auto exec = [&](const QString &sql) {
        if (q.exec(sql))
            return true;
        why = q.lastError().text();
        return false;
    };
    bool ok = exec(QStringLiteral("SET client_min_messages = warning"))
        && exec(QStringLiteral("DROP TABLE IF EXISTS bench_lists"))
        && exec(QStringLiteral("CREATE UNLOGGED TABLE bench_lists (id integer PRIMARY KEY,"
                               " amount numeric(12,2), name text, day date)"))
        && db.transaction();
    for (qint64 first = 1; ok && first <= rows; first += 1000) {
        QString sql = QStringLiteral("INSERT INTO bench_lists VALUES ");
        for (qint64 i = first; i <= std::min(rows, first + 999); ++i) {
            const qint64 c = centsOf(i);
            sql += QStringLiteral("(%1,%2.%3,'%4','%5'),")
                       .arg(i)
                       .arg(c / 100)
                       .arg(c % 100, 2, 10, QLatin1Char('0'))
                       .arg(QString::fromStdString(nameOf(i)), dayOf(i).toString(Qt::ISODate));
        }
        sql.chop(1);
        ok = exec(sql);
    }
    ok = ok && db.commit();
    return ok && exec(QStringLiteral("VACUUM ANALYZE bench_lists"));
}

// ---------------------------------------------------------------------------------------
// One measured run, in a process of its own

long statusKb(const char *key)
{
    QFile f(QStringLiteral("/proc/self/status"));
    if (!f.open(QIODevice::ReadOnly))
        return -1;
    const qsizetype n = qstrlen(key);
    for (const QByteArray &line : f.readAll().split('\n'))
        if (line.startsWith(key))
            return line.mid(n).trimmed().split(' ').first().toLong();
    return -1;
}

struct Sample
{
    double ms = 0;
    long growKb = 0;
    qint64 rows = 0;
    QString check; // the text of checkRow(), or what the phase checks instead
    QString error;
    QString note; // what the median leaves out, said in words
};

// Times one phase and the memory it takes at its peak.
class Meter
{
public:
    void start()
    {
        // "5" resets VmHWM to the current resident size (Linux 4.0 and later).
        QFile clear(QStringLiteral("/proc/self/clear_refs"));
        m_peakReset = clear.open(QIODevice::WriteOnly) && clear.write("5") == 1;
        clear.close();
        m_baseKb = statusKb("VmRSS:");
        m_t0 = Clock::now();
    }
    void stop(Sample &s)
    {
        s.ms = msSince(m_t0);
        s.growKb = statusKb("VmHWM:") - m_baseKb;
        if (!m_peakReset)
            s.error = QStringLiteral("cannot reset the peak resident size");
    }

private:
    Clock::time_point m_t0;
    long m_baseKb = 0;
    bool m_peakReset = false;
};

struct Context
{
    qint64 rows = 0;
    QString sqliteFile;
    PgServer pg;
    int lookups = 0;
};

// A: the sqlite3 C API, each cell copied into a std::string.
qint64 scanSqlite(sqlite3 *db, const QString &sql, std::vector<std::string> &cells, QString &error)
{
    sqlite3_stmt *st = nullptr;
    if (sqlite3_prepare_v2(db, sql.toUtf8().constData(), -1, &st, nullptr) != SQLITE_OK) {
        error = sqliteError(db);
        return -1;
    }
    qint64 rows = 0;
    int rc;
    while ((rc = sqlite3_step(st)) == SQLITE_ROW) {
        for (int c = 0; c < 3; ++c) {
            const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(st, c));
            cells.emplace_back(text ? text : "", size_t(sqlite3_column_bytes(st, c)));
        }
        ++rows;
    }
    if (rc != SQLITE_DONE)
        error = sqliteError(db);
    sqlite3_finalize(st);
    return rows;
}

Sample anchorSqliteApi(Context &c)
{
    Sample s;
    sqlite3 *db = nullptr;
    if (sqlite3_open_v2(QFile::encodeName(c.sqliteFile).constData(), &db,
                        SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX, nullptr)
        != SQLITE_OK) {
        s.error = sqliteError(db);
        return s;
    }
    {
        std::vector<std::string> warm;
        scanSqlite(db, limited(WarmUpRows), warm, s.error);
    }
    std::vector<std::string> cells;
    Meter m;
    m.start();
    s.rows = scanSqlite(db, ListQuery, cells, s.error);
    m.stop(s);
    if (s.rows >= checkRow(c.rows))
        s.check = QString::fromStdString(cells[size_t(checkRow(c.rows) - 1) * 3 + 1]);
    return s;
}

// Every cell of a forward-only query as a QString.
qint64 readCells(const QSqlDatabase &db, const QString &sql, std::vector<QString> &cells,
                 QString &error)
{
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (!q.exec(sql)) {
        error = q.lastError().text();
        return -1;
    }
    qint64 rows = 0;
    while (q.next()) {
        for (int col = 0; col < 3; ++col)
            cells.push_back(q.value(col).toString());
        ++rows;
    }
    if (q.lastError().isValid())
        error = q.lastError().text();
    return rows;
}

Sample forwardOnly(Context &c, const QSqlDatabase &db)
{
    Sample s;
    if (!db.isOpen()) {
        s.error = db.lastError().text();
        return s;
    }
    {
        std::vector<QString> warm;
        readCells(db, limited(WarmUpRows), warm, s.error);
    }
    std::vector<QString> cells;
    Meter m;
    m.start();
    s.rows = readCells(db, ListQuery, cells, s.error);
    m.stop(s);
    if (s.rows >= checkRow(c.rows))
        s.check = cells[size_t(checkRow(c.rows) - 1) * 3 + 1];
    return s;
}

QSqlDatabase openSqlite(const Context &c)
{
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
    db.setDatabaseName(c.sqliteFile);
    db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
    db.open();
    return db;
}

QSqlDatabase openOdbc(const QString &connect)
{
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QODBC"));
    db.setDatabaseName(connect);
    db.open();
    return db;
}

Sample anchorModel(Context &c)
{
    Sample s;
    QSqlDatabase db = openSqlite(c);
    if (!db.isOpen()) {
        s.error = db.lastError().text();
        return s;
    }
    const auto load = [&](QSqlQueryModel &model, const QString &sql) {
        model.setQuery(QSqlQuery(sql, db));
        while (model.canFetchMore())
            model.fetchMore();
    };
    {
        QSqlQueryModel warm;
        load(warm, limited(WarmUpRows));
    }
    QSqlQueryModel model;
    Meter m;
    m.start();
    load(model, ListQuery);
    m.stop(s);
    if (model.lastError().isValid())
        s.error = model.lastError().text();
    s.rows = model.rowCount();
    s.check = model.data(model.index(int(checkRow(c.rows) - 1), 1)).toString();
    return s;
}

Sample anchorSqliteQuery(Context &c)
{
    return forwardOnly(c, openSqlite(c));
}

Sample anchorSqliteOdbc(Context &c)
{
    return forwardOnly(c, openOdbc(QStringLiteral("Driver={SQLite3};Database=") + c.sqliteFile));
}

Sample anchorPostgres(Context &c)
{
    return forwardOnly(c, openPostgres(c.pg, QStringLiteral("list")));
}

Sample anchorPostgresOdbc(Context &c)
{
    return forwardOnly(c, openOdbc(c.pg.odbcString()));
}

Sample anchorPostgresOdbcCursor(Context &c)
{
    return forwardOnly(c,
                       openOdbc(c.pg.odbcString(QStringLiteral(";UseDeclareFetch=1;Fetch=10000"))));
}

QStringList allNames(qint64 rows)
{
    QStringList names;
    names.reserve(rows);
    for (qint64 i = 1; i <= rows; ++i)
        names << QString::fromStdString(nameOf(i));
    return names;
}

// Counts the paint events a widget receives.
class PaintCounter final : public QObject
{
public:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            ++paints;
        return false;
    }
    int paints = 0;
};

// Adds the texts, shows the box and its popup, and processes events until the popup's
// list has painted; false when that does not happen within a minute.
bool dropDown(QComboBox &box, const QStringList &texts)
{
    PaintCounter counter;
    box.view()->viewport()->installEventFilter(&counter);
    box.addItems(texts);
    box.show();
    box.showPopup();
    const auto t0 = Clock::now();
    while (counter.paints == 0 && msSince(t0) < 60000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    box.view()->viewport()->removeEventFilter(&counter);
    return counter.paints > 0;
}

Sample anchorComboBox(Context &c)
{
    Sample s;
    {
        QComboBox warm;
        dropDown(warm, allNames(WarmUpRows));
        warm.hidePopup();
    }
    QCoreApplication::processEvents();
    const QStringList names = allNames(c.rows);
    QComboBox box;
    Meter m;
    m.start();
    const bool painted = dropDown(box, names);
    m.stop(s);
    if (!painted)
        s.error = QStringLiteral("the popup did not paint within a minute");
    s.rows = box.count();
    s.check = box.itemText(int(checkRow(c.rows) - 1));
    return s;
}

// The lowest row whose trimmed, upper-cased text equals the trimmed, upper-cased value,
// or -1: the search a list does without an index.
qint64 findRowByRow(const std::vector<QString> &column, const QString &value)
{
    const QString wanted = value.trimmed().toUpper();
    for (size_t i = 0; i < column.size(); ++i)
        if (column[i].trimmed().toUpper() == wanted)
            return qint64(i);
    return -1;
}

// Values as a user types them: another case, blanks around; every one present.
std::vector<std::pair<QString, qint64>> lookupsOf(qint64 rows, int count)
{
    std::mt19937_64 rng(20260517);
    std::uniform_int_distribution<qint64> row(1, rows);
    std::vector<std::pair<QString, qint64>> out;
    for (int n = 0; n < count; ++n) {
        const qint64 i = row(rng);
        out.emplace_back(QStringLiteral("  %1 ").arg(QString::fromStdString(nameOf(i)).toLower()),
                         i - 1);
    }
    return out;
}

Sample anchorFind(Context &c)
{
    Sample s;
    std::vector<QString> column;
    column.reserve(size_t(c.rows));
    for (qint64 i = 1; i <= c.rows; ++i)
        column.push_back(QString::fromStdString(nameOf(i)));
    const auto lookups = lookupsOf(c.rows, c.lookups);
    findRowByRow(column, lookups.front().first); // warm-up
    std::vector<double> ms;
    int right = 0;
    Meter m;
    m.start();
    for (const auto &[value, row] : lookups) {
        const auto t0 = Clock::now();
        const qint64 found = findRowByRow(column, value);
        ms.push_back(msSince(t0));
        right += found == row ? 1 : 0;
    }
    m.stop(s);
    std::nth_element(ms.begin(), ms.begin() + ms.size() / 2, ms.end());
    s.ms = ms[ms.size() / 2];
    s.rows = qint64(column.size());
    s.check = QStringLiteral("%1 of %2 found").arg(right).arg(lookups.size());
    return s;
}

// ---------------------------------------------------------------------------------------
// Velmora side: one function per scenario, doing what the anchors of the scenario do
// (warm up on the first WarmUpRows rows, then Meter::start(), the work, Meter::stop())
// through a field, and filling rows and check the same way: for the loads and the
// drop-down the text of row checkRow(), for the per-lookup and per-key phases "N of N
// found" with the median of one lookup (or key) as ms. What a median hides (the first
// lookup that builds the index, the slowest keys) goes into the note.

const QString ListFormat = QStringLiteral("N#,##0.00|A|D");
const QString NameQuery = QStringLiteral("SELECT name FROM bench_lists ORDER BY id");

QString sqliteConnect(const Context &c)
{
    return QStringLiteral("Driver=QSQLITE;Database=") + c.sqliteFile;
}

QString postgresConnect(const Context &c)
{
    return QStringLiteral("Driver=QPSQL;Host=%1;Port=%2;Database=%3;User=%4;Password=%5")
        .arg(c.pg.host)
        .arg(c.pg.port)
        .arg(c.pg.db, c.pg.user, c.pg.password);
}

// A list field of the three columns: the amount its value, the text shown and searched.
// Messages are off: a message box would wait for a user who is not there.
void setUpListField(velmora::Velmora &f, const QString &connect, const QString &sql)
{
    f.setMessages(false);
    f.setSetList(true);
    f.setListFormatString(ListFormat);
    f.setValueCol(0);
    f.setTextCol(1);
    f.setMatchCol(1);
    f.setSQLConnect(connect);
    f.setSQLList(sql);
}

QTableView *listTable(const velmora::Velmora &f)
{
    return f.findChild<QTableView *>(QStringLiteral("lstList"));
}

QString listCell(const velmora::Velmora &f, qint64 row, int column)
{
    const QTableView *table = listTable(f);
    return table ? table->model()->index(int(row), column).data().toString() : QString();
}

// Loads the field's list; false, with the error in the sample, when the load throws.
bool initList(velmora::Velmora &field, Sample &s)
{
    try {
        field.InitList();
        return true;
    } catch (const velmora::DatabaseError &e) {
        s.error = e.message();
        return false;
    }
}

// InitList of a field, timed, after a load of the first rows on the same field.
Sample loadThroughField(Context &c, const QString &connect)
{
    Sample s;
    velmora::Velmora field;
    setUpListField(field, connect, limited(WarmUpRows));
    if (!initList(field, s))
        return s;
    field.setSQLList(ListQuery);
    Meter m;
    m.start();
    const bool loaded = initList(field, s);
    m.stop(s);
    if (!loaded)
        return s;
    s.rows = field.ListCount();
    s.check = listCell(field, checkRow(c.rows) - 1, 1);
    return s;
}

// Load from SQLite: a field given "Driver=QSQLITE;Database=<c.sqliteFile>" and ListQuery.
Sample velmoraLoadSqlite(Context &c)
{
    return loadThroughField(c, sqliteConnect(c));
}

// Load from PostgreSQL: the same through "Driver=QPSQL;Host=...". The field opens its
// connection inside InitList, so the figure holds a connect that the anchor's does not.
Sample velmoraLoadPostgres(Context &c)
{
    return loadThroughField(c, postgresConnect(c));
}

// A shown form with a list field that has focus, loaded from the SQLite file.
struct ListForm
{
    QWidget form;
    velmora::Velmora *field = new velmora::Velmora(&form);

    ListForm(const Context &c, const QString &sql)
    {
        auto *layout = new QVBoxLayout(&form);
        layout->addWidget(field);
        setUpListField(*field, sqliteConnect(c), sql);
        form.show();
        QApplication::setActiveWindow(&form);
        field->setFocus();
        QCoreApplication::processEvents();
    }
    QLineEdit *box() const { return field->findChild<QLineEdit *>(QStringLiteral("txtInput")); }

    // Presses Page Down in the field and runs `inList` once the list window is shown, from
    // the event loop the open window runs; `inList` closes the window (a window still
    // open after a minute is closed). False when Page Down opened no window.
    bool dropDown(const std::function<void(QTableView *)> &inList)
    {
        QTableView *table = listTable(*field);
        if (!table)
            return false;
        bool opened = false;
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, [&] {
            if (opened || !table->isVisible())
                return;
            opened = true;
            inList(table);
        });
        poll.start(0);
        QTimer giveUp;
        giveUp.setSingleShot(true);
        QObject::connect(&giveUp, &QTimer::timeout, [&] {
            if (table->isVisible())
                QTest::keyClick(table, Qt::Key_Escape);
        });
        giveUp.start(60000);
        QTest::keyClick(box(), Qt::Key_PageDown);
        return opened;
    }
};

// First drop-down: a field holding the N rows, shown; from Page Down in its edit box until
// the list window has painted its rows. The list is loaded beforehand (the load is the
// scenarios above); a field of the first rows drops down once to warm up.
Sample velmoraFirstDropDown(Context &c)
{
    Sample s;
    {
        ListForm warm(c, limited(WarmUpRows));
        if (!initList(*warm.field, s))
            return s;
        warm.dropDown([](QTableView *table) { QTest::keyClick(table, Qt::Key_Escape); });
    }
    ListForm f(c, ListQuery);
    if (!initList(*f.field, s))
        return s;
    QCoreApplication::processEvents();
    QTableView *table = listTable(*f.field);
    PaintCounter counter;
    table->viewport()->installEventFilter(&counter);
    Meter m;
    bool painted = false;
    m.start();
    // The window's loop runs the poll before it paints, so the poll waits for the paint:
    // a zero timer after the first paint event fires once that paint is done.
    const bool opened = f.dropDown([&](QTableView *t) {
        QTimer wait;
        QEventLoop loop;
        QObject::connect(&wait, &QTimer::timeout, [&] {
            if (counter.paints > 0)
                loop.quit();
        });
        wait.start(0);
        QTimer::singleShot(60000, &loop, &QEventLoop::quit);
        loop.exec();
        m.stop(s);
        painted = counter.paints > 0;
        QTest::keyClick(t, Qt::Key_Escape);
    });
    table->viewport()->removeEventFilter(&counter);
    if (!opened)
        s.error = QStringLiteral("Page Down opened no list window");
    else if (!painted)
        s.error = QStringLiteral("the list window did not paint within a minute");
    s.rows = f.field->ListCount();
    s.check = listCell(*f.field, checkRow(c.rows) - 1, 1);
    return s;
}

// The value below which the given share of the values lies (1: the largest).
double upperOf(std::vector<double> v, double share)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[std::min(v.size() - 1, size_t(double(v.size()) * share))];
}

// Type-ahead in the open list: per lookup the list is opened and the row's number typed
// as "customer 123456", key by key; each key's time lasts until the list has repainted.
// Every text starts with "Customer ", whose keys find row 0 at once; the figure is the
// median of the digit keys, which search deep into the list as a user's distinguishing
// keys do. The note gives the median of all keys and the slowest.
Sample velmoraTypeAhead(Context &c)
{
    Sample s;
    ListForm f(c, ListQuery);
    if (!initList(*f.field, s))
        return s;
    f.dropDown([](QTableView *table) {
        QTest::keyClicks(table, QStringLiteral("customer 000"));
        QTest::keyClick(table, Qt::Key_Escape);
    });
    std::mt19937_64 rng(20260518);
    std::uniform_int_distribution<qint64> rowOf(1, c.rows);
    std::vector<double> ms, digitMs;
    int right = 0;
    Meter m;
    m.start();
    for (int n = 0; n < c.lookups; ++n) {
        const qint64 i = rowOf(rng);
        const QByteArray typed
            = QStringLiteral("customer %1").arg(i, 6, 10, QLatin1Char('0')).toLatin1();
        f.dropDown([&](QTableView *table) {
            QCoreApplication::processEvents();
            for (qsizetype k = 0; k < typed.size(); ++k) {
                const auto t0 = Clock::now();
                QTest::keyClick(table, typed.at(k));
                QCoreApplication::processEvents();
                ms.push_back(msSince(t0));
                if (typed.at(k) >= '0' && typed.at(k) <= '9')
                    digitMs.push_back(ms.back());
            }
            right += table->currentIndex().row() == i - 1 ? 1 : 0;
            QTest::keyClick(table, Qt::Key_Escape);
        });
    }
    m.stop(s);
    s.ms = medianOf(digitMs);
    s.rows = f.field->ListCount();
    s.check = QStringLiteral("%1 of %2 found").arg(right).arg(c.lookups);
    s.note = QStringLiteral("%1 keys, %2 of them digits; all keys: median %3 ms; digit keys: "
                            "90th percentile %4 ms, slowest %5 ms")
                 .arg(ms.size())
                 .arg(digitMs.size())
                 .arg(medianOf(ms), 0, 'f', 3)
                 .arg(upperOf(digitMs, 0.9), 0, 'f', 2)
                 .arg(upperOf(digitMs, 1.0), 0, 'f', 2);
    return s;
}

// The texts of the list, one column.
velmora::detail::ListRows nameRows(qint64 rows)
{
    velmora::detail::ListRows out(1);
    for (qint64 i = 1; i <= rows; ++i) {
        const QString name = QString::fromStdString(nameOf(i));
        out.appendRow({QStringView(name)});
    }
    return out;
}

// Find a value: Value assigned to a field whose list is the N texts (value and text
// column alike), median of one assignment. The row found is read back through
// GetSelectedElem, so an assignment that lands on the wrong row counts as not found.
Sample velmoraFind(Context &c)
{
    Sample s;
    velmora::Velmora field;
    field.setMessages(false); // a value refused would wait in a message box
    field.setSetList(true);
    field.setSQLConnect(sqliteConnect(c));
    field.setSQLList(NameQuery);
    if (!initList(field, s))
        return s;
    const auto lookups = lookupsOf(c.rows, c.lookups);
    auto t0 = Clock::now();
    field.setValue(lookups.front().first); // builds the search index
    const double firstMs = msSince(t0);
    std::vector<double> ms;
    int right = 0;
    Meter m;
    m.start();
    for (const auto &[value, row] : lookups) {
        t0 = Clock::now();
        field.setValue(value);
        ms.push_back(msSince(t0));
        right += field.GetSelectedElem(0) == QString::fromStdString(nameOf(row + 1)) ? 1 : 0;
    }
    m.stop(s);
    s.ms = medianOf(ms);
    s.rows = field.ListCount();
    s.check = QStringLiteral("%1 of %2 found").arg(right).arg(lookups.size());
    s.note
        = QStringLiteral("first assignment, which builds the index: %1 ms").arg(firstMs, 0, 'f', 1);
    return s;
}

// The search alone: ListRows::findRow on the N texts, as the field calls it. It has no
// public face; the benchmark reaches it through the library's private headers.
Sample velmoraFindRow(Context &c)
{
    Sample s;
    const velmora::detail::ListRows rows = nameRows(c.rows);
    const auto lookups = lookupsOf(c.rows, c.lookups);
    auto t0 = Clock::now();
    rows.findRow(0, lookups.front().first); // builds the search index
    const double firstMs = msSince(t0);
    std::vector<double> ms;
    int right = 0;
    Meter m;
    m.start();
    for (const auto &[value, row] : lookups) {
        t0 = Clock::now();
        const int found = rows.findRow(0, value);
        ms.push_back(msSince(t0));
        right += found == row ? 1 : 0;
    }
    m.stop(s);
    s.ms = medianOf(ms);
    s.rows = rows.rowCount();
    s.check = QStringLiteral("%1 of %2 found").arg(right).arg(lookups.size());
    s.note = QStringLiteral("first search, which builds the index: %1 ms; the clock read "
                            "around each search is in the figure")
                 .arg(firstMs, 0, 'f', 1);
    return s;
}

// ---------------------------------------------------------------------------------------
// The phases and the rounds

enum class Needs { Nothing, Postgres, Odbc, PostgresOdbc };

struct Phase
{
    QString id;
    QString scenario;
    QString title;
    Sample (*run)(Context &);
    Needs needs = Needs::Nothing;
    bool velmora = false;
    bool timesLookup = false; // ms is one lookup (or key), not the whole phase
    const char *per = ""; // what ms is the time of, when not of the whole phase
    // Targets of a Velmora phase: at most these times the anchor's median, at most maxMs.
    std::vector<std::pair<QString, double>> againstAnchors;
    double maxMs = 0;
    bool comparable = true; // false: a ratio to the scenario's anchors means nothing
    QString note; // of the last run reported

    // Filled by the rounds.
    std::vector<std::vector<Sample>> rounds;
    std::vector<double> medians; // per round
    double median = 0, spread = 0;
    long growKb = 0;
    QString skipped; // why the phase was not measured
};

std::vector<Phase> allPhases()
{
    const QString sqlite = QStringLiteral("Load from SQLite");
    const QString pg = QStringLiteral("Load from PostgreSQL");
    const QString drop = QStringLiteral("First drop-down");
    const QString find = QStringLiteral("Find a value");
    std::vector<Phase> p;
    const auto add = [&](const char *id, const QString &scenario, const char *title,
                         Sample (*run)(Context &), Needs needs = Needs::Nothing) {
        Phase ph;
        ph.id = QString::fromLatin1(id);
        ph.scenario = scenario;
        ph.title = QString::fromUtf8(title);
        ph.run = run;
        ph.needs = needs;
        ph.velmora = ph.id.startsWith(QLatin1String("velmora"));
        ph.timesLookup = scenario == find;
        ph.per = ph.timesLookup ? "lookup" : "";
        p.push_back(std::move(ph));
    };
    add("a", sqlite, "a) sqlite3 C API, std::string per cell", anchorSqliteApi);
    add("b", sqlite, "b) QSqlQueryModel, fetchMore to the end", anchorModel);
    add("c", sqlite, "c) QSqlQuery forward-only, QString per cell", anchorSqliteQuery);
    add("c-odbc", sqlite, "c-odbc) same through QODBC, driver SQLite3", anchorSqliteOdbc,
        Needs::Odbc);
    add("velmora-sqlite", sqlite, "velmora: InitList over QSQLITE", velmoraLoadSqlite);
    p.back().againstAnchors
        = {{QStringLiteral("a"), 1.3}, {QStringLiteral("b"), 1.0}, {QStringLiteral("c"), 1.0}};
    add("d", pg, "d) QSqlQuery forward-only (QPSQL), QString per cell", anchorPostgres,
        Needs::Postgres);
    add("d-odbc", pg, "d-odbc) same through QODBC, PostgreSQL Unicode", anchorPostgresOdbc,
        Needs::PostgresOdbc);
    add("d-odbc-cursor", pg, "d-odbc-cursor) same with UseDeclareFetch=1;Fetch=10000",
        anchorPostgresOdbcCursor, Needs::PostgresOdbc);
    add("velmora-pg", pg, "velmora: InitList over QPSQL, connecting included", velmoraLoadPostgres,
        Needs::Postgres);
    p.back().againstAnchors = {{QStringLiteral("d"), 1.3}};
    add("e", drop, "e) QComboBox addItems, shown, popup painted", anchorComboBox);
    add("velmora-dropdown", drop, "velmora: Page Down to the list painted", velmoraFirstDropDown);
    p.back().maxMs = 30;
    add("velmora-typeahead", drop, "velmora: type-ahead in the open list, digit keys",
        velmoraTypeAhead);
    p.back().timesLookup = true;
    p.back().per = "key";
    p.back().maxMs = 5;
    p.back().comparable = false;
    add("f", find, "f) row-by-row trimmed upper-case equality", anchorFind);
    add("velmora-find", find, "velmora: setValue on the field", velmoraFind);
    add("velmora-findrow", find, "velmora: the row search alone (ListRows::findRow)",
        velmoraFindRow);
    p.back().maxMs = 0.001;
    return p;
}

struct Options
{
    qint64 rows = 1000000;
    int perRound = 3;
    int window = 3;
    int maxRounds = 5;
    int lookups = 21;
    QStringList only;
    QString json = QStringLiteral("bench-lists.json");
    QString pgEnv;
    PgServer pg; // from the --pg-* options
    QString child; // the phase to run in this process
    QString data; // the child's SQLite file
};

void usage()
{
    std::printf(
        "usage: bench_lists [--rows N] [--only IDS] [--per-round N] [--window N]\n"
        "                   [--max-rounds N] [--lookups N] [--json FILE] [--pg-env FILE]\n"
        "                   [--pg-host H --pg-port P --pg-db D --pg-user U --pg-password W]\n"
        "  --rows N          rows of the list, 2000 at least (1000000)\n"
        "  --only IDS        only these phases, comma-separated: a, b, c, c-odbc, d, d-odbc,\n"
        "                    d-odbc-cursor, e, f (the Velmora side of their scenarios runs "
        "too)\n"
        "  --per-round N     runs of each phase in a round (3)\n"
        "  --window N        rounds whose medians must agree within 5 %% (3)\n"
        "  --max-rounds N    rounds at most before giving up as noisy (5)\n"
        "  --lookups N       lookups per run of the search (21)\n"
        "  --json FILE       write the results as JSON (bench-lists.json)\n"
        "  --pg-env FILE     the PostgreSQL server as key=value lines (host, port, db, user,\n"
        "                    password, odbcsysini), as the test run writes it; by default\n"
        "                    the file VELMORA_PG_ENV names\n"
        "  --pg-*            the server given option by option instead\n"
        "Without a server the PostgreSQL phases are left out; the ODBC phases need the\n"
        "private ODBC set-up the test run writes (odbcsysini) or ODBCSYSINI.\n");
}

bool parse(const QStringList &args, Options &o)
{
    for (qsizetype i = 1; i < args.size(); ++i) {
        const QString &a = args.at(i);
        const bool hasValue = i + 1 < args.size();
        const QString value = hasValue ? args.at(i + 1) : QString();
        bool ok = hasValue;
        if (a == QLatin1String("--rows"))
            o.rows = value.toLongLong(&ok);
        else if (a == QLatin1String("--per-round"))
            o.perRound = value.toInt(&ok);
        else if (a == QLatin1String("--window"))
            o.window = value.toInt(&ok);
        else if (a == QLatin1String("--max-rounds"))
            o.maxRounds = value.toInt(&ok);
        else if (a == QLatin1String("--lookups"))
            o.lookups = value.toInt(&ok);
        else if (a == QLatin1String("--only"))
            o.only = value.split(QLatin1Char(','));
        else if (a == QLatin1String("--json"))
            o.json = value;
        else if (a == QLatin1String("--pg-env"))
            o.pgEnv = value;
        else if (a == QLatin1String("--pg-host"))
            o.pg.host = value;
        else if (a == QLatin1String("--pg-port"))
            o.pg.port = value.toInt(&ok);
        else if (a == QLatin1String("--pg-db"))
            o.pg.db = value;
        else if (a == QLatin1String("--pg-user"))
            o.pg.user = value;
        else if (a == QLatin1String("--pg-password"))
            o.pg.password = value;
        else if (a == QLatin1String("--child"))
            o.child = value;
        else if (a == QLatin1String("--data"))
            o.data = value;
        else
            ok = false;
        if (!ok)
            return false;
        ++i;
    }
    return o.rows >= 2 * WarmUpRows && o.perRound > 0 && o.window > 0 && o.maxRounds >= o.window
        && o.lookups > 0;
}

// The child: runs one phase and prints one line the parent reads.
int runChild(const Options &o)
{
    std::vector<Phase> phases = allPhases();
    const auto it = std::find_if(phases.begin(), phases.end(),
                                 [&](const Phase &p) { return p.id == o.child; });
    if (it == phases.end())
        return 2;
    Context c;
    c.rows = o.rows;
    c.sqliteFile = o.data;
    c.pg = PgServer::fromText(qgetenv("VELMORA_BENCH_PG"));
    c.lookups = o.lookups;
    const Sample s = it->run(c);
    std::printf("RESULT ms=%.6f kb=%ld rows=%lld check=%s error=%s note=%s\n", s.ms, s.growKb,
                static_cast<long long>(s.rows), QUrl::toPercentEncoding(s.check).constData(),
                QUrl::toPercentEncoding(s.error).constData(),
                QUrl::toPercentEncoding(s.note).constData());
    std::fflush(stdout);
    // What the phase built is not freed: no one measures that, and it takes long.
    std::_Exit(0);
}

Sample runInChild(const Options &o, const QString &dataFile, const PgServer &pg, const Phase &phase)
{
    Sample s;
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("VELMORA_BENCH_PG"), pg.toText());
    if (!pg.odbcSysIni.isEmpty())
        env.insert(QStringLiteral("ODBCSYSINI"), pg.odbcSysIni);
    p.setProcessEnvironment(env);
    p.start(QCoreApplication::applicationFilePath(),
            {QStringLiteral("--child"), phase.id, QStringLiteral("--rows"), QString::number(o.rows),
             QStringLiteral("--data"), dataFile, QStringLiteral("--lookups"),
             QString::number(o.lookups)});
    if (!p.waitForFinished(30 * 60 * 1000) || p.exitStatus() != QProcess::NormalExit) {
        p.kill();
        p.waitForFinished();
        s.error = QStringLiteral("the run crashed or hung: %1")
                      .arg(QString::fromLocal8Bit(p.readAllStandardError()).right(2000));
        return s;
    }
    const QByteArray out = p.readAllStandardOutput();
    const qsizetype at = out.lastIndexOf("RESULT ");
    if (at < 0) {
        s.error = QStringLiteral("the run reported nothing (exit %1): %2")
                      .arg(p.exitCode())
                      .arg(QString::fromLocal8Bit(p.readAllStandardError()).right(2000));
        return s;
    }
    for (const QByteArray &field : out.mid(at + 7).trimmed().split(' ')) {
        const qsizetype eq = field.indexOf('=');
        const QByteArray key = field.left(eq), value = field.mid(eq + 1);
        if (key == "ms")
            s.ms = value.toDouble();
        else if (key == "kb")
            s.growKb = value.toLong();
        else if (key == "rows")
            s.rows = value.toLongLong();
        else if (key == "check")
            s.check = QString::fromUtf8(QByteArray::fromPercentEncoding(value));
        else if (key == "error")
            s.error = QString::fromUtf8(QByteArray::fromPercentEncoding(value));
        else if (key == "note")
            s.note = QString::fromUtf8(QByteArray::fromPercentEncoding(value));
    }
    return s;
}

// What a run must have read: all rows, and the text of the check row.
QString wrongOf(const Sample &s, const Phase &p, const Options &o)
{
    if (!s.error.isEmpty())
        return s.error;
    if (s.rows != o.rows)
        return QStringLiteral("read %1 rows of %2").arg(s.rows).arg(o.rows);
    const QString want = p.timesLookup ? QStringLiteral("%1 of %1 found").arg(o.lookups)
                                       : QString::fromStdString(nameOf(checkRow(o.rows)));
    if (s.check != want)
        return QStringLiteral("row check: \"%1\", not \"%2\"").arg(s.check, want);
    return {};
}

PgServer pgServerOf(const Options &o, QString &why)
{
    if (o.pg.given())
        return o.pg;
    const QString file = o.pgEnv.isEmpty() ? qEnvironmentVariable("VELMORA_PG_ENV") : o.pgEnv;
    if (file.isEmpty()) {
        why = QStringLiteral("no server given (VELMORA_PG_ENV, --pg-env, --pg-host)");
        return {};
    }
    QFile f(file);
    if (!f.open(QIODevice::ReadOnly)) {
        why = QStringLiteral("%1: %2").arg(file, f.errorString());
        return {};
    }
    return PgServer::fromText(f.readAll());
}

int runParent(const Options &opt)
{
    const auto started = Clock::now();
    QTemporaryDir dir;
    if (!dir.isValid()) {
        std::fprintf(stderr, "bench_lists: no temporary directory: %s\n",
                     qPrintable(dir.errorString()));
        return 2;
    }
    const QString dataFile = dir.filePath(QStringLiteral("lists.db"));
    QString why;
    auto t0 = Clock::now();
    if (!writeSqlite(dataFile, opt.rows, why)) {
        std::fprintf(stderr, "bench_lists: writing the SQLite file failed: %s\n", qPrintable(why));
        return 2;
    }
    const double sqliteWriteMs = msSince(t0);

    // PostgreSQL and ODBC: what is missing leaves its phases out, with the reason.
    PgServer pg = pgServerOf(opt, why);
    QString pgWhy = why, odbcWhy;
    double pgWriteMs = 0;
    QString pgVersion;
    QSqlDatabase writer;
    if (pg.given()) {
        QSqlDatabase &db = writer = openPostgres(pg, QStringLiteral("writer"));
        t0 = Clock::now();
        if (!db.isOpen())
            pgWhy = QStringLiteral("cannot connect: %1").arg(db.lastError().text());
        else if (!writePostgres(db, opt.rows, why))
            pgWhy = QStringLiteral("writing the table failed: %1").arg(why);
        pgWriteMs = msSince(t0);
        QSqlQuery v(QStringLiteral("SHOW server_version"), db);
        if (v.next())
            pgVersion = v.value(0).toString();
    } else if (pgWhy.isEmpty()) {
        pgWhy = QStringLiteral("no server given");
    }
    if (!QSqlDatabase::isDriverAvailable(QStringLiteral("QODBC")))
        odbcWhy = QStringLiteral("Qt has no QODBC driver");
    else if (pg.odbcSysIni.isEmpty() && qEnvironmentVariableIsEmpty("ODBCSYSINI"))
        odbcWhy = QStringLiteral("no ODBC set-up: odbcsysini in the server's file or ODBCSYSINI");

    std::vector<Phase> phases = allPhases();
    std::vector<Phase *> measured;
    QStringList scenarios;
    for (const Phase &p : phases)
        if ((opt.only.isEmpty() || opt.only.contains(p.id)) && !scenarios.contains(p.scenario))
            scenarios << p.scenario;
    for (Phase &p : phases) {
        if (!scenarios.contains(p.scenario))
            continue;
        if (!opt.only.isEmpty() && !p.velmora && !opt.only.contains(p.id))
            continue;
        const bool needsPg = p.needs == Needs::Postgres || p.needs == Needs::PostgresOdbc;
        const bool needsOdbc = p.needs == Needs::Odbc || p.needs == Needs::PostgresOdbc;
        if (needsPg && !pgWhy.isEmpty())
            p.skipped = QStringLiteral("PostgreSQL: ") + pgWhy;
        else if (needsOdbc && !odbcWhy.isEmpty())
            p.skipped = QStringLiteral("ODBC: ") + odbcWhy;
        if (p.skipped.isEmpty())
            measured.push_back(&p);
    }

    // Rounds of interleaved runs, the order turning from run to run.
    const size_t window = size_t(opt.window);
    size_t rounds = 0;
    bool stable = false;
    int failed = 0;
    while (!stable && rounds < size_t(opt.maxRounds) && !measured.empty()) {
        for (Phase *p : measured)
            p->rounds.emplace_back();
        for (int k = 0; k < opt.perRound; ++k) {
            const size_t turn = rounds * size_t(opt.perRound) + size_t(k);
            for (size_t i = 0; i < measured.size(); ++i) {
                Phase &p = *measured[(i + turn) % measured.size()];
                if (!p.skipped.isEmpty())
                    continue;
                const Sample s = runInChild(opt, dataFile, pg, p);
                if (const QString wrong = wrongOf(s, p, opt); !wrong.isEmpty()) {
                    std::fprintf(stderr, "bench_lists: %s: %s\n", qPrintable(p.title),
                                 qPrintable(wrong));
                    ++failed;
                    p.skipped = QStringLiteral("failed: %1 (that run: %2 ms)")
                                    .arg(wrong, msText(s.ms).trimmed());
                }
                p.rounds.back().push_back(s);
                std::fprintf(stderr, "  round %zu, %-16s %10.1f ms %8.1f MiB\n", rounds + 1,
                             qPrintable(p.id), s.ms, double(s.growKb) / 1024);
            }
        }
        measured.erase(std::remove_if(measured.begin(), measured.end(),
                                      [](const Phase *p) { return !p->skipped.isEmpty(); }),
                       measured.end());
        ++rounds;
        for (Phase *p : measured) {
            std::vector<double> ms;
            for (const Sample &s : p->rounds.back())
                ms.push_back(s.ms);
            p->medians.push_back(medianOf(ms));
        }
        if (rounds >= window) {
            stable = true;
            for (const Phase *p : measured)
                stable = stable && spreadOf(p->medians, rounds - window, rounds) < StableSpread;
        }
    }

    // The rounds reported: the last ones when they agree, else the calmest run of them.
    size_t first = rounds >= window ? rounds - window : 0;
    const size_t reported = std::min(window, rounds);
    if (!stable && rounds > window) {
        double best = HUGE_VAL;
        for (size_t from = 0; from + window <= rounds; ++from) {
            double worst = 0;
            for (const Phase *p : measured)
                worst = std::max(worst, spreadOf(p->medians, from, from + window));
            if (worst < best) {
                best = worst;
                first = from;
            }
        }
    }
    for (Phase *p : measured) {
        std::vector<double> ms, kb;
        for (size_t r = first; r < first + reported; ++r)
            for (const Sample &s : p->rounds[r]) {
                ms.push_back(s.ms);
                kb.push_back(double(s.growKb));
            }
        p->median = medianOf(ms);
        p->growKb = long(medianOf(kb));
        p->note = p->rounds[first + reported - 1].back().note;
        p->spread = reported ? spreadOf(p->medians, first, first + reported) : 0;
    }

    std::printf("List loading anchors: %lld rows x 3 columns (amount, text, date), Qt %s, "
                "SQLite %s%s\n",
                static_cast<long long>(opt.rows), qVersion(), sqlite3_libversion(),
                pgVersion.isEmpty() ? "" : qPrintable(QStringLiteral(", PostgreSQL ") + pgVersion));
    std::printf("Data written in %.1f s (SQLite file)", sqliteWriteMs / 1000);
    if (pgWhy.isEmpty())
        std::printf(" and %.1f s (PostgreSQL table)", pgWriteMs / 1000);
    std::printf("\nEach run a process of its own; %d runs per phase and round\n", opt.perRound);
    if (rounds > 0)
        std::printf("Rounds %zu to %zu of %zu reported: %s\n", first + 1, first + reported, rounds,
                    stable ? "their medians agree within 5 %"
                           : "noisy, medians differ by 5 % or more");
    std::printf("Peak: the most resident memory the phase added at any moment (VmHWM after "
                "less VmRSS before)\n\n");
    std::printf("%-58s %11s %10s %7s %8s\n", "scenario / phase", "median ms", "peak MiB", "spread",
                "ratio");

    QJsonArray jsonPhases;
    for (const QString &scenario : scenarios) {
        std::printf("%s\n", qPrintable(scenario));
        const Phase *reference = nullptr;
        for (const Phase &p : phases) {
            if (p.scenario != scenario || p.velmora)
                continue;
            if (!opt.only.isEmpty() && !opt.only.contains(p.id))
                continue;
            if (!p.skipped.isEmpty()) {
                std::printf("  %-56s left out: %s\n", qPrintable(p.title), qPrintable(p.skipped));
                continue;
            }
            if (!reference)
                reference = &p;
            std::printf("  %-56s %s %10.1f %6.1f%% %7.2fx%s\n", qPrintable(p.title),
                        qPrintable(msText(p.median)), double(p.growKb) / 1024, p.spread * 100,
                        p.median / reference->median,
                        p.timesLookup ? qPrintable(QStringLiteral("  (per %1)").arg(p.per)) : "");
        }
        for (const Phase &p : phases) {
            if (p.scenario != scenario || !p.velmora)
                continue;
            if (!p.skipped.isEmpty()) {
                std::printf("  %s left out: %s\n", qPrintable(p.title), qPrintable(p.skipped));
                continue;
            }
            std::printf("  %-56s %s %10.1f %6.1f%%%s\n", qPrintable(p.title),
                        qPrintable(msText(p.median)), double(p.growKb) / 1024, p.spread * 100,
                        p.timesLookup ? qPrintable(QStringLiteral("          (per %1)").arg(p.per))
                                      : "");
            if (p.maxMs > 0)
                std::printf("    %-54s %s  %s\n",
                            qPrintable(QStringLiteral("target: at most %1 ms").arg(p.maxMs)),
                            qPrintable(msText(p.maxMs)), p.median <= p.maxMs ? "met" : "MISSED");
            for (const Phase &a : phases) {
                if (!p.comparable || a.scenario != scenario || a.velmora || !a.skipped.isEmpty()
                    || a.median <= 0 || (!opt.only.isEmpty() && !opt.only.contains(a.id)))
                    continue;
                const double ratio = p.median / a.median;
                QString verdict;
                for (const auto &[id, most] : p.againstAnchors)
                    if (id == a.id)
                        verdict = QStringLiteral("  target %1 %2: %3")
                                      .arg(most == 1.0 ? QStringLiteral("faster, under")
                                                       : QStringLiteral("at most"))
                                      .arg(most, 0, 'f', 2)
                                      .arg(most == 1.0 ? (ratio < 1.0 ? "met" : "MISSED")
                                                       : (ratio <= most ? "met" : "MISSED"));
                // Lookups and drop-downs beat their anchors a thousandfold: two digits that count.
                const QString times = QString::number(ratio, ratio >= 0.1 ? 'f' : 'g', 2);
                std::printf("    %-54s %8sx%s\n", qPrintable(QStringLiteral("against ") + a.title),
                            qPrintable(times), qPrintable(verdict));
            }
            if (!p.note.isEmpty())
                std::printf("    %s\n", qPrintable(p.note));
        }
    }
    for (const Phase &p : phases) {
        if (!scenarios.contains(p.scenario))
            continue;
        QJsonArray medians;
        for (double m : p.medians)
            medians.append(m);
        jsonPhases.append(QJsonObject {
            {QStringLiteral("id"), p.id},
            {QStringLiteral("scenario"), p.scenario},
            {QStringLiteral("title"), p.title},
            {QStringLiteral("medianMs"), p.median},
            {QStringLiteral("peakGrowthKb"), qint64(p.growKb)},
            {QStringLiteral("spread"), p.spread},
            {QStringLiteral("roundMediansMs"), medians},
            {QStringLiteral("perLookup"), p.timesLookup},
            {QStringLiteral("per"), QString::fromLatin1(p.per)},
            {QStringLiteral("targetMs"), p.maxMs},
            {QStringLiteral("note"), p.note},
            {QStringLiteral("skipped"), p.skipped},
        });
    }
    const double seconds = msSince(started) / 1000;
    std::printf("\nRun took %.1f s\n", seconds);

    if (writer.isOpen())
        QSqlQuery(QStringLiteral("DROP TABLE IF EXISTS bench_lists"), writer);

    const QJsonObject root {
        {QStringLiteral("benchmark"), QStringLiteral("bench_lists")},
        {QStringLiteral("qtVersion"), QString::fromLatin1(qVersion())},
        {QStringLiteral("sqliteVersion"), QString::fromLatin1(sqlite3_libversion())},
        {QStringLiteral("postgresVersion"), pgVersion},
        {QStringLiteral("rows"), opt.rows},
        {QStringLiteral("runsPerRound"), opt.perRound},
        {QStringLiteral("rounds"), qint64(rounds)},
        {QStringLiteral("firstReportedRound"), qint64(first + 1)},
        {QStringLiteral("window"), opt.window},
        {QStringLiteral("stable"), stable},
        {QStringLiteral("phases"), jsonPhases},
        {QStringLiteral("seconds"), seconds},
    };
    QFile out(opt.json);
    if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        std::fprintf(stderr, "bench_lists: cannot write %s\n", qPrintable(opt.json));
        return 2;
    }
    out.write(QJsonDocument(root).toJson(QJsonDocument::Indented));
    std::printf("Results written to %s\n", qPrintable(opt.json));
    return failed ? 1 : 0;
}

} // namespace

int main(int argc, char **argv)
{
    bool child = false;
    for (int i = 1; i < argc; ++i)
        child = child || qstrcmp(argv[i], "--child") == 0;
    // A child may show widgets, on the offscreen platform unless the caller chose another.
    // The parent shows nothing.
    std::unique_ptr<QCoreApplication> app;
    if (child) {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        app = std::make_unique<QApplication>(argc, argv);
    } else
        app = std::make_unique<QCoreApplication>(argc, argv);

    Options opt;
    if (!parse(app->arguments(), opt)) {
        usage();
        return 2;
    }
    return child ? runChild(opt) : runParent(opt);
}
