#pragma once

#include <velmora/Global.h>

#include <QtCore/QString>
#include <QtSql/QSqlError>

#include <stdexcept>

namespace velmora {

// A lookup list could not be loaded from its database: the connection string is
// unusable, the connection cannot be opened, or the query fails (also part way through
// its rows). InitList and the group operations that load lists pass it to the host;
// the list keeps the rows it had.
//
// message() says what failed: the driver and database (host, port and user; never the
// password) or the query, followed by the driver's own text. what() is the same text
// in UTF-8. sqlError() is the error the driver reported; for a connection string that
// cannot be read it is a ConnectionError that repeats the message.
class VELMORA_EXPORT DatabaseError : public std::runtime_error
{
public:
    DatabaseError(const QString &message, const QSqlError &error);
    ~DatabaseError() override;
    DatabaseError(const DatabaseError &) = default;
    DatabaseError &operator=(const DatabaseError &) = default;

    QString message() const { return m_message; }
    QSqlError sqlError() const { return m_error; }

private:
    QString m_message;
    QSqlError m_error;
};

} // namespace velmora
