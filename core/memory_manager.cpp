#include "core/memory_manager.h"

#include "core/runtime_block.h"
#include "core/system_heap.h"

#include <algorithm>
#include <cassert>
#include <cstdio>
#include <cstring>

int __core_activity = 0;

namespace qx {

constinit CMemManager g_memory = {};

namespace {

constexpr int kMaxHeapsOnWin9x = 128;
constexpr size_t kPermanentHeapSize = 4096;

// The high bit of the version marks the Windows 9x family; its major version is 4.
bool RunsOnWin9x() {
    DWORD version = GetVersion();
    return (version & 0x80000000) != 0 && (version & 0x0F) >= 4;
}

// The word before a block: its heap.
CHeap** OwnerOf(void* block) {
    return static_cast<CHeap**>(block) - 1;
}

}  // namespace

template <class Request>
void* CMemManager::TryAgain(Request request) {
    void* result = nullptr;
    for (unsigned attempt = 0; !result && sink && sink->OnLowMemory(attempt); ++attempt)
        result = request();
    return result;
}

void CMemManager::Start() {
    InitializeCriticalSection(&lock);
    heapList = {};
    for (auto& heap : heaps) heap = new CHeap(kPermanentHeapSize, true);
    isWin9x = RunsOnWin9x();
}

void CMemManager::Stop() {
#if defined(QXCORE_LEAK_REPORT)
    for (int i = 0; i < kHeaps; ++i) heaps[i]->ReportLiveBlocks(i);
#endif
    while (heapList.head) delete static_cast<CHeap*>(heapList.head);
    DeleteCriticalSection(&lock);
}

CHeap* CMemManager::NextHeapLocked() {
    assert(IsLocked());
    if (nextHeap >= kHeaps) nextHeap = 0;
    return heaps[nextHeap++];
}

void* CHeap::operator new(size_t size) {
    return AllocRuntimeBlock(size);
}

void CHeap::operator delete(void* block) {
    FreeRuntimeBlock(block);
}

CHeap::CHeap(size_t size, bool pinned) : m_pinned(pinned) {
    MemoryLock lock;
    m_handle = SystemHeapCreate();
    if (!m_handle) m_handle = g_memory.TryAgain(SystemHeapCreate);
    g_memory.bytesRequested += size;
    ++g_memory.operations;
    if (!m_handle) throw CXMemException();
    g_memory.heapList.Append(this);
}

CHeap::~CHeap() {
    if (g_memory.isWin9x && !m_pinned) --g_memory.heapCount;
    MemoryLock lock;
    g_memory.heapList.Unlink(this);
    SystemHeapDestroy(m_handle);
}

void* CHeap::AllocAgain(size_t total) {
    bool wrapped = total < kHeaderSize;
    void* block =
        wrapped ? nullptr : g_memory.TryAgain([&] { return SystemHeapAlloc(m_handle, total); });
    if (!block) throw CXMemException();
    return block;
}

void CHeap::ReportLiveBlocks(int index) const {
    LiveBlocks live = SystemHeapLive(m_handle);
    if (live.count == 0) return;
    char line[128];
    snprintf(line, sizeof line,
             "qxcore: %u blocks of %u bytes are still live on permanent heap %d\n",
             static_cast<unsigned>(live.count), static_cast<unsigned>(live.bytes), index);
    OutputDebugStringA(line);
}

void* CHeap::Alloc(size_t size) {
    MemoryLock lock;
    return AllocLocked(size);
}

int CHeap::Free(void* block) {
    CHeap** owner = OwnerOf(block);
    ++g_memory.operations;
    return SystemHeapFree((*owner)->m_handle, owner);
}

void* CHeap::Realloc(void* block, size_t newSize) {
    assert(block && newSize >= kHeaderSize);
    MemoryLock lock;
    CHeap* heap = *OwnerOf(block);
    void* moved = heap->AllocLocked(newSize);
    size_t oldBlock = SystemHeapSize(heap->m_handle, OwnerOf(block));
    memcpy(moved, block, std::min(newSize, oldBlock) - kHeaderSize);
    heap->Free(block);
    ++g_memory.operations;
    return moved;
}

size_t CHeap::GetSize(void* block) {
    CHeap** owner = OwnerOf(block);
    return SystemHeapSize((*owner)->m_handle, owner) - kHeaderSize;
}

}  // namespace qx

using qx::g_memory;

IHeap* Mem_DefaultHeap(size_t) {
    qx::MemoryLock lock;
    return g_memory.NextHeapLocked();
}

IHeap* new_MemoryHeap(size_t size) {
    if (g_memory.isWin9x) {
        if (g_memory.heapCount >= qx::kMaxHeapsOnWin9x) return Mem_DefaultHeap(size);
        ++g_memory.heapCount;
    }
    return new qx::CHeap(size, false);
}

void Mem_SetLowMemoryNotifySink(ILowMemoryNotifySink* sink) {
    if (g_memory.sink) throw CXException(QXERR_BAD_USE);
    g_memory.sink = sink;
}

void Get_CoreActivity(size_t* bytes, unsigned* operations) {
    *bytes = g_memory.bytesRequested;
    *operations = g_memory.operations;
}
