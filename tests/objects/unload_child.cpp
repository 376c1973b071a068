// A program that does not import the library: it loads and unloads it, or lets a module call the registry too late.
#include "objects/registry_calls.h"

#include <cstring>

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

}  // namespace

int main(int argc, char** argv) {
    return argc > 1 && strcmp(argv[1], "late") == 0 ? CallLate() : LoadTwice();
}
