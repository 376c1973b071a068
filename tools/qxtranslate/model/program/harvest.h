// Every text of a program's menus, dialogs and string tables, with its place.
#ifndef QXTRANSLATE_MODEL_PROGRAM_HARVEST_H
#define QXTRANSLATE_MODEL_PROGRAM_HARVEST_H

#include "tools/qxtranslate/model/pe/bytes.h"
#include "tools/qxtranslate/model/places/place.h"
#include "tools/qxtranslate/model/po/file.h"

#include <optional>
#include <set>
#include <vector>

namespace qx {

struct HarvestedText {
    Place place;
    std::string text;
    std::string target;  // from the second language; empty without one
    std::string what;
    std::string room;
    std::string outOfReach;
};

struct Harvest {
    std::vector<HarvestedText> texts;
    std::set<uint16_t> languages;  // of all resources that hold texts
};

// `module` is the file's name as the program will be loaded by. Throws BadInput.
Harvest ReadTexts(Bytes file, const std::string& module, uint16_t language,
                  std::optional<uint16_t> second);

// One entry for each distinct text, in the order of first places. A text with several translations
// becomes several entries: one for everywhere, and one in context for each resource that differs.
// Where two differ within one resource the more frequent one stands; the others are counted in
// `lost`.
PoFile ToPo(const std::vector<HarvestedText>& texts, std::string_view program, unsigned* lost);

// "out of reach at PLACE: why", the note that tells of a place no dictionary reaches.
std::string OutOfReachNote(const Place& place, const std::string& why);
struct OutOfReach {
    std::string place;
    std::string why;
};
std::optional<OutOfReach> ParseOutOfReachNote(std::string_view note);

}  // namespace qx

#endif
