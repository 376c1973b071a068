#include "core/system_heap.h"

#if defined(QXCORE_GUARD_HEAP)

#include <qxcore/listitem.h>

#include <cstdint>
#include <cstring>

namespace qx {

namespace {

constexpr size_t kPage = 4096;
constexpr size_t kAlign = 16;
constexpr unsigned char kSlack = 0xFD;  // fills the rounding behind a block
constexpr size_t kArena = size_t(1) << 30;

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

// A block begins less than a page behind its header.
GuardBlock* HeaderOf(const void* block) {
    auto before = reinterpret_cast<uintptr_t>(block) - sizeof(GuardBlock);
    return reinterpret_cast<GuardBlock*>(before / kPage * kPage);
}

// Addresses that are given out once: a freed block stays unmapped for good. Thousands of regions
// reserved one by one make the system slow in finding the next.
class Addresses {
public:
    Addresses() { InitializeCriticalSection(&m_lock); }

    // Null when the system has no more.
    char* Take(size_t size) {
        EnterCriticalSection(&m_lock);
        if (size > m_left) Reserve(RoundUp(size, kArena));
        char* region = nullptr;
        if (size <= m_left) {
            region = m_next;
            m_next += size;
            m_left -= size;
        }
        LeaveCriticalSection(&m_lock);
        return region;
    }

private:
    void Reserve(size_t size) {
        void* arena = VirtualAlloc(nullptr, size, MEM_RESERVE, PAGE_NOACCESS);
        if (!arena) return;
        m_next = static_cast<char*>(arena);
        m_left = size;
    }

    CRITICAL_SECTION m_lock;
    char* m_next = nullptr;
    size_t m_left = 0;
};

Addresses& TheAddresses() {
    static Addresses addresses;
    return addresses;
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
    char* region = TheAddresses().Take((pages + 1) * kPage);
    if (!region || !VirtualAlloc(region, pages * kPage, MEM_COMMIT, PAGE_READWRITE)) return nullptr;
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
