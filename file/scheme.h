// The kinds of paths, and what serves each: the one place where a path is sorted.
#ifndef QXCORE_FILE_SCHEME_H
#define QXCORE_FILE_SCHEME_H

#include <qxcore/file.h>

struct FioFileInfo;

struct FileScheme {
    bool (*serves)(const char* path);
    IXFile* (*open)(const char* path, int flags);
    IXOutFile* (*openOut)(const char* path, int flags);
    void (*getFileInfo)(const char* path, FioFileInfo* info);
    void (*deleteFile)(const char* path);
    void (*createDirectory)(const char* path);
    int (*isWritableFile)(const char* path);
};

// Memory file, then URL, then local; a null path is local.
const FileScheme& SchemeOf(const char* path);

#endif
