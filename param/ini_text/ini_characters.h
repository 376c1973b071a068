// How the ini reader steps through text: by whole characters of the runtime's code page, with the
// classes that mean something to it.
#ifndef QXCORE_PARAM_INI_TEXT_CHARACTERS_H
#define QXCORE_PARAM_INI_TEXT_CHARACTERS_H

#include "strings/characters.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <emmintrin.h>

namespace qx {

// Texts are read in groups of bytes, so buffers have room for a part of one behind the end.
inline constexpr size_t kIniSlack = sizeof(__m128i);

// The classes of characters that mean something to the reader; a set of them is their sum.
enum : unsigned { kIniSpace = 1, kIniSeparator = 2, kIniComment = 4 };

// Texts are ranges [begin, end) that end at a character's end; they may hold NUL characters.
//
// Made for one read: it asks the runtime about each byte once, so that text takes no call for each
// character.
class IniCharacters {
public:
    IniCharacters();

    // REQUIRES: p < end.
    char* Next(char* p, char* end) const { return p + m_characters.SizeAt(p, end); }
    // The character that ends at `p`. REQUIRES: begin < p.
    char* Previous(char* begin, char* p) const {
        return const_cast<char*>(m_characters.Previous(begin, p));
    }
    bool IsAny(unsigned classes, const char* p) const {
        return Leads(p) ? (classes & kIniSpace) && IsSpaceOfTwo(p) : (ClassOf(p) & classes) != 0;
    }

    // The first character that is not of the classes, or `end`.
    char* Skip(unsigned classes, char* begin, char* end) const {
        while (begin < end && IsAny(classes, begin)) begin = Next(begin, end);
        return begin;
    }
    // The end of the text without the last characters that are of the classes.
    char* Trim(unsigned classes, char* begin, char* end) const {
        while (begin < end) {
            char* last = Previous(begin, end);
            if (!IsAny(classes, last)) break;
            end = last;
        }
        return end;
    }
    // The first white space, or `end`.
    char* FindSpace(char* begin, char* end) const {
        while (begin < end && !IsAny(kIniSpace, begin)) begin = Next(begin, end);
        return begin;
    }
    // In Find and FindEither the characters are ASCII, and kIniSlack more bytes may be read behind
    // the end. The first character c in front of any NUL; without one that NUL, or `end`.
    char* Find(char c, char* begin, char* end) const {
        if (!m_characters.HasDoubleByte()) return FindByte(c, 0, begin, end);
        // A lead byte does not hide the NUL behind it.
        while (begin < end && *begin != c && *begin)
            begin = begin[1] ? Next(begin, end) : begin + 1;
        return begin;
    }
    // The first of two characters, or `end`; a NUL is a character like others.
    char* FindEither(char a, char b, char* begin, char* end) const {
        if (!m_characters.HasDoubleByte()) return FindByte(a, b, begin, end);
        while (begin < end && *begin != a && *begin != b) begin = Next(begin, end);
        return begin;
    }

private:
    const Characters m_characters = Characters::OfRuntime();
    unsigned char m_classes[256];

    unsigned ClassOf(const char* p) const { return m_classes[static_cast<unsigned char>(*p)]; }
    bool Leads(const char* p) const { return m_characters.Leads(*p); }
    static char* FindByte(char a, char b, char* begin, char* end) {
        const __m128i as = _mm_set1_epi8(a), bs = _mm_set1_epi8(b);
        for (; begin < end; begin += sizeof as) {
            __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(begin));
            int hits = _mm_movemask_epi8(
                _mm_or_si128(_mm_cmpeq_epi8(bytes, as), _mm_cmpeq_epi8(bytes, bs)));
            if (hits) return std::min(begin + std::countr_zero(unsigned(hits)), end);
        }
        return end;
    }
    static bool IsSpaceOfTwo(const char* p);
};

}  // namespace qx

#endif
