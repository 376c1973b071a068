// Context keys: where in a module a text stands, and the lookups for such a place.
#ifndef QXCORE_TRANSLATE_CONTEXT_KEY_H
#define QXCORE_TRANSLATE_CONTEXT_KEY_H

#include <qxcore/dictionary.h>

#include <optional>

// What a place adds to the hash of a text there: the text hash of its context key. Entries are
// found by their hash alone, so key and text need never be put together. Nothing: no place.
using PlaceHash = std::optional<unsigned>;

// Of a key that is written out; null and empty are no place.
PlaceHash PlaceOfKey(const char* key);
// Of a string table block, without writing its key.
PlaceHash PlaceOfStrings(HMODULE module, unsigned block);

// MakeResourceKey into a buffer of `size` bytes; a key that does not fit is cut. Answers the bytes
// of the whole key; 0 when nothing was written.
unsigned WriteResourceKey(HMODULE module, const void* id, char* buffer, unsigned size, int kind);

// TranslateInContext and TranslateBufferInContext.
const char* TranslateAt(const char* text, PlaceHash place);
unsigned int TranslateBufferAt(char* buffer, unsigned int size, PlaceHash place, int measureOnly);

#endif
