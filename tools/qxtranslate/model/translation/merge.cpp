#include "tools/qxtranslate/model/translation/merge.h"

#include "tools/qxtranslate/model/places/place.h"
#include "tools/qxtranslate/model/text/text_marks.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <set>
#include <unordered_map>

namespace qx {

namespace {

constexpr double kSimilarInPlace = 0.5;
constexpr double kVerySimilar = 0.8;

// A text by its pairs of neighbouring letters, sorted.
using Pairs = std::vector<uint16_t>;

Pairs PairsOf(std::string_view text) {
    Pairs pairs;
    for (size_t i = 0; i + 1 < text.size(); ++i) {
        pairs.push_back(static_cast<uint16_t>(static_cast<unsigned char>(text[i]) << 8 |
                                              static_cast<unsigned char>(text[i + 1])));
    }
    std::sort(pairs.begin(), pairs.end());
    return pairs;
}

double Similarity(const Pairs& a, const Pairs& b) {
    if (a.empty() || b.empty()) return 0;
    size_t common = 0;
    for (auto i = a.begin(), j = b.begin(); i != a.end() && j != b.end();) {
        if (*i == *j) {
            ++common, ++i, ++j;
        } else {
            *i < *j ? ++i : ++j;
        }
    }
    return 2.0 * static_cast<double>(common) / static_cast<double>(a.size() + b.size());
}

// Whether the lengths alone rule a similarity out.
bool CanReach(double wanted, const Pairs& a, const Pairs& b) {
    auto shorter = static_cast<double>(std::min(a.size(), b.size()));
    return 2 * shorter >= wanted * static_cast<double>(a.size() + b.size());
}

struct Known {
    const PoEntry* entry;
    Pairs pairs;
    bool isKept = false;
};

class Merger {
public:
    Merger(const PoFile& old, const PoFile& fresh, MergeCounts& counts)
        : m_fresh(fresh), m_counts(counts) {
        for (const PoEntry& entry : old.entries) {
            if (entry.target.empty() && !entry.IsLeftAsItIs()) continue;
            m_known.push_back({&entry, {}});
        }
        for (Known& known : m_known) {
            m_byKey.try_emplace(KeyOf(*known.entry), &known);
            if (known.entry->context) m_apart[known.entry->source].push_back(&known);
        }
    }

    std::vector<PoEntry> Run() {
        std::vector<PoEntry> entries;
        for (const PoEntry& fresh : m_fresh.entries) {
            if (fresh.isObsolete) continue;
            PoEntry entry = fresh;
            std::vector<PoEntry> apart = SplitOff(entry);
            if (apart.empty() || !entry.references.empty() || FindSame(entry)) {
                TakeSame(entry);
                entries.push_back(entry);
            }
            entries.insert(entries.end(), apart.begin(), apart.end());
        }
        IndexGone();
        for (PoEntry& entry : entries) {
            if (!entry.target.empty() || entry.IsLeftAsItIs()) {
                ++m_counts.same;
            } else if (!Suggest(entry)) {
                ++m_counts.missing;
            }
        }
        AddObsolete(entries);
        return entries;
    }

private:
    Known* FindSame(const PoEntry& entry) {
        auto found = m_byKey.find(KeyOf(entry));
        return found == m_byKey.end() ? nullptr : found->second;
    }

    static void Take(PoEntry& entry, Known& known) {
        known.isKept = true;
        entry.target = known.entry->target;
        entry.comments = known.entry->comments;
        if (!known.entry->IsFuzzy()) return;
        entry.SetFuzzy();
        entry.previousSource = known.entry->previousSource;
        entry.previousContext = known.entry->previousContext;
    }

    void TakeSame(PoEntry& entry) {
        if (Known* known = FindSame(entry)) Take(entry, *known);
    }

