// Texts in buffers of a fixed size.
#ifndef QXCORE_TRANSLATE_TEXT_BUFFER_H
#define QXCORE_TRANSLATE_TEXT_BUFFER_H

// Makes sure that a buffer holds a terminated text that does not end in half a double-byte character. What fitted
// stays as it is. REQUIRES: size > 0.
void EndAtWholeCharacter(char* buffer, unsigned size);

#endif
