#include "core/module_handle.h"

namespace qx {

namespace {

constinit HINSTANCE g_ownModule = nullptr;

HINSTANCE ModuleOfThisCode() {
    MEMORY_BASIC_INFORMATION info;
    auto here = reinterpret_cast<const void*>(&OwnModule);
    if (!VirtualQuery(here, &info, sizeof info)) return nullptr;
    return static_cast<HINSTANCE>(info.AllocationBase);
}

}  // namespace

HINSTANCE OwnModule() {
    if (!g_ownModule) g_ownModule = ModuleOfThisCode();
    return g_ownModule;
}

void SetOwnModule(HINSTANCE module) {
    g_ownModule = module;
}

}  // namespace qx
