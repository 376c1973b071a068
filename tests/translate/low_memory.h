// Memory that a memory path can name: such a path holds 31 bits of the address.
#ifndef QXCORE_TESTS_TRANSLATE_LOW_MEMORY_H
#define QXCORE_TESTS_TRANSLATE_LOW_MEMORY_H

#include <qxcore/platform.h>

#include <string>

class LowMemory {
public:
    // The unreadable bytes stand behind the readable ones. Data() is null when there was no room.
    explicit LowMemory(size_t readable, size_t unreadable = 0) {
        for (UINT_PTR at = 0x10000000; !m_block && at < 0x70000000; at += 0x10000) {
            m_block = static_cast<char*>(VirtualAlloc(
                reinterpret_cast<void*>(at), readable + unreadable, MEM_RESERVE, PAGE_NOACCESS));
        }
        if (m_block) VirtualAlloc(m_block, readable, MEM_COMMIT, PAGE_READWRITE);
    }
    LowMemory(const LowMemory&) = delete;
    LowMemory& operator=(const LowMemory&) = delete;
    ~LowMemory() { VirtualFree(m_block, 0, MEM_RELEASE); }

    char* Data() const { return m_block; }
    // Of the `size` bytes at `offset`.
    std::string Path(size_t size, size_t offset = 0) const {
        return "fmem::" + std::to_string(reinterpret_cast<UINT_PTR>(m_block) + offset) + "," +
               std::to_string(size);
    }

private:
    char* m_block = nullptr;
};

#endif
