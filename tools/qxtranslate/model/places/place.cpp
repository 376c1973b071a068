#include "tools/qxtranslate/model/places/place.h"

#include <algorithm>

namespace qx {

namespace {

constexpr struct {
    PlaceKind kind;
    std::string_view name;
} kKinds[] = {
    {PlaceKind::Dialog, "dialog"},
    {PlaceKind::Menu, "menu"},
    {PlaceKind::Strings, "strings"},
};

constexpr std::string_view kHexDigits = "0123456789ABCDEF";

bool NeedsEscape(char c) {
    return static_cast<unsigned char>(c) <= ' ' || c == '%' || c == '/' || c == 0x7F;
}

std::string EscapeName(std::string_view name) {
    std::string escaped;
    for (char c : name) {
        if (NeedsEscape(c)) {
            escaped += '%';
            escaped += kHexDigits[static_cast<unsigned char>(c) >> 4];
            escaped += kHexDigits[c & 15];
        } else {
            escaped += c;
        }
    }
    return escaped;
}

std::string UnescapeName(std::string_view escaped) {
    std::string name;
    auto digit = [&](size_t at) {
        return at < escaped.size() ? kHexDigits.find(escaped[at]) : std::string::npos;
    };
    for (size_t i = 0; i < escaped.size(); ++i) {
        size_t high = digit(i + 1), low = digit(i + 2);
        if (escaped[i] == '%' && high != std::string::npos && low != std::string::npos) {
            name += static_cast<char>(high << 4 | low);
            i += 2;
        } else {
            name += escaped[i];
        }
    }
    return name;
}

// What stands before the next slash, which is taken away with it.
std::string_view TakePart(std::string_view& text) {
    size_t end = std::min(text.find('/'), text.size());
    std::string_view part = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return part;
}

}  // namespace

std::string FormatContext(const Context& context) {
    auto row = std::find_if(std::begin(kKinds), std::end(kKinds),
                            [&](auto& k) { return k.kind == context.kind; });
    return EscapeName(context.module) + "/" + std::string(row->name) + "/" +
           EscapeName(context.resource);
}

std::string FormatPlace(const Place& place) {
    return FormatContext(place.context) + "/" + place.item;
}

std::optional<Place> ParsePlace(std::string_view text) {
    std::string module = UnescapeName(TakePart(text));
    std::string_view kind = TakePart(text);
    auto row =
        std::find_if(std::begin(kKinds), std::end(kKinds), [&](auto& k) { return k.name == kind; });
    std::string resource = UnescapeName(TakePart(text));
    if (module.empty() || row == std::end(kKinds) || resource.empty() || text.empty())
        return std::nullopt;
    return Place{{module, row->kind, resource}, std::string(text)};
}

std::optional<Context> ParseContext(std::string_view text) {
    if (std::count(text.begin(), text.end(), '/') != 2) return std::nullopt;
    auto place = ParsePlace(std::string(text) + "/-");
    return place ? std::optional(place->context) : std::nullopt;
}

}  // namespace qx
