// A block of a string table in the target language.
#ifndef QXCORE_TRANSLATE_RESOURCES_STRING_TRANSLATION_H
#define QXCORE_TRANSLATE_RESOURCES_STRING_TRANSLATION_H

#include "translate/places/context_key.h"

#include <cstdint>

namespace qx {

// A block from LocalAlloc with the texts translated in context, and its size in *newSize. Null,
// with *newSize as it was, when all entries are empty, when memory has run out, and when the block
// would be longer than a size can tell.
void* TranslateStringTable(const void* block, uint32_t size, const Place& place, uint32_t* newSize);

}  // namespace qx

#endif
