#include "translate/places/module_name.h"

#include "translate/places/loaded_modules.h"

#include <qxcore/hash.h>

#include <mbctype.h>

#include <atomic>
#include <cstdint>

namespace {

// Behind the last ":", "\" or "/"; null without one. A trail byte may look like a backslash.
const char* BehindLastSeparator(const char* path) {
    const char* behind = nullptr;
    for (; *path; ++path) {
        if (_ismbblead(static_cast<unsigned char>(*path)) && path[1]) {
            ++path;
        } else if (*path == ':' || *path == '\\' || *path == '/') {
            behind = path + 1;
        }
    }
    return behind;
}

// One word a module, so that it is read and written whole: the upper half says which module, the
// lower its hash.
constexpr unsigned kSlots = 64;
constinit std::atomic<uint64_t> g_hashes[kSlots] = {};

constexpr unsigned kModuleAlignment =
    16;  // bits; handles of modules mapped as data have low bits set

// Never 0. Null, the program, is a module like others.
uint64_t ModuleMark(HMODULE module) {
    return ((reinterpret_cast<uintptr_t>(module) >> kModuleAlignment) + 1) << 32;
}

bool CanBeKept(HMODULE module) {
    auto address = reinterpret_cast<uintptr_t>(module);
    return ModuleGeneration() && !(address & ((1u << kModuleAlignment) - 1)) &&
           address >> kModuleAlignment < UINT32_MAX;
}

std::optional<unsigned> AskForHash(HMODULE module) {
    ModuleName name(module);
    if (!name.Text()) return std::nullopt;
    return QXHashText(name.Text()).hash;
}

}  // namespace

ModuleName::ModuleName(HMODULE module) {
    m_path[GetModuleFileNameA(module, m_path, sizeof m_path - 1)] = 0;
    m_name = BehindLastSeparator(m_path);
}

std::optional<unsigned> ModuleNameHash(HMODULE module) {
    if (!CanBeKept(module)) return AskForHash(module);
    uint64_t mark = ModuleMark(module);
    auto& slot = g_hashes[(mark >> 32) % kSlots];
    uint64_t kept = slot.load(std::memory_order_relaxed);
    if (kept >> 32 == mark >> 32) return static_cast<unsigned>(kept);
    auto hash = AskForHash(module);
    if (hash) slot.store(mark | *hash, std::memory_order_relaxed);
    return hash;
}

void ForgetModuleNames() {
    for (auto& hash : g_hashes) hash.store(0, std::memory_order_relaxed);
}
