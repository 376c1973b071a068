// Every dialog, menu and string table of the modules in the system's folder: what real programs'
// resources are like.
#ifndef QXCORE_TESTS_TRANSLATE_INTERCEPTION_SYSTEM_RESOURCES_H
#define QXCORE_TESTS_TRANSLATE_INTERCEPTION_SYSTEM_RESOURCES_H

#include <qxcore/platform.h>

#include <cstdint>
#include <string>
#include <vector>

enum ResourceType : uint16_t { kMenus = 4, kDialogs = 5, kStringTables = 6 };

struct Resource {
    HMODULE module;
    const char* file;  // the module's
    std::string name;  // empty for a number
    uint16_t id;
    uint16_t type;
    WORD language;
    const uint8_t* data;
    DWORD size;

    const char* Name() const { return name.empty() ? MAKEINTRESOURCEA(id) : name.c_str(); }
    const char* Type() const { return MAKEINTRESOURCEA(type); }
    // For a message.
    std::string Text() const;
};

// The modules stay mapped as data for the whole run.
class SystemResources {
public:
    SystemResources();

    std::vector<Resource> all;
    int modules = 0;  // that have any of them
};

#endif
