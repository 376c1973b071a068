// How far a translation has come: one state for each text of the program.
#ifndef QXTRANSLATE_MODEL_TRANSLATION_STATUS_H
#define QXTRANSLATE_MODEL_TRANSLATION_STATUS_H

#include "tools/qxtranslate/model/po/file.h"
#include "tools/qxtranslate/model/translation/record.h"

#include <optional>

namespace qx {

enum class TextState {
    Translated,  // for everywhere
    ByPlace,     // for the resource that its context names
    Missing,     // also fuzzy
    Empty,       // left as it is on purpose
    NeverSeen,   // translated, and not looked up in the record
    Stale,       // the program has no such text any more
    Dead,        // a key that can never match
    OutOfReach,
};
std::string_view NameOf(TextState state);

struct TextStatus {
    TextState state;
    unsigned line;
    std::string context;
    std::string source;
    std::string why;
};

struct Status {
    std::vector<TextStatus> texts;
    size_t Count(TextState state) const;
    // The share of translated texts among those in reach, in per cent; 100 without any.
    double Coverage() const;
};

// Without `harvest` the places and notes of the file itself tell what the program has.
Status StatusOf(const PoFile& po, const PoFile* harvest, const std::vector<LookUp>* record);

}  // namespace qx

#endif
