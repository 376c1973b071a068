// An object of a test's own class with the creator's reference, dropped at the end of the scope.
#ifndef QXCORE_TESTS_OBJECTS_HELD_H
#define QXCORE_TESTS_OBJECTS_HELD_H

#include <utility>

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
