#pragma once

// SQLConnect: the connection string of a lookup list, read into the settings of a
// QSqlDatabase.
//
// The string is made of key=value parts separated by ";"; blanks around keys and
// values do not count, empty parts are skipped, keys are case-insensitive. A value
// may be quoted ("..." or '...', a doubled quote stands for itself) or braced
// ({...}, "}}" stands for "}"); a quoted or braced value may hold ";".
//
//   Driver      the Qt driver (QSQLITE, QPSQL, QODBC, ...; any case). Without one the
//               string is for QSQLITE, the embedded database.
//   Database    also: Data Source, DBName, DB, Initial Catalog
//   Host        also: Hostname, Server
//   Port        1..65535
//   User        also: UID, User ID, Username, User Name
//   Password    also: PWD
//
// Any other key goes to the driver as a connect option, written as it stands
// (key=value, values unquoted only by the driver), the options joined by ";".
//
// QODBC: every part but the Qt driver's is handed to the ODBC driver manager as its
// connection string, as written (Driver={PostgreSQL Unicode};Server=...;UID=...;PWD=...
// or DSN=name), so ODBC's own keys, a second Driver included, mean what ODBC says.
// Such a string must name a DSN, a FILEDSN, a Driver or a Server; a DSN whose name
// contains ".dsn" cannot be handed over and is refused.
//
// A string that cannot be read throws velmora::DatabaseError with a message that names
// the part by its number, never quoting a key or value that might hold a password (an
// unbraced password with ";" in it falls apart into such parts). Only a driver name
// and a port are quoted.

#include <QtCore/QString>

class QSqlDatabase;

namespace velmora::detail {

struct ConnectionSettings
{
    QString driver; // as QSqlDatabase::drivers() names it
    QString databaseName; // for QODBC: the ODBC connection string
    QString hostName;
    int port = -1; // -1: the driver's default
    QString userName;
    QString password;
    QString connectOptions;
    QString odbcShown; // QODBC: the parts that name the source (DSN, Driver, Server, ...)

    // Sets everything on a database of the driver.
    void applyTo(QSqlDatabase &db) const;
    // The connection for messages: driver, database, host, port and user; never the
    // password (for QODBC the ODBC parts that name the source and the user).
    QString describe() const;
};

ConnectionSettings parseConnectionString(const QString &text);

} // namespace velmora::detail
