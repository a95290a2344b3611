// Loading lists through Qt's ODBC driver and unixODBC: the test server through "PostgreSQL
// Unicode" and an SQLite file through "SQLite3" give the same rows as the native drivers
// (Czech text, NULL, numbers and dates formatted per column), and failures throw
// DatabaseError without a password in the message and without a connection left behind.

#include "common/DataRows.h"
#include "common/TestRegistry.h"
#include "common/TestServer.h"
#include "lookup/LoaderField.h"

#include <velmora/DatabaseError.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QTemporaryDir>
#include <QtSql/QSqlDatabase>
#include <QtSql/QSqlQuery>

using namespace velmora;
using namespace velmora::detail;
using namespace velmora::test;
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
    u"||  .  .    "_s, // NULL: empty cells; the date, the value column, as its empty date
    u"-0,50|Ústí nad Labem|02.01.2005"_s,
    u"1 234 567,89|ŠŤĚPÁNEK & Syn|28.02.1999"_s,
};

QStringList load(const QString &connect, const QString &sql)
{
    test::Field field;
    return test::allRows(ListLoader(field.o).fromConnection(connect, sql, field.ready()).rows);
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
            : way == u"PostgreSQL Unicode"_s ? u"Driver=QODBC;"_s + m_server.odbcPostgres
                                             : u"Driver=QODBC;Driver={SQLite3};Database="_s + file;
    }
    QString listQuery() const
    {
        return u"SELECT amount, name, day FROM %1 ORDER BY id"_s.arg(m_table);
    }

    // Creates the table through a native driver; false, with m_why, when that fails.
    bool create(const QSqlDatabase &db, const QString &amountType)
    {
        QSqlQuery q(db);
        const bool ok = db.isOpen()
            && q.exec(u"CREATE TABLE %1 (id int, amount %2, name text, day date)"_s.arg(m_table,
                                                                                        amountType))
            && q.exec(u"INSERT INTO %1 VALUES %2"_s.arg(m_table, Inserts.join(u',')));
        if (!ok && m_why.isEmpty())
            m_why
                = db.driverName() + u": "_s + (db.isOpen() ? q.lastError() : db.lastError()).text();
        return ok;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        if (!test::readTestServer(m_server, m_why) || !test::odbcReady(m_server, m_why))
            return;
        QSqlDatabase lite = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"odbc-lite"_s);
        lite.setDatabaseName(m_dir.filePath(u"odbc.db"_s));
        lite.open();
        create(test::openTestServer(u"odbc-pg"_s, m_why), u"numeric(12,2)"_s)
            && create(lite, u"real"_s);
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
        QSqlQuery(u"DROP TABLE IF EXISTS %1"_s.arg(m_table), QSqlDatabase::database(u"odbc-pg"_s));
        for (const QString &name : {u"odbc-pg"_s, u"odbc-lite"_s})
            QSqlDatabase::removeDatabase(name);
    }
};

VELMORA_TEST(TestOdbc)
#include "tst_odbc.moc"
