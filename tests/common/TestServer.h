#pragma once

// The PostgreSQL server ctest starts for a test run (scripts/pg-server.sh). The file
// VELMORA_PG_ENV names holds its host, port, db, user and password, one key=value a line.

#include <QtCore/QFile>
#include <QtCore/QHash>
#include <QtSql/QSqlDatabase>
#include <QtSql/QSqlError>

namespace velmora::test {

// Opens a connection called `name` to the test server. When the database it returns is
// closed, `why` says why, and a test that needs the server fails with it: no server is
// no pass.
inline QSqlDatabase openTestServer(const QString &name, QString &why)
{
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), name);
    QFile file(qEnvironmentVariable("VELMORA_PG_ENV"));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        why = file.fileName().isEmpty()
            ? QStringLiteral("VELMORA_PG_ENV is not set: run the test through ctest, which "
                             "starts the PostgreSQL server")
            : QStringLiteral("no PostgreSQL server: %1: %2")
                  .arg(file.fileName(), file.errorString());
        return db;
    }
    QHash<QByteArray, QString> s;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (const qsizetype eq = line.indexOf('='); eq > 0)
            s.insert(line.left(eq), QString::fromUtf8(line.mid(eq + 1)));
    }
    db.setHostName(s.value("host"));
    db.setPort(s.value("port").toInt());
    db.setDatabaseName(s.value("db"));
    db.setUserName(s.value("user"));
    db.setPassword(s.value("password"));
    if (!db.open())
        why = QStringLiteral("cannot connect to the PostgreSQL server of %1: %2")
                  .arg(file.fileName(), db.lastError().text());
    return db;
}

} // namespace velmora::test
