// Paths that the platform takes for URLs.
#ifndef QXCORE_FILE_URL_SCHEME_H
#define QXCORE_FILE_URL_SCHEME_H

#include "file/scheme.h"

// This build has no network service: every operation raises CXFileException code 13 with the URL as
// name, and no URL is writable.
extern const FileScheme g_urlScheme;

#endif
