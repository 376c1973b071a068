#include "translate/places/loaded_modules.h"

#include "translate/places/module_name.h"

constinit std::atomic<unsigned> g_moduleGeneration = 0;

namespace {

using Notification = void(CALLBACK*)(ULONG reason, const void* data, void* context);
using RegisterNotification = LONG(NTAPI*)(ULONG flags, Notification function, void* context,
                                          void** cookie);
using UnregisterNotification = LONG(NTAPI*)(void* cookie);

constinit void* g_cookie = nullptr;

template <class Function>
Function LoaderFunction(const char* name) {
    HMODULE loader = GetModuleHandleA("ntdll.dll");
    return loader
               ? reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(loader, name)))
               : nullptr;
}

void NextGeneration() {
    unsigned next = g_moduleGeneration.load(std::memory_order_relaxed) + 1;
    g_moduleGeneration.store(next ? next : 1, std::memory_order_release);
}

// Runs under the loader's lock.
void CALLBACK OnModule(ULONG reason, const void*, void*) {
    constexpr ULONG kUnloaded = 2;
    if (reason == kUnloaded) ForgetModuleNames();
    NextGeneration();
}

}  // namespace

void StartModuleWatch() {
    auto watch = LoaderFunction<RegisterNotification>("LdrRegisterDllNotification");
    if (watch && watch(0, OnModule, nullptr, &g_cookie) == 0) NextGeneration();
}

void StopModuleWatch() {
    auto unwatch = LoaderFunction<UnregisterNotification>("LdrUnregisterDllNotification");
    if (g_cookie && unwatch) unwatch(g_cookie);
    g_cookie = nullptr;
    g_moduleGeneration = 0;
    ForgetModuleNames();
}
