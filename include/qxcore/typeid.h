// The identity of an interface: its decorated class name as text, interned across modules.
//
//     struct IClock : IQXUnknown { ... };
//     QX_DECLARE_TYPEID(IClock, ".?AUIClock@@");
//
//     if (id == qx_typeid<IClock>()) ...
//
// Each module has records of its own. The first comparison of a record interns its name in a table
// of the whole process; from then on two records are compared by a pointer.
//
// Errors: a comparison never throws; without memory to intern a name it compares the texts.
// Threading: the first comparison of a record writes its cache word without a lock, so hosts
// compare the common interfaces once, on the main thread.
#ifndef QXCORE_TYPEID_H
#define QXCORE_TYPEID_H

#include <qxcore/export.h>
#include <qxcore/listitem.h>

#include <cstring>

// One interned interface name. Items are never removed and live until the process ends.
struct _TI_Item {
    char* name;        // a copy of the item's own
    QX_LISTITEM link;  // in the table
};

// Has the layout of the platform's type_info record, so it lies in writable memory: `item` is
// filled at run time. Two records with byte-identical names are the same interface, whatever module
// they come from.
struct qx_type_info {
    const void* table;       // the platform's own table pointer; never used
    mutable _TI_Item* item;  // null until the first comparison
    char name[112];  // ".?AU" + class + "@@" for a struct, ".?AV" + class + "@@" for a class
};

// Finds or makes the item of a name; throws CXMemException when it cannot. Inline comparison code
// of other modules calls it.
extern "C" QXCORE_API _TI_Item* __find_ti_item(const char* name);

// Fills the cache words the first time two records meet. Without the memory for that the texts are
// compared, and the words stay empty, so that a comparison never throws.
QXCORE_NOINLINE inline bool __compare_ti_names(const qx_type_info& a,
                                               const qx_type_info& b) noexcept {
    try {
        if (!b.item) b.item = __find_ti_item(b.name);
        if (!a.item) a.item = __find_ti_item(a.name);
        return a.item == b.item;
    } catch (...) {
        return strcmp(a.name, b.name) == 0;
    }
}

// After the first comparison of both records this is two pointer tests and a pointer comparison.
inline bool operator==(const qx_type_info& a, const qx_type_info& b) noexcept {
    if (a.item && b.item) return a.item == b.item;
    return __compare_ti_names(a, b);
}
inline bool operator!=(const qx_type_info& a, const qx_type_info& b) noexcept {
    return !(a == b);
}

template <class I>
struct qx_type_of;  // specialised by QX_DECLARE_TYPEID

// The calling module's own record of interface I.
template <class I>
inline qx_type_info const& qx_typeid() {
    return qx_type_of<I>::record;
}

// Gives an interface its identity; used once, at global scope:
//     QX_DECLARE_TYPEID(IMyThing, ".?AUIMyThing@@");
#define QX_DECLARE_TYPEID(interface_type, decorated_name)                       \
    template <>                                                                 \
    struct qx_type_of<interface_type> {                                         \
        static inline qx_type_info record = {nullptr, nullptr, decorated_name}; \
    }

#endif
