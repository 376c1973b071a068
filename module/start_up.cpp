#include "module/start_up.h"

#include "core/memory_manager.h"
#include "core/module_handle.h"
#include "objects/class_registry.h"
#include "objects/service_container.h"
#include "translate/dictionary/dictionary.h"
#include "translate/interception/interception.h"

#include <objbase.h>

namespace {

using EntryHook = void (*)(HINSTANCE module, DWORD reason);

// A build that adds an export of this name is told when the library comes and goes.
void CallEntryHook(HINSTANCE module, DWORD reason) {
    auto hook = reinterpret_cast<EntryHook>(
        reinterpret_cast<void*>(GetProcAddress(module, "_QXAfxDllMain")));
    if (hook) hook(module, reason);
}

}  // namespace

void StartUp(HINSTANCE module) {
    qx::SetOwnModule(module);
    qx::g_memory.Start();
    qx::StartClassRegistry();
    qx::RegisterServiceContainer(module);
    CoInitialize(nullptr);
    qx::StartDictionary();
    qx::StartInterception();
    DisableThreadLibraryCalls(module);
    CallEntryHook(module, DLL_PROCESS_ATTACH);
}

void ShutDown(HINSTANCE module) {
    CallEntryHook(module, DLL_PROCESS_DETACH);
    qx::StopInterception();
    qx::StopDictionary();
    CoUninitialize();
    qx::UnregisterServiceContainer();
    qx::StopClassRegistry();
    qx::g_memory.Stop();
}
