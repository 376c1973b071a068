#include "translate/interception/system_resources.h"

#include <list>

namespace {

BOOL CALLBACK TakeLanguage(HMODULE module, const char* type, const char* name, WORD language,
                           LONG_PTR state) {
    Resource r = {};
    r.module = module;
    r.type = static_cast<uint16_t>(reinterpret_cast<uintptr_t>(type));
    if (IS_INTRESOURCE(name)) {
        r.id = static_cast<uint16_t>(reinterpret_cast<uintptr_t>(name));
    } else {
        r.name = name;
    }
    r.language = language;
    HRSRC found = FindResourceExA(module, type, name, language);
    r.data = static_cast<const uint8_t*>(LockResource(LoadResource(module, found)));
    r.size = SizeofResource(module, found);
    if (r.data) reinterpret_cast<std::vector<Resource>*>(state)->push_back(std::move(r));
    return TRUE;
}

BOOL CALLBACK TakeName(HMODULE module, const char* type, char* name, LONG_PTR state) {
    EnumResourceLanguagesA(module, type, name, TakeLanguage, state);
    return TRUE;
}

// A file's resources, if it is a module with some.
bool TakeModule(const std::string& folder, const char* file, std::vector<Resource>& all) {
    HMODULE module = LoadLibraryExA((folder + file).c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    if (!module) return false;
    size_t before = all.size();
    for (int type : {kMenus, kDialogs, kStringTables}) {
        EnumResourceNamesA(module, MAKEINTRESOURCEA(type), TakeName,
                           reinterpret_cast<LONG_PTR>(&all));
    }
    if (all.size() == before) return false;
    static std::list<std::string> files;
    files.emplace_back(file);
    for (size_t i = before; i < all.size(); ++i) all[i].file = files.back().c_str();
    return true;
}

}  // namespace

std::string Resource::Text() const {
    return std::string(file) + " type " + std::to_string(type) + " " +
           (name.empty() ? std::to_string(id) : name) + " language " + std::to_string(language);
}

SystemResources::SystemResources() {
    char folder[MAX_PATH];
    GetSystemDirectoryA(folder, MAX_PATH);
    strcat(folder, "\\");
    WIN32_FIND_DATAA file;
    HANDLE search = FindFirstFileA((std::string(folder) + "*").c_str(), &file);
    do {
        if (file.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) continue;
        modules += TakeModule(folder, file.cFileName, all);
    } while (FindNextFileA(search, &file));
    FindClose(search);
}
