// What CXString knows of its units: bytes in the runtime's multibyte code page, where a character
// has one or two.
//
// A text is plain when each byte is a character: because all bytes are ASCII, which no code page
// reads otherwise, or because the code page has no lead bytes. A plain text goes to the runtime's
// byte functions. The code page is asked for at every call, since _setmbcp may change it at any
// time.
#ifndef QXCORE_STRINGS_NARROW_TEXT_H
#define QXCORE_STRINGS_NARROW_TEXT_H

#include "strings/unit_scan.h"

#include <qxcore/platform.h>

#include <cstring>

struct NarrowText {
    // The most units that a character may have.
    static constexpr int kCharUnits = 2;

    static size_t Length(const char* s) { return ScanLength(s); }
    static size_t Characters(const char* s);
    // The characters in the first `size` units.
    static size_t Count(const char* s, size_t size) {
        return ScanIsAscii(s, size) ? size : CountBeyondAscii(s, size);
    }
    // n characters on, or the end. A lead byte without its trail byte is no character: the walk
    // ends there.
    static const char* Skip(const char* s, size_t n);
    // The units of the whole characters within the first `size` units.
    static size_t Fit(const char* s, size_t size);
    // The character at p.
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

    static bool IsSpace(char c);
    // The units that are left when the white space at the end goes.
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
};

#endif
