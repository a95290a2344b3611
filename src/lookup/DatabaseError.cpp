#include <velmora/DatabaseError.h>

namespace velmora {

DatabaseError::DatabaseError(const QString &message, const QSqlError &error)
    : std::runtime_error(message.toStdString()), m_message(message), m_error(error)
{ }

// Out of line, so that the class's type information lives in the library and a host
// catches the same type that the library throws.
DatabaseError::~DatabaseError() = default;

} // namespace velmora
