// The 24 intercepted functions: their real addresses, their replacements, and the patching of a
// module.
#ifndef QXCORE_TRANSLATE_INTERCEPTION_H
#define QXCORE_TRANSLATE_INTERCEPTION_H

#include <qxcore/platform.h>

#include <atomic>

enum Intercepted : int {
    kLoadStringA,
    kLoadStringW,
    kLoadMenuIndirectA,
    kLoadMenuA,
    kLoadMenuW,
    kLoadResource,
    kFindResourceA,
    kFindResourceExA,
    kFindResourceW,
    kFindResourceExW,
    kLockResource,
    kFreeResource,
    kSizeofResource,
    kCreateDialogParamA,
    kCreateDialogParamW,
    kDialogBoxParamA,
    kDialogBoxParamW,
    kMessageBoxIndirectA,
    kMessageBoxA,
    kMessageBoxExA,
    kDialogBoxIndirectParamA,
    kDialogBoxIndirectParamW,
    kCreateDialogIndirectParamA,
    kCreateDialogIndirectParamW,
    kInterceptedCount
};

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

// Builds the layer's state and takes it down; the latter frees the records and unpatches the listed
// modules.
void StartInterception();
void StopInterception();

#endif
