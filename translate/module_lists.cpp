#include "translate/module_lists.h"

constinit ListedModule g_excludeModules[5] = {
    {"acadres.dll", false}, {"acltres.dll", false}, {"acopm.arx", true}, {"acad.exe", false}, {"aclt.exe", false},
};
constinit ListedModule g_extraModules[1] = {{"mfc80u.dll", false}};
constinit std::atomic<int> g_translationEnable = 1;

void ListedModule::Look(unsigned now) {
    module.store(GetModuleHandleA(name), std::memory_order_relaxed);
    generation.store(now, std::memory_order_relaxed);
}

bool IsTranslationActive(const void* module) {
    if (!g_translationEnable.load(std::memory_order_relaxed)) return false;
    if (!module) return true;
    for (ListedModule& row : g_excludeModules) {
        if (row.loadsLate) row.Refresh();
        if (module == row.module.load(std::memory_order_relaxed)) return false;
    }
    return true;
}
