#include "tools/qxtranslate/model/dictionary/compile.h"
#include "tools/qxtranslate/model/translation/pseudo.h"
#include "tools/qxtranslate/platform/files.h"
#include "tools/qxtranslate/platform/platform.h"
#include "tools/qxtranslate/verbs/verbs.h"

#include <cstdio>
#include <memory>

namespace qx {

namespace {

struct Options {
    std::string harvest;
    unsigned codePage = 0;
    unsigned longer = 30;
    std::string output;
};

int RunPseudo(const Options& options) {
    auto page = OpenCodePage(options.codePage);
    PseudoLanguage language(*page, options.longer);
    RequireApart(options.output, {options.harvest});
    Compiled compiled = ParseText(options.harvest, [&](std::string_view text) {
        return Compile(language.Translate(ReadPo(text)), *page);
    });
    for (const LeftOut& entry : compiled.leftOut) {
        std::fprintf(stderr, "%s: line %u: left out: %s\n", options.harvest.c_str(), entry.line,
                     entry.why.c_str());
    }
    WriteResult(options.output, WriteDictionary(compiled.dictionary));
    return kDone;
}

}  // namespace

void DefinePseudo(CLI::App& app, Run& run) {
    auto options = std::make_shared<Options>();
    CLI::App* verb = app.add_subcommand(
        "pseudo", "A dictionary of a pseudo-language, which shows what no dictionary reaches");
    verb->add_option("POT", options->harvest, "The harvest")->required();
    AddCodePage(*verb, options->codePage, true);
    verb->add_option("--longer", options->longer, "How much longer the texts get, in per cent (30)")
        ->type_name("PERCENT")
        ->check(CLI::Range(0, 400));
    AddOutput(*verb, options->output);
    verb->callback([options, &run] { run = [options] { return RunPseudo(*options); }; });
}

}  // namespace qx
