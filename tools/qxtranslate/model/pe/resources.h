// The resources of a program: every leaf of its resource tree.
#ifndef QXTRANSLATE_MODEL_PE_RESOURCES_H
#define QXTRANSLATE_MODEL_PE_RESOURCES_H

#include "tools/qxtranslate/model/pe/image.h"

#include <string>
#include <vector>

namespace qx {

// What names a type or a resource: a number, or a text.
struct ResourceName {
    uint32_t number = 0;
    std::u16string text;

    bool IsNumber() const { return text.empty(); }
    auto operator<=>(const ResourceName&) const = default;
};

enum : uint32_t { kTypeMenu = 4, kTypeDialog = 5, kTypeStrings = 6 };

struct Resource {
    ResourceName type;
    ResourceName name;
    uint16_t language;
    Bytes data;  // borrowed from the file

    bool Is(uint32_t wanted) const { return type.IsNumber() && type.number == wanted; }
};

// In the order of the tree. Throws BadInput when the tree loops, or when it or one of its
// resources reaches beyond the file.
std::vector<Resource> ReadResources(const PeImage& image);

// Of the resources of one type and name the one for a language: that language, else the neutral one
// of its primary language, else the one for no language, else the first of its primary language;
// null when there is none.
const Resource* ChooseLanguage(const std::vector<const Resource*>& candidates, uint16_t language);

constexpr uint16_t PrimaryLanguage(uint16_t language) {
    return language & 0x3FF;
}

}  // namespace qx

#endif
