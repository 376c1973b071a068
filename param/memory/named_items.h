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
#include <qxcore/param.h>

#include <utility>
#include <qxcore/reference.h>

namespace qx {

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
        if (Item* present = m_items.Find(key)) return Replace(*present, item);
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

    // The items go, and the name space is as new. While they go, it takes nothing, and clearing it
    // once more does nothing.
    void Clear() {
        if (m_items.destroyed) return;
        Close();
        m_items.destroyed = 0;
    }
    // The same where the items do not go with their entries: `take` may keep each of them, and
    // `letGo` ends the kept ones.
    template <class Take, class LetGo>
    void Clear(const Take& take, const LetGo& letGo) {
        if (m_items.destroyed) return;
        Close(take);
        letGo();
        m_items.destroyed = 0;
    }
    // The items go, and the name space takes nothing more.
    void Close() {
        ClearNames();
        m_items.RemoveAll();
        m_items.destroyed = 1;
    }
    template <class Take>
    void Close(const Take& take) {
        typename CTMap<unsigned, Item>::position at;
        while (Item* item = m_items.count ? m_items.GetNext(at) : nullptr) take(*item);
        Close();
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

    // The new value is whole and in place before the old one goes: what goes may look into the
    // tree, and making the new one may find no memory.
    static bool Replace(CQXVariant& stored, const CQXVariant& value) {
        CQXVariant fresh(value);
        std::swap<tagQXVARIANT>(fresh, stored);
        return true;
    }
    static bool Replace(IParam*& stored, IParam* value) {
        QXValueRule<IParam*>::Replace(stored, value);
        return true;
    }

    static unsigned Key(const char* name) { return QXHashFolded(name).hash; }
};

}  // namespace qx

#endif
