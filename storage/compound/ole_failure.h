// The exception codes of structured-storage failures.
#ifndef QXCORE_STORAGE_COMPOUND_OLE_FAILURE_H
#define QXCORE_STORAGE_COMPOUND_OLE_FAILURE_H

#include <qxcore/platform.h>

namespace qx {

int CodeOfStatus(HRESULT status);

}  // namespace qx

#endif
