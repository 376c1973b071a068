// CTString: Format.
#ifndef QXCORE_STRINGS_STRING_FORMAT_H
#define QXCORE_STRINGS_STRING_FORMAT_H

#include "strings/text_of.h"

#include <qxcore/string.h>

#include <cstdarg>

namespace qx {

// The sizing walk: how many units a format and its arguments may need, which fits an int. Instances
// for char and wchar_t.
template <class Ch>
int FormatSize(const Ch* format, char* args);

}  // namespace qx

template <class S, class Ch>
int CTString<S, Ch>::FormatV(const Ch* format, char* args) {
    return qx::FormatSize(qx::TextOrEmpty(format), args);
}

// The text is made apart from the string's own, which may be among the arguments.
template <class S, class Ch>
void CTString<S, Ch>::Format(const Ch* format, ...) {
    constexpr int kSmall = 512;
    format = qx::TextOrEmpty(format);
    va_list args;
    va_start(args, format);
    int size = FormatV(format, args);
    Ch small[kSmall];
    int printed = qx::TextOf<Ch>::Print(small, kSmall, format, args);
    if (printed >= 0 && printed < kSmall) {
        Ch* buffer = GetBuffer(size > printed ? size : printed);
        memcpy(buffer, small, (printed + 1) * sizeof(Ch));
        ReleaseBuffer();
    } else {
        FormatLarge(size, format, args);
    }
    va_end(args);
}

// The engine answers less than 0 for what does not fit, and then says what it needs; a text that it
// cannot make is as far as it came.
template <class S, class Ch>
void CTString<S, Ch>::FormatLarge(int size, const Ch* format, char* args) {
    int needed = qx::TextOf<Ch>::PrintedSize(format, args);
    if (needed > size) size = needed;
    S text;
    qx::TextOf<Ch>::Print(__CXBuff<S, Ch*>(text, size).buffer, static_cast<size_t>(size), format,
                          args);
    *this = text;
}

#endif
