// What lies deep within an element goes before the element itself.
#ifndef QXCORE_STORAGE_COMPOUND_DEEP_DELETION_H
#define QXCORE_STORAGE_COMPOUND_DEEP_DELETION_H

#include <qxcore/platform.h>

#include <objidl.h>

namespace qx {

// Deletes the storages that are nested deep in a storage, the innermost first. The platform calls
// itself for each level that it deletes, and a file decides how many there are. What cannot be
// opened or deleted is left to the platform. Throws CXMemException.
void DeleteDeepLevels(IStorage* parent, const wchar_t* name);

}  // namespace qx

#endif
