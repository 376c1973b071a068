// The library's own module handle.
#ifndef QXCORE_CORE_MODULE_HANDLE_H
#define QXCORE_CORE_MODULE_HANDLE_H

#include <qxcore/platform.h>

namespace qx {

// Known from the start of load on; before that found from the address of this code, and kept.
HINSTANCE OwnModule();
void SetOwnModule(HINSTANCE module);

}  // namespace qx

#endif
