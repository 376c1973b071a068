// References that end with their scope.
#ifndef QXCORE_TESTS_HELD_H
#define QXCORE_TESTS_HELD_H

#include <qxcore/unknown.h>

#include <memory>
#include <utility>

// Takes over a reference; null is allowed.
struct ReleaseObject {
    void operator()(IQXUnknown* object) const { object->Release(); }
};
template <class I>
using Ref = std::unique_ptr<I, ReleaseObject>;

// A new object of a test's own class with the creator's reference.
template <class T>
class Held {
public:
    template <class... Args>
    explicit Held(Args&&... args) : object(new T(std::forward<Args>(args)...)) {}
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    ~Held() { object->Release(); }

    T* operator->() const { return object; }
    operator T*() const { return object; }

private:
    T* object;
};

#endif
