// Global new and delete of every module that includes a header of the library are the library's
// own.
//
// An import library gives each function alone, so a module could take one of them from here and its
// counterpart from the runtime. The references below make the linker take all of them from here,
// whichever the module's code names.
#ifndef QXCORE_NEW_DELETE_H
#define QXCORE_NEW_DELETE_H

// A linker of the Microsoft ABI looks into a named library before the runtime's, and needs no help.
#if defined(__GNUC__) && !defined(QXCORE_BUILDING)

#include <cstddef>
#include <new>

struct QXAllocationFunctions {
    void* (*newObject)(std::size_t) = &operator new;
    void* (*newArray)(std::size_t) = &operator new[];
    void* (*newObjectOrNull)(std::size_t, const std::nothrow_t&) noexcept = &operator new;
    void* (*newArrayOrNull)(std::size_t, const std::nothrow_t&) noexcept = &operator new[];
    void (*deleteObject)(void*) noexcept = &operator delete;
    void (*deleteArray)(void*) noexcept = &operator delete[];
    void (*deleteSizedObject)(void*, std::size_t) noexcept = &operator delete;
    void (*deleteSizedArray)(void*, std::size_t) noexcept = &operator delete[];
    void (*deleteUnmadeObject)(void*, const std::nothrow_t&) noexcept = &operator delete;
    void (*deleteUnmadeArray)(void*, const std::nothrow_t&) noexcept = &operator delete[];
};
[[gnu::used]] inline constexpr QXAllocationFunctions kQXAllocationFunctions;

#endif

#endif
