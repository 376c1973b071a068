// What a variant owns: blocks of the default heap, and references.
#ifndef QXCORE_VARIANT_VALUE_BLOCK_H
#define QXCORE_VARIANT_VALUE_BLOCK_H

#include "core/memory_manager.h"
#include "strings/unit_scan.h"

#include <qxcore/variant.h>

#include <cstring>

namespace qx {

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
    return static_cast<char*>(CopyBytes(text, text ? qx::ScanLength(text) + 1 : 0));
}

inline IQXUnknown* WithReference(IQXUnknown* object) {
    if (object) object->AddRef();
    return object;
}

inline bool OwnsValue(unsigned short type) {
    return type == QXVT_STRING || type == QXVT_BLOB || type == QXVT_UNKNOWN;
}

// REQUIRES: the type owns its value.
void ClearOwner(tagQXVARIANT* v);

inline void ClearVariant(tagQXVARIANT* v) {
    if (OwnsValue(v->type)) {
        ClearOwner(v);
    } else {
        memset(v, 0, sizeof *v);
    }
}

// What a record held, which goes when the new value is in place: the source of that may lie in it,
// and whom its end calls finds the record whole. The record is empty at first.
class OldValue {
public:
    explicit OldValue(tagQXVARIANT* v) {
        if (OwnsValue(v->type)) m_old.Attach(*v);
        memset(v, 0, sizeof *v);
    }
    // Passes on what the release of an object raises; without this call it is dropped.
    void LetGo() { m_old.Clear(); }

private:
    CQXVariant m_old;
};

// Null data has no bytes, whatever the size says.
inline bool SameBytes(const tagQXBLOB& a, const tagQXBLOB& b) {
    if (a.size != b.size) return false;
    if (!a.data || !b.data) return a.size == 0 || a.data == b.data;
    return memcmp(a.data, b.data, a.size) == 0;
}

}  // namespace qx

#endif
