#include "translate/interception/interception.h"
#include "translate/interception/module_lists.h"
#include "translate/interception/resource_records.h"

#include <qxcore/export.h>

namespace qx {

namespace {

// Reads what would be a record's marker, so that a host that frees null faults instead of going on.
// The volatile address keeps compilers from judging it.
void FaultAtMarker(HGLOBAL null) {
    volatile uintptr_t address = reinterpret_cast<uintptr_t>(null) + sizeof(QX_LISTITEM);
    static_cast<void>(*reinterpret_cast<const volatile uint32_t*>(address));
}

// What a find call wrapped was translated then, and its module keeps its name: only the switch and
// the modules that Supp_Init excludes can have changed.
bool IsRecordActive(const QX_RESITEM* record, HMODULE module) {
    if (record->module != module) return IsTranslationActive(module);
    return IsSwitchedOn() && (!module || !IsListedExclusion(module));
}

// The find calls hand out records.
template <class Function, class Name>
HRSRC FindTranslated(Function* real, HMODULE module, const Name* name, const Name* type) {
    ModuleName moduleName(module);
    if (!IsTranslationActive(moduleName)) return real(module, name, type);
    return WrapResource(real(module, name, type), moduleName, name, type);
}

// The two Ex functions hand type and name on in exchanged places when nothing is translated, so a
// caller in an excluded module finds a resource only by naming it the wrong way round.
template <class Function, class Name>
HRSRC FindTranslatedEx(Function* real, HMODULE module, const Name* type, const Name* name,
                       WORD language) {
    ModuleName moduleName(module);
    if (!IsTranslationActive(moduleName)) return real(module, name, type, language);
    return WrapResource(real(module, type, name, language), moduleName, name, type);
}

// Apart, so that the way to the system for handles of its own is short.
QXCORE_NOINLINE HGLOBAL LoadAny(HMODULE module, HRSRC resource) {
    QX_RESITEM* record = RecordOf(resource);
    if (!record || !IsRecordActive(record, module)) return QX_REAL(LoadResource)(module, resource);
    return LoadRecord(record, QX_CALL(LoadResource, module).function);
}

QXCORE_NOINLINE DWORD SizeOfAny(HMODULE module, HRSRC resource) {
    QX_RESITEM* record = RecordOf(resource);
    if (!record || !IsRecordActive(record, module))
        return QX_REAL(SizeofResource)(module, resource);
    return record->size;
}

}  // namespace

HRSRC WINAPI NewFindResourceA(HMODULE module, const char* name, const char* type) {
    return FindTranslated(QX_REAL(FindResourceA), module, name, type);
}

HRSRC WINAPI NewFindResourceW(HMODULE module, const wchar_t* name, const wchar_t* type) {
    return FindTranslated(QX_REAL(FindResourceW), module, name, type);
}

HRSRC WINAPI NewFindResourceExA(HMODULE module, const char* type, const char* name, WORD language) {
    return FindTranslatedEx(QX_REAL(FindResourceExA), module, type, name, language);
}

HRSRC WINAPI NewFindResourceExW(HMODULE module, const wchar_t* type, const wchar_t* name,
                                WORD language) {
    return FindTranslatedEx(QX_REAL(FindResourceExW), module, type, name, language);
}

HGLOBAL WINAPI NewLoadResource(HMODULE module, HRSRC resource) {
    return MayBeRecord(resource) ? LoadAny(module, resource)
                                 : QX_REAL(LoadResource)(module, resource);
}

// What LoadResource gave is the block already.
void* WINAPI NewLockResource(HGLOBAL loaded) {
    return IsTranslationActive(loaded) ? loaded : QX_REAL(LockResource)(loaded);
}

// The system frees no resource, so neither a record nor a block is freed by it. Null is read like a
// record.
BOOL WINAPI NewFreeResource(HGLOBAL loaded) {
    if (!loaded && IsTranslationActive(loaded)) FaultAtMarker(loaded);
    return QX_REAL(FreeResource)(loaded);
}

DWORD WINAPI NewSizeofResource(HMODULE module, HRSRC resource) {
    return MayBeRecord(resource) ? SizeOfAny(module, resource)
                                 : QX_REAL(SizeofResource)(module, resource);
}

}  // namespace qx
