// Rewrites slots of the import address table of a loaded 64-bit module.
#ifndef QXCORE_TRANSLATE_INTERCEPTION_IMPORT_TABLE_H
#define QXCORE_TRANSLATE_INTERCEPTION_IMPORT_TABLE_H

#include <cstddef>

namespace qx {

// One function to exchange in a module's imports.
struct ImportExchange {
    const char* dll;
    const char* function;
    void* replacement;
    // The function's real address. Null when the system has no such function, when what lies at
    // the module's address is no 64-bit image, or when a slot cannot be made writable.
    void* result;
    void* slot = nullptr;  // one that was exchanged, if any was
};

enum class ImportWay {
    Patch,    // a slot with the real address gets the replacement
    Restore,  // a slot with the replacement gets the real address
};

// Does all exchanges in one walk over the slots. Whatever lies at `module`, nothing outside its own
// allocation is read or written: a broken table ends where its memory does. REQUIRES: module is not
// null.
void ExchangeImports(void* module, ImportWay way, ImportExchange* exchanges, size_t count);

// A single patch; answers its result. A null module gives the address of a function that returns
// 0.
void* PatchImportTable(void* module, const char* dll, const char* function, void* replacement);

}  // namespace qx

#endif
