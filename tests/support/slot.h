// The virtual tables of objects, read as a compiler with the platform's own layout reads them.
#ifndef QXCORE_TESTS_SLOT_H
#define QXCORE_TESTS_SLOT_H

// A virtual operation by its place in the table; the object is its first argument.
template <class Function>
Function* Slot(const void* object, int index) {
    return reinterpret_cast<Function*>((*static_cast<void** const*>(object))[index]);
}

// How many places a virtual destructor takes: the deleting form alone, or a complete one before it.
#if defined(_MSC_VER)
inline constexpr int kDestructorSlots = 1;
#else
inline constexpr int kDestructorSlots = 2;
#endif

#endif
