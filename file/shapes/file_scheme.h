// The kinds of paths, and what serves each.
#ifndef QXCORE_FILE_SHAPES_FILE_SCHEME_H
#define QXCORE_FILE_SHAPES_FILE_SCHEME_H

#include <qxcore/file.h>

struct FioFileInfo;

namespace qx {

struct FileScheme {
    bool (*serves)(const char* path);
    IXFile* (*open)(const char* path, int flags);
    IXOutFile* (*openOut)(const char* path, int flags);
    void (*getFileInfo)(const char* path, FioFileInfo* info);
    void (*deleteFile)(const char* path);
    void (*createDirectory)(const char* path);
    int (*isWritableFile)(const char* path);
};

// Each stands in the room of its name. The local one serves whatever it is asked for, a null path
// too.
extern const FileScheme g_memoryScheme;
extern const FileScheme g_urlScheme;
extern const FileScheme g_localScheme;

}  // namespace qx

#endif
