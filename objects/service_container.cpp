#include "objects/service_container.h"

#include <qxcore/reference.h>
#include <qxcore/registry.h>

#include <cassert>

namespace qx {

namespace {

constexpr const char* kClassName = "CLSID_OFSERVICECONTAINER";

}  // namespace

class CQXServiceContainer::Sweep {
public:
    explicit Sweep(CQXServiceContainer& container) : m_container(container) {
        if (m_container.m_sweeps++ == 0 && m_container.m_services.count) Advance();
    }
    Sweep(const Sweep&) = delete;
    Sweep& operator=(const Sweep&) = delete;
    ~Sweep() {
        if (--m_container.m_sweeps == 0) m_container.m_nextToTell = {};
    }

    // False when all have been told.
    bool TellNext() {
        ServiceMap::Node* node = m_container.m_nextToTell.node;
        if (!node) return false;
        Advance();  // while the entry is still there
        m_container.TellRemoved(node->value.value);
        return true;
    }

private:
    void Advance() { m_container.m_services.GetNext(m_container.m_nextToTell); }

    CQXServiceContainer& m_container;
};

// An entry that a sweep would tell next leaves the table.
void CQXServiceContainer::LeaveSweep(const char* name) {
    ServiceMap::Node* next = m_nextToTell.node;
    if (next && m_services.Find(name) == &next->value.value) m_services.GetNext(m_nextToTell);
}

CQXServiceContainer::~CQXServiceContainer() {
    assert(m_enumerators == 0);
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
    *out = new CServiceEnum(&m_services, &m_enumerators, id);
    return 1;
}

int CQXServiceContainer::EnumServiceNames(CTEnum<const char*>** out) {
    *out = new CServiceNameEnum(&m_services, &m_enumerators);
    return 1;
}

int CQXServiceContainer::GetService(const char* name, IQXUnknown** out) {
    IQXUnknown* unused;
    return out ? m_services.Lookup(name, *out, 1) : m_services.Lookup(name, unused);
}

int CQXServiceContainer::AddService(const char* name, IQXUnknown* object) {
    if (GetService(name, nullptr)) return 0;
    if (!m_services.SetAt(name, object)) return 0;  // the table is being cleared
    if (auto sink = Ask<IQXServiceSink>(object)) sink->OnServiceAdded(&m_handle);
    return 1;
}

int CQXServiceContainer::RemoveService(const char* name) {
    IQXUnknown* object;
    if (!m_services.Lookup(name, object, 1)) return 0;
    Reference<IQXUnknown> held(object);  // alive while its sink hears of the removal
    LeaveSweep(name);
    m_services.RemoveKey(name);
    TellRemoved(object);
    held.Release();
    return 1;
}

void CQXServiceContainer::RemoveAllServices() {
    {
        Sweep sweep(*this);
        while (sweep.TellNext()) {
        }
    }
    struct TakesServicesAgain {  // also when the release of one raises
        ServiceMap& services;
        ~TakesServicesAgain() { services.destroyed = 0; }
    } again{m_services};
    m_services.RemoveAll();
}

void CQXServiceContainer::TellRemoved(IQXUnknown* object) {
    if (auto sink = Ask<IQXServiceSink>(object)) sink->OnServiceRemoved(&m_handle);
}

void RegisterServiceContainer(HINSTANCE ownModule) {
    RegisterObject(kClassName, ownModule);
}

void UnregisterServiceContainer() {
    UnregisterObject(kClassName);
}

}  // namespace qx

int CLSID_OFSERVICECONTAINER(IQXUnknown* outer, qx_type_info const& id, IQXUnknown** out) {
    return QXCreateAggregate<qx::CQXServiceContainer>(outer, id, out);
}
