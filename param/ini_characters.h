// How the ini reader steps through text: by whole characters of the runtime's multibyte code page.
#ifndef QXCORE_PARAM_INI_CHARACTERS_H
#define QXCORE_PARAM_INI_CHARACTERS_H

#include <cstddef>

// Texts are ranges [begin, end) that end at a character's end; they may hold NUL characters.
//
// Made for one read: it asks the runtime about each byte once, so that text takes no call for each character.
class IniCharacters {
public:
    IniCharacters();

    // REQUIRES: p < end.
    const char* Next(const char* p, const char* end) const;
    // The character that ends at `p`. REQUIRES: begin < p.
    const char* Previous(const char* begin, const char* p) const;
    bool IsSpace(const char* p) const;

    // The first character c in the range, or `end`. REQUIRES: c is ASCII.
    const char* Find(char c, const char* begin, const char* end) const;
    // The first of two.
    const char* FindEither(char a, char b, const char* begin, const char* end) const;

    const char* SkipSpace(const char* begin, const char* end) const;
    const char* SkipSpaceAnd(char c, const char* begin, const char* end) const;
    const char* SkipText(const char* begin, const char* end) const;
    // The end without what is trimmed.
    const char* TrimSpace(const char* begin, const char* end) const;
    const char* TrimSpaceAnd(char c, const char* begin, const char* end) const;

private:
    bool m_multibyte = false;  // whether any byte leads another one
    bool m_lead[256];
    bool m_space[256];  // single bytes

    bool Leads(const char* p) const { return m_lead[static_cast<unsigned char>(*p)]; }
};

#endif
