#include "tools/qxtranslate/model/program/harvest.h"

#include "tools/qxtranslate/model/dictionary/compile.h"
#include "tools/qxtranslate/model/pe/resources.h"
#include "tools/qxtranslate/model/places/resource_texts.h"
#include "tools/qxtranslate/model/text/unicode.h"

#include <algorithm>
#include <map>

namespace qx {

namespace {

constexpr struct {
    uint32_t type;
    PlaceKind kind;
} kTypes[] = {
    {kTypeMenu, PlaceKind::Menu},
    {kTypeDialog, PlaceKind::Dialog},
    {kTypeStrings, PlaceKind::Strings},
};

std::vector<ResourceText> ReadResource(const Resource& resource) {
    if (resource.data.empty()) return {};
    switch (resource.type.number) {
        case kTypeMenu:
            return ReadMenu(resource.data);
        case kTypeDialog:
            return ReadDialog(resource.data);
        default:
            return ReadStrings(resource.data, resource.name.number);
    }
}

// The text of one thing in another language's resource: the one with the same number if it is the
// only one there, else the one in the same position.
class Counterparts {
public:
    explicit Counterparts(std::vector<ResourceText> texts) : m_texts(std::move(texts)) {
        for (const ResourceText& text : m_texts) {
            m_byItem[text.item] = &text;
            if (text.id) ++m_ids[text.id];
        }
    }
    bool HasId(uint32_t id) const {
        auto found = m_ids.find(id);
        return found != m_ids.end() && found->second == 1;
    }
    const ResourceText* Find(const ResourceText& text, const Counterparts& own) const {
        if (text.id && HasId(text.id) && own.HasId(text.id)) {
            return &*std::find_if(m_texts.begin(), m_texts.end(),
                                  [&](auto& t) { return t.id == text.id; });
        }
        auto found = m_byItem.find(text.item);
        bool isSame = found != m_byItem.end() && found->second->what == text.what &&
                      found->second->id == text.id;
        return isSame ? found->second : nullptr;
    }
    const std::vector<ResourceText>& Texts() const { return m_texts; }

private:
    std::vector<ResourceText> m_texts;
    std::map<std::string, const ResourceText*> m_byItem;
    std::map<uint32_t, int> m_ids;
};

std::string NameOf(const ResourceName& name) {
    return name.IsNumber() ? std::to_string(name.number) : ToUtf8(name.text);
}

// What the program sees of a text that holds a NUL is what stands before it.
HarvestedText Harvested(const ResourceText& text, const Context& context) {
    HarvestedText harvested = {{context, text.item}, "", "", text.what, text.room, text.outOfReach};
    size_t nul = text.text.find(u'\0');
    if (nul != std::u16string::npos && harvested.outOfReach.empty())
        harvested.outOfReach = "the text goes on behind a NUL, which a translation would lose";
    harvested.text = ToUtf8(std::u16string_view(text.text).substr(0, nul));
    return harvested;
}

void AddResource(const Resource& source, const Resource* second, const Context& context,
                 std::vector<HarvestedText>& texts) {
    Counterparts own(ReadResource(source));
    Counterparts other(second && second != &source ? ReadResource(*second)
                                                   : std::vector<ResourceText>());
    for (const ResourceText& text : own.Texts()) {
        HarvestedText harvested = Harvested(text, context);
        if (harvested.text.empty()) continue;
        if (const ResourceText* found = other.Find(text, own))
            harvested.target = Harvested(*found, context).text;
        texts.push_back(harvested);
    }
}

// All places of one source text.
struct Places {
    std::vector<const HarvestedText*> all;

