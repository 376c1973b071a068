// Blocks of the runtime's malloc that the global delete can free: the word before them is -1.
//
// For what is made before the heaps can be used, or must outlive them.
#ifndef QXCORE_CORE_RUNTIME_BLOCK_H
#define QXCORE_CORE_RUNTIME_BLOCK_H

#include <qxcore/exception.h>

#include <cstdint>
#include <cstdlib>

namespace qx {

inline constexpr intptr_t kRuntimeTag = -1;
inline constexpr size_t kTagSize = 8;  // the hidden word before every block

// Throws CXMemException.
inline void* AllocRuntimeBlock(size_t size) {
    auto word = static_cast<intptr_t*>(malloc(size + kTagSize));
    if (!word) throw CXMemException();
    *word = kRuntimeTag;
    return word + 1;
}

inline void FreeRuntimeBlock(void* block) {
    free(static_cast<intptr_t*>(block) - 1);
}

}  // namespace qx

#endif
