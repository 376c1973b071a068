// Transfers of 64 MiB beside the same sequence of the platform's calls by hand. Runs beside the
// FTP server of tests/support/with_ftp_server.
#include "bench/measure.h"
#include "support/import_slot.h"

#include <qxcore.h>

#include <wininet.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

namespace {

constexpr int kMegabytes = 64;
constexpr int kPairs = 25;  // the time of one transfer differs by a tenth from that of the next
constexpr char kHost[] = "127.0.0.1";
constexpr DWORD kSearch = 0x84000000, kProbe = 0x84000002, kTransfer = 0x84000802;

struct Connection {
    Connection() {
        internet = InternetOpenA(nullptr, 0, nullptr, nullptr, 0);
        handle =
            InternetConnectA(internet, kHost, 21, "user", "secret", INTERNET_SERVICE_FTP, 0, 0);
    }
    ~Connection() {
        InternetCloseHandle(handle);
        InternetCloseHandle(internet);
    }

    HINTERNET internet, handle;
};

bool Find(const char* pattern, const char* name) {
    Connection server;
    WIN32_FIND_DATAA found;
    HINTERNET search = FtpFindFirstFileA(server.handle, pattern, &found, kSearch, 0);
    if (!search) return false;
    BOOL more = TRUE;
    while (more && _stricmp(found.cFileName, name)) more = InternetFindNextFileA(search, &found);
    InternetCloseHandle(search);
    return more;
}

int GetByHand(const char* local) {
    Connection server;
    return FtpGetFileA(server.handle, "/dir.d/down.bin", local, FALSE, FILE_ATTRIBUTE_NORMAL,
                       kTransfer, 0);
}

// The questions that stand before an upload, and the upload.
int PutByHand(const char* local) {
    Find("/dir.d/*.bin", "up.bin");
    Find("/dir.d/*.bin", "up.bin");
    Find("/dir.d/*.tmp", "1.tmp");
    {
        Connection server;
        HINTERNET probe = FtpOpenFileA(server.handle, "/dir.d\\1.tmp", GENERIC_WRITE, kProbe, 0);
        InternetCloseHandle(probe);
        FtpDeleteFileA(server.handle, "/dir.d\\1.tmp");
    }
    Find("/*.d", "dir.d");
    Connection server;
    return FtpPutFileA(server.handle, local, "/dir.d/up.bin", kTransfer, 0);
}

template <class Ours, class Peer>
void Compare(const char* what, Ours ours, Peer byHand) {
    constexpr double kWhole = 1;
    bench::Compare(what, "the calls by hand", ours, byHand, kWhole, kPairs);
}

void MustBeDone(int done) {
    if (done) return;
    printf("a transfer failed: error %lu\n", GetLastError());
    exit(1);
}

double g_inPlatform;  // seconds that the library has spent in calls of the network service

template <int number, class R, class... A>
struct TimedCall {
    static inline R(WINAPI* real)(A...);

    static R WINAPI Call(A... arguments) {
        double start = bench::Seconds();
        R result = real(arguments...);
        DWORD error = GetLastError();
        g_inPlatform += bench::Seconds() - start;
        SetLastError(error);
        return result;
    }
};

template <int number, class R, class... A>
ReplacedImport Timed(const char* name, R(WINAPI* real)(A...)) {
    TimedCall<number, R, A...>::real = real;
    return {name, reinterpret_cast<void*>(&TimedCall<number, R, A...>::Call)};
}

// What the library itself adds to the platform's calls, which no other transfer disturbs.
template <class Transfer>
void TellOwnTime(const char* what, Transfer transfer) {
    ReplacedImport timed[] = {Timed<0>("InternetOpenA", InternetOpenA),
                              Timed<1>("InternetConnectA", InternetConnectA),
                              Timed<2>("InternetCloseHandle", InternetCloseHandle),
                              Timed<3>("InternetFindNextFileA", InternetFindNextFileA),
                              Timed<4>("FtpFindFirstFileA", FtpFindFirstFileA),
                              Timed<5>("FtpOpenFileA", FtpOpenFileA),
                              Timed<6>("FtpDeleteFileA", FtpDeleteFileA),
                              Timed<7>("FtpGetFileA", FtpGetFileA),
                              Timed<8>("FtpPutFileA", FtpPutFileA)};
    std::vector<double> own, shares;
    for (int i = 0; i < bench::kSamples; ++i) {
        g_inPlatform = 0;
        double whole = bench::SecondsFor(transfer, 1);
        own.push_back(whole - g_inPlatform);
        shares.push_back(whole / g_inPlatform);
    }
    printf("%-52s %10.3f ms outside the platform's calls: %.4f times those\n", what,
           bench::Median(own) * 1e3, bench::Median(shares));
    fflush(stdout);
}

}  // namespace

int main() {
    const char* directory = getenv("QXCORE_FTP_DIRECTORY");
    if (!directory) {
        printf("start this through tests/support/with_ftp_server\n");
        return 1;
    }
    std::string served = std::string(directory) + "\\files\\dir.d";
    CreateDirectoryA(served.c_str(), nullptr);
    std::vector<char> megabyte(1 << 20, 'q');
    std::ofstream file(served + "\\down.bin", std::ios::binary);
    for (int i = 0; i < kMegabytes; ++i) file.write(megabyte.data(), megabyte.size());
    file.close();

    std::string local = Fio_GetTempFileName();
    const std::string folder = std::string("ftp://user:secret@") + kHost + "/dir.d/";
    std::string down = folder + "down.bin", up = folder + "up.bin";
    auto download = [&] { MustBeDone(Fio_DownloadToFile(down.data(), local.c_str())); };
    auto get = [&] { MustBeDone(GetByHand(local.c_str())); };
    auto upload = [&] { MustBeDone(Fio_UrlPutFile(up.data(), local.c_str())); };
    auto put = [&] { MustBeDone(PutByHand(local.c_str())); };
    TellOwnTime("Fio_DownloadToFile of 64 MiB", download);
    TellOwnTime("Fio_UrlPutFile of 64 MiB", upload);
    // What the calls by hand take beside themselves shows how much of a ratio is chance.
    Compare("Fio_DownloadToFile of 64 MiB", download, get);
    Compare("the calls by hand", get, get);
    Compare("Fio_UrlPutFile of 64 MiB", upload, put);
    Compare("the calls by hand", put, put);
    DeleteFileA(local.c_str());
    return 0;
}
