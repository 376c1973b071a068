// Map lookups beside the hash maps that a program would take instead.
#include "bench/measure.h"

#include <qxcore.h>

#include <cstdio>
#include <random>
#include <string>
#include <unordered_map>
#if defined(QXCORE_BENCH_ROBIN_MAP)
#include <tsl/robin_map.h>
#endif

namespace {

// Texts of about 30 characters, as names of resources are.
std::vector<std::string> MakeKeys(const char* kind, int n, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<std::string> keys;
    for (int i = 0; i < n; ++i) {
        std::string key =
            std::string(kind) + "/" + std::to_string(random()) + "/" + std::to_string(i);
        key.resize(28 + random() % 5, '.');
        keys.push_back(key);
    }
    return keys;
}

// Goes through the keys in an order that the memory's prefetching does not know.
class Probe {
public:
    explicit Probe(const std::vector<std::string>& keys) : keys(keys), order(keys.size()) {
        for (size_t i = 0; i < order.size(); ++i) order[i] = static_cast<unsigned>(i);
        std::shuffle(order.begin(), order.end(), std::mt19937(7));
    }
    const std::string& Next() {
        if (at == order.size()) at = 0;
        return keys[order[at++]];
    }

private:
    const std::vector<std::string>& keys;
    std::vector<unsigned> order;
    size_t at = 0;
};

template <class Peer>
void BenchLookup(const char* what, const char* peerName, CTMap<const char*, int>& map,
                 const Peer& peer, const std::vector<std::string>& keys) {
    Probe ours(keys), theirs(keys);
    bench::Compare(
        what, peerName,
        [&] {
            int value = 0;
            map.Lookup(ours.Next().c_str(), value);
            bench::Keep(value);
        },
        [&] {
            auto found = peer.find(theirs.Next());
            bool hit = found != peer.end();
            bench::Keep(hit);
        });
}

template <class Peer>
void BenchAgainst(const char* peerName, int n) {
    auto keys = MakeKeys("there", n, 1), absent = MakeKeys("other", n, 2);
    CTMap<const char*, int> map;
    Peer peer;
    for (int i = 0; i < n; ++i) {
        map.SetAt(keys[i].c_str(), i);
        peer[keys[i]] = i;
    }
    char what[64];
    snprintf(what, sizeof what, "map lookup, %d keys, hit", n);
    BenchLookup(what, peerName, map, peer, keys);
    snprintf(what, sizeof what, "map lookup, %d keys, miss", n);
    BenchLookup(what, peerName, map, peer, absent);
}

void BenchFilling(int n) {
    auto keys = MakeKeys("there", n, 1);
    char what[64];
    snprintf(what, sizeof what, "map filling, %d keys, each", n);
    bench::Compare(
        what, "std::unordered_map",
        [&] {
            CTMap<const char*, int> map;
            for (int i = 0; i < n; ++i) map.SetAt(keys[i].c_str(), i);
        },
        [&] {
            std::unordered_map<std::string, int> map;
            for (int i = 0; i < n; ++i) map[keys[i]] = i;
        },
        n);
}

void BenchHash() {
    auto keys = MakeKeys("there", 1000, 1);
    Probe ours(keys), theirs(keys);
    bench::Compare(
        "text hash, 30 characters", "std::hash<std::string>",
        [&] { bench::Keep(QXHashText(ours.Next().c_str()).hash); },
        [&] { bench::Keep(std::hash<std::string>()(theirs.Next())); });
}

}  // namespace

int main() {
    for (int n : {10, 100, 1000, 10000}) {
        BenchAgainst<std::unordered_map<std::string, int>>("std::unordered_map", n);
#if defined(QXCORE_BENCH_ROBIN_MAP)
        BenchAgainst<tsl::robin_map<std::string, int>>("tsl::robin_map", n);
#endif
    }
    BenchFilling(10000);
    BenchHash();
}
