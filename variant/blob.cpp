#include "variant/value_block.h"

QXBlob::QXBlob(unsigned long size) : tagQXBLOB{size, AllocValue(size)} {}

QXBlob::QXBlob(const tagQXBLOB* source)
    : tagQXBLOB{source->size, CopyBytes(source->data, source->size)} {}

void QXBlob::Clear() {
    void* old = data;
    size = 0;
    data = nullptr;
    FreeValue(old);
}

QXBlob& QXBlob::operator=(const tagQXBLOB* source) {
    if (size || data) Clear();
    data = CopyBytes(source->data, source->size);
    size = source->size;
    return *this;
}

bool QXBlob::operator==(const tagQXBLOB* other) const {
    return SameBytes(*this, *other);
}
