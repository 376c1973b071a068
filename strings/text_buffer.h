// Texts in buffers of a fixed size, in the runtime's code page. REQUIRES: size > 0.
#ifndef QXCORE_STRINGS_TEXT_BUFFER_H
#define QXCORE_STRINGS_TEXT_BUFFER_H

#include "strings/characters.h"
#include "strings/narrow_text.h"

using qx::NarrowText;

inline void EndAtWholeCharacter(char* buffer, unsigned size) {
    qx::Characters::OfRuntime().EndAtWholeCharacter(buffer, size);
}

inline size_t WholeBytes(const char* text, size_t limit) {
    return qx::Characters::OfRuntime().WholeBytes(text, limit);
}

inline size_t CopyWhole(char* out, size_t size, const char* text) {
    return qx::Characters::OfRuntime().CopyWhole(out, size, text);
}

#endif
