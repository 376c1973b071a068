#include "file/url/ftp_connection.h"

#include <qxcore/url.h>

namespace qx {

FtpConnection::FtpConnection(const char* url) {
    CXString host, user, password;
    if (!Fio_UrlCrack(url, host, user, password, m_path)) {
        SetLastError(ERROR_INTERNET_INVALID_URL);
        return;
    }
    m_internet = InternetHandle(InternetOpenA(nullptr, 0, nullptr, nullptr, 0));
    if (!m_internet) return;
    constexpr INTERNET_PORT kPort = 21;
    m_connection = InternetHandle(InternetConnectA(m_internet.Get(), host, kPort, user, password,
                                                   INTERNET_SERVICE_FTP, 0, 0));
}

}  // namespace qx
