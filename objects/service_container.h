// The service container: the library's own creatable and aggregatable class.
#ifndef QXCORE_OBJECTS_SERVICE_CONTAINER_H
#define QXCORE_OBJECTS_SERVICE_CONTAINER_H

#include "objects/service_enum.h"

#include <qxcore/platform.h>
#include <qxcore/services.h>

namespace qx {

class CQXServiceContainer final : public CQXContainedObject<CQXServiceContainer>,
                                  public IQXServiceContainer {
public:
    CQXServiceContainer() : m_handle(static_cast<IQXServiceContainer*>(this)) {}
    ~CQXServiceContainer() override;

    unsigned AddRef() override { return CQXContainedObject::AddRef(); }
    unsigned Release() override { return CQXContainedObject::Release(); }
    int QueryInterface(qx_type_info const& id, IQXUnknown** out) override {
        return CQXContainedObject::QueryInterface(id, out);
    }
    int ContainedQueryInterface(qx_type_info const& id, IQXUnknown** out);

    int EnumServices(qx_type_info const& id, CTEnum<IQXUnknown*>** out) override;
    int EnumServiceNames(CTEnum<const char*>** out) override;
    int GetService(const char* name, IQXUnknown** out) override;
    int AddService(const char* name, IQXUnknown* object) override;
    int RemoveService(const char* name) override;
    void RemoveAllServices() override;

private:
    // Tells each service of its removal. Sinks may change the container meanwhile: a service that
    // leaves is not told again, and a sweep inside a sweep goes on where the outer one stands.
    class Sweep;

    void TellRemoved(IQXUnknown* object);
    void LeaveSweep(const char* name);

    ServiceMap m_services;
    CUnknownInternal m_handle;          // what sinks are given
    unsigned m_enumerators = 0;         // live ones
    ServiceMap::position m_nextToTell;  // {} when no sweep is on its way, or none is left to tell
    unsigned m_sweeps = 0;              // one inside the other
};

void RegisterServiceContainer(HINSTANCE ownModule);
void UnregisterServiceContainer();

}  // namespace qx

#endif
