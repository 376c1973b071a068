// Tells when modules have come or gone, so that what was asked of the loader need not be asked
// again.
#ifndef QXCORE_TRANSLATE_LOADED_MODULES_H
#define QXCORE_TRANSLATE_LOADED_MODULES_H

#include <atomic>
#include <climits>

// Without the loader's help the watch stays off.
void StartModuleWatch();
void StopModuleWatch();

// A number that changes with every module loaded or unloaded; 0 without a watch, and then nothing
// may be kept.
extern std::atomic<unsigned> g_moduleGeneration;

inline unsigned ModuleGeneration() {
    return g_moduleGeneration.load(std::memory_order_acquire);
}

// An act that is due when modules have come or gone since its last run; without a watch it always
// is.
class OncePerModuleChange {
public:
    bool IsDue() const { return ModuleGeneration() != done.load(std::memory_order_relaxed); }
    template <class Act>
    void Run(Act act) {
        unsigned now = ModuleGeneration();
        act();
        done.store(now ? now : kNever, std::memory_order_relaxed);
    }

private:
    static constexpr unsigned kNever = UINT_MAX;
    std::atomic<unsigned> done = kNever;
};

#endif
