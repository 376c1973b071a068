// Modules by the name they have in context keys: the file name, as it was spelled when the module
// was loaded.
#ifndef QXCORE_TRANSLATE_MODULE_NAME_H
#define QXCORE_TRANSLATE_MODULE_NAME_H

#include <qxcore/platform.h>

#include <optional>

class ModuleName {
public:
    // A null module is the program.
    explicit ModuleName(HMODULE module);
    ModuleName(const ModuleName&) = delete;
    ModuleName& operator=(const ModuleName&) = delete;

    // Null when the module has no path with a separator.
    const char* Text() const { return m_name; }

private:
    char m_path[260 + 1];
    const char* m_name;
};

// The text hash of a module's name; nothing when it has none. Kept per module while the modules are
// watched, since asking for the name costs more than loading a string. Any thread may call it.
std::optional<unsigned> ModuleNameHash(HMODULE module);

// For the watch: an address may mean another module from now on.
void ForgetModuleNames();

#endif
