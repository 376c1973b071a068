// Input that ends where memory ends, so that the first byte read behind it faults.
#ifndef QXCORE_TESTS_FUZZ_GUARDED_BYTES_H
#define QXCORE_TESTS_FUZZ_GUARDED_BYTES_H

#include <qxcore/platform.h>

#include <cstdint>
#include <cstring>
#include <string>

class GuardedBytes {
public:
    explicit GuardedBytes(size_t capacity) {
        constexpr size_t kPage = 4096;
        size_t size = (capacity + kPage - 1) / kPage * kPage;
        region =
            static_cast<uint8_t*>(VirtualAlloc(nullptr, size + kPage, MEM_RESERVE, PAGE_NOACCESS));
        VirtualAlloc(region, size, MEM_COMMIT, PAGE_READWRITE);
        end = region + size;
    }
    ~GuardedBytes() { VirtualFree(region, 0, MEM_RELEASE); }
    GuardedBytes(const GuardedBytes&) = delete;
    GuardedBytes& operator=(const GuardedBytes&) = delete;

    // Where the bytes stand now. They must not be longer than the capacity.
    uint8_t* Place(const std::string& bytes) {
        uint8_t* start = end - bytes.size();
        memcpy(start, bytes.data(), bytes.size());
        return start;
    }

private:
    uint8_t* region;
    uint8_t* end;
};

#endif
