#include "support/allocation_failure.h"

#include "support/import_slot.h"

#include <atomic>

namespace {

std::atomic<long> liveBlocks;
thread_local unsigned untilFailure;  // 0: no failure is due
thread_local bool failureHappened;

bool FailsNow() {
    if (!untilFailure || --untilFailure) return false;
    failureHappened = true;
    return true;
}

decltype(&HeapAlloc) realHeapAlloc;
decltype(&HeapFree) realHeapFree;
decltype(&VirtualAlloc) realVirtualAlloc;
decltype(&VirtualFree) realVirtualFree;

void* WINAPI CountedHeapAlloc(HANDLE heap, DWORD flags, SIZE_T size) {
    if (FailsNow()) return nullptr;
    void* block = realHeapAlloc(heap, flags, size);
    if (block) ++liveBlocks;
    return block;
}

BOOL WINAPI CountedHeapFree(HANDLE heap, DWORD flags, void* block) {
    if (block) --liveBlocks;
    return realHeapFree(heap, flags, block);
}

// The guard-page heap reserves a region for each block, then commits it; on freeing it decommits.
void* WINAPI CountedVirtualAlloc(void* address, SIZE_T size, DWORD type, DWORD protection) {
    bool reservesBlock = !address && type == MEM_RESERVE;
    if (reservesBlock && FailsNow()) return nullptr;
    void* region = realVirtualAlloc(address, size, type, protection);
    if (region && address && type == MEM_COMMIT) ++liveBlocks;
    return region;
}

BOOL WINAPI CountedVirtualFree(void* address, SIZE_T size, DWORD type) {
    if (type == MEM_DECOMMIT) --liveBlocks;
    return realVirtualFree(address, size, type);
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
        HMODULE library = GetModuleHandleA("qxcore.dll");
        Replace(library, "HeapAlloc", CountedHeapAlloc, realHeapAlloc);
        Replace(library, "HeapFree", CountedHeapFree, realHeapFree);
        Replace(library, "VirtualAlloc", CountedVirtualAlloc, realVirtualAlloc);
        Replace(library, "VirtualFree", CountedVirtualFree, realVirtualFree);
        return true;
    }();
    (void)done;
}

}  // namespace

long LiveBlocks() {
    ReplaceOnce();
    return liveBlocks;
}

FailingAllocation::FailingAllocation(unsigned n) {
    ReplaceOnce();
    failureHappened = false;
    untilFailure = n;
}

FailingAllocation::~FailingAllocation() {
    untilFailure = 0;
}

bool FailingAllocation::Happened() const {
    return failureHappened;
}
