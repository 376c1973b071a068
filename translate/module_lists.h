// The modules whose calls are intercepted from the start, and those whose resources are never translated.
#ifndef QXCORE_TRANSLATE_MODULE_LISTS_H
#define QXCORE_TRANSLATE_MODULE_LISTS_H

#include "translate/loaded_modules.h"

#include <qxcore/platform.h>

#include <atomic>

struct ListedModule {
    const char* name;
    bool loadsLate;  // may come after Supp_Init: looked for until it is there
    std::atomic<HMODULE> module = nullptr;
    std::atomic<unsigned> generation = 0;  // of the modules when it was last looked for

    // Looks for the module while it is not known. Asking the loader for an absent module searches the disk, so it is
    // asked once for each change of the modules.
    void Refresh() {
        if (module.load(std::memory_order_relaxed)) return;
        unsigned now = ModuleGeneration();
        if (!now || now != generation.load(std::memory_order_relaxed)) Look(now);
    }

private:
    void Look(unsigned now);
};

// The class libraries that load resources on a host's behalf.
inline constexpr const char* kPatchModules[] = {
    "mfc80u.dll", "mfc42d", "mfco42d", "mfc42", "cfc42",  "comdlg32", "mfc70d",
    "mfco70d",    "mfc70",  "mfco70",  "mfc71", "mfco71", "mfc80",
};
extern ListedModule g_excludeModules[5];
extern ListedModule g_extraModules[1];

// The master switch of the interception.
extern std::atomic<int> g_translationEnable;

// Whether a call that concerns this module is translated. For a null module only the switch counts.
bool IsTranslationActive(const void* module);

#endif
