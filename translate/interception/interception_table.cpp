#include "translate/interception/interception.h"

#include "core/module_handle.h"
#include "translate/interception/import_table.h"
#include "translate/interception/module_lists.h"
#include "translate/interception/resource_records.h"

#include <qxcore/dictionary.h>

#include <algorithm>
#include <cassert>
#include <cstdio>
#include <iterator>

namespace qx {

constinit std::atomic<void*> g_RealProcs[kInterceptedCount] = {};

namespace {

constexpr int kPathSize = 2048;

#define QX_ROW(dll, function) {dll, #function, reinterpret_cast<void*>(&New##function), nullptr},
const ImportExchange kInterceptions[] = {QX_EACH_INTERCEPTED(QX_ROW)};
#undef QX_ROW

struct InterceptedImports {
    ImportExchange rows[kInterceptedCount];
    InterceptedImports() { std::copy(std::begin(kInterceptions), std::end(kInterceptions), rows); }
};

void TellModule(HMODULE module) {
    char path[kPathSize] = "";
    char line[kPathSize + 32];
    GetModuleFileNameA(module, path, kPathSize - 1);
    snprintf(line, sizeof line, "-----wld init: %s\n", path);
    OutputDebugStringA(line);
}

// By a slot that was exchanged. One that was patched before has its mark.
void MarkPatched(HMODULE module, const InterceptedImports& imports) {
    for (const ImportExchange& row : imports.rows) {
        if (!row.slot) continue;
        ModuleName name(module);
        if (name.Text()) MarkModule(module, name.Text(), row.slot, row.replacement);
        return;
    }
}

void UnpatchListedModules() {
    LoadedModules loaded;
    for (const char* name : g_aPatchModules) {
        if (HMODULE module = loaded.Find(name)) UnpatchModule(module);
    }
    for (ListedModule& extra : g_aExtraModules) {
        if (extra.IsFound()) UnpatchModule(extra.module);
    }
}

}  // namespace

void PatchModule(HMODULE module) {
    assert(module);
    RefreshExtraModules();
    TellModule(module);
    // The library's own imports are its way to the real functions.
    if (module == OwnModule()) return;
    // The mark of a module that is gone is not to be found again in the slots of this one.
    if (!ModuleName(module).Life()) UnmarkModule(module);
    InterceptedImports imports;
    ExchangeImports(module, ImportWay::Patch, imports.rows, kInterceptedCount);
    for (int i = 0; i < kInterceptedCount; ++i) g_RealProcs[i] = imports.rows[i].result;
    MarkPatched(module, imports);
}

void UnpatchModule(HMODULE module) {
    assert(module);
    UnmarkModule(module);
    InterceptedImports imports;
    ExchangeImports(module, ImportWay::Restore, imports.rows, kInterceptedCount);
}

void StartInterception() {
    StartModuleNames();
    StartModuleLists();
}

void StopInterception() {
    FreeResourceRecords();
    if (g_Wld.m_bInit) UnpatchListedModules();
    FreeKnownModules();
}

}  // namespace qx
