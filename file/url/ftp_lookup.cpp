#include "file/url/ftp_lookup.h"

#include "file/platform/file_error.h"
#include "file/platform/found_file.h"
#include "file/url/ftp_connection.h"

#include <qxcore/exception.h>

namespace qx {

namespace {

// The directory's entries with the name's extension, as far as the server and the platform match
// patterns. A name without extension asks for those that end with a dot.
CXString PatternOf(const CXString& path) {
    return path.FilePath() + "/*." + path.FileExt();
}

bool FindByName(const FtpConnection& connection, WIN32_FIND_DATAA* found) {
    constexpr DWORD kFlags = INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE;
    const CXString name = connection.Path().FileName();
    const CXString pattern = PatternOf(connection.Path());
    QuietErrors quiet;
    InternetHandle search(FtpFindFirstFileA(connection.Get(), pattern, found, kFlags, 0));
    if (!search) return false;
    do {
        if (name.CompareI(found->cFileName) == 0) return true;
    } while (InternetFindNextFileA(search.Get(), found));
    return false;
}

bool Find(const char* url, WIN32_FIND_DATAA* found) {
    if (!found) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    FtpConnection connection(url);
    return connection && FindByName(connection, found);
}

}  // namespace

void FtpFindEntry(const char* url, WIN32_FIND_DATAA* found) {
    if (!Find(url, found)) RaiseFileError(url, QXOP_GET_INFORMATION);
}

}  // namespace qx
