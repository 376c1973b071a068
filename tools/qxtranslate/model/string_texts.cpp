#include "tools/qxtranslate/model/place.h"
#include "tools/qxtranslate/model/resource_texts.h"

namespace qx {

std::vector<ResourceText> ReadStrings(Bytes strings, uint32_t block) {
    constexpr const char* kRoom = "1023 bytes";
    ByteReader reader(strings, "a string table");
    std::vector<ResourceText> texts;
    // A block may end early; the strings behind its end are empty.
    for (unsigned i = 0; i < kStringsPerBlock && reader.Left() >= 2; ++i) {
        size_t length = reader.Word();
        ByteReader characters(reader.Take(2 * length), reader.What());
        std::u16string text;
        while (characters.Left()) text += static_cast<char16_t>(characters.Word());
        if (text.empty()) continue;
        uint32_t id = (block - 1) * kStringsPerBlock + i;
        texts.push_back({std::to_string(id), text, id, "text", kRoom, ""});
    }
    return texts;
}

}  // namespace qx
