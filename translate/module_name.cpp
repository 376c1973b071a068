#include "translate/module_name.h"

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

// One word a module, so that it is read and written whole: the upper half says which module, the lower its hash.
constexpr unsigned kSlots = 64;
constinit std::atomic<uint64_t> g_hashes[kSlots] = {};
constinit std::atomic<bool> g_keeping = false;
constinit void* g_watch = nullptr;

constexpr unsigned kModuleAlignment = 16;  // bits; handles of modules mapped as data have low bits set

// Never 0. Null, the program, is a module like others.
uint64_t ModuleMark(HMODULE module) {
    return ((reinterpret_cast<uintptr_t>(module) >> kModuleAlignment) + 1) << 32;
}

bool CanBeKept(HMODULE module) {
    auto address = reinterpret_cast<uintptr_t>(module);
    return g_keeping.load(std::memory_order_relaxed) && !(address & ((1u << kModuleAlignment) - 1)) &&
           address >> kModuleAlignment < UINT32_MAX;
}

void ForgetModuleNames() {
    for (auto& hash : g_hashes) hash.store(0, std::memory_order_relaxed);
}

// The loader's own notification. It is the only way to learn that an address may mean another module.
constexpr ULONG kUnloaded = 2;
using Notification = void(CALLBACK*)(ULONG reason, const void* data, void* context);
using RegisterNotification = LONG(NTAPI*)(ULONG flags, Notification, void* context, void** cookie);
using UnregisterNotification = LONG(NTAPI*)(void* cookie);

void CALLBACK OnModule(ULONG reason, const void*, void*) {
    if (reason == kUnloaded) ForgetModuleNames();
}

template <class Function>
Function LoaderFunction(const char* name) {
    HMODULE loader = GetModuleHandleA("ntdll.dll");
    return reinterpret_cast<Function>(reinterpret_cast<void*>(loader ? GetProcAddress(loader, name) : nullptr));
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

void StartKeepingModuleNames() {
    auto start = LoaderFunction<RegisterNotification>("LdrRegisterDllNotification");
    g_keeping = start && start(0, OnModule, nullptr, &g_watch) == 0;
}

void StopKeepingModuleNames() {
    if (!g_keeping) return;
    g_keeping = false;
    ForgetModuleNames();
    if (auto stop = LoaderFunction<UnregisterNotification>("LdrUnregisterDllNotification")) stop(g_watch);
}
