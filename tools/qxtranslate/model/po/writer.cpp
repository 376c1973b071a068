#include "tools/qxtranslate/model/po/file.h"

#include <algorithm>

namespace qx {

namespace {

std::string Quote(std::string_view text) {
    std::string quoted = "\"";
    constexpr std::string_view kSpecial = "\a\b\f\n\r\t\v\\\"", kNames = "abfnrtv\\\"";
    for (char c : text) {
        size_t at = kSpecial.find(c);
        if (at != std::string::npos) {
            quoted += '\\';
            quoted += kNames[at];
        } else {
            quoted += c;
        }
    }
    return quoted + "\"";
}

class Writer {
public:
    std::string Write(const PoFile& file) {
        Header(file);
        for (const PoEntry& entry : file.entries) Entry(entry);
        return std::move(m_out);
    }

private:
    void Line(std::string_view begin, std::string_view rest) {
        m_out += begin;
        m_out += rest;
        m_out += '\n';
    }

    // Each line of the text stands on a line of its own; a text of several begins with "".
    void Text(const std::string& prefix, std::string_view keyword, std::string_view text) {
        m_out += prefix;
        m_out += keyword;
        m_out += ' ';
        size_t end = text.find('\n');
        if (end == std::string::npos || end + 1 == text.size()) return Line(Quote(text), "");
        Line("\"\"", "");
        while (!text.empty()) {
            end = std::min(text.find('\n'), text.size() - 1) + 1;
            Line(prefix, Quote(text.substr(0, end)));
            text.remove_prefix(end);
        }
    }

    // As many on a line as fit, as others write them.
    void References(const std::vector<std::string>& references) {
        constexpr size_t kWidth = 79;
        std::string line;
        for (const std::string& reference : references) {
            if (!line.empty() && line.size() + 3 + reference.size() > kWidth) {
                Line("#:", line);
                line.clear();
            }
            line += " " + reference;
        }
        if (!line.empty()) Line("#:", line);
    }

    void Header(const PoFile& file) {
        for (const std::string& comment : file.headerComments)
            Line(comment.empty() ? "#" : "# ", comment);
        if (file.isTemplate) Line("#, fuzzy", "");
        std::string fields;
        for (auto& [name, value] : file.header) fields += name + ": " + value + "\n";
        Line("msgid \"\"", "");
        Line("msgstr \"\"", "");
        for (std::string_view rest = fields; !rest.empty();) {
            size_t end = rest.find('\n') + 1;
            Line("", Quote(rest.substr(0, end)));
            rest.remove_prefix(end);
        }
    }

    void Entry(const PoEntry& entry) {
        m_out += '\n';
        for (const std::string& comment : entry.comments)
            Line(comment.empty() ? "#" : "# ", comment);
        for (const std::string& note : entry.notes) Line("#. ", note);
        References(entry.references);
        std::string flags;
        for (const std::string& flag : entry.flags) flags += ", " + flag;
        if (!flags.empty()) Line("#", flags);
        std::string previous = entry.isObsolete ? "#~| " : "#| ";
        if (entry.previousContext) Text(previous, "msgctxt", *entry.previousContext);
        if (entry.previousSource) Text(previous, "msgid", *entry.previousSource);
        std::string prefix = entry.isObsolete ? "#~ " : "";
        if (entry.context) Text(prefix, "msgctxt", *entry.context);
        Text(prefix, "msgid", entry.source);
        Text(prefix, "msgstr", entry.target);
    }

    std::string m_out;
};

}  // namespace

std::string WritePo(const PoFile& file) {
    return Writer().Write(file);
}

}  // namespace qx
