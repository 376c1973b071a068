#include <qxcore/fileops.h>

#include "file/platform/file_error.h"
#include "file/shapes/file_scheme.h"

using qx::RaiseFileError;

namespace {

// Memory file, then URL, then local.
const qx::FileScheme& SchemeOf(const char* path) {
    if (qx::g_memoryScheme.serves(path)) return qx::g_memoryScheme;
    if (qx::g_urlScheme.serves(path)) return qx::g_urlScheme;
    return qx::g_localScheme;
}

}  // namespace

IXFile* Fio_Open(const char* path, int flags) {
    try {
        return SchemeOf(path).open(path, flags);
    } catch (CXMemException&) {
        return nullptr;
    }
}

IXOutFile* Fio_OpenOut(const char* path, int flags) {
    try {
        return SchemeOf(path).openOut(path, flags);
    } catch (CXMemException&) {
        return nullptr;
    }
}

int Fio_IsFileExist(const char* path) {
    try {
        FioFileInfo info;
        Fio_GetFileInfo(path, &info);
        return 1;
    } catch (CXException&) {
        return 0;
    }
}

void Fio_GetFileInfo(const char* path, FioFileInfo* info) {
    SchemeOf(path).getFileInfo(path, info);
}

void Fio_CopyFile(const char* from, const char* to, int failIfExists) {
    if (!CopyFileA(from, to, failIfExists)) RaiseFileError(from, QXOP_COPY);
}

void Fio_DeleteFile(const char* path) {
    SchemeOf(path).deleteFile(path);
}

void Fio_RenameFile(const char* from, const char* to) {
    if (!MoveFileA(from, to)) RaiseFileError(from, QXOP_RENAME);
}

void Fio_CreateDirectory(const char* path) {
    SchemeOf(path).createDirectory(path);
}

void Fio_DeleteDirectory(const char* path) {
    if (!RemoveDirectoryA(path)) RaiseFileError(path, QXOP_DELETE_DIRECTORY);
}

void Fio_GetCurrentDirectory(char* buffer, unsigned size) {
    GetCurrentDirectoryA(size, buffer);
}

void Fio_SetCurrentDirectory(const char* path) {
    if (!SetCurrentDirectoryA(path)) RaiseFileError(path, QXOP_SET_CURRENT_DIRECTORY);
}

int Fio_IsWritableFile(const char* path) {
    return SchemeOf(path).isWritableFile(path);
}

int Fio_IsWritableFile(const char* path, CXString&) {
    return Fio_IsWritableFile(path);
}

int Fio_IsWritableDir(const char* path) {
    DWORD attributes = GetFileAttributesA(path);
    return attributes == INVALID_FILE_ATTRIBUTES || !(attributes & FILE_ATTRIBUTE_READONLY);
}
