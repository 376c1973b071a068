#include "tools/qxtranslate/model/program/harvest.h"
#include "tools/qxtranslate/platform/files.h"
#include "tools/qxtranslate/platform/platform.h"
#include "tools/qxtranslate/verbs/verbs.h"

#include <algorithm>
#include <cstdio>
#include <memory>

namespace qx {

namespace {

constexpr uint16_t kEnglish = 0x409;

struct Options {
    std::vector<std::string> files;
    std::string language;
    std::string pair;
    std::string output;
};

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

Languages ParseLanguages(const Options& options) {
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

int RunHarvest(const Options& options) {
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

}  // namespace

void DefineHarvest(CLI::App& app, Run& run) {
    auto options = std::make_shared<Options>();
    CLI::App* verb = app.add_subcommand(
        "harvest", "Every text of the menus, dialogs and string tables of programs, as a PO file");
    verb->add_option("FILE", options->files, "Programs and libraries, 32-bit or 64-bit")
        ->required();
    auto language =
        verb->add_option("--language", options->language, "Language of the texts (0x409)")
            ->type_name("NUMBER");
    verb->add_option("--pair", options->pair,
                     "Language of the texts and language of the translations, 0x409,0x407")
        ->type_name("TWO")
        ->excludes(language);
    AddOutput(*verb, options->output);
    verb->callback([options, &run] { run = [options] { return RunHarvest(*options); }; });
}

}  // namespace qx
