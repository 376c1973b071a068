// The one walk over a block of a string table: counted wide strings, one after the other. It reads
// and translates nothing and asks nothing of the system, so programs for other systems use it as it
// is.
#ifndef QXCORE_TRANSLATE_RESOURCES_STRING_WALK_H
#define QXCORE_TRANSLATE_RESOURCES_STRING_WALK_H

#include "translate/resources/template_walk.h"

#include <algorithm>

namespace qx {

// One string; an empty one is a zero word in the block.
struct StringEntry {
    size_t index;
    const uint8_t* text;
    size_t length;  // in 16-bit units; there is no terminator
};

// Calls visit(entry) for all entries in their order. One that claims more than the block holds is
// cut.
template <class Visit>
void WalkStrings(const void* block, size_t size, Visit visit) {
    auto bytes = static_cast<const uint8_t*>(block);
    size_t words = size / sizeof(uint16_t);
    for (size_t at = 0, index = 0; at < words; ++index) {
        size_t claimed = WordAt(bytes + 2 * at++);
        size_t length = std::min(claimed, words - at);
        visit(StringEntry{index, bytes + 2 * at, length});
        at += length;
    }
}

}  // namespace qx

#endif
