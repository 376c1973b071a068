// The root interface, and the templates that implement it.
//
// Every object that modules share is reached through an interface derived from IQXUnknown. An
// interface, its identity and a class look like this:
//
//     struct IClock : IQXUnknown {
//         virtual int Minutes() = 0;
//     };
//     QX_DECLARE_TYPEID(IClock, ".?AUIClock@@");  // at global scope
//
//     class CClock : public CQXUnknownImpl<IClock> {
//     public:
//         int Minutes() override { return 12 * 60; }
//     };
//
//     IClock* clock = new CClock;                                  // with one reference
//     IQXUnknown* other;
//     if (clock->QueryInterface(qx_typeid<IAlarm>(), &other)) ...  // other has one of its own
//     clock->Release();
//
// <qxcore/reference.h> has the class that owns such a reference for the length of a scope.
//
// Ownership: a creator, QueryInterface and an out parameter each give the caller one reference,
// which he releases. An argument is borrowed; a callee that keeps it calls AddRef.
//
// Errors: counting and asking never throw. The last Release may raise what the object's end raises,
// as that of a file does which cannot be closed.
//
// Threading: counts are plain increments; an object belongs to one thread at a time.
#ifndef QXCORE_UNKNOWN_H
#define QXCORE_UNKNOWN_H

#include <qxcore/typeid.h>

#include <cassert>
#include <type_traits>
#include <utility>

struct IQXUnknown {
    // Takes a reference. The result is the count, for diagnosis only.
    virtual unsigned AddRef() = 0;
    // Drops a reference. At zero the object destroys itself and the answer is 0.
    virtual unsigned Release() = 0;
    // Asks for the interface of that identity: 1 and a reference in *out, or 0 and null there. What
    // *out holds is the interface asked for, as a pointer to its root. A null out asks without
    // taking a reference.
    virtual int QueryInterface(qx_type_info const& id, IQXUnknown** out) = 0;

protected:
    ~IQXUnknown() = default;
};
QX_DECLARE_TYPEID(IQXUnknown, ".?AUIQXUnknown@@");

// Answers a query with a candidate that may be null: the rule behind every QueryInterface of the
// library.
//
//     int QueryInterface(qx_type_info const& id, IQXUnknown** out) override {
//         if (InternalQueryInterface(id, out)) return 1;
//         return QXAnswerQuery(id == qx_typeid<IAlarm>() ? m_alarm : nullptr, out);
//     }
inline int QXAnswerQuery(IQXUnknown* candidate, IQXUnknown** out);

// The standard implementation of one interface. A new object carries the creator's reference.
//
// The public three forward, through the virtual table, to the Internal three, so a class that
// overrides the public ones still reaches the template's behaviour. A class with more interfaces
// overrides QueryInterface, calls InternalQueryInterface first and then answers its further
// interfaces with QXAnswerQuery.
template <class I>
class CQXUnknownImpl : public I {
public:
    CQXUnknownImpl() = default;
    CQXUnknownImpl(const CQXUnknownImpl&) = delete;
    CQXUnknownImpl& operator=(const CQXUnknownImpl&) = delete;

    unsigned AddRef() override { return InternalAddRef(); }
    unsigned Release() override { return InternalRelease(); }
    int QueryInterface(qx_type_info const& id, IQXUnknown** out) override {
        return InternalQueryInterface(id, out);
    }

    virtual ~CQXUnknownImpl() = default;

    virtual unsigned InternalAddRef() { return ++m_refs; }
    // While the object is being destroyed its count stands at 1: whom the destructor calls may take
    // and drop references, and does not destroy the object a second time.
    virtual unsigned InternalRelease();
    // Knows IQXUnknown and I.
    virtual int InternalQueryInterface(qx_type_info const& id, IQXUnknown** out);

private:
    unsigned m_refs = 1;
};

// An implementation whose object keeps a parent alive. The public count is a second one, beside the
// template's.
template <class I, class P>
class CQXUnknownImplParent : public CQXUnknownImpl<I> {
public:
    unsigned AddRef() override { return ++m_publicRefs; }
    // The last release lets go of the parent before the object is destroyed; what the parent's
    // Release raises reaches the caller once the object is gone. The count stands at 1 meanwhile,
    // as in CQXUnknownImpl, and there is no parent any more.
    unsigned Release() override;

    // Takes a reference on the new parent before dropping the old one; null makes the object a
    // root. The new parent is in its place when the old one goes.
    virtual void SetParent(P* parent);
    // The parent with a reference for the caller; null for a root.
    virtual P* GetParent();

private:
    void ReplaceParent(P* parent);

    unsigned m_publicRefs = 1;
    P* m_parent = nullptr;
};

