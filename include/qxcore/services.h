// A named bag of objects through which a host's modules find each other.
//
// Made by CreateObject("CLSID_OFSERVICECONTAINER", outer, ...), also as part of an aggregate.
// Names are compared by their 32-bit text hash alone: two names of one hash are one service.
// Errors: 0. What a sink throws passes through.
// Threading: a container belongs to one thread at a time.
#ifndef QXCORE_SERVICES_H
#define QXCORE_SERVICES_H

#include <qxcore/unknown.h>

template <class T>
class CTEnum;

struct IQXServiceContainer : IQXUnknown {
    // The services that answer the interface, and all names, in no particular order. Always 1.
    // REQUIRES: the container outlives the enumerator and stands still while it is used.
    virtual int EnumServices(qx_type_info const& id, CTEnum<IQXUnknown*>** out) = 0;
    virtual int EnumServiceNames(CTEnum<const char*>** out) = 0;
    // 1 if the name is present; the caller then owns a reference if `out` was given.
    virtual int GetService(const char* name, IQXUnknown** out) = 0;
    // Keeps a reference. 0 if the name is taken: nothing is replaced.
    virtual int AddService(const char* name, IQXUnknown* object) = 0;
    // 0 if the name is absent.
    virtual int RemoveService(const char* name) = 0;
    // Tells every sink while all services are still there, then releases them. The container takes
    // services again afterwards. A sink may use the container meanwhile, and even empty it: a
    // service that leaves is not told again by this call, and what is added goes with the others.
    virtual void RemoveAllServices() = 0;

protected:
    ~IQXServiceContainer() = default;
};
QX_DECLARE_TYPEID(IQXServiceContainer, ".?AUIQXServiceContainer@@");

// Optional on a service that wants to know when it joins and leaves. The argument reaches the
// container and counts no references: a sink may keep it while the container lives.
struct IQXServiceSink : IQXUnknown {
    // A throw leaves the service in the container.
    virtual void OnServiceAdded(IQXUnknown* container) = 0;
    // The object is still alive.
    virtual void OnServiceRemoved(IQXUnknown* container) = 0;

protected:
    ~IQXServiceSink() = default;
};
QX_DECLARE_TYPEID(IQXServiceSink, ".?AUIQXServiceSink@@");

// The creator. Given an outer object it answers IQXUnknown only.
extern "C" QXCORE_API int CLSID_OFSERVICECONTAINER(IQXUnknown* outer, qx_type_info const& id,
                                                   IQXUnknown** out);

#endif
