// The system heap under every CHeap: the platform's calls, or the guard-page heap of hardened
// builds.
#ifndef QXCORE_CORE_SYSTEM_HEAP_H
#define QXCORE_CORE_SYSTEM_HEAP_H

#include <qxcore/platform.h>

#include <cstddef>

namespace qx {

// What a heap still holds, for the report of a debug build at unload.
struct LiveBlocks {
    size_t count;
    size_t bytes;  // the heap's hidden words included
};

#if defined(QXCORE_GUARD_HEAP)

// Each block ends at an unmapped page; a freed block stays unmapped for good. A write behind the
// block's last byte within its 16-byte rounding is found when the block is freed.
HANDLE SystemHeapCreate();
bool SystemHeapDestroy(HANDLE heap);
void* SystemHeapAlloc(HANDLE heap, size_t size);  // zero-filled
int SystemHeapFree(HANDLE heap, void* block);     // the system's result
size_t SystemHeapSize(HANDLE heap, const void* block);
LiveBlocks SystemHeapLive(HANDLE heap);

#else

inline HANDLE SystemHeapCreate() {
    constexpr DWORD kGrowable = 2;  // HEAP_GROWABLE
    HANDLE heap = HeapCreate(kGrowable, 0, 0);
    ULONG lowFragmentation = 2;
    HeapSetInformation(heap, HeapCompatibilityInformation, &lowFragmentation,
                       sizeof lowFragmentation);
    return heap;
}
inline bool SystemHeapDestroy(HANDLE heap) {
    return HeapDestroy(heap);
}
inline void* SystemHeapAlloc(HANDLE heap, size_t size) {
    return HeapAlloc(heap, HEAP_ZERO_MEMORY, size);
}
inline int SystemHeapFree(HANDLE heap, void* block) {
    return HeapFree(heap, 0, block);
}
inline size_t SystemHeapSize(HANDLE heap, const void* block) {
    return HeapSize(heap, 0, block);
}
inline LiveBlocks SystemHeapLive(HANDLE heap) {
    LiveBlocks live = {};
    PROCESS_HEAP_ENTRY entry = {};
    while (HeapWalk(heap, &entry)) {
        if (!(entry.wFlags & PROCESS_HEAP_ENTRY_BUSY)) continue;
        ++live.count;
        live.bytes += entry.cbData;
    }
    return live;
}

#endif

}  // namespace qx

#endif
