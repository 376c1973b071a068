#include "tools/qxtranslate/model/places/resource_texts.h"

namespace qx {

namespace {

constexpr uint16_t kPopup = 0x10;  // flags of the classic form
constexpr uint16_t kLast = 0x80;   // of both forms
constexpr uint16_t kExtendedPopup = 0x01;
constexpr uint16_t kOwnerDrawn = 0x100;
constexpr size_t kMaxBytes = 511;

struct MenuItem {
    uint32_t id = 0;
    uint32_t type = 0;
    std::u16string text;
    bool isPopup = false;
    bool isLast = false;
};

MenuItem ReadClassic(ByteReader& reader) {
    MenuItem item;
    uint16_t flags = reader.Word();
    item.isPopup = (flags & kPopup) != 0;
    item.isLast = (flags & kLast) != 0;
    item.type = flags & kOwnerDrawn;
    if (!item.isPopup) item.id = reader.Word();
    item.text = reader.Text();
    return item;
}

MenuItem ReadExtended(ByteReader& reader) {
    MenuItem item;
    reader.AlignTo4();
    item.type = reader.Long();
    reader.Long();  // the state
    item.id = reader.Long();
    uint16_t flags = reader.Word();
    item.isPopup = (flags & kExtendedPopup) != 0;
    item.isLast = (flags & kLast) != 0;
    item.text = reader.Text();
    if (item.isPopup) {
        reader.AlignTo4();
        reader.Long();  // the help number
    }
    return item;
}

std::string WhyOutOfReach(const MenuItem& item) {
    if (item.type & kOwnerDrawn) return "the program draws this item itself";
    if (!item.isPopup && !item.id) return "a menu item with the number 0 keeps its text";
    return {};
}

// Where the walk is: the position on each level.
std::string PathOf(const std::vector<unsigned>& positions) {
    std::string path;
    for (unsigned position : positions)
        path += (path.empty() ? "" : "/") + std::to_string(position);
    return path;
}

}  // namespace

std::vector<ResourceText> ReadMenu(Bytes menu) {
    ByteReader reader(menu, "a menu");
    uint16_t version = reader.Word();
    if (version > 1) throw BadInput("a menu has an unknown form");
    reader.Take(reader.Word());
    std::vector<ResourceText> texts;
    std::vector<unsigned> positions = {0};
    std::vector<bool> isLast;  // of the popups that are open
    while (!positions.empty() && reader.Left()) {
        MenuItem item = version ? ReadExtended(reader) : ReadClassic(reader);
        if (!item.text.empty()) {
            texts.push_back({PathOf(positions), item.text, item.isPopup ? 0 : item.id,
                             item.isPopup ? "menu" : "menu item",
                             std::to_string(kMaxBytes) + " bytes", WhyOutOfReach(item)});
        }
        if (item.isPopup) {
            isLast.push_back(item.isLast);
            positions.push_back(0);
            continue;
        }
        bool ends = item.isLast;
        while (ends && !positions.empty()) {
            positions.pop_back();
            ends = !isLast.empty() && isLast.back();
            if (!isLast.empty()) isLast.pop_back();
        }
        if (!positions.empty()) ++positions.back();
    }
    return texts;
}

}  // namespace qx
