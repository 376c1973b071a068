#include "translate/interception/interception.h"
#include "translate/interception/module_lists.h"
#include "translate/resources/menu_translation.h"

#include <qxcore/dictionary.h>
#include <qxcore/exception.h>

namespace qx {

namespace {

// Menus nested beyond any use take memory to walk; without it what is left of one keeps its texts,
// for hosts that call the system's functions expect no exception.
template <class Translate>
HMENU Translated(HMENU menu, const LookupCall& call, Translate translate) {
    KeptLastError kept;
    try {
        translate(IfObserved(call));
    } catch (CXMemException&) {
        TellOf(IfObserved(call), nullptr, QXLOOKUP_NO_MEMORY);
    }
    return menu;
}

// A wide name counts as the bytes it consists of, so usually its first letter alone reaches the
// key.
template <class Function, class Name>
HMENU LoadTranslatedMenu(Function* real, HINSTANCE module, const Name* name, LookupCall call) {
    ModuleName moduleName(module);
    bool isActive = IsTranslationActive(moduleName);
    HMENU menu = real(module, name);
    if (!menu) return nullptr;
    if (!isActive) {
        TellOf(IfObserved(call), nullptr, WhyNotActive());
        return menu;
    }
    ResourceKey key(moduleName, name, QXKEY_MENU);
    call.place = *key ? key : static_cast<const char*>(nullptr);
    return Translated(menu, call, [&](const LookupCall* told) {
        TranslateMenuAt(g_Wld, menu, {PlaceOfKey(key), told});
    });
}

}  // namespace

HMENU WINAPI NewLoadMenuIndirectA(const MENUTEMPLATEA* menuTemplate) {
    LookupCall call = QX_CALL(LoadMenuIndirectA, nullptr);
    HMENU menu = QX_REAL(LoadMenuIndirectA)(menuTemplate);
    if (!menu) return nullptr;
    if (!IsSwitchedOn()) {
        TellOf(IfObserved(call), nullptr, QXLOOKUP_OFF);
        return menu;
    }
    return Translated(menu, call,
                      [&](const LookupCall* told) { TranslateMenu(g_Wld, menu, told); });
}

HMENU WINAPI NewLoadMenuA(HINSTANCE module, const char* name) {
    return LoadTranslatedMenu(QX_REAL(LoadMenuA), module, name, QX_CALL(LoadMenuA, module));
}

HMENU WINAPI NewLoadMenuW(HINSTANCE module, const wchar_t* name) {
    return LoadTranslatedMenu(QX_REAL(LoadMenuW), module, name, QX_CALL(LoadMenuW, module));
}

}  // namespace qx
