// Between the UTF-8 of the tools and the wide text of Windows.
#ifndef QXTRANSLATE_PLATFORM_WIDE_TEXT_H
#define QXTRANSLATE_PLATFORM_WIDE_TEXT_H

#include "tools/qxtranslate/model/text/unicode.h"

#include <string>
#include <string_view>

namespace qx {

inline std::string FromWide(std::wstring_view wide) {
    return ToUtf8(std::u16string(wide.begin(), wide.end()));
}

inline std::wstring ToWide(std::string_view utf8) {
    std::wstring wide;
    for (char32_t c : ToUtf32(utf8)) {
        if (c < 0x10000) {
            wide += static_cast<wchar_t>(c);
        } else {
            wide += static_cast<wchar_t>(0xD800 + ((c - 0x10000) >> 10));
            wide += static_cast<wchar_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
        }
    }
    return wide;
}

}  // namespace qx

#endif
