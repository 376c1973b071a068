#include "tools/qxtranslate/model/text/unicode.h"
#include "tools/qxtranslate/model/translation/status.h"
#include "tools/qxtranslate/platform/files.h"
#include "tools/qxtranslate/verbs/verbs.h"

#include <cstdio>
#include <map>
#include <set>

namespace qx {

namespace {

std::string Summary(const Status& status) {
    std::string summary;
    for (auto state :
         {TextState::Translated, TextState::ByPlace, TextState::Missing, TextState::Empty,
          TextState::NeverSeen, TextState::Stale, TextState::Dead, TextState::OutOfReach}) {
        summary += std::to_string(status.Count(state)) + " " + std::string(NameOf(state)) + ", ";
    }
    char coverage[32];
    std::snprintf(coverage, sizeof coverage, "%.1f %%", status.Coverage());
    return summary + coverage + " of the texts in reach are done\n";
}

// What needs no attention is counted only.
bool IsWorthALine(const TextStatus& text) {
    return text.state != TextState::Translated && text.state != TextState::ByPlace;
}

std::string Text(const Status& status) {
    std::string lines;
    for (const TextStatus& text : status.texts) {
        if (!IsWorthALine(text)) continue;
        lines += std::string(NameOf(text.state)) + "\t" + text.context + "\t" +
                 EscapeLine(text.source) + "\t" + text.why + "\n";
    }
    return lines + Summary(status);
}

Table Rows(const Status& status) {
    Table table = {{"state", "line", "context", "source", "why"}, {}};
    for (const TextStatus& text : status.texts) {
        table.rows.push_back({std::string(NameOf(text.state)), std::to_string(text.line),
                              text.context, text.source, text.why});
    }
    return table;
}

// Texts that the program looked up, and that no entry stands for: their files were not harvested.
void TellUnknown(const PoFile& po, const std::vector<LookUp>& record) {
    std::set<std::string> known;
    for (const PoEntry& entry : po.entries) known.insert(entry.source);
    std::map<std::string, std::set<std::string>> unknown;
    for (const LookUp& lookUp : record) {
        if (lookUp.ending == "miss" && !lookUp.module.empty() && !known.count(lookUp.source))
            unknown[lookUp.module].insert(lookUp.source);
    }
    for (auto& [module, texts] : unknown) {
        std::fprintf(stderr, "%s: %zu texts that were looked up stand in no entry\n",
                     module.c_str(), texts.size());
    }
}

}  // namespace

int RunStatus(const StatusOptions& options) {
    RequireApart(options.output, {options.po, options.harvest, options.record});
    PoFile po = ParseText(options.po, ReadPo), harvest;
    std::vector<LookUp> record;
    if (!options.harvest.empty()) harvest = ParseText(options.harvest, ReadPo);
    if (!options.record.empty()) record = ParseText(options.record, ReadRecord);
    TellUnknown(po, record);
    Status status = StatusOf(po, options.harvest.empty() ? nullptr : &harvest,
                             options.record.empty() ? nullptr : &record);
    WriteResult(options.output, options.format == Format::Text
                                    ? Text(status)
                                    : Print(Rows(status), options.format));
    return status.Coverage() < options.failUnder ? kFindings : kDone;
}

}  // namespace qx
