// A shortcut to the nodes of a large map: which node has this hash.
//
// It answers sooner what the map's chains say and holds nothing of its own, so a map works the same
// without it: when memory runs out it is dropped. It is a part of CTMap, and of the name spaces of
// nodes in memory, which are such maps.
//
// A slot stands at its hash's home or in the run of taken slots behind it; half of the slots at
// least are free.
#ifndef QXCORE_MAP_INDEX_H
#define QXCORE_MAP_INDEX_H

#include <qxcore/export.h>

#include <cassert>
#include <xmmintrin.h>

class QXMapIndex {
public:
    constexpr QXMapIndex() = default;
    QXMapIndex(const QXMapIndex&) = delete;
    QXMapIndex& operator=(const QXMapIndex&) = delete;
    ~QXMapIndex() { Drop(); }

    bool InUse() const { return m_slots != nullptr; }

    // The node, or null. REQUIRES: InUse.
    void* Find(unsigned hash) const;

    // Makes room for `nodes` nodes. Not in use afterwards when memory is short.
    QXCORE_API void Start(unsigned nodes) noexcept;
    // `target` is what the node's value points to, or the node itself. That the value may change
    // later costs a lookup some time and nothing else. Drops the index when it must grow and
    // cannot. REQUIRES: InUse, and no node with this hash is in.
    QXCORE_API void Add(unsigned hash, void* node, const void* target) noexcept;
    // REQUIRES: InUse.
    QXCORE_API void Remove(unsigned hash) noexcept;
    // Not in use afterwards.
    QXCORE_API void Drop() noexcept;

private:
    static constexpr long long kGrain = 16;  // bytes; blocks begin at multiples of it

    struct Slot {
        void* node;  // null: free
        unsigned hash;
        int toTarget;  // from the node, in grains
    };

    unsigned Home(unsigned hash) const;
    bool Allocate(unsigned bits) noexcept;
    void Put(const Slot& slot);
    void Grow() noexcept;

    Slot* m_slots = nullptr;
    unsigned m_mask = 0;   // the number of slots, a power of two, less 1
    unsigned m_shift = 0;  // the hash's upper bits that tell its home
    unsigned m_used = 0;   // taken slots
};

// ------------------------------------------------------------------------------------------------

// Text hashes of like texts differ in few bits; the product spreads them over the upper ones.
inline unsigned QXMapIndex::Home(unsigned hash) const {
    return (hash * 0x9E3779B1u) >> m_shift;
}

inline void* QXMapIndex::Find(unsigned hash) const {
    assert(InUse());
    for (unsigned at = Home(hash);; at = (at + 1) & m_mask) {
        const Slot& slot = m_slots[at];
        if (!slot.node) return nullptr;
        if (slot.hash != hash) continue;
        // The caller reads the node next and then what its value points to; both come from memory
        // at once.
        _mm_prefetch(static_cast<const char*>(slot.node) + kGrain * slot.toTarget, _MM_HINT_T0);
        return slot.node;
    }
}

#endif
