// Modules by their file names: the name of a module, and the module of a name.
//
// An address may mean another module at any time: one is unloaded and the next comes to its place,
// and the loader does not tell of every module. So what is known of a module is asked for anew in
// each call, or proved, but for the program, which stays.
#ifndef QXCORE_TRANSLATE_PLACES_MODULE_NAME_H
#define QXCORE_TRANSLATE_PLACES_MODULE_NAME_H

#include "translate/places/known_modules.h"

#include <qxcore/platform.h>

#include <optional>

namespace qx {

// From here on the program's name is known without asking for it, and those of other modules are
// asked for once.
void StartModuleNames();

extern HMODULE g_program;  // null before the start

// The name that a module has in context keys: its file name, as it was spelled when the module was
// loaded. Asked for when it is first needed; the thread's last error stays as it is.
class ModuleName {
public:
    // A null module is the program.
    explicit ModuleName(const void* module)
        : m_module(static_cast<HMODULE>(const_cast<void*>(module))) {}
    ModuleName(const ModuleName&) = delete;
    ModuleName& operator=(const ModuleName&) = delete;

    HMODULE Module() const { return m_module; }
    // Whether the module surely stays as long as the process.
    bool IsProgram() const { return g_program && (!m_module || m_module == g_program); }
    // Another one for every module that is or was at this address; 0 where nothing tells them
    // apart.
    unsigned Life();

    // Null when the module has no path with a separator.
    const char* Text();
    // The text hash of the name; nothing when there is none.
    std::optional<unsigned> Hash();
    // Compares without regard to ASCII case.
    bool Is(const char* name);

private:
    static constexpr DWORD kPathSize = 260;

    void Ask();
    void AskTheSystem();
    void Keep() const;
    void AskForNarrowPath();
    void TakeAsciiPath(const wchar_t* path, size_t length);

    HMODULE m_module;
    bool m_isAsked = false;
    FoundModule m_found;
    const char* m_text = nullptr;
    char m_path[kPathSize + 1];
};

// The modules that are loaded at one moment.
class LoadedModules {
public:
    LoadedModules();
    LoadedModules(const LoadedModules&) = delete;
    LoadedModules& operator=(const LoadedModules&) = delete;

    // What GetModuleHandleA answers for a name without a path. Asking the system for a module that
    // is not loaded may search the disk, so it is asked for those only whose name is there.
    HMODULE Find(const char* name) const;

private:
    bool MayHold(const char* name) const;

    static constexpr DWORD kMost = 512;
    HMODULE m_modules[kMost];
    DWORD m_count = 0;
    bool m_isWhole;  // all of them are in the array
};

}  // namespace qx

#endif
