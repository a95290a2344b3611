#pragma once

#include <QtCore/qglobal.h>

/// @file
/// The export macro of the library.

/// Marks a class or function as part of the library's binary interface: exported while
/// the library itself is built (VELMORA_BUILD defined), imported by its users.

#if defined(VELMORA_BUILD)
#    define VELMORA_EXPORT Q_DECL_EXPORT
#else
#    define VELMORA_EXPORT Q_DECL_IMPORT
#endif
