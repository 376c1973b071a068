#include "translate/interception/module_lists.h"

#include "translate/interception/interception.h"

namespace qx {

constinit ListedModule g_aExcludeModules[5] = {
    {"acadres.dll", false}, {"acltres.dll", false}, {"acopm.arx", true},
    {"acad.exe", false},    {"aclt.exe", false},
};
constinit ListedModule g_aExtraModules[1] = {{"mfc80u.dll", false}};
constinit std::atomic<int> g_bTranslationEnable = 1;

void RefreshExtraModules() {
    for (ListedModule& row : g_aExtraModules) {
        // One that is gone may come again elsewhere.
        if (!row.IsFound() || !ModuleName(row.module).Is(row.name)) row.Find(LoadedModules());
    }
}

void StartModuleLists() {
    ModuleName program(nullptr);
    for (ListedModule& row : g_aExcludeModules) {
        if (row.loadsLate && program.Is(row.name)) row.Find(LoadedModules());
    }
}

bool IsExcluded(ModuleName& module) {
    for (ListedModule& row : g_aExcludeModules) {
        bool isAtRow = row.IsAt(module.Module());
        if (!isAtRow && !row.loadsLate) continue;
        if (!module.Is(row.name)) {
            // The row's module is gone, and another has come to its place.
            if (isAtRow) row.module.store(nullptr, std::memory_order_relaxed);
            continue;
        }
        if (isAtRow) return true;
        KeptLastError kept;
        row.Find(LoadedModules());
        if (row.IsAt(module.Module())) return true;
    }
    return false;
}

}  // namespace qx
