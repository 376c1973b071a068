// Finds the units' knowledge for a string class by its unit, and the few things both kinds share.
#ifndef QXCORE_STRINGS_TEXT_OF_H
#define QXCORE_STRINGS_TEXT_OF_H

#include "strings/narrow_text.h"
#include "strings/wide_text.h"

#include <type_traits>

namespace qx {

template <class Ch>
using TextOf = std::conditional_t<sizeof(Ch) == 1, NarrowText, WideText>;

// A null text stands for an empty one.
template <class Ch>
inline constexpr Ch kNoText[] = {0};
template <class Ch>
const Ch* TextOrEmpty(const Ch* s) {
    return s ? s : kNoText<Ch>;
}

// One character as a text.
template <class Ch>
struct CharText {
    Ch text[TextOf<Ch>::kCharUnits + 1];
};
template <class Ch>
CharText<Ch> Spelled(wchar_t ch) {
    CharText<Ch> result;
    TextOf<Ch>::Spell(ch, result.text);
    return result;
}
template <class Ch>
CharText<Ch> SpelledInMemoryOrder(wchar_t ch) {
    CharText<Ch> result;
    TextOf<Ch>::SpellInMemoryOrder(ch, result.text);
    return result;
}

}  // namespace qx

#endif
