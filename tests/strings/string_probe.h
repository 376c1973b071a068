// What the string tests share: strings with their protected members opened, and literals for both
// classes.
#ifndef QXCORE_TESTS_STRING_PROBE_H
#define QXCORE_TESTS_STRING_PROBE_H

#include <qxcore.h>

#include <gtest/gtest.h>
#include <mbctype.h>

#include <cstdarg>
#include <string>
#include <type_traits>

template <class S>
struct StringProbe : S {
    using S::AllocBuffer;
    using S::AssignCopy;
    using S::ConcatCopy;
    using S::ConcatCopyTo;
    using S::data;
    using S::FormatV;
    using S::GetAllocSize;
    using S::Init;
    using S::ReallocBuffer;
    using S::Release;
    using S::S;

    StringProbe() = default;
    StringProbe(const S& s) : S(s) {}

    template <class Ch>
    int Sized(const Ch* format, ...) {
        va_list args;
        va_start(args, format);
        int size = FormatV(format, args);
        va_end(args);
        return size;
    }
};

using Probe = StringProbe<CXString>;
using ProbeW = StringProbe<CXStringW>;

// The fields of the header before any string's text.
template <class S>
int RefsOf(const S& s) {
    return reinterpret_cast<const int*>(s.GetData(0))[-3];
}
template <class S>
int SizeFieldOf(const S& s) {
    return reinterpret_cast<const int*>(s.GetData(0))[-2];
}
template <class S>
int AllocOf(const S& s) {
    return reinterpret_cast<const int*>(s.GetData(0))[-1];
}

// The unit of a string class, and ASCII literals in it.
template <class S>
using UnitOf = std::remove_cv_t<std::remove_pointer_t<decltype(S().GetBuffer(0))>>;

template <class S>
std::basic_string<UnitOf<S>> Units(const char* ascii) {
    return {ascii, ascii + strlen(ascii)};
}

// A string's text as bytes, so that both classes compare with one literal. REQUIRES: the text is
// ASCII.
template <class S>
std::string Ascii(const S& s) {
    std::string text;
    for (const UnitOf<S>* p = s; *p; ++p) text += static_cast<char>(*p);
    return text;
}

// A test of one rule in both classes: T("abc") is a text of the class under test.
template <class S>
struct BothStrings : testing::Test {
    static S T(const char* ascii) { return S(Units<S>(ascii).c_str()); }
};
using BothStringClasses = testing::Types<CXString, CXStringW>;

// Code page 932 has double-byte characters whose trail bytes look like letters and backslashes.
struct CodePage {
    explicit CodePage(int number) { _setmbcp(number); }
    ~CodePage() { _setmbcp(_MB_CP_ANSI); }
};
struct JapaneseTest : testing::Test {
    CodePage page{932};
};
inline constexpr char kA[] = "\x82\xA0";   // hiragana a
inline constexpr char kI[] = "\x82\xA2";   // hiragana i
inline constexpr char kU[] = "\x82\xA4";   // hiragana u
inline constexpr char kSo[] = "\x83\x5C";  // katakana so: the trail byte is that of a backslash
inline constexpr char kAa[] = "\x83\x41";  // katakana a: the trail byte is that of 'A'
inline constexpr char kHalfA[] = "\xB1";   // half-width katakana a: one byte above 0x7F
inline constexpr wchar_t kACode = 0x82A0;
inline constexpr wchar_t kICode = 0x82A2;
inline constexpr wchar_t kAaCode = 0x8341;

#endif
