#include "file/shapes/file_scheme.h"

#include "file/platform/file_error.h"
#include "file/platform/found_file.h"
#include "file/local/file_lock.h"
#include "file/platform/temp_name.h"
#include "file/local/xfile.h"
#include "file/local/xoutfile.h"

#include <qxcore/fileops.h>

namespace qx {

namespace {

void GetLocalInfo(const char* path, FioFileInfo* info) {
    QuietErrors quiet;
    WIN32_FIND_DATAA found;
    HANDLE search = FindFirstFileA(path, &found);
    if (search == INVALID_HANDLE_VALUE) RaiseFileError(path, QXOP_GET_INFORMATION);
    FindClose(search);
    *info = InfoOf(found);
}

// The step that makes the temporary file has codes of its own.
int CodeOfTempFileError(DWORD error) {
    switch (error) {
        case ERROR_ACCESS_DENIED:
            return QXERR_ACCESS_DENIED;
        case ERROR_NETNAME_DELETED:
        case ERROR_NETWORK_ACCESS_DENIED:
        case ERROR_BAD_DEV_TYPE:
        case ERROR_BAD_NET_NAME:
            return QXERR_NETWORK;
        case ERROR_PATH_NOT_FOUND:
        case ERROR_BAD_NETPATH:
        case ERROR_INVALID_NAME:
        case ERROR_BAD_PATHNAME:
        case ERROR_DIRECTORY:
            return QXERR_BAD_NAME;
        default:
            return QXERR_MEMORY;
    }
}

IXOutFile* OpenOutLocal(const char* path, int flags) {
    if (Fio_IsFileExist(path) && !Fio_IsWritableFile(path)) throw CXException(QXERR_ACCESS_DENIED);
    CXString directory = CXString(path).FilePath();
    if (!*directory) directory = ".";
    TemporaryFile temp(directory);
    if (!temp) throw CXException(CodeOfTempFileError(GetLastError()));
    IXOutFile* file = new CXOutFile(path, temp.Path(), flags | QXFIO_OUTPUT);
    temp.Keep();
    return file;
}

void DeleteLocalFile(const char* path) {
    if (!DeleteFileA(path)) RaiseFileError(path, QXOP_DELETE_FILE);
}

bool IsDelimiter(char c) {
    return c == '\\' || c == '/';
}

// Every missing level in turn. Drives, an empty prefix, and the server and share of a network path
// exist already.
void CreateLocalDirectory(const char* path) {
    if (!path || !*path || Fio_IsFileExist(path)) return;
    constexpr char kDelimiters[] = "\\/";
    constexpr int kOfNetworkShare = 4;  // "\\server\share\"
    CXString levels(path);
    levels.AddDirDelim();
    int existing = IsDelimiter(path[0]) && IsDelimiter(path[1]) ? kOfNetworkShare : 0;
    for (int at = levels.FindOnOf(kDelimiters); at >= 0;
         at = levels.FindOnOf(kDelimiters, at + 1)) {
        if (--existing >= 0 || at == 0 || levels.GetAt(at - 1) == ':') continue;
        CXString level;
        levels.Extract(0, at, level);
        if (Fio_IsFileExist(level)) continue;
        if (!CreateDirectoryA(level, nullptr)) RaiseFileError(level, QXOP_CREATE_DIRECTORY);
    }
}

int IsWritableLocalFile(const char* path) {
    LiftedLock lifted(path);
    return Fio_IsWritableDir(path);
}

}  // namespace

constinit const FileScheme g_localScheme = {
    .serves = [](const char*) { return true; },
    .open = [](const char* path, int flags) -> IXFile* { return new CXFile(path, flags); },
    .openOut = OpenOutLocal,
    .getFileInfo = GetLocalInfo,
    .deleteFile = DeleteLocalFile,
    .createDirectory = CreateLocalDirectory,
    .isWritableFile = IsWritableLocalFile,
};

}  // namespace qx
