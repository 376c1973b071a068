// The loader's list of modules, read without its lock.
//
// Whatever is read may be gone at any moment, so every read is guarded, and nothing but a whole and
// fitting entry that the list still holds is taken for one. Where the system's records have another
// shape no entry is ever found.
#ifndef QXCORE_TRANSLATE_PLACES_LOADER_ENTRY_H
#define QXCORE_TRANSLATE_PLACES_LOADER_ENTRY_H

#include <qxcore/platform.h>

#include <cstddef>

namespace qx {

inline bool IsSeparator(wchar_t c) {
    return c == L':' || c == L'\\' || c == L'/';
}

// An address in the loader's memory; null for none.
using LoaderEntry = const void*;

// The entry of the module at this address, if its path ends with a separator and this ASCII name.
LoaderEntry FindEntryOf(HMODULE module, const char* name, size_t length);
// Whether that is such an entry still.
bool IsEntryOf(LoaderEntry entry, HMODULE module, const char* name, size_t length);

}  // namespace qx

#endif
