#include "file/shapes/file_scheme.h"

#include <qxcore/fileops.h>
#include <qxcore/url.h>

namespace qx {

constinit const FileScheme g_urlScheme = {
    .serves = [](const char* path) { return Fio_PathIsURL(path) != 0; },
    .open = Fio_UrlOpen,
    .openOut = Fio_UrlOpenOut,
    .getFileInfo = Fio_UrlGetFileInfo,
    .deleteFile = [](const char* url) { static_cast<void>(Fio_UrlDeleteFile(url)); },
    .createDirectory = Fio_UrlCreateDirectory,
    .isWritableFile = Fio_UrlIsWritableFile,
};

}  // namespace qx
