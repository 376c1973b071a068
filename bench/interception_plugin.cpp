// A plug-in with the resources of the benchmark, and one call that can be intercepted.
#include <windows.h>

extern "C" __declspec(dllexport) int WINAPI PluginString(UINT id, char* text, int size) {
    return LoadStringA(nullptr, id, text, size);
}
