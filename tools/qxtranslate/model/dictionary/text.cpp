#include "tools/qxtranslate/model/dictionary/text.h"

#include "tools/qxtranslate/model/text/bad_input.h"

#include <algorithm>
#include <cstdlib>
#include <set>

namespace qx {

namespace {

constexpr size_t kMaxLine = 8190;
constexpr std::string_view kKeyEnd = "\xFD\xFD";
constexpr std::string_view kFontName = "DialogFontName";
constexpr std::string_view kFontScript = "DialogFontScript";
constexpr std::string_view kFontSize = "DialogFontSize";

bool IsSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool IsSetting(std::string_view key) {
    return key == kFontName || key == kFontScript || key == kFontSize;
}

std::string Escape(std::string_view text) {
    std::string escaped;
    for (char c : text) {
        if (c == '\n') {
            escaped += "\\n";
        } else if (c == '\r') {
            escaped += "\\r";
        } else if (c == '\t') {
            escaped += "\\t";
        } else {
            escaped += c;
        }
    }
    return escaped;
}

// A run of backslashes counts as one, and one at the end disappears.
std::string Unescape(std::string_view escaped, const CodePage& page) {
    std::string text;
    bool pending = false;
    for (size_t i = 0; i < escaped.size();) {
        if (escaped[i] == '\\') {
            pending = true;
            ++i;
            continue;
        }
        constexpr std::string_view kNames = "nrt", kValues = "\n\r\t";
        size_t name = pending ? kNames.find(escaped[i]) : std::string::npos;
        if (name != std::string::npos) {
            text += kValues[name];
            ++i;
        } else {
            if (pending) text += '\\';
            size_t size = CharacterSize(page, escaped, i);
            text += escaped.substr(i, size);
            i += size;
        }
        pending = false;
    }
    return text;
}

class Reader {
public:
    Reader(std::string_view file, const CodePage& page) : m_file(file), m_page(page) {}

    Dictionary Read() {
        std::string key, value;
        while (auto line = NextQuoted()) {
            key = *line;
            unsigned number = m_line;
            if (auto next = NextQuoted()) value = *next;
            if (IsSetting(key)) {
                TakeSetting(key, value);
            } else {
                Add(key, value, number);
            }
        }
        // The settings are counted, not told apart.
        if (m_settings >= 3) m_dictionary.font = m_font;
        return std::move(m_dictionary);
    }

private:
    void TakeSetting(std::string_view key, const std::string& value) {
        ++m_settings;
        if (key == kFontName) {
            m_font.name = value;
        } else {
            (key == kFontScript ? m_font.script : m_font.size) = std::atoi(value.c_str());
        }
    }

    void Add(const std::string& key, const std::string& value, unsigned line) {
        DictionaryEntry entry = {Unescape(key, m_page), Unescape(value, m_page), line};
        if (m_hashes.insert(HashText(entry.source)).second)
            m_dictionary.entries.push_back(std::move(entry));
    }

    // The next text as it stands between its quotes; nothing at the end.
    std::optional<std::string> NextQuoted() {
        while (!m_file.empty() && m_file.front() != '\n') {
            size_t end = m_file.find('\n');
            bool hasEnd = end != std::string::npos;
            std::string_view line = m_file.substr(0, hasEnd ? end : m_file.size());
            m_file.remove_prefix(hasEnd ? end + 1 : m_file.size());
            ++m_line;
            if (line.size() > kMaxLine) {
                throw BadInput("line " + std::to_string(m_line) + ": the line is longer than " +
                               std::to_string(kMaxLine) + " bytes");
            }
            if (auto text = Quoted(line, hasEnd)) return text;
        }
        m_file = {};
        return std::nullopt;
    }

