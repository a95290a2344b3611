// Loading lists from each source: cells formatted and measured per column; failures
// throw DatabaseError and leave no connection behind, also when the server goes away.

#include "common/DataRows.h"
#include "common/TestRegistry.h"
#include "common/TestServer.h"
#include "lookup/LoaderField.h"

#include "format/Regional.h"

#include <velmora/DatabaseError.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QTemporaryDir>
#include <QtSql/QSqlDatabase>
#include <QtSql/QSqlQuery>

#include <random>

using namespace velmora;
using namespace velmora::detail;
using namespace velmora::test;
using namespace Qt::StringLiterals;

namespace {

// As width(), but "1" is narrower than the other digits: a text's digits then tell its
// width apart.
int narrowOne(QStringView text)
{
    return width(text) - 4 * int(text.count(u'1'));
}

} // namespace

class TestListLoader : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_file;
    QString m_server, m_noServer; // the PostgreSQL test server's connection string, or why none

    QString connect() const { return u"Driver=QSQLITE;Database="_s + m_file; }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_file = m_dir.filePath(u"list.db"_s);
        QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"host"_s); // the host's own
        db.setDatabaseName(m_file);
        QVERIFY(db.open());
        QVERIFY(QSqlQuery(db).exec(u"CREATE TABLE t(n REAL, name TEXT, d TEXT)"_s));
        QVERIFY(QSqlQuery(db).exec(u"INSERT INTO t VALUES (1234.5, 'Praha', '2005-12-24'), "
                                   "(NULL, NULL, NULL), (7, 'Ostrava', 'no date'), "
                                   "(-0.5, '  iiiiiiiiii  ', '2005-01-02')"_s));
        TestServer pg;
        if (openTestServer(u"lookup-admin"_s, m_noServer).isOpen()
            && readTestServer(pg, m_noServer))
            m_server = qpsqlConnectString(pg);
    }

    // Cells formatted per column (NULL as an empty cell), columns as wide as their widest
    // cell (not the longest, which comes last), the new-item row in front; in the host's
    // design mode cells come as they are.
    void sqliteFile_data()
    {
        columns<QString, QStringList, QList<int>>({"mode", "rows", "widths"});
        row("Czech settings", "Czech",
            QStringList {u"1 234,50|Praha|24.12.2005"_s, u"||  .  .    "_s,
                         u"7,00|Ostrava| no date"_s, u"-0,50|iiiiiiiiii|02.01.2005"_s},
            QList<int> {52, 49, 70});
        row("English settings, new-item row", "English",
            QStringList {u"<nová položka>||"_s, u"1,234.50|Praha|12/24/2005"_s, u"||  /  /    "_s,
                         u"7.00|Ostrava| no date"_s, u"-0.50|iiiiiiiiii|01/02/2005"_s},
            QList<int> {94, 49, 70});
        row("design mode", "design",
            QStringList {u"1234,5|Praha|2005-12-24"_s, u"||"_s, u"7|Ostrava|no date"_s,
                         u"-0,5|  iiiiiiiiii  |2005-01-02"_s},
            QList<int> {42, 49, 70});
    }
    void sqliteFile()
    {
        Field field(VFETCH(QString, mode));
        if (field.o.regional == RegionalSettings::english())
            field.o.newItemRow = u"<nová položka>"_s;
        const LoadedList list
            = ListLoader(field.o).fromConnection(connect(), u"SELECT * FROM t"_s, field.ready());
        QCOMPARE(allRows(list.rows), VFETCH(QStringList, rows));
        QCOMPARE(list.sourceRows, 4);
        const ListColumns &c = list.columns;
        QCOMPARE((QList<int> {c.length(0), c.length(1), c.length(2)}), VFETCH(QList<int>, widths));
    }

    // A QSQLITE connection's rows are read straight through SQLite: the same rows and
    // widths as through the driver's QSqlQuery (the host-query path), for every kind of
    // cell, and widths as wide as the widest shown cell when the shapes of cells are
    // remembered (a few hundred rows, digits of equal or of different widths).
    void sqliteHandle_data()
    {
        columns<QString, QString, bool>({"mode", "listFormat", "narrowOne"});
        row("Czech, amounts and dates", "Czech", "N#,##0.00|A|D", false);
        row("English, percent and a number text", "English", "N0.0%|N|D", false);
        row("plain texts", "Czech", "A|A|A", false);
        row("narrow one", "Czech", "N#,##0.00|A|D", true);
        row("design mode", "design", "N#,##0.00|A|D", false);
    }
    void sqliteHandle()
    {
        QSqlDatabase db = QSqlDatabase::database(u"host"_s);
        QVERIFY(QSqlQuery(db).exec(u"CREATE TABLE IF NOT EXISTS kinds(a, b, c)"_s));
        QVERIFY(QSqlQuery(db).exec(u"DELETE FROM kinds"_s));
        QVERIFY(QSqlQuery(db).exec(
            u"INSERT INTO kinds VALUES (NULL, NULL, NULL), (0, -0.0, ''), "
            "(-7, 12345678901234567, '  1,5  '), (0.1, 1e20, 'Žluťoučký kůň'), "
            "(-0.5, 1e-300, 'Straße'), (1234.5, 2.5e-7, '2005-12-24'), "
            "(123456.789, 99999999999999.9, X'C5BD'), (0.005, -1234567.125, '31.12.1999'), "
            "('12,5', 'iiii', 'no date'), (CAST(X'C328FF' AS TEXT), '😀 €', 'ň')"_s));
        QVERIFY(QSqlQuery(db).exec(
            u"INSERT INTO kinds WITH RECURSIVE s(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM s "
            "WHERE i < 400) SELECT i * 13.25 - 2000, 'Item ' || i || ' of ' || (i % 7), "
            "date('2000-01-01', '+' || (i * 37) || ' days') FROM s"_s));
        // The widest cells last, each of a shape met before in narrower cells.
        QVERIFY(QSqlQuery(db).exec(
            u"INSERT INTO kinds VALUES (-8888.88, 'Item 888 of 6', '2088-08-28')"_s));
        Field field(VFETCH(QString, mode));
        field.listFormat = VFETCH(QString, listFormat);
        const auto measure = VFETCH(bool, narrowOne) ? narrowOne : width;
        field.o.measure = {measure, 0, {}}; // every cell goes to the measure or its memory
        const QString sql = u"SELECT * FROM kinds"_s;

        const LoadedList direct = ListLoader(field.o).fromDatabase(db, sql, field.ready());
        QSqlQuery q(db);
        QVERIFY(q.exec(sql));
        const LoadedList driver = ListLoader(field.o).fromQuery(q, field.ready());
        QCOMPARE(allRows(direct.rows), allRows(driver.rows));
        QCOMPARE(direct.sourceRows, 411);

        // The widths, on the generated rows alone: the cells above would be the widest.
        const QString generated = u"SELECT * FROM kinds WHERE rowid > 10"_s;
        const LoadedList measured = ListLoader(field.o).fromDatabase(db, generated, field.ready());
        field.o.measure = {};
        const LoadedList unmeasured
            = ListLoader(field.o).fromDatabase(db, generated, field.ready());
        for (int c = 0; c < 3; ++c) {
            int widest = unmeasured.columns.length(c);
            for (int r = 0; r < measured.rows.rowCount(); ++r)
                widest = std::max(widest, measure(measured.rows.cell(r, c)));
            QCOMPARE(measured.columns.length(c), widest);
        }
    }

    // A number from the database is formatted from the double exactly as its text
    // (numberToString) would be: amounts of few decimals, values at the edges of the
    // 15 digits, rounding and the exponent range, and random doubles of every size.
    void numbersFromTheDouble_data()
    {
        columns<QString, QString>({"mode", "format"});
        row("Czech grouped", "Czech", "#,##0.00");
        row("English grouped", "English", "#,##0.00");
        row("three sections, percent", "Czech", "0.0%;(0.0);zero");
        row("no format", "English", "");
        row("integer places only", "Czech", "000");
    }
    void numbersFromTheDouble()
    {
        const RegionalSettings rs = Field(VFETCH(QString, mode)).o.regional;
        ParsedFormat pf;
        pf.systemDecimalSeparator = pf.decimalSeparator = rs.decimalSeparator;
        pf.systemThousandsSeparator = pf.thousandsSeparator = rs.thousandsSeparator;
        ListColumns columns;
        columns.setUpperBound(0);
        columns.setDataType(0, itNum);
        columns.setFormatString(0, VFETCH(QString, format));
        const ListCellFormatter formatter(columns, &pf, rs);

        QList<double> values = {qInf(), -qInf(), qQNaN(), 0.1 + 0.2, 1.0 / 3};
        for (const QString &v :
             u"0 -0 0.005 -0.005 0.995 12345.67 -0.5 0.125 1e-7 2.5e-7 1e-300 "
             "999999999999999 1e15 -1e15 1e20 123456789.123456789 5e-324"_s.split(u' '))
            values << v.toDouble();
        std::mt19937_64 random(20261122);
        for (int i = 0; i < 2000; ++i) {
            const int scale = int(random() % 40) - 20;
            values << double(qint64(random() % 2000000000) - 1000000000) * std::pow(10.0, scale);
            values << double(qint64(random() % 10000000)) / 100; // an amount
            values << double(qint64(random() % 100000)) / 100 + 1e-11 * double(random() % 9 + 1);
        }
        CellText fast;
        int taken = 0;
        for (const double v : values) {
            const QString expected = formatter.format(numberToString(v, rs), 0);
            if (!formatter.formatFast(v, 0, fast))
                continue; // left to the text route
            ++taken;
            QCOMPARE(QString(reinterpret_cast<const QChar *>(fast.data()), fast.size()), expected);
        }
        QVERIFY(taken > values.size() * 3 / 4);
    }

    // A host's query is read from where it stands to its end, and left there.
    void hostQuery_data()
    {
        columns<int, QStringList>({"steps", "names"});
        row("fresh", 0, QStringList {u"Praha"_s, u""_s, u"Ostrava"_s, u"iiiiiiiiii"_s});
        row("on its third row", 3, QStringList {u"Ostrava"_s, u"iiiiiiiiii"_s});
    }
    void hostQuery()
    {
        QSqlQuery q(QSqlDatabase::database(u"host"_s));
        QVERIFY(q.exec(u"SELECT name FROM t"_s));
        for (int i = VFETCH(int, steps); i > 0; --i)
            QVERIFY(q.next());
        Field field;
        field.listFormat.clear();
        field.textCol = 0;
        const LoadedList list = ListLoader(field.o).fromQuery(q, field.ready());
        QCOMPARE(allRows(list.rows), VFETCH(QStringList, names));
        QCOMPARE(q.at(), int(QSql::AfterLastRow));
        QSqlQuery idle(QSqlDatabase::database(u"host"_s));
        QVERIFY_THROWS_EXCEPTION(DatabaseError, ListLoader(field.o).fromQuery(idle, {}));
    }

    void hostItemsAndBools()
    {
        ListItems items;
        QVERIFY(items.add(u"a\tb"_s)); // starts the collection: two columns
        QVERIFY(!items.add(u"x"_s)); // the second cell stays empty
        QVERIFY(!items.add(u" 5 \ty\tz"_s)); // z is dropped
        Field field;
        field.listFormat = u"N0.0"_s;
        const LoadedList list = ListLoader(field.o).fromItems(items.rows(), field.ready());
        QCOMPARE(allRows(list.rows), (QStringList {u"a|b"_s, u"x|"_s, u"5,0|y"_s}));
        items.reset();
        QVERIFY(items.add(u"only"_s));
        QCOMPARE(items.rows().columnCount(), 1);

        // A truth value's list, without the empty row: through the field.
        const LoadedList bools = ListLoader(field.o).fromBool({u"Ano ii"_s, u"Ne"_s, u'A'}, true);
        QCOMPARE(allRows(bools.rows), (QStringList {u"Ano ii"_s, u"Ne"_s, u""_s}));
        QCOMPARE(bools.columns.length(0), width(u"Ano ii"));
    }

    void failures_data()
    {
        columns<QString, QString, QString>({"connect", "sql", "says"});
        row("missing folder", "Driver=QSQLITE;Database=/nonexistent-velmora/x.db", "SELECT 1",
            "cannot connect to QSQLITE database \"/nonexistent-velmora/x.db\"");
        row("bad SQL", "", "SELEC * FROM t", "running the list query \"SELEC * FROM t\"");
        row("error in the middle of the rows", "",
            "SELECT CASE WHEN rowid >= 3 THEN abs(-9223372036854775808) ELSE 1 END FROM t",
            "reading the rows of");
    }
    void failures()
    {
        Field field;
        const QString text = VFETCH(QString, connect);
        const QStringList before = QSqlDatabase::connectionNames();
        try {
            ListLoader(field.o).fromConnection(text.isEmpty() ? connect() : text,
                                               VFETCH(QString, sql), field.ready());
            QFAIL("no DatabaseError");
        } catch (const DatabaseError &e) {
            QVERIFY2(e.message().contains(VFETCH(QString, says)), qPrintable(e.message()));
        }
        QCOMPARE(QSqlDatabase::connectionNames(), before);
    }

    void cancelStopsTheLoad()
    {
        Field field;
        std::atomic<bool> cancel {false};
        field.o.cancel = &cancel;
        field.o.checkEvery = 2;
        QList<int> reports;
        field.o.progress = [&](int rows) {
            reports << rows;
            cancel = true;
        };
        const LoadedList list
            = ListLoader(field.o).fromConnection(connect(), u"SELECT * FROM t"_s, field.ready());
        QVERIFY(list.canceled);
        QCOMPARE(list.rows.rowCount(), 0);
        QCOMPARE(reports, QList<int> {2});
    }

    // Numbers, dates, NULL, booleans and timestamps as the server types them.
    void postgresTypes()
    {
        QVERIFY2(m_noServer.isEmpty(), qPrintable(m_noServer));
        Field field;
        field.listFormat = u"N#,##0.00|A|D|N|B|A|D"_s;
        const QString sql = u"SELECT 1234.5::numeric, 'Brno', DATE '2005-12-24', NULL::int, true, "
                            "TIMESTAMP '2005-12-24 10:30:00', TIMESTAMP '2005-12-25 23:59:00'"_s;
        const LoadedList list = ListLoader(field.o).fromConnection(m_server, sql, field.ready());
        QCOMPARE(allRows(list.rows),
                 QStringList {u"1 234,50|Brno|24.12.2005||ANO|24.12.2005 10:30:00|25.12.2005"_s});
    }

    // The server ends the loading session part way through: the load throws, it does
    // not hang (its connection goes as after any failure).
    void postgresBackendTerminated()
    {
        QVERIFY2(m_noServer.isEmpty(), qPrintable(m_noServer));
        Field field;
        field.o.checkEvery = 1000;
        int terminated = 0;
        field.o.progress = [&](int) {
            QSqlQuery q(QSqlDatabase::database(u"lookup-admin"_s));
            if (terminated == 0
                && q.exec(u"SELECT pg_terminate_backend(pid) FROM pg_stat_activity WHERE query "
                          "LIKE '%velmora-terminate-me%' AND pid <> pg_backend_pid()"_s))
                while (q.next())
                    terminated += q.value(0).toBool();
        };
        const QString sql = u"SELECT g, repeat('x', 40) FROM generate_series(1, 5000000) g "
                            "/* velmora-terminate-me */"_s;
        QElapsedTimer timer;
        timer.start();
        try {
            ListLoader(field.o).fromConnection(m_server, sql, field.ready());
            QFAIL("the load went on after its backend was terminated");
        } catch (const DatabaseError &e) {
            QVERIFY2(e.message().contains(u"reading the rows of"_s), qPrintable(e.message()));
        }
        QCOMPARE(terminated, 1);
        QVERIFY2(timer.elapsed() < 60000, "the load took a minute to notice");
    }

    void cleanupTestCase()
    {
        for (const char *name : {"host", "lookup-admin"})
            QSqlDatabase::removeDatabase(QLatin1String(name));
    }
};

VELMORA_TEST(TestListLoader)
#include "tst_listloader.moc"
