// A function of the test in the place of one that the library imports, for a scope.
#ifndef QXCORE_TESTS_FILE_REPLACED_IMPORT_H
#define QXCORE_TESTS_FILE_REPLACED_IMPORT_H

#include "support/import_slot.h"

class ReplacedImport {
public:
    ReplacedImport(const char* function, void* replacement)
        : m_slot(FindImportSlot(GetModuleHandleA("qxcore.dll"), function)) {
        if (m_slot) m_real = SetImportSlot(m_slot, replacement);
    }
    ~ReplacedImport() {
        if (m_slot) SetImportSlot(m_slot, m_real);
    }
    ReplacedImport(const ReplacedImport&) = delete;
    ReplacedImport& operator=(const ReplacedImport&) = delete;

    // False when the library does not import the function.
    explicit operator bool() const { return m_slot != nullptr; }
    void* Real() const { return m_real; }

private:
    void** m_slot;
    void* m_real = nullptr;
};

#endif
