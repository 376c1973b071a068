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
#include <cstdint>
#include <xmmintrin.h>

// What is read next once a value that is a pointer has been followed; null for nothing. A type
// whose values lead to text tells it by a specialisation.
template <class V>
struct QXReadBehind {
    static const void* Of(const V&) { return nullptr; }
};

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
    // `target` is what the node's value points to, or the node itself, and `behind` what is read
    // after that, or null. That they may change later costs a lookup some time and nothing else.
    // Drops the index when it must grow and cannot. REQUIRES: InUse, and no node with this hash is
    // in.
    QXCORE_API void Add(unsigned hash, void* node, const void* target,
                        const void* behind = nullptr) noexcept;
    // REQUIRES: InUse.
    QXCORE_API void Remove(unsigned hash) noexcept;
    // Not in use afterwards.
    QXCORE_API void Drop() noexcept;

private:
    static constexpr unsigned kLineBits = 6;  // memory comes in lines of 64 bytes

    // An address of a process has 47 bits at most, which leaves room for two distances from the
    // node, 24 bits of lines each. A thing that is farther away is merely not fetched in time.
    struct Slot {
        uint64_t nodeAndBehind;  // the node above 16 bits of the distance; 0: free
        unsigned hash;
        unsigned distances;  // to the target, and above it 8 bits of the one to what is behind

        uintptr_t Node() const { return nodeAndBehind >> 16; }
        int64_t LinesToTarget() const { return static_cast<int>(distances << 8) >> 8; }
        int64_t LinesToBehind() const {
            unsigned low = static_cast<unsigned>(nodeAndBehind & 0xFFFF);
            return static_cast<int>((distances & 0xFF000000) | low << 8) >> 8;
        }
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
        if (!slot.nodeAndBehind) return nullptr;
        if (slot.hash != hash) continue;
        // The caller reads the node next, then what its value points to, and then what lies behind
        // that; all come from memory at once.
        uintptr_t node = slot.Node();
        auto fetch = [line = static_cast<int64_t>(node >> kLineBits)](int64_t lines) {
            _mm_prefetch(reinterpret_cast<const char*>((line + lines) << kLineBits), _MM_HINT_T0);
        };
        fetch(slot.LinesToTarget());
        fetch(slot.LinesToBehind());
        return reinterpret_cast<void*>(node);
    }
}

#endif
