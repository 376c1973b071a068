#include "strings/narrow_text.h"

#include <qxcore/string.h>

#include <atomic>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <mbctype.h>
#include <mbstring.h>
#include <utility>

namespace {

bool IsLead(char c) {
    return c < 0 && _ismbblead(static_cast<unsigned char>(c));
}

// Whether the code page in force has lead bytes. Some runtimes number single-byte code pages too,
// so the number alone does not tell; the answer is remembered for the number that was asked last.
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
    return ScanIsAscii(s, size) || !HasLeadBytes();
}

bool IsPlain(ScannedText text) {
    return text.isAscii || !HasLeadBytes();
}

bool IsPlain(const char* s) {
    return IsPlain(ScanText(s));
}

// The units of the character at p: 0 at the end, and at a lead byte right before it.
size_t UnitsAt(const char* p) {
    if (!*p) return 0;
    if (!IsLead(*p)) return 1;
    return p[1] ? 2 : 0;
}

// The first character that starts at `place` or behind it; the end if the text has none.
const char* CharacterFrom(const char* s, const char* place) {
    for (size_t n; s < place && (n = UnitsAt(s)) != 0;) s += n;
    return s;
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

// The units before a lead byte that lacks its trail byte; some runtimes read on behind such a text.
size_t WholeSize(const char* s) {
    size_t size = ScanLength(s);
    return size && IsLead(s[size - 1]) ? NarrowText::Fit(s, size) : size;
}

// A text as the runtime's comparisons may read it.
class WholeText {
public:
    explicit WholeText(const char* s) : text(s) {
        size_t whole = WholeSize(s);
        if (!s[whole]) return;
        memcpy(copy.GetBuffer(static_cast<int>(whole)), s, whole);
        copy.ReleaseBuffer();
        text = copy;
    }
    operator const unsigned char*() const { return Bytes(text); }

private:
    CXString copy;
    const char* text;
};

template <class Change>
void ChangeWhole(char* s, Change change) {
    size_t whole = WholeSize(s);
    char lead = s[whole];
    s[whole] = 0;
    change(Bytes(s));
    if (lead) s[whole] = lead;
}

}  // namespace

size_t NarrowText::Characters(const char* s) {
    ScannedText text = ScanText(s);
    return text.isAscii ? text.length : CountBeyondAscii(s, text.length);
}

size_t NarrowText::CountBeyondAscii(const char* s, size_t size) {
    if (!HasLeadBytes()) return size;
    size_t count = 0;
    const char* end = s + size;
    for (size_t n; s < end && (n = UnitsAt(s)) != 0; s += n) ++count;
    return count;
}

const char* NarrowText::Skip(const char* s, size_t n) {
    size_t size = ScanLength(s, n);
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

void NarrowText::SpellBeyondByte(wchar_t ch, char (&text)[kCharUnits + 1]) {
    char* p = text;
    if (IsLead(static_cast<char>(ch >> 8))) *p++ = static_cast<char>(ch >> 8);
    *p++ = static_cast<char>(ch);
    *p = 0;
}

void NarrowText::SpellInMemoryOrder(wchar_t ch, char (&text)[kCharUnits + 1]) {
    Spell(ch, text);
    if (text[0] && text[1]) std::swap(text[0], text[1]);
}

const char* NarrowText::Find(const char* s, const char* what) {
    if (!*what) return s;
    for (;;) {
        const char* found = ScanForText(s, what);
        if (!found) return nullptr;
        s = IsPlain(s, found - s) ? found : CharacterFrom(s, found);
        if (s >= found && IsLead(*s) && !s[1]) return nullptr;
        if (s == found) return found;
        if (s < found) return nullptr;
    }
}

// A double-byte character of the set must not match by one of its bytes, so the set has to be plain
// too.
const char* NarrowText::FindAny(const char* s, const char* set) {
    if (IsPlain(s) && IsPlain(set)) return ScanForAny(s, set);
    for (size_t n; (n = UnitsAt(s)) != 0; s += n) {
        if (SetHas(set, s, n)) return s;
    }
    return nullptr;
}

const char* NarrowText::FindLastAny(const char* s, const char* set) {
    ScannedText text = ScanText(s);
    if (IsPlain(text) && IsPlain(set)) return ScanBackForAny(s, s + text.length, set);
    const char* last = nullptr;
    for (size_t n; (n = UnitsAt(s)) != 0; s += n) {
        if (SetHas(set, s, n)) last = s;
    }
    return last;
}

bool NarrowText::IsSpace(char c) {
    return isspace(static_cast<unsigned char>(c)) != 0;
}

size_t NarrowText::TrimmedSize(const char* s) {
    size_t size = ScanLength(s);
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

// Equal texts and ASCII texts are the same in each code page; the order of others is the runtime's.
int NarrowText::Compare(const char* a, const char* b) {
    size_t common = ScanCommon(a, b);
    char x = a[common], y = b[common];
    if (x == y) return 0;
    if (x >= 0 && y >= 0 && ScanIsAscii(a, common)) return x < y ? -1 : 1;
    return _mbscmp(WholeText(a), WholeText(b));
}

int NarrowText::CompareI(const char* a, const char* b) {
    return _mbsicmp(WholeText(a), WholeText(b));
}

int NarrowText::CompareN(const char* a, const char* b, size_t n) {
    return _mbsncmp(WholeText(a), WholeText(b), n);
}

int NarrowText::CompareIN(const char* a, const char* b, size_t n) {
    return _mbsnicmp(WholeText(a), WholeText(b), n);
}

void NarrowText::Upper(char* s) {
    ChangeWhole(s, _mbsupr);
}

void NarrowText::Lower(char* s) {
    ChangeWhole(s, _mbslwr);
}

int NarrowText::Load(HINSTANCE module, unsigned id, char* buf, int size) {
    return LoadStringA(module, id, buf, size);
}

int NarrowText::LargestLoaded() {
    CPINFO ansi;
    return GetCPInfo(CP_ACP, &ansi) ? static_cast<int>(ansi.MaxCharSize) : kCharUnits;
}

int NarrowText::Print(char* buf, size_t size, const char* format, char* args) {
    return _vsnprintf(buf, size, format, args);
}

int NarrowText::PrintedSize(const char* format, char* args) {
    return _vscprintf(format, args);
}
