// Loading lists: from SQLite files through a connection string, from the default
// connection, from a host's query, from rows the host added and from a boolean field's
// texts; cells formatted per column and widths measured; failures that throw
// DatabaseError and leave no connection behind; a PostgreSQL server whose backend is
// terminated in the middle of a load.

#include "common/DataRows.h"
#include "common/TestRegistry.h"
#include "common/TestServer.h"
#include "lookup/ListFormat.h"
#include "lookup/ListLoader.h"

#include <velmora/DatabaseError.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QTemporaryDir>
#include <QtSql/QSqlDatabase>
#include <QtSql/QSqlQuery>

using namespace velmora;
using namespace velmora::detail;
using velmora::test::columns;
using velmora::test::row;
using namespace Qt::StringLiterals;

namespace {

// Characters are 7 units wide, except "i" and blanks with 3: the widest cell is not
// always the longest one.
int width(QStringView text)
{
    int w = 0;
    for (QChar c : text)
        w += c == u'i' || c == u' ' ? 3 : 7;
    return w;
}

QString joinedRow(const ListRows &rows, int r)
{
    QStringList cells;
    for (int c = 0; c < rows.columnCount(); ++c)
        cells << rows.cell(r, c).toString();
    return cells.join(u'|');
}

QStringList allRows(const ListRows &rows)
{
    QStringList out;
    for (int r = 0; r < rows.rowCount(); ++r)
        out << joinedRow(rows, r);
    return out;
}

// Runs statements on a SQLite file through a connection that is gone afterwards.
void execSqlite(const QString &file, const QStringList &statements)
{
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"setup"_s);
        db.setDatabaseName(file);
        QVERIFY(db.open());
        QSqlQuery q(db);
        for (const QString &s : statements)
            QVERIFY2(q.exec(s), qPrintable(q.lastError().text()));
    }
    QSqlDatabase::removeDatabase(u"setup"_s);
}

struct Field
{
    QString listFormat = u"N#,##0.00|A|D"_s;
    int textCol = 1;
    int valueCol = 2;
    int inputType = itAlfaNum;
    RegionalSettings regional = RegionalSettings::czech(QLatin1Char(' '));
    ParsedFormat pf;

    // What the field does once the column count is known.
    ColumnsReady ready()
    {
        return [this](ListColumns &c, int count) {
            c.setUpperBound(count - 1);
            ListFieldSettings s;
            s.textCol = textCol;
            s.valueCol = valueCol;
            s.inputType = inputType;
            s.regional = regional;
            parseListFormat(listFormat, s, c, pf);
        };
    }
    ListLoadOptions options()
    {
        ListLoadOptions o;
        o.parsed = &pf;
        o.regional = regional;
        o.measure = {width, 7};
        return o;
    }
};

const QStringList SampleTable = {
    u"CREATE TABLE t(n REAL, name TEXT, d TEXT)"_s,
    u"INSERT INTO t VALUES (1234.5, 'Praha', '2005-12-24')"_s,
    u"INSERT INTO t VALUES (NULL, NULL, NULL)"_s,
    u"INSERT INTO t VALUES (-0.5, '  iiiiiiiiii  ', '2005-01-02')"_s,
    u"INSERT INTO t VALUES (7, 'Ostrava', 'no date')"_s,
};

} // namespace

