#include "strings/narrow_text.h"

#include "strings/characters.h"

#include <qxcore/string.h>

#include <cctype>
#include <cstdio>
#include <mbstring.h>
#include <utility>

namespace qx {

namespace {

using CharText = char[NarrowText::kCharUnits + 1];

bool IsAscii(char c) {
    return c >= 0;
}

// A character, not the terminator.
bool IsAsciiValue(wchar_t ch) {
    return ch && ch < 0x80;
}

bool IsAscii(const char* s) {
    return ScanText(s).isAscii;
}

bool IsLead(char c) {
    return !IsAscii(c) && Characters::OfRuntime().Leads(c);
}

// Of a single byte.
bool IsSpace(char c) {
    return isspace(static_cast<unsigned char>(c)) != 0;
}

const unsigned char* Bytes(const char* s) {
    return reinterpret_cast<const unsigned char*>(s);
}

unsigned char* Bytes(char* s) {
    return reinterpret_cast<unsigned char*>(s);
}

// A value to search for as text; false when no character has it.
bool SpellWhole(const Characters& characters, wchar_t ch, CharText& text) {
    const char high = static_cast<char>(ch >> 8), low = static_cast<char>(ch);
    const bool isPair = high && characters.HasDoubleByte();
    char* p = text;
    if (isPair) *p++ = high;
    *p++ = low;
    *p = 0;
    return isPair ? characters.Leads(high) && low : !characters.Leads(low);
}

// The units before half a character; some runtimes read on behind a text that ends in one.
size_t WholeSize(const char* s) {
    size_t size = ScanLength(s);
    return !size || IsAscii(s[size - 1]) ? size : Characters::OfRuntime().WithoutHalf(s, size);
}

// A text as the runtime's comparisons may read it.
class WholeText {
public:
    explicit WholeText(const char* s) : m_text(s) {
        size_t whole = WholeSize(s);
        if (!s[whole]) return;
        memcpy(m_copy.GetBuffer(static_cast<int>(whole)), s, whole);
        m_copy.ReleaseBuffer();
        m_text = m_copy;
    }
    operator const unsigned char*() const { return Bytes(m_text); }

private:
    CXString m_copy;
    const char* m_text;
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

size_t NarrowText::Count(const char* s) {
    ScannedText text = ScanText(s);
    return text.isAscii ? text.length : CountBeyondAscii(s, text.length);
}

size_t NarrowText::CountBeyondAscii(const char* s, size_t size) {
    return Characters::OfRuntime().Count(s, size);
}

const char* NarrowText::Skip(const char* s, size_t n) {
    size_t size = ScanLength(s, n);
    return ScanIsAscii(s, size) ? s + size : Characters::OfRuntime().Skip(s, n);
}

size_t NarrowText::Fit(const char* s, size_t size) {
    if (ScanIsAscii(s, size)) return size;
    const Characters characters = Characters::OfRuntime();
    return characters.WithoutHalf(s, characters.WholeBytes(s, size));
}

wchar_t NarrowText::At(const char* p) {
    if (IsAscii(*p)) return static_cast<wchar_t>(*p);
    auto bytes = Bytes(p);
    switch (Characters::OfRuntime().WholeSizeAt(p)) {
        case 0:
            return 0;
        case 1:
            return bytes[0];
        default:
            return static_cast<wchar_t>(bytes[0] << 8 | bytes[1]);
    }
}

void NarrowText::SpellBeyondByte(wchar_t ch, CharText& text) {
    char* p = text;
    if (IsLead(static_cast<char>(ch >> 8))) *p++ = static_cast<char>(ch >> 8);
    *p++ = static_cast<char>(ch);
    *p = 0;
}

void NarrowText::SpellInMemoryOrder(wchar_t ch, CharText& text) {
    Spell(ch, text);
    if (text[0] && text[1]) std::swap(text[0], text[1]);
}

// What begins with ASCII and has only ASCII before it stands at a character.
const char* NarrowText::Find(const char* s, const char* what) {
    if (!*what) return s;
    const char* found = ScanForText(s, what);
    if (!found || (IsAscii(*found) && ScanIsAscii(s, static_cast<size_t>(found - s)))) return found;
    return Characters::OfRuntime().FindText(s, what);
}

const char* NarrowText::FindAny(const char* s, const char* set) {
    if (IsAscii(s) && IsAscii(set)) return ScanForAny(s, set);
    return Characters::OfRuntime().FindAny(s, set);
}

const char* NarrowText::FindLastAny(const char* s, const char* set) {
    ScannedText text = ScanText(s);
    if (text.isAscii && IsAscii(set)) return ScanBackForAny(s, s + text.length, set);
    return Characters::OfRuntime().FindLastAny(s, set);
}

ptrdiff_t NarrowText::IndexOfPlace(const char* s, const char* place) {
    return place ? static_cast<ptrdiff_t>(Count(s, static_cast<size_t>(place - s))) : -1;
}

// The scan that finds an ASCII character knows whether others stand before it.
ptrdiff_t NarrowText::IndexOf(const char* s, const char* from, wchar_t ch) {
    if (IsAsciiValue(ch)) {
        ScannedByte found = ScanForByte(from, static_cast<char>(ch));
        if (!found.place) return -1;
        if (found.isAscii && from == s) return found.place - s;
    }
    const Characters characters = Characters::OfRuntime();
    CharText text;
    if (!SpellWhole(characters, ch, text)) return -1;
    return IndexOfPlace(s, *text ? characters.FindText(from, text) : s + ScanLength(s));
}

ptrdiff_t NarrowText::LastIndexOf(const char* s, wchar_t ch) {
    if (IsAsciiValue(ch)) {
        const char* last = ScanForLastUnit(s, static_cast<char>(ch));
        if (!last) return -1;
        if (ScanIsAscii(s, static_cast<size_t>(last - s))) return last - s;
    }
    const Characters characters = Characters::OfRuntime();
    CharText text;
    if (!SpellWhole(characters, ch, text)) return -1;
    return IndexOfPlace(s, *text ? characters.FindLastAny(s, text) : s + ScanLength(s));
}

size_t NarrowText::LeadingSpace(const char* s) {
    const char* p = s;
    while (IsSpace(*p) && (IsAscii(*p) || Characters::OfRuntime().StandsAlone(*p))) ++p;
    return static_cast<size_t>(p - s);
}

// Half a character at the end is no white space.
size_t NarrowText::TrimmedSize(const char* s) {
    ScannedText text = ScanText(s);
    size_t size = text.length;
    if (text.isAscii) {
        while (size && IsSpace(s[size - 1])) --size;
        return size;
    }
    const Characters characters = Characters::OfRuntime();
    if (characters.WithoutHalf(s, size) < size) return size;
    auto isSpace = [&](const char* at) { return IsSpace(*at) && characters.StandsAlone(*at); };
    return static_cast<size_t>(characters.Trim(s, s + size, isSpace) - s);
}

// Equal texts and ASCII texts are the same in each code page; the order of others is the runtime's.
int NarrowText::Compare(const char* a, const char* b) {
    size_t common = ScanCommon(a, b);
    char x = a[common], y = b[common];
    if (x == y) return 0;
    if (IsAscii(x) && IsAscii(y) && ScanIsAscii(a, common)) return x < y ? -1 : 1;
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

}  // namespace qx
