// Tells when modules have come or gone, so that what was asked of the loader need not be asked again.
#ifndef QXCORE_TRANSLATE_LOADED_MODULES_H
#define QXCORE_TRANSLATE_LOADED_MODULES_H

#include <atomic>

void StartModuleWatch();
void StopModuleWatch();

// A number that changes with every module loaded or unloaded; 0 while nobody tells, and then nothing may be kept.
extern std::atomic<unsigned> g_moduleGeneration;

inline unsigned ModuleGeneration() {
    return g_moduleGeneration.load(std::memory_order_acquire);
}

#endif
