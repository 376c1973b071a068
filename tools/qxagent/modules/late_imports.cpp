#include "tools/qxagent/modules/late_imports.h"

#include <qxcore/translation.h>

#include <map>

namespace qx {

namespace {

std::map<const void*, void*> g_replacements;

void* ReplacementOf(void* address) {
    auto found = g_replacements.find(address);
    return found == g_replacements.end() ? address : found->second;
}

FARPROC WINAPI AgentGetProcAddress(HMODULE module, const char* name) {
    void* address = reinterpret_cast<void*>(GetProcAddress(module, name));
    return reinterpret_cast<FARPROC>(ReplacementOf(address));
}

void StoreInSlot(void** slot, void* address) {
    DWORD old = 0;
    if (!VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &old)) return;
    *slot = address;
    VirtualProtect(slot, sizeof *slot, old, &old);
}

// Not in every platform header.
using ResolveFunction = void*(WINAPI*)(void*, const void*, void*, void*, void**, ULONG);

ResolveFunction SystemResolve() {
    static const auto resolve = reinterpret_cast<ResolveFunction>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleA("kernel32.dll"), "ResolveDelayLoadedAPI")));
    return resolve;
}

void* WINAPI AgentResolve(void* base, const void* descriptor, void* failure, void* systemFailure,
                          void** slot, ULONG flags) {
    void* address = SystemResolve()(base, descriptor, failure, systemFailure, slot, flags);
    void* replacement = ReplacementOf(address);
    if (replacement != address) StoreInSlot(slot, replacement);
    return replacement;
}

}  // namespace

void ReplaceLate(const char* dll, const char* function, void* replacement) {
    if (auto real = GetProcAddress(GetModuleHandleA(dll), function))
        g_replacements[reinterpret_cast<void*>(real)] = replacement;
}

void WatchLateImports(HMODULE module) {
    HookProc_Install(module, "kernel32.dll", "GetProcAddress",
                     reinterpret_cast<void*>(&AgentGetProcAddress));
    HookProc_Install(module, "kernel32.dll", "ResolveDelayLoadedAPI",
                     reinterpret_cast<void*>(&AgentResolve));
}

}  // namespace qx
