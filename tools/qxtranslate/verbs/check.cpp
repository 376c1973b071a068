#include "tools/qxtranslate/model/text/unicode.h"
#include "tools/qxtranslate/model/translation/checks.h"
#include "tools/qxtranslate/model/translation/geometry_checks.h"
#include "tools/qxtranslate/platform/files.h"
#include "tools/qxtranslate/platform/platform.h"
#include "tools/qxtranslate/verbs/verbs.h"

#include <memory>

namespace qx {

namespace {

struct Report {
    Table table = {{"severity", "file", "line", "check", "message", "source"}, {}};
    std::string text;

    void Add(const std::string& file, const std::vector<Finding>& findings) {
        for (const Finding& finding : findings) {
            const char* severity = finding.severity == Severity::Error ? "error" : "warning";
            std::string line = std::to_string(finding.line);
            table.rows.push_back(
                {severity, file, line, finding.check, finding.message, finding.source});
            text += file + ":" + line + ": " + severity + ": " + EscapeLine(finding.message) +
                    " (" + finding.check + "): " + EscapeLine(finding.source) + "\n";
        }
    }
};

}  // namespace

int RunCheck(const CheckOptions& options) {
    RequireApart(options.output, {options.po, options.geometry});
    std::unique_ptr<CodePage> page;
    if (options.codePage) page = OpenCodePage(options.codePage);
    PoFile po = ParseText(options.po, ReadPo);
    Report report;
    report.Add(options.po, Check(po, page.get()));
    if (!options.geometry.empty()) {
        Geometry geometry = ParseText(options.geometry, ReadGeometry);
        report.Add(options.geometry, CheckGeometry(geometry, po, page.get()));
    }
    WriteResult(options.output,
                options.format == Format::Text ? report.text : Print(report.table, options.format));
    return report.table.rows.empty() ? kDone : kFindings;
}

}  // namespace qx
