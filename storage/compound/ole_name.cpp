#include "storage/compound/ole_name.h"

#include <qxcore/platform.h>

#include <cstring>
#include <cwchar>

namespace {

// The bytes of the first `limit` characters.
int BytesOf(const char* text, int limit) {
    const char* p = text;
    for (int i = 0; i < limit && *p; ++i) p += IsDBCSLeadByte(*p) && p[1] ? 2 : 1;
    return static_cast<int>(p - text);
}

}  // namespace

const wchar_t* OleName::Set(const char* narrow) {
    memset(m_text, 0, sizeof m_text);
    if (narrow && *narrow)
        MultiByteToWideChar(CP_ACP, 0, narrow, BytesOf(narrow, kLength), m_text, kLength);
    return m_text;
}

bool OleName::NamesElement() const {
    return m_text[0] && !wcspbrk(m_text, L"\\/:!");
}
