// A url taken apart.
#include <qxcore/url.h>

#include "file/platform/guarded_copy.h"

#include <qxcore/platform.h>
#include <qxcore/string.h>

#include <shlwapi.h>
#include <wininet.h>

#include <cstring>

namespace {

// A NUL stands in a character's place while the object lives. Memory that takes none stays as it
// is.
class CutShort {
public:
    explicit CutShort(char* at) : m_at(at), m_kept(*at) { Put(0); }
    CutShort(const CutShort&) = delete;
    CutShort& operator=(const CutShort&) = delete;
    ~CutShort() { Put(m_kept); }

private:
    void Put(char c) { qx::GuardedCopy(m_at, &c, 1); }

    char* m_at;
    char m_kept;
};

// Empty when the url has no such part. The length counts where the url's memory took no NUL.
CXString TextOf(char* part, DWORD length) {
    CXString text;
    if (!part) return text;
    CutShort cut(part + length);
    __CXBuff<CXString, char*> copy(text, int(length));
    memcpy(copy.buffer, part, length);
    copy.buffer[length] = 0;
    return text;
}

}  // namespace

int Fio_PathIsURL(const char* path) {
    return path && PathIsURLA(path);
}

int Fio_UrlCrack(const char* url, CXString& host, CXString& user, CXString& password,
                 CXString& path) {
    if (!Fio_PathIsURL(url)) return 0;
    URL_COMPONENTSA parts = {};
    parts.dwStructSize = sizeof parts;
    // A length without a buffer asks for a pointer into the url.
    parts.dwHostNameLength = parts.dwUserNameLength = 1;
    parts.dwPasswordLength = parts.dwUrlPathLength = 1;
    if (!InternetCrackUrlA(url, 0, 0, &parts)) return 0;
    // All are copied before the first goes out, for the url may be one of them.
    CXString texts[] = {TextOf(parts.lpszHostName, parts.dwHostNameLength),
                        TextOf(parts.lpszUserName, parts.dwUserNameLength),
                        TextOf(parts.lpszPassword, parts.dwPasswordLength),
                        TextOf(parts.lpszUrlPath, parts.dwUrlPathLength)};
    host = texts[0];
    user = texts[1];
    password = texts[2];
    path = texts[3];
    return 1;
}
