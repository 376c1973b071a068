// One operation on a url in a process of its own, for what the platform's network service does not
// survive.
//
//     ftp_peer info|exists|download|upload|delete|make|writable|cache URL LOCAL    the library's
//     ftp_peer hand-... URL LOCAL           the same calls to the platform, by hand
//
// Says the answer, or "raised CODE OPERATION NAME".
#include <qxcore.h>

#include <urlmon.h>
#include <wininet.h>

#include <cstdio>
#include <string>

namespace {

constexpr DWORD kSearch = 0x84000000, kProbe = 0x84000002, kTransfer = 0x84000802;

struct ByHand {
    explicit ByHand(char* url) {
        Fio_UrlCrack(url, host, user, password, path);
        internet = InternetOpenA(nullptr, 0, nullptr, nullptr, 0);
        connection = InternetConnectA(internet, host, 21, user, password, 1, 0, 0);
    }
    ~ByHand() {
        InternetCloseHandle(connection);
        InternetCloseHandle(internet);
    }

    CXString host, user, password, path;
    HINTERNET internet, connection;
};

int FoundByHand(char* url) {
    ByHand server(url);
    WIN32_FIND_DATAA found;
    CXString pattern = server.path.FilePath() + "/*." + server.path.FileExt();
    HINTERNET search = FtpFindFirstFileA(server.connection, pattern, &found, kSearch, 0);
    if (!search) return 0;
    BOOL more = TRUE;
    while (more && _stricmp(found.cFileName, server.path.GetFileName()))
        more = InternetFindNextFileA(search, &found);
    InternetCloseHandle(search);
    return more;
}

int DoneByHand(const std::string& operation, char* url, const char* local) {
    if (operation == "cache") {
        char path[512];
        return SUCCEEDED(URLDownloadToCacheFileA(nullptr, url, path, 512, 16, nullptr));
    }
    if (operation == "info" || operation == "exists") return FoundByHand(url);
    ByHand server(url);
    if (operation == "download")
        return FtpGetFileA(server.connection, server.path, local, FALSE, FILE_ATTRIBUTE_NORMAL,
                           kTransfer, 0);
    if (operation == "upload")
        return FtpPutFileA(server.connection, local, server.path, kTransfer, 0);
    if (operation == "delete") return FtpDeleteFileA(server.connection, server.path);
    if (operation == "make") return FtpCreateDirectoryA(server.connection, server.path);
    if (operation != "writable") return -1;
    HINTERNET file = FtpOpenFileA(server.connection, server.path, GENERIC_WRITE, kProbe, 0);
    if (file) InternetCloseHandle(file);
    return file != nullptr;
}

int Done(const std::string& operation, char* url, const char* local) {
    if (operation.compare(0, 5, "hand-") == 0)
        return DoneByHand(operation.substr(5), url, local) != 0;
    if (operation == "cache") return Fio_DownloadToCacheFile(url) != nullptr;
    if (operation == "download") return Fio_DownloadToFile(url, local) != 0;
    if (operation == "upload") return Fio_UrlPutFile(url, local) != 0;
    if (operation == "delete") return Fio_UrlDeleteFile(url) != 0;
    if (operation == "writable") return Fio_UrlIsWritableDir(url);
    if (operation == "exists") return Fio_IsFileExist(url);
    FioFileInfo info;
    if (operation == "info") return Fio_UrlGetFileInfo(url, &info), 1;
    if (operation == "make") return Fio_UrlCreateDirectory(url), 1;
    return -1;
}

}  // namespace

int main(int, char** arguments) {
    try {
        printf("%d", Done(arguments[1], arguments[2], arguments[3]));
    } catch (CXFileException& e) {
        printf("raised %d %d %s", e.GetCode(), e.operation, e.name);
    } catch (CXException& e) {
        printf("raised %d", e.GetCode());
    }
    return 0;
}
