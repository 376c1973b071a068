#define TYPEID_MODULE_BUILDING
#include "core/typeid_module.h"

#include <qxcore/exception.h>

namespace {

class CSharedThing : public CQXUnknownImpl<ISharedThing> {
public:
    int Secret() override { return 4711; }
};

}  // namespace

qx_type_info const* Module_RecordOfSharedThing() {
    return &qx_typeid<ISharedThing>();
}

ISharedThing* Module_NewSharedThing() {
    return new CSharedThing;
}

int Module_AsksForSharedThing(IQXUnknown* object) {
    return object->QueryInterface(qx_typeid<ISharedThing>(), nullptr);
}

void* Module_New(size_t size) {
    return ::operator new(size);
}

void Module_Delete(void* block) {
    ::operator delete(block);
}

void Module_ThrowFileException() {
    throw CXFileException(QXERR_SHARING, "from the module", QXOP_RENAME);
}
