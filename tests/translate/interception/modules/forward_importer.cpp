// Imports one function of the system twice: as itself and through a forwarder.
#include <windows.h>

extern "C" __declspec(dllimport) int WINAPI
    ForwardedLoadStringA(HINSTANCE module, UINT id, char* buffer, int size);

extern "C" __declspec(dllexport) int WINAPI
    CallDirect(HINSTANCE module, UINT id, char* buffer, int size) {
    return LoadStringA(module, id, buffer, size);
}

extern "C" __declspec(dllexport) int WINAPI
    CallForwarded(HINSTANCE module, UINT id, char* buffer, int size) {
    return ForwardedLoadStringA(module, id, buffer, size);
}
