#include "translate/interception/module_lists.h"

constinit ListedModule g_aExcludeModules[5] = {
    {"acadres.dll", false}, {"acltres.dll", false}, {"acopm.arx", true},
    {"acad.exe", false},    {"aclt.exe", false},
};
constinit ListedModule g_aExtraModules[1] = {{"mfc80u.dll", false}};
constinit OncePerModuleChange g_lateSearch;
constinit std::atomic<int> g_bTranslationEnable = 1;

// Asking the loader for an absent module searches the disk, so it is done once for each change of
// the modules.
void RefreshExtraModules() {
    static constinit OncePerModuleChange search;
    if (!search.IsDue()) return;
    search.Run([] {
        for (ListedModule& row : g_aExtraModules) {
            if (!row.IsFound()) row.Find();
        }
    });
}

bool IsExclusionAfterSearch(const void* module) {
    g_lateSearch.Run([] {
        for (ListedModule& row : g_aExcludeModules) {
            if (row.loadsLate && !row.IsFound()) row.Find();
        }
    });
    return IsListedExclusion(module);
}
