// The slots through which a module calls functions of other modules.
#ifndef QXCORE_TESTS_IMPORT_SLOT_H
#define QXCORE_TESTS_IMPORT_SLOT_H

#include <qxcore/platform.h>

// Where `module` keeps the address of an imported function; null when it does not import that name.
void** FindImportSlot(HMODULE module, const char* function);
// Writes a slot, whatever its page allows, and answers what was there.
void* SetImportSlot(void** slot, void* function);

#endif
