#include "tools/qxtranslate/model/program/audit.h"
#include "tools/qxtranslate/platform/files.h"
#include "tools/qxtranslate/verbs/verbs.h"

namespace qx {

int RunAudit(const AuditOptions& options) {
    Table table = {{"module", "function", "way", "consequence"}, {}};
    std::string text;
    RequireApart(options.output, options.files);
    for (const std::string& path : options.files) {
        Audit audit = ParseFile(path, AuditModule);
        std::string module = FileName(path);
        for (auto& [function, way] : audit.functions) {
            table.rows.push_back({module, function, way, ""});
            text += module + "\t" + function + "\t" + way + "\n";
        }
        if (audit.functions.empty())
            audit.sentences.insert(audit.sentences.begin(),
                                   "It calls none of the intercepted functions.");
        for (const std::string& sentence : audit.sentences) {
            table.rows.push_back({module, "", "", sentence});
            text += module + "\t" + sentence + "\n";
        }
    }
    WriteResult(options.output,
                options.format == Format::Text ? text : Print(table, options.format));
    return kDone;
}

}  // namespace qx
