#include "strings/narrow_text.h"

#include <atomic>
#include <cctype>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <mbctype.h>
#include <mbstring.h>
#include <algorithm>

namespace {

bool IsLead(char c) {
    return c < 0 && _ismbblead(static_cast<unsigned char>(c));
}

bool IsAscii(const char* s, size_t size) {
    constexpr uint64_t kHighBits = 0x8080808080808080;
    uint64_t word;
    for (; size >= sizeof word; s += sizeof word, size -= sizeof word) {
        memcpy(&word, s, sizeof word);
        if (word & kHighBits) return false;
    }
    for (; size; ++s, --size) {
        if (*s < 0) return false;
    }
    return true;
}

// Whether the code page in force has lead bytes. Some runtimes number single-byte code pages too, so the number
// alone does not tell; the answer is remembered for the number that was asked last.
bool HasLeadBytes() {
    static constinit std::atomic<int> remembered = 0;
    int codePage = _getmbcp();
    if (codePage == 0) return false;
    int known = remembered.load(std::memory_order_relaxed);
    if (known >> 1 == codePage) return known & 1;
    bool found = false;
    for (unsigned c = 0x80; c <= 0xFF; ++c) found = found || _ismbblead(c);
    remembered.store(codePage << 1 | found, std::memory_order_relaxed);
    return found;
}

bool IsPlain(const char* s, size_t size) {
    return IsAscii(s, size) || !HasLeadBytes();
}

bool IsPlain(const char* s) {
    return IsPlain(s, strlen(s));
}

// The units of the character at p: 0 at the end, and at a lead byte right before it.
size_t UnitsAt(const char* p) {
    if (!*p) return 0;
    if (!IsLead(*p)) return 1;
    return p[1] ? 2 : 0;
}

bool SetHas(const char* set, const char* p, size_t units) {
    for (size_t n; (n = UnitsAt(set)) != 0; set += n) {
        if (n == units && memcmp(set, p, n) == 0) return true;
    }
    return false;
}

const unsigned char* Bytes(const char* s) {
    return reinterpret_cast<const unsigned char*>(s);
}

unsigned char* Bytes(char* s) {
    return reinterpret_cast<unsigned char*>(s);
}

}  // namespace

size_t NarrowText::Count(const char* s, size_t size) {
    if (IsPlain(s, size)) return size;
    size_t count = 0;
    const char* end = s + size;
    for (size_t n; s < end && (n = UnitsAt(s)) != 0; s += n) ++count;
    return count;
}

const char* NarrowText::Skip(const char* s, size_t n) {
    size_t size = strnlen(s, n);
    if (IsPlain(s, size)) return s + size;
    for (size_t units; n && (units = UnitsAt(s)) != 0; s += units) --n;
    return s;
}

size_t NarrowText::Fit(const char* s, size_t size) {
    if (IsPlain(s, size)) return size;
    const char* p = s;
    for (size_t n; (n = UnitsAt(p)) != 0 && p + n <= s + size;) p += n;
    return p - s;
}

wchar_t NarrowText::At(const char* p) {
    auto bytes = Bytes(p);
    return UnitsAt(p) == 2 ? static_cast<wchar_t>(bytes[0] << 8 | bytes[1]) : bytes[0];
}

void NarrowText::Spell(wchar_t ch, char (&text)[kCharUnits + 1]) {
    char* p = text;
    if (ch > 0xFF && IsLead(static_cast<char>(ch >> 8))) *p++ = static_cast<char>(ch >> 8);
    *p++ = static_cast<char>(ch);
    *p = 0;
}

void NarrowText::SpellInMemoryOrder(wchar_t ch, char (&text)[kCharUnits + 1]) {
    Spell(ch, text);
    if (text[0] && text[1]) std::swap(text[0], text[1]);
}

const char* NarrowText::Find(const char* s, const char* what) {
    bool plain = IsPlain(s);
    bool single = what[0] && !what[1];
    for (;;) {
        const char* found = single ? strchr(s, what[0]) : strstr(s, what);
        if (!found || plain) return found;
        size_t n = 1;
        while (s < found && (n = UnitsAt(s)) != 0) s += n;
        if (s == found) return found;
        if (n == 0) return nullptr;
    }
}

const char* NarrowText::FindAny(const char* s, const char* set) {
    if (IsPlain(s)) return strpbrk(s, set);
    for (size_t n; (n = UnitsAt(s)) != 0; s += n) {
        if (SetHas(set, s, n)) return s;
    }
    return nullptr;
}

const char* NarrowText::FindLastAny(const char* s, const char* set) {
    size_t size = strlen(s);
    const char* last = nullptr;
    if (IsPlain(s, size)) {
        if (set[0] && !set[1]) return strrchr(s, set[0]);
        for (const char* p = s + size; p > s;) {
            if (strchr(set, *--p)) return p;
        }
        return nullptr;
    }
    for (size_t n; (n = UnitsAt(s)) != 0; s += n) {
        if (SetHas(set, s, n)) last = s;
    }
    return last;
}

bool NarrowText::IsSpace(char c) {
    return isspace(static_cast<unsigned char>(c)) != 0;
}

size_t NarrowText::TrimmedSize(const char* s) {
    size_t size = strlen(s);
    if (IsPlain(s, size)) {
        while (size && IsSpace(s[size - 1])) --size;
        return size;
    }
    const char* kept = s;
    const char* p = s;
    for (size_t n; (n = UnitsAt(p)) != 0;) {
        bool space = n == 1 && IsSpace(*p);
        p += n;
        if (!space) kept = p;
    }
    return *p ? size : kept - s;
}

int NarrowText::CompareI(const char* a, const char* b) {
    return _mbsicmp(Bytes(a), Bytes(b));
}

int NarrowText::CompareN(const char* a, const char* b, size_t n) {
    return _mbsncmp(Bytes(a), Bytes(b), n);
}

int NarrowText::CompareIN(const char* a, const char* b, size_t n) {
    return _mbsnicmp(Bytes(a), Bytes(b), n);
}

void NarrowText::Upper(char* s) {
    _mbsupr(Bytes(s));
}

void NarrowText::Lower(char* s) {
    _mbslwr(Bytes(s));
}

int NarrowText::Load(HINSTANCE module, unsigned id, char* buf, int size) {
    return LoadStringA(module, id, buf, size);
}

int NarrowText::Print(char* buf, size_t size, const char* format, char* args) {
    return _vsnprintf(buf, size, format, args);
}

int NarrowText::PrintedSize(const char* format, char* args) {
    return _vscprintf(format, args);
}
