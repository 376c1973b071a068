// What happens when the library is loaded and unloaded.
#ifndef QXCORE_MODULE_START_UP_H
#define QXCORE_MODULE_START_UP_H

#include <qxcore/platform.h>

// Builds the process-wide state, in the order in which later parts need earlier ones.
void StartUp(HINSTANCE module);
// Its mirror: last built, first taken down.
void ShutDown(HINSTANCE module);

#endif
