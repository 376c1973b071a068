// The interfaces that the test modules and the test program share. Each has a type record of its
// own for them.
#ifndef QXCORE_TESTS_OBJECTS_TICKET_H
#define QXCORE_TESTS_OBJECTS_TICKET_H

#include <qxcore/unknown.h>

struct ITicket : IQXUnknown {
    virtual int Number() = 0;
    // The module whose code this is.
    virtual void* Module() = 0;

protected:
    ~ITicket() = default;
};
QX_DECLARE_TYPEID(ITicket, ".?AUITicket@@");

struct IInspector : IQXUnknown {
    // The number of a ticket that somebody else made, or -1 if the object is none.
    virtual int Inspect(IQXUnknown* object) = 0;
    // A ticket of the inspector's own, with a reference for the caller, or null if the caller asks
    // for something else.
    virtual IQXUnknown* Issue(qx_type_info const& id) = 0;

protected:
    ~IInspector() = default;
};
QX_DECLARE_TYPEID(IInspector, ".?AUIInspector@@");

#endif
