// Tells when modules have come or gone, so that what was asked of the loader need not be asked again.
#ifndef QXCORE_TRANSLATE_LOADED_MODULES_H
#define QXCORE_TRANSLATE_LOADED_MODULES_H

#include <atomic>

// Without the loader's help the watch stays off.
void StartModuleWatch();
void StopModuleWatch();

// A number that changes with every module loaded or unloaded; 0 without a watch, and then nothing may be kept.
extern std::atomic<unsigned> g_moduleGeneration;

inline unsigned ModuleGeneration() {
    return g_moduleGeneration.load(std::memory_order_acquire);
}

#endif
