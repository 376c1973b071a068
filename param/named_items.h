// One of the two name spaces of a node in memory: a map from folded names, and the names in order of first creation.
//
// The map compares hashes alone, so two names with one hash are one item; the list compares texts without regard to
// case. Replacing an item keeps its place and its first spelling in the list, while the map's key takes the new one.
#ifndef QXCORE_PARAM_NAMED_ITEMS_H
#define QXCORE_PARAM_NAMED_ITEMS_H

#include "core/reference.h"

#include <qxcore/list.h>
#include <qxcore/map.h>

#include <cstring>

template <class Item>
class NamedItems {
    using Map = CTMap<const unsigned long*, Item>;
    using Names = CTListEnum<const char*>;

public:
    using Argument = typename QXValueRule<Item>::Argument;

    NamedItems() : m_names(new Names) {}
    NamedItems(const NamedItems&) = delete;
    NamedItems& operator=(const NamedItems&) = delete;
    ~NamedItems() { m_names->RemoveAll(); }

    Item* Find(const char* name) { return m_items.Find(QXFoldedKey(name)); }

    // False while the items are being cleared.
    bool Set(const char* name, Argument item) {
        if (m_items.destroyed) return false;
        if (Find(name)) return m_items.SetAt(QXFoldedKey(name), item) != 0;
        m_names->AddTail(name);
        try {
            return m_items.SetAt(QXFoldedKey(name), item) != 0;
        } catch (...) {
            m_names->RemoveAt(static_cast<typename Names::position>(m_names->tail));
            throw;
        }
    }

    void Remove(const char* name) {
        RemoveName(name);
        m_items.RemoveKey(QXFoldedKey(name));
    }

    // The items go, and the name space is as new. An enumerator that someone still holds keeps the old list, which
    // is at its end for good.
    void Clear() {
        Reference<Names> fresh(new Names);
        m_names->RemoveAll();
        m_names.Swap(fresh);
        m_items.RemoveAll();
        m_items.destroyed = 0;
    }

    // Walks the live list. Null while the items are being cleared.
    CTEnum<const char*>* Enumerate() { return m_items.destroyed ? nullptr : m_names->CreateEnum(); }

private:
    Map m_items;
    Reference<Names> m_names;

    // The first entry that is equal without regard to case.
    void RemoveName(const char* name) {
        for (auto at = m_names->GetHeadPosition(); at;) {
            auto entry = at;
            if (_stricmp(*m_names->GetNext(at), name) != 0) continue;
            m_names->RemoveAt(entry);
            return;
        }
    }
};

#endif
