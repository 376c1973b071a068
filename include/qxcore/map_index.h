// A shortcut to the nodes of a large map: which node has this hash.
//
// It answers sooner what the map's chains say and holds nothing of its own, so a map works the same
// without it: when memory runs out it is dropped.
#ifndef QXCORE_MAP_INDEX_H
#define QXCORE_MAP_INDEX_H

#include <qxcore/export.h>

#include <xmmintrin.h>

class QXMapIndex {
public:
    constexpr QXMapIndex() = default;
    QXMapIndex(const QXMapIndex&) = delete;
    QXMapIndex& operator=(const QXMapIndex&) = delete;
    ~QXMapIndex() { Drop(); }

    bool InUse() const { return slots != nullptr; }

    // The node, or null. REQUIRES: InUse.
    void* Find(unsigned hash) const {
        for (unsigned at = Home(hash);; at = (at + 1) & mask) {
            const Slot& slot = slots[at];
            if (!slot.node) return nullptr;
            if (slot.hash != hash) continue;
            // The caller reads the node next and then what its value points to; both come from
            // memory at once.
            _mm_prefetch(static_cast<const char*>(slot.node) + kGrain * slot.toTarget, _MM_HINT_T0);
            return slot.node;
        }
    }

    // Makes room for `nodes` nodes. Not in use afterwards when memory is short.
    QXCORE_API void Start(unsigned nodes) noexcept;
    // `target` is what the node's value points to, or the node itself. That the value may change
    // later costs a lookup some time and nothing else. REQUIRES: InUse, and no node with this hash
    // is in. Drops the index when it must grow and cannot.
    QXCORE_API void Add(unsigned hash, void* node, const void* target) noexcept;
    // REQUIRES: InUse.
    QXCORE_API void Remove(unsigned hash) noexcept;
    QXCORE_API void Drop() noexcept;

private:
    static constexpr long long kGrain = 16;  // bytes; blocks begin at multiples of it

    struct Slot {
        void* node;  // null: free
        unsigned hash;
        int toTarget;  // from the node, in grains
    };

    // Text hashes of like texts differ in few bits; the product spreads them over the upper ones.
    unsigned Home(unsigned hash) const { return (hash * 0x9E3779B1u) >> shift; }
    bool Allocate(unsigned bits) noexcept;
    void Put(const Slot& slot);
    void Grow() noexcept;

    Slot* slots = nullptr;
    unsigned mask = 0;
    unsigned shift = 0;
    unsigned used = 0;
};

#endif
