// Whole characters in narrow texts: the one place that knows which bytes lead another one.
//
// A Characters is a small copy of what one code page says. Take it where a walk begins, keep it in
// a local, and ask it for every step; the caller names whose code page is meant:
//
//     Characters::OfRuntime()   the runtime's multibyte code page (_getmbcp), which _setmbcp may
//                               change at any time: what positions in CXString count by, and what
//                               all files and trees of the library are read in
//     Characters::OfProcess()   the system's code page of the process (GetACP): what the system
//                               itself makes of a narrow text, CP_ACP
//
// In a code page with double-byte characters (932, 936, 949, 950, ...) a lead byte and the byte
// behind it are one character. That byte may look like a backslash, a quote or a letter, so no text
// is looked through byte by byte. In other code pages each byte is a character, in UTF-8 (65001)
// too: positions and steps are bytes there, which is safe since no byte of a longer sequence looks
// like ASCII; only what cuts a text (WholeBytes, CopyWhole, EndAtWholeCharacter) keeps the
// sequences whole.
//
// A lead byte right before the terminator is half a character. It is stepped over as one byte and
// never stands for anything: it is found by no search and is in no set. A text that is not cut
// keeps it.
//
// Texts end with a terminator unless an end is given, and then a zero byte is a byte like others.
// Sixteen bytes are looked at at a time while they are ASCII, or when nothing leads; no walk calls
// the runtime or the system for its bytes.
//
//     auto characters = Characters::OfRuntime();
//     for (const char* at = text; *at; at = characters.Next(at)) ...
//     const char* name = characters.FindLastAny(path, ":\\/");
//     characters.CopyWhole(m_name, sizeof m_name, name);
#ifndef QXCORE_STRINGS_CHARACTERS_H
#define QXCORE_STRINGS_CHARACTERS_H

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace qx {

// Which of the bytes from 0x80 on lead a double-byte character: one bit each.
struct LeadBytes {
    uint64_t bits[2] = {};

    bool Any() const { return (bits[0] | bits[1]) != 0; }
    bool Has(char c) const { return c < 0 && bits[c >> 6 & 1] >> (c & 63) & 1; }
};

class Characters {
public:
    static Characters OfRuntime();
    static Characters OfProcess();

    // Whether the code page has double-byte characters; without them each byte is a character.
    bool HasDoubleByte() const { return m_hasDoubleByte; }
    bool IsUtf8() const { return m_isUtf8; }
    // Whether c leads a double-byte character, where a byte follows.
    bool Leads(char c) const { return m_leads.Has(c); }

    // Whether the byte c is a character by itself wherever it stands in front of others: no lead
    // byte, and in UTF-8 no part of a sequence.
    bool StandsAlone(char c) const { return c >= 0 || !(m_isUtf8 || Leads(c)); }

    // Steps ---------------------------------------------------------------------------------------

    // The bytes of the character at `at`: 1 or 2. REQUIRES: *at is not the terminator.
    size_t SizeAt(const char* at) const {
        assert(*at);
        return Leads(*at) && at[1] ? 2 : 1;
    }
    const char* Next(const char* at) const { return at + SizeAt(at); }
    // The bytes of the whole character at `at`: 0 where there is none, which is at the terminator
    // and at a lead byte right before it.
    size_t WholeSizeAt(const char* at) const {
        if (!*at) return 0;
        return !Leads(*at) ? 1 : at[1] ? 2 : 0;
    }
    // n characters on, or where no whole character is left.
    const char* Skip(const char* text, size_t n) const;
    // The characters in the first `size` bytes, without half a one at the end.
    size_t Count(const char* text, size_t size) const;

    // The same in [begin, end). REQUIRES: at < end.
    size_t SizeAt(const char* at, const char* end) const {
        assert(at < end);
        return Leads(*at) && end - at > 1 ? 2 : 1;
    }
    const char* Next(const char* at, const char* end) const { return at + SizeAt(at, end); }
    // Where the character begins that ends at `at`. REQUIRES: begin < at, and a character begins
    // at `begin`.
    const char* Previous(const char* begin, const char* at) const {
        assert(begin < at);
        return IsTrail(begin, at - 1) ? at - 2 : at - 1;
    }
    // Whether the byte at `at` is the second of its character. REQUIRES: begin <= at, and a
    // character begins at `begin`.
    bool IsTrail(const char* begin, const char* at) const {
        assert(begin <= at);
        size_t leads = 0;
        while (at - leads > begin && Leads(*(at - leads - 1))) ++leads;
        return leads & 1;
    }

    // The bytes of the encoded character at `at`, in UTF-8 those of the whole sequence: 1 to 4. For
    // limits that count characters whatever the code page is. REQUIRES: *at is not the terminator.
    size_t EncodedSizeAt(const char* at) const { return m_isUtf8 ? SequenceAt(at) : SizeAt(at); }

    // Searches ------------------------------------------------------------------------------------

    // The first or last character c, or null. REQUIRES: c is one whole character and not zero.
    const char* Find(const char* text, char c) const;
    const char* FindLast(const char* text, char c) const;
    // The first or last character that is in `set`, a text of characters of any size; or null.
    const char* FindAny(const char* text, const char* set) const;
    const char* FindLastAny(const char* text, const char* set) const;
    // Where `what` begins, at a character; or null. An empty one is found at once.
    const char* FindText(const char* text, const char* what) const;
    // Whether the whole character at `at` is in `set`.
    bool IsIn(const char* set, const char* at) const;

    // The first place in [begin, end) whose character does not satisfy `drops`, which is called
    // with the character's place; or end.
    template <class Drops>
    const char* SkipWhile(const char* begin, const char* end, const Drops& drops) const {
        while (begin < end && drops(begin)) begin = Next(begin, end);
        return begin;
    }
    // The end of [begin, end) without the last characters that satisfy `drops`.
    template <class Drops>
    const char* Trim(const char* begin, const char* end, const Drops& drops) const {
        while (begin < end) {
            const char* last = Previous(begin, end);
            if (!drops(last)) break;
            end = last;
        }
        return end;
    }

    // Cuts ----------------------------------------------------------------------------------------

    // How many bytes of a text, at most `limit`, can be taken without cutting a character or a
    // sequence. The whole of a text that is not longer.
    size_t WholeBytes(const char* text, size_t limit) const;
    // Copies as much of a text as fits with its terminator into `size` bytes, in whole characters.
    // Answers the length. The text may lie in the buffer. REQUIRES: size > 0.
    size_t CopyWhole(char* buffer, size_t size, const char* text) const;
    // The first `size` bytes of a text without half a character at their end. REQUIRES: the text is
    // not shorter.
    size_t WithoutHalf(const char* text, size_t size) const {
        assert(!memchr(text, 0, size));
        if (!size || !Leads(text[size - 1])) return size;
        return IsTrail(text, text + size - 1) ? size : size - 1;
    }
    // Makes sure that a buffer, which the system may have filled to its last byte, holds a
    // terminated text that does not end in half a character or sequence. What fitted stays as it
    // is. REQUIRES: size > 0.
    void EndAtWholeCharacter(char* buffer, size_t size) const;

private:
    LeadBytes m_leads;
    bool m_hasDoubleByte;
    bool m_isUtf8;

    Characters(LeadBytes leads, bool isUtf8)
        : m_leads(leads), m_hasDoubleByte(leads.Any()), m_isUtf8(isUtf8) {}

    bool IsPlain(const char* text, size_t size) const;
    size_t WholePairs(const char* text, size_t limit) const;
    static size_t SequenceAt(const char* at);
};

}  // namespace qx

#endif
