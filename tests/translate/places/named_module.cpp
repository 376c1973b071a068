// A module of little content, copied by tests to the names they need.
extern "C" {
__declspec(dllexport) int NamedModule() {
    return 1;
}
__declspec(dllexport) void* NamedModuleSlot = nullptr;
}
