// The modules whose calls are intercepted from the start, and those whose resources are never
// translated.
#ifndef QXCORE_TRANSLATE_INTERCEPTION_MODULE_LISTS_H
#define QXCORE_TRANSLATE_INTERCEPTION_MODULE_LISTS_H

#include "translate/places/lookup.h"
#include "translate/places/module_name.h"

#include <atomic>
#include <cstdint>

namespace qx {

struct ListedModule {
    const char* name;
    bool loadsLate;  // may come after Supp_Init
    std::atomic<HMODULE> module = nullptr;

    void Find(const LoadedModules& loaded) {
        module.store(loaded.Find(name), std::memory_order_relaxed);
    }
    bool IsFound() const { return module.load(std::memory_order_relaxed) != nullptr; }
    bool IsAt(const void* address) const {
        return module.load(std::memory_order_relaxed) == address;
    }
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
// Looks for the program among the excluded modules that may come late: it is there from the start.
void StartModuleLists();

// Whether a row of the excluded modules has this address.
inline bool IsListedExclusion(const void* module) {
    // Nearly every intercepted call asks, so the rows are written out.
    auto& [a, b, c, d, e] = g_aExcludeModules;
    return a.IsAt(module) || b.IsAt(module) || c.IsAt(module) || d.IsAt(module) || e.IsAt(module);
}

// The same with a look at the module's name: one that comes late is not known before, and an
// address may mean another module by now.
bool IsExcluded(ModuleName& module);

// The master switch of the interception.
extern std::atomic<int> g_bTranslationEnable;

inline bool IsSwitchedOn() {
    return g_bTranslationEnable.load(std::memory_order_relaxed) != 0;
}

// Whether a call that concerns this module is translated. For a null module only the switch counts.
// Resource functions ask with the addresses of loaded resources too; one within a page cannot be a
// module's. The thread's last error stays as it is.
inline bool IsTranslationActive(ModuleName& module) {
    constexpr uintptr_t kWithinPage = 0xFFF;
    if (!IsSwitchedOn()) return false;
    auto address = reinterpret_cast<uintptr_t>(module.Module());
    if (!address || (address & kWithinPage)) return true;
    if (module.IsProgram() && !IsListedExclusion(module.Module())) return true;
    return !IsExcluded(module);
}

// Why a call that is not translated is not.
inline QXLookupEnd WhyNotActive() {
    return IsSwitchedOn() ? QXLOOKUP_EXCLUDED : QXLOOKUP_OFF;
}

inline bool IsTranslationActive(const void* module) {
    ModuleName name(module);
    return IsTranslationActive(name);
}

}  // namespace qx

#endif
