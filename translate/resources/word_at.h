// A 16-bit word at any address: parts of templates and resources need not be aligned.
#ifndef QXCORE_TRANSLATE_WORD_AT_H
#define QXCORE_TRANSLATE_WORD_AT_H

#include <cstdint>
#include <cstring>

inline uint16_t WordAt(const void* at) {
    uint16_t word;
    memcpy(&word, at, sizeof word);
    return word;
}

inline void SetWordAt(void* at, uint16_t word) {
    memcpy(at, &word, sizeof word);
}

#endif
