#include "tools/qxtranslate/files.h"
#include "tools/qxtranslate/model/checks.h"
#include "tools/qxtranslate/model/unicode.h"
#include "tools/qxtranslate/platform.h"
#include "tools/qxtranslate/verbs.h"

#include <memory>

namespace qx {

namespace {

struct Options {
    std::string po;
    unsigned codePage = 0;
    Format format = Format::Text;
    std::string output;
};

int RunCheck(const Options& options) {
    std::unique_ptr<CodePage> page;
    if (options.codePage) page = OpenCodePage(options.codePage);
    std::vector<Finding> findings =
        Naming(options.po, [&] { return Check(ReadPo(ReadText(options.po)), page.get()); });
    Table table = {{"severity", "line", "check", "message", "source"}, {}};
    std::string text;
    for (const Finding& finding : findings) {
        const char* severity = finding.severity == Severity::Error ? "error" : "warning";
        std::string line = std::to_string(finding.line);
        table.rows.push_back({severity, line, finding.check, finding.message, finding.source});
        text += options.po + ":" + line + ": " + severity + ": " + EscapeLine(finding.message) +
                " (" + finding.check + "): " + EscapeLine(finding.source) + "\n";
    }
    WriteResult(options.output,
                options.format == Format::Text ? text : Print(table, options.format));
    return findings.empty() ? kDone : kFindings;
}

}  // namespace

void DefineCheck(CLI::App& app, Run& run) {
    auto options = std::make_shared<Options>();
    CLI::App* verb = app.add_subcommand("check", "What is wrong with the translations");
    verb->add_option("PO", options->po, "The translations")->required();
    AddCodePage(*verb, options->codePage, false);
    AddFormat(*verb, options->format);
    AddOutput(*verb, options->output);
    verb->callback([options, &run] { run = [options] { return RunCheck(*options); }; });
}

}  // namespace qx
