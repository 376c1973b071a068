#include "variant/plain_width.h"
#include "variant/value_block.h"

#include <cstdint>

namespace qx {

namespace {

// The bytes that a variable shares with the value area; text and objects are owned, not shared. A
// blob variable borrows the size and the pointer.
constexpr size_t SharedWidth(unsigned short type) {
    return type == QXVT_BLOB ? sizeof(tagQXBLOB) : static_cast<size_t>(PlainWidth(type));
}

bool IsPointer(unsigned short type) {
    return type == QXVT_STRING || type == QXVT_UNKNOWN;
}

bool CanBind(unsigned short type) {
    return type >= QXVT_BOOL && type <= QXVT_UNKNOWN;
}

// The new text or reference is taken before the old one goes, so both may be the same.

void StoreText(char*& variable, const char* text) {
    char* old = variable;
    variable = CopyText(text);
    FreeValue(old);
}

void StoreObject(IQXUnknown*& variable, IQXUnknown* object) {
    IQXUnknown* old = variable;
    variable = WithReference(object);
    if (old) old->Release();
}

tagQXVALUE LoadValue(unsigned short type, const void* variable) {
    tagQXVALUE loaded;
    memset(&loaded, 0, sizeof loaded);
    switch (type) {
        case QXVT_STRING:
            loaded.string = CopyText(*static_cast<const char* const*>(variable));
            break;
        case QXVT_UNKNOWN:
            loaded.unknown = WithReference(*static_cast<IQXUnknown* const*>(variable));
            break;
        default:
            memcpy(&loaded, variable, SharedWidth(type));
    }
    return loaded;
}

// Whether a variable of this type touches the record.
bool LiesIn(const tagQXVARIANT* v, const void* variable, unsigned short type) {
    size_t width = IsPointer(type) ? sizeof(void*) : SharedWidth(type);
    auto begin = reinterpret_cast<uintptr_t>(variable), record = reinterpret_cast<uintptr_t>(v);
    return begin < record + sizeof *v && begin + width > record;
}

// A block that is handed over to the variant that has it already is not freed before.
void KeepBlock(tagQXVARIANT* v, const void* handedOver) {
    if (v->type == QXVT_BLOB && v->value.blob.data == handedOver) v->value.blob.data = nullptr;
}

}  // namespace

}  // namespace qx

int QXVariantBindToValue(unsigned short type, void* value, const tagQXVARIANT* v) {
    if (!qx::CanBind(type)) return 0;
    switch (type) {
        case QXVT_STRING:
            qx::StoreText(*static_cast<char**>(value), v->value.string);
            break;
        case QXVT_UNKNOWN:
            qx::StoreObject(*static_cast<IQXUnknown**>(value), v->value.unknown);
            break;
        default:
            memcpy(value, &v->value, qx::SharedWidth(type));
    }
    return 1;
}

int QXVariantBindFromValue(unsigned short type, void* value, tagQXVARIANT* v) {
    if (!qx::CanBind(type) || qx::LiesIn(v, value, type)) {
        // There is nothing to load, or nothing but the zeros that clearing leaves.
        qx::ClearVariant(v);
        v->type = type;
        return qx::CanBind(type);
    }
    tagQXVALUE loaded = qx::LoadValue(type, value);
    if (type == QXVT_BLOB) qx::KeepBlock(v, loaded.blob.data);
    qx::OldValue old(v);
    v->type = type;
    v->value = loaded;
    old.LetGo();
    return 1;
}
