// The process-wide memory manager and the heaps it deals out.
#ifndef QXCORE_CORE_MEMORY_MANAGER_H
#define QXCORE_CORE_MEMORY_MANAGER_H

#include "core/system_heap.h"

#include <qxcore/heap.h>
#include <qxcore/platform.h>

#include <cassert>
#include <cstdint>

namespace qx {

class CHeap : public CQXUnknownImpl<IHeap>, public QX_LISTITEM {
public:
    // Throws CXMemException when the system refuses and the sink gives up. `size` counts as
    // activity and no more.
    CHeap(size_t size, bool pinned);
    ~CHeap() override;

    // The objects outlive the heaps, so they are runtime memory.
    static void* operator new(size_t size);
    static void operator delete(void* block);

    // A pinned heap is destroyed only by the manager.
    unsigned AddRef() override { return m_pinned ? 1 : InternalAddRef(); }
    unsigned Release() override { return m_pinned ? 1 : InternalRelease(); }

    void* Alloc(size_t size) override;
    int Free(void* block) override;
    void* Realloc(void* block, size_t newSize) override;
    size_t GetSize(void* block) override;
    size_t GetHeaderSize() override { return kHeaderSize; }

    // REQUIRES: the manager's lock is held.
    void* AllocLocked(size_t size);
    // Tells the debugger of blocks that nobody freed; `index` names the heap.
    void ReportLiveBlocks(int index) const;

    static constexpr size_t kHeaderSize = 8;  // the owning CHeap, before each block

private:
    // A block that the system refused at first, or CXMemException.
    QXCORE_NOINLINE void* AllocAgain(size_t total);

    HANDLE m_handle;
    int m_pinned;
};

struct CMemManager {
    static constexpr int kHeaps = 4;

    void Start();
    void Stop();
    // By the running thread.
    bool IsLocked() const {
        return reinterpret_cast<uintptr_t>(lock.OwningThread) == GetCurrentThreadId();
    }

    // REQUIRES: lock is held.
    CHeap* NextHeapLocked();
    // Repeats a request that failed, while it fails and the sink asks for another try.
    template <class Request>
    void* TryAgain(Request request);

    CHeap* heaps[kHeaps];
    int nextHeap;
    CRITICAL_SECTION lock;
    ILowMemoryNotifySink* sink;
    COList heapList;

    size_t bytesRequested;
    unsigned operations;
    int isWin9x;
    int heapCount;
};

extern CMemManager g_memory;

inline void* CHeap::AllocLocked(size_t size) {
    assert(g_memory.IsLocked());
    size_t total = size + kHeaderSize;
    void* block = total < size ? nullptr : SystemHeapAlloc(m_handle, total);
    if (!block) [[unlikely]]
        block = AllocAgain(total);
    auto owner = static_cast<CHeap**>(block);
    *owner = this;
    g_memory.bytesRequested += total;
    ++g_memory.operations;
    return owner + 1;
}

class MemoryLock {
public:
    MemoryLock() { EnterCriticalSection(&g_memory.lock); }
    ~MemoryLock() { LeaveCriticalSection(&g_memory.lock); }
    MemoryLock(const MemoryLock&) = delete;
    MemoryLock& operator=(const MemoryLock&) = delete;
};

}  // namespace qx

#endif
