#include "translate/interception/resource_records.h"

#include "translate/interception/interception.h"
#include "translate/places/context_key.h"
#include "translate/resources/dialog_translation.h"
#include "translate/resources/string_translation.h"

#include <qxcore/exception.h>

#include <algorithm>
#include <new>

namespace qx {

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

// A resource as it was when its record was loaded, and the module that it was last seen in.
struct LoadedSource {
    void* bytes;
    size_t size;
    unsigned life;
};

// Of any length, unlike the field.
const char* KeyOf(const QX_RESITEM* record) {
    return reinterpret_cast<const char*>(record) + kKeyOffset;
}

size_t SourceOffset(size_t keySize) {
    size_t behindKey = std::max(sizeof(QX_RESITEM), kKeyOffset + keySize);
    return (behindKey + alignof(LoadedSource) - 1) / alignof(LoadedSource) * alignof(LoadedSource);
}

LoadedSource& SourceOf(QX_RESITEM* record) {
    char* memory = reinterpret_cast<char*>(record);
    return *reinterpret_cast<LoadedSource*>(memory + SourceOffset(strlen(KeyOf(record)) + 1));
}

QX_RESITEM* AddRecord(HRSRC handle, HMODULE module, const char* key, uint64_t type) {
    size_t keySize = strlen(key) + 1;
    size_t sourceOffset = SourceOffset(keySize);
    auto memory = static_cast<char*>(LocalAlloc(LMEM_FIXED, sourceOffset + sizeof(LoadedSource)));
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
    new (memory + sourceOffset) LoadedSource{};
    g_ResItems.Append(record);
    g_latestRecord.store(record, std::memory_order_relaxed);
    auto address = reinterpret_cast<uintptr_t>(record);
    g_recordBounds.lowest = std::min(g_recordBounds.lowest, address);
    g_recordBounds.highest = std::max(g_recordBounds.highest, address);
    return record;
}

// The bytes behind a real handle.
LoadedSource ResourceBytes(HMODULE module, HRSRC handle) {
    HGLOBAL loaded = QX_REAL(LoadResource)(module, handle);
    void* bytes = loaded ? QX_REAL(LockResource)(loaded) : nullptr;
    return {bytes, bytes ? QX_REAL(SizeofResource)(module, handle) : 0, 0};
}

// Keeps what a block was made from. Without memory nothing is kept, and the next find makes a new
// record.
void KeepSource(QX_RESITEM* record) {
    LoadedSource now = ResourceBytes(record->module, record->handle);
    void* copy = LocalAlloc(LMEM_FIXED, now.size + 1);
    if (copy) memcpy(copy, now.bytes, now.size);
    LoadedSource& source = SourceOf(record);
    source.bytes = copy;
    source.size = now.size;
}

bool HasSameBytes(QX_RESITEM* record) {
    if (!record->loaded) return true;
    const LoadedSource& then = SourceOf(record);
    LoadedSource now = ResourceBytes(record->module, record->handle);
    return then.bytes && then.size == now.size && !memcmp(then.bytes, now.bytes, now.size);
}

// Whether two names in keys may be spellings of one resource's name: the system tells no case,
// takes
// "#12" for 12, and of a wide name the key has the first letter only.
bool MayNameTheSame(const char* a, const char* b) {
    constexpr size_t kLetterAndEnd = 1 + 2;
    if (strlen(a) == kLetterAndEnd || strlen(b) == kLetterAndEnd)
        return *a == '#' || *b == '#' || !_strnicmp(a, b, 1);
    if (*a == '#') ++a;
    if (*b == '#') ++b;
    return !_stricmp(a, b);
}

// Whether a record with the handle and the module of a found resource is this resource's. Of
// another module at the same place it is not, unless that gives the same name to the same bytes,
// for which the same block is right.
bool IsStillOf(QX_RESITEM* record, ModuleName& module, const char* key) {
    const char* kept = KeyOf(record);
    if (!strcmp(kept, key)) return HasSameBytes(record);
    const char* name = module.Text();
    size_t place = name ? strlen(name) + strlen("#1#") : 0;
    return place && !strncmp(kept, key, place) && MayNameTheSame(kept + place, key + place) &&
           HasSameBytes(record);
}

// Null when memory has run out: hosts that call the system's functions expect no exception.
void* LoadDialog(QX_RESITEM* record, const Place& place) {
    const void* resource = QX_REAL(LockResource)(record->loaded);
    if (!resource) return nullptr;
    TemplateBytes dialog = {static_cast<const uint8_t*>(resource), record->size};
    try {
        int size = 0;
        void* block = TranslateTemplatePosition(g_Wld, dialog, record->hash, &size, place);
        if (size) record->size = size;
        return block;
    } catch (CXMemException&) {
        TellOf(place.call, nullptr, QXLOOKUP_NO_MEMORY);
        return nullptr;
    }
}

void* LoadStringTable(QX_RESITEM* record, const Place& place) {
    const void* resource = QX_REAL(LockResource)(record->loaded);
    return resource ? TranslateStringTable(resource, record->size, place, &record->size) : nullptr;
}

}  // namespace

