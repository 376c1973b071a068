#include "translate/interception/interception.h"
#include "translate/interception/module_lists.h"
#include "translate/interception/replacements.h"
#include "translate/places/resource_key.h"

#include <qxcore/dictionary.h>

namespace {

// A wide name counts as the bytes it consists of, so usually its first letter alone reaches the
// key.
template <class Function, class Name>
HMENU LoadTranslatedMenu(Function* real, HINSTANCE module, const Name* name) {
    HMENU menu = real(module, name);
    if (menu && IsTranslationActive(module)) {
        g_Wld.TranslateMenuInContext(menu, ResourceKey(module, name, QXKEY_MENU));
    }
    return menu;
}

}  // namespace

HMENU WINAPI NewLoadMenuIndirectA(const MENUTEMPLATEA* menuTemplate) {
    HMENU menu = QX_REAL(LoadMenuIndirectA)(menuTemplate);
    if (menu && IsTranslationActive(nullptr)) g_Wld.Translate(menu);
    return menu;
}

HMENU WINAPI NewLoadMenuA(HINSTANCE module, const char* name) {
    return LoadTranslatedMenu(QX_REAL(LoadMenuA), module, name);
}

HMENU WINAPI NewLoadMenuW(HINSTANCE module, const wchar_t* name) {
    return LoadTranslatedMenu(QX_REAL(LoadMenuW), module, name);
}