    // The most frequent translation among those that `counts`; the first of equals.
    template <class Counts>
    std::string Majority(Counts counts) const {
        std::map<std::string, int> votes;
        const std::string* best = nullptr;
        for (const HarvestedText* text : all) {
            if (!text->target.empty() && counts(*text)) ++votes[text->target];
        }
        for (const HarvestedText* text : all) {
            auto vote = votes.find(text->target);
            if (vote != votes.end() && (!best || vote->second > votes[*best])) best = &vote->first;
        }
        return best ? *best : "";
    }
};

void AddNote(PoEntry& entry, const std::string& note) {
    if (std::find(entry.notes.begin(), entry.notes.end(), note) == entry.notes.end())
        entry.notes.push_back(note);
}

void AddPlace(PoEntry& entry, const HarvestedText& text) {
    AddNote(entry, text.room.empty() ? text.what : text.what + ", " + text.room);
    if (!text.outOfReach.empty()) AddNote(entry, OutOfReachNote(text.place, text.outOfReach));
    entry.references.push_back(FormatPlace(text.place));
}

// The wide loads of strings know no places, so a translation for everywhere is theirs if it can be.
std::string TargetForEverywhere(const Places& places) {
    auto isInReach = [](const HarvestedText& t) { return t.outOfReach.empty(); };
    std::string target = places.Majority([&](const HarvestedText& t) {
        return isInReach(t) && t.place.context.kind == PlaceKind::Strings;
    });
    if (target.empty()) target = places.Majority(isInReach);
    if (target.empty()) target = places.Majority([](const HarvestedText&) { return true; });
    return target;
}

void AddEntries(PoFile& po, const std::string& source, const Places& places, unsigned* lost) {
    PoEntry everywhere;
    everywhere.source = source;
    everywhere.target = TargetForEverywhere(places);
    std::map<Context, Places> byContext;
    for (const HarvestedText* text : places.all) byContext[text->place.context].all.push_back(text);
    std::vector<PoEntry> apart;
    std::set<Context> done;
    for (const HarvestedText* text : places.all) {
        const Context& context = text->place.context;
        const Places& here = byContext[context];
        std::string target = here.Majority([](const HarvestedText&) { return true; });
        bool differs = !target.empty() && target != everywhere.target;
        if (!text->target.empty() && text->target != target) ++*lost;
        if (!differs) {
            AddPlace(everywhere, *text);
        } else if (done.insert(context).second) {
            PoEntry entry;
            entry.context = FormatContext(context);
            entry.source = source;
            entry.target = target;
            for (const HarvestedText* place : here.all) AddPlace(entry, *place);
            apart.push_back(entry);
        }
    }
    po.entries.push_back(everywhere);
    po.entries.insert(po.entries.end(), apart.begin(), apart.end());
}

}  // namespace

Harvest ReadTexts(Bytes file, const std::string& module, uint16_t language,
                  std::optional<uint16_t> second) {
    PeImage image(file);
    std::vector<Resource> resources = ReadResources(image);
    Harvest harvest;
    for (auto& [type, kind] : kTypes) {
        std::map<ResourceName, std::vector<const Resource*>> byName;
        for (const Resource& resource : resources) {
            if (!resource.Is(type)) continue;
            byName[resource.name].push_back(&resource);
            harvest.languages.insert(resource.language);
        }
        for (auto& [name, candidates] : byName) {
            const Resource* source = ChooseLanguage(candidates, language);
            if (!source) continue;
            const Resource* other = second ? ChooseLanguage(candidates, *second) : nullptr;
            AddResource(*source, other, {module, kind, NameOf(name)}, harvest.texts);
        }
    }
    return harvest;
}

PoFile ToPo(const std::vector<HarvestedText>& texts, std::string_view program, unsigned* lost) {
    std::map<std::string, Places> bySource;
    std::vector<std::string> order;
    for (const HarvestedText& text : texts) {
        Places& places = bySource[text.text];
        if (places.all.empty()) order.push_back(text.text);
        places.all.push_back(&text);
    }
    PoFile po;
    BeginHeader(po, program);
    for (const std::string& source : order) AddEntries(po, source, bySource[source], lost);
    return po;
}

constexpr std::string_view kOutOfReachAt = "out of reach at ";

std::string OutOfReachNote(const Place& place, const std::string& why) {
    return std::string(kOutOfReachAt) + FormatPlace(place) + ": " + why;
}

std::optional<OutOfReach> ParseOutOfReachNote(std::string_view note) {
    if (!note.starts_with(kOutOfReachAt)) return std::nullopt;
    note.remove_prefix(kOutOfReachAt.size());
    size_t colon = note.find(": ");
    if (colon == std::string::npos) return std::nullopt;
    return OutOfReach{std::string(note.substr(0, colon)), std::string(note.substr(colon + 2))};
}

}  // namespace qx
