// A reference that ends with its scope, on an object of ours or of the platform.
#ifndef QXCORE_CORE_REFERENCE_H
#define QXCORE_CORE_REFERENCE_H

#include <qxcore/unknown.h>

#include <utility>

template <class I>
class Reference {
public:
    Reference() = default;
    // Takes over the caller's reference; null is allowed.
    explicit Reference(I* object) : m_object(object) {}
    Reference(Reference&& other) noexcept : m_object(other.Detach()) {}
    Reference& operator=(Reference&& other) noexcept {
        Reference old(std::move(other));
        Swap(old);
        return *this;
    }
    ~Reference() {
        if (m_object) m_object->Release();
    }

    I* Get() const { return m_object; }
    I* operator->() const { return m_object; }
    explicit operator bool() const { return m_object != nullptr; }

    // One more reference, for a caller; null stays null.
    I* Share() const {
        if (m_object) m_object->AddRef();
        return m_object;
    }
    // Hands the reference to the caller.
    I* Detach() { return std::exchange(m_object, nullptr); }
    // Where a creating call puts its object. REQUIRES: nothing is held yet.
    I** Out() { return &m_object; }
    void Swap(Reference& other) noexcept { std::swap(m_object, other.m_object); }

private:
    I* m_object = nullptr;
};

// A reference of one's own on a borrowed object; null is allowed.
template <class I>
Reference<I> Hold(I* object) {
    if (object) object->AddRef();
    return Reference<I>(object);
}

// The object's interface I with a reference, or nothing. A null object has no interface.
template <class I>
Reference<I> Ask(IQXUnknown* object) {
    IQXUnknown* answer = nullptr;
    if (object) object->QueryInterface(qx_typeid<I>(), &answer);
    return Reference<I>(static_cast<I*>(answer));
}

#endif
