#include "tools/qxtranslate/model/dictionary/compile.h"

#include "tools/qxtranslate/model/text/bad_input.h"
#include "tools/qxtranslate/model/text/unicode.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <set>

namespace qx {

namespace {

constexpr const char* kFontName = "X-Dialog-Font-Name";
constexpr const char* kFontScript = "X-Dialog-Font-Script";
constexpr const char* kFontSize = "X-Dialog-Font-Size";

// The low bytes of the characters, as a dialog's text is looked up; nothing with wider ones.
std::optional<std::string> LowBytes(std::string_view utf8) {
    std::string bytes;
    for (char32_t c : ToUtf32(utf8)) {
        if (c > 0xFF) return std::nullopt;
        bytes += static_cast<char>(c);
    }
    return bytes;
}

struct Kinds {
    bool dialog = false;
    bool other = false;
};

Kinds KindsOf(const PoEntry& entry) {
    Kinds kinds;
    auto add = [&](PlaceKind kind) {
        (kind == PlaceKind::Dialog ? kinds.dialog : kinds.other) = true;
    };
    if (entry.context) {
        if (auto context = ParseContext(*entry.context)) add(context->kind);
        return kinds;
    }
    for (const std::string& reference : entry.references) {
        if (auto place = ParsePlace(reference)) add(place->context.kind);
    }
    // A text whose places are not known may stand anywhere.
    if (!kinds.dialog && !kinds.other) kinds = {true, true};
    return kinds;
}

bool IsNamed(const Context& context) {
    return !std::all_of(context.resource.begin(), context.resource.end(),
                        [](char c) { return c >= '0' && c <= '9'; });
}

// The keys that the context may have in a look-up; one empty key without a context.
std::vector<std::string> ContextKeys(const PoEntry& entry, const CodePage& page) {
    if (!entry.context) return {""};
    auto context = ParseContext(*entry.context);
    if (!context) return {};
    std::vector<std::string> keys;
    auto add = [&](const Context& c) {
        if (auto key = ContextKey(c, page)) keys.push_back(*key);
    };
    add(*context);
    if (IsNamed(*context) && context->resource.size() > 1 &&
        static_cast<unsigned char>(context->resource[0]) < 0x80) {
        Context first = *context;
        first.resource.resize(1);
        add(first);
    }
    return keys;
}

std::string WhyWithoutKey(const PoEntry& entry, const CodePage& page) {
    if (entry.context && !ParseContext(*entry.context))
        return "no key of a dictionary expresses the context \"" + *entry.context + "\"";
    if (entry.context && ContextKeys(entry, page).empty())
        return "the code page lacks a character of the context";
    return "the code page lacks a character of the source text";
}

class Compiler {
public:
    explicit Compiler(const CodePage& page) : m_page(page) {}

    void Add(const PoEntry& entry) {
        std::string target;
        if (!entry.IsLeftAsItIs()) {
            auto encoded = m_page.Encode(entry.target);
            if (!encoded) return LeaveOut(entry, "the code page lacks a character of it");
            target = *encoded;
        }
        std::vector<std::string> keys = KeysOf(entry, m_page);
        if (keys.empty()) return LeaveOut(entry, WhyWithoutKey(entry, m_page));
        for (size_t i = 0; i < keys.size(); ++i) {
            DictionaryEntry line = {keys[i], target, entry.line};
            std::string why = WhyUnwritable(line, m_page);
            if (why.empty()) why = WhyClashing(line);
            if (why.empty()) {
                m_compiled.dictionary.entries.push_back(line);
            } else if (i == 0) {
                return LeaveOut(entry, why);
            }
        }
    }

    Compiled Take() { return std::move(m_compiled); }

private:
    std::string WhyClashing(const DictionaryEntry& line) {
        auto [known, isNew] = m_hashes.try_emplace(HashText(line.source), line);
        if (isNew) return {};
        return "its key has the hash of the text of line " + std::to_string(known->second.line);
    }

    void LeaveOut(const PoEntry& entry, const std::string& why) {
        m_compiled.leftOut.push_back({entry.line, entry.source, why});
    }

