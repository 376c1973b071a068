// The memory of a loaded image, read with checks, so that a broken image ends a walk and not the
// process.
#ifndef QXCORE_TRANSLATE_INTERCEPTION_IMAGE_MEMORY_H
#define QXCORE_TRANSLATE_INTERCEPTION_IMAGE_MEMORY_H

#include <qxcore/platform.h>

#include <cstdint>
#include <cstring>

namespace qx {

class ImageMemory {
public:
    explicit ImageMemory(void* base) : m_base(reinterpret_cast<uintptr_t>(base)) {
        MEMORY_BASIC_INFORMATION info;
        if (VirtualQuery(base, &info, sizeof info)) m_allocation = info.AllocationBase;
    }

    // The value at an offset from the base; false where the image's allocation has no readable
    // memory.
    template <class T>
    bool Read(int64_t offset, T* value) {
        uintptr_t at = m_base + static_cast<uintptr_t>(offset);
        if (!Covers(at, sizeof(T))) return false;
        memcpy(value, reinterpret_cast<const void*>(at), sizeof(T));
        return true;
    }

    void* At(int64_t offset) const {
        return reinterpret_cast<void*>(m_base + static_cast<uintptr_t>(offset));
    }

private:
    // The regions that the system reports are long, so the one asked for last answers nearly every
    // question.
    bool Covers(uintptr_t at, size_t size) {
        return (Holds(at) || Find(at)) && (Holds(at + size - 1) || Find(at + size - 1));
    }
    bool Holds(uintptr_t at) const { return at >= m_begin && at < m_end; }
    bool Find(uintptr_t at) {
        MEMORY_BASIC_INFORMATION info;
        if (!VirtualQuery(reinterpret_cast<const void*>(at), &info, sizeof info)) return false;
        if (info.AllocationBase != m_allocation || info.State != MEM_COMMIT ||
            !IsReadable(info.Protect))
            return false;
        m_begin = reinterpret_cast<uintptr_t>(info.BaseAddress);
        m_end = m_begin + info.RegionSize;
        return true;
    }
    static bool IsReadable(DWORD protection) {
        constexpr DWORD kReadable = PAGE_READONLY | PAGE_READWRITE | PAGE_WRITECOPY |
                                    PAGE_EXECUTE_READ | PAGE_EXECUTE_READWRITE |
                                    PAGE_EXECUTE_WRITECOPY;
        return (protection & kReadable) != 0 && (protection & PAGE_GUARD) == 0;
    }

    uintptr_t m_base;
    void* m_allocation = nullptr;
    uintptr_t m_begin = 0;  // the region found last
    uintptr_t m_end = 0;
};

}  // namespace qx

#endif
