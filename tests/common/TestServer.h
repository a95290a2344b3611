#pragma once

// The PostgreSQL server ctest starts for a test run (scripts/pg-server.sh), and the ODBC
// set-up that comes with it. The file VELMORA_PG_ENV names holds, one key=value a line:
// host, port, db, user, password of the server; odbcsysini, the directory of a private
// odbcinst.ini (drivers "PostgreSQL Unicode" and "SQLite3") and odbc.ini (DSN
// velmora_pg); odbc_pg, an ODBC connect string of the test database; odbc_error when the
// start found ODBC unusable.
//
// Every helper that cannot give what it was asked for says why, and a test that needs it
// fails with that text (QVERIFY2(ok, qPrintable(why))): no server, no driver, no pass.

#include <QtCore/QFile>
#include <QtCore/QHash>
#include <QtSql/QSqlDatabase>
#include <QtSql/QSqlError>
#include <QtSql/QSqlQuery>

namespace velmora::test {

struct TestServer
{
    QString file; // the connection file read
    QString host;
    int port = 0;
    QString db, user, password;
    QString odbcSysIni; // directory ODBCSYSINI points at
    QString odbcPostgres; // Driver={PostgreSQL Unicode};Server=...;Port=...;...
    QString odbcError; // why ODBC is not usable; empty when it is
};

// Reads the connection file of the test server; false, with why, when there is none.
inline bool readTestServer(TestServer &s, QString &why)
{
    QFile file(qEnvironmentVariable("VELMORA_PG_ENV"));
    s.file = file.fileName();
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        why = s.file.isEmpty()
            ? QStringLiteral("VELMORA_PG_ENV is not set: run the test "
                             "through ctest, which starts the server")
            : QStringLiteral("no PostgreSQL server: %1: %2").arg(s.file, file.errorString());
        return false;
    }
    QHash<QByteArray, QString> v;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (const qsizetype eq = line.indexOf('='); eq > 0)
            v.insert(line.left(eq), QString::fromUtf8(line.mid(eq + 1)));
    }
    s = {s.file,        v["host"],       v["port"].toInt(), v["db"],        v["user"],
         v["password"], v["odbcsysini"], v["odbc_pg"],      v["odbc_error"]};
    const bool named = !s.host.isEmpty() && s.port > 0 && !s.db.isEmpty() && !s.user.isEmpty();
    if (!named)
        why = QStringLiteral("%1 names no server (host, port, db, user)").arg(s.file);
    return named;
}

// Opens a QPSQL connection called `name` to the test server. When the database it returns
// is closed, `why` says why.
inline QSqlDatabase openTestServer(const QString &name, QString &why)
{
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), name);
    TestServer s;
    if (!readTestServer(s, why))
        return db;
    db.setHostName(s.host);
    db.setPort(s.port);
    db.setDatabaseName(s.db);
    db.setUserName(s.user);
    db.setPassword(s.password);
    if (!db.open())
        why = QStringLiteral("cannot connect to the PostgreSQL server of %1: %2")
                  .arg(s.file, db.lastError().text());
    return db;
}

// A field's connection string for Qt's PostgreSQL driver to the test server.
inline QString qpsqlConnectString(const TestServer &s)
{
    return QStringLiteral("Driver=QPSQL;Host=%1;Port=%2;Database=%3;User=%4;Password=%5")
        .arg(s.host)
        .arg(s.port)
        .arg(s.db, s.user, s.password);
}

// Whether the private ODBC set-up of the test server can be used, else why. Points
// ODBCSYSINI at it when the environment does not (a test run by hand with VELMORA_PG_ENV
// alone): unixODBC reads the variable once, so call this before the first ODBC
// connection of the process.
inline bool odbcReady(const TestServer &s, QString &why)
{
    const QString env = qEnvironmentVariable("ODBCSYSINI");
    QString problem;
    if (!s.odbcError.isEmpty() || s.odbcSysIni.isEmpty() || s.odbcPostgres.isEmpty())
        problem = QStringLiteral("ODBC is not usable (%1): %2")
                      .arg(s.file,
                           s.odbcError.isEmpty() ? QStringLiteral("no odbcsysini, odbc_pg")
                                                 : s.odbcError);
    else if (!env.isEmpty() && env != s.odbcSysIni)
        problem = QStringLiteral("ODBCSYSINI is %1, the test server's ODBC set-up is in %2")
                      .arg(env, s.odbcSysIni);
    else if (!QSqlDatabase::isDriverAvailable(QStringLiteral("QODBC")))
        problem = QStringLiteral("Qt has no QODBC driver (package libqt6sql6-odbc)");
    else if (env.isEmpty())
        qputenv("ODBCSYSINI", QFile::encodeName(s.odbcSysIni));
    if (!problem.isEmpty())
        why = problem;
    return problem.isEmpty();
}

} // namespace velmora::test
