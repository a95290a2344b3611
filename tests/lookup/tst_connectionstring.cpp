// Connection strings: keys, synonyms, quoting, the ODBC hand-over, and refused strings
// (the list fuzz checks braced values, ports and passwords in messages at random).

#include "common/DataRows.h"
#include "common/TestRegistry.h"
#include "lookup/ConnectionString.h"

#include <velmora/DatabaseError.h>

using namespace velmora;
using namespace velmora::detail;
using namespace velmora::test;

class TestConnectionString : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void parse_data()
    {
        // "settings": driver|database|host|port|user|password|options
        columns<QString, QString>({"text", "settings"});
        row("no driver is SQLite, empty parts", ";;Database=orders.db;",
            "QSQLITE|orders.db||-1|||");
        row("keys in any case, blanks around",
            " driver = qpsql ; HOST = 127.0.0.1 ;Port= 5432;dbname=shop;UID=u;PWD=p",
            "QPSQL|shop|127.0.0.1|5432|u|p|");
        row("synonyms", "Driver=QPSQL;Server=h;Data Source=d;User ID=u;Password=p",
            "QPSQL|d|h|-1|u|p|");
        row("quoted value, doubled quote", "Driver=QPSQL;Password='it''s';User=\"a;b\"",
            "QPSQL|||-1|a;b|it's|");
        row("unknown keys are options as written",
            "Driver=QPSQL;sslmode=disable;application_name='my app';QPSQL_X=1;Database=d",
            "QPSQL|d||-1|||sslmode=disable;application_name='my app';QPSQL_X=1");
        row("ODBC with a driver: the rest as written",
            "Driver=QODBC;Driver={PostgreSQL Unicode};Server=h;Port=5432;UID=u;PWD=p",
            "QODBC|Driver={PostgreSQL Unicode};Server=h;Port=5432;UID=u;PWD=p||-1|||");
        row("ODBC DSN goes first without its key", "UID=u;Driver=QODBC; dsn = shop ",
            "QODBC|shop;UID=u||-1|||");
    }
    void parse()
    {
        const ConnectionSettings cs = parseConnectionString(VFETCH(QString, text));
        const QStringList got {
            cs.driver,   cs.databaseName, cs.hostName,      QString::number(cs.port),
            cs.userName, cs.password,     cs.connectOptions};
        QCOMPARE(got.join(u'|'), VFETCH(QString, settings));
    }

    void refused_data()
    {
        columns<QString, QString>({"text", "says"});
        row("password split by ;", "Driver=QPSQL;Password=top;hunter2", "part 3 has no \"=\"");
        row("no key", "Driver=QPSQL; =x", "part 2 has no key");
        row("port no number", "Driver=QPSQL;Port=54x;PWD=hunter2", "port of part 2");
        row("empty driver", "Driver=;Database=x", "part 1 names no driver");
        row("unknown driver", "Driver=NoSuch;PWD=hunter2", "unknown database driver \"NoSuch\"");
        row("two drivers", "Driver=QPSQL;Driver=QSQLITE", "part 2 names a second driver");
        row("brace not closed", "Driver=QPSQL;Password={hunter2", "has no closing }");
        row("text after a quote", "Driver=QPSQL;Password='hunter2'x", "goes on after");
        row("SQLite without a file", "Driver=QSQLITE;PWD=hunter2", "no Database");
        row("ODBC without a source", "Driver=QODBC;Description=x;PWD=hunter2", "needs a DSN");
        row("ODBC DSN with .dsn in it", "Driver=QODBC;DSN=my.dsnx", "must name a FILEDSN");
    }
    void refused()
    {
        try {
            parseConnectionString(VFETCH(QString, text));
            QFAIL("no DatabaseError");
        } catch (const DatabaseError &e) {
            QVERIFY2(e.message().contains(VFETCH(QString, says)), qPrintable(e.message()));
            QVERIFY(!e.message().contains(u"hunter2"));
            QCOMPARE(e.sqlError().type(), QSqlError::ConnectionError);
            QCOMPARE(QString::fromUtf8(e.what()), e.message());
        }
    }

    void describeLeavesOutThePassword_data()
    {
        columns<QString, QString>({"text", "shows"});
        row("server", "Driver=QPSQL;Host=h;Port=5;Database=d;User=u;Password=pw",
            "QPSQL database \"d\" on h:5 as u");
        row("ODBC", "Driver=QODBC;DSN=x;UID=u;pwd={pw};pw2=x", "QODBC \"DSN=x;UID=u\"");
    }
    void describeLeavesOutThePassword()
    {
        QCOMPARE(parseConnectionString(VFETCH(QString, text)).describe(), VFETCH(QString, shows));
    }
};

VELMORA_TEST(TestConnectionString)
#include "tst_connectionstring.moc"
