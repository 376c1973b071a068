// The texts of menus, dialogs and string tables, in the order of the resource: a reader that
// translates nothing.
#ifndef QXTRANSLATE_MODEL_PLACES_RESOURCE_TEXTS_H
#define QXTRANSLATE_MODEL_PLACES_RESOURCE_TEXTS_H

#include "tools/qxtranslate/model/pe/bytes.h"

#include <cstdint>
#include <string>
#include <vector>

namespace qx {

struct ResourceText {
    std::string item;  // as in a Place
    std::u16string text;
    uint32_t id = 0;         // of the control or command; 0 for popups and captions
    std::string what;        // "button", "menu item", ...
    std::string room;        // how much fits; empty when nothing limits it
    std::string outOfReach;  // why no dictionary reaches it; empty when one does
};

// Empty texts are left out. Throw BadInput when the bytes end before the resource does.
std::vector<ResourceText> ReadMenu(Bytes menu);
std::vector<ResourceText> ReadDialog(Bytes dialog);
// `block` is the number of the resource, from 1.
std::vector<ResourceText> ReadStrings(Bytes strings, uint32_t block);

}  // namespace qx

#endif
