// Interfaces that a caller attaches to an object at run time, so that the object's QueryInterface
// answers them.
//
//     qx::Reference<IRegisterIface> door = qx::Ask<IRegisterIface>(param);
//     door->RegisterInterface(view, qx_typeid<IView>(), 1);  // param now answers IView
//     door->RegisterInterface(nullptr, qx_typeid<IView>(), 0);  // and no more
//
// A class that can carry interfaces embeds CAttachedInterfaces and forwards to it:
//
//     class CPage : public CQXUnknownImpl<IPage>, public IRegisterIface {
//         CPage() { m_attached.Register(static_cast<IRegisterIface*>(this),
//                                       qx_typeid<IRegisterIface>(), 0); }
//         int QueryInterface(qx_type_info const& id, IQXUnknown** out) override {
//             return m_attached.Query(id, out);
//         }
//         ...
//     };
//
// Errors: attaching throws CXMemException, with the table as it was. Threading: the object's.
#ifndef QXCORE_ATTACHED_H
#define QXCORE_ATTACHED_H

#include <qxcore/map.h>
#include <qxcore/reference.h>
#include <qxcore/unknown.h>

#include <memory>

struct IRegisterIface : public IQXUnknown {
    // Attaches or replaces what the object answers for `id`; a null object removes it. With
    // `counted` the table holds a reference; without, the attached object must outlive its entry.
    // `id` is a record that outlives the entry. 1, or 0 when there was nothing to remove.
    virtual int RegisterInterface(IQXUnknown* object, qx_type_info const& id, int counted) = 0;

protected:
    ~IRegisterIface() = default;
};
QX_DECLARE_TYPEID(IRegisterIface, ".?AUIRegisterIface@@");

// One attached interface. It owns the reference on a counted object, so it is not copied.
struct _tIQXUnknown {
    const char* name = nullptr;  // the id's decorated name, in the record itself
    IQXUnknown* object = nullptr;
    int counted = 0;

    // Lets a counted object go, and drops what its release raises.
    ~_tIQXUnknown() { qx::Reference<IQXUnknown> gone(counted ? object : nullptr); }
};

// The table that a carrying class embeds.
//
// An object that registers an interface of its own does so uncounted, or it would keep itself alive
// for ever.
class CAttachedInterfaces {
public:
    // As IRegisterIface::RegisterInterface.
    int Register(IQXUnknown* object, qx_type_info const& id, int counted);
    // Knows what is attached and nothing else. A null out asks without taking a reference. Never
    // throws.
    int Query(qx_type_info const& id, IQXUnknown** out);

private:
    CTMap<const char*, _tIQXUnknown*> m_entries;
};

// ------------------------------------------------------------------------------------------------

inline int CAttachedInterfaces::Register(IQXUnknown* object, qx_type_info const& id, int counted) {
    if (!object) return m_entries.RemoveKey(id.name);
    std::unique_ptr<_tIQXUnknown> entry(new _tIQXUnknown{id.name, object, counted});
    if (counted) object->AddRef();
    if (!m_entries.SetAt(id.name, entry.get())) return 0;
    entry.release();
    return 1;
}

inline int CAttachedInterfaces::Query(qx_type_info const& id, IQXUnknown** out) {
    // A map without entries is not asked: it would make its table, which takes memory.
    _tIQXUnknown** entry = m_entries.count ? m_entries.Find(id.name) : nullptr;
    return QXAnswerQuery(entry ? (*entry)->object : nullptr, out);
}

#endif
