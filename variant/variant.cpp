#include "variant/value_block.h"

#include <qxcore/string.h>

namespace {

// The record is empty before its value goes, so whoever that calls finds no half-dead variant.
template <class T>
T* Emptied(tagQXVARIANT* v, T* owned) {
    memset(v, 0, sizeof *v);
    return owned;
}

}  // namespace

void QXVariantInit(tagQXVARIANT* v) {
    memset(v, 0, sizeof *v);
}

void QXVariantClear(tagQXVARIANT* v) {
    ClearVariant(v);
}

void ClearOwner(tagQXVARIANT* v) {
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

// The new value is made before the record is written, so a failure leaves the destination empty.
void QXVariantCopy(tagQXVARIANT* dest, const tagQXVARIANT* src) {
    ClearVariant(dest);
    switch (src->type) {
        case QXVT_STRING: {
            char* text = CopyText(src->value.string);
            *dest = *src;
            dest->value.string = text;
            break;
        }
        case QXVT_BLOB: {
            void* data = CopyBytes(src->value.blob.data, src->value.blob.size);
            *dest = *src;
            dest->value.blob.data = data;
            break;
        }
        case QXVT_UNKNOWN:
            WithReference(src->value.unknown);
            [[fallthrough]];
        default:
            *dest = *src;
    }
}

CQXVariant::CQXVariant(const char* text) {
    InitPlain(QXVT_STRING, CopyText(text), value.string);
}

CQXVariant::CQXVariant(const CXString& text) : CQXVariant(static_cast<const char*>(text)) {}

CQXVariant::CQXVariant(const tagQXBLOB& blob) {
    InitPlain(QXVT_BLOB, tagQXBLOB{blob.size, CopyBytes(blob.data, blob.size)}, value.blob);
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
