// Does not import the library, so it is unloaded after it when it was loaded before it; calls the
// registry then.
#include "objects/registry_calls.h"

namespace {

RegistryCalls g_calls;

// The place of the first wrong answer, or kLateCallsDidNoHarm.
UINT CallTheRegistry() {
    IQXUnknown* object = reinterpret_cast<IQXUnknown*>(8);
    if (g_calls.isRegistered("CLSID_OFSERVICECONTAINER")) return 1;
    if (g_calls.isRegistered("LateClass")) return 2;
    if (g_calls.create("LateClass", nullptr, *g_calls.root, &object)) return 3;
    if (object) return 4;
    if (g_calls.registerPath("LateClass", "kernel32.dll")) return 5;
    if (g_calls.registerHandle("GetTickCount", GetModuleHandleA("kernel32.dll"))) return 6;
    if (g_calls.unregister("LateClass")) return 7;
    return kLateCallsDidNoHarm;
}

}  // namespace

extern "C" __declspec(dllexport) void KeepRegistryCalls(const RegistryCalls& calls) {
    g_calls = calls;
}

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void*) {
    if (reason == DLL_PROCESS_DETACH && g_calls.create)
        TerminateProcess(GetCurrentProcess(), CallTheRegistry());
    return TRUE;
}
