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
    QString db;
    QString user;
    QString password;
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
        why = file.fileName().isEmpty()
            ? QStringLiteral("VELMORA_PG_ENV is not set: run the test through ctest, which "
                             "starts the PostgreSQL server")
            : QStringLiteral("no PostgreSQL server: %1: %2")
                  .arg(file.fileName(), file.errorString());
        return false;
    }
    QHash<QByteArray, QString> v;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (const qsizetype eq = line.indexOf('='); eq > 0)
            v.insert(line.left(eq), QString::fromUtf8(line.mid(eq + 1)));
    }
    s.host = v.value("host");
    s.port = v.value("port").toInt();
    s.db = v.value("db");
    s.user = v.value("user");
    s.password = v.value("password");
    s.odbcSysIni = v.value("odbcsysini");
    s.odbcPostgres = v.value("odbc_pg");
    s.odbcError = v.value("odbc_error");
    if (s.host.isEmpty() || s.port <= 0 || s.db.isEmpty() || s.user.isEmpty()) {
        why = QStringLiteral("%1 names no server (host, port, db, user)").arg(s.file);
        return false;
    }
    return true;
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

// Connection strings as a field takes them, one per way to the data.

// Qt's PostgreSQL driver to the test server.
inline QString qpsqlConnectString(const TestServer &s)
{
    return QStringLiteral("Driver=QPSQL;Host=%1;Port=%2;Database=%3;User=%4;Password=%5")
        .arg(s.host)
        .arg(s.port)
        .arg(s.db, s.user, s.password);
}

// Qt's ODBC driver, through unixODBC and the driver "PostgreSQL Unicode", to the test
// server: everything after the first key goes to the driver manager.
inline QString odbcPostgresConnectString(const TestServer &s)
{
    return QStringLiteral("Driver=QODBC;") + s.odbcPostgres;
}

// Qt's ODBC driver, through unixODBC and the driver "SQLite3", to a database file. The
// driver creates a file that does not exist (empty) unless NoCreat=1 is added. The path
// must hold no ';'.
inline QString odbcSqliteConnectString(const QString &file)
{
    return QStringLiteral("Driver=QODBC;Driver={SQLite3};Database=") + file;
}

// Whether the private ODBC set-up of the test server can be used, else why. Points
// ODBCSYSINI at it when the environment does not (a test run by hand with VELMORA_PG_ENV
// alone): unixODBC reads the variable once, so call this before the first ODBC
// connection of the process.
inline bool odbcReady(const TestServer &s, QString &why)
{
    if (!s.odbcError.isEmpty()) {
        why = QStringLiteral("ODBC is not usable (%1): %2").arg(s.file, s.odbcError);
        return false;
    }
    if (s.odbcSysIni.isEmpty() || s.odbcPostgres.isEmpty()) {
        why = QStringLiteral("%1 has no ODBC set-up (odbcsysini, odbc_pg): a server started "
                             "by an older scripts/pg-server.sh?")
                  .arg(s.file);
        return false;
    }
    if (!QFile::exists(s.odbcSysIni + QStringLiteral("/odbcinst.ini"))) {
        why = QStringLiteral("no odbcinst.ini in %1").arg(s.odbcSysIni);
        return false;
    }
    if (qEnvironmentVariableIsEmpty("ODBCSYSINI"))
        qputenv("ODBCSYSINI", QFile::encodeName(s.odbcSysIni));
    else if (qEnvironmentVariable("ODBCSYSINI") != s.odbcSysIni) {
        why = QStringLiteral("ODBCSYSINI is %1, the test server's ODBC set-up is in %2")
                  .arg(qEnvironmentVariable("ODBCSYSINI"), s.odbcSysIni);
        return false;
    }
    if (!QSqlDatabase::isDriverAvailable(QStringLiteral("QODBC"))) {
        why = QStringLiteral("Qt has no QODBC driver (package libqt6sql6-odbc)");
        return false;
    }
    return true;
}

} // namespace velmora::test
