// Stands in for a function that the library imports.
#ifndef QXCORE_TESTS_TRANSLATE_REPLACED_IMPORT_H
#define QXCORE_TESTS_TRANSLATE_REPLACED_IMPORT_H

#include "support/import_slot.h"

// Replaces one function that the library imports, for a scope.
class ReplacedImport {
public:
    template <class Function>
    ReplacedImport(const char* function, Function* replacement)
        : slot(FindImportSlot(GetModuleHandleA("qxcore.dll"), function)),
          real(SetImportSlot(slot, reinterpret_cast<void*>(replacement))) {}
    ~ReplacedImport() { SetImportSlot(slot, real); }
    ReplacedImport(const ReplacedImport&) = delete;
    ReplacedImport& operator=(const ReplacedImport&) = delete;

private:
    void** slot;
    void* real;
};

#endif
