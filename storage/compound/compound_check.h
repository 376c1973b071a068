// Whether the tables of a compound file hang together.
//
// Implementations of the platform's storage follow broken chains and trees without an end, so a
// file is looked over before it is opened: no chain and no tree leaves the file, meets itself or
// another one, and each is as long as the element that it holds.
#ifndef QXCORE_STORAGE_COMPOUND_CHECK_H
#define QXCORE_STORAGE_COMPOUND_CHECK_H

namespace qx {

// False for a compound file that must not be opened. A file that cannot be read or is no compound
// file counts as sound: that is for the platform to say.
bool IsSoundCompoundFile(const char* path);

}  // namespace qx

#endif
