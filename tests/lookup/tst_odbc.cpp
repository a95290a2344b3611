// Loading lists through Qt's ODBC driver and unixODBC: the test server through "PostgreSQL
// Unicode" and an SQLite file through "SQLite3" give the same rows as the native drivers
// (Czech text, NULL, numbers and dates formatted per column), and failures throw
// DatabaseError without a password in the message and without a connection left behind.

#include "common/DataRows.h"
#include "common/TestRegistry.h"
#include "common/TestServer.h"
#include "lookup/ListFormat.h"
#include "lookup/ListLoader.h"

#include <velmora/DatabaseError.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QTemporaryDir>
#include <QtSql/QSqlDatabase>
#include <QtSql/QSqlQuery>

using namespace velmora;
using namespace velmora::detail;
using velmora::test::columns;
using velmora::test::row;
using namespace Qt::StringLiterals;

namespace {

const QStringList Inserts = {
    u"(1, 1234.5, 'Příliš žluťoučký kůň úpěl ďábelské ódy', '2005-12-24')"_s,
    u"(2, NULL, NULL, NULL)"_s,
    u"(3, -0.5, '  Ústí nad Labem  ', '2005-01-02')"_s,
    u"(4, 1234567.891, 'ŠŤĚPÁNEK & Syn', '1999-02-28')"_s,
};
// What both ways to each database must show, in Czech settings.
const QStringList Shown = {
    u"1 234,50|Příliš žluťoučký kůň úpěl ďábelské ódy|24.12.2005"_s,
    u"||"_s, // NULL: empty cells
    u"-0,50|Ústí nad Labem|02.01.2005"_s,
    u"1 234 567,89|ŠŤĚPÁNEK & Syn|28.02.1999"_s,
};

QStringList load(const QString &connect, const QString &sql)
{
    ParsedFormat pf;
    ListLoadOptions o;
    o.parsed = &pf;
    o.regional = RegionalSettings::czech(QLatin1Char(' '));
    const ColumnsReady ready = [&](ListColumns &c, int count) {
        c.setUpperBound(count - 1);
        ListFieldSettings s;
        s.textCol = 1;
        s.regional = o.regional;
        parseListFormat(u"N#,##0.00|A|D"_s, s, c, pf);
    };
    const LoadedList list = ListLoader(o).fromConnection(connect, sql, ready);
    QStringList rows;
    for (int r = 0; r < list.rows.rowCount(); ++r) {
        QStringList cells;
        for (int c = 0; c < list.rows.columnCount(); ++c)
            cells << list.rows.cell(r, c).toString();
        rows << cells.join(u'|');
    }
    return rows;
}

} // namespace

class TestOdbc : public QObject
{
    Q_OBJECT

    test::TestServer m_server;
    QTemporaryDir m_dir;
    QString m_table = u"odbc_list_%1"_s.arg(QCoreApplication::applicationPid());
    QString m_why; // why the set-up failed: every test fails with it

    QString connectOf(const QString &way) const
    {
        const QString file = m_dir.filePath(u"odbc.db"_s);
        return way == u"QPSQL"_s             ? test::qpsqlConnectString(m_server)
            : way == u"QSQLITE"_s            ? u"Driver=QSQLITE;Database="_s + file
            : way == u"PostgreSQL Unicode"_s ? test::odbcPostgresConnectString(m_server)
                                             : test::odbcSqliteConnectString(file);
    }
    QString listQuery() const
    {
        return u"SELECT amount, name, day FROM %1 ORDER BY id"_s.arg(m_table);
    }

    // Creates the table through a native driver; false, with m_why, when that fails.
    bool create(const QString &driver, const QString &amountType)
    {
        const QString name = u"odbc-setup"_s;
        bool ok = false;
        {
            QSqlDatabase db;
            if (driver == u"QPSQL"_s) {
                db = test::openTestServer(name, m_why);
            } else {
                db = QSqlDatabase::addDatabase(driver, name);
                db.setDatabaseName(m_dir.filePath(u"odbc.db"_s));
                db.open();
            }
            QSqlQuery q(db);
            ok = db.isOpen()
                && q.exec(u"CREATE TABLE %1 (id int, amount %2, name text, day date)"_s.arg(
                    m_table, amountType))
                && q.exec(u"INSERT INTO %1 VALUES %2"_s.arg(m_table, Inserts.join(u',')));
            if (!ok && m_why.isEmpty())
                m_why = u"%1: %2"_s.arg(driver, q.lastError().text());
        }
        QSqlDatabase::removeDatabase(name);
        return ok;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        if (test::readTestServer(m_server, m_why) && test::odbcReady(m_server, m_why))
            create(u"QPSQL"_s, u"numeric(12,2)"_s) && create(u"QSQLITE"_s, u"real"_s);
    }
    void init() { QVERIFY2(m_why.isEmpty(), qPrintable(m_why)); }

    void rows_data()
    {
        columns<QString>({"way"});
        for (const char *way : {"QPSQL", "PostgreSQL Unicode", "QSQLITE", "SQLite3"})
            row(way, way);
    }
    void rows()
    {
        const QStringList before = QSqlDatabase::connectionNames();
        QCOMPARE(load(connectOf(VFETCH(QString, way)), listQuery()), Shown);
        QCOMPARE(QSqlDatabase::connectionNames(), before);
    }

    void failures_data()
    {
        columns<QString, QString, QString>({"connect", "sql", "says"});
        row("PostgreSQL: no such table", "PostgreSQL Unicode", "SELECT * FROM velmora_nothere",
            "running the list query");
        row("PostgreSQL: an error part way", "PostgreSQL Unicode;UseDeclareFetch=1;Fetch=100",
            "SELECT 1 / (4000 - g) FROM generate_series(1, 5000) g", "reading the rows of");
        row("PostgreSQL: wrong password", "Pwd=velmora-wrong-pwd", "SELECT 1",
            "cannot connect to QODBC");
        row("SQLite: bad SQL", "SQLite3", "SELEC 1", "running the list query \"SELEC 1\"");
        row("unknown ODBC driver", "Driver=QODBC;Driver={Velmora No Such Driver};Database=x",
            "SELECT 1", "cannot connect to QODBC \"Driver={Velmora No Such Driver};Database=x\"");
    }
    void failures()
    {
        QString connect = VFETCH(QString, connect);
        if (connect.startsWith(u"Pwd="_s))
            connect = connectOf(u"PostgreSQL Unicode"_s).replace(m_server.password, connect.mid(4));
        else if (!connect.startsWith(u"Driver="_s)) // a way, then any parts of its own
            connect = connectOf(connect.section(u';', 0, 0))
                + connect.mid(connect.section(u';', 0, 0).size());
        const QStringList before = QSqlDatabase::connectionNames();
        try {
            load(connect, VFETCH(QString, sql));
            QFAIL("no DatabaseError");
        } catch (const DatabaseError &e) {
            QVERIFY2(e.message().contains(VFETCH(QString, says)), qPrintable(e.message()));
            for (const QString &secret : {m_server.password, u"velmora-wrong-pwd"_s})
                QVERIFY2(!e.message().contains(secret), qPrintable(e.message()));
        }
        QCOMPARE(QSqlDatabase::connectionNames(), before);
    }

    void cleanupTestCase()
    {
        QString why;
        {
            QSqlDatabase db = test::openTestServer(u"odbc-cleanup"_s, why);
            QSqlQuery(u"DROP TABLE IF EXISTS %1"_s.arg(m_table), db);
        }
        QSqlDatabase::removeDatabase(u"odbc-cleanup"_s);
    }
};

VELMORA_TEST(TestOdbc)
#include "tst_odbc.moc"
