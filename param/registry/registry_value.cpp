#include "param/registry/registry_value.h"

#include "variant/plain_width.h"

#include <qxcore/blob.h>

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <cstring>
#include <utility>

namespace qx {

namespace {

// The next bytes into a zeroed place; it keeps zeros where there are none.
void Take(Bytes& bytes, void* place, size_t width) {
    size_t there = std::min(width, bytes.size());
    if (there) memcpy(place, bytes.data(), there);
    bytes = bytes.subspan(there);
}

uint32_t Take32(Bytes& bytes) {
    uint32_t number = 0;
    Take(bytes, &number, sizeof number);
    return number;
}

tagQXBLOB TakeBlob(Bytes& bytes) {
    size_t size = Take32(bytes);
    QXBlob blob(static_cast<unsigned long>(std::min(size, bytes.size())));
    Take(bytes, blob.data, blob.size);
    tagQXBLOB taken = blob;
    blob.data = nullptr;
    return taken;
}

unsigned char* Put(unsigned char* at, const void* bytes, size_t size) {
    if (size) memcpy(at, bytes, size);
    return at + size;
}

unsigned char* Put32(unsigned char* at, uint32_t number) {
    return Put(at, &number, sizeof number);
}

// Null data has no bytes, whatever the size says.
uint32_t SizeOf(const tagQXBLOB& blob) {
    return blob.data ? blob.size : 0;
}

}  // namespace

bool HasBinaryForm(unsigned type) {
    return type <= QXVT_BLOB && type != QXVT_STRING;
}

bool ReadBinaryForm(Bytes bytes, tagQXVARIANT* out) {
    uint32_t type = Take32(bytes);
    if (!HasBinaryForm(type)) return false;
    if (type == QXVT_BLOB) {
        out->value.blob = TakeBlob(bytes);
    } else {
        Take(bytes, &out->value, PlainWidth(type));
    }
    out->type = static_cast<unsigned short>(type);
    return true;
}

size_t BinaryFormSize(const tagQXVARIANT& value) {
    assert(HasBinaryForm(value.type));
    constexpr size_t kCode = sizeof(uint32_t), kCount = sizeof(uint32_t);
    if (value.type == QXVT_BLOB) return kCode + kCount + SizeOf(value.value.blob);
    return kCode + PlainWidth(value.type);
}

void PutBinaryForm(const tagQXVARIANT& value, unsigned char* at) {
    assert(HasBinaryForm(value.type));
    at = Put32(at, value.type);
    if (value.type == QXVT_BLOB) {
        const tagQXBLOB& blob = value.value.blob;
        at = Put32(at, SizeOf(blob));
        Put(at, blob.data, SizeOf(blob));
    } else {
        Put(at, &value.value, PlainWidth(value.type));
    }
}

}  // namespace qx
