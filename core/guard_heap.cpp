#include "core/system_heap.h"

#if defined(QXCORE_GUARD_HEAP)

#include <qxcore/listitem.h>

#include <cstring>

namespace qx {

namespace {

constexpr size_t kPage = 4096;
constexpr size_t kAlign = 16;
constexpr unsigned char kSlack = 0xFD;  // fills the rounding behind a block
constexpr unsigned kQuarantine = 4096;  // freed blocks that stay unmapped

// Stands at the start of a block's region; the block itself ends where the region's last page
// begins.
struct GuardBlock : QX_LISTITEM {
    size_t size;
    size_t pages;  // committed ones
};

struct GuardHeap {
    CRITICAL_SECTION lock;
    COList live;
};

size_t RoundUp(size_t n, size_t to) {
    return (n + to - 1) / to * to;
}

// The header stands at the start of the block's region, which may lie many pages before the block.
GuardBlock* HeaderOf(const void* block) {
    MEMORY_BASIC_INFORMATION info;
    VirtualQuery(block, &info, sizeof info);
    return static_cast<GuardBlock*>(info.AllocationBase);
}

struct Quarantine {
    CRITICAL_SECTION lock;
    void* regions[kQuarantine];
    unsigned next;

    Quarantine() : regions{}, next(0) { InitializeCriticalSection(&lock); }
    void Add(void* region) {
        EnterCriticalSection(&lock);
        if (regions[next]) VirtualFree(regions[next], 0, MEM_RELEASE);
        regions[next] = region;
        next = (next + 1) % kQuarantine;
        LeaveCriticalSection(&lock);
    }
};

Quarantine& TheQuarantine() {
    static Quarantine quarantine;
    return quarantine;
}

void CheckSlack(const GuardBlock* header, const void* block) {
    auto bytes = static_cast<const unsigned char*>(block);
    for (size_t i = header->size; i < RoundUp(header->size, kAlign); ++i) {
        if (bytes[i] != kSlack) {
            OutputDebugStringA("qxcore: a block was written behind its end\n");
            DebugBreak();
        }
    }
}

void Unmap(GuardBlock* header) {
    VirtualFree(header, header->pages * kPage, MEM_DECOMMIT);
    TheQuarantine().Add(header);
}

}  // namespace

HANDLE SystemHeapCreate() {
    auto heap = static_cast<GuardHeap*>(
        VirtualAlloc(nullptr, sizeof(GuardHeap), MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    if (heap) InitializeCriticalSection(&heap->lock);
    return heap;
}

bool SystemHeapDestroy(HANDLE handle) {
    auto heap = static_cast<GuardHeap*>(handle);
    while (heap->live.head) {
        auto header = static_cast<GuardBlock*>(heap->live.head);
        heap->live.Unlink(header);
        Unmap(header);
    }
    DeleteCriticalSection(&heap->lock);
    return VirtualFree(heap, 0, MEM_RELEASE);
}

void* SystemHeapAlloc(HANDLE handle, size_t size) {
    auto heap = static_cast<GuardHeap*>(handle);
    if (size > SIZE_MAX / 2) return nullptr;
    size_t rounded = RoundUp(size, kAlign);
    size_t pages = RoundUp(sizeof(GuardBlock) + rounded, kPage) / kPage;
    auto region =
        static_cast<char*>(VirtualAlloc(nullptr, (pages + 1) * kPage, MEM_RESERVE, PAGE_NOACCESS));
    if (!region) return nullptr;
    if (!VirtualAlloc(region, pages * kPage, MEM_COMMIT, PAGE_READWRITE)) {
        VirtualFree(region, 0, MEM_RELEASE);
        return nullptr;
    }
    auto header = reinterpret_cast<GuardBlock*>(region);
    header->size = size;
    header->pages = pages;
    char* block = region + pages * kPage - rounded;
    memset(block + size, kSlack, rounded - size);
    EnterCriticalSection(&heap->lock);
    heap->live.Append(header);
    LeaveCriticalSection(&heap->lock);
    return block;
}

int SystemHeapFree(HANDLE handle, void* block) {
    auto heap = static_cast<GuardHeap*>(handle);
    GuardBlock* header = HeaderOf(block);
    CheckSlack(header, block);
    EnterCriticalSection(&heap->lock);
    heap->live.Unlink(header);
    LeaveCriticalSection(&heap->lock);
    Unmap(header);
    return TRUE;
}

size_t SystemHeapSize(HANDLE, const void* block) {
    return HeaderOf(block)->size;
}

LiveBlocks SystemHeapLive(HANDLE handle) {
    LiveBlocks live = {};
    auto heap = static_cast<GuardHeap*>(handle);
    QX_LISTITEM* item = heap->live.head;
    for (; live.count < heap->live.count; item = item->next) {
        ++live.count;
        live.bytes += static_cast<GuardBlock*>(item)->size;
    }
    return live;
}

}  // namespace qx

#endif
