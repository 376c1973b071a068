#include "variant/value_block.h"

#include <qxcore/string.h>

#include <cassert>

namespace qx {

namespace {

// Empties the record and hands on what it owned: a record is empty before its value goes, so that
// an object that looks into it at its end finds nothing half-dead there.
template <class T>
T* Emptied(tagQXVARIANT* v, T* owned) {
    memset(v, 0, sizeof *v);
    return owned;
}

// REQUIRES: dest is empty. The new value is made before the record is written, so a failure leaves
// it empty.
void CopyInto(tagQXVARIANT* dest, const tagQXVARIANT* src) {
    assert(dest->type == QXVT_EMPTY);
    tagQXVARIANT copy = *src;
    switch (src->type) {
        case QXVT_STRING:
            copy.value.string = CopyText(src->value.string);
            break;
        case QXVT_BLOB:
            copy.value.blob.data = CopyBytes(src->value.blob.data, src->value.blob.size);
            break;
        case QXVT_UNKNOWN:
            WithReference(src->value.unknown);
            break;
    }
    *dest = copy;
}

}  // namespace

void ClearOwner(tagQXVARIANT* v) {
    assert(OwnsValue(v->type));
    switch (v->type) {
        case QXVT_STRING:
            FreeValue(Emptied(v, v->value.string));
            break;
        case QXVT_BLOB:
            FreeValue(Emptied(v, v->value.blob.data));
            break;
        case QXVT_UNKNOWN:
            if (IQXUnknown* object = Emptied(v, v->value.unknown)) object->Release();
            break;
    }
}

}  // namespace qx

void QXVariantInit(tagQXVARIANT* v) {
    memset(v, 0, sizeof *v);
}

void QXVariantClear(tagQXVARIANT* v) {
    qx::ClearVariant(v);
}

void QXVariantCopy(tagQXVARIANT* dest, const tagQXVARIANT* src) {
    qx::OldValue old(dest);
    qx::CopyInto(dest, src);
    old.LetGo();
}

CQXVariant::CQXVariant(const char* text) {
    InitPlain(QXVT_STRING, qx::CopyText(text), value.string);
}

CQXVariant::CQXVariant(const CXString& text) : CQXVariant(static_cast<const char*>(text)) {}

CQXVariant::CQXVariant(const tagQXBLOB& blob) {
    InitPlain(QXVT_BLOB, tagQXBLOB{blob.size, qx::CopyBytes(blob.data, blob.size)}, value.blob);
}

// The new value is made before the old one goes, so either may be part of the other.

CQXVariant& CQXVariant::operator=(const char* text) {
    CQXVariant made(text);
    Attach(made);
    return *this;
}

CQXVariant& CQXVariant::operator=(const CXString& text) {
    return *this = static_cast<const char*>(text);
}

CQXVariant& CQXVariant::operator=(IQXUnknown* object) {
    CQXVariant made(object);
    Attach(made);
    return *this;
}

CQXVariant& CQXVariant::operator=(const tagQXBLOB& blob) {
    CQXVariant made(blob);
    if (type == QXVT_BLOB) type = QXVT_EMPTY;  // the old block stays with whoever else knows it
    Attach(made);
    return *this;
}
