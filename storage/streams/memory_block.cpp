#include "storage/streams/memory_block.h"

#include <qxcore/exception.h>
#include <qxcore/heap.h>
#include <qxcore/platform.h>

#include <algorithm>
#include <climits>
#include <cstring>

char* CMemoryBlock::Allocate(unsigned size) {
    return static_cast<char*>(Mem_DefaultHeap(0)->Alloc(size));
}

void CMemoryBlock::Free(char* block) {
    if (block) Mem_DefaultHeap(0)->Free(block);
}

void CMemoryBlock::Install(char* block, unsigned size) {
    Free(data);
    data = block;
    capacity = size;
}

// Adds whole steps to what is there, at least as much as is needed: this is no rounding up of the
// need.
void CMemoryBlock::Grow(long long needed) {
    if (growth == 0)
        RaiseException(EXCEPTION_INT_DIVIDE_BY_ZERO, EXCEPTION_NONCONTINUABLE, 0, nullptr);
    if (needed > INT_MAX) throw CXMemException();
    long long grown = capacity + (needed / growth + 1) * growth;
    auto size = static_cast<unsigned>(std::min<long long>(grown, UINT_MAX));
    char* block = Allocate(size);
    if (used) memcpy(block, data, used);
    Install(block, size);
}

void CMemoryBlock::Set(const void* bytes, unsigned size) {
    if (size > INT_MAX) throw CXMemException();
    char* block = Allocate(size);
    if (bytes) memcpy(block, bytes, size);
    Install(block, size);
    used = growth = size;
}
