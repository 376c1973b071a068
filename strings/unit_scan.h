// Scans over units that know nothing of characters: for both kinds of text, sixteen bytes at a time where it pays.
#ifndef QXCORE_STRINGS_UNIT_SCAN_H
#define QXCORE_STRINGS_UNIT_SCAN_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <emmintrin.h>

// Sixteen aligned bytes of units. An aligned load never crosses into another page, so it may reach past a text.
template <class Ch>
class UnitBlock {
public:
    static constexpr size_t kUnits = 16 / sizeof(Ch);

    explicit UnitBlock(const Ch* aligned) : units(_mm_load_si128(reinterpret_cast<const __m128i*>(aligned))) {}

    // One bit for each byte of the units that equal c.
    unsigned Equal(Ch c) const {
        __m128i all = sizeof(Ch) == 1 ? _mm_set1_epi8(static_cast<char>(c)) : _mm_set1_epi16(static_cast<short>(c));
        __m128i equal = sizeof(Ch) == 1 ? _mm_cmpeq_epi8(units, all) : _mm_cmpeq_epi16(units, all);
        return static_cast<unsigned>(_mm_movemask_epi8(equal));
    }

private:
    __m128i units;
};

// The first unit that is c or the terminator. REQUIRES: s is aligned for its unit.
template <class Ch>
const Ch* ScanFor(const Ch* s, Ch c) {
    constexpr uintptr_t kMask = 15;
    auto address = reinterpret_cast<uintptr_t>(s);
    auto block = reinterpret_cast<const Ch*>(address & ~kMask);
    unsigned before = ~0u << (address & kMask);
    for (;; block += UnitBlock<Ch>::kUnits, before = ~0u) {
        UnitBlock<Ch> units(block);
        if (unsigned hits = (units.Equal(0) | units.Equal(c)) & before) {
            return block + std::countr_zero(hits) / sizeof(Ch);
        }
    }
}

template <class Ch>
size_t ScanLength(const Ch* s) {
    return ScanFor(s, Ch(0)) - s;
}

// The first place where `what` stands, or null. REQUIRES: `what` is not empty.
template <class Ch>
const Ch* ScanForText(const Ch* s, const Ch* what) {
    for (;; ++s) {
        s = ScanFor(s, *what);
        if (!*s) return nullptr;
        size_t n = 1;
        while (what[n] && s[n] == what[n]) ++n;
        if (!what[n]) return s;
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

#endif
