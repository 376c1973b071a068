#include "objects/service_container.h"

#include <qxcore/reference.h>
#include <qxcore/registry.h>

namespace {

constexpr const char* kClassName = "CLSID_OFSERVICECONTAINER";

}  // namespace

class CQXServiceContainer::Sweep {
public:
    explicit Sweep(CQXServiceContainer& container) : m_container(container) {
        if (m_container.sweeps++ == 0 && m_container.services.count) Advance();
    }
    Sweep(const Sweep&) = delete;
    Sweep& operator=(const Sweep&) = delete;
    ~Sweep() {
        if (--m_container.sweeps == 0) m_container.nextToTell = {};
    }

    // False when all have been told.
    bool TellNext() {
        ServiceMap::Node* node = m_container.nextToTell.node;
        if (!node) return false;
        Advance();  // while the entry is still there
        m_container.TellRemoved(node->value.value);
        return true;
    }

private:
    void Advance() { m_container.services.GetNext(m_container.nextToTell); }

    CQXServiceContainer& m_container;
};

// An entry that a sweep would tell next leaves the table.
void CQXServiceContainer::LeaveSweep(const char* name) {
    ServiceMap::Node* next = nextToTell.node;
    if (next && services.Find(name) == &next->value.value) services.GetNext(nextToTell);
}

CQXServiceContainer::~CQXServiceContainer() {
    // Every sink hears of its removal; what one throws ends here, since a destructor has nobody to
    // pass it to.
    Sweep sweep(*this);
    for (bool more = true; more;) {
        try {
            more = sweep.TellNext();
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
    if (!services.SetAt(name, object)) return 0;  // the table is being cleared
    if (auto sink = qx::Ask<IQXServiceSink>(object)) sink->OnServiceAdded(&handle);
    return 1;
}

int CQXServiceContainer::RemoveService(const char* name) {
    IQXUnknown* object;
    if (!services.Lookup(name, object, 1)) return 0;
    qx::Reference<IQXUnknown> held(object);  // alive while its sink hears of the removal
    LeaveSweep(name);
    services.RemoveKey(name);
    TellRemoved(object);
    return 1;
}

void CQXServiceContainer::RemoveAllServices() {
    {
        Sweep sweep(*this);
        while (sweep.TellNext()) {
        }
    }
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
