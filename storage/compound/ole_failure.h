// The exception codes of structured-storage failures.
#ifndef QXCORE_STORAGE_COMPOUND_OLE_FAILURE_H
#define QXCORE_STORAGE_COMPOUND_OLE_FAILURE_H

#include <qxcore/platform.h>

int CodeOfStatus(HRESULT status);

#endif
