#include "tools/qxtranslate/model/translation/geometry_checks.h"

#include "tools/qxtranslate/model/places/place.h"
#include "tools/qxtranslate/model/text/unicode.h"

#include <set>

namespace qx {

namespace {

using DialogName = std::pair<std::string, std::string>;  // of module and dialog, in lower case

std::set<DialogName> DialogsOf(const PoFile& po) {
    std::set<DialogName> dialogs;
    for (const PoEntry& entry : po.entries) {
        for (const std::string& reference : entry.references) {
            auto place = ParsePlace(reference);
            if (!place || place->context.kind != PlaceKind::Dialog) continue;
            dialogs.insert(
                {LowerAscii(place->context.module), LowerAscii(place->context.resource)});
        }
    }
    return dialogs;
}

}  // namespace

std::vector<Finding> CheckGeometry(const Geometry& geometry, const PoFile& po,
                                   const CodePage* page) {
    std::vector<Finding> findings;
    for (const GeometryProblem& problem : geometry.problems)
        findings.push_back({Severity::Error, problem.line, "geometry", "", problem.what});
    auto decoded = [&](const std::string& name) {
        return LowerAscii(page ? page->Decode(name).value_or(name) : name);
    };
    std::set<DialogName> known = DialogsOf(po);
    for (const DialogGeometry& dialog : geometry.dialogs) {
        if (!known.count({decoded(dialog.module), decoded(dialog.resource)}))
            findings.push_back({Severity::Warning, dialog.line, "geometry",
                                decoded(dialog.module) + "/dialog/" + decoded(dialog.resource),
                                "no text of the translations stands in this dialog"});
    }
    return findings;
}

}  // namespace qx
