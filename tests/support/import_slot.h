// The slots through which a module calls functions of other modules.
#ifndef QXCORE_TESTS_IMPORT_SLOT_H
#define QXCORE_TESTS_IMPORT_SLOT_H

#include <qxcore/platform.h>

// Where `module` keeps the address of an imported function; null when it does not import that name.
void** FindImportSlot(HMODULE module, const char* function);
// Writes a slot, whatever its page allows, and answers what was there.
void* SetImportSlot(void** slot, void* function);

// A function of the test in the place of one that the library imports, for a scope.
class ReplacedImport {
public:
    ReplacedImport(const char* function, void* replacement);
    ~ReplacedImport();
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
