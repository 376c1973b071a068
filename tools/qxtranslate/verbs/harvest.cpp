#include "tools/qxtranslate/model/program/harvest.h"
#include "tools/qxtranslate/platform/files.h"
#include "tools/qxtranslate/platform/platform.h"
#include "tools/qxtranslate/verbs/verbs.h"

#include <algorithm>
#include <cstdio>

namespace qx {

namespace {

constexpr uint16_t kEnglish = 0x409;

uint16_t ParseLanguage(const std::string& text) {
    size_t used = 0;
    unsigned long number = 0;
    try {
        number = std::stoul(text, &used, 0);
    } catch (const std::exception&) {
    }
    if (!used || used != text.size() || number > 0xFFFF)
        throw BadInput("\"" + text + "\" is no number of a language, such as 0x409");
    return static_cast<uint16_t>(number);
}

struct Languages {
    uint16_t source = kEnglish;
    std::optional<uint16_t> second;
};

Languages ParseLanguages(const HarvestOptions& options) {
    Languages languages;
    if (!options.language.empty()) languages.source = ParseLanguage(options.language);
    if (options.pair.empty()) return languages;
    size_t comma = options.pair.find(',');
    if (comma == std::string::npos)
        throw BadInput("--pair needs two languages, such as 0x409,0x407");
    languages.source = ParseLanguage(options.pair.substr(0, comma));
    languages.second = ParseLanguage(options.pair.substr(comma + 1));
    return languages;
}

std::string Hex(uint16_t number) {
    char text[8];
    std::snprintf(text, sizeof text, "0x%03x", number);
    return text;
}

void TellWithoutLanguage(const std::string& path, const Harvest& harvest, uint16_t language) {
    std::string others;
    for (uint16_t other : harvest.languages) others += (others.empty() ? "" : ", ") + Hex(other);
    std::fprintf(stderr, "%s: no texts in the language %s, only in %s\n", path.c_str(),
                 Hex(language).c_str(), others.c_str());
}

// Of many files those that have no texts at all are nothing to tell.
void TellWhatIsMissing(const std::string& path, const Harvest& harvest, const Languages& languages,
                       bool isOnly) {
    bool hasNone = harvest.languages.empty() || harvest.languages.count(languages.source);
    if (harvest.texts.empty() && !hasNone) {
        TellWithoutLanguage(path, harvest, languages.source);
    } else if (harvest.texts.empty() && isOnly) {
        std::fprintf(stderr,
                     "%s: no texts of its own; qxtranslate audit names the libraries that it may "
                     "show\n",
                     path.c_str());
    }
    bool isPaired = std::any_of(harvest.texts.begin(), harvest.texts.end(),
                                [](auto& text) { return !text.target.empty(); });
    if (!harvest.texts.empty() && languages.second && !isPaired)
        TellWithoutLanguage(path, harvest, *languages.second);
}

}  // namespace

int RunHarvest(const HarvestOptions& options) {
    Languages languages = ParseLanguages(options);
    RequireApart(options.output, options.files);
    std::vector<HarvestedText> texts;
    bool tellsProgress = options.files.size() > 1 && IsErrorTerminal();
    size_t done = 0;
    for (const std::string& path : options.files) {
        if (tellsProgress) std::fprintf(stderr, "\r%zu of %zu", ++done, options.files.size());
        auto harvest = ParseFile(path, [&](Bytes file) {
            return ReadTexts(file, FileName(path), languages.source, languages.second);
        });
        TellWhatIsMissing(path, harvest, languages, options.files.size() == 1);
        texts.insert(texts.end(), harvest.texts.begin(), harvest.texts.end());
    }
    if (tellsProgress) std::fprintf(stderr, "\n");
    unsigned lost = 0;
    PoFile po = ToPo(texts, FileName(options.files.front()), &lost);
    if (lost) {
        std::fprintf(stderr,
                     "%u translations are left out: one resource has another for the same text\n",
                     lost);
    }
    WriteResult(options.output, WritePo(po));
    return kDone;
}

}  // namespace qx