    // The last byte of the trimmed line goes whatever it is. Without a line end the byte behind the
    // line is taken for it, and the closing quote stays.
    std::optional<std::string> Quoted(std::string_view line, bool hasEnd) const {
        while (!line.empty() && IsSpace(line.front())) line.remove_prefix(1);
        while (hasEnd && !line.empty() && IsSpace(line.back())) line.remove_suffix(1);
        if (line.size() < 2 || line.front() != '"') return std::nullopt;
        line.remove_prefix(1);
        if (hasEnd) line.remove_suffix(LastCharacterSize(line));
        return std::string(line.substr(0, line.find('\0')));
    }

    size_t LastCharacterSize(std::string_view line) const {
        size_t size = 1;
        for (size_t at = 0; at < line.size(); at += size) size = CharacterSize(m_page, line, at);
        return size;
    }

    std::string_view m_file;
    const CodePage& m_page;
    unsigned m_line = 0;
    Dictionary m_dictionary;
    DialogFont m_font;
    int m_settings = 0;
    std::set<uint32_t> m_hashes;
};

void AppendPair(std::string& file, std::string_view source, std::string_view target) {
    for (std::string_view text : {source, target}) {
        file += '"';
        file += text;
        file += "\"\r\n";
    }
}

std::string WhyTextUnwritable(std::string_view text, const CodePage& page) {
    if (text.find('\0') != std::string::npos) return "the text holds a NUL";
    std::string escaped = Escape(text);
    if (Unescape(escaped, page) != text)
        return "a dictionary cannot write this backslash: before n, r or t, before another one, "
               "or at the end";
    if (escaped.size() + 3 > kMaxLine)
        return "the text is longer than a line of a dictionary may be";
    return {};
}

}  // namespace

Dictionary ReadDictionary(std::string_view file, const CodePage& page) {
    return Reader(file, page).Read();
}

std::string WriteDictionary(const Dictionary& dictionary) {
    std::string file;
    if (dictionary.font) {
        AppendPair(file, kFontName, dictionary.font->name);
        AppendPair(file, kFontScript, std::to_string(dictionary.font->script));
        AppendPair(file, kFontSize, std::to_string(dictionary.font->size));
    }
    for (const DictionaryEntry& entry : dictionary.entries)
        AppendPair(file, Escape(entry.source), Escape(entry.target));
    return file;
}

std::string WhyUnwritable(const DictionaryEntry& entry, const CodePage& page) {
    if (IsSetting(entry.source)) return "the text is the name of a setting of dictionaries";
    std::string why = WhyTextUnwritable(entry.source, page);
    return why.empty() ? WhyTextUnwritable(entry.target, page) : why;
}

std::optional<std::string> ContextKey(const Context& context, const CodePage& page) {
    auto module = page.Encode(context.module);
    auto resource = page.Encode(context.resource);
    if (!module || !resource) return std::nullopt;
    return *module + "#" + std::to_string(static_cast<int>(context.kind)) + "#" + *resource +
           std::string(kKeyEnd);
}

size_t ContextKeySize(std::string_view source) {
    size_t module = source.find('#');
    if (module == std::string::npos || module == 0 || module + 3 >= source.size()) return 0;
    char kind = source[module + 1];
    if (kind < '1' || kind > '3' || source[module + 2] != '#') return 0;
    size_t end = source.find(kKeyEnd, module + 4);
    return end == std::string::npos ? 0 : end + kKeyEnd.size();
}

std::optional<Context> ParseContextKey(std::string_view key, const CodePage& page) {
    size_t end = key.find('#');
    auto module = page.Decode(key.substr(0, end));
    auto resource = page.Decode(key.substr(end + 3, key.size() - end - 3 - kKeyEnd.size()));
    if (!module || !resource) return std::nullopt;
    return Context{*module, static_cast<PlaceKind>(key[end + 1] - '0'), *resource};
}

uint32_t HashText(std::string_view bytes) {
    uint32_t hash = 0;
    for (char c : bytes) hash = hash * 257 + static_cast<uint32_t>(static_cast<signed char>(c));
    return hash;
}

}  // namespace qx
