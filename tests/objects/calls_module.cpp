#include "objects/registry_calls.h"

#include <qxcore/registry.h>

extern "C" __declspec(dllexport) RegistryCalls GetRegistryCalls() {
    return {&qx_typeid<IQXUnknown>(), RegisterObject,   RegisterObject,
            IsRegisterObject,         UnregisterObject, CreateObject};
}
