#include "tools/qxtranslate/model/dictionary/compile.h"
#include "tools/qxtranslate/platform/files.h"
#include "tools/qxtranslate/platform/platform.h"
#include "tools/qxtranslate/verbs/verbs.h"

#include <memory>

namespace qx {

namespace {

struct Options {
    std::string dictionary;
    unsigned codePage = 0;
    std::string output;
};

int RunImport(const Options& options) {
    auto page = OpenCodePage(options.codePage);
    RequireApart(options.output, {options.dictionary});
    PoFile po = ParseText(options.dictionary, [&](std::string_view text) {
        Dictionary dictionary = ReadDictionary(text, *page);
        if (dictionary.entries.empty() && !text.empty())
            throw BadInput("is no dictionary: no two of its lines are a text in double quotes");
        return Decompile(dictionary, *page);
    });
    WriteResult(options.output, WritePo(po));
    return kDone;
}

}  // namespace

void DefineImport(CLI::App& app, Run& run) {
    auto options = std::make_shared<Options>();
    CLI::App* verb = app.add_subcommand("import", "From a dictionary to a PO file");
    verb->add_option("DICTIONARY", options->dictionary, "The dictionary")->required();
    AddCodePage(*verb, options->codePage, true);
    AddOutput(*verb, options->output);
    verb->callback([options, &run] { run = [options] { return RunImport(*options); }; });
}

}  // namespace qx
