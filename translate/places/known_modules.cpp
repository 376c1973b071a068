#include "translate/places/known_modules.h"

#include "file/platform/guarded_copy.h"

#include <qxcore/hash.h>

#include <cstdint>
#include <cstring>
#include <new>

namespace qx {

namespace {

constexpr unsigned kChains = 64;
constinit std::atomic<KnownModule*> g_chains[kChains] = {};
constinit unsigned g_latestLife = kLifeOfProgram;

std::atomic<KnownModule*>& ChainOf(HMODULE module) {
    constexpr unsigned kGranularity = 16;  // bits of an address below any module's
    auto address = reinterpret_cast<uintptr_t>(module) >> kGranularity;
    return g_chains[(address ^ address >> 6) % kChains];
}

// The memory may be gone with the module.
bool HoldsMark(const KnownModule& row) {
    void* value;
    return GuardedCopy(&value, row.slot, sizeof value) && value == row.value;
}

KnownModule* NewRow(HMODULE module, const char* name) {
    size_t length = strlen(name);
    void* memory = LocalAlloc(LMEM_FIXED, sizeof(KnownModule) + length);
    if (!memory) return nullptr;
    auto row = new (memory)
        KnownModule{module, nullptr, QXHashText(name).hash, {}, {}, {}, {}, length, ""};
    memcpy(row->name, name, length + 1);
    return row;
}

// The row of this address and name, made where there is none; null without memory.
KnownModule* RowOf(HMODULE module, const char* name) {
    std::atomic<KnownModule*>& chain = ChainOf(module);
    for (KnownModule* row = chain; row; row = row->next) {
        if (row->module == module && !strcmp(row->name, name)) return row;
    }
    KnownModule* row = NewRow(module, name);
    if (!row) return nullptr;
    row->next = chain;
    while (!chain.compare_exchange_weak(row->next, row)) {
    }
    return row;
}

}  // namespace

FoundModule FindKnownModule(HMODULE module) {
    for (const KnownModule* row = ChainOf(module); row; row = row->next) {
        if (row->module != module) continue;
        // Read before the mark, so that it is of the module that has it.
        unsigned life = row->life;
        if (life && HoldsMark(*row)) return {row, life};
        LoaderEntry entry = row->entry;
        if (entry && IsEntryOf(entry, module, row->name, row->nameLength)) return {row, 0};
    }
    return {};
}

bool LearnModule(HMODULE module, const char* name) {
    LoaderEntry entry = FindEntryOf(module, name, strlen(name));
    KnownModule* row = entry ? RowOf(module, name) : nullptr;
    if (row) row->entry = entry;
    return row;
}

void MarkModule(HMODULE module, const char* name, const void* slot, void* value) {
    UnmarkModule(module);
    KnownModule* row = RowOf(module, name);
    if (!row) return;
    row->slot = slot;
    row->value = value;
    if (++g_latestLife <= kLifeOfProgram) g_latestLife = kLifeOfProgram + 1;
    row->life = g_latestLife;
}

void UnmarkModule(HMODULE module) {
    for (KnownModule* row = ChainOf(module); row; row = row->next) {
        if (row->module == module) row->life = 0;
    }
}

void FreeKnownModules() {
    for (std::atomic<KnownModule*>& chain : g_chains) {
        KnownModule* row = chain.exchange(nullptr);
        while (row) {
            KnownModule* next = row->next;
            LocalFree(row);
            row = next;
        }
    }
}

}  // namespace qx
