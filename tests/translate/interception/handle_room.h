// How much room the process's handle tables have left. The system's own count is a stub under Wine.
#ifndef QXCORE_TESTS_TRANSLATE_INTERCEPTION_HANDLE_ROOM_H
#define QXCORE_TESTS_TRANSLATE_INTERCEPTION_HANDLE_ROOM_H

#include <qxcore/platform.h>

#include <vector>

// How many more objects of a kind the process can have before its table is full.
template <class Create, class Destroy>
size_t Room(Create create, Destroy destroy) {
    std::vector<decltype(create())> objects;
    while (auto object = create()) objects.push_back(object);
    for (auto object : objects) destroy(object);
    return objects.size();
}

inline size_t GdiRoom() {
    return Room([] { return CreatePen(PS_SOLID, 1, 0); }, [](HPEN pen) { DeleteObject(pen); });
}

// Under Wine the table is that of the whole session: a program that asks runs beside no other.
inline size_t UserRoom() {
    return Room([] { return CreateMenu(); }, [](HMENU menu) { DestroyMenu(menu); });
}

#endif
