// What CXStringW knows of its units: each 16-bit unit is a character. The members mean what
// NarrowText says.
#ifndef QXCORE_STRINGS_WIDE_TEXT_H
#define QXCORE_STRINGS_WIDE_TEXT_H

#include "strings/unit_scan.h"

#include <qxcore/platform.h>

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cwchar>
#include <wctype.h>

namespace qx {

struct WideText {
    static constexpr int kCharUnits = 1;

    static size_t Length(const wchar_t* s) { return ScanLength(s); }
    static size_t Count(const wchar_t* s) { return Length(s); }
    static size_t Count(const wchar_t*, size_t size) { return size; }
    static const wchar_t* Skip(const wchar_t* s, size_t n) { return s + ScanLength(s, n); }
    static size_t Fit(const wchar_t*, size_t size) { return size; }
    static wchar_t At(const wchar_t* p) { return *p; }
    static void Spell(wchar_t ch, wchar_t (&text)[kCharUnits + 1]) {
        text[0] = ch;
        text[1] = 0;
    }
    static void SpellInMemoryOrder(wchar_t ch, wchar_t (&text)[kCharUnits + 1]) { Spell(ch, text); }

    static const wchar_t* Find(const wchar_t* s, const wchar_t* what) {
        return *what ? ScanForText(s, what) : s;
    }
    static const wchar_t* FindAny(const wchar_t* s, const wchar_t* set) {
        return ScanForAny(s, set);
    }
    static const wchar_t* FindLastAny(const wchar_t* s, const wchar_t* set) {
        return ScanBackForAny(s, s + Length(s), set);
    }
    static ptrdiff_t IndexOf(const wchar_t* s, const wchar_t* from, wchar_t ch) {
        return IndexOfPlace(s, ch ? ScanForUnit(from, ch) : s + Length(s));
    }
    static ptrdiff_t LastIndexOf(const wchar_t* s, wchar_t ch) {
        return IndexOfPlace(s, ch ? ScanForLastUnit(s, ch) : s + Length(s));
    }

    static size_t LeadingSpace(const wchar_t* s) {
        const wchar_t* p = s;
        while (IsSpace(*p)) ++p;
        return static_cast<size_t>(p - s);
    }
    static size_t TrimmedSize(const wchar_t* s) {
        size_t size = Length(s);
        while (size && IsSpace(s[size - 1])) --size;
        return size;
    }

    static int CompareI(const wchar_t* a, const wchar_t* b) { return _wcsicmp(a, b); }
    static int CompareN(const wchar_t* a, const wchar_t* b, size_t n) { return wcsncmp(a, b, n); }
    static int CompareIN(const wchar_t* a, const wchar_t* b, size_t n) {
        return _wcsnicmp(a, b, n);
    }
    static void Upper(wchar_t* s) { _wcsupr(s); }
    static void Lower(wchar_t* s) { _wcslwr(s); }
    static int Load(HINSTANCE module, unsigned id, wchar_t* buf, int size) {
        return LoadStringW(module, id, buf, size);
    }
    static int LargestLoaded() { return 1; }

    static int Print(wchar_t* buf, size_t size, const wchar_t* format, char* args) {
        return _vsnwprintf(buf, size, format, args);
    }
    static int PrintedSize(const wchar_t* format, char* args) { return _vscwprintf(format, args); }

private:
    static ptrdiff_t IndexOfPlace(const wchar_t* s, const wchar_t* place) {
        return place ? place - s : -1;
    }
    // Of the low byte, as CTString says.
    static bool IsSpace(wchar_t c) { return iswspace(c & 0xFF) != 0; }
};

}  // namespace qx

#endif