    const CodePage& m_page;
    Compiled m_compiled;
    std::map<uint32_t, DictionaryEntry> m_hashes;
};

// What an entry of a dictionary says, in words of a PO file.
PoEntry EntryOf(const DictionaryEntry& line, const CodePage& page) {
    auto decode = [&](std::string_view bytes) {
        auto text = page.Decode(bytes);
        if (!text) {
            throw BadInput("line " + std::to_string(line.line) +
                           ": the text has bytes that are no characters of the code page");
        }
        return *text;
    };
    PoEntry entry;
    size_t keySize = ContextKeySize(line.source);
    if (keySize) {
        auto context = ParseContextKey(std::string_view(line.source).substr(0, keySize), page);
        if (!context) {
            throw BadInput("line " + std::to_string(line.line) +
                           ": the place has bytes that are no characters of the code page");
        }
        entry.context = FormatContext(*context);
    }
    entry.source = decode(std::string_view(line.source).substr(keySize));
    entry.target = decode(line.target);
    if (entry.target.empty()) entry.comments.emplace_back(kLeftAsItIs);
    entry.line = line.line;
    return entry;
}

// Whether the line is a further key of a text that has a line of its own.
class FurtherKeys {
public:
    FurtherKeys(const std::vector<PoEntry>& entries, const CodePage& page) {
        for (const PoEntry& entry : entries) {
            std::vector<std::string> keys = KeysOf(entry, page);
            for (size_t i = 1; i < keys.size(); ++i) m_keys.emplace(keys[i], &entry);
        }
    }
    bool Has(const DictionaryEntry& line, const PoEntry& entry) const {
        auto [first, last] = m_keys.equal_range(line.source);
        return std::any_of(first, last, [&](auto& known) {
            return known.second != &entry && known.second->target == entry.target;
        });
    }

private:
    std::multimap<std::string, const PoEntry*> m_keys;
};

}  // namespace

bool IsForDictionary(const PoEntry& entry) {
    if (entry.isObsolete || entry.IsFuzzy() || entry.source.empty()) return false;
    return !entry.target.empty() || entry.IsLeftAsItIs();
}

std::vector<std::string> KeysOf(const PoEntry& entry, const CodePage& page) {
    Kinds kinds = KindsOf(entry);
    std::vector<std::string> texts;
    auto add = [&](const std::optional<std::string>& text) {
        if (text && std::find(texts.begin(), texts.end(), *text) == texts.end())
            texts.push_back(*text);
    };
    if (kinds.other) add(page.Encode(entry.source));
    if (kinds.dialog) add(LowBytes(entry.source));
    std::vector<std::string> keys;
    for (const std::string& key : ContextKeys(entry, page)) {
        for (const std::string& text : texts) keys.push_back(key + text);
    }
    return keys;
}

Compiled Compile(const PoFile& po, const CodePage& page) {
    Compiler compiler(page);
    for (const PoEntry& entry : po.entries) {
        if (IsForDictionary(entry)) compiler.Add(entry);
    }
    Compiled compiled = compiler.Take();
    compiled.dictionary.font = FontOf(po);
    if (compiled.dictionary.font) {
        auto name = page.Encode(compiled.dictionary.font->name);
        if (!name) throw BadInput("the code page lacks a character of the dialog font's name");
        compiled.dictionary.font->name = *name;
    }
    return compiled;
}

PoFile Decompile(const Dictionary& dictionary, const CodePage& page) {
    PoFile po;
    BeginHeader(po, "");
    if (dictionary.font) {
        DialogFont font = *dictionary.font;
        auto name = page.Decode(font.name);
        if (!name) throw BadInput("the dialog font's name is no text of the code page");
        font.name = *name;
        SetFont(po, font);
    }
    std::vector<PoEntry> entries;
    for (const DictionaryEntry& line : dictionary.entries) entries.push_back(EntryOf(line, page));
    FurtherKeys further(entries, page);
    for (size_t i = 0; i < entries.size(); ++i) {
        if (!further.Has(dictionary.entries[i], entries[i])) po.entries.push_back(entries[i]);
    }
    return po;
}

std::optional<DialogFont> FontOf(const PoFile& po) {
    std::string name = po.Field(kFontName), script = po.Field(kFontScript),
                size = po.Field(kFontSize);
    if (name.empty() && script.empty() && size.empty()) return std::nullopt;
    auto isNumber = [](const std::string& text) {
        return !text.empty() && text.size() < 6 &&
               std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    };
    if (name.empty() || !isNumber(script) || !isNumber(size)) {
        throw BadInput(std::string("the header needs all three of ") + kFontName + ", " +
                       kFontScript + " and " + kFontSize + ", the latter two as numbers");
    }
    return DialogFont{name, std::atoi(script.c_str()), std::atoi(size.c_str())};
}

void SetFont(PoFile& po, const DialogFont& font) {
    po.SetField(kFontName, font.name);
    po.SetField(kFontScript, std::to_string(font.script));
    po.SetField(kFontSize, std::to_string(font.size));
}

void BeginHeader(PoFile& po, std::string_view program) {
    po.SetField("Project-Id-Version", program.empty() ? "PROGRAM" : program);
    po.SetField("PO-Revision-Date", "YEAR-MO-DA HO:MI+ZONE");
    po.SetField("Last-Translator", "FULL NAME <EMAIL@ADDRESS>");
    po.SetField("Language-Team", "LANGUAGE <LL@li.org>");
    po.SetField("Language", "");
    po.SetField("MIME-Version", "1.0");
    po.SetField("Content-Type", "text/plain; charset=UTF-8");
    po.SetField("Content-Transfer-Encoding", "8bit");
}

}  // namespace qx
