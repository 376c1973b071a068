#include "tools/qxtranslate/model/places/place.h"
#include "tools/qxtranslate/model/places/resource_texts.h"
#include "translate/resources/string_walk.h"

namespace qx {

std::vector<ResourceText> ReadStrings(Bytes strings, uint32_t block) {
    constexpr const char* kRoom = "1023 bytes";
    // The layer looks a string up by no more of it; what starts programs translates it all the
    // same.
    constexpr const char* kLongRoom = "translated in programs started by qxtranslate run only";
    constexpr size_t kLongest = 1023;
    std::vector<ResourceText> texts;
    // A block may end early; the strings behind its end are empty.
    WalkStrings(strings.data(), strings.size(), [&](const StringEntry& entry) {
        if (WordAt(entry.text - 2) != entry.length)
            throw BadInput("a string table reaches beyond the end");
        if (!entry.length || entry.index >= kStringsPerBlock) return;
        std::u16string text;
        for (size_t i = 0; i < entry.length; ++i)
            text += static_cast<char16_t>(WordAt(entry.text + 2 * i));
        uint32_t id = (block - 1) * kStringsPerBlock + static_cast<uint32_t>(entry.index);
        const char* room = text.size() > kLongest ? kLongRoom : kRoom;
        texts.push_back({std::to_string(id), text, id, "text", room, ""});
    });
    return texts;
}

}  // namespace qx
