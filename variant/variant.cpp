#include "variant/value_block.h"

#include <qxcore/string.h>

void QXVariantInit(tagQXVARIANT* v) {
    memset(v, 0, sizeof *v);
}

void QXVariantClear(tagQXVARIANT* v) {
    ClearVariant(v);
}

void ReleaseValue(unsigned short type, const tagQXVALUE& value) {
    switch (type) {
        case QXVT_STRING:
            FreeValue(value.string);
            break;
        case QXVT_BLOB:
            FreeValue(value.blob.data);
            break;
        case QXVT_UNKNOWN:
            if (value.unknown) value.unknown->Release();
            break;
    }
}

void QXVariantCopy(tagQXVARIANT* dest, const tagQXVARIANT* src) {
    ClearVariant(dest);
    tagQXVARIANT copy = *src;
    switch (copy.type) {
        case QXVT_STRING:
            copy.value.string = CopyText(src->value.string);
            break;
        case QXVT_BLOB:
            copy.value.blob.data = CopyBytes(src->value.blob.data, src->value.blob.size);
            break;
        case QXVT_UNKNOWN:
            WithReference(copy.value.unknown);
            break;
    }
    *dest = copy;
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
