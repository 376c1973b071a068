// One counted reference that ends with its scope.
//
//     qx::Reference<IXFile> file(Fio_Open("letters.txt", 0));  // takes over what the call gives
//     if (!file) return;
//     qx::Reference<IXFile> second = file;                     // a further reference
//     auto persistent = qx::Ask<IPersistXStream>(object);      // null if the object has no such
//
// Ownership: what a creator, a query or an out parameter gives comes with a reference; construct
// from it, and the scope takes it over. What a parameter or a plain getter shows is borrowed; Hold
// takes a further reference for the scope. Null is allowed everywhere: it is no object and no
// reference.
//
// Errors: a Release can raise. The last release of a file closes it, and an output file whose end
// cannot be written raises CXFileException with code 2. A destructor may run while an exception is
// on its way already, so what is raised there is dropped, and so it is where an assignment lets the
// old object go. Where the failure matters, end the scope's work with Release(), which passes it
// on:
//
//     qx::Reference<IXFile> file(Fio_Open(path, QXFIO_RANDOM));
//     WriteAll(file.Get());  // what this raises reaches the caller; the file is closed
//     file.Release();        // the caller learns that closing fails
//
// I is an interface derived from IQXUnknown, a class that implements one, or an interface of the
// platform that has AddRef and Release. A Reference is as large as a pointer and, like what it
// holds, serves one thread at a time.
#ifndef QXCORE_REFERENCE_H
#define QXCORE_REFERENCE_H

#include <qxcore/unknown.h>

#include <cassert>
#include <cstddef>
#include <type_traits>
#include <utility>

namespace qx {

template <class I>
class Reference {
public:
    // No object.
    Reference() = default;
    Reference(std::nullptr_t) {}
    // Takes over the caller's reference on the object.
    explicit Reference(I* object) : m_object(object) {}
    // A further reference on the same object.
    Reference(const Reference& other) : m_object(other.Share()) {}
    // Takes over the other's reference and leaves the other without an object.
    Reference(Reference&& other) noexcept : m_object(other.Detach()) {}
    // The same from a reference on a class derived from I.
    template <class D, class = std::enable_if_t<std::is_convertible_v<D*, I*>>>
    Reference(const Reference<D>& other) : m_object(other.Share()) {}
    template <class D, class = std::enable_if_t<std::is_convertible_v<D*, I*>>>
    Reference(Reference<D>&& other) noexcept : m_object(other.Detach()) {}
    // Takes the new object, then lets the old one go; assigning a reference to itself changes
    // nothing.
    Reference& operator=(Reference other) noexcept;
    // Lets the object go; what its Release raises is dropped.
    ~Reference();

    // The object on loan: no reference changes hands.
    I* Get() const { return m_object; }
    // REQUIRES: there is an object.
    I* operator->() const;
    explicit operator bool() const { return m_object != nullptr; }

    // Lets the object go now and passes on what its Release raises. Holds nothing afterwards,
    // whatever happens.
    void Release();
    // Hands the reference to the caller; holds nothing afterwards.
    I* Detach() { return std::exchange(m_object, nullptr); }
    // A further reference for the caller; the one held stays.
    I* Share() const;
    // Where a call with an out parameter puts its object and the reference on it. Lets go of what
    // is held before, like Release.
    I** Receive();
    void Swap(Reference& other) noexcept { std::swap(m_object, other.m_object); }

private:
    I* m_object = nullptr;
};

// A reference of one's own on a borrowed object.
template <class I>
Reference<I> Hold(I* borrowed);

// The object's interface I, or null if it has none or there is no object. I's place in the object
// is where the object's QueryInterface says.
template <class I>
Reference<I> Ask(IQXUnknown* object);

// A new object of class T, with the creator's reference.
template <class T, class... Args>
Reference<T> Make(Args&&... args);

// ------------------------------------------------------------------------------------------------

template <class I>
Reference<I>& Reference<I>::operator=(Reference other) noexcept {
    Swap(other);
    return *this;
}

template <class I>
Reference<I>::~Reference() {
    if (!m_object) return;
    try {
        m_object->Release();
    } catch (...) {  // a second exception in flight would end the process
    }
}

template <class I>
I* Reference<I>::operator->() const {
    assert(m_object);
    return m_object;
}

template <class I>
void Reference<I>::Release() {
    if (I* object = Detach()) object->Release();
}

template <class I>
I* Reference<I>::Share() const {
    if (m_object) m_object->AddRef();
    return m_object;
}

template <class I>
I** Reference<I>::Receive() {
    Release();
    return &m_object;
}

template <class I>
Reference<I> Hold(I* borrowed) {
    if (borrowed) borrowed->AddRef();
    return Reference<I>(borrowed);
}

template <class I>
Reference<I> Ask(IQXUnknown* object) {
    IQXUnknown* answer = nullptr;
    if (object) object->QueryInterface(qx_typeid<I>(), &answer);
    return Reference<I>(static_cast<I*>(answer));
}

template <class T, class... Args>
Reference<T> Make(Args&&... args) {
    return Reference<T>(new T(std::forward<Args>(args)...));
}

}  // namespace qx

#endif
