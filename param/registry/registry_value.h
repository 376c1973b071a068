// Values as the registry holds them. A string is a REG_SZ value. Every other type is a REG_BINARY
// value: its code in 32 bits, then the value area; a blob has the count of its bytes in 32 bits
// before them. An object has no such form.
#ifndef QXCORE_PARAM_REGISTRY_REGISTRY_VALUE_H
#define QXCORE_PARAM_REGISTRY_REGISTRY_VALUE_H

#include "variant/value_block.h"

#include <qxcore/variant.h>

#include <memory>
#include <span>

namespace qx {

using Bytes = std::span<const unsigned char>;

struct FreeValueBlock {
    void operator()(void* block) const { FreeValue(block); }
};

// A value on its way to or from the registry. One that is short, as most are, needs no memory of
// the heap.
class ValueBytes {
public:
    explicit ValueBytes(size_t size) : m_size(size) {
        if (size > sizeof m_near) m_far.reset(static_cast<unsigned char*>(AllocValue(size)));
    }
    ValueBytes(const ValueBytes&) = delete;
    ValueBytes& operator=(const ValueBytes&) = delete;

    unsigned char* Data() { return m_far ? m_far.get() : m_near; }
    size_t Size() const { return m_size; }

private:
    size_t m_size;
    std::unique_ptr<unsigned char[], FreeValueBlock> m_far;
    unsigned char m_near[128];
};

// Whether a type has the binary form.
bool HasBinaryForm(unsigned type);

// Makes `out`, which is empty, from the binary form. Whoever wrote the bytes, they may be of any
// length: what is missing reads as zero, and a blob has the bytes that are there. False for a type
// without the form.
bool ReadBinaryForm(Bytes bytes, tagQXVARIANT* out);

// REQUIRES of both: HasBinaryForm(value.type).
size_t BinaryFormSize(const tagQXVARIANT& value);
// Writes as many bytes to `at`.
void PutBinaryForm(const tagQXVARIANT& value, unsigned char* at);

}  // namespace qx

#endif
