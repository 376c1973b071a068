#include "strings/text_buffer.h"

#include <mbctype.h>

#include <cstring>

void EndAtWholeCharacter(char* buffer, unsigned size) {
    buffer[size - 1] = 0;
    if (strlen(buffer) < size - 1) return;
    for (char* at = buffer; *at; ++at) {
        if (!_ismbblead(static_cast<unsigned char>(*at))) continue;
        if (!at[1]) {
            *at = 0;
            return;
        }
        ++at;
    }
}

size_t WholeBytes(const char* text, size_t limit) {
    size_t length = 0;
    while (length < limit && text[length]) {
        bool isPair = _ismbblead(static_cast<unsigned char>(text[length])) && text[length + 1];
        size_t next = length + (isPair ? 2 : 1);
        if (next > limit) break;
        length = next;
    }
    return length;
}

size_t CopyWhole(char* out, size_t size, const char* text) {
    size_t length = WholeBytes(text, size - 1);
    memmove(out, text, length);
    out[length] = 0;
    return length;
}
