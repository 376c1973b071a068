#include "translate/interception/interception.h"

#include "core/module_handle.h"
#include "translate/interception/import_table.h"
#include "translate/places/loaded_modules.h"
#include "translate/interception/module_lists.h"
#include "translate/interception/replacements.h"
#include "translate/interception/resource_records.h"

#include <qxcore/dictionary.h>
#include <qxcore/translation.h>

#include <algorithm>
#include <cstdio>
#include <iterator>

constinit std::atomic<void*> g_RealProcs[kInterceptedCount] = {};

namespace {

constexpr int kPathSize = 2048;

#define QX_ROW(dll, function) \
    { dll, #function, reinterpret_cast<void*>(&New##function), nullptr }

// In the order of Intercepted.
const ImportExchange kInterceptions[] = {
    QX_ROW("user32.DLL", LoadStringA),
    QX_ROW("USER32.DLL", LoadStringW),
    QX_ROW("USER32.DLL", LoadMenuIndirectA),
    QX_ROW("USER32.DLL", LoadMenuA),
    QX_ROW("USER32.DLL", LoadMenuW),
    QX_ROW("KERNEL32.DLL", LoadResource),
    QX_ROW("KERNEL32.DLL", FindResourceA),
    QX_ROW("KERNEL32.DLL", FindResourceExA),
    QX_ROW("KERNEL32.DLL", FindResourceW),
    QX_ROW("KERNEL32.DLL", FindResourceExW),
    QX_ROW("KERNEL32.DLL", LockResource),
    QX_ROW("KERNEL32.DLL", FreeResource),
    QX_ROW("KERNEL32.DLL", SizeofResource),
    QX_ROW("USER32.DLL", CreateDialogParamA),
    QX_ROW("USER32.DLL", CreateDialogParamW),
    QX_ROW("USER32.DLL", DialogBoxParamA),
    QX_ROW("USER32.DLL", DialogBoxParamW),
    QX_ROW("USER32.DLL", MessageBoxIndirectA),
    QX_ROW("USER32.DLL", MessageBoxA),
    QX_ROW("USER32.DLL", MessageBoxExA),
    QX_ROW("USER32.DLL", DialogBoxIndirectParamA),
    QX_ROW("USER32.DLL", DialogBoxIndirectParamW),
    QX_ROW("USER32.DLL", CreateDialogIndirectParamA),
    QX_ROW("USER32.DLL", CreateDialogIndirectParamW),
};
static_assert(sizeof kInterceptions / sizeof kInterceptions[0] == kInterceptedCount);

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

void UnpatchListedModules() {
    for (const char* name : g_aPatchModules) _DeInitResTranslation(GetModuleHandleA(name));
    for (ListedModule& extra : g_aExtraModules) _DeInitResTranslation(extra.module);
}

}  // namespace

int _InitResTranslation(HMODULE module) {
    if (!module) return 0;
    RefreshExtraModules();
    TellModule(module);
    // The library's own imports are its way to the real functions.
    if (module == OwnModule()) return 1;
    InterceptedImports imports;
    ExchangeImports(module, ImportWay::Patch, imports.rows, kInterceptedCount);
    for (int i = 0; i < kInterceptedCount; ++i) g_RealProcs[i] = imports.rows[i].result;
    return 1;
}

int _DeInitResTranslation(HMODULE module) {
    if (!module) return 0;
    InterceptedImports imports;
    ExchangeImports(module, ImportWay::Restore, imports.rows, kInterceptedCount);
    return 1;
}

void* HookProc_Install(void* module, const char* dll, const char* function, void* replacement) {
    return PatchImportTable(module, dll, function, replacement);
}

// Looks the function up in what is no module and so finds nothing: the host's imports stay patched.
void* HookProc_UnInstall(void*, const char*, const char*) {
    return nullptr;
}

void* __GetHandlesList() {
    return nullptr;
}

void __SetHandlesList(void*) {}

void StartInterception() {
    StartModuleWatch();
}

void StopInterception() {
    FreeResourceRecords();
    if (g_Wld.m_bInit) UnpatchListedModules();
    StopModuleWatch();
}
