// The hidden word before a block.
#ifndef QXCORE_TESTS_CORE_BLOCK_TAG_H
#define QXCORE_TESTS_CORE_BLOCK_TAG_H

#include <qxcore/heap.h>

// Volatile, since the compiler knows that nothing lies before a block of `new`.
QXCORE_NOINLINE inline IHeap* TagOf(const volatile void* block) {
    return static_cast<IHeap*>(
        const_cast<void*>(static_cast<const volatile void* const volatile*>(block)[-1]));
}

#endif
