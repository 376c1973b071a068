// Scans over units that know nothing of characters: for both kinds of text, sixteen bytes at a time
// where it pays.
#ifndef QXCORE_STRINGS_UNIT_SCAN_H
#define QXCORE_STRINGS_UNIT_SCAN_H

#include <algorithm>
#include <bit>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <emmintrin.h>

namespace qx {

// Sixteen aligned bytes of units. An aligned load never crosses into another page, so it may reach
// past a text.
template <class Ch>
class UnitBlock {
public:
    static constexpr size_t kUnits = 16 / sizeof(Ch);

    explicit UnitBlock(const Ch* aligned)
        : m_units(_mm_load_si128(reinterpret_cast<const __m128i*>(aligned))) {}

    // One bit for each byte of the block: of the units that equal c; of the bytes above 0x7F.
    unsigned Equal(Ch c) const {
        __m128i all = sizeof(Ch) == 1 ? _mm_set1_epi8(static_cast<char>(c))
                                      : _mm_set1_epi16(static_cast<short>(c));
        __m128i equal =
            sizeof(Ch) == 1 ? _mm_cmpeq_epi8(m_units, all) : _mm_cmpeq_epi16(m_units, all);
        return static_cast<unsigned>(_mm_movemask_epi8(equal));
    }

    unsigned HighBytes() const { return static_cast<unsigned>(_mm_movemask_epi8(m_units)); }

private:
    __m128i m_units;
};

// Steps through the blocks that a text lies in. REQUIRES: s is aligned for its unit.
template <class Ch>
class BlockWalk {
public:
    explicit BlockWalk(const Ch* s)
        : m_block(reinterpret_cast<const Ch*>(reinterpret_cast<uintptr_t>(s) & ~kMask)),
          m_mask(~0u << (reinterpret_cast<uintptr_t>(s) & kMask)) {
        assert(reinterpret_cast<uintptr_t>(s) % sizeof(Ch) == 0);
    }

    UnitBlock<Ch> Block() const { return UnitBlock<Ch>(m_block); }
    // Leaves out what lies before the text.
    unsigned Within(unsigned bits) const { return bits & m_mask; }
    // The unit of the lowest bit, and that of the highest.
    const Ch* At(unsigned bits) const { return m_block + std::countr_zero(bits) / sizeof(Ch); }
    const Ch* LastAt(unsigned bits) const {
        return m_block + (std::bit_width(bits) - 1) / sizeof(Ch);
    }
    // The units from s, which is not behind this block, to the block's end.
    size_t UnitsFrom(const Ch* s) const { return m_block + UnitBlock<Ch>::kUnits - s; }
    void Next() {
        m_block += UnitBlock<Ch>::kUnits;
        m_mask = ~0u;
    }

private:
    static constexpr uintptr_t kMask = 15;
    const Ch* m_block;
    unsigned m_mask;
};

template <class Ch>
size_t ScanLength(const Ch* s) {
    for (BlockWalk<Ch> walk(s);; walk.Next()) {
        if (unsigned ends = walk.Within(walk.Block().Equal(0))) return walk.At(ends) - s;
    }
}

// The same, but no more than `limit`. Does not look at the blocks behind the limit's.
template <class Ch>
size_t ScanLength(const Ch* s, size_t limit) {
    for (BlockWalk<Ch> walk(s);; walk.Next()) {
        if (unsigned ends = walk.Within(walk.Block().Equal(0)))
            return std::min<size_t>(walk.At(ends) - s, limit);
        if (walk.UnitsFrom(s) >= limit) return limit;
    }
}

// The length, and whether all bytes are ASCII.
struct ScannedText {
    size_t length;
    bool isAscii;
};
inline ScannedText ScanText(const char* s) {
    unsigned high = 0;
    for (BlockWalk<char> walk(s);; walk.Next()) {
        UnitBlock<char> block = walk.Block();
        unsigned ends = walk.Within(block.Equal(0));
        unsigned beforeEnd = (ends & (0 - ends)) - 1;  // all bits when the text goes on
        high |= walk.Within(block.HighBytes()) & beforeEnd;
        if (ends) return {static_cast<size_t>(walk.At(ends) - s), high == 0};
    }
}

// Whether the first `size` bytes of a text are ASCII.
inline bool ScanIsAscii(const char* s, size_t size) {
    for (BlockWalk<char> walk(s);; walk.Next()) {
        unsigned high = walk.Within(walk.Block().HighBytes());
        if (high) return static_cast<size_t>(walk.At(high) - s) >= size;
        if (walk.UnitsFrom(s) >= size) return true;
    }
}

// The bytes that two texts have in common before the first difference, or before the end of both.
inline size_t ScanCommon(const char* a, const char* b) {
    // Unaligned loads of sixteen bytes must not begin this close to the end of a page.
    auto fits = [](const char* p) { return (reinterpret_cast<uintptr_t>(p) & 4095) <= 4096 - 16; };
    auto load = [](const char* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); };
    for (size_t n = 0;;) {
        if (fits(a + n) && fits(b + n)) {
            __m128i own = load(a + n);
            __m128i goesOn = _mm_andnot_si128(_mm_cmpeq_epi8(own, _mm_setzero_si128()),
                                              _mm_cmpeq_epi8(own, load(b + n)));
            unsigned stops = static_cast<unsigned>(_mm_movemask_epi8(goesOn)) ^ 0xFFFF;
            if (stops) return n + std::countr_zero(stops);
            n += 16;
        } else {
            if (a[n] != b[n] || !a[n]) return n;
            ++n;
        }
    }
}

