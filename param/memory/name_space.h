// One of the two name spaces of a node in memory: items by the hash of their folded names, and the
// names in the order of first creation.
//
// The chains compare hashes and nothing else: two names with one hash are one item. The list
// compares texts without regard to case. So a name may stay in the list when its item goes under
// another spelling. Replacing an item keeps its place and its first spelling in the list.
#ifndef QXCORE_PARAM_MEMORY_NAME_SPACE_H
#define QXCORE_PARAM_MEMORY_NAME_SPACE_H

#include "param/memory/named_item.h"

#include <qxcore/enum.h>
#include <qxcore/hash.h>
#include <qxcore/map_index.h>
#include <qxcore/reference.h>

#include <memory>

namespace qx {

// The live list is walked, so a walk sees what is added before it has come to its end. An entry
// that is removed moves the walks that stand in front of it on to the next one; after TakeAll a
// walk is at its end until it is reset.
//
// Items end chain by chain, in each the newest first.
class NameSpace final : public CQXUnknownImpl<IQXUnknown> {
public:
    class Walk;

    NameSpace() = default;
    ~NameSpace() override { TakeAll(); }

    NamedItem* Find(unsigned hash) const;
    // The same where it often is the one behind another one in the list, which may be null.
    NamedItem* FindBehind(const NamedItem* one, unsigned hash) const {
        NamedItem* next = one && one->listed ? Next(one) : First();
        return next && next->stored && next->hash == hash ? next : Find(hash);
    }
    // Takes over an item whose hash no other one has.
    void Add(NamedItem* item) noexcept;
    // The first name that is equal without regard to case, if there is one.
    void Unlist(const char* name) noexcept;
    // The item goes. Passes on what its value's end raises.
    void Remove(NamedItem* item);
    // All names go, and the items wait for their end.
    EndingItems TakeAll() noexcept;

    NamedItem* First() const { return static_cast<NamedItem*>(m_names.head); }
    // Null behind the last.
    NamedItem* Next(const NamedItem* item) const {
        return item == m_names.tail ? nullptr : static_cast<NamedItem*>(item->next);
    }

private:
    static constexpr unsigned kChains = 127;
    struct Chains {
        NamedItem* of[kChains];
        NamedItem*& Of(unsigned hash) { return of[hash % kChains]; }
    };

    COList m_names;
    COList m_walks;
    unsigned m_count = 0;              // items that are stored
    NamedItem* m_onlyChain = nullptr;  // of a small space
    std::unique_ptr<Chains> m_chains;  // of a larger one, if there was memory for them
    QXMapIndex m_index;                // as that of a map

    NamedItem*& ChainOf(unsigned hash) { return m_chains ? m_chains->Of(hash) : m_onlyChain; }
    void Spread(Chains& chains) noexcept;
    void Index(NamedItem* added) noexcept;
};

// Names on their way to a caller. Each reference holds the name space too, and not the node.
class NameSpace::Walk final : public _CCollectionEnum<NameSpace, const char*>, public QX_LISTITEM {
public:
    explicit Walk(NameSpace* names) : _CCollectionEnum(names), QX_LISTITEM{} {
        names->m_walks.Append(this);
    }
    ~Walk() override {
        StandAt(nullptr);
        m_collection->m_walks.Unlink(this);
    }

    int Next(unsigned count, const char** out, unsigned* fetched) override;
    // The same for a single name, or null.
    const char* NextName();
    // 1 if a name remains.
    int Skip(unsigned count) override;
    void Reset() override;

    // The item of the name that was delivered last. Item and name stay until the next one is
    // delivered; it may have left the list or the chains since.
    const NamedItem* Last() const { return m_last; }

    void Leave(const NamedItem* unlisted) {
        if (m_at == unlisted) Step();
    }
    void End() { m_at = nullptr; }

private:
    NamedItem* m_at = nullptr;  // the next to deliver
    NamedItem* m_last = nullptr;

    void Step() { m_at = m_collection->Next(m_at); }
    void StandAt(NamedItem* item);
};

inline void NameSpace::Walk::StandAt(NamedItem* item) {
    if (item) ++item->walks;
    NamedItem* left = std::exchange(m_last, item);
    if (!left) return;
    --left->walks;
    left->FreeIfUnknown();
}

inline const char* NameSpace::Walk::NextName() {
    Start();
    if (!m_at) return nullptr;
    StandAt(m_at);
    Step();
    return m_last->Name();
}

// A name space of a node. The space is made by the first name or walk: an empty node costs its
// fields alone.
class NamedItems {
public:
    NamedItems() = default;
    NamedItems(const NamedItems&) = delete;
    NamedItems& operator=(const NamedItems&) = delete;
    ~NamedItems() { Close(); }

    NamedItem* Find(const char* name) const;
    NamedItem* FindBehind(const NamedItem* one, unsigned hash) const {
        return m_space ? m_space->FindBehind(one, hash) : nullptr;
    }
    // False while the space is closed.
    bool Set(const char* name, const tagQXVARIANT& value) {
        return Set(name, QXHashFolded(name).hash, value);
    }
    bool Set(const char* name, unsigned hash, const tagQXVARIANT& value);
    // The name may be one that a walk delivered.
    void Remove(const char* name);

    // Takes nothing more until it is opened again. Closing it once more does nothing.
    EndingItems Close() noexcept;
    void Reopen() { m_closed = false; }
    bool IsClosed() const { return m_closed; }

    // Null while the space is closed.
    NameSpace::Walk* Enumerate();

private:
    Reference<NameSpace> m_space;
    bool m_closed = false;

    NameSpace& Space();
};

}  // namespace qx

#endif
