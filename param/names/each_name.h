// A walk over the names that an enumerator delivers.
#ifndef QXCORE_PARAM_NAMES_EACH_NAME_H
#define QXCORE_PARAM_NAMES_EACH_NAME_H

#include <qxcore/enum.h>
#include <qxcore/reference.h>
#include <qxcore/string.h>

namespace qx {

// Calls `visit` with each name. Takes over the enumerator's reference; null is an empty walk.
// REQUIRES: the visit deletes no entry.
template <class Visit>
void EachNameInPlace(CTEnum<const char*>* names, const Visit& visit) {
    Reference<CTEnum<const char*>> walk(names);
    const char* name;
    while (walk && walk->Next(1, &name, nullptr)) visit(name);
}

// The same with a copy of each name, so that the visit may delete the entry.
template <class Visit>
void EachName(CTEnum<const char*>* names, Visit visit) {
    EachNameInPlace(names, [&](const char* name) { visit(CXString(name)); });
}

}  // namespace qx

#endif
