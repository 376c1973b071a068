#include "param/memory/named_item.h"

#include "variant/value_block.h"

#include <cstring>
#include <new>

namespace qx {

namespace {

constexpr size_t kMostRoom = 256;

// The bytes that a text or a blob owns; null for the other types.
const void* DataOf(const tagQXVARIANT& value) {
    if (value.type == QXVT_STRING) return value.value.string;
    return value.type == QXVT_BLOB ? value.value.blob.data : nullptr;
}

size_t DataSize(const tagQXVARIANT& value) {
    return value.type == QXVT_STRING ? ScanLength(value.value.string) + 1 : value.value.blob.size;
}

void SetData(tagQXVARIANT& value, void* data) {
    if (value.type == QXVT_STRING) {
        value.value.string = static_cast<char*>(data);
    } else {
        value.value.blob.data = data;
    }
}

}  // namespace

NamedItem* NamedItem::Make(const char* name, unsigned hash, const tagQXVARIANT& value) {
    size_t nameSize = ScanLength(name) + 1, room = DataOf(value) ? DataSize(value) : 0;
    if (room > kMostRoom) room = 0;
    auto item = new (::operator new(sizeof(NamedItem) + nameSize + room)) NamedItem();
    item->hash = hash;
    item->nameSize = static_cast<unsigned>(nameSize);
    item->room = static_cast<unsigned short>(room);
    item->mayBePath = memchr(name, '\\', nameSize) != nullptr;
    memcpy(item + 1, name, nameSize);
    try {
        item->Take(value);
    } catch (...) {
        ::operator delete(item);
        throw;
    }
    return item;
}

bool NamedItem::IsBorrowable() const {
    return !OwnsValue(value.type) || DataOf(value) == Room();
}

// The room is not written to while a walk stands here, since it shows what lies there.
void NamedItem::Take(const tagQXVARIANT& with) {
    tagQXVARIANT fresh = with;
    if (const void* data = DataOf(with)) {
        size_t size = DataSize(with);
        void* place = size <= room && !walks ? Room() : AllocValue(size);
        SetData(fresh, memmove(place, data, size));
    } else if (with.type == QXVT_UNKNOWN) {
        WithReference(with.value.unknown);
    }
    value = fresh;
}

void NamedItem::Replace(const tagQXVARIANT& with) {
    tagQXVARIANT old = value;
    Take(with);
    End(old);
}

void NamedItem::EndValue() {
    tagQXVARIANT old = std::exchange(value, tagQXVARIANT());
    End(old);
}

void NamedItem::End(tagQXVARIANT& old) const {
    if (OwnsValue(old.type) && DataOf(old) != Room()) ClearOwner(&old);
}

EndingItems::~EndingItems() {
    while (m_first) {
        try {
            End();
        } catch (...) {
        }
    }
}

void EndingItems::End() {
    while (NamedItem* item = m_first) {
        m_first = item->behind;
        item->stored = false;
        tagQXVARIANT value = item->value;
        bool isOwner = !item->IsBorrowable();
        item->value = {};
        item->FreeIfUnknown();
        if (isOwner) ClearOwner(&value);
    }
}

}  // namespace qx
