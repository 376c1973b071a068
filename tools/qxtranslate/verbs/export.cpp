#include "tools/qxtranslate/model/po/file.h"
#include "tools/qxtranslate/platform/files.h"
#include "tools/qxtranslate/verbs/verbs.h"

#include <memory>

namespace qx {

namespace {

struct Options {
    std::string po;
    Format format = Format::Csv;
    std::string output;
};

std::string Join(const std::vector<std::string>& list, const char* separator) {
    std::string joined;
    for (const std::string& item : list) joined += (joined.empty() ? "" : separator) + item;
    return joined;
}

int RunExport(const Options& options) {
    RequireApart(options.output, {options.po});
    PoFile po = ParseText(options.po, ReadPo);
    Table table = {{"context", "source", "target", "state", "places", "notes", "comments"}, {}};
    for (const PoEntry& entry : po.entries) {
        const char* state = entry.isObsolete       ? "obsolete"
                            : entry.IsFuzzy()      ? "fuzzy"
                            : entry.target.empty() ? "missing"
                                                   : "translated";
        table.rows.push_back({entry.context.value_or(""), entry.source, entry.target, state,
                              Join(entry.references, " "), Join(entry.notes, "; "),
                              Join(entry.comments, "; ")});
    }
    WriteResult(options.output, Print(table, options.format));
    return kDone;
}

}  // namespace

void DefineExport(CLI::App& app, Run& run) {
    auto options = std::make_shared<Options>();
    CLI::App* verb = app.add_subcommand("export", "From a PO file to a table (CSV)");
    verb->add_option("PO", options->po, "The translations")->required();
    AddFormat(*verb, options->format);
    AddOutput(*verb, options->output);
    verb->callback([options, &run] { run = [options] { return RunExport(*options); }; });
}

}  // namespace qx
