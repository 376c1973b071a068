// Whole files brought from a server and sent to one.
#include <qxcore/url.h>

#include "file/url/ftp_connection.h"

#include <qxcore/exception.h>
#include <qxcore/fileops.h>

#include <urlmon.h>

#include <cstring>

using qx::FtpConnection;

namespace {

constexpr DWORD kTransfer = INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE |
                            INTERNET_FLAG_RESYNCHRONIZE | FTP_TRANSFER_TYPE_BINARY;

// A local file that a transfer may begin to write.
class LocalTarget {
public:
    explicit LocalTarget(const char* path) : m_path(path), m_before(StateOf(path)) {}

    // Takes the file away if it is no longer what it was. Keeps the last error.
    void DropWhatHasBegun() const {
        DWORD error = GetLastError();
        WIN32_FILE_ATTRIBUTE_DATA now = StateOf(m_path);
        if (memcmp(&now, &m_before, sizeof now) != 0) DeleteFileA(m_path);
        SetLastError(error);
    }

private:
    // All zero for a file that is not there.
    static WIN32_FILE_ATTRIBUTE_DATA StateOf(const char* path) {
        WIN32_FILE_ATTRIBUTE_DATA state = {};
        GetFileAttributesExA(path, GetFileExInfoStandard, &state);
        state.ftLastAccessTime = {};
        return state;
    }

    const char* m_path;
    WIN32_FILE_ATTRIBUTE_DATA m_before;
};

int Download(const char* url, const char* localPath) {
    FtpConnection connection(url);
    return connection && FtpGetFileA(connection.Get(), connection.Path(), localPath, FALSE,
                                     FILE_ATTRIBUTE_NORMAL, kTransfer, 0);
}

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
    LocalTarget target(localPath);
    int done = Download(url, localPath);
    if (!done) target.DropWhatHasBegun();
    return done;
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
