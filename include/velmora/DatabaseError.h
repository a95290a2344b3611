#pragma once

#include <velmora/Global.h>

#include <QtCore/QString>
#include <QtSql/QSqlError>

#include <stdexcept>

/// @file
/// The exception of a lookup list that cannot be loaded.

namespace velmora {

/// A lookup list could not be loaded from its database: the connection string is
/// unusable, the connection cannot be opened, or the query fails (also part way through
/// its rows). Velmora::InitList and Velmora::InitListAll pass it to the host; the list
/// is then empty and the field stays usable. No DatabaseError leaves a field inside
/// Qt's event loop: a reload that the drop-down starts reports through a message box.
///
/// message() says what failed: the driver and database (host, port and user; never the
/// password) or the query, followed by the driver's own text. what() is the same text
/// in UTF-8. sqlError() is the error the driver reported; for a connection string that
/// cannot be read it is a QSqlError::ConnectionError that repeats the message.
class VELMORA_EXPORT DatabaseError : public std::runtime_error
{
public:
    /// An error with its text and the driver's error; what() becomes the text in UTF-8.
    DatabaseError(const QString &message, const QSqlError &error);
    ~DatabaseError() override;
    /// Copies the text and the driver's error.
    DatabaseError(const DatabaseError &) = default;
    /// Copies the text and the driver's error.
    DatabaseError &operator=(const DatabaseError &) = default;

    /// What failed, in words: the connection (never its password) or the query, then
    /// the driver's own text.
    QString message() const { return m_message; }
    /// The error the driver reported.
    QSqlError sqlError() const { return m_error; }

private:
    QString m_message;
    QSqlError m_error;
};

} // namespace velmora
