#include "translate/dictionary/code_page.h"
#include "translate/interception/interception.h"
#include "translate/interception/module_lists.h"
#include "translate/places/context_key.h"

#include <qxcore/dictionary.h>

#include <cstring>

namespace qx {

namespace {

constexpr UINT kFirstIdWithoutKey = 0x10000;
constexpr unsigned kTextSize = 1024;

// Puts a text of fewer than kTextSize bytes in place of a wide one. Answers the characters with the
// terminator, or 0 when they do not fit: the buffer holds as many as there is room for. REQUIRES:
// size > 0.
int WidenInto(const char* text, int length, wchar_t* buffer, int size) {
    wchar_t wide[kTextSize];
    int characters = Widen(text, length, wide, kTextSize, MB_PRECOMPOSED);
    bool fits = characters < size;
    if (!fits) {
        characters = size - 1;
        if (characters > 0 && IS_SURROGATE_PAIR(wide[characters - 1], wide[characters]))
            --characters;
    }
    memcpy(buffer, wide, static_cast<size_t>(characters) * sizeof *wide);
    buffer[characters] = 0;
    return fits ? characters + 1 : 0;
}

}  // namespace

int WINAPI NewLoadStringA(HINSTANCE module, UINT id, char* buffer, int size) {
    auto real = QX_REAL(LoadStringA);
    ModuleName name(module);
    if (!IsTranslationActive(name)) return real(module, id, buffer, size);
    int length = real(module, id, buffer, size);
    if (length <= 0 || size <= 0) return length;
    PlaceHash place;
    // The sixteen strings of a block share its key.
    if (id < kFirstIdWithoutKey) place = PlaceOfStrings(name, (id >> 4) + 1);
    return static_cast<int>(TranslateBufferAt(buffer, static_cast<unsigned>(size), place, 0));
}

// The text crosses the code page both ways, so characters that it lacks are lost even where nothing
// is translated. The answer counts the terminator, other than the real function's, and is 0 for a
// translation that is cut.
int WINAPI NewLoadStringW(HINSTANCE module, UINT id, wchar_t* buffer, int size) {
    auto real = QX_REAL(LoadStringW);
    if (!IsTranslationActive(module)) return real(module, id, buffer, size);
    int characters = real(module, id, buffer, size);
    if (characters <= 0 || size <= 0) return characters;
    KeptLastError kept;
    char text[kTextSize];
    int length = Narrow(buffer, characters, text, kTextSize - 1, WC_COMPOSITECHECK);
    text[length] = 0;
    length = static_cast<int>(g_Wld.Translate(text, kTextSize));
    return WidenInto(text, length, buffer, size);
}

}  // namespace qx
