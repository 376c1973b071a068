// The modules whose calls are intercepted from the start, and those whose resources are never
// translated.
#ifndef QXCORE_TRANSLATE_MODULE_LISTS_H
#define QXCORE_TRANSLATE_MODULE_LISTS_H

#include "translate/places/loaded_modules.h"

#include <qxcore/platform.h>

#include <atomic>
#include <cstdint>

struct ListedModule {
    const char* name;
    bool loadsLate;  // may come after Supp_Init: looked for until it is there
    std::atomic<HMODULE> module = nullptr;

    void Find() { module.store(GetModuleHandleA(name), std::memory_order_relaxed); }
    bool IsFound() const { return module.load(std::memory_order_relaxed) != nullptr; }
};

// The class libraries that load resources on a host's behalf.
inline constexpr const char* g_aPatchModules[] = {
    "mfc80u.dll", "mfc42d", "mfco42d", "mfc42", "cfc42",  "comdlg32", "mfc70d",
    "mfco70d",    "mfc70",  "mfco70",  "mfc71", "mfco71", "mfc80",
};
extern ListedModule g_aExcludeModules[5];
extern ListedModule g_aExtraModules[1];

// Looks for the extra modules that are not known.
void RefreshExtraModules();

// Whether a module is one of the excluded ones that are known. Every intercepted call asks, so the
// rows are written out.
inline bool IsListedExclusion(const void* module) {
    auto is = [module](const ListedModule& row) {
        return row.module.load(std::memory_order_relaxed) == module;
    };
    auto& [a, b, c, d, e] = g_aExcludeModules;
    return is(a) || is(b) || is(c) || is(d) || is(e);
}

// The same after looking for those that may have come late, which is due when modules have come or
// gone.
extern OncePerModuleChange g_lateSearch;
bool IsExclusionAfterSearch(const void* module);

inline bool IsExcluded(const void* module) {
    return g_lateSearch.IsDue() ? IsExclusionAfterSearch(module) : IsListedExclusion(module);
}

// The master switch of the interception.
extern std::atomic<int> g_bTranslationEnable;

// Whether a call that concerns this module is translated. For a null module only the switch counts.
// Resource functions ask with the addresses of loaded resources too; one within a page cannot be a
// module's.
inline bool IsTranslationActive(const void* module) {
    constexpr uintptr_t kWithinPage = 0xFFF;
    if (!g_bTranslationEnable.load(std::memory_order_relaxed)) return false;
    if (!module || (reinterpret_cast<uintptr_t>(module) & kWithinPage) != 0) return true;
    return !IsExcluded(module);
}

#endif
