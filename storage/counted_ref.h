// Owns one reference on a counted object, of ours or of the platform.
#ifndef QXCORE_STORAGE_COUNTED_REF_H
#define QXCORE_STORAGE_COUNTED_REF_H

template <class T>
class CountedRef {
public:
    CountedRef() = default;
    // Takes a reference of its own; null is allowed.
    explicit CountedRef(T* object) : m_object(object) {
        if (object) object->AddRef();
    }
    CountedRef(CountedRef&& other) noexcept : m_object(other.m_object) { other.m_object = nullptr; }
    CountedRef& operator=(CountedRef&&) = delete;
    ~CountedRef() {
        if (m_object) m_object->Release();
    }

    T* operator->() const { return m_object; }
    T* Get() const { return m_object; }
    explicit operator bool() const { return m_object != nullptr; }

    // Where a creating call puts its object. REQUIRES: nothing is owned yet.
    T** Out() { return &m_object; }
    // One more reference, for a caller; null stays null.
    T* NewReference() const {
        if (m_object) m_object->AddRef();
        return m_object;
    }

private:
    T* m_object = nullptr;
};

#endif
