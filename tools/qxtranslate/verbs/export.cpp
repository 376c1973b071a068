#include "tools/qxtranslate/model/po/file.h"
#include "tools/qxtranslate/platform/files.h"
#include "tools/qxtranslate/verbs/verbs.h"

namespace qx {

namespace {

std::string Join(const std::vector<std::string>& list, const char* separator) {
    std::string joined;
    for (const std::string& item : list) joined += (joined.empty() ? "" : separator) + item;
    return joined;
}

}  // namespace

int RunExport(const ExportOptions& options) {
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

}  // namespace qx
