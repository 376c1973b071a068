// Rewrites a block of a string table: counted wide strings, one after the other.
#ifndef QXCORE_TRANSLATE_STRING_TABLE_H
#define QXCORE_TRANSLATE_STRING_TABLE_H

#include <cstdint>

// A block from LocalAlloc with the texts translated in context, and its size in *newSize. Null,
// with *newSize as it was, when all entries are empty or memory has run out. An entry that claims
// more than the block holds is cut.
void* TranslateStringTable(const void* block, uint32_t size, const char* key, uint32_t* newSize);

#endif
