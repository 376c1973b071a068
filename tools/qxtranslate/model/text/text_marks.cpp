#include "tools/qxtranslate/model/text/text_marks.h"

#include "tools/qxtranslate/model/text/unicode.h"

#include <algorithm>

namespace qx {

namespace {

constexpr std::string_view kEllipsis = "\xE2\x80\xA6";
constexpr std::string_view kWideColon = "\xEF\xBC\x9A";

// Where the "&" of the access key stands; npos without one.
size_t FindAccessKey(std::string_view text) {
    size_t found = std::string::npos;
    for (size_t i = 0; i + 1 < text.size(); ++i) {
        if (text[i] != '&') continue;
        if (text[i + 1] != '&' && text[i + 1] != ' ') found = i;
        ++i;
    }
    return found;
}

// Where the tab of the keys stands; the text's end without one. A text of several lines has tabs for
// its columns.
size_t FindKeys(std::string_view text) {
    if (text.find('\n') != std::string_view::npos) return text.size();
    return std::min(text.find('\t'), text.size());
}

std::string_view TrimEnd(std::string_view text) {
    text.remove_suffix(TrailingBlanks(text));
    return text;
}

}  // namespace

char32_t AccessKey(std::string_view text) {
    size_t at = FindAccessKey(text);
    if (at == std::string::npos) return 0;
    std::u32string rest = ToUtf32(text.substr(at + 1));
    char32_t c = rest.empty() ? 0 : rest[0];
    return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c;
}

std::string WithoutAccessKey(std::string_view text) {
    size_t at = FindAccessKey(text);
    std::string result(text);
    if (at == std::string::npos) return result;
    bool isBracketed = at > 0 && text[at - 1] == '(' && at + 2 < text.size() && text[at + 2] == ')';
    return isBracketed ? result.erase(at - 1, 4) : result.erase(at, 1);
}

std::string_view BeforeTab(std::string_view text) {
    return text.substr(0, FindKeys(text));
}

std::string_view FromTab(std::string_view text) {
    return text.substr(FindKeys(text));
}

bool EndsWithDots(std::string_view text) {
    text = TrimEnd(BeforeTab(text));
    return text.ends_with("...") || text.ends_with(kEllipsis);
}

bool EndsWithColon(std::string_view text) {
    text = TrimEnd(BeforeTab(text));
    return text.ends_with(':') || text.ends_with(kWideColon);
}

size_t LeadingBlanks(std::string_view text) {
    return std::min(text.find_first_not_of(' '), text.size());
}

size_t TrailingBlanks(std::string_view text) {
    size_t last = text.find_last_not_of(' ');
    return last == std::string::npos ? text.size() : text.size() - last - 1;
}

std::string Bare(std::string_view text) {
    std::string bare = LowerAscii(WithoutAccessKey(BeforeTab(text)));
    auto drop = [&](std::string_view end) {
        if (bare.ends_with(end)) bare.resize(bare.size() - end.size());
    };
    drop(
        std::string_view("                ").substr(0, std::min<size_t>(TrailingBlanks(bare), 16)));
    drop("...");
    drop(kEllipsis);
    drop(":");
    bare.resize(bare.size() - TrailingBlanks(bare));
    return bare.substr(LeadingBlanks(bare));
}

}  // namespace qx
