#include "tools/qxtranslate/model/translation/merge.h"
#include "tools/qxtranslate/platform/files.h"
#include "tools/qxtranslate/platform/platform.h"
#include "tools/qxtranslate/verbs/verbs.h"

#include <cstdio>
#include <memory>

namespace qx {

namespace {

struct Options {
    std::string old;
    std::string fresh;
    std::string output;
};

int RunMerge(const Options& options) {
    RequireApart(options.output, {options.fresh});
    MergeCounts counts;
    PoFile merged =
        Merge(ParseText(options.old, ReadPo), ParseText(options.fresh, ReadPo), &counts);
    WriteResult(options.output, WritePo(merged));
    if (IsErrorTerminal()) {
        std::fprintf(stderr, "%u the same, %u suggested (fuzzy), %u missing, %u obsolete\n",
                     counts.same, counts.suggested, counts.missing, counts.obsolete);
    }
    return kDone;
}

}  // namespace

void DefineMerge(CLI::App& app, Run& run) {
    auto options = std::make_shared<Options>();
    CLI::App* verb = app.add_subcommand(
        "merge", "The old translations for the texts of a new version of the program");
    verb->add_option("OLD", options->old, "The translations")->required();
    verb->add_option("NEW", options->fresh, "The harvest of the new version")->required();
    AddOutput(*verb, options->output);
    verb->callback([options, &run] { run = [options] { return RunMerge(*options); }; });
}

}  // namespace qx
