#include "tools/qxtranslate/model/translation/status.h"

#include "tools/qxtranslate/model/dictionary/compile.h"
#include "tools/qxtranslate/model/program/harvest.h"
#include "tools/qxtranslate/model/text/unicode.h"

#include <algorithm>
#include <map>
#include <set>

namespace qx {

namespace {

// What the program has of one text.
struct ProgramText {
    std::set<std::string> places;
    std::map<std::string, std::string> outOfReach;  // why, by place
};

class Program {
public:
    explicit Program(const PoFile& harvest) {
        for (const PoEntry& entry : harvest.entries) {
            if (entry.isObsolete) continue;
            ProgramText& text = m_texts[entry.source];
            for (const std::string& reference : entry.references) {
                text.places.insert(reference);
                if (auto place = ParsePlace(reference)) {
                    m_contexts.insert(FormatContext(place->context));
                    m_modules.insert(place->context.module);
                }
            }
            for (const std::string& note : entry.notes) {
                if (auto why = ParseOutOfReachNote(note)) text.outOfReach[why->place] = why->why;
            }
        }
    }
    const ProgramText* Find(const std::string& source) const {
        auto found = m_texts.find(source);
        return found == m_texts.end() ? nullptr : &found->second;
    }
    bool HasContext(const std::string& context) const { return m_contexts.count(context) != 0; }
    const std::set<std::string>& Modules() const { return m_modules; }

private:
    std::map<std::string, ProgramText> m_texts;
    std::set<std::string> m_contexts;
    std::set<std::string> m_modules;
};

class Assessor {
public:
    Assessor(const Program& program, bool knowsAll, const std::vector<LookUp>* record)
        : m_program(program), m_knowsAll(knowsAll), m_record(record) {
        if (!record) return;
        for (const LookUp& lookUp : *record) {
            m_seen[lookUp.source].push_back(&lookUp);
            m_loaded.insert(lookUp.module);
        }
    }

    TextStatus Assess(const PoEntry& entry) const {
        TextStatus status = {TextState::Missing, entry.line, entry.context.value_or(""),
                             entry.source, ""};
        if (IsOutOfReach(entry, &status.why)) {
            status.state = TextState::OutOfReach;
        } else if (IsStale(entry)) {
            status.state = TextState::Stale;
        } else if (entry.IsFuzzy()) {
            status.why = "the translation is fuzzy";
        } else if (!IsForDictionary(entry)) {
            return status;
        } else if (IsDead(entry, &status.why)) {
            status.state = TextState::Dead;
        } else if (entry.target.empty()) {
            status.state = TextState::Empty;
        } else if (m_record && !m_seen.count(entry.source)) {
            status.state = TextState::NeverSeen;
        } else {
            status.state = entry.context ? TextState::ByPlace : TextState::Translated;
        }
        return status;
    }

private:
    // Where the text stands that the entry is for.
    std::vector<std::string> Places(const PoEntry& entry, const ProgramText& text) const {
        std::vector<std::string> places;
        for (const std::string& place : text.places) {
            if (!entry.context || place.starts_with(*entry.context + "/")) places.push_back(place);
        }
        return places;
    }

    bool IsStale(const PoEntry& entry) const { return m_knowsAll && !m_program.Find(entry.source); }

    // A text that the record saw is in reach whatever the places say.
    bool IsOutOfReach(const PoEntry& entry, std::string* why) const {
        const ProgramText* text = m_program.Find(entry.source);
        if (!text || m_seen.count(entry.source)) return false;
        std::string reason;
        for (const std::string& place : Places(entry, *text)) {
            auto found = text->outOfReach.find(place);
            if (found == text->outOfReach.end()) return false;
            reason = found->second;
        }
        *why = reason;
        return !reason.empty();
    }

    bool IsDead(const PoEntry& entry, std::string* why) const {
        if (!entry.context) return false;
        auto context = ParseContext(*entry.context);
        if (!context) {
            *why = "no key of a dictionary expresses this context";
        } else if (std::string spelled = OtherSpelling(context->module); !spelled.empty()) {
            *why = "the program loads the file as " + spelled;
        } else if (m_knowsAll && !m_program.HasContext(*entry.context)) {
            *why = "the program has no such resource";
        } else if (m_knowsAll && Places(entry, *m_program.Find(entry.source)).empty()) {
            *why = "the text does not stand in this resource";
        } else if (IsOnlyLoadedWide(entry)) {
            *why = "the program loads it by LoadStringW, which knows no places";
        }
        return !why->empty();
    }

    // The module's name as the record or else the harvest has it, where that differs in case only.
    std::string OtherSpelling(const std::string& module) const {
        const std::set<std::string>& names = m_record ? m_loaded : m_program.Modules();
        if (names.count(module)) return {};
        auto found = std::find_if(names.begin(), names.end(), [&](const std::string& name) {
            return LowerAscii(name) == LowerAscii(module);
        });
        return found == names.end() ? "" : *found;
    }

    bool IsOnlyLoadedWide(const PoEntry& entry) const {
        auto seen = m_seen.find(entry.source);
        return seen != m_seen.end() &&
               std::all_of(seen->second.begin(), seen->second.end(),
                           [](const LookUp* l) { return l->function == "LoadStringW"; });
    }

    const Program& m_program;
    bool m_knowsAll;
    const std::vector<LookUp>* m_record;
    std::map<std::string, std::vector<const LookUp*>> m_seen;
    std::set<std::string> m_loaded;
};

constexpr std::string_view kNames[] = {
    "translated", "by place", "missing", "empty", "never seen", "stale", "dead", "out of reach",
};

}  // namespace

std::string_view NameOf(TextState state) {
    return kNames[static_cast<size_t>(state)];
}

size_t Status::Count(TextState state) const {
    return static_cast<size_t>(
        std::count_if(texts.begin(), texts.end(), [=](auto& text) { return text.state == state; }));
}

double Status::Coverage() const {
    size_t done = Count(TextState::Translated) + Count(TextState::ByPlace) +
                  Count(TextState::NeverSeen) + Count(TextState::Empty);
    size_t all = done + Count(TextState::Missing);
    return all ? 100.0 * static_cast<double>(done) / static_cast<double>(all) : 100;
}

Status StatusOf(const PoFile& po, const PoFile* harvest, const std::vector<LookUp>* record) {
    Program program(harvest ? *harvest : po);
    Assessor assessor(program, harvest != nullptr, record);
    Status status;
    std::set<std::string> sources;
    for (const PoEntry& entry : po.entries) {
        if (entry.isObsolete) continue;
        sources.insert(entry.source);
        status.texts.push_back(assessor.Assess(entry));
    }
    // Texts that the translator's file does not know yet.
    for (size_t i = 0; harvest && i < harvest->entries.size(); ++i) {
        PoEntry entry = harvest->entries[i];
        if (entry.isObsolete || !sources.insert(entry.source).second) continue;
        entry.target.clear();
        entry.line = 0;
        status.texts.push_back(assessor.Assess(entry));
    }
    return status;
}

}  // namespace qx
