// Paths of the file system.
#ifndef QXCORE_FILE_LOCAL_SCHEME_H
#define QXCORE_FILE_LOCAL_SCHEME_H

#include "file/scheme.h"

// Serves every path that no other scheme takes.
extern const FileScheme g_localScheme;

#endif
