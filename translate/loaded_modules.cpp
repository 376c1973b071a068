#include "translate/loaded_modules.h"

#include <qxcore/platform.h>

constinit std::atomic<unsigned> g_moduleGeneration = 0;

namespace {

using Notification = void(CALLBACK*)(ULONG reason, const void* data, void* context);
using RegisterNotification = LONG(NTAPI*)(ULONG flags, Notification function, void* context, void** cookie);
using UnregisterNotification = LONG(NTAPI*)(void* cookie);

constinit void* g_cookie = nullptr;

template <class Function>
Function LoaderFunction(const char* name) {
    HMODULE loader = GetModuleHandleA("ntdll.dll");
    return loader ? reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(loader, name))) : nullptr;
}

// Runs under the loader's lock.
void CALLBACK CountModules(ULONG, const void*, void*) {
    unsigned next = g_moduleGeneration.load(std::memory_order_relaxed) + 1;
    g_moduleGeneration.store(next ? next : 1, std::memory_order_release);
}

}  // namespace

void StartModuleWatch() {
    auto watch = LoaderFunction<RegisterNotification>("LdrRegisterDllNotification");
    if (watch && watch(0, CountModules, nullptr, &g_cookie) == 0) CountModules(0, nullptr, nullptr);
}

void StopModuleWatch() {
    auto unwatch = LoaderFunction<UnregisterNotification>("LdrUnregisterDllNotification");
    if (g_cookie && unwatch) unwatch(g_cookie);
    g_cookie = nullptr;
    g_moduleGeneration = 0;
}
