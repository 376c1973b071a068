// Between the process's narrow code page and wide text: the border that wide callers cross to the
// dictionary.
#ifndef QXCORE_TRANSLATE_DICTIONARY_CODE_PAGE_H
#define QXCORE_TRANSLATE_DICTIONARY_CODE_PAGE_H

#include <qxcore/platform.h>

namespace qx {

// The widening of `length` bytes; room for as many characters is enough. Answers the characters.
inline int Widen(const char* text, int length, wchar_t* out, int room, DWORD flags) {
    // The code pages up to 127 agree with wide text; only other bytes are worth the system's
    // tables.
    int ascii = 0;
    while (ascii < length && static_cast<signed char>(text[ascii]) >= 0) ++ascii;
    if (ascii == length && length <= room) {
        for (int i = 0; i < length; ++i) out[i] = static_cast<wchar_t>(text[i]);
        return length;
    }
    return MultiByteToWideChar(CP_ACP, GetACP() == CP_UTF8 ? 0 : flags, text, length, out, room);
}

// The narrowing of `length` characters into `room` bytes; what does not fit is cut at a whole
// character. Answers the bytes; there is no terminator.
inline int Narrow(const wchar_t* text, int length, char* out, int room, DWORD flags) {
    int ascii = 0;
    for (int limit = length < room ? length : room; ascii < limit && text[ascii] < 0x80; ++ascii) {
        out[ascii] = static_cast<char>(text[ascii]);
    }
    if (ascii == length) return length;
    if (GetACP() == CP_UTF8) flags = 0;
    int fits = 0;  // characters that surely fit
    for (int fails = length + 1; fits + 1 < fails;) {
        int middle = fails == length + 1 ? length : fits + (fails - fits) / 2;
        int bytes = WideCharToMultiByte(CP_ACP, flags, text, middle, nullptr, 0, nullptr, nullptr);
        (bytes <= room ? fits : fails) = middle;
    }
    if (fits > 0 && fits < length && IS_SURROGATE_PAIR(text[fits - 1], text[fits])) --fits;
    return fits ? WideCharToMultiByte(CP_ACP, flags, text, fits, out, room, nullptr, nullptr) : 0;
}

// A wide text as the code page spells it, as far as it fits.
struct InCodePage {
    InCodePage(const void* wide, size_t characters) {
        constexpr size_t kMost = sizeof text - 1;
        auto length = static_cast<int>(characters < kMost ? characters : kMost);
        text[Narrow(static_cast<const wchar_t*>(wide), length, text, kMost, 0)] = 0;
    }
    char text[1024];
};

}  // namespace qx

#endif
