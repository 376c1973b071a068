// One of the two name spaces of a node in memory: items by the hash of their folded names, and the
// names in order.
//
// The map compares hashes and nothing else, so it needs no texts: two names with one hash are one
// item. The list compares texts without regard to case. Replacing an item keeps its place and its
// first spelling in the list.
#ifndef QXCORE_PARAM_MEMORY_NAMED_ITEMS_H
#define QXCORE_PARAM_MEMORY_NAMED_ITEMS_H

#include "param/memory/name_list.h"

#include <qxcore/hash.h>
#include <qxcore/map.h>
#include <qxcore/reference.h>

template <class Item>
class NamedItems {
public:
    using Argument = typename QXValueRule<Item>::Argument;

    NamedItems() = default;
    NamedItems(const NamedItems&) = delete;
    NamedItems& operator=(const NamedItems&) = delete;
    ~NamedItems() { ClearNames(); }

    Item* Find(const char* name) { return m_items.Find(Key(name)); }

    // False while the items are being cleared.
    bool Set(const char* name, Argument item) {
        if (m_items.destroyed) return false;
        unsigned key = Key(name);
        if (m_items.Find(key)) return m_items.SetAt(key, item) != 0;
        NameList::Name* added = Names().Add(name);
        try {
            return m_items.SetAt(key, item) != 0;
        } catch (...) {
            m_names->Remove(added);
            throw;
        }
    }

    // The name may be one that an enumerator delivered.
    void Remove(const char* name) {
        unsigned key = Key(name);
        if (m_names) m_names->Remove(name);
        m_items.RemoveKey(key);
    }

    // The items go, and the name space is as new.
    void Clear() {
        ClearNames();
        m_items.RemoveAll();
        m_items.destroyed = 0;
    }

    // Walks the live list. Null while the items are being cleared.
    CTEnum<const char*>* Enumerate() { return m_items.destroyed ? nullptr : Names().Enumerate(); }

private:
    CTMap<unsigned, Item> m_items;
    qx::Reference<NameList>
        m_names;  // made by the first name or walk: an empty node costs its fields alone

    NameList& Names() {
        if (!m_names) m_names = qx::Reference<NameList>(new NameList);
        return *m_names.Get();
    }
    // Walks that someone still holds keep the list.
    void ClearNames() {
        if (m_names) m_names->Clear();
    }

    static unsigned Key(const char* name) { return QXHashFolded(name).hash; }
};

#endif
