#include "objects/service_container.h"

#include "objects/service_enum.h"

#include <qxcore/reference.h>
#include <qxcore/registry.h>

namespace {

constexpr const char* kClassName = "CLSID_OFSERVICECONTAINER";

}  // namespace

CQXServiceContainer::~CQXServiceContainer() {
    if (!services.count) return;  // a walk over an unused table would make it
    // Every sink hears of its removal; what one throws ends here, since a destructor has nobody to
    // pass it to.
    ServiceMap::position at;
    while (IQXUnknown** object = services.GetNext(at)) {
        try {
            TellRemoved(*object);
        } catch (...) {
        }
    }
}

int CQXServiceContainer::ContainedQueryInterface(qx_type_info const& id, IQXUnknown** out) {
    IQXServiceContainer* self = this;
    return QXAnswerQuery(id == qx_typeid<IQXServiceContainer>() ? self : nullptr, out);
}

int CQXServiceContainer::EnumServices(qx_type_info const& id, CTEnum<IQXUnknown*>** out) {
    *out = new CServiceEnum(&services, &enumerators, id);
    return 1;
}

int CQXServiceContainer::EnumServiceNames(CTEnum<const char*>** out) {
    *out = new CServiceNameEnum(&services, &enumerators);
    return 1;
}

int CQXServiceContainer::GetService(const char* name, IQXUnknown** out) {
    IQXUnknown* unused;
    return out ? services.Lookup(name, *out, 1) : services.Lookup(name, unused);
}

int CQXServiceContainer::AddService(const char* name, IQXUnknown* object) {
    if (GetService(name, nullptr)) return 0;
    services.SetAt(name, object);
    if (auto sink = qx::Ask<IQXServiceSink>(object)) sink->OnServiceAdded(&handle);
    return 1;
}

int CQXServiceContainer::RemoveService(const char* name) {
    IQXUnknown* object;
    if (!services.Lookup(name, object, 1)) return 0;
    qx::Reference<IQXUnknown> held(object);  // alive while its sink hears of the removal
    services.RemoveKey(name);
    TellRemoved(object);
    return 1;
}

void CQXServiceContainer::RemoveAllServices() {
    ServiceMap::position at;
    while (IQXUnknown** object = services.GetNext(at)) TellRemoved(*object);
    services.RemoveAll();
    services.destroyed = 0;  // the container takes services again
}

void CQXServiceContainer::TellRemoved(IQXUnknown* object) {
    if (auto sink = qx::Ask<IQXServiceSink>(object)) sink->OnServiceRemoved(&handle);
}

int CLSID_OFSERVICECONTAINER(IQXUnknown* outer, qx_type_info const& id, IQXUnknown** out) {
    return QXCreateAggregate<CQXServiceContainer>(outer, id, out);
}

void RegisterServiceContainer(HINSTANCE ownModule) {
    RegisterObject(kClassName, ownModule);
}

void UnregisterServiceContainer() {
    UnregisterObject(kClassName);
}
