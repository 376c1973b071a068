// CXStringW: 16-bit text, copied on write. Its members are those of CTString in string.h; a
// character is one 16-bit unit, surrogates included, and sizes count units, not bytes.
#ifndef QXCORE_WIDE_STRING_H
#define QXCORE_WIDE_STRING_H

#include <qxcore/string.h>

class CXStringW : public CTString<CXStringW, wchar_t> {
public:
    CXStringW() = default;
    CXStringW(const wchar_t* s) : CTString(s) {}
    // Converts from the system's ANSI code page.
    CXStringW(const char* s) { Convert(s); }
    CXStringW(const CXStringW&) = default;
    CXStringW& operator=(const CXStringW&) = default;
    QXCORE_API CXStringW& operator=(const wchar_t* s);
    CXStringW& operator=(const char* s) {
        Convert(s);
        return *this;
    }

    // -1, 0 or 1, unit by unit.
    int Compare(const wchar_t* s) const {
        const wchar_t* own = data;
        if (!s) s = L"";
        while (*own && *own == *s) ++own, ++s;
        return *own < *s ? -1 : *own > *s;
    }

private:
    QXCORE_API void Convert(const char* s);
};

#endif
