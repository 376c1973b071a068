#include "file/shapes/file_scheme.h"

#include <qxcore/exception.h>
#include <qxcore/fileops.h>

#include <shlwapi.h>

namespace qx {

namespace {

[[noreturn]] void RaiseNoService(const char* url, int operation) {
    throw CXFileException(QXERR_NETWORK, url, operation);
}

}  // namespace

constinit const FileScheme g_urlScheme = {
    .serves = [](const char* path) { return Fio_PathIsURL(path) != 0; },
    .open = [](const char* url, int) -> IXFile* { RaiseNoService(url, QXOP_OPEN); },
    .openOut = [](const char* url, int) -> IXOutFile* { RaiseNoService(url, QXOP_OPEN); },
    .getFileInfo = [](const char* url, FioFileInfo*) { RaiseNoService(url, QXOP_GET_INFORMATION); },
    .deleteFile = [](const char* url) { RaiseNoService(url, QXOP_DELETE_FILE); },
    .createDirectory = [](const char* url) { RaiseNoService(url, QXOP_CREATE_DIRECTORY); },
    .isWritableFile = [](const char*) { return 0; },
};

}  // namespace qx

int Fio_PathIsURL(const char* path) {
    return path && PathIsURLA(path);
}
