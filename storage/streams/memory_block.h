// The bytes of a memory stream: a block of the default heap that grows in steps and never shrinks.
#ifndef QXCORE_STORAGE_STREAMS_MEMORY_BLOCK_H
#define QXCORE_STORAGE_STREAMS_MEMORY_BLOCK_H

class CMemoryBlock {
public:
    CMemoryBlock() = default;
    ~CMemoryBlock() { Free(data); }
    CMemoryBlock(const CMemoryBlock&) = delete;
    CMemoryBlock& operator=(const CMemoryBlock&) = delete;

    bool Holds(long long bytes) const { return bytes <= capacity; }
    // Makes room for more bytes than it holds. Beyond 2 GB throws CXMemException; a growth of 0
    // divides by zero.
    void Grow(long long needed);
    // Replaces the bytes by a copy, or by zeros for null, and lets the block grow in steps of its
    // size from then on.
    void Set(const void* bytes, unsigned size);

    char* data = nullptr;
    unsigned capacity = 0;
    unsigned used = 0;
    unsigned growth = 4096;

private:
    void Install(char* block, unsigned size);
    static char* Allocate(unsigned size);
    static void Free(char* block);
};

#endif
