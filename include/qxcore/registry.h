// Making objects from class names.
//
// A class name is at the same time the undecorated name of an exported creator in some module. The
// table is one for the process, so separately loaded modules see the same classes. Names are
// compared by their 32-bit text hash alone: two names of one hash are one class. Errors: 0, with
// *out null; what a creator throws passes through. Threading: no lock. Registration happens at
// start-up, on one thread.
#ifndef QXCORE_REGISTRY_H
#define QXCORE_REGISTRY_H

#include <qxcore/platform.h>
#include <qxcore/unknown.h>

// What a module exports for each of its classes, as extern "C". Answers non-zero if *out holds a
// new object with one reference for the caller. `outer` is the aggregating object or null.
using QXCreator = int (*)(IQXUnknown* outer, qx_type_info const& id, IQXUnknown** out);

// Declares and exports a creator, in the module that has the class:
//     QX_CREATOR(MyClass) { return QXCreateInstance<CMyClass>(outer, id, out); }
#define QX_CREATOR(name)                                                                 \
    extern "C" __declspec(dllexport) int name(IQXUnknown* outer, qx_type_info const& id, \
                                              IQXUnknown** out)

// Asks a new object for `id`; the creator's own reference goes.
template <class T>
int QXAnswerCreation(T* created, qx_type_info const& id, IQXUnknown** out) {
    int known = created->QueryInterface(id, out);
    created->Release();
    return known;
}

// The body of a creator whose class cannot be aggregated. Throws CXMemException.
template <class T>
int QXCreateInstance(IQXUnknown* outer, qx_type_info const& id, IQXUnknown** out) {
    *out = nullptr;
    return outer ? 0 : QXAnswerCreation(new T, id, out);
}

// The body of a creator whose class T can be aggregated: it derives from CQXContainedObject<T>.
// Given an outer object it answers IQXUnknown only. Throws CXMemException.
template <class T>
int QXCreateAggregate(IQXUnknown* outer, qx_type_info const& id, IQXUnknown** out) {
    *out = nullptr;
    if (outer && id != qx_typeid<IQXUnknown>()) return 0;
    return QXAnswerCreation(new CQXAggObject<T>(outer), id, out);
}

// Registers a class of a loaded module. 0 if the module does not export the name.
// The first registration of a name wins: a second one answers 1 and changes nothing, whatever it
// says.
QXCORE_API int RegisterObject(const char* name, HINSTANCE module);
// Registers a class of a module file, found now by the system's search order and loaded at the
// first CreateObject. 0 if the file cannot be found. Whether it exports the name shows only when an
// object is made.
QXCORE_API int RegisterObject(const char* name, const char* path);
// Forgets the class. Its module stays loaded and its objects stay valid. 0 if the name is unknown.
QXCORE_API int UnregisterObject(const char* name);
// 1 if the name is registered, also when its module cannot be loaded. Loads nothing.
QXCORE_API int IsRegisterObject(const char* name);

// Makes an object and answers what its creator answered. A module that could not be loaded is tried
// again at the next call; an entry point that was missing is not looked for again.
QXCORE_API int CreateObject(const char* name, IQXUnknown* outer, qx_type_info const& id,
                            IQXUnknown** out);
// The same under an undecorated name.
extern "C" QXCORE_API int CreateObjectC(const char* name, IQXUnknown* outer, qx_type_info const& id,
                                        IQXUnknown** out);

#endif
