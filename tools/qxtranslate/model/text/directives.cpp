#include "tools/qxtranslate/model/text/directives.h"

#include <algorithm>

namespace qx {

namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool IsOneOf(char c, std::string_view set) {
    return set.find(c) != std::string::npos;
}

constexpr std::string_view kConversions = "diouxXcCsSpeEfgGaA";

struct Found {
    size_t begin = 0, end = 0;
    unsigned number = 0;  // of a numbered one
    std::string form;     // "%ls"; the format of a numbered one; empty for "%%"
};

// The end of "%[flags][width][.precision][size]conversion"; npos when it is none. A blank is no
// flag here: "100% of" is a text.
size_t EndOfOrdered(std::string_view text, size_t at, std::string* form) {
    size_t i = at + 1;
    auto isAt = [&](std::string_view set) { return i < text.size() && IsOneOf(text[i], set); };
    *form = "%";
    while (isAt("-+#0")) ++i;
    while (isAt("0123456789.*")) {
        if (text[i] == '*') *form += '*';
        ++i;
    }
    if (text.substr(i).starts_with("I64") || text.substr(i).starts_with("I32")) {
        *form += text.substr(i, 3);
        i += 3;
    }
    while (isAt("hlLwz")) *form += text[i++];
    if (!isAt(kConversions)) return std::string::npos;
    *form += text[i] == 'i' ? 'd' : text[i];
    return i + 1;
}

// "%1" to "%99", with a format between exclamation marks.
bool TakeNumbered(std::string_view text, size_t at, Found* found) {
    size_t i = at + 1;
    if (i >= text.size() || text[i] < '1' || text[i] > '9') return false;
    for (; i < text.size() && i < at + 3 && IsDigit(text[i]); ++i)
        found->number = found->number * 10 + static_cast<unsigned>(text[i] - '0');
    found->end = i;
    if (i < text.size() && text[i] == '!') {
        size_t close = text.find('!', i + 1);
        std::string form;
        if (close != std::string::npos) {
            std::string inner = "%" + std::string(text.substr(i + 1, close - i - 1));
            if (EndOfOrdered(inner, 0, &form) == inner.size()) {
                found->form = form;
                found->end = close + 1;
            }
        }
    }
    return true;
}

// A text with a "%1" that is no width of anything is one for numbered directives.
bool HasNumbered(std::string_view text) {
    for (size_t at = text.find('%'); at != std::string::npos; at = text.find('%', at + 1)) {
        if (at + 1 < text.size() && text[at + 1] == '%') {
            ++at;
            continue;
        }
        Found found;
        std::string form;
        if (TakeNumbered(text, at, &found) &&
            (!found.form.empty() || EndOfOrdered(text, at, &form) == std::string::npos))
            return true;
    }
    return false;
}

std::vector<Found> Find(std::string_view text, bool isNumbered) {
    std::vector<Found> all;
    for (size_t at = text.find('%'); at != std::string::npos;) {
        Found found;
        found.begin = at;
        size_t end = std::string::npos;
        if (at + 1 < text.size() &&
            (text[at + 1] == '%' || (isNumbered && IsOneOf(text[at + 1], "0nrtb.!\\")))) {
            end = at + 2;
        } else if (isNumbered) {
            if (TakeNumbered(text, at, &found)) end = found.end;
        } else {
            end = EndOfOrdered(text, at, &found.form);
        }
        found.end = end;
        if (end != std::string::npos) all.push_back(found);
        at = text.find('%', end == std::string::npos ? at + 1 : end);
    }
    return all;
}

Directives Read(std::string_view text, bool isNumbered) {
    Directives directives;
    for (const Found& found : Find(text, isNumbered)) {
        if (found.number) {
            directives.numbered[found.number] = found.form;
        } else if (!found.form.empty()) {
            directives.ordered.push_back(found.form);
        }
    }
    return directives;
}

std::string Name(unsigned number) {
    return "%" + std::to_string(number);
}

std::string CompareNumbered(const Directives& source, const Directives& target) {
    for (auto& [number, form] : source.numbered) {
        auto found = target.numbered.find(number);
        if (found == target.numbered.end()) return Name(number) + " is missing";
        if (found->second != form) return Name(number) + " has another format";
    }
    for (auto& [number, form] : target.numbered) {
        if (!source.numbered.count(number)) return Name(number) + " is not in the source text";
    }
    return {};
}

std::string CompareOrdered(const Directives& source, const Directives& target) {
    if (source.ordered == target.ordered) return {};
    auto sorted = [](std::vector<std::string> list) {
        std::sort(list.begin(), list.end());
        return list;
    };
    if (sorted(source.ordered) == sorted(target.ordered))
        return "the directives stand in another order";
    size_t common = std::min(source.ordered.size(), target.ordered.size());
    for (size_t i = 0; i < common; ++i) {
        if (source.ordered[i] != target.ordered[i])
            return target.ordered[i] + " stands where the source text has " + source.ordered[i];
    }
    return source.ordered.size() > common ? source.ordered[common] + " is missing"
                                          : target.ordered[common] + " is not in the source text";
}

}  // namespace

std::vector<DirectiveSpan> FindDirectives(std::string_view text) {
    std::vector<DirectiveSpan> spans;
    for (bool isNumbered : {false, true}) {
        for (const Found& found : Find(text, isNumbered)) spans.push_back({found.begin, found.end});
    }
    return spans;
}

std::string CompareDirectives(std::string_view source, std::string_view target) {
    bool isNumbered = HasNumbered(source);
    if (!isNumbered && Read(source, false).ordered.empty()) isNumbered = HasNumbered(target);
    Directives own = Read(source, isNumbered), other = Read(target, isNumbered);
    return isNumbered ? CompareNumbered(own, other) : CompareOrdered(own, other);
}

}  // namespace qx
