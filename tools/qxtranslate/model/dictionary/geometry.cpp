#include "tools/qxtranslate/model/dictionary/geometry.h"

#include "tools/qxtranslate/model/text/unicode.h"

#include <algorithm>
#include <charconv>

namespace qx {

namespace {

constexpr std::string_view kDialogs = "dialogs";
constexpr std::string_view kSize = "dialog size";

std::string_view Trimmed(std::string_view text) {
    auto isBlank = [](char c) { return c == ' ' || c == '\t' || c == '\r'; };
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

// Takes the text up to the separator, and the separator with it.
std::string_view TakeUpTo(char separator, std::string_view& text) {
    size_t end = std::min(text.find(separator), text.size());
    std::string_view part = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return part;
}

std::optional<int> NumberOf(std::string_view text) {
    text = Trimmed(text);
    int number = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

// A letter for the type, then numbers between commas.
template <class Change>
std::optional<Change> ChangeOf(char letter, std::string_view value) {
    if (value.empty() || value.front() != letter) return std::nullopt;
    value.remove_prefix(1);
    Change change = {};
    for (size_t i = 0; i < change.size(); ++i) {
        bool isLast = i + 1 == change.size();
        if (!isLast && value.find(',') == std::string_view::npos) return std::nullopt;
        auto number = NumberOf(isLast ? value : TakeUpTo(',', value));
        if (!number) return std::nullopt;
        change[i] = *number;
    }
    return change;
}

class Reader {
public:
    explicit Reader(std::string_view file) : m_file(file) {}

    Geometry Read() {
        while (!m_file.empty() && m_file.front() != '\n') {
            ++m_line;
            std::string_view line = TakeUpTo('\n', m_file);
            while (!line.empty()) Line(TakeUpTo('|', line));
        }
        return std::move(m_geometry);
    }

private:
    void Line(std::string_view line) {
        line = Trimmed(TakeUpTo(';', line));
        if (line.empty()) return;
        if (line.front() == '[') {
            m_isInDialog = Heading(line);
        } else if (m_isInDialog) {
            Value(line);
        } else {
            Tell("the line stands below no heading of a dialog, \"[\\module\\Dialogs\\name]\"");
        }
    }

    void Tell(const std::string& what) { m_geometry.problems.push_back({m_line, what}); }

    // [\module\Dialogs\name], the name of one with a number being "#" and the number.
    bool Heading(std::string_view line) {
        line.remove_prefix(1);
        std::string_view path = TakeUpTo(']', line);
        if (!path.empty() && path.front() == '\\') path.remove_prefix(1);
        std::string_view module = TakeUpTo('\\', path), dialogs = TakeUpTo('\\', path);
        if (path.starts_with('#')) path.remove_prefix(1);
        if (module.empty() || path.empty() || LowerAscii(std::string(dialogs)) != kDialogs) {
            Tell("the heading is not of the form \"[\\module\\Dialogs\\name]\"");
            return false;
        }
        DialogGeometry dialog;
        dialog.module = module;
        dialog.resource = path;
        dialog.line = m_line;
        m_geometry.dialogs.push_back(dialog);
        return true;
    }

    void Value(std::string_view line) {
        std::string_view name = Trimmed(TakeUpTo('=', line));
        std::string_view value = Trimmed(line);
        DialogGeometry& dialog = m_geometry.dialogs.back();
        if (LowerAscii(std::string(name)) == kSize) {
            auto size = ChangeOf<SizeChange>('z', value);
            if (!size) return Tell("the size is not of the form \"z30,0\"");
            dialog.size = size;
            return;
        }
        auto index = NumberOf(name);
        auto edges = ChangeOf<EdgeChange>('t', value);
        if (!index || *index < 0) return Tell("a control is named by its number, counted from 0");
        if (!edges) return Tell("the change of a control is not of the form \"t0,0,30,0\"");
        dialog.controls[static_cast<unsigned>(*index)] = *edges;
    }

    std::string_view m_file;
    unsigned m_line = 0;
    bool m_isInDialog = false;
    Geometry m_geometry;
};

template <class Change>
std::string ChangeText(char letter, const Change& change) {
    std::string text(1, letter);
    for (size_t i = 0; i < change.size(); ++i) text += (i ? "," : "") + std::to_string(change[i]);
    return text;
}

bool IsNumber(const std::string& name) {
    return std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

Geometry ReadGeometry(std::string_view file) {
    return Reader(file).Read();
}

std::string WriteGeometry(const std::vector<DialogGeometry>& dialogs) {
    std::string file;
    for (const DialogGeometry& dialog : dialogs) {
        file += "[\\" + dialog.module + "\\Dialogs\\" + (IsNumber(dialog.resource) ? "#" : "") +
                dialog.resource + "]\r\n";
        if (dialog.size) file += "Dialog Size=" + ChangeText('z', *dialog.size) + "\r\n";
        for (auto& [index, edges] : dialog.controls)
            file += std::to_string(index) + "=" + ChangeText('t', edges) + "\r\n";
    }
    return file;
}

}  // namespace qx
