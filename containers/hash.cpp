// The hash of 16 bytes is a sum of products that need not wait for each other, so a text is taken
// in aligned blocks of 16. Bytes of a block that lie before the text count as zeros, which add
// nothing; those from its end on count as zeros too, which multiply the hash by 257 each, and
// dividing by that afterwards is exact since 257 is odd. An aligned block never reaches into a page
// that the text does not touch.
#include <qxcore/hash.h>

#include <bit>
#include <cstdint>
#include <emmintrin.h>

namespace qx {

namespace {

constexpr unsigned kBase = 257;

constexpr unsigned Power(unsigned base, unsigned exponent) {
    unsigned power = 1;
    while (exponent--) power *= base;
    return power;
}

constexpr unsigned kBlock = 16;

// Each step doubles the number of low bits that are right.
constexpr unsigned Inverse(unsigned odd) {
    unsigned inverse = odd;
    for (int i = 0; i < 5; ++i) inverse *= 2 - odd * inverse;
    return inverse;
}
static_assert(Inverse(kBase) * kBase == 1);

// What undoes 0 to 16 multiplications by 257.
struct InversePowers {
    unsigned of[kBlock + 1];
    constexpr InversePowers() : of{} {
        for (unsigned i = 0; i <= kBlock; ++i) of[i] = Power(Inverse(kBase), i);
    }
};
constexpr InversePowers kInverse;

// Read from 16 - n on: n bytes kept and the rest cleared; from 32 - n on: n bytes cleared and the
// rest kept.
struct Masks {
    signed char bytes[3 * kBlock];
    constexpr Masks() : bytes{} {
        for (unsigned i = 0; i < kBlock; ++i) bytes[i] = bytes[2 * kBlock + i] = -1;
    }
};
constexpr Masks kMasks;

__m128i MaskFrom(unsigned at) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(kMasks.bytes + at));
}

// Two numbers for the low halves of the 64-bit lanes.
__m128i Pair(unsigned first, unsigned second) {
    return _mm_set_epi32(0, static_cast<int>(second), 0, static_cast<int>(first));
}

// Leaves the bytes as they are.
struct Plain {
    static __m128i Of(__m128i bytes) { return bytes; }
};

// The comparisons are signed, so bytes above 127 are below 'A'.
struct Folded {
    static __m128i Of(__m128i bytes) {
        __m128i fromA = _mm_cmpgt_epi8(bytes, _mm_set1_epi8('A' - 1)),
                toZ = _mm_cmplt_epi8(bytes, _mm_set1_epi8('Z' + 1));
        return _mm_add_epi8(bytes,
                            _mm_and_si128(_mm_and_si128(fromA, toZ), _mm_set1_epi8('a' - 'A')));
    }
};

// The hash of 16 bytes as the sum of two 32-bit numbers, in the low halves of the lanes. Neighbours
// are joined to c0 * 257 + c1 first; `even` and `odd` are every second such pair.
__m128i BlockSum(__m128i bytes) {
    const __m128i joining = _mm_set1_epi32(1 << 16 | kBase);
    __m128i low = _mm_madd_epi16(_mm_srai_epi16(_mm_unpacklo_epi8(bytes, bytes), 8), joining);
    __m128i high = _mm_madd_epi16(_mm_srai_epi16(_mm_unpackhi_epi8(bytes, bytes), 8), joining);
    __m128i even = _mm_add_epi64(_mm_mul_epu32(low, Pair(Power(kBase, 14), Power(kBase, 10))),
                                 _mm_mul_epu32(high, Pair(Power(kBase, 6), Power(kBase, 2))));
    __m128i odd = _mm_add_epi64(
        _mm_mul_epu32(_mm_srli_epi64(low, 32), Pair(Power(kBase, 12), Power(kBase, 8))),
        _mm_mul_epu32(_mm_srli_epi64(high, 32), Pair(Power(kBase, 4), 1)));
    return _mm_add_epi64(even, odd);
}

template <class Case>
QXTextHash Hash(const char* text) {
    unsigned before = reinterpret_cast<uintptr_t>(text) % kBlock;
    auto block = reinterpret_cast<const __m128i*>(text - before);
    __m128i bytes = _mm_and_si128(_mm_load_si128(block), MaskFrom(2 * kBlock - before));
    auto zeros = [](__m128i b) {
        return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(b, _mm_setzero_si128())));
    };
    unsigned ends = zeros(bytes) & ~0u << before;

    __m128i sum = _mm_setzero_si128();
    unsigned power = kInverse.of[before];
    const __m128i shift = Pair(Power(kBase, kBlock), Power(kBase, kBlock));
    while (!ends) {
        sum = _mm_add_epi64(_mm_mul_epu32(sum, shift), BlockSum(Case::Of(bytes)));
        power *= Power(kBase, kBlock);
        bytes = _mm_load_si128(++block);
        ends = zeros(bytes);
    }
    unsigned kept = static_cast<unsigned>(std::countr_zero(ends));
    bytes = _mm_and_si128(bytes, MaskFrom(kBlock - kept));
    sum = _mm_add_epi64(_mm_mul_epu32(sum, shift), BlockSum(Case::Of(bytes)));
    auto hash = static_cast<unsigned>(_mm_cvtsi128_si32(sum)) +
                static_cast<unsigned>(_mm_cvtsi128_si32(_mm_unpackhi_epi64(sum, sum)));
    unsigned undo = kInverse.of[kBlock - kept];
    return {hash * undo, power * Power(kBase, kBlock) * undo};
}

}  // namespace

}  // namespace qx

QXTextHash QXHashText(const char* text) noexcept {
    return qx::Hash<qx::Plain>(text);
}

QXTextHash QXHashFolded(const char* text) noexcept {
    return qx::Hash<qx::Folded>(text);
}