HRSRC WrapResource(HRSRC handle, ModuleName& module, const void* name, const void* type) {
    auto typeId = reinterpret_cast<uintptr_t>(type);
    if (!handle || (typeId != kDialogType && typeId != kMenuType && typeId != kStringTableType))
        return handle;
    KeptLastError kept;
    HMODULE base = module.Module();
    QX_RESITEM* record =
        FindRecord([&](QX_RESITEM* r) { return r->handle == handle && r->module == base; });
    unsigned life = module.Life();
    if (record && life && SourceOf(record).life == life) return reinterpret_cast<HRSRC>(record);
    ResourceKey named(module, name, KeyKind(typeId));
    const char* key = name ? named : static_cast<const char*>("");
    if (!record || !IsStillOf(record, module, key)) {
        // A record of a module that is gone is not to be met again.
        if (record) record->handle = nullptr;
        record = AddRecord(handle, base, key, typeId);
        if (!record) return handle;
    }
    SourceOf(record).life = life;
    return reinterpret_cast<HRSRC>(record);
}

QX_RESITEM* SearchRecord(const void* handle) {
    if (!MayBeRecord(handle)) return nullptr;
    return FindRecord([&](QX_RESITEM* r) { return r == handle; });
}

HGLOBAL LoadRecord(QX_RESITEM* record, const char* function) {
    if (record->block) return record->block;
    record->loaded = QX_REAL(LoadResource)(record->module, record->handle);
    record->size = QX_REAL(SizeofResource)(record->module, record->handle);
    KeptLastError kept;
    if (!record->loaded) return nullptr;
    if (!ModuleName(record->module).IsProgram() && !SourceOf(record).bytes) KeepSource(record);
    const char* key = KeyOf(record);
    LookupCall call = {function, record->module, *key ? key : nullptr};
    Place place = {PlaceOfKey(key), IfObserved(call)};
    if (record->type == kMenuType) {
        TellOf(place.call, nullptr, QXLOOKUP_MENU);
        return nullptr;
    }
    void* block =
        record->type == kDialogType ? LoadDialog(record, place) : LoadStringTable(record, place);
    // An observer that loads the resource itself has made its block meanwhile.
    if (!record->block) record->block = block;
    return record->block ? record->block : record->loaded;
}

void FreeResourceRecords() {
    while (QX_LISTITEM* last = g_ResItems.tail) {
        g_ResItems.Unlink(last);
        LocalFree(SourceOf(static_cast<QX_RESITEM*>(last)).bytes);
        LocalFree(last);
    }
    g_latestRecord = nullptr;
    g_recordBounds = {};
}

}  // namespace qx
