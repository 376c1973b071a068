// The connection to the server of a url.
#ifndef QXCORE_FILE_URL_FTP_CONNECTION_H
#define QXCORE_FILE_URL_FTP_CONNECTION_H

#include <qxcore/platform.h>
#include <qxcore/string.h>

#include <wininet.h>

#include <utility>

namespace qx {

// A handle of the network service. Closing keeps the last error: it belongs to the call that
// failed, and callers still ask for it.
class InternetHandle {
public:
    InternetHandle() = default;
    explicit InternetHandle(HINTERNET handle) : m_handle(handle) {}
    InternetHandle(const InternetHandle&) = delete;
    InternetHandle& operator=(InternetHandle&& other) noexcept {
        std::swap(m_handle, other.m_handle);
        return *this;
    }
    ~InternetHandle() { Close(); }

    explicit operator bool() const { return m_handle != nullptr; }
    HINTERNET Get() const { return m_handle; }
    void Close() {
        if (!m_handle) return;
        DWORD error = GetLastError();
        InternetCloseHandle(std::exchange(m_handle, nullptr));
        SetLastError(error);
    }

private:
    HINTERNET m_handle = nullptr;
};

// One operation's own way to the server: opened by the constructor and closed with the scope.
// Whatever scheme and port the url names, it is FTP on port 21. A url that cannot be cracked, or
// whose server cannot be reached, gives no connection and GetLastError.
class FtpConnection {
public:
    explicit FtpConnection(const char* url);

    explicit operator bool() const { return bool(m_connection); }
    HINTERNET Get() const { return m_connection.Get(); }
    // Where the url leads on the server.
    const CXString& Path() const { return m_path; }

private:
    CXString m_path;
    InternetHandle m_internet;
    InternetHandle m_connection;  // closed first
};

}  // namespace qx

#endif
