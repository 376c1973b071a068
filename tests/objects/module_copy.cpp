#include "objects/module_copy.h"

std::string ProgramFolder() {
    char name[MAX_PATH];
    GetModuleFileNameA(nullptr, name, sizeof name);
    std::string path(name);
    return path.substr(0, path.rfind('\\') + 1);
}

ModuleCopy::ModuleCopy(const char* module) {
    static int copies = 0;
    char folder[MAX_PATH];
    GetTempPathA(sizeof folder, folder);
    path = folder + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++copies) + "-" +
           module;
    CopyFileA((ProgramFolder() + module).c_str(), Path(), FALSE);
}

ModuleCopy::~ModuleCopy() {
    while (HMODULE module = GetModuleHandleA(Path())) FreeLibrary(module);
    DeleteFileA(Path());
}
