#include "storage/compound/ole_name.h"

#include "strings/characters.h"

#include <qxcore/platform.h>

#include <cstring>
#include <cwchar>

namespace qx {

namespace {

// The bytes whose characters fill at most `limit` wide ones. No character takes more wide ones than
// bytes, and a sequence of four bytes takes two.
int BytesThatFit(const char* text, size_t limit) {
    size_t length = strnlen(text, limit + 1);
    if (length <= limit) return static_cast<int>(length);
    Characters characters = Characters::OfProcess();
    const char* at = text;
    for (size_t filled = 0; *at;) {
        size_t bytes = characters.EncodedSizeAt(at);
        filled += bytes == 4 ? 2 : 1;
        if (filled > limit) break;
        at += bytes;
    }
    return static_cast<int>(at - text);
}

}  // namespace

const wchar_t* OleName::Set(const char* narrow) {
    memset(m_text, 0, sizeof m_text);
    if (narrow && *narrow)
        MultiByteToWideChar(CP_ACP, 0, narrow, BytesThatFit(narrow, kLength), m_text, kLength);
    return m_text;
}

bool OleName::NamesElement() const {
    return m_text[0] && !wcspbrk(m_text, L"\\/:!");
}

}  // namespace qx
