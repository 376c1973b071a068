// The service container: the library's own creatable and aggregatable class.
#ifndef QXCORE_OBJECTS_SERVICE_CONTAINER_H
#define QXCORE_OBJECTS_SERVICE_CONTAINER_H

#include <qxcore/map.h>
#include <qxcore/platform.h>
#include <qxcore/services.h>

// Holds one reference on each object.
using ServiceMap = CTMap<const char*, IQXUnknown*>;

class CQXServiceContainer final : public CQXContainedObject<CQXServiceContainer>,
                                  public IQXServiceContainer {
public:
    CQXServiceContainer() : handle(static_cast<IQXServiceContainer*>(this)) {}
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
    void TellRemoved(IQXUnknown* object);

    ServiceMap services;
    CUnknownInternal handle;   // what sinks are given
    unsigned enumerators = 0;  // live ones
};

void RegisterServiceContainer(HINSTANCE ownModule);
void UnregisterServiceContainer();

#endif
