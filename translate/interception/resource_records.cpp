#include "translate/interception/resource_records.h"

#include "translate/resources/dialog_template.h"
#include "translate/interception/interception.h"
#include "translate/places/resource_key.h"
#include "translate/resources/string_table.h"

#include <qxcore/exception.h>

#include <algorithm>

constinit RecordBounds g_recordBounds;
constinit std::atomic<QX_RESITEM*> g_latestRecord = nullptr;

namespace {

constexpr uint32_t kMarker = 0xFFFFFFFF;
constexpr size_t kKeyOffset = sizeof(QX_RESITEM) - sizeof(QX_RESITEM::key);
static_assert(sizeof(QX_RESITEM) == 200);

constinit COList g_ResItems;

// The record that `matches`; null without one. No two records match.
template <class Matches>
QX_RESITEM* FindRecord(Matches matches) {
    QX_RESITEM* latest = g_latestRecord.load(std::memory_order_relaxed);
    if (latest && matches(latest)) return latest;
    QX_LISTITEM* item = g_ResItems.head;
    for (unsigned left = g_ResItems.count; left > 0; --left, item = item->next) {
        auto record = static_cast<QX_RESITEM*>(item);
        if (!matches(record)) continue;
        g_latestRecord.store(record, std::memory_order_relaxed);
        return record;
    }
    return nullptr;
}

int KeyKind(uint64_t type) {
    switch (type) {
        case kDialogType:
            return QXKEY_DIALOG;
        case kMenuType:
            return QXKEY_MENU;
        default:
            return QXKEY_STRINGS;
    }
}

QX_RESITEM* AddRecord(HRSRC handle, HMODULE module, const char* key, uint64_t type) {
    size_t keySize = strlen(key) + 1;
    auto memory = static_cast<char*>(
        LocalAlloc(LMEM_FIXED, std::max(sizeof(QX_RESITEM), kKeyOffset + keySize)));
    if (!memory) return nullptr;
    auto record = reinterpret_cast<QX_RESITEM*>(memory);
    record->marker = kMarker;
    record->type = type;
    record->module = module;
    record->handle = handle;
    record->loaded = nullptr;
    record->block = nullptr;
    record->size = 0;
    record->hash = *key ? HashResourceKey(key) : 0;
    memcpy(memory + kKeyOffset, key, keySize);
    g_ResItems.Append(record);
    g_latestRecord.store(record, std::memory_order_relaxed);
    auto address = reinterpret_cast<uintptr_t>(record);
    g_recordBounds.lowest = std::min(g_recordBounds.lowest, address);
    g_recordBounds.highest = std::max(g_recordBounds.highest, address);
    return record;
}

// Null when memory has run out: hosts that call the system's functions expect no exception.
void* LoadDialog(QX_RESITEM* record) {
    const void* resource = QX_REAL(LockResource)(record->loaded);
    if (!resource) return nullptr;
    TemplateBytes dialog = {static_cast<const uint8_t*>(resource), record->size};
    try {
        int size = 0;
        void* block = TranslateTemplatePosition(g_Wld, dialog, record->hash, &size, record->key);
        if (size) record->size = size;
        return block;
    } catch (CXMemException&) {
        return nullptr;
    }
}

void* LoadStringTable(QX_RESITEM* record) {
    const void* resource = QX_REAL(LockResource)(record->loaded);
    return resource ? TranslateStringTable(resource, record->size, record->key, &record->size)
                    : nullptr;
}

}  // namespace

HRSRC WrapResource(HRSRC handle, HMODULE module, const void* name, const void* type) {
    auto typeId = reinterpret_cast<uintptr_t>(type);
    if (!handle || (typeId != kDialogType && typeId != kMenuType && typeId != kStringTableType))
        return handle;
    QX_RESITEM* record =
        FindRecord([&](QX_RESITEM* r) { return r->handle == handle && r->module == module; });
    if (!record && name) {
        record = AddRecord(handle, module, ResourceKey(module, name, KeyKind(typeId)), typeId);
    } else if (!record) {
        record = AddRecord(handle, module, "", typeId);
    }
    return record ? reinterpret_cast<HRSRC>(record) : handle;
}

QX_RESITEM* SearchRecord(const void* handle) {
    if (!MayBeRecord(handle)) return nullptr;
    return FindRecord([&](QX_RESITEM* r) { return r == handle; });
}

HGLOBAL LoadRecord(QX_RESITEM* record) {
    if (record->block) return record->block;
    record->loaded = QX_REAL(LoadResource)(record->module, record->handle);
    record->size = QX_REAL(SizeofResource)(record->module, record->handle);
    if (!record->loaded) return nullptr;
    if (record->type == kMenuType) return nullptr;
    record->block = record->type == kDialogType ? LoadDialog(record) : LoadStringTable(record);
    return record->block ? record->block : record->loaded;
}

void FreeResourceRecords() {
    while (QX_LISTITEM* last = g_ResItems.tail) {
        g_ResItems.Unlink(last);
        LocalFree(last);
    }
    g_latestRecord = nullptr;
    g_recordBounds = {};
}
