#include "core/runtime_block.h"

#include <qxcore/typeid.h>

#include <cstddef>
#include <cstring>
#include <memory>

namespace qx {

namespace {

constinit COList g_items;

_TI_Item* ItemOf(QX_LISTITEM* link) {
    return reinterpret_cast<_TI_Item*>(reinterpret_cast<char*>(link) - offsetof(_TI_Item, link));
}

// The newest name is tried first.
_TI_Item* FindItem(const char* name) {
    QX_LISTITEM* link = g_items.tail;
    if (!link) return nullptr;
    for (;; link = link->prev) {
        if (strcmp(ItemOf(link)->name, name) == 0) return ItemOf(link);
        if (link == g_items.head) return nullptr;
    }
}

struct FreesRuntimeBlock {
    void operator()(void* block) const { FreeRuntimeBlock(block); }
};

_TI_Item* AddItem(const char* name) {
    size_t bytes = strlen(name) + 1;
    std::unique_ptr<char, FreesRuntimeBlock> copy(static_cast<char*>(AllocRuntimeBlock(bytes)));
    auto item = static_cast<_TI_Item*>(AllocRuntimeBlock(sizeof(_TI_Item)));
    item->name = static_cast<char*>(memcpy(copy.release(), name, bytes));
    g_items.Append(&item->link);
    return item;
}

}  // namespace

}  // namespace qx

_TI_Item* __find_ti_item(const char* name) {
    _TI_Item* item = qx::FindItem(name);
    return item ? item : qx::AddItem(name);
}
