// Heaps that any module can free from.
//
//     IHeap* heap = new_MemoryHeap(0);
//     auto table = static_cast<int*>(heap->Alloc(100 * sizeof(int)));  // zeros
//     ...
//     heap->Release();  // with all its blocks
//
// Every block of the library carries its heap in the word before it, so it may be freed in any
// module. The global new and delete of every module that links the library go through these heaps
// and add a word of their own, so that one module deletes what another made.
//
// Alignment: a block begins at a multiple of 16 less the words before it, so its address is a
// multiple of 8 from Alloc, and of 16 from `new`. An aligned `new`, that of a type whose alignment
// is larger, is not the library's: the compiler's runtime serves it and its delete in each module
// by itself, so such an object is deleted in the module that made it, and its memory is in no heap
// and no count of this header.
//
// Errors: what cannot be had throws CXMemException, after the low-memory sink has given up; what
// the sink throws passes through. Nothrow `new` answers null instead of either.
//
// Threading: Alloc and Realloc run under one lock for all heaps and may be called from any thread;
// Free takes no lock. The low-memory sink runs under the lock.
#ifndef QXCORE_HEAP_H
#define QXCORE_HEAP_H

#include <qxcore/unknown.h>

#include <cstddef>

class IHeap : public IQXUnknown {
public:
    // A zero-filled block. Never null: throws CXMemException.
    virtual void* Alloc(size_t size) = 0;
    // Frees a block of any heap. Answers what the system said; nobody needs to look at it.
    virtual int Free(void* block) = 0;
    // A new block with the old one's content. Always moves the block, within the heap that made it.
    // Copies min(newSize, old block with its header) - 8 bytes, so a block that shrinks, or grows
    // by fewer than 8 bytes, loses the last bytes of what would have fitted. REQUIRES: block is not
    // null, newSize >= 8.
    virtual void* Realloc(void* block, size_t newSize) = 0;
    // The usable size in bytes.
    virtual size_t GetSize(void* block) = 0;
    // The bytes the heap keeps before each block: 8.
    virtual size_t GetHeaderSize() = 0;

protected:
    ~IHeap() = default;
};
QX_DECLARE_TYPEID(IHeap, ".?AVIHeap@@");

// Asked when memory has run out, with the lock held; it may free memory, on this thread. It leaves
// alone the object whose operation asks for memory, and must not wait for a thread that allocates.
class ILowMemoryNotifySink {
public:
    // Non-zero asks for another try. `attempt` counts from 0 within one failing request.
    virtual int OnLowMemory(unsigned attempt) = 0;

protected:
    ~ILowMemoryNotifySink() = default;
};

// The next of four permanent heaps, in turn; `size` has no effect. Counting on a permanent heap
// does nothing.
QXCORE_API IHeap* Mem_DefaultHeap(size_t size);
// A private heap with one reference. All its blocks go with it; no destructor of what lies in them
// runs.
QXCORE_API IHeap* new_MemoryHeap(size_t size);
// Sets the process-wide sink, which is borrowed for good. A second call throws CXException code 10.
QXCORE_API void Mem_SetLowMemoryNotifySink(ILowMemoryNotifySink* sink);
// Bytes requested and operations made so far. Both only grow; neither tells the present use of
// memory.
QXCORE_API void Get_CoreActivity(size_t* bytes, unsigned* operations);
// For hosts; the library neither reads nor writes it.
extern "C" QXCORE_API int __core_activity;

#endif
