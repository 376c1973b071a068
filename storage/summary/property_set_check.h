// Whether a property set may be opened, told from its bytes.
//
// Implementations of the platform's property sets take counts, offsets and lengths on trust, so a
// set is looked over before it is opened: every table and every value lies within its section, and
// every text ends within its own length.
#ifndef QXCORE_STORAGE_SUMMARY_PROPERTY_SET_CHECK_H
#define QXCORE_STORAGE_SUMMARY_PROPERTY_SET_CHECK_H

#include <qxcore/platform.h>

#include <objidl.h>

namespace qx {

enum class PropertySetState {
    Sound,    // also when it is missing or cannot be read: that is for the platform to say
    Damaged,  // must not be opened, and may be replaced
    Alien,    // must not be opened here, but means something to other programs
};

PropertySetState StateOfPropertySet(IStorage* storage, const FMTID& format);

}  // namespace qx

#endif
