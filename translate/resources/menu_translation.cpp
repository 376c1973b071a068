#include "translate/resources/menu_translation.h"

#include "strings/characters.h"

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

struct MenuItem {
    UINT flags;  // of the item's states those that survive
    HMENU submenu;
    UINT id;
    bool isWritten;
};

// Of an item's states only grayed and checked survive: a disabled item that is not grayed is
// enabled by the rewrite, also when its text did not change. An item whose id is 0 keeps its text.
MenuItem ItemAt(HMENU menu, int position) {
    UINT state = GetMenuState(menu, position, MF_BYPOSITION);
    UINT flags = state == kNoItem ? 0 : state & (MF_GRAYED | MF_CHECKED);
    if (HMENU submenu = GetSubMenu(menu, position)) return {flags, submenu, 0, true};
    UINT id = GetMenuItemID(menu, position);
    return {flags, nullptr, id, state != kNoItem && !(state & MF_POPUP) && id};
}

void WriteItem(HMENU menu, int position, const MenuItem& item, const char* text) {
    UINT flags = item.flags | MF_BYPOSITION | (item.submenu ? MF_POPUP : 0);
    ModifyMenuA(menu, position, flags, item.submenu ? LowHandle(item.submenu) : item.id, text);
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

// `translate` is called with a buffer of kSize bytes. A submenu is walked right after its item. A
// dictionary with no entries leaves menus as they are: they are walked for the observer alone.
template <unsigned kSize, class Translator>
void TranslateItems(const CWld& dictionary, HMENU menu, const LookupCall* call,
                    const Translator& translate) {
    bool isWriting = dictionary.m_Contexts.count != 0;
    if (!isWriting && !call) return;
    char text[kSize];
    for (MenuPath path(menu); !path.IsEmpty();) {
        MenuPlace& at = path.Last();
        if (at.position >= at.count) {
            path.Leave();
            continue;
        }
        int position = at.position++;
        if (!ReadItemText(at.menu, position, text, kSize)) continue;
        MenuItem item = ItemAt(at.menu, position);
        if (!item.isWritten) {
            TellOf(call, text, QXLOOKUP_KEPT);
            continue;
        }
        translate(text);
        if (isWriting) WriteItem(at.menu, position, item, text);
        if (item.submenu) path.Enter(item.submenu);
    }
}

}  // namespace

void TranslateMenu(CWld& dictionary, HMENU menu, const LookupCall* call) {
    constexpr unsigned kSize = 256;
    TranslateItems<kSize>(dictionary, menu, call, [&dictionary, call](char* text) {
        TranslateBuffer(dictionary, text, kSize, call);
    });
}

void TranslateMenuAt(const CWld& dictionary, HMENU menu, const Place& place) {
    constexpr unsigned kSize = 512;
    TranslateItems<kSize>(dictionary, menu, place.call, [&place](char* text) {
        TranslateBufferAt(text, kSize, place, 0);
        Characters::OfRuntime().EndAtWholeCharacter(text, kSize);
    });
}

}  // namespace qx

int CWld::Translate(HMENU menu) {
    qx::TranslateMenu(*this, menu, nullptr);
    return 1;
}

int CWld::TranslateMenuInContext(HMENU menu, const char* key) {
    qx::TranslateMenuAt(*this, menu, {qx::PlaceOfKey(key)});
    return 1;
}
