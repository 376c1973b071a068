#include "support/allocation_failure.h"

#include "support/import_slot.h"

#include <qxcore/heap.h>

#include <atomic>
#include <cstdlib>

namespace {

constexpr int kMemories = 2;

struct Due {
    unsigned untilFailure;  // 0: no failure is due
    bool happened;
};

std::atomic<long> live[kMemories];
thread_local Due due[kMemories];

std::atomic<long>& Live(Memory memory) {
    return live[static_cast<int>(memory)];
}

Due& DueOf(Memory memory) {
    return due[static_cast<int>(memory)];
}

bool FailsNow(Memory memory) {
    Due& d = DueOf(memory);
    if (!d.untilFailure || --d.untilFailure) return false;
    d.happened = true;
    return true;
}

decltype(&HeapAlloc) realHeapAlloc;
decltype(&HeapFree) realHeapFree;
decltype(&VirtualAlloc) realVirtualAlloc;
decltype(&VirtualFree) realVirtualFree;
decltype(&HeapCreate) realHeapCreate;
decltype(&HeapDestroy) realHeapDestroy;
decltype(&malloc) realMalloc;
decltype(&free) realFree;

// A library whose runtime is linked in imports no malloc: what that gives comes from the process's
// heap then, through the same import as the blocks of the library's heaps.
Memory MemoryOf(HANDLE heap) {
    return heap == GetProcessHeap() ? Memory::runtime : Memory::heaps;
}

void* WINAPI CountedHeapAlloc(HANDLE heap, DWORD flags, SIZE_T size) {
    Memory memory = MemoryOf(heap);
    if (FailsNow(memory)) return nullptr;
    void* block = realHeapAlloc(heap, flags, size);
    if (block) ++Live(memory);
    return block;
}

BOOL WINAPI CountedHeapFree(HANDLE heap, DWORD flags, void* block) {
    if (block) --Live(MemoryOf(heap));
    return realHeapFree(heap, flags, block);
}

// The guard-page heap takes the record of a heap in one go, and commits each block at an address
// that it has reserved. On freeing a block it decommits.
void* WINAPI CountedVirtualAlloc(void* address, SIZE_T size, DWORD type, DWORD protection) {
    bool isBlock = type == MEM_COMMIT;
    if (type != MEM_RESERVE && FailsNow(isBlock ? Memory::heaps : Memory::runtime)) return nullptr;
    void* region = realVirtualAlloc(address, size, type, protection);
    if (region && isBlock) ++Live(Memory::heaps);
    return region;
}

BOOL WINAPI CountedVirtualFree(void* address, SIZE_T size, DWORD type) {
    if (type == MEM_DECOMMIT) --Live(Memory::heaps);
    return realVirtualFree(address, size, type);
}

HANDLE WINAPI CountedHeapCreate(DWORD options, SIZE_T initial, SIZE_T maximum) {
    if (FailsNow(Memory::runtime)) return nullptr;
    HANDLE heap = realHeapCreate(options, initial, maximum);
    if (heap) ++Live(Memory::runtime);
    return heap;
}

BOOL WINAPI CountedHeapDestroy(HANDLE heap) {
    --Live(Memory::runtime);
    return realHeapDestroy(heap);
}

void* CountedMalloc(size_t size) {
    if (FailsNow(Memory::runtime)) return nullptr;
    void* block = realMalloc(size);
    if (block) ++Live(Memory::runtime);
    return block;
}

void CountedFree(void* block) {
    if (block) --Live(Memory::runtime);
    realFree(block);
}

template <class Function>
void Replace(HMODULE module, const char* name, Function* counted, Function*& real) {
    if (void** slot = FindImportSlot(module, name)) {
        real = reinterpret_cast<Function*>(*slot);
        SetImportSlot(slot, reinterpret_cast<void*>(counted));
    }
}

void ReplaceOnce() {
    static bool done = [] {
        // The first exception of a thread takes memory that stays, in the library and here.
        try {
            Mem_DefaultHeap(0)->Alloc(SIZE_MAX);
        } catch (CXMemException&) {
        }
        HMODULE library = GetModuleHandleA("qxcore.dll");
        Replace(library, "HeapAlloc", CountedHeapAlloc, realHeapAlloc);
        Replace(library, "HeapFree", CountedHeapFree, realHeapFree);
        Replace(library, "VirtualAlloc", CountedVirtualAlloc, realVirtualAlloc);
        Replace(library, "VirtualFree", CountedVirtualFree, realVirtualFree);
        Replace(library, "HeapCreate", CountedHeapCreate, realHeapCreate);
        Replace(library, "HeapDestroy", CountedHeapDestroy, realHeapDestroy);
        Replace(library, "malloc", CountedMalloc, realMalloc);
        Replace(library, "free", CountedFree, realFree);
        // An exception is allocated where it is thrown and freed where it is caught.
        Replace(GetModuleHandleA(nullptr), "free", CountedFree, realFree);
        return true;
    }();
    (void)done;
}

}  // namespace

long LiveBlocks(Memory memory) {
    ReplaceOnce();
    return Live(memory);
}

FailingAllocation::FailingAllocation(unsigned n, Memory memory) : m_memory(memory) {
    ReplaceOnce();
    DueOf(memory) = {n, false};
}

FailingAllocation::~FailingAllocation() {
    DueOf(m_memory).untilFailure = 0;
}

bool FailingAllocation::Happened() const {
    return DueOf(m_memory).happened;
}
