// The records that stand for resources of patched modules: what a find call answers in place of the
// real handle.
#ifndef QXCORE_TRANSLATE_INTERCEPTION_RESOURCE_RECORDS_H
#define QXCORE_TRANSLATE_INTERCEPTION_RESOURCE_RECORDS_H

#include "translate/places/module_name.h"

#include <qxcore/listitem.h>
#include <qxcore/platform.h>

#include <atomic>
#include <cstdint>

namespace qx {

// The resource types that get a record.
enum : uint64_t { kMenuType = 4, kDialogType = 5, kStringTableType = 6 };

struct QX_RESITEM : QX_LISTITEM {
    uint32_t marker;  // 0xFFFFFFFF
    uint64_t type;
    HMODULE module;
    HRSRC handle;    // the real one
    HGLOBAL loaded;  // the real one, after the first load
    void* block;     // the translated resource; null until built
    uint32_t size;   // of the block, in bytes
    int32_t hash;    // HashResourceKey of the key; 0 without a name
    // Empty without a name; a longer key makes a longer record. Behind it stands the resource that
    // the block was made from.
    char key[128];
};

// The record of a found resource, one for each real handle and module. A null handle, and the
// handle of any other type, comes back as it is. A wide name is taken as the bytes it consists of.
//
// A record stays when its module goes, but it speaks for that module only: a module that comes to
// the same address gets records of its own where its name or its resources are others.
HRSRC WrapResource(HRSRC handle, ModuleName& module, const void* name, const void* type);

// The one found last: hosts find, measure and load one resource after the other. Threads that only
// look records up may do so side by side, each with what it has read here once.
extern std::atomic<QX_RESITEM*> g_latestRecord;
QX_RESITEM* SearchRecord(const void* handle);

// The record behind a handle, or null for any other handle.
inline QX_RESITEM* RecordOf(const void* handle) {
    QX_RESITEM* latest = g_latestRecord.load(std::memory_order_relaxed);
    return handle == latest ? latest : SearchRecord(handle);
}

// Bounds of the records' addresses, so that nearly all handles of others are told by two
// comparisons.
struct RecordBounds {
    uintptr_t lowest = UINTPTR_MAX;
    uintptr_t highest = 0;
};
extern RecordBounds g_recordBounds;

inline bool MayBeRecord(const void* handle) {
    auto address = reinterpret_cast<uintptr_t>(handle);
    return address >= g_recordBounds.lowest && address <= g_recordBounds.highest;
}

// The translated block of a record, built at the first call; the real block where there is nothing
// to translate; null for a menu, whose texts are translated when the system has made it. The
// observer hears of the intercepted function of this name.
HGLOBAL LoadRecord(QX_RESITEM* record, const char* function);

// Frees all records. Their blocks stay, since a host may hold them.
void FreeResourceRecords();

}  // namespace qx

#endif
