#include "tools/qxtranslate/model/po/file.h"
#include "tools/qxtranslate/model/text/bad_input.h"
#include "tools/qxtranslate/model/text/unicode.h"

#include <set>

namespace qx {

namespace {

[[noreturn]] void Fail(unsigned line, const std::string& what) {
    throw BadInput("line " + std::to_string(line) + ": " + what);
}

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v';
}

std::string_view Trim(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    return text;
}

// Takes a word off the beginning, if it stands there and ends there.
bool TakeWord(std::string_view& text, std::string_view word) {
    if (!text.starts_with(word)) return false;
    std::string_view rest = text.substr(word.size());
    if (!rest.empty() && !IsBlank(rest.front()) && rest.front() != '"' && rest.front() != '[')
        return false;
    text = Trim(rest);
    return true;
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// Takes what follows a backslash, as in C.
char TakeEscape(std::string_view& text, unsigned line) {
    char c = text.front();
    text.remove_prefix(1);
    constexpr std::string_view kNames = "abfnrtv\\\"", kValues = "\a\b\f\n\r\t\v\\\"";
    if (size_t at = kNames.find(c); at != std::string::npos) return kValues[at];
    int value = 0;
    if (c == 'x') {
        if (text.empty() || HexDigit(text.front()) < 0) Fail(line, "a \\x without digits");
        for (; !text.empty() && HexDigit(text.front()) >= 0; text.remove_prefix(1))
            value = (value * 16 + HexDigit(text.front())) & 0xFF;
    } else if (c >= '0' && c <= '7') {
        value = c - '0';
        for (int i = 0; i < 2 && !text.empty() && text.front() >= '0' && text.front() <= '7'; ++i) {
            value = (value * 8 + text.front() - '0') & 0xFF;
            text.remove_prefix(1);
        }
    } else {
        Fail(line, std::string("unknown escape \\") + c);
    }
    if (!value) Fail(line, "a text holds a NUL");
    return static_cast<char>(value);
}

// One quoted text, which is all that stands there.
std::string ReadQuoted(std::string_view text, unsigned line) {
    if (text.empty() || text.front() != '"') Fail(line, "a text in double quotes is missing");
    text.remove_prefix(1);
    std::string value;
    for (;;) {
        if (text.empty()) Fail(line, "the closing quote is missing");
        char c = text.front();
        text.remove_prefix(1);
        if (c == '"') break;
        if (c == '\0') Fail(line, "a text holds a NUL");
        if (c != '\\') {
            value += c;
        } else {
            if (text.empty()) Fail(line, "the closing quote is missing");
            value += TakeEscape(text, line);
        }
    }
    if (!Trim(text).empty()) Fail(line, "something stands behind the closing quote");
    return value;
}

std::vector<std::string> SplitList(std::string_view text, std::string_view separators) {
    std::vector<std::string> items;
    while (!text.empty()) {
        size_t end = std::min(text.find_first_of(separators), text.size());
        if (auto item = Trim(text.substr(0, end)); !item.empty()) items.emplace_back(item);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return items;
}

class Parser {
public:
    explicit Parser(std::string_view text) : m_text(text) {}

    PoFile Read() {
        if (m_text.starts_with("\xEF\xBB\xBF")) m_text.remove_prefix(3);
        while (!m_text.empty()) {
            size_t end = std::min(m_text.find('\n'), m_text.size());
            ++m_line;
            std::string_view line = Trim(m_text.substr(0, end));
            if (!IsUtf8(line)) Fail(m_line, "the text is not UTF-8");
            Line(line);
            m_text.remove_prefix(std::min(end + 1, m_text.size()));
        }
        EndEntry();
        TakeHeader();
        return std::move(m_file);
    }

private:
    enum class Part { None, Context, Source, Target };

    void Line(std::string_view line) {
        if (line.empty()) {
            if (m_part == Part::Target) EndEntry();
        } else if (line.starts_with("#~")) {
            std::string_view rest = Trim(line.substr(2));
            if (rest.starts_with("|")) return Previous(Trim(rest.substr(1)));
            Keyword(rest, true);
        } else if (line.front() == '#') {
            if (m_part == Part::Target) EndEntry();
            if (m_part != Part::None) Fail(m_line, "a comment stands within an entry");
            Comment(line);
        } else {
            Keyword(line, false);
        }
    }

    void Comment(std::string_view line) {
        std::string_view rest = line.size() > 2 ? Trim(line.substr(2)) : std::string_view();
        char kind = line.size() > 1 ? line[1] : ' ';
        auto append = [](std::vector<std::string>& list, std::vector<std::string> more) {
            list.insert(list.end(), more.begin(), more.end());
        };
        if (kind == '.') {
            m_entry.notes.emplace_back(rest);
        } else if (kind == ':') {
            append(m_entry.references, SplitList(rest, " \t"));
        } else if (kind == ',') {
            append(m_entry.flags, SplitList(rest, ","));
        } else if (kind == '|') {
            Previous(rest);
        } else {
            m_entry.comments.emplace_back(Trim(line.substr(1)));
        }
    }

    void Previous(std::string_view rest) {
        if (TakeWord(rest, "msgctxt")) {
            m_previous = &m_entry.previousContext.emplace();
        } else if (TakeWord(rest, "msgid")) {
            m_previous = &m_entry.previousSource.emplace();
        } else if (TakeWord(rest, "msgid_plural")) {
            Fail(m_line, "a dictionary has no plural forms");
        }
        if (!m_previous) Fail(m_line, "a previous text without its keyword");
        *m_previous += ReadQuoted(rest, m_line);
    }

    void Keyword(std::string_view line, bool isObsolete) {
        m_previous = nullptr;
        if (TakeWord(line, "msgctxt")) {
            if (m_part == Part::Target) EndEntry();
            if (m_part != Part::None) Fail(m_line, "msgctxt stands within an entry");
            Begin(Part::Context, isObsolete);
            m_entry.context.emplace();
        } else if (TakeWord(line, "msgid")) {
            if (m_part == Part::Target) EndEntry();
            if (m_part == Part::Source) Fail(m_line, "msgid without a msgstr before it");
            Begin(Part::Source, isObsolete);
        } else if (TakeWord(line, "msgid_plural")) {
            Fail(m_line, "a dictionary has no plural forms");
        } else if (TakeWord(line, "msgstr")) {
            if (!line.empty() && line.front() == '[')
                Fail(m_line, "a dictionary has no plural forms");
            if (m_part != Part::Source) Fail(m_line, "msgstr without a msgid before it");
            m_part = Part::Target;
        } else if (line.empty() || line.front() != '"') {
            Fail(m_line, "neither a keyword nor a text in double quotes");
        }
        AppendText(ReadQuoted(line, m_line));
    }

    void Begin(Part part, bool isObsolete) {
        if (m_part == Part::None) {
            m_entry.line = m_line;
            m_entry.isObsolete = isObsolete;
        }
        m_part = part;
    }

    void AppendText(const std::string& text) {
        if (!IsUtf8(text)) Fail(m_line, "the text is not UTF-8");
        switch (m_part) {
            case Part::None:
                Fail(m_line, "a text without a keyword before it");
            case Part::Context:
                *m_entry.context += text;
                break;
            case Part::Source:
                m_entry.source += text;
                break;
            case Part::Target:
                m_entry.target += text;
        }
    }

    void EndEntry() {
        if (m_part == Part::Context || m_part == Part::Source)
            Fail(m_line, "the entry has no msgstr");
        if (m_part == Part::Target) {
            bool isNew = m_entry.isObsolete || m_keys.insert(KeyOf(m_entry)).second;
            if (!isNew) Fail(m_entry.line, "a second translation of the text of another entry");
            m_file.entries.push_back(std::move(m_entry));
        }
        m_entry = {};
        m_previous = nullptr;
        m_part = Part::None;
    }

    // The entry with the empty source text.
    void TakeHeader() {
        for (auto entry = m_file.entries.begin(); entry != m_file.entries.end(); ++entry) {
            if (entry->context || !entry->source.empty() || entry->isObsolete) continue;
            for (const std::string& field : SplitList(entry->target, "\n")) {
                size_t colon = std::min(field.find(':'), field.size());
                m_file.header.emplace_back(
                    Trim(field.substr(0, colon)),
                    Trim(std::string_view(field).substr(std::min(colon + 1, field.size()))));
            }
            m_file.headerComments = entry->comments;
            m_file.isTemplate = entry->IsFuzzy();
            CheckCharset(entry->line);
            m_file.entries.erase(entry);
            return;
        }
    }

    void CheckCharset(unsigned line) const {
        std::string type = LowerAscii(m_file.Field("Content-Type"));
        size_t at = type.find("charset=");
        if (at == std::string::npos) return;
        std::string charset = type.substr(at + 8);
        if (charset != "utf-8" && charset != "us-ascii" && charset != "ascii" &&
            charset != "charset")
            Fail(line, "the charset is " + charset + " and not UTF-8");
    }

    std::string_view m_text;
    unsigned m_line = 0;
    PoFile m_file;
    PoEntry m_entry;
    Part m_part = Part::None;
    std::string* m_previous = nullptr;
    std::set<PoKey> m_keys;
};

}  // namespace

PoFile ReadPo(std::string_view text) {
    return Parser(text).Read();
}

}  // namespace qx
