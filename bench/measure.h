// Measures two ways of doing one thing, alternately in one run, and prints both figures and their
// ratio.
//
//     bench::Compare("string copy, 32 characters", "std::string", [&] { ... }, [&] { ... });
//
// A body runs the operation once; Keep() stops the compiler from dropping a result. Figures are
// medians over alternating samples, so a drift of the machine's speed hits both sides alike.
#ifndef QXCORE_BENCH_MEASURE_H
#define QXCORE_BENCH_MEASURE_H

#include <qxcore/platform.h>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace bench {

// Makes a value observable, so that the work behind it is done.
template <class T>
inline void Keep(T const& value) {
#if defined(_MSC_VER)
    static const volatile void* sink;
    sink = &value;
#else
    asm volatile("" : : "g"(&value) : "memory");
#endif
}

inline double Seconds() {
    LARGE_INTEGER frequency, now;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&now);
    return double(now.QuadPart) / double(frequency.QuadPart);
}

inline double Median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + values.size() / 2, values.end());
    return values[values.size() / 2];
}

template <class Body>
double SecondsFor(Body& body, unsigned rounds) {
    double start = Seconds();
    for (unsigned i = 0; i < rounds; ++i) body();
    return Seconds() - start;
}

// How many rounds of a body take about a sample's time.
template <class Body>
unsigned RoundsFor(Body& body, double sampleSeconds) {
    unsigned rounds = 1;
    for (;;) {
        double spent = SecondsFor(body, rounds);
        if (spent >= sampleSeconds || rounds >= 1u << 28) return rounds;
        rounds = spent < sampleSeconds / 16 ? rounds * 8 : rounds * 2;
    }
}

// A body that goes back to the start and then does `operation` with the numbers from 0 up.
template <class Rewind, class Operation>
auto Pass(int operations, Rewind rewind, Operation operation) {
    return [=]() mutable {
        rewind();
        for (int i = 0; i < operations; ++i) operation(i);
    };
}

struct Figures {
    double ours;   // seconds for one operation
    double peer;   // the same for the peer
    double ratio;  // median of the samples' ratios ours / peer
};

constexpr int kSamples = 11;
constexpr double kSampleSeconds = 0.01;

// Each side begins every other pair: what the first leaves to the second hits both alike.
template <class Ours, class Peer>
Figures MeasurePair(Ours&& ours, Peer&& peer, int samples = kSamples) {
    unsigned ourRounds = RoundsFor(ours, kSampleSeconds);
    unsigned peerRounds = RoundsFor(peer, kSampleSeconds);
    std::vector<double> oursTimes, peerTimes, ratios;
    for (int i = 0; i < samples; ++i) {
        bool peerBegins = i % 2;
        double b = peerBegins ? SecondsFor(peer, peerRounds) / peerRounds : 0;
        double a = SecondsFor(ours, ourRounds) / ourRounds;
        if (!peerBegins) b = SecondsFor(peer, peerRounds) / peerRounds;
        oursTimes.push_back(a);
        peerTimes.push_back(b);
        ratios.push_back(a / b);
    }
    return {Median(oursTimes), Median(peerTimes), Median(ratios)};
}

// One line of the report. `perOperation` divides the figures where a body does several operations.
template <class Ours, class Peer>
Figures Compare(const char* what, const char* peerName, Ours&& ours, Peer&& peer,
                double perOperation = 1, int samples = kSamples) {
    Figures f = MeasurePair(ours, peer, samples);
    printf("%-52s %10.2f ns   %-28s %10.2f ns   ratio %6.3f\n", what, f.ours / perOperation * 1e9,
           peerName, f.peer / perOperation * 1e9, f.ratio);
    fflush(stdout);
    return f;
}

}  // namespace bench

#endif
