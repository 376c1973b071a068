#include "tools/qxtranslate/model/translation/checks.h"

#include "tools/qxtranslate/model/dictionary/compile.h"
#include "tools/qxtranslate/model/text/directives.h"
#include "tools/qxtranslate/model/text/text_marks.h"
#include "tools/qxtranslate/model/text/unicode.h"

#include <algorithm>
#include <map>

namespace qx {

namespace {

constexpr size_t kMenuBytes = 511;
constexpr size_t kStringBytes = 1023;

class Checker {
public:
    explicit Checker(const CodePage* page) : m_page(page) {}

    std::vector<Finding> Run(const PoFile& po) {
        for (const PoEntry& entry : po.entries) {
            if (!IsForDictionary(entry)) continue;
            m_entry = &entry;
            if (m_page) CheckKeys();
            if (entry.target.empty()) continue;
            CheckDirectives();
            CheckWriting();
            CheckMarks();
        }
        CheckAccessKeys(po);
        std::stable_sort(m_findings.begin(), m_findings.end(),
                         [](auto& a, auto& b) { return a.line < b.line; });
        return std::move(m_findings);
    }

private:
    void Tell(Severity severity, const char* check, const std::string& message) {
        m_findings.push_back({severity, m_entry->line, check, m_entry->source, message});
    }

    void CheckDirectives() {
        std::string what = CompareDirectives(m_entry->source, m_entry->target);
        if (!what.empty()) Tell(Severity::Error, "directive", what);
    }

    // What the code page lacks, named.
    std::string Lacking(const std::string& text) const {
        std::string lacking;
        for (char32_t c : ToUtf32(text)) {
            std::string one;
            AppendUtf8(one, c);
            if (!m_page->Encode(one) && lacking.find(one) == std::string::npos) lacking += one;
        }
        return lacking;
    }

    void CheckKeys() {
        std::vector<std::string> keys = KeysOf(*m_entry, *m_page);
        if (keys.empty()) {
            bool isContext = m_entry->context && !ParseContext(*m_entry->context);
            return Tell(Severity::Error, isContext ? "context" : "code-page",
                        isContext ? "no key of a dictionary expresses this context"
                                  : "the source text has characters outside the code page: " +
                                        Lacking(m_entry->source));
        }
        for (const std::string& key : keys) {
            auto [known, isNew] = m_hashes.try_emplace(HashText(key), m_entry);
            if (isNew || known->second == m_entry) continue;
            bool isSameKey = m_keys[HashText(key)] == key;
            if (isSameKey && known->second->target == m_entry->target) continue;
            Tell(Severity::Error, "hash",
                 (isSameKey ? "the key is that of line " : "the key has the hash of line ") +
                     std::to_string(known->second->line) + ": the program finds one for both");
            break;
        }
        for (const std::string& key : keys) m_keys.try_emplace(HashText(key), key);
    }

    void CheckWriting() {
        struct AnyPage final : CodePage {
            std::optional<std::string> Encode(std::string_view text) const override {
                return std::string(text);
            }
            std::optional<std::string> Decode(std::string_view text) const override {
                return std::string(text);
            }
            bool IsLead(unsigned char) const override { return false; }
        };
        static const AnyPage kAny;
        const CodePage& page = m_page ? *m_page : kAny;
        auto target = page.Encode(m_entry->target);
        if (!target) {
            return Tell(Severity::Error, "code-page",
                        "characters outside the code page: " + Lacking(m_entry->target));
        }
        auto source = page.Encode(m_entry->source);
        std::string why = WhyUnwritable({source.value_or(""), *target, 0}, page);
        if (!why.empty()) Tell(Severity::Error, "unwritable", why);
        if (m_page) CheckLength(source.value_or("").size(), target->size());
    }

