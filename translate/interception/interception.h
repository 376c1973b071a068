// The 24 intercepted functions: their replacements, their real addresses, and what all replacements
// keep.
#ifndef QXCORE_TRANSLATE_INTERCEPTION_INTERCEPTION_H
#define QXCORE_TRANSLATE_INTERCEPTION_INTERCEPTION_H

#include "translate/places/lookup.h"

#include <qxcore/platform.h>

#include <atomic>

// The one list: the library that each function is taken from, and the function. Modules are patched
// in this order.
#define QX_EACH_INTERCEPTED(ROW)                  \
    ROW("user32.DLL", LoadStringA)                \
    ROW("USER32.DLL", LoadStringW)                \
    ROW("USER32.DLL", LoadMenuIndirectA)          \
    ROW("USER32.DLL", LoadMenuA)                  \
    ROW("USER32.DLL", LoadMenuW)                  \
    ROW("KERNEL32.DLL", LoadResource)             \
    ROW("KERNEL32.DLL", FindResourceA)            \
    ROW("KERNEL32.DLL", FindResourceExA)          \
    ROW("KERNEL32.DLL", FindResourceW)            \
    ROW("KERNEL32.DLL", FindResourceExW)          \
    ROW("KERNEL32.DLL", LockResource)             \
    ROW("KERNEL32.DLL", FreeResource)             \
    ROW("KERNEL32.DLL", SizeofResource)           \
    ROW("USER32.DLL", CreateDialogParamA)         \
    ROW("USER32.DLL", CreateDialogParamW)         \
    ROW("USER32.DLL", DialogBoxParamA)            \
    ROW("USER32.DLL", DialogBoxParamW)            \
    ROW("USER32.DLL", MessageBoxIndirectA)        \
    ROW("USER32.DLL", MessageBoxA)                \
    ROW("USER32.DLL", MessageBoxExA)              \
    ROW("USER32.DLL", DialogBoxIndirectParamA)    \
    ROW("USER32.DLL", DialogBoxIndirectParamW)    \
    ROW("USER32.DLL", CreateDialogIndirectParamA) \
    ROW("USER32.DLL", CreateDialogIndirectParamW)

namespace qx {

// kLoadStringA and so on.
#define QX_ENUMERATOR(dll, function) k##function,
enum Intercepted : int { QX_EACH_INTERCEPTED(QX_ENUMERATOR) kInterceptedCount };
#undef QX_ENUMERATOR

// What patched modules call in place of the system's functions: NewLoadStringA and so on, of the
// same types and contracts, with translated results.
#define QX_REPLACEMENT(dll, function) decltype(::function) New##function;
QX_EACH_INTERCEPTED(QX_REPLACEMENT)
#undef QX_REPLACEMENT

// What each installation found, null where it found nothing.
extern std::atomic<void*> g_RealProcs[kInterceptedCount];

// The real function: as the last installation found it, else as the library imports it, so that a
// module in which nothing could be patched takes nothing from those patched before.
template <class Function>
Function* RealProc(Intercepted which, Function* ownImport) {
    void* found = g_RealProcs[which].load(std::memory_order_relaxed);
    return found ? reinterpret_cast<Function*>(found) : ownImport;
}
#define QX_REAL(function) RealProc(k##function, ::function)

// The intercepted call `function` for a module, as the observer is told of it.
#define QX_CALL(function, module)  \
    LookupCall {                   \
#function, module, nullptr \
    }

// Puts the thread's last error back at the end of its scope: after a replacement a caller sees the
// real function's, whatever else the replacement asked of the system.
class KeptLastError {
public:
    KeptLastError() : m_error(GetLastError()) {}
    ~KeptLastError() { SetLastError(m_error); }
    KeptLastError(const KeptLastError&) = delete;
    KeptLastError& operator=(const KeptLastError&) = delete;

private:
    DWORD m_error;
};

// Exchanges the 24 functions in the imports of a module, or puts the real ones back. REQUIRES:
// module is not null.
void PatchModule(HMODULE module);
void UnpatchModule(HMODULE module);

// Builds the layer's state and takes it down; the latter frees the records and unpatches the listed
// modules.
void StartInterception();
void StopInterception();

}  // namespace qx

#endif
