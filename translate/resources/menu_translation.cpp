#include "translate/places/context_key.h"
#include "strings/text_buffer.h"

#include <cstdint>

namespace {

constexpr UINT kNoItem = static_cast<UINT>(-1);

bool ReadItemText(HMENU menu, int position, char* text, int size) {
    if (!GetMenuStringA(menu, position, text, size, MF_BYPOSITION)) return false;
    EndAtWholeCharacter(text, size);
    return true;
}

// Handles of the system have 32 significant bits.
UINT_PTR LowHandle(HMENU menu) {
    return static_cast<uint32_t>(reinterpret_cast<UINT_PTR>(menu));
}

// Writes the text back. Of the item's states only these two survive: a disabled item that is not
// grayed is enabled by it, also when its text did not change. An item whose id is 0 keeps its text.
// Answers the item's submenu.
HMENU RewriteItem(HMENU menu, int position, const char* text) {
    UINT state = GetMenuState(menu, position, MF_BYPOSITION);
    UINT flags = MF_BYPOSITION | (state == kNoItem ? 0 : state & (MF_GRAYED | MF_CHECKED));
    if (HMENU submenu = GetSubMenu(menu, position)) {
        ModifyMenuA(menu, position, flags | MF_POPUP, LowHandle(submenu), text);
        return submenu;
    }
    UINT id = GetMenuItemID(menu, position);
    if (state != kNoItem && !(state & MF_POPUP) && id) ModifyMenuA(menu, position, flags, id, text);
    return nullptr;
}

// `translate` is called with a buffer of kSize bytes.
template <unsigned kSize, class Translator>
void TranslateItems(HMENU menu, const Translator& translate) {
    char text[kSize];
    int count = GetMenuItemCount(menu);
    for (int position = 0; position < count; ++position) {
        if (!ReadItemText(menu, position, text, kSize)) continue;
        translate(text);
        if (HMENU submenu = RewriteItem(menu, position, text))
            TranslateItems<kSize>(submenu, translate);
    }
}

}  // namespace

int CWld::Translate(HMENU menu) {
    constexpr unsigned kSize = 256;
    if (m_Contexts.count)
        TranslateItems<kSize>(menu, [this](char* text) { Translate(text, kSize); });
    return 1;
}

int CWld::TranslateMenuInContext(HMENU menu, const char* key) {
    constexpr unsigned kSize = 512;
    if (!m_Contexts.count) return 1;
    PlaceHash place = PlaceOfKey(key);
    TranslateItems<kSize>(menu, [place](char* text) {
        TranslateBufferAt(text, kSize, place, 0);
        EndAtWholeCharacter(text, kSize);
    });
    return 1;
}
