#include <qxcore/fileops.h>

#include "file/file_error.h"
#include "file/scheme.h"

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