template <class Ch>
const Ch* ScanForUnit(const Ch* s, Ch c) {
    for (BlockWalk<Ch> walk(s);; walk.Next()) {
        UnitBlock<Ch> block = walk.Block();
        if (unsigned stops = walk.Within(block.Equal(c) | block.Equal(0))) {
            const Ch* stop = walk.At(stops);
            return *stop == c ? stop : nullptr;
        }
    }
}

// The last one in front of the terminator.
template <class Ch>
const Ch* ScanForLastUnit(const Ch* s, Ch c) {
    const Ch* last = nullptr;
    for (BlockWalk<Ch> walk(s);; walk.Next()) {
        UnitBlock<Ch> block = walk.Block();
        unsigned ends = walk.Within(block.Equal(0));
        unsigned hits = walk.Within(block.Equal(c)) & ((ends & (0 - ends)) - 1);
        if (hits) last = walk.LastAt(hits);
        if (ends) return last;
    }
}

// The first place of a byte, or null, and whether all bytes before it are ASCII.
struct ScannedByte {
    const char* place;
    bool isAscii;
};
inline ScannedByte ScanForByte(const char* s, char c) {
    unsigned high = 0;
    for (BlockWalk<char> walk(s);; walk.Next()) {
        UnitBlock<char> block = walk.Block();
        unsigned stops = walk.Within(block.Equal(c) | block.Equal(0));
        high |= walk.Within(block.HighBytes()) & ((stops & (0 - stops)) - 1);
        if (stops) {
            const char* stop = walk.At(stops);
            return {*stop == c ? stop : nullptr, high == 0};
        }
    }
}

// The first place where `what` stands, or null. REQUIRES: `what` is not empty.
template <class Ch>
const Ch* ScanForText(const Ch* s, const Ch* what) {
    assert(*what);
    // The unit behind this one is in the next block.
    constexpr unsigned kLastUnit = 0xFFFFu << (16 - sizeof(Ch));
    if (!what[1]) return ScanForUnit(s, what[0]);
    for (BlockWalk<Ch> walk(s);; walk.Next()) {
        UnitBlock<Ch> block = walk.Block();
        unsigned ends = walk.Within(block.Equal(0));
        unsigned seconds = block.Equal(what[1]) >> sizeof(Ch) | kLastUnit;
        unsigned starts = walk.Within(block.Equal(what[0]) & seconds) & ((ends & (0 - ends)) - 1);
        for (; starts; starts &= starts - 1) {
            const Ch* start = walk.At(starts);
            size_t n = 1;
            while (what[n] && start[n] == what[n]) ++n;
            if (!what[n]) return start;
        }
        if (ends) return nullptr;
    }
}

template <class Ch>
bool SetHasUnit(const Ch* set, Ch c) {
    while (*set && *set != c) ++set;
    return *set != 0;
}

template <class Ch>
const Ch* ScanForAny(const Ch* s, const Ch* set) {
    for (; *s; ++s) {
        if (SetHasUnit(set, *s)) return s;
    }
    return nullptr;
}

template <class Ch>
const Ch* ScanBackForAny(const Ch* s, const Ch* end, const Ch* set) {
    while (end > s) {
        if (SetHasUnit(set, *--end)) return end;
    }
    return nullptr;
}

}  // namespace qx

#endif
