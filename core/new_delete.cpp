// The global allocation functions of every module that links the library.
//
// A block of `new` carries two heap words: that of the heap's Alloc, and its own right before the
// caller's bytes. The tag there says who frees it: -1 the runtime, 0 the default heap, anything
// else that heap.
#include "core/memory_manager.h"
#include "core/runtime_block.h"

#include <new>

namespace qx {

namespace {

void* Allocate(size_t size) {
    if (size > SIZE_MAX - kTagSize) throw CXMemException();
    MemoryLock lock;
    CHeap* heap = g_memory.NextHeapLocked();
    auto tag = static_cast<IHeap**>(heap->AllocLocked(size + kTagSize));
    *tag = heap;
    return tag + 1;
}

void* AllocateOrNull(size_t size) noexcept {
    try {
        return Allocate(size);
    } catch (...) {  // memory has run out, or the low-memory sink throws what it likes
        return nullptr;
    }
}

void Deallocate(void* block) noexcept {
    if (!block) return;
    auto tag = static_cast<intptr_t*>(block) - 1;
    if (*tag == kRuntimeTag) {
        free(tag);
    } else if (*tag == 0) {
        Mem_DefaultHeap(0)->Free(tag);
    } else {
        reinterpret_cast<IHeap*>(*tag)->Free(tag);
    }
}

}  // namespace

}  // namespace qx

// A compiler of the Microsoft ABI declares these operators itself, before any attribute of ours, so
// there the linker is told to export them, by their decorated names.
#if defined(_MSC_VER)
#define QXCORE_OPERATOR_API
#pragma comment(linker, "/EXPORT:??2@YAPEAX_K@Z")
#pragma comment(linker, "/EXPORT:??_U@YAPEAX_K@Z")
#pragma comment(linker, "/EXPORT:??2@YAPEAX_KAEBUnothrow_t@std@@@Z")
#pragma comment(linker, "/EXPORT:??_U@YAPEAX_KAEBUnothrow_t@std@@@Z")
#pragma comment(linker, "/EXPORT:??3@YAXPEAX@Z")
#pragma comment(linker, "/EXPORT:??_V@YAXPEAX@Z")
#pragma comment(linker, "/EXPORT:??3@YAXPEAX_K@Z")
#pragma comment(linker, "/EXPORT:??_V@YAXPEAX_K@Z")
#pragma comment(linker, "/EXPORT:??3@YAXPEAXAEBUnothrow_t@std@@@Z")
#pragma comment(linker, "/EXPORT:??_V@YAXPEAXAEBUnothrow_t@std@@@Z")
#else
#define QXCORE_OPERATOR_API QXCORE_API
#endif

QXCORE_OPERATOR_API void* operator new(size_t size) {
    return qx::Allocate(size);
}
QXCORE_OPERATOR_API void* operator new[](size_t size) {
    return qx::Allocate(size);
}
QXCORE_OPERATOR_API void* operator new(size_t size, const std::nothrow_t&) noexcept {
    return qx::AllocateOrNull(size);
}
QXCORE_OPERATOR_API void* operator new[](size_t size, const std::nothrow_t&) noexcept {
    return qx::AllocateOrNull(size);
}
QXCORE_OPERATOR_API void operator delete(void* block) noexcept {
    qx::Deallocate(block);
}
QXCORE_OPERATOR_API void operator delete[](void* block) noexcept {
    qx::Deallocate(block);
}
QXCORE_OPERATOR_API void operator delete(void* block, size_t) noexcept {
    qx::Deallocate(block);
}
QXCORE_OPERATOR_API void operator delete[](void* block, size_t) noexcept {
    qx::Deallocate(block);
}
QXCORE_OPERATOR_API void operator delete(void* block, const std::nothrow_t&) noexcept {
    qx::Deallocate(block);
}
QXCORE_OPERATOR_API void operator delete[](void* block, const std::nothrow_t&) noexcept {
    qx::Deallocate(block);
}
