#include "variant/value_block.h"

#include <utility>

QXBlob::QXBlob(unsigned long size) : tagQXBLOB{size, qx::AllocValue(size)} {}

QXBlob::QXBlob(const tagQXBLOB* source)
    : tagQXBLOB{source->size, qx::CopyBytes(source->data, source->size)} {}

void QXBlob::Clear() {
    void* old = data;
    size = 0;
    data = nullptr;
    qx::FreeValue(old);
}

QXBlob& QXBlob::operator=(const tagQXBLOB* source) {
    QXBlob old;  // goes last, since the source may lie in it
    std::swap<tagQXBLOB>(old, *this);
    data = qx::CopyBytes(source->data, source->size);
    size = source->size;
    return *this;
}

bool QXBlob::operator==(const tagQXBLOB* other) const {
    return qx::SameBytes(*this, *other);
}
