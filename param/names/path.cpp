#include "param/names/path.h"

#include <cstring>
#include <mbctype.h>

namespace {

constexpr char kDelimiter = '\\';
constexpr char kDefaultName[] = "@";

// By whole characters; a lead byte without its trail byte is none, so that the walk stays inside
// the text.
const char* FirstDelimiter(const char* p) {
    for (; *p; ++p) {
        if (*p == kDelimiter) return p;
        bool leads = *p < 0 && _ismbblead(static_cast<unsigned char>(*p));
        if (leads && p[1]) ++p;
    }
    return nullptr;
}

const char* LastDelimiter(const char* p) {
    const char* last = nullptr;
    while (const char* next = FirstDelimiter(p)) {
        last = next;
        p = next + 1;
    }
    return last;
}

CXString Head(const char* name, size_t size) {
    CXString head;
    __CXBuff<CXString, char*> buffer(head, static_cast<int>(size));
    memcpy(buffer.buffer, name, size);
    buffer.buffer[size] = 0;
    return head;
}

std::optional<SplitName> SplitAt(const char* name, const char* delimiter) {
    if (!delimiter) return std::nullopt;
    return SplitName{Head(name, delimiter - name), CXString(delimiter + 1)};
}

}  // namespace

std::optional<SplitName> SplitAtFirst(const char* name) {
    return SplitAt(name, name ? FirstDelimiter(name) : nullptr);
}

std::optional<SplitName> SplitAtLast(const char* name) {
    return SplitAt(name, name ? LastDelimiter(name) : nullptr);
}

const char* ValueName(const char* name) {
    return name && *name ? name : kDefaultName;
}
