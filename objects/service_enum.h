// The enumerators over a service container's table.
#ifndef QXCORE_OBJECTS_SERVICE_ENUM_H
#define QXCORE_OBJECTS_SERVICE_ENUM_H

#include <qxcore/enum.h>
#include <qxcore/map.h>

namespace qx {

// The table of a container. It holds one reference on each object.
using ServiceMap = CTMap<const char*, IQXUnknown*>;

// A place in the table. It holds no reference on the container, which must outlive it.
template <class T>
class CServiceTableEnum : public CQXUnknownImpl<CTEnum<T>> {
public:
    CServiceTableEnum(ServiceMap* services, unsigned* enumerators)
        : m_services(services), m_enumerators(enumerators) {
        ++*enumerators;
    }
    ~CServiceTableEnum() override { --*m_enumerators; }

    void Reset() override { m_at = {}; }

protected:
    ServiceMap* m_services;
    ServiceMap::position m_at;  // at its end the walk starts over

private:
    unsigned* m_enumerators;
};

// The names are the table's own, valid while the entry exists.
class CServiceNameEnum final : public CServiceTableEnum<const char*> {
public:
    using CServiceTableEnum::CServiceTableEnum;

    int Next(unsigned count, const char** out, unsigned* fetched) override;
    int Skip(unsigned count) override;
};

// The objects that answer an interface, as that interface.
class CServiceEnum final : public CServiceTableEnum<IQXUnknown*> {
public:
    CServiceEnum(ServiceMap* services, unsigned* enumerators, qx_type_info const& id)
        : CServiceTableEnum(services, enumerators), m_id(id) {}

    // Passes over objects that refuse.
    int Next(unsigned count, IQXUnknown** out, unsigned* fetched) override;
    // Unlike Next, ends behind the first object that refuses.
    int Skip(unsigned count) override;

private:
    qx_type_info const& m_id;
};

}  // namespace qx

#endif
