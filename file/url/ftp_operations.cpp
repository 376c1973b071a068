// Questions about a server's files, and changes to them.
#include <qxcore/url.h>

#include "file/platform/file_error.h"
#include "file/platform/found_file.h"
#include "file/url/ftp_connection.h"
#include "file/url/ftp_lookup.h"

#include <qxcore/exception.h>
#include <qxcore/fileops.h>

using qx::FtpConnection;
using qx::FtpFindEntry;
using qx::RaiseFileError;

namespace {

// Whether the url names something; its entry if it does. A server that cannot be asked has nothing.
bool FindIfThere(const char* url, WIN32_FIND_DATAA& found) {
    try {
        FtpFindEntry(url, &found);
        return true;
    } catch (CXFileException&) {
        return false;
    }
}

// A name in the directory that nothing has yet.
CXString FreeName(const char* directory) {
    CXString name;
    WIN32_FIND_DATAA found = {};
    do {
        name.Format("%s\\%d.tmp", directory, int(GetTickCount()));
    } while (FindIfThere(name, found));
    return name;
}

}  // namespace

void Fio_UrlGetFileInfo(const char* url, FioFileInfo* info) {
    WIN32_FIND_DATAA found = {};
    FtpFindEntry(url, info ? &found : nullptr);
    *info = qx::InfoOf(found);
}

int Fio_UrlIsWritableFile(const char* url) {
    if (!url) return 0;
    WIN32_FIND_DATAA found = {};
    if (FindIfThere(url, found) && found.dwFileAttributes & FILE_ATTRIBUTE_READONLY) return 0;
    CXString directory = CXString(url).FilePath();
    if (!*directory) directory = ".";
    return Fio_UrlIsWritableDir(directory);
}

int Fio_UrlIsWritableDir(const char* url) {
    constexpr DWORD kFlags =
        INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE | FTP_TRANSFER_TYPE_BINARY;
    if (!url) return 0;
    CXString probe = FreeName(url);
    FtpConnection connection(probe);
    if (!connection) return 0;
    const CXString& path = connection.Path();
    qx::InternetHandle file(FtpOpenFileA(connection.Get(), path, GENERIC_WRITE, kFlags, 0));
    if (!file) return 0;
    file.Close();
    FtpDeleteFileA(connection.Get(), path);
    return 1;
}

int Fio_UrlDeleteFile(const char* url) {
    if (!Fio_IsFileExist(url)) return 0;
    FtpConnection connection(url);
    return connection && FtpDeleteFileA(connection.Get(), connection.Path());
}

void Fio_UrlCreateDirectory(const char* url) {
    if (Fio_IsFileExist(url)) return;
    FtpConnection connection(url);
    if (!connection || !FtpCreateDirectoryA(connection.Get(), connection.Path()))
        RaiseFileError(url, QXOP_CREATE_DIRECTORY);
}
