#include "translate/interception/interception.h"
#include "translate/interception/module_lists.h"
#include "translate/places/context_key.h"

#include <qxcore/dictionary.h>
#include <qxcore/exception.h>

namespace qx {

namespace {

// Menus nested beyond any use take memory to walk; without it what is left of one keeps its texts,
// for hosts that call the system's functions expect no exception.
template <class Translate>
HMENU Translated(HMENU menu, Translate translate) {
    KeptLastError kept;
    try {
        translate();
    } catch (CXMemException&) {
    }
    return menu;
}

// A wide name counts as the bytes it consists of, so usually its first letter alone reaches the
// key.
template <class Function, class Name>
HMENU LoadTranslatedMenu(Function* real, HINSTANCE module, const Name* name) {
    ModuleName moduleName(module);
    if (!IsTranslationActive(moduleName)) return real(module, name);
    HMENU menu = real(module, name);
    if (!menu) return nullptr;
    ResourceKey key(moduleName, name, QXKEY_MENU);
    return Translated(menu, [&] { g_Wld.TranslateMenuInContext(menu, key); });
}

}  // namespace

HMENU WINAPI NewLoadMenuIndirectA(const MENUTEMPLATEA* menuTemplate) {
    HMENU menu = QX_REAL(LoadMenuIndirectA)(menuTemplate);
    if (!menu || !IsSwitchedOn()) return menu;
    return Translated(menu, [menu] { g_Wld.Translate(menu); });
}

HMENU WINAPI NewLoadMenuA(HINSTANCE module, const char* name) {
    return LoadTranslatedMenu(QX_REAL(LoadMenuA), module, name);
}

HMENU WINAPI NewLoadMenuW(HINSTANCE module, const wchar_t* name) {
    return LoadTranslatedMenu(QX_REAL(LoadMenuW), module, name);
}

}  // namespace qx
