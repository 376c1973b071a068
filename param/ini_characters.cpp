#include "param/ini_characters.h"

#include <cstring>
#include <mbctype.h>
#include <mbstring.h>

namespace {

const unsigned char* Bytes(const char* p) {
    return reinterpret_cast<const unsigned char*>(p);
}

unsigned CharacterAt(const char* p) {
    return _mbsnextc(Bytes(p));
}

}  // namespace

IniCharacters::IniCharacters() {
    for (unsigned c = 0; c < 256; ++c) {
        m_lead[c] = _ismbblead(c) != 0;
        m_space[c] = _ismbcspace(c) != 0;
        m_multibyte = m_multibyte || m_lead[c];
    }
}

const char* IniCharacters::Next(const char* p, const char* end) const {
    return Leads(p) && p + 1 < end ? p + 2 : p + 1;
}

const char* IniCharacters::Previous(const char* begin, const char* p) const {
    if (!m_multibyte) return p - 1;
    return reinterpret_cast<const char*>(_mbsdec(Bytes(begin), Bytes(p)));
}

bool IniCharacters::IsSpace(const char* p) const {
    if (Leads(p)) return _ismbcspace(CharacterAt(p)) != 0;
    return m_space[static_cast<unsigned char>(*p)];
}

const char* IniCharacters::Find(char c, const char* begin, const char* end) const {
    if (!m_multibyte) {
        auto found = static_cast<const char*>(memchr(begin, c, end - begin));
        return found ? found : end;
    }
    while (begin < end && *begin != c) begin = Next(begin, end);
    return begin;
}

const char* IniCharacters::FindEither(char a, char b, const char* begin, const char* end) const {
    return Find(b, begin, Find(a, begin, end));
}

const char* IniCharacters::SkipSpace(const char* begin, const char* end) const {
    while (begin < end && IsSpace(begin)) begin = Next(begin, end);
    return begin;
}

const char* IniCharacters::SkipSpaceAnd(char c, const char* begin, const char* end) const {
    while (begin < end && (*begin == c || IsSpace(begin))) begin = Next(begin, end);
    return begin;
}

const char* IniCharacters::SkipText(const char* begin, const char* end) const {
    while (begin < end && !IsSpace(begin)) begin = Next(begin, end);
    return begin;
}

const char* IniCharacters::TrimSpace(const char* begin, const char* end) const {
    while (begin < end && IsSpace(Previous(begin, end))) end = Previous(begin, end);
    return end;
}

const char* IniCharacters::TrimSpaceAnd(char c, const char* begin, const char* end) const {
    while (begin < end) {
        const char* last = Previous(begin, end);
        if (*last != c && !IsSpace(last)) break;
        end = last;
    }
    return end;
}
