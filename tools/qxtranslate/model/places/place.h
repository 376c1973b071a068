// Places of texts in a program: "module/kind/resource/item".
//
// The resource is its number or its name, for a string table the number of the block of 16. The
// item is a control's index from 0 or "caption", the path of positions of a menu item, or the
// number of a string. In names a blank, a percent sign and a slash stand as %20, %25 and %2F.
#ifndef QXTRANSLATE_MODEL_PLACES_PLACE_H
#define QXTRANSLATE_MODEL_PLACES_PLACE_H

#include <optional>
#include <string>
#include <string_view>

namespace qx {

// The numbers are those of the dictionary's keys.
enum class PlaceKind { Dialog = 1, Menu = 2, Strings = 3 };

// One resource of one module: the level at which a dictionary can tell places apart.
struct Context {
    std::string module;
    PlaceKind kind = PlaceKind::Dialog;
    std::string resource;

    auto operator<=>(const Context&) const = default;
};

struct Place {
    Context context;
    std::string item;

    auto operator<=>(const Place&) const = default;
};

std::string FormatContext(const Context& context);
std::string FormatPlace(const Place& place);
// Nothing when the text is of another form.
std::optional<Context> ParseContext(std::string_view text);
std::optional<Place> ParsePlace(std::string_view text);

inline constexpr std::string_view kCaption = "caption";
inline constexpr unsigned kStringsPerBlock = 16;

}  // namespace qx

#endif
