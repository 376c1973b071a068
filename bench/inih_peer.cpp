// A native peer of the parameter benchmark: inih on the same text, which it hands out key by key.
// Prints the nanoseconds that it takes for all of it.
#include "bench/ini_text.h"

#include <ini.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

namespace {

int Count(void* values, const char*, const char*, const char*) {
    ++*static_cast<int*>(values);
    return 1;
}

}  // namespace

int main() {
    using Clock = std::chrono::steady_clock;
    constexpr int kRounds = 51;
    std::string text = IniText();
    std::vector<double> rounds;
    for (int round = 0; round < kRounds; ++round) {
        int values = 0;
        auto start = Clock::now();
        if (ini_parse_string(text.c_str(), Count, &values) != 0 ||
            values != kIniSections * kIniKeys)
            return 1;
        rounds.push_back(std::chrono::duration<double, std::nano>(Clock::now() - start).count());
    }
    std::nth_element(rounds.begin(), rounds.begin() + kRounds / 2, rounds.end());
    printf("%.0f\n", rounds[kRounds / 2]);
}
