// A reference that ends with its scope.
#ifndef QXCORE_CORE_REFERENCE_H
#define QXCORE_CORE_REFERENCE_H

#include <qxcore/unknown.h>

template <class I>
class Reference {
public:
    Reference() = default;
    // Takes over the caller's reference; null is allowed.
    explicit Reference(I* object) : m_object(object) {}
    Reference(const Reference&) = delete;
    Reference& operator=(const Reference&) = delete;
    ~Reference() {
        if (m_object) m_object->Release();
    }

    I* Get() const { return m_object; }
    I* operator->() const { return m_object; }
    explicit operator bool() const { return m_object != nullptr; }

private:
    I* m_object = nullptr;
};

// The object's interface I with a reference, or nothing. A null object has no interface.
template <class I>
Reference<I> Ask(IQXUnknown* object) {
    IQXUnknown* answer = nullptr;
    if (object) object->QueryInterface(qx_typeid<I>(), &answer);
    return Reference<I>(static_cast<I*>(answer));
}

#endif
