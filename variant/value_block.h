// What a variant owns: blocks of the default heap, and references.
#ifndef QXCORE_VARIANT_VALUE_BLOCK_H
#define QXCORE_VARIANT_VALUE_BLOCK_H

#include "core/memory_manager.h"

#include <qxcore/variant.h>

#include <cstring>
#include <memory>

inline void* AllocValue(size_t size) {
    MemoryLock lock;
    return g_memory.NextHeapLocked()->AllocLocked(size);
}

// A block names its own heap, so any heap frees it. A null block is let pass.
inline void FreeValue(void* block) {
    if (block) g_memory.heaps[0]->Free(block);
}

inline void* CopyBytes(const void* bytes, size_t size) {
    return bytes ? memcpy(AllocValue(size), bytes, size) : nullptr;
}

inline char* CopyText(const char* text) {
    return static_cast<char*>(CopyBytes(text, text ? strlen(text) + 1 : 0));
}

inline IQXUnknown* WithReference(IQXUnknown* object) {
    if (object) object->AddRef();
    return object;
}

inline void SetVariant(tagQXVARIANT* v, unsigned short type, const tagQXVALUE& value) {
    v->type = type;
    v->value = value;
}

#endif
