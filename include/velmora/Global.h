#pragma once

#include <QtCore/qglobal.h>

#if defined(VELMORA_BUILD)
#    define VELMORA_EXPORT Q_DECL_EXPORT
#else
#    define VELMORA_EXPORT Q_DECL_IMPORT
#endif
