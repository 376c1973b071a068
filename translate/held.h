// One reference on an object of an interface, for a scope.
#ifndef QXCORE_TRANSLATE_HELD_H
#define QXCORE_TRANSLATE_HELD_H

#include <qxcore/exception.h>

#include <utility>

template <class I>
class Held {
public:
    // Takes over the creator's reference.
    explicit Held(I* object) : m_object(object) {}
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    // A file that cannot be closed is no news to who is leaving for another reason.
    ~Held() {
        try {
            Release();
        } catch (CXException&) {
        }
    }

    // Lets go before the scope ends, where a failure to close is to be heard of.
    void Release() {
        if (I* object = std::exchange(m_object, nullptr)) object->Release();
    }

    I* operator->() const { return m_object; }
    I* Get() const { return m_object; }
    explicit operator bool() const { return m_object != nullptr; }

private:
    I* m_object;
};

#endif
