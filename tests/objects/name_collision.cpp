#include "objects/name_collision.h"

#include <random>
#include <unordered_map>

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

// The hash of first + last half is hash(first) * 257^4 + hash(last): many halves are tried against many.
std::string NameWithTheHashOf(const std::string& name) {
    const unsigned shift = 257u * 257u * 257u * 257u;
    std::mt19937 random(1);
    std::unordered_map<unsigned, std::string> lastHalves;
    for (int i = 0; i < 100000; ++i) {
        std::string last = RandomLetters(random, 4);
        lastHalves[TextHash(last)] = last;
    }
    for (int i = 0; i < 10000000; ++i) {
        std::string first = RandomLetters(random, 5);
        auto last = lastHalves.find(TextHash(name) - TextHash(first) * shift);
        if (last != lastHalves.end()) return first + last->second;
    }
    return "";
}
