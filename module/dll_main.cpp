#include "module/start_up.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void*) {
    if (reason == DLL_PROCESS_ATTACH) StartUp(module);
    if (reason == DLL_PROCESS_DETACH) ShutDown(module);
    return TRUE;
}
