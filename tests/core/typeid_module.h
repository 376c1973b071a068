// What the second module of the identity tests exports.
#ifndef QXCORE_TESTS_CORE_TYPEID_MODULE_H
#define QXCORE_TESTS_CORE_TYPEID_MODULE_H

#include <qxcore/unknown.h>

#include <cstddef>

struct ISharedThing : IQXUnknown {
    virtual int Secret() = 0;

protected:
    ~ISharedThing() = default;
};
QX_DECLARE_TYPEID(ISharedThing, ".?AUISharedThing@@");

#if defined(TYPEID_MODULE_BUILDING)
#define TYPEID_MODULE_API extern "C" __declspec(dllexport)
#else
#define TYPEID_MODULE_API extern "C" __declspec(dllimport)
#endif

TYPEID_MODULE_API qx_type_info const* Module_RecordOfSharedThing();
TYPEID_MODULE_API ISharedThing* Module_NewSharedThing();
TYPEID_MODULE_API int Module_AsksForSharedThing(IQXUnknown* object);
TYPEID_MODULE_API void* Module_New(size_t size);
TYPEID_MODULE_API void Module_Delete(void* block);
TYPEID_MODULE_API void Module_ThrowFileException();

#endif