// Base of a class that can be aggregated: every reference and query goes to the controlling object.
//
// T derives from CQXContainedObject<T> and from its interface, and has the non-virtual
//     int ContainedQueryInterface(qx_type_info const& id, IQXUnknown** out);
// which answers T's own interface and adds the reference itself. It may leave the root's three
// operations of its interface open; a T that is reached through them while it is being destroyed
// implements them, each by that of CQXContainedObject.
template <class T>
class CQXContainedObject {
public:
    virtual unsigned AddRef() { return outer->AddRef(); }
    virtual unsigned Release() { return outer->Release(); }
    virtual int QueryInterface(qx_type_info const& id, IQXUnknown** out) {
        return outer->QueryInterface(id, out);
    }
    virtual ~CQXContainedObject() = default;

    IQXUnknown* outer = nullptr;  // not counted; set by CQXAggObject
};

// Such a T as a whole class: the root's operations of its interface go to the controlling object
// too.
template <class T>
class CQXContainedWhole : public T {
public:
    unsigned AddRef() override { return this->outer->AddRef(); }
    unsigned Release() override { return this->outer->Release(); }
    int QueryInterface(qx_type_info const& id, IQXUnknown** out) override {
        return this->outer->QueryInterface(id, out);
    }
};

// The controlling object around a T by value. It starts with one reference. Creators make it:
// see QXCreateAggregate in <qxcore/registry.h>.
template <class T>
class CQXAggObject : public IQXUnknown {
public:
    // A null outer makes this object its own controller.
    explicit CQXAggObject(IQXUnknown* outer) { contained.outer = outer ? outer : this; }
    CQXAggObject(const CQXAggObject&) = delete;
    CQXAggObject& operator=(const CQXAggObject&) = delete;

    // Answers the count from before the increment. It alone does so; callers ignore the result.
    unsigned AddRef() override { return m_refs++; }
    unsigned Release() override;
    // IQXUnknown is this object, every other interface the contained one's. REQUIRES: out is not
    // null.
    int QueryInterface(qx_type_info const& id, IQXUnknown** out) override;
    virtual ~CQXAggObject() = default;

private:
    unsigned m_refs = 1;

public:
    // A T that implements the root's operations itself is whole already.
    std::conditional_t<std::is_abstract_v<T>, CQXContainedWhole<T>, T> contained;
};

// A handle on its owner that extends no lifetime: counting does nothing, a query reaches the owner.
// An object hands it to a callee that must find it but not keep it alive.
class CUnknownInternal : public IQXUnknown {
public:
    explicit CUnknownInternal(IQXUnknown* owner) : owner(owner) {}
    virtual ~CUnknownInternal() = default;

    unsigned AddRef() override { return 0; }
    unsigned Release() override { return 0; }
    int QueryInterface(qx_type_info const& id, IQXUnknown** out) override {
        return owner->QueryInterface(id, out);
    }

    IQXUnknown* owner;  // not counted: the object that has the handle
};

// ------------------------------------------------------------------------------------------------

inline int QXAnswerQuery(IQXUnknown* candidate, IQXUnknown** out) {
    if (!out) return candidate != nullptr;
    *out = candidate;
    if (!candidate) return 0;
    candidate->AddRef();
    return 1;
}

template <class I>
unsigned CQXUnknownImpl<I>::InternalRelease() {
    if (--m_refs != 0) return m_refs;
    m_refs = 1;
    delete this;
    return 0;
}

template <class I>
int CQXUnknownImpl<I>::InternalQueryInterface(qx_type_info const& id, IQXUnknown** out) {
    bool known = id == qx_typeid<I>() || id == qx_typeid<IQXUnknown>();
    return QXAnswerQuery(known ? this : nullptr, out);
}

template <class I, class P>
unsigned CQXUnknownImplParent<I, P>::Release() {
    if (--m_publicRefs != 0) return m_publicRefs;
    m_publicRefs = 1;
    try {
        ReplaceParent(nullptr);
    } catch (...) {
        delete this;
        throw;
    }
    delete this;
    return 0;
}

template <class I, class P>
void CQXUnknownImplParent<I, P>::SetParent(P* parent) {
    if (parent) parent->AddRef();
    ReplaceParent(parent);
}

template <class I, class P>
P* CQXUnknownImplParent<I, P>::GetParent() {
    if (m_parent) m_parent->AddRef();
    return m_parent;
}

template <class I, class P>
void CQXUnknownImplParent<I, P>::ReplaceParent(P* parent) {
    P* old = std::exchange(m_parent, parent);
    if (old) old->Release();
}

template <class T>
unsigned CQXAggObject<T>::Release() {
    if (--m_refs != 0) return m_refs;
    m_refs = 1;  // as in CQXUnknownImpl
    delete this;
    return 0;
}

template <class T>
int CQXAggObject<T>::QueryInterface(qx_type_info const& id, IQXUnknown** out) {
    assert(out);
    *out = nullptr;
    if (id == qx_typeid<IQXUnknown>()) {
        *out = this;
        AddRef();
    } else if (contained.ContainedQueryInterface(id, out)) {
        return 1;
    }
    return *out != nullptr;
}

#endif
