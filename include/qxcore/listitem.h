// The intrusive circular list under the library's internal lists.
#ifndef QXCORE_LISTITEM_H
#define QXCORE_LISTITEM_H

// A double link, embedded in or inherited by the listed record.
struct QX_LISTITEM {
    QX_LISTITEM* next;
    QX_LISTITEM* prev;
};

// The list head. The list is circular: a single item points to itself both ways, an empty list has
// null ends, and a walk ends by comparing with `tail` (forward) or `head` (backward), never at a
// null link.
struct COList {
    unsigned count = 0;
    QX_LISTITEM* head = nullptr;
    QX_LISTITEM* tail = nullptr;

    void Append(QX_LISTITEM* item) {
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

    // REQUIRES: the item is on this list.
    void Unlink(QX_LISTITEM* item) {
        if (--count == 0) {
            head = tail = nullptr;
            return;
        }
        item->prev->next = item->next;
        item->next->prev = item->prev;
        if (head == item) head = item->next;
        if (tail == item) tail = item->prev;
    }
};

#endif
