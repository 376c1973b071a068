// A native peer of the dictionary's benchmark: dgettext on a compiled catalogue with the same
// texts.
//
// gettext_peer DIRECTORY: writes and compiles catalogues there and prints "ENTRIES:HIT:MISS ..." in
// nanoseconds. The locale of the environment must exist, or the system's own short cut for
// untranslated programs is measured.
#include "bench/ui_texts.h"

#include <libintl.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <fstream>

namespace {

using Clock = std::chrono::steady_clock;

bool MakeCatalogue(const std::string& directory, const std::string& domain, unsigned entries) {
    std::string folder = directory + "/xx/LC_MESSAGES";
    mkdir((directory + "/xx").c_str(), 0777);
    mkdir(folder.c_str(), 0777);
    std::string source = directory + "/" + domain + ".po";
    std::ofstream file(source);
    file << "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n";
    for (auto& text : UiTexts(entries))
        file << "msgid \"" << text << "\"\nmsgstr \"" << UiTranslation(text) << "\"\n";
    file.close();
    return system(("msgfmt -o " + folder + "/" + domain + ".mo " + source).c_str()) == 0;
}

// The median of some rounds; each lookup takes another text, in an order that no cache foresees.
double NanosecondsOf(const char* domain, const std::vector<std::string>& texts) {
    constexpr int kRounds = 50;
    std::vector<double> rounds;
    size_t at = 0;
    for (int round = 0; round < kRounds; ++round) {
        size_t lookups = std::max<size_t>(texts.size(), 10000);
        auto start = Clock::now();
        for (size_t i = 0; i < lookups; ++i) {
            at = (at + 7919) % texts.size();
            const char* found = dgettext(domain, texts[at].c_str());
            asm volatile("" : : "g"(found) : "memory");
        }
        std::chrono::duration<double, std::nano> spent = Clock::now() - start;
        rounds.push_back(spent.count() / double(lookups));
    }
    std::nth_element(rounds.begin(), rounds.begin() + kRounds / 2, rounds.end());
    return rounds[kRounds / 2];
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2 || !setlocale(LC_ALL, "")) return 2;
    setenv("LANGUAGE", "xx", 1);
    for (unsigned entries : {100u, 1000u, 10000u}) {
        std::string domain = "bench" + std::to_string(entries);
        if (!MakeCatalogue(argv[1], domain, entries)) return 2;
        bindtextdomain(domain.c_str(), argv[1]);
        auto texts = UiTexts(entries);
        if (dgettext(domain.c_str(), texts[0].c_str()) != UiTranslation(texts[0])) return 3;
        auto unknown = texts;
        for (auto& text : unknown) text += '.';
        printf("%u:%.1f:%.1f ", entries, NanosecondsOf(domain.c_str(), texts),
               NanosecondsOf(domain.c_str(), unknown));
    }
    puts("");
}
