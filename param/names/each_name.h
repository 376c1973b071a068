// A walk over the names that an enumerator delivers.
#ifndef QXCORE_PARAM_NAMES_EACH_NAME_H
#define QXCORE_PARAM_NAMES_EACH_NAME_H

#include <qxcore/enum.h>
#include <qxcore/reference.h>
#include <qxcore/string.h>

namespace qx {

// Calls `visit` with a copy of each name, so that it may delete the entry. Takes over the
// enumerator's reference; null is an empty walk.
template <class Visit>
void EachName(CTEnum<const char*>* names, Visit visit) {
    Reference<CTEnum<const char*>> walk(names);
    const char* name;
    while (walk && walk->Next(1, &name, nullptr)) visit(CXString(name));
}

}  // namespace qx

#endif
