#include "param/names/path.h"

#include <cassert>
#include <cstring>

namespace qx {

namespace {

constexpr char kDelimiter = '\\';
constexpr char kDefaultName[] = "@";

CXString Head(const char* name, const char* end) {
    CXString head;
    auto size = static_cast<size_t>(end - name);
    __CXBuff<CXString, char*> buffer(head, static_cast<int>(size));
    memcpy(buffer.buffer, name, size);
    buffer.buffer[size] = 0;
    return head;
}

}  // namespace

PathLevels::PathLevels(const char* path)
    : m_characters(Characters::OfRuntime()),
      m_rest(path),
      m_delimiter(m_characters.Find(path, kDelimiter)) {}

CXString PathLevels::TakeFirst() {
    assert(MoreThanOne());
    CXString first = Head(m_rest, m_delimiter);
    m_rest = m_delimiter + 1;
    m_delimiter = m_characters.Find(m_rest, kDelimiter);
    return first;
}

// Most names are no paths: where no byte is a delimiter no character is.
std::optional<SplitName> SplitAtLast(const char* name) {
    if (!name || !strchr(name, kDelimiter)) return std::nullopt;
    const char* delimiter = Characters::OfRuntime().FindLast(name, kDelimiter);
    if (!delimiter) return std::nullopt;
    return SplitName{Head(name, delimiter), CXString(delimiter + 1)};
}

const char* ValueName(const char* name) {
    return name && *name ? name : kDefaultName;
}

}  // namespace qx
