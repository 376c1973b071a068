#include "param/path.h"

#include <mbstring.h>

namespace {

constexpr unsigned kDelimiter = '\\';
constexpr char kDefaultName[] = "@";

const unsigned char* Bytes(const char* text) {
    return reinterpret_cast<const unsigned char*>(text);
}

CXString Head(const char* name, size_t size) {
    CXString head;
    __CXBuff<CXString, char*> buffer(head, static_cast<int>(size));
    memcpy(buffer.buffer, name, size);
    buffer.buffer[size] = 0;
    return head;
}

SplitName SplitAt(const char* name, const unsigned char* delimiter) {
    if (!delimiter) return {false, CXString(), CXString()};
    auto at = reinterpret_cast<const char*>(delimiter);
    return {true, Head(name, at - name), CXString(at + 1)};
}

}  // namespace

SplitName SplitAtFirst(const char* name) {
    return SplitAt(name, name ? _mbschr(Bytes(name), kDelimiter) : nullptr);
}

SplitName SplitAtLast(const char* name) {
    return SplitAt(name, name ? _mbsrchr(Bytes(name), kDelimiter) : nullptr);
}

const char* ValueName(const char* name) {
    return name && *name ? name : kDefaultName;
}
