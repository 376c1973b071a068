#include "objects/name_collision.h"

#include <algorithm>
#include <random>
#include <utility>
#include <vector>

namespace {

std::string RandomLetters(std::mt19937& random, int length) {
    static const char kLetters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    std::string text;
    while (length--) text += kLetters[random() % 52];
    return text;
}

}  // namespace

unsigned TextHash(const std::string& text) {
    unsigned hash = 0;
    for (char c : text) hash = hash * 257 + static_cast<unsigned>(static_cast<signed char>(c));
    return hash;
}

// The hash of first + last half is hash(first) * 257^4 + hash(last): many halves are tried against
// many.
std::string NameWithTheHashOf(const std::string& name) {
    const unsigned shift = 257u * 257u * 257u * 257u;
    std::mt19937 random(1);
    std::vector<std::pair<unsigned, std::string>> lastHalves(100000);
    for (auto& [hash, last] : lastHalves) {
        last = RandomLetters(random, 4);
        hash = TextHash(last);
    }
    std::sort(lastHalves.begin(), lastHalves.end());
    for (int i = 0; i < 10000000; ++i) {
        std::string first = RandomLetters(random, 5);
        unsigned wanted = TextHash(name) - TextHash(first) * shift;
        auto last = std::lower_bound(lastHalves.begin(), lastHalves.end(),
                                     std::pair(wanted, std::string()));
        if (last != lastHalves.end() && last->first == wanted) return first + last->second;
    }
    return "";
}
