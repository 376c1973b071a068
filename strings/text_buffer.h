// Texts in buffers of a fixed size.
#ifndef QXCORE_STRINGS_TEXT_BUFFER_H
#define QXCORE_STRINGS_TEXT_BUFFER_H

#include <cstddef>

// Makes sure that a buffer holds a terminated text that does not end in half a double-byte
// character. What fitted stays as it is. REQUIRES: size > 0.
void EndAtWholeCharacter(char* buffer, unsigned size);

// How many bytes of a text, up to the limit, are whole characters.
size_t WholeBytes(const char* text, size_t limit);

// Copies as much of a text as fits with its terminator, in whole characters. Answers the length.
// REQUIRES: size > 0.
size_t CopyWhole(char* out, size_t size, const char* text);

#endif
