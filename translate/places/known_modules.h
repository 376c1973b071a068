// What is known of the modules that were asked for before, and the proofs that one at an address is
// still the same.
//
// The loader does not tell of every module that goes, and the next one may come to its address.
// Two things tell them: an import slot that was exchanged keeps its value as long as its module
// stays, and the loader's list holds the entry of the module that is there.
#ifndef QXCORE_TRANSLATE_PLACES_KNOWN_MODULES_H
#define QXCORE_TRANSLATE_PLACES_KNOWN_MODULES_H

#include "translate/places/loader_entry.h"

#include <atomic>
#include <cstddef>

namespace qx {

// A module of this name at this address. Rows stay; those of modules that are gone prove nothing,
// and serve again when such a module comes back.
struct KnownModule {
    HMODULE module;
    KnownModule* next;
    unsigned hash;  // the text hash of the name
    // Another one for every module that was marked; 0 for one that is not.
    std::atomic<unsigned> life;
    std::atomic<const void*> slot;
    std::atomic<void*> value;  // what the slot holds while the marked module stays
    std::atomic<LoaderEntry> entry;
    size_t nameLength;
    char name[1];  // and the rest of it
};

// The program's life, which needs no mark.
inline constexpr unsigned kLifeOfProgram = 1;

// The row of the module that is at an address, and its life if its mark tells that; no row where
// nothing proves one.
struct FoundModule {
    const KnownModule* row = nullptr;
    unsigned life = 0;
};
FoundModule FindKnownModule(HMODULE module);

// Keeps what the system has just told of a module whose loader's entry says the same; false when no
// entry does, or without memory. Any thread.
bool LearnModule(HMODULE module, const char* name);

// From here on the module is told from all others by the value that one of its slots holds.
// Threads that only look for modules may do so meanwhile.
void MarkModule(HMODULE module, const char* name, const void* slot, void* value);
// The module's slots get other values.
void UnmarkModule(HMODULE module);

void FreeKnownModules();

}  // namespace qx

#endif
