// Whole files brought from a server and sent to one.
#include <qxcore/url.h>

#include "file/url/ftp_connection.h"

#include <qxcore/exception.h>
#include <qxcore/fileops.h>

#include <urlmon.h>

using qx::FtpConnection;

namespace {

constexpr DWORD kTransfer = INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE |
                            INTERNET_FLAG_RESYNCHRONIZE | FTP_TRANSFER_TYPE_BINARY;

int Upload(const char* url, const char* localPath) {
    FtpConnection connection(url);
    return connection && FtpPutFileA(connection.Get(), localPath, connection.Path(), kTransfer, 0);
}

}  // namespace

const char* Fio_DownloadToCacheFile(const char* url) {
    constexpr DWORD kRoom = 512;
    constexpr DWORD kNewestVersion = 16;
    static char path[kRoom];
    if (!Fio_PathIsURL(url)) return nullptr;
    HRESULT result = URLDownloadToCacheFileA(nullptr, url, path, kRoom, kNewestVersion, nullptr);
    return SUCCEEDED(result) ? path : nullptr;
}

int Fio_DownloadToFile(const char* url, const char* localPath) {
    if (!localPath) return 0;
    FtpConnection connection(url);
    return connection && FtpGetFileA(connection.Get(), connection.Path(), localPath, FALSE,
                                     FILE_ATTRIBUTE_NORMAL, kTransfer, 0);
}

int Fio_UrlPutFile(const char* url, const char* localPath) {
    if (!Fio_IsFileExist(localPath)) return 0;
    if (Fio_IsFileExist(url) && !Fio_UrlIsWritableFile(url)) return 0;
    try {
        Fio_UrlCreateDirectory(CXString(url).FilePath());
        return Upload(url, localPath);
    } catch (CXException&) {
        return 0;
    }
}
