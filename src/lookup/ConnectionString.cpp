#include "ConnectionString.h"

#include <velmora/DatabaseError.h>

#include <QtCore/QHash>
#include <QtCore/QStringList>
#include <QtSql/QSqlDatabase>

namespace velmora::detail {

namespace {

struct Part
{
    int number = 0; // 1-based, among the non-empty parts
    QString key; // as written, trimmed
    QString name; // the key in lower case with single blanks: what it is looked up by
    QString raw; // the value as written, trimmed (quotes and braces kept)
    QString value; // the value without its quotes or braces
};

[[noreturn]] void refuse(const QString &why)
{
    const QString message = QStringLiteral("Connection string: %1").arg(why);
    throw velmora::DatabaseError(message,
                                 QSqlError(QString(), message, QSqlError::ConnectionError));
}

bool isBlank(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n';
}

QStringView trimmedView(QStringView s)
{
    qsizetype b = 0, e = s.size();
    while (b < e && isBlank(s.at(b)))
        ++b;
    while (e > b && isBlank(s.at(e - 1)))
        --e;
    return s.sliced(b, e - b);
}

QList<Part> splitParts(const QString &text)
{
    QList<Part> parts;
    const QStringView s(text);
    const qsizetype n = s.size();
    qsizetype i = 0;
    int number = 0;
    while (i < n) {
        // The key runs to "=" (or, for a part without one, to ";").
        const qsizetype start = i;
        while (i < n && s.at(i) != u'=' && s.at(i) != u';')
            ++i;
        const QStringView key = trimmedView(s.sliced(start, i - start));
        if (i >= n || s.at(i) == u';') {
            if (!key.isEmpty())
                refuse(QStringLiteral("part %1 has no \"=\"").arg(number + 1));
            ++i; // an empty part
            continue;
        }
        ++number;
        if (key.isEmpty())
            refuse(QStringLiteral("part %1 has no key before \"=\"").arg(number));
        ++i; // past "="

        Part part;
        part.number = number;
        part.key = key.toString();
        part.name = key.toString().toLower().simplified();
        while (i < n && isBlank(s.at(i)))
            ++i;
        const qsizetype valueStart = i;
        const QChar open = i < n ? s.at(i) : QChar();
        if (open == u'{' || open == u'"' || open == u'\'') {
            const QChar close = open == u'{' ? QChar(u'}') : open;
            ++i;
            bool closed = false;
            while (i < n) {
                if (s.at(i) == close) {
                    if (i + 1 < n && s.at(i + 1) == close) { // doubled: stands for itself
                        part.value += close;
                        i += 2;
                        continue;
                    }
                    ++i;
                    closed = true;
                    break;
                }
                part.value += s.at(i++);
            }
            if (!closed)
                refuse(QStringLiteral("the value of part %1 has no closing %2")
                           .arg(number)
                           .arg(close));
            part.raw = s.sliced(valueStart, i - valueStart).toString();
            while (i < n && isBlank(s.at(i)))
                ++i;
            if (i < n && s.at(i) != u';')
                refuse(
                    QStringLiteral("part %1 goes on after its closing %2").arg(number).arg(close));
        } else {
            while (i < n && s.at(i) != u';')
                ++i;
            part.raw = trimmedView(s.sliced(valueStart, i - valueStart)).toString();
            part.value = part.raw;
        }
        ++i; // past ";"
        parts.append(part);
    }
    return parts;
}

enum class Key { Driver, Database, Host, Port, User, Password, Other };

Key keyOf(const QString &name)
{
    static const QHash<QString, Key> keys = {
        {QStringLiteral("driver"), Key::Driver},
        {QStringLiteral("database"), Key::Database},
        {QStringLiteral("data source"), Key::Database},
        {QStringLiteral("dbname"), Key::Database},
        {QStringLiteral("db"), Key::Database},
        {QStringLiteral("initial catalog"), Key::Database},
        {QStringLiteral("host"), Key::Host},
        {QStringLiteral("hostname"), Key::Host},
        {QStringLiteral("server"), Key::Host},
        {QStringLiteral("port"), Key::Port},
        {QStringLiteral("user"), Key::User},
        {QStringLiteral("uid"), Key::User},
        {QStringLiteral("user id"), Key::User},
        {QStringLiteral("username"), Key::User},
        {QStringLiteral("user name"), Key::User},
        {QStringLiteral("password"), Key::Password},
        {QStringLiteral("pwd"), Key::Password},
    };
    return keys.value(name, Key::Other);
}

QString knownDriver(const QString &name)
{
    const QStringList drivers = QSqlDatabase::drivers();
    for (const QString &d : drivers)
        if (d.compare(name, Qt::CaseInsensitive) == 0)
            return d;
    refuse(QStringLiteral("unknown database driver \"%1\" (this system has: %2)")
               .arg(name, drivers.join(QStringLiteral(", "))));
}

QString odbcPart(const Part &p)
{
    return p.key + u'=' + p.raw;
}

// The ODBC string as Qt's ODBC driver must be given it: it puts "FILEDSN=" in front
// of a name that contains ".dsn", passes a string that names a Driver or a Server as
// it is, and puts "DSN=" in front of anything else. So the DSN or FILEDSN part goes
// first, without its key.
QString odbcDatabaseName(const QList<Part> &parts)
{
    QStringList rest;
    const Part *dsn = nullptr;
    const Part *fileDsn = nullptr;
    for (const Part &p : parts) {
        if (p.name == u"dsn" && !dsn)
            dsn = &p;
        else if (p.name == u"filedsn" && !fileDsn)
            fileDsn = &p;
        else
            rest.append(odbcPart(p));
    }
    const auto joined = [&](const Part *first) {
        QStringList all = rest;
        if (first)
            all.prepend(first->raw);
        return all.join(u';');
    };
    const auto withKey = [&](const Part *p) {
        QStringList all = rest;
        if (p)
            all.prepend(odbcPart(*p));
        return all.join(u';');
    };
    const auto contains = [](const QString &s, const char *what) {
        return s.contains(QLatin1String(what), Qt::CaseInsensitive);
    };

    if (fileDsn) {
        // Qt sees the ".dsn" of the file name; anything else rides along behind it.
        QStringList all = rest;
        if (dsn)
            all.prepend(odbcPart(*dsn));
        all.prepend(fileDsn->raw);
        const QString s = all.join(u';');
        if (!contains(s, ".dsn"))
            refuse(QStringLiteral("the FILEDSN of part %1 must name a file ending in .dsn")
                       .arg(fileDsn->number));
        return s;
    }
    const QString whole = withKey(dsn);
    if (contains(whole, ".dsn"))
        refuse(QStringLiteral("an ODBC string that contains \".dsn\" must name a FILEDSN"));
    if (contains(whole, "driver=") || contains(whole, "server="))
        return whole;
    if (!dsn)
        refuse(QStringLiteral("an ODBC connection needs a DSN, FILEDSN, Driver or Server"));
    return joined(dsn);
}

// The ODBC parts a message may show: those that name the source, never a password nor
// a part that an unbraced password with ";" in it may have left behind.
bool isShownOdbcKey(const QString &name)
{
    const Key key = keyOf(name);
    return (key != Key::Password && key != Key::Other) || name == u"dsn" || name == u"filedsn";
}

} // namespace

ConnectionSettings parseConnectionString(const QString &text)
{
    const QList<Part> parts = splitParts(text);
    ConnectionSettings cs;
    const Part *driverPart = nullptr;
    for (const Part &p : parts) {
        if (keyOf(p.name) == Key::Driver) {
            driverPart = &p;
            break;
        }
    }
    if (driverPart && driverPart->value.isEmpty())
        refuse(QStringLiteral("part %1 names no driver").arg(driverPart->number));
    cs.driver = knownDriver(driverPart ? driverPart->value : QStringLiteral("QSQLITE"));

    if (cs.driver == u"QODBC") {
        QList<Part> odbc;
        for (const Part &p : parts)
            if (&p != driverPart)
                odbc.append(p);
        cs.databaseName = odbcDatabaseName(odbc);
        QStringList shown;
        for (const Part &p : std::as_const(odbc))
            if (isShownOdbcKey(p.name))
                shown.append(odbcPart(p));
        cs.odbcShown = shown.join(u';');
        return cs;
    }

    QStringList options;
    for (const Part &p : parts) {
        if (&p == driverPart)
            continue;
        switch (keyOf(p.name)) {
        case Key::Driver:
            refuse(QStringLiteral("part %1 names a second driver").arg(p.number));
        case Key::Database:
            cs.databaseName = p.value;
            break;
        case Key::Host:
            cs.hostName = p.value;
            break;
        case Key::Port: {
            bool ok = false;
            const int port = p.value.toInt(&ok);
            if (!ok || port < 1 || port > 65535)
                refuse(QStringLiteral("the port of part %1 (\"%2\") is no number from 1 to 65535")
                           .arg(p.number)
                           .arg(p.value.left(20)));
            cs.port = port;
            break;
        }
        case Key::User:
            cs.userName = p.value;
            break;
        case Key::Password:
            cs.password = p.value;
            break;
        case Key::Other:
            options.append(p.key + u'=' + p.raw);
            break;
        }
    }
    cs.connectOptions = options.join(u';');
    if (cs.driver == u"QSQLITE" && cs.databaseName.isEmpty())
        refuse(QStringLiteral("no Database (the SQLite file) is named"));
    return cs;
}

void ConnectionSettings::applyTo(QSqlDatabase &db) const
{
    db.setDatabaseName(databaseName);
    db.setHostName(hostName);
    db.setPort(port);
    db.setUserName(userName);
    db.setPassword(password);
    db.setConnectOptions(connectOptions);
}

QString ConnectionSettings::describe() const
{
    if (driver == u"QODBC")
        return QStringLiteral("QODBC \"%1\"").arg(odbcShown);
    QString out = driver + QStringLiteral(" database \"") + databaseName + u'"';
    if (!hostName.isEmpty())
        out += QStringLiteral(" on ") + hostName;
    if (port >= 0)
        out += (hostName.isEmpty() ? QStringLiteral(" on port ") : QStringLiteral(":"))
            + QString::number(port);
    if (!userName.isEmpty())
        out += QStringLiteral(" as ") + userName;
    return out;
}

} // namespace velmora::detail
