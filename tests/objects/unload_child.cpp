// A program that does not import the library: it loads and unloads it, watches what it does then,
// or lets a module call the registry too late.
#include "objects/registry_calls.h"
#include "support/import_slot.h"

#include <cstring>
#include <objbase.h>

namespace {

constexpr char kContainer[] = "CLSID_OFSERVICECONTAINER";

template <class Function>
Function Find(HMODULE module, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

RegistryCalls LoadTheLibrary(HMODULE& module) {
    module = LoadLibraryA("test_calls_module.dll");
    return Find<GetRegistryCallsFunction>(module, "GetRegistryCalls")();
}

bool IsLibraryLoaded() {
    return GetModuleHandleA("qxcore.dll") != nullptr;
}

// 0, or the place of the first wrong answer.
int LoadTwice() {
    for (int round = 0; round < 2; ++round) {
        if (IsLibraryLoaded()) return 1;
        HMODULE module;
        RegistryCalls calls = LoadTheLibrary(module);
        if (!calls.isRegistered(kContainer)) return 2;
        if (calls.isRegistered("UnloadClass")) return 3;
        if (!calls.registerPath("UnloadClass", "kernel32.dll")) return 4;
        IQXUnknown* object;
        if (!calls.create(kContainer, nullptr, *calls.root, &object)) return 5;
        object->Release();
        FreeLibrary(module);
    }
    return IsLibraryLoaded() ? 6 : 0;
}

int CallLate() {
    HMODULE late = LoadLibraryA("test_late_caller_module.dll");
    if (!late || IsLibraryLoaded()) return 1;
    HMODULE module;
    RegistryCalls calls = LoadTheLibrary(module);
    calls.registerPath("LateClass", "kernel32.dll");
    Find<KeepRegistryCallsFunction>(late, "KeepRegistryCalls")(calls);
    return 0;
}

// What the library does at its unload, in order: 'h' calls the entry hook, 'c' leaves COM; capital
// when the container is still registered then.
char g_events[8];
RegistryCalls g_calls;
HINSTANCE g_hookedModule;

void Note(char event) {
    char noted = g_calls.isRegistered(kContainer) ? static_cast<char>(event - 'a' + 'A') : event;
    g_events[strlen(g_events)] = noted;
}

void EntryHook(HINSTANCE module, DWORD reason) {
    if (reason != DLL_PROCESS_DETACH) return;
    g_hookedModule = module;
    Note('h');
}

FARPROC WINAPI FindsEntryHook(HMODULE module, const char* name) {
    if (strcmp(name, "_QXAfxDllMain") == 0)
        return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&EntryHook));
    return GetProcAddress(module, name);
}

void WINAPI NotedCoUninitialize() {
    Note('c');
    CoUninitialize();
}

// 0, or the place of the first wrong answer.
int WatchTheOrder() {
    HMODULE module;
    g_calls = LoadTheLibrary(module);
    HMODULE library = GetModuleHandleA("qxcore.dll");
    if (CoInitialize(nullptr) != S_FALSE) return 1;  // the load has entered COM on this thread
    CoUninitialize();
    void** find = FindImportSlot(library, "GetProcAddress");
    void** leave = FindImportSlot(library, "CoUninitialize");
    if (!find || !leave) return 2;
    SetImportSlot(find, reinterpret_cast<void*>(&FindsEntryHook));
    SetImportSlot(leave, reinterpret_cast<void*>(&NotedCoUninitialize));
    FreeLibrary(module);
    if (IsLibraryLoaded()) return 3;
    if (strcmp(g_events, "HC") != 0) return 4;
    if (g_hookedModule != library) return 5;
    if (CoInitialize(nullptr) != S_OK) return 6;  // and the unload has left it
    CoUninitialize();
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    const char* mode = argc > 1 ? argv[1] : "";
    if (strcmp(mode, "late") == 0) return CallLate();
    if (strcmp(mode, "order") == 0) return WatchTheOrder();
    return LoadTwice();
}
