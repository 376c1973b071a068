// The registry's functions, passed on by a module that imports the library to modules that do not.
#ifndef QXCORE_TESTS_OBJECTS_REGISTRY_CALLS_H
#define QXCORE_TESTS_OBJECTS_REGISTRY_CALLS_H

#include <qxcore/platform.h>
#include <qxcore/unknown.h>

struct RegistryCalls {
    qx_type_info const*
        root;  // of a module that goes with the library: a record keeps what it once compared
    int (*registerHandle)(const char* name, HINSTANCE module);
    int (*registerPath)(const char* name, const char* path);
    int (*isRegistered)(const char* name);
    int (*unregister)(const char* name);
    int (*create)(const char* name, IQXUnknown* outer, qx_type_info const& id, IQXUnknown** out);
};

// Exported by test_calls_module as "GetRegistryCalls", and taken by test_late_caller_module as
// "KeepRegistryCalls".
using GetRegistryCallsFunction = RegistryCalls (*)();
using KeepRegistryCallsFunction = void (*)(const RegistryCalls& calls);

constexpr UINT kLateCallsDidNoHarm =
    70;  // the exit code of a process whose late calls answered as they should

#endif
