// Owners of what the file layer takes from the operating system.
#ifndef QXCORE_FILE_PLATFORM_HANDLES_H
#define QXCORE_FILE_PLATFORM_HANDLES_H

#include <qxcore/platform.h>

#include <cassert>
#include <utility>

namespace qx {

// A kernel handle. Both of the platform's spellings of "none" become null.
class KernelHandle {
public:
    KernelHandle() = default;
    explicit KernelHandle(HANDLE handle)
        : m_handle(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
    KernelHandle(KernelHandle&& other) noexcept
        : m_handle(std::exchange(other.m_handle, nullptr)) {}
    KernelHandle& operator=(KernelHandle&& other) noexcept {
        std::swap(m_handle, other.m_handle);
        return *this;
    }
    ~KernelHandle() { Close(); }

    explicit operator bool() const { return m_handle != nullptr; }
    HANDLE Get() const { return m_handle; }
    // True when there was nothing to close.
    bool Close() {
        HANDLE handle = std::exchange(m_handle, nullptr);
        return !handle || CloseHandle(handle);
    }

private:
    HANDLE m_handle = nullptr;
};

// A mapped part of a file.
class MappedView {
public:
    MappedView() = default;
    MappedView(const MappedView&) = delete;
    MappedView& operator=(const MappedView&) = delete;
    ~MappedView() { Unmap(); }

    explicit operator bool() const { return m_base != nullptr; }
    unsigned char* Base() const { return m_base; }
    // REQUIRES: nothing is mapped.
    bool Map(const KernelHandle& mapping, DWORD access, unsigned long long offset, size_t length) {
        assert(!m_base);
        m_base = static_cast<unsigned char*>(
            MapViewOfFile(mapping.Get(), access, DWORD(offset >> 32), DWORD(offset), length));
        return m_base != nullptr;
    }
    // True when there was nothing to unmap.
    bool Unmap() {
        void* base = std::exchange(m_base, nullptr);
        return !base || UnmapViewOfFile(base);
    }

private:
    unsigned char* m_base = nullptr;
};

}  // namespace qx

#endif
