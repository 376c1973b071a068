// A url taken apart.
#include <qxcore/url.h>

#include "file/platform/guarded_copy.h"

#include <qxcore/platform.h>
#include <qxcore/string.h>

#include <shlwapi.h>
#include <wininet.h>

#include <algorithm>
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

// Empty when the url has no such part. The length counts where the url's memory took no NUL. In a
// url that is no text of the code page the platform may tell of a part that goes past the end.
CXString TextOf(char* part, DWORD length, const char* end) {
    CXString text;
    if (!part || part > end) return text;
    length = DWORD(std::min<size_t>(length, size_t(end - part)));
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
    const char* end = url + strlen(url);
    CXString texts[] = {TextOf(parts.lpszHostName, parts.dwHostNameLength, end),
                        TextOf(parts.lpszUserName, parts.dwUserNameLength, end),
                        TextOf(parts.lpszPassword, parts.dwPasswordLength, end),
                        TextOf(parts.lpszUrlPath, parts.dwUrlPathLength, end)};
    host = texts[0];
    user = texts[1];
    password = texts[2];
    path = texts[3];
    return 1;
}
