#include "storage/streams/memory_block.h"

#include <qxcore/exception.h>
#include <qxcore/heap.h>
#include <qxcore/platform.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <utility>

namespace qx {

void CMemoryBlock::FreeBytes::operator()(char* bytes) const {
    Mem_DefaultHeap(0)->Free(bytes);
}

CMemoryBlock::Bytes CMemoryBlock::Allocate(unsigned size) {
    return Bytes(static_cast<char*>(Mem_DefaultHeap(0)->Alloc(size)));
}

CMemoryBlock::Bytes CMemoryBlock::Install(Bytes bytes, unsigned size) {
    capacity = size;
    return std::exchange(data, std::move(bytes));
}

// Adds whole steps to what is there, at least as much as is needed: this is no rounding up of the
// need.
CMemoryBlock::Bytes CMemoryBlock::Grow(long long needed) {
    if (growth == 0)
        RaiseException(EXCEPTION_INT_DIVIDE_BY_ZERO, EXCEPTION_NONCONTINUABLE, 0, nullptr);
    if (needed > INT_MAX) throw CXMemException();
    long long grown = capacity + (needed / growth + 1) * growth;
    auto size = static_cast<unsigned>(std::min<long long>(grown, UINT_MAX));
    Bytes bytes = Allocate(size);
    if (used) memcpy(bytes.get(), data.get(), used);
    return Install(std::move(bytes), size);
}

void CMemoryBlock::Set(const void* bytes, unsigned size) {
    if (size > INT_MAX) throw CXMemException();
    Bytes copy = Allocate(size);
    if (bytes) memcpy(copy.get(), bytes, size);
    Bytes old = Install(std::move(copy), size);
    used = growth = size;
}

}  // namespace qx
