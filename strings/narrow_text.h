// What CXString knows of its units: bytes in the runtime's multibyte code page, where a character
// has one or two.
//
// ASCII texts are the same in every code page and are answered without asking for it; for others it
// is asked at every call, since _setmbcp may change it at any time.
#ifndef QXCORE_STRINGS_NARROW_TEXT_H
#define QXCORE_STRINGS_NARROW_TEXT_H

#include "strings/unit_scan.h"

#include <qxcore/platform.h>

#include <cstddef>
#include <cstring>

namespace qx {

struct NarrowText {
    // The most units that a character may have.
    static constexpr int kCharUnits = 2;

    static size_t Length(const char* s) { return ScanLength(s); }
    // The characters of the text; those in its first `size` units.
    static size_t Count(const char* s);
    static size_t Count(const char* s, size_t size) {
        return ScanIsAscii(s, size) ? size : CountBeyondAscii(s, size);
    }
    // n characters on, or the end. A lead byte without its trail byte is no character: the walk
    // ends there.
    static const char* Skip(const char* s, size_t n);
    // The units of the whole characters within the first `size` units.
    static size_t Fit(const char* s, size_t size);
    // The character at p; 0 where there is none.
    static wchar_t At(const char* p);
    // A character as text with its terminator; one whose high byte is no lead byte is its low byte.
    static void Spell(wchar_t ch, char (&text)[kCharUnits + 1]) {
        if (ch > 0xFF) return SpellBeyondByte(ch, text);
        text[0] = static_cast<char>(ch);
        text[1] = 0;
    }
    // The same with the two bytes of a double-byte character as the value lies in memory.
    static void SpellInMemoryOrder(wchar_t ch, char (&text)[kCharUnits + 1]);

    // Null when there is none. A match starts at a character, never at a trail byte.
    static const char* Find(const char* s, const char* what);
    static const char* FindAny(const char* s, const char* set);
    static const char* FindLastAny(const char* s, const char* set);
    // The index in s of the first character ch from the place `from` on, and of the last one; -1
    // for none. As the runtime's searches take a value: where there are double-byte characters it
    // is a whole one, elsewhere its low byte. The character 0 is the terminator.
    static ptrdiff_t IndexOf(const char* s, const char* from, wchar_t ch);
    static ptrdiff_t LastIndexOf(const char* s, wchar_t ch);

    // The units of white space that the text begins with, and those that are left when the white
    // space at its end goes. No part of a longer character is white space.
    static size_t LeadingSpace(const char* s);
    static size_t TrimmedSize(const char* s);

    static int Compare(const char* a, const char* b);
    static int CompareI(const char* a, const char* b);
    static int CompareN(const char* a, const char* b, size_t n);
    static int CompareIN(const char* a, const char* b, size_t n);
    static void Upper(char* s);
    static void Lower(char* s);
    static int Load(HINSTANCE module, unsigned id, char* buf, int size);
    // The most units that a character of a string resource may become.
    static int LargestLoaded();

    static int Print(char* buf, size_t size, const char* format, char* args);
    static int PrintedSize(const char* format, char* args);

private:
    static void SpellBeyondByte(wchar_t ch, char (&text)[kCharUnits + 1]);
    static size_t CountBeyondAscii(const char* s, size_t size);
    static ptrdiff_t IndexOfPlace(const char* s, const char* place);
};

}  // namespace qx

#endif
