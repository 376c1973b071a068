// What every fuzz driver is: rounds of one body, each from a seed of its own, so that any round can
// be had again.
//
//     x_fuzz [ROUNDS [SEED]]      0 rounds go on until they are stopped; the first seed is 1 unless
//     told
//
// A round that crashes prints its seed; `x_fuzz 1 SEED` runs that round alone.
#ifndef QXCORE_TESTS_FUZZ_DRIVER_H
#define QXCORE_TESTS_FUZZ_DRIVER_H

#include <qxcore/platform.h>

#include <cstdio>
#include <cstdlib>
#include <string>

// The same numbers everywhere for the same seed.
class Random {
public:
    explicit Random(unsigned long long seed) : m_state(seed * 0x9E3779B97F4A7C15ull + 1) {}

    unsigned Next() {
        m_state ^= m_state >> 12;
        m_state ^= m_state << 25;
        m_state ^= m_state >> 27;
        return static_cast<unsigned>((m_state * 0x2545F4914F6CDD1Dull) >> 32);
    }
    // 0 to limit - 1.
    unsigned Below(unsigned limit) { return Next() % limit; }
    // A number that likes to stand at a border: 0, 1, 127, 128, 255, 0x7FFFFFFF, ...
    unsigned Border() {
        static constexpr unsigned kBorders[] = {0,      1,      0x7F,       0x80,       0xFF,
                                                0x7FFF, 0x8000, 0x7FFFFFFF, 0x80000000, ~0u};
        return kBorders[Below(10)] + Below(3) - 1;
    }

private:
    unsigned long long m_state;
};

// Flips, overwrites, cuts, doubles or inserts a few bytes.
inline void Mutate(std::string& bytes, Random& random) {
    for (unsigned n = 1 + random.Below(4); n > 0; --n) {
        if (bytes.empty()) bytes.push_back(0);
        unsigned at = random.Below(static_cast<unsigned>(bytes.size()));
        switch (random.Below(6)) {
            case 0:
                bytes[at] ^= static_cast<char>(1 << random.Below(8));
                break;
            case 1:
                bytes[at] = static_cast<char>(random.Next());
                break;
            case 2:
                bytes.resize(at);
                break;
            case 3:
                bytes.insert(at, bytes.substr(at, random.Below(20)));
                break;
            case 4:
                bytes.insert(at, 1, static_cast<char>(random.Next()));
                break;
            case 5: {
                unsigned border = random.Border();
                bytes.replace(at, 4, reinterpret_cast<const char*>(&border), 4);
                break;
            }
        }
    }
}

namespace fuzz {

inline unsigned g_seed;

inline LONG WINAPI TellSeed(EXCEPTION_POINTERS* info) {
    fprintf(stderr, "seed %u: fault %08lx at %p\n", g_seed, info->ExceptionRecord->ExceptionCode,
            info->ExceptionRecord->ExceptionAddress);
    return EXCEPTION_EXECUTE_HANDLER;
}

// The main function of a driver. `round` answers false when what it checks does not hold.
inline int Main(int argc, char** argv, unsigned defaultRounds, bool (*round)(Random& random)) {
    SetUnhandledExceptionFilter(TellSeed);
    unsigned rounds = argc > 1 ? strtoul(argv[1], nullptr, 10) : defaultRounds;
    unsigned first = argc > 2 ? strtoul(argv[2], nullptr, 10) : 1;
    for (unsigned i = 0; rounds == 0 || i < rounds; ++i) {
        g_seed = first + i;
        Random random(g_seed);
        if (!round(random)) {
            fprintf(stderr, "seed %u: the round does not hold\n", g_seed);
            return 1;
        }
    }
    printf("%u rounds from seed %u\n", rounds, first);
    return 0;
}

}  // namespace fuzz

#endif