    // The translator's entries for single places, as long as the text stands there; their places
    // leave the entry for everywhere.
    std::vector<PoEntry> SplitOff(PoEntry& entry) {
        std::vector<PoEntry> apart;
        auto found = entry.context ? m_apart.end() : m_apart.find(entry.source);
        if (found == m_apart.end()) return apart;
        for (Known* known : found->second) {
            PoEntry split = entry;
            split.context = known->entry->context;
            std::string prefix = *split.context + "/";
            auto isThere = [&](const std::string& place) { return place.starts_with(prefix); };
            std::erase_if(split.references, [&](auto& place) { return !isThere(place); });
            if (split.references.empty() || FreshHas(split)) continue;
            std::erase_if(entry.references, isThere);
            Take(split, *known);
            apart.push_back(split);
        }
        return apart;
    }

    bool FreshHas(const PoEntry& entry) {
        if (m_freshKeys.empty()) {
            for (const PoEntry& fresh : m_fresh.entries) m_freshKeys.insert(KeyOf(fresh));
        }
        return m_freshKeys.count(KeyOf(entry)) != 0;
    }

    // The entries whose texts are gone are what suggestions come from, by marks also the others.
    void IndexGone() {
        for (Known& known : m_known) {
            m_byBare.try_emplace(Bare(known.entry->source), &known);
            if (known.isKept) continue;
            known.pairs = PairsOf(Bare(known.entry->source));
            m_gone.push_back(&known);
            for (const std::string& place : known.entry->references) m_byPlace[place] = &known;
        }
    }

    bool Suggest(PoEntry& entry) {
        std::string bare = Bare(entry.source);
        Known* best = nullptr;
        if (auto found = m_byBare.find(bare); found != m_byBare.end() && !bare.empty())
            best = found->second;
        Pairs pairs = PairsOf(bare);
        if (!best) best = MostSimilarInPlace(entry, pairs);
        if (!best) best = MostSimilar(pairs);
        if (!best || best->entry->target.empty()) return false;
        entry.target = best->entry->target;
        entry.previousSource = best->entry->source;
        entry.previousContext = best->entry->context;
        entry.SetFuzzy();
        best->isKept = true;
        ++m_counts.suggested;
        return true;
    }

    Known* MostSimilarInPlace(const PoEntry& entry, const Pairs& pairs) {
        Known* best = nullptr;
        double similarity = kSimilarInPlace;
        for (const std::string& place : entry.references) {
            auto found = m_byPlace.find(place);
            if (found == m_byPlace.end()) continue;
            double s = Similarity(pairs, found->second->pairs);
            if (s >= similarity && (!best || s > similarity)) best = found->second, similarity = s;
        }
        return best;
    }

    Known* MostSimilar(const Pairs& pairs) {
        Known* best = nullptr;
        double similarity = kVerySimilar;
        for (Known* known : m_gone) {
            if (!CanReach(similarity, pairs, known->pairs)) continue;
            double s = Similarity(pairs, known->pairs);
            if (s >= similarity && (!best || s > similarity)) best = known, similarity = s;
        }
        return best;
    }

    // A suggestion keeps the old text beside it, so only what was of no use stays at the end.
    void AddObsolete(std::vector<PoEntry>& entries) {
        for (const Known& known : m_known) {
            if (known.isKept) continue;
            PoEntry entry = *known.entry;
            entry.isObsolete = true;
            entry.notes.clear();
            entry.references.clear();
            entries.push_back(entry);
            ++m_counts.obsolete;
        }
    }

    const PoFile& m_fresh;
    MergeCounts& m_counts;
    std::set<PoKey> m_freshKeys;
    std::vector<Known> m_known;
    std::map<PoKey, Known*> m_byKey;
    std::unordered_map<std::string, std::vector<Known*>> m_apart;  // by source, those in context
    std::unordered_map<std::string, Known*> m_byBare;
    std::unordered_map<std::string, Known*> m_byPlace;
    std::vector<Known*> m_gone;
};

}  // namespace

double Similarity(std::string_view a, std::string_view b) {
    return Similarity(PairsOf(a), PairsOf(b));
}

PoFile Merge(const PoFile& old, const PoFile& fresh, MergeCounts* counts) {
    PoFile merged = old;
    if (merged.header.empty()) merged.header = fresh.header;
    merged.isTemplate = false;
    merged.entries = Merger(old, fresh, *counts).Run();
    return merged;
}

}  // namespace qx
