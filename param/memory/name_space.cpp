#include "param/memory/name_space.h"

#include <cstring>
#include <new>

namespace qx {

namespace {

constexpr unsigned kSmall = 8;  // items that one chain serves well enough

template <class Visit>
void EachWalk(const COList& walks, const Visit& visit) {
    QX_LISTITEM* walk = walks.head;
    for (unsigned left = walks.count; left; --left, walk = walk->next)
        visit(*static_cast<NameSpace::Walk*>(walk));
}

void PushFront(NamedItem*& chain, NamedItem* item) {
    item->behind = chain;
    item->before = &chain;
    if (chain) chain->before = &item->behind;
    chain = item;
}

void CutOut(NamedItem* item) {
    *item->before = item->behind;
    if (item->behind) item->behind->before = item->before;
    item->behind = nullptr;
}

}  // namespace

// The space

NamedItem* NameSpace::Find(unsigned hash) const {
    if (m_index.InUse()) return static_cast<NamedItem*>(m_index.Find(hash));
    NamedItem* item = m_chains ? m_chains->Of(hash) : m_onlyChain;
    while (item && item->hash != hash) item = item->behind;
    return item;
}

void NameSpace::Add(NamedItem* item) noexcept {
    if (!m_chains && m_count >= kSmall) {
        m_chains.reset(new (std::nothrow) Chains());
        if (m_chains) Spread(*m_chains);
    }
    PushFront(ChainOf(item->hash), item);
    item->stored = true;
    ++m_count;
    m_names.Append(item);
    item->listed = true;
    Index(item);
}

// The only chain becomes the chains that it would have been. They are empty at first.
void NameSpace::Spread(Chains& chains) noexcept {
    NamedItem* oldest = nullptr;
    while (NamedItem* item = m_onlyChain) {
        m_onlyChain = item->behind;
        PushFront(oldest, item);
    }
    while (NamedItem* item = oldest) {
        oldest = item->behind;
        PushFront(chains.Of(item->hash), item);
    }
}

// The index begins when chains are longer than one on average, and is tried again from time to time
// without memory.
void NameSpace::Index(NamedItem* added) noexcept {
    if (m_index.InUse()) {
        m_index.Add(added->hash, added, added);
    } else if (m_chains && m_count % kChains == 0) {
        m_index.Start(m_count);
        for (NamedItem* item : m_chains->of) {
            for (; item && m_index.InUse(); item = item->behind)
                m_index.Add(item->hash, item, item);
        }
    }
}

void NameSpace::Unlist(const char* name) noexcept {
    NamedItem* item = First();
    while (item && _stricmp(item->Name(), name) != 0) item = Next(item);
    if (!item) return;
    EachWalk(m_walks, [item](Walk& walk) { walk.Leave(item); });
    m_names.Unlink(item);
    item->listed = false;
    item->FreeIfUnknown();
}

void NameSpace::Remove(NamedItem* item) {
    CutOut(item);
    --m_count;
    if (m_index.InUse()) m_index.Remove(item->hash);
    EndingItems(item).End();
}

EndingItems NameSpace::TakeAll() noexcept {
    EachWalk(m_walks, [](Walk& walk) { walk.End(); });
    NamedItem* next = First();
    while (NamedItem* item = next) {
        next = Next(item);
        item->listed = false;
        item->FreeIfUnknown();
    }
    m_names = {};
    std::unique_ptr<Chains> taken = std::move(m_chains);
    Chains onStack = {};
    Chains& chains = taken ? *taken : onStack;
    Spread(chains);
    m_index.Drop();
    m_count = 0;
    NamedItem* first = nullptr;
    for (unsigned i = kChains; i--;) {
        NamedItem** end = &chains.of[i];
        while (*end) end = &(*end)->behind;
        *end = std::exchange(first, nullptr);
        first = chains.of[i];
    }
    return EndingItems(first);
}

// Walks

int NameSpace::Walk::Next(unsigned count, const char** out, unsigned* fetched) {
    Start();
    unsigned delivered = 0;
    for (; out && delivered < count; ++delivered) {
        const char* name = NextName();
        if (!name) break;
        out[delivered] = name;
    }
    if (fetched) *fetched = delivered;
    return delivered > 0;
}

int NameSpace::Walk::Skip(unsigned count) {
    Start();
    while (count-- && m_at) Step();
    return m_at != nullptr;
}

void NameSpace::Walk::Reset() {
    m_at = m_collection->First();
    m_started = 1;
}

// Of a node

NameSpace& NamedItems::Space() {
    if (!m_space) m_space = Make<NameSpace>();
    return *m_space.Get();
}

NamedItem* NamedItems::Find(const char* name) const {
    return m_space ? m_space->Find(QXHashFolded(name).hash) : nullptr;
}

bool NamedItems::Set(const char* name, unsigned hash, const tagQXVARIANT& value) {
    if (m_closed) return false;
    NameSpace& space = Space();
    if (NamedItem* present = space.Find(hash)) {
        present->Replace(value);
    } else {
        space.Add(NamedItem::Make(name, hash, value));
    }
    return true;
}

void NamedItems::Remove(const char* name) {
    if (!m_space) return;
    Reference<NameSpace> space = m_space;
    unsigned hash = QXHashFolded(name).hash;
    space->Unlist(name);
    if (NamedItem* item = space->Find(hash)) space->Remove(item);
}

EndingItems NamedItems::Close() noexcept {
    m_closed = true;
    return m_space ? m_space->TakeAll() : EndingItems(nullptr);
}

NameSpace::Walk* NamedItems::Enumerate() {
    return m_closed ? nullptr : new NameSpace::Walk(&Space());
}

}  // namespace qx
