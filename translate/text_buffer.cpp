#include "translate/text_buffer.h"

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