    // A string whose source is longer than the program's buffer has one as long as it needs.
    void CheckLength(size_t sourceBytes, size_t bytes) {
        bool isMenu = false, isString = m_entry->references.empty() && !m_entry->context;
        auto look = [&](std::string_view place) {
            auto parsed = ParsePlace(place);
            isMenu = isMenu || (parsed && parsed->context.kind == PlaceKind::Menu);
            isString = isString || (parsed && parsed->context.kind == PlaceKind::Strings);
        };
        for (const std::string& reference : m_entry->references) look(reference);
        if (m_entry->context) look(*m_entry->context + "/-");
        size_t limit = isMenu ? kMenuBytes : isString ? kStringBytes : std::string::npos;
        if (!isMenu && sourceBytes > kStringBytes) return;
        if (bytes > limit) {
            Tell(Severity::Error, "too-long",
                 std::to_string(bytes) + " bytes, and the program's buffer holds " +
                     std::to_string(limit));
        }
    }

    void CheckMarks() {
        const std::string &source = m_entry->source, &target = m_entry->target;
        auto warn = [&](bool is, const char* check, const char* message) {
            if (is) Tell(Severity::Warning, check, message);
        };
        bool hadTab = source.find('\t') != std::string::npos;
        bool hasTab = target.find('\t') != std::string::npos;
        if (hadTab && !hasTab)
            Tell(Severity::Error, "tab", "the tab with the keys behind it is missing");
        warn(AccessKey(source) && !AccessKey(target), "access-key", "the & is missing");
        warn(EndsWithDots(source) != EndsWithDots(target), "dots",
             EndsWithDots(source) ? "the dots at the end are missing"
                                  : "the source text has no dots at the end");
        warn(EndsWithColon(source) != EndsWithColon(target), "colon",
             EndsWithColon(source) ? "the colon at the end is missing"
                                   : "the source text has no colon at the end");
        warn(LeadingBlanks(source) != LeadingBlanks(target) ||
                 TrailingBlanks(source) != TrailingBlanks(target),
             "blanks", "the blanks at the ends differ");
    }

    // The texts among which an access key must be the only one: one dialog, or one level of a menu.
    static std::string Group(const Place& place) {
        std::string group = FormatContext(place.context);
        size_t slash = place.item.rfind('/');
        if (place.context.kind == PlaceKind::Menu && slash != std::string::npos)
            group += "/" + place.item.substr(0, slash);
        return group;
    }

    void CheckAccessKeys(const PoFile& po) {
        std::map<std::string, std::vector<const PoEntry*>> groups;
        for (const PoEntry& entry : po.entries) {
            if (!IsForDictionary(entry) || entry.target.empty()) continue;
            for (const std::string& reference : entry.references) {
                auto place = ParsePlace(reference);
                if (!place || place->context.kind == PlaceKind::Strings) continue;
                auto& group = groups[Group(*place)];
                if (std::find(group.begin(), group.end(), &entry) == group.end())
                    group.push_back(&entry);
            }
        }
        for (auto& [name, group] : groups) CheckGroup(name, group);
    }

    void CheckGroup(const std::string& name, const std::vector<const PoEntry*>& group) {
        std::map<char32_t, const PoEntry*> owners;
        for (const PoEntry* entry : group) {
            char32_t key = AccessKey(entry->target);
            if (!key) continue;
            auto [owner, isNew] = owners.try_emplace(key, entry);
            if (isNew || AccessKey(owner->second->source) == AccessKey(entry->source)) continue;
            m_entry = entry;
            std::string letter;
            AppendUtf8(letter, key);
            Tell(Severity::Warning, "access-key-clash",
                 "&" + letter + " is also that of line " + std::to_string(owner->second->line) +
                     " in " + name);
        }
    }

    const CodePage* m_page;
    const PoEntry* m_entry = nullptr;
    std::vector<Finding> m_findings;
    std::map<uint32_t, const PoEntry*> m_hashes;
    std::map<uint32_t, std::string> m_keys;
};

}  // namespace

std::vector<Finding> Check(const PoFile& po, const CodePage* page) {
    return Checker(page).Run(po);
}

}  // namespace qx
