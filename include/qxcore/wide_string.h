// CXStringW: 16-bit text, copied on write.
//
// Its members are those of CTString in string.h, with the same rules for ownership, errors and
// threads. A character is one 16-bit unit: a surrogate pair counts as two, and sizes count units,
// not bytes. So a buffer for Copy is measured in wchar_t, and GetLength() is GetSize(). Searches,
// case and comparisons are the runtime's for wide text, and no code page has a part in them; only
// the conversion from narrow text asks for it.
//
//     CXStringW title(L"Grundri\u00DF");
//     title.Insert(0, L'*');
//     SetWindowTextW(window, title);
#ifndef QXCORE_WIDE_STRING_H
#define QXCORE_WIDE_STRING_H

#include <qxcore/string.h>

class CXStringW : public CTString<CXStringW, wchar_t> {
public:
    CXStringW() = default;
    CXStringW(const wchar_t* s) : CTString(s) {}
    // Converts from the system's ANSI code page. The capacity is twice the bytes, more than any
    // text needs.
    CXStringW(const char* s) { Convert(s); }
    CXStringW(const CXStringW&) = default;
    CXStringW& operator=(const CXStringW&) = default;
    // As the constructors; a null text empties the string.
    QXCORE_API CXStringW& operator=(const wchar_t* s);
    CXStringW& operator=(const char* s);

    // -1, 0 or 1: unit by unit, by their numbers, so a surrogate comes before U+E000.
    int Compare(const wchar_t* s) const;

private:
    QXCORE_API void Convert(const char* s);
};

inline CXStringW& CXStringW::operator=(const char* s) {
    Convert(s);
    return *this;
}

inline int CXStringW::Compare(const wchar_t* s) const {
    const wchar_t* own = data;
    if (!s) s = L"";
    while (*own && *own == *s) ++own, ++s;
    return *own < *s ? -1 : *own > *s;
}

#endif
