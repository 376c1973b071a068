// The intrusive circular list under the library's internal lists.
//
//     struct Window : QX_LISTITEM { ... };
//     COList windows;
//     windows.Append(&window);
//     if (QX_LISTITEM* item = windows.head) {
//         do Use(static_cast<Window*>(item)); while ((item = item->next) != windows.head);
//     }
//
// Ownership: a list owns nothing; whoever links an item unlinks it before it goes. Threading: none
// of its own.
#ifndef QXCORE_LISTITEM_H
#define QXCORE_LISTITEM_H

#include <cassert>

// A double link, embedded in or inherited by the listed record.
struct QX_LISTITEM {
    QX_LISTITEM* next;
    QX_LISTITEM* prev;
};

// The list head. The list is circular: a single item points to itself both ways, an empty list has
// null ends, and a walk ends by comparing with `tail` (forward) or `head` (backward), never at a
// null link.
struct COList {
    unsigned count = 0;  // items
    QX_LISTITEM* head = nullptr;
    QX_LISTITEM* tail = nullptr;

    // Links an item behind the last one. REQUIRES: the item is on no list.
    void Append(QX_LISTITEM* item);
    // Takes an item off; its own links stay as they were. REQUIRES: the item is on this list.
    void Unlink(QX_LISTITEM* item);
};

// ------------------------------------------------------------------------------------------------

inline void COList::Append(QX_LISTITEM* item) {
    assert(item && item != head && item != tail);
    if (!tail) {
        head = item;
    } else {
        tail->next = item;
    }
    item->prev = tail ? tail : item;
    item->next = head;
    head->prev = item;
    tail = item;
    ++count;
}

inline void COList::Unlink(QX_LISTITEM* item) {
    assert(count > 0 && item->prev->next == item && item->next->prev == item);
    if (--count == 0) {
        head = tail = nullptr;
        return;
    }
    item->prev->next = item->next;
    item->next->prev = item->prev;
    if (head == item) head = item->next;
    if (tail == item) tail = item->prev;
}

#endif
