// The dictionary beside what a program would take instead: lookup, loading, menus.
//
// A native gettext is measured by gettext_peer, whose figures come in as
// QXCORE_GETTEXT="ENTRIES:HIT:MISS ..." in nanoseconds; bench/dictionary runs both.
#include "bench/measure.h"
#include "bench/ui_texts.h"

#include <qxcore.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>
#include <unordered_map>

namespace {

using Table = std::unordered_map<std::string, std::string>;

std::string TempPath(const char* name) {
    char temp[MAX_PATH];
    GetTempPathA(MAX_PATH, temp);
    return std::string(temp) + name;
}

// A dictionary file of so many texts.
std::string WriteDictionary(unsigned entries) {
    std::string path = TempPath(("qxbench" + std::to_string(entries) + ".wld").c_str());
    std::ofstream file(path, std::ios::binary);
    for (auto& text : UiTexts(entries))
        file << '"' << text << "\"\r\n\"" << UiTranslation(text) << "\"\r\n";
    return path;
}

// What a program would write in an hour: lines of a quoted source and a quoted target.
Table ReadTable(const std::string& path) {
    Table table;
    std::ifstream file(path, std::ios::binary);
    std::string source, target;
    auto unquote = [](std::string& line) {
        size_t first = line.find('"'), last = line.rfind('"');
        line = line.substr(first + 1, last - first - 1);
    };
    while (std::getline(file, source) && std::getline(file, target)) {
        unquote(source);
        unquote(target);
        table.emplace(source, target);
    }
    return table;
}

struct GettextFigures {
    double hit = 0, miss = 0;  // nanoseconds; 0: not measured
};

GettextFigures Gettext(unsigned entries) {
    const char* figures = getenv("QXCORE_GETTEXT");
    std::string wanted = std::to_string(entries) + ":";
    const char* found = figures ? strstr(figures, wanted.c_str()) : nullptr;
    GettextFigures result;
    if (found) sscanf(found + wanted.size(), "%lf:%lf", &result.hit, &result.miss);
    return result;
}

void TellGettext(const char* what, double ours, double gettext) {
    if (gettext <= 0) return;
    printf("%-52s %10.2f ns   %-28s %10.2f ns   ratio %6.3f\n", what, ours * 1e9,
           "dgettext (native)", gettext, ours * 1e9 / gettext);
}

// Each lookup takes another text, in an order that no cache foresees.
template <class Lookup>
auto InTurn(const std::vector<std::string>& texts, Lookup lookup) {
    return [&texts, lookup, at = size_t(0)]() mutable {
        at = (at + 7919) % texts.size();
        bench::Keep(lookup(texts[at]));
    };
}

void BenchLookup(unsigned entries) {
    std::string path = WriteDictionary(entries);
    CWld dictionary;
    dictionary.Init(path.c_str());
    Table table = ReadTable(path);
    DeleteFileA(path.c_str());
    auto texts = UiTexts(entries);
    auto unknown = texts;
    for (auto& text : unknown) text += '.';
    GettextFigures gettext = Gettext(entries);
    for (bool hit : {true, false}) {
        char what[64];
        snprintf(what, sizeof what, "Translate, %u entries, %s", entries, hit ? "hit" : "miss");
        auto ours = InTurn(hit ? texts : unknown, [&](const std::string& text) {
            return dictionary.Translate(text.c_str(), 0);
        });
        auto peer = InTurn(hit ? texts : unknown, [&](const std::string& text) {
            auto found = table.find(text);
            return found == table.end() ? text.c_str() : found->second.c_str();
        });
        auto figures = bench::Compare(what, "std::unordered_map", ours, peer);
        TellGettext(what, figures.ours, hit ? gettext.hit : gettext.miss);
    }
    DeleteObject(dictionary.m_hFont);
}

// What was loaded is let go outside the measured time.
void BenchLoading(unsigned entries) {
    std::string path = WriteDictionary(entries);
    std::vector<double> ours, peer, ratios;
    for (int sample = 0; sample < bench::kSamples; ++sample) {
        CWld dictionary;
        double start = bench::Seconds();
        dictionary.Add(path.c_str());
        ours.push_back(bench::Seconds() - start);
        DeleteObject(dictionary.m_hFont);

        start = bench::Seconds();
        Table table = ReadTable(path);
        peer.push_back(bench::Seconds() - start);
        ratios.push_back(ours.back() / peer.back());
    }
    DeleteFileA(path.c_str());
    double perPair = bench::Median(ours) / entries;
    printf(
        "load %6u pairs: %7.2f million pairs a second %10.2f ns   %-28s %10.2f ns   ratio %6.3f\n",
        entries, 1 / perPair / 1e6, perPair * 1e9, "getline + unordered_map",
        bench::Median(peer) / entries * 1e9, bench::Median(ratios));
}

// A menu of 20 items: the whole translation beside the same calls without a lookup.
void BenchMenu() {
    std::string path = WriteDictionary(10000);
    CWld dictionary;
    dictionary.Init(path.c_str());
    DeleteFileA(path.c_str());
    constexpr int kItems = 20;
    HMENU menu = CreateMenu();
    auto texts = UiTexts(kItems);
    for (int i = 0; i < kItems; ++i) AppendMenuA(menu, 0, 100 + i, texts[i].c_str());
    bench::Compare(
        "Translate(HMENU), 20 items", "the same calls, no lookup",
        [&] { dictionary.Translate(menu); },
        [&] {
            int count = GetMenuItemCount(menu);
            for (int i = 0; i < count; ++i) {
                char text[256];
                GetMenuStringA(menu, i, text, sizeof text, MF_BYPOSITION);
                UINT state = GetMenuState(menu, i, MF_BYPOSITION);
                GetSubMenu(menu, i);
                ModifyMenuA(menu, i, MF_BYPOSITION | (state & (MF_GRAYED | MF_CHECKED)),
                            GetMenuItemID(menu, i), text);
            }
        });
    DestroyMenu(menu);
    DeleteObject(dictionary.m_hFont);
}

}  // namespace

int main() {
    for (unsigned entries : {100u, 1000u, 10000u}) BenchLookup(entries);
    for (unsigned entries : {10000u, 100000u}) BenchLoading(entries);
    BenchMenu();
}