class TestListLoader : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_file;

    QString connect() const { return u"Driver=QSQLITE;Database="_s + m_file; }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_file = m_dir.filePath(u"list.db"_s);
        execSqlite(m_file, SampleTable);
    }

    void sqliteFile_data()
    {
        columns<bool, QStringList, QString>({"czech", "rows", "widths"});
        row("Czech settings", true,
            QStringList {u"1 234,50|Praha|24.12.2005"_s, u"||  .  .    "_s,
                         u"-0,50|iiiiiiiiii|02.01.2005"_s, u"7,00|Ostrava| no date"_s},
            "52,49,70");
        row("English settings", false,
            QStringList {u"1,234.50|Praha|12/24/2005"_s, u"||  /  /    "_s,
                         u"-0.50|iiiiiiiiii|01/02/2005"_s, u"7.00|Ostrava| no date"_s},
            "56,49,70");
    }
    void sqliteFile()
    {
        Field field;
        if (!VFETCH(bool, czech))
            field.regional = RegionalSettings::english();
        const QStringList before = QSqlDatabase::connectionNames();
        const LoadedList list = ListLoader(field.options())
                                    .fromConnection(connect(), u"SELECT * FROM t"_s, field.ready());
        QCOMPARE(allRows(list.rows), VFETCH(QStringList, rows));
        QCOMPARE(list.sourceRows, 4);
        const QString widths = u"%1,%2,%3"_s.arg(list.columns.length(0))
                                   .arg(list.columns.length(1))
                                   .arg(list.columns.length(2));
        QCOMPARE(widths, VFETCH(QString, widths));
        QCOMPARE(QSqlDatabase::connectionNames(), before);
    }

    // In the host's design mode cells come as they are: untrimmed, unformatted.
    void designModeTakesCellsAsTheyCome()
    {
        Field field;
        ListLoadOptions o = field.options();
        o.formatCells = false;
        const LoadedList list
            = ListLoader(o).fromConnection(connect(), u"SELECT * FROM t"_s, field.ready());
        QCOMPARE(joinedRow(list.rows, 0), u"1234,5|Praha|2005-12-24"_s);
        QCOMPARE(joinedRow(list.rows, 2), u"-0,5|  iiiiiiiiii  |2005-01-02"_s);
    }

    void newItemRow_data()
    {
        columns<QString, int, QString>({"sql", "sourceRows", "first"});
        row("in front of the rows", "SELECT * FROM t", 4, "<NOVÝ>||");
        row("alone over an empty source", "SELECT * FROM t WHERE 0", 0, "<NOVÝ>||");
    }
    void newItemRow()
    {
        Field field;
        ListLoadOptions o = field.options();
        o.newItemRow = u"<NOVÝ>"_s;
        const int sourceRows = VFETCH(int, sourceRows);
        const LoadedList list
            = ListLoader(o).fromConnection(connect(), VFETCH(QString, sql), field.ready());
        QCOMPARE(list.sourceRows, sourceRows);
        QCOMPARE(list.rows.rowCount(), sourceRows + 1);
        QCOMPARE(joinedRow(list.rows, 0), VFETCH(QString, first));
        QCOMPARE(list.columns.length(0), std::max(width(u"<NOVÝ>"), sourceRows ? 52 : 0));
        QCOMPARE(list.rows.findRow(0, u"<nový>", 1), -1);
    }

    // A host's query is read from where it stands to its end, and left there.
    void hostQuery_data()
    {
        columns<int, QStringList>({"steps", "names"});
        row("fresh", 0, QStringList {u"Praha"_s, u""_s, u"iiiiiiiiii"_s, u"Ostrava"_s});
        row("on its first row", 1, QStringList {u"Praha"_s, u""_s, u"iiiiiiiiii"_s, u"Ostrava"_s});
        row("on its third row", 3, QStringList {u"iiiiiiiiii"_s, u"Ostrava"_s});
    }
    void hostQuery()
    {
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"host"_s);
            db.setDatabaseName(m_file);
            QVERIFY(db.open());
            QSqlQuery q(db);
            QVERIFY(q.exec(u"SELECT name FROM t"_s));
            for (int i = VFETCH(int, steps); i > 0; --i)
                QVERIFY(q.next());
            Field field;
            field.listFormat.clear();
            field.textCol = 0;
            const LoadedList list = ListLoader(field.options()).fromQuery(q, field.ready());
            QCOMPARE(allRows(list.rows), VFETCH(QStringList, names));
            QVERIFY(q.isActive());
            QCOMPARE(q.at(), int(QSql::AfterLastRow));

            QSqlQuery idle(db);
            QVERIFY_THROWS_EXCEPTION(DatabaseError,
                                     ListLoader(field.options()).fromQuery(idle, {}));
        }
        QSqlDatabase::removeDatabase(u"host"_s);
    }

    void defaultConnectionStaysOpen()
    {
        Field field;
        QVERIFY_THROWS_EXCEPTION(
            DatabaseError,
            ListLoader(field.options()).fromDatabase(QSqlDatabase::database(), u"SELECT 1"_s, {}));
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s);
            db.setDatabaseName(m_file);
            const LoadedList list
                = ListLoader(field.options())
                      .fromDatabase(QSqlDatabase::database(), u"SELECT * FROM t"_s, field.ready());
            QCOMPARE(list.sourceRows, 4);
            QVERIFY(QSqlDatabase::database().isOpen());
        }
        QSqlDatabase::removeDatabase(QLatin1String(QSqlDatabase::defaultConnection));
    }

    void hostItems()
    {
        ListItems items;
        QVERIFY(items.add(u"a\tb"_s)); // starts the collection: two columns
        QVERIFY(!items.add(u"x"_s)); // the second cell stays empty
        QVERIFY(!items.add(u" 5 \ty\tz"_s)); // z is dropped
        Field field;
        field.listFormat = u"N0.0"_s;
        const LoadedList list = ListLoader(field.options()).fromItems(items.rows(), field.ready());
        QCOMPARE(allRows(list.rows), (QStringList {u"a|b"_s, u"x|"_s, u"5,0|y"_s}));

        items.reset();
        QVERIFY(items.add(u"only"_s));
        QCOMPARE(items.rows().columnCount(), 1);
    }

    void boolList_data()
    {
        columns<bool, QStringList>({"enableEmpty", "rows"});
        row("with the empty row", true, QStringList {u"Ano ii"_s, u"Ne"_s, u""_s});
        row("without", false, QStringList {u"Ano ii"_s, u"Ne"_s});
    }
    void boolList()
    {
        Field field;
        const LoadedList list
            = ListLoader(field.options())
                  .fromBool({u"Ano ii"_s, u"Ne"_s, u'A'}, VFETCH(bool, enableEmpty));
        QCOMPARE(allRows(list.rows), VFETCH(QStringList, rows));
        QCOMPARE(list.columns.length(0), width(u"Ano ii"));
    }

    // Failures throw, leave the caller's rows as they were and leave no connection.
    void failures_data()
    {
        columns<QString, QString, QString>({"connect", "sql", "says"});
        row("missing folder", "Driver=QSQLITE;Database=/nonexistent-velmora/x.db", "SELECT 1",
            "cannot connect to QSQLITE database \"/nonexistent-velmora/x.db\"");
        row("bad SQL", "", "SELEC * FROM t", "running the list query \"SELEC * FROM t\"");
        row("missing table", "", "SELECT * FROM nothere", "no such table");
        row("error in the middle of the rows", "",
            "SELECT CASE WHEN rowid >= 3 THEN abs(-9223372036854775808) ELSE 1 END FROM t",
            "reading the rows of");
        row("unknown driver", "Driver=QNOPE;Database=x", "SELECT 1", "unknown database driver");
        row("bad string", "Driver=QSQLITE;x.db", "SELECT 1", "has no \"=\"");
    }
    void failures()
    {
        Field field;
        ListLoader loader(field.options());
        LoadedList current = loader.fromConnection(connect(), u"SELECT * FROM t"_s, field.ready());
        const QStringList before = QSqlDatabase::connectionNames();
        const QString text = VFETCH(QString, connect);
        try {
            current = loader.fromConnection(text.isEmpty() ? connect() : text, VFETCH(QString, sql),
                                            field.ready());
            QFAIL("no DatabaseError");
        } catch (const DatabaseError &e) {
            QVERIFY2(e.message().contains(VFETCH(QString, says)), qPrintable(e.message()));
        }
        QCOMPARE(current.rows.rowCount(), 4);
        QCOMPARE(current.rows.cell(0, 1), u"Praha");
        QCOMPARE(QSqlDatabase::connectionNames(), before);
    }

    void cancelStopsTheLoad()
    {
        Field field;
        std::atomic<bool> cancel {false};
        ListLoadOptions o = field.options();
        o.cancel = &cancel;
        o.checkEvery = 2;
        QList<int> reports;
        o.progress = [&](int rows) {
            reports << rows;
            cancel = true;
        };
        const LoadedList list
            = ListLoader(o).fromConnection(connect(), u"SELECT * FROM t"_s, field.ready());
        QVERIFY(list.canceled);
        QCOMPARE(list.rows.rowCount(), 0);
        QCOMPARE(reports, QList<int> {2});
        QVERIFY(!QSqlDatabase::connectionNames().join(u',').contains(u"velmora-list-"_s));
    }

    void postgresTypes()
    {
        QString why;
        const QSqlDatabase admin = velmora::test::openTestServer(u"lookup-types"_s, why);
        if (!why.isEmpty())
            QFAIL(qPrintable(why));
        const QString connect = u"Driver=QPSQL;Host=%1;Port=%2;Database=%3;User=%4;Password=%5"_s
                                    .arg(admin.hostName())
                                    .arg(admin.port())
                                    .arg(admin.databaseName(), admin.userName(), admin.password());
        Field field;
        field.listFormat = u"N#,##0.00|A|D|N|B|A|D"_s;
        field.textCol = 1;
        const LoadedList list
            = ListLoader(field.options())
                  .fromConnection(
                      connect,
                      u"SELECT 1234.5::numeric, 'Brno'::text, "
                      "DATE '2005-12-24', NULL::int, true, "
                      "TIMESTAMP '2005-12-24 10:30:00', TIMESTAMP '2005-12-25 23:59:00'"_s,
                      field.ready());
        QCOMPARE(joinedRow(list.rows, 0),
                 u"1 234,50|Brno|24.12.2005||ANO|24.12.2005 10:30:00|25.12.2005"_s);

        const QStringList before = QSqlDatabase::connectionNames();
        try {
            ListLoader(field.options())
                .fromConnection(connect + u"x-wrong"_s, u"SELECT 1"_s, field.ready());
            QFAIL("no DatabaseError");
        } catch (const DatabaseError &e) {
            QVERIFY2(e.message().startsWith(u"cannot connect to QPSQL"_s), qPrintable(e.message()));
            QVERIFY2(!e.message().contains(admin.password() + u"x-wrong"_s),
                     qPrintable(e.message()));
        }
        QCOMPARE(QSqlDatabase::connectionNames(), before);
    }

    // The server ends the loading session part way through: the load throws, it does
    // not hang, and its connection is gone.
    void postgresBackendTerminated()
    {
        QString why;
        QSqlDatabase admin = velmora::test::openTestServer(u"lookup-admin"_s, why);
        if (!why.isEmpty())
            QFAIL(qPrintable(why));
        const QString connect = u"Driver=QPSQL;Host=%1;Port=%2;Database=%3;User=%4;Password=%5"_s
                                    .arg(admin.hostName())
                                    .arg(admin.port())
                                    .arg(admin.databaseName(), admin.userName(), admin.password());
        Field field;
        field.listFormat = u"N|A"_s;
        ListLoadOptions o = field.options();
        o.checkEvery = 1000;
        int terminated = 0;
        int rowsAtTermination = -1;
        o.progress = [&](int rows) {
            if (rowsAtTermination >= 0)
                return;
            rowsAtTermination = rows;
            QSqlQuery q(admin);
            if (q.exec(u"SELECT pg_terminate_backend(pid) FROM pg_stat_activity "
                       "WHERE query LIKE '%velmora-terminate-me%' AND pid <> pg_backend_pid()"_s))
                while (q.next())
                    terminated += q.value(0).toBool();
        };
        QElapsedTimer timer;
        timer.start();
        try {
            ListLoader(o).fromConnection(
                connect,
                u"SELECT g, repeat('x', 40) FROM generate_series(1, 5000000) g"
                " /* velmora-terminate-me */"_s,
                field.ready());
            QFAIL("the load went on after its backend was terminated");
        } catch (const DatabaseError &e) {
            QVERIFY2(e.message().contains(u"reading the rows of"_s), qPrintable(e.message()));
        }
        QCOMPARE(terminated, 1);
        QVERIFY(rowsAtTermination > 0);
        QVERIFY2(timer.elapsed() < 60000, "the load took a minute to notice");
        QVERIFY(!QSqlDatabase::connectionNames().join(u',').contains(u"velmora-list-"_s));
    }

    void cleanupTestCase()
    {
        for (const char *name : {"lookup-types", "lookup-admin"})
            QSqlDatabase::removeDatabase(QLatin1String(name));
    }
};

VELMORA_TEST(TestListLoader)
#include "tst_listloader.moc"
