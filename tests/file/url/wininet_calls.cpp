#include "file/url/wininet_calls.h"

#include <urlmon.h>
#include <wininet.h>

#include <cstdio>
#include <set>

namespace {

struct Watch {
    std::vector<std::string> texts;
    std::set<HINTERNET> handles;
    int wrongClosings = 0;
    UINT errorMode = 0;
    WinInetCalls::Teller teller = nullptr;
};
Watch g_watch;

std::string Text(const char* text) {
    return text ? text : "null";
}
std::string Text(DWORD_PTR number) {
    char text[20];
    snprintf(text, sizeof text, number < 1000 ? "%u" : "0x%X", unsigned(number));
    return text;
}

// One call under way, told to whoever wants to know where the process stays.
class Call {
public:
    explicit Call(const char* name) {
        if (g_watch.teller) g_watch.teller(name);
    }
    // The same, noted with its arguments.
    template <class... A>
    Call(const char* name, A... arguments) : Call(name) {
        std::string list;
        ((list += (list.empty() ? "" : ", ") + Text(arguments)), ...);
        g_watch.texts.push_back(name + ("(" + list + ")"));
    }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;
    ~Call() {
        DWORD error = GetLastError();
        if (g_watch.teller) g_watch.teller(nullptr);
        SetLastError(error);
    }
};

HINTERNET Opened(HINTERNET handle) {
    if (handle) g_watch.handles.insert(handle);
    return handle;
}

HINTERNET WINAPI Open(LPCSTR agent, DWORD access, LPCSTR proxy, LPCSTR bypass, DWORD flags) {
    Call call("InternetOpenA", agent, access, proxy, bypass, flags);
    return Opened(InternetOpenA(agent, access, proxy, bypass, flags));
}

HINTERNET WINAPI Connect(HINTERNET internet, LPCSTR host, INTERNET_PORT port, LPCSTR user,
                         LPCSTR password, DWORD service, DWORD flags, DWORD_PTR context) {
    Call call("InternetConnectA", host, DWORD_PTR(port), user, password, service, flags, context);
    return Opened(InternetConnectA(internet, host, port, user, password, service, flags, context));
}

BOOL WINAPI Close(HINTERNET handle) {
    Call call("InternetCloseHandle");
    BOOL closed = InternetCloseHandle(handle);
    if (!g_watch.handles.erase(handle) || !closed) ++g_watch.wrongClosings;
    return closed;
}

BOOL WINAPI Get(HINTERNET connection, LPCSTR remote, LPCSTR local, WINBOOL failIfExists,
                DWORD attributes, DWORD flags, DWORD_PTR context) {
    Call call("FtpGetFileA", remote, local, DWORD_PTR(failIfExists), attributes, flags, context);
    return FtpGetFileA(connection, remote, local, failIfExists, attributes, flags, context);
}

BOOL WINAPI Put(HINTERNET connection, LPCSTR local, LPCSTR remote, DWORD flags, DWORD_PTR context) {
    Call call("FtpPutFileA", local, remote, flags, context);
    return FtpPutFileA(connection, local, remote, flags, context);
}

BOOL WINAPI Delete(HINTERNET connection, LPCSTR path) {
    Call call("FtpDeleteFileA", path);
    return FtpDeleteFileA(connection, path);
}

BOOL WINAPI MakeDirectory(HINTERNET connection, LPCSTR path) {
    Call call("FtpCreateDirectoryA", path);
    return FtpCreateDirectoryA(connection, path);
}

HINTERNET WINAPI OpenRemote(HINTERNET connection, LPCSTR path, DWORD access, DWORD flags,
                            DWORD_PTR context) {
    Call call("FtpOpenFileA", path, access, flags, context);
    return Opened(FtpOpenFileA(connection, path, access, flags, context));
}

HINTERNET WINAPI FindFirst(HINTERNET connection, LPCSTR pattern, LPWIN32_FIND_DATAA found,
                           DWORD flags, DWORD_PTR context) {
    Call call("FtpFindFirstFileA", pattern, flags, context);
    g_watch.errorMode = GetErrorMode();
    return Opened(FtpFindFirstFileA(connection, pattern, found, flags, context));
}

BOOL WINAPI FindNext(HINTERNET search, LPVOID found) {
    Call call("InternetFindNextFileA");
    return InternetFindNextFileA(search, found);
}

HRESULT WINAPI DownloadToCache(LPUNKNOWN caller, LPCSTR url, LPSTR path, DWORD room, DWORD flags,
                               LPBINDSTATUSCALLBACK status) {
    Call call("URLDownloadToCacheFileA", url, room, flags);
    return URLDownloadToCacheFileA(caller, url, path, room, flags, status);
}

}  // namespace

WinInetCalls::WinInetCalls(Teller teller) {
    g_watch = {};
    g_watch.teller = teller;
    struct Replacement {
        const char* name;
        void* function;
    };
    const Replacement kReplacements[] = {
        {"InternetOpenA", reinterpret_cast<void*>(&Open)},
        {"InternetConnectA", reinterpret_cast<void*>(&Connect)},
        {"InternetCloseHandle", reinterpret_cast<void*>(&Close)},
        {"FtpGetFileA", reinterpret_cast<void*>(&Get)},
        {"FtpPutFileA", reinterpret_cast<void*>(&Put)},
        {"FtpDeleteFileA", reinterpret_cast<void*>(&Delete)},
        {"FtpCreateDirectoryA", reinterpret_cast<void*>(&MakeDirectory)},
        {"FtpOpenFileA", reinterpret_cast<void*>(&OpenRemote)},
        {"FtpFindFirstFileA", reinterpret_cast<void*>(&FindFirst)},
        {"InternetFindNextFileA", reinterpret_cast<void*>(&FindNext)},
        {"URLDownloadToCacheFileA", reinterpret_cast<void*>(&DownloadToCache)}};
    for (auto& [name, function] : kReplacements)
        m_replaced.push_back(std::make_unique<ReplacedImport>(name, function));
}

WinInetCalls::~WinInetCalls() = default;

void WinInetCalls::Forget() {
    g_watch.texts = std::vector<std::string>();
}

const std::vector<std::string>& WinInetCalls::Texts() const {
    return g_watch.texts;
}

int WinInetCalls::OpenHandles() const {
    return int(g_watch.handles.size());
}

int WinInetCalls::WrongClosings() const {
    return g_watch.wrongClosings;
}

UINT WinInetCalls::ErrorModeInSearch() const {
    return g_watch.errorMode;
}
