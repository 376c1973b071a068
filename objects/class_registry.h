// The process-wide table of classes.
#ifndef QXCORE_OBJECTS_CLASS_REGISTRY_H
#define QXCORE_OBJECTS_CLASS_REGISTRY_H

#include <qxcore/map.h>
#include <qxcore/registry.h>
#include <qxcore/string.h>

namespace qx {

// One class: a creator, or where to find it.
class CRegistryEntry {
public:
    // A class of a loaded module.
    CRegistryEntry(HINSTANCE module, QXCreator creator) : module(module), creator(creator) {}
    // A class of a module file that is loaded later.
    CRegistryEntry(const char* entryName, const char* path) : path(path), entryName(entryName) {}

    HINSTANCE module = nullptr;   // null until loaded; never unloaded
    CXString path;                // the file's full name; empty for a class of a loaded module
    CXString entryName;           // likewise
    QXCreator creator = nullptr;  // null until resolved
};

void StartClassRegistry();
// Forgets all classes. What comes later finds nothing and registers nothing.
void StopClassRegistry();

}  // namespace qx

#endif
