#include "strings/characters.h"
#include "translate/places/context_key.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>

namespace qx {

namespace {

constexpr UINT kNoItem = static_cast<UINT>(-1);

bool ReadItemText(HMENU menu, int position, char* text, int size) {
    if (!GetMenuStringA(menu, position, text, size, MF_BYPOSITION)) return false;
    Characters::OfRuntime().EndAtWholeCharacter(text, static_cast<size_t>(size));
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

// Where a walk over a menu with its submenus stands: a menu, and the item of it that comes next.
struct MenuPlace {
    HMENU menu;
    int position;
    int count;
};

// The way from the menu down to where a walk stands. A program decides how deep its menus nest, so
// the way lies in memory of its own once it is longer than any that a person would use.
class MenuPath {
public:
    explicit MenuPath(HMENU menu) { Enter(menu); }
    MenuPath(const MenuPath&) = delete;
    MenuPath& operator=(const MenuPath&) = delete;

    bool IsEmpty() const { return m_depth == 0; }
    MenuPlace& Last() { return m_places[m_depth - 1]; }
    void Leave() { --m_depth; }

    // A menu that hangs in itself is not entered again.
    void Enter(HMENU menu) {
        auto isMenu = [menu](const MenuPlace& place) { return place.menu == menu; };
        if (std::any_of(m_places, m_places + m_depth, isMenu)) return;
        if (m_depth == m_room) Grow();
        m_places[m_depth++] = {menu, 0, GetMenuItemCount(menu)};
    }

private:
    static constexpr size_t kUsualDepth = 16;

    void Grow() {
        std::unique_ptr<MenuPlace[]> grown(new MenuPlace[m_room * 2]);
        memcpy(grown.get(), m_places, m_depth * sizeof *m_places);
        m_long = std::move(grown);
        m_places = m_long.get();
        m_room *= 2;
    }

    MenuPlace m_usual[kUsualDepth];
    std::unique_ptr<MenuPlace[]> m_long;
    MenuPlace* m_places = m_usual;
    size_t m_room = kUsualDepth;
    size_t m_depth = 0;
};

// `translate` is called with a buffer of kSize bytes. A submenu is walked right after its item.
template <unsigned kSize, class Translator>
void TranslateItems(HMENU menu, const Translator& translate) {
    char text[kSize];
    for (MenuPath path(menu); !path.IsEmpty();) {
        MenuPlace& at = path.Last();
        if (at.position >= at.count) {
            path.Leave();
            continue;
        }
        int position = at.position++;
        if (!ReadItemText(at.menu, position, text, kSize)) continue;
        translate(text);
        if (HMENU submenu = RewriteItem(at.menu, position, text)) path.Enter(submenu);
    }
}

}  // namespace

}  // namespace qx

int CWld::Translate(HMENU menu) {
    constexpr unsigned kSize = 256;
    if (m_Contexts.count)
        qx::TranslateItems<kSize>(menu, [this](char* text) { Translate(text, kSize); });
    return 1;
}

int CWld::TranslateMenuInContext(HMENU menu, const char* key) {
    constexpr unsigned kSize = 512;
    if (!m_Contexts.count) return 1;
    qx::PlaceHash place = qx::PlaceOfKey(key);
    qx::TranslateItems<kSize>(menu, [place](char* text) {
        qx::TranslateBufferAt(text, kSize, place, 0);
        qx::Characters::OfRuntime().EndAtWholeCharacter(text, kSize);
    });
    return 1;
}
