// The bytes of a memory stream: a block of the default heap that grows in steps and never shrinks.
#ifndef QXCORE_STORAGE_STREAMS_MEMORY_BLOCK_H
#define QXCORE_STORAGE_STREAMS_MEMORY_BLOCK_H

#include <memory>

namespace qx {

class CMemoryBlock {
    struct FreeBytes {
        void operator()(char* bytes) const;
    };

public:
    using Bytes = std::unique_ptr<char, FreeBytes>;

    bool Holds(long long bytes) const { return bytes <= capacity; }
    // Makes room for more bytes than it holds, and answers the old ones, which the caller may still
    // have a pointer into. Beyond 2 GB throws CXMemException; a growth of 0 divides by zero.
    [[nodiscard]] Bytes Grow(long long needed);
    // Replaces the bytes by a copy, or by zeros for null, and lets the block grow in steps of its
    // size from then on.
    void Set(const void* bytes, unsigned size);

    Bytes data;
    unsigned capacity = 0;
    unsigned used = 0;
    unsigned growth = 4096;

private:
    // Answers the old bytes.
    Bytes Install(Bytes bytes, unsigned size);
    static Bytes Allocate(unsigned size);
};

}  // namespace qx

#endif
