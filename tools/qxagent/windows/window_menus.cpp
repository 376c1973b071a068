#include "tools/qxagent/windows/window_menus.h"

#include "tools/qxagent/texts/narrow.h"
#include "tools/qxagent/texts/recorder.h"

#include <qxcore/dictionary.h>

#include <algorithm>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace qx {

namespace {

std::mutex g_mutex;
std::set<HMENU> g_translated;

bool IsFirstTime(HMENU menu) {
    std::lock_guard<std::mutex> lock(g_mutex);
    return g_translated.insert(menu).second;
}

// The menu and all below it.
std::vector<HMENU> WithSubmenus(HMENU menu) {
    std::vector<HMENU> menus;
    if (menu) menus.push_back(menu);
    for (size_t at = 0; at < menus.size(); ++at) {
        for (int i = 0, count = GetMenuItemCount(menus[at]); i < count; ++i) {
            HMENU submenu = GetSubMenu(menus[at], i);
            if (submenu && std::find(menus.begin(), menus.end(), submenu) == menus.end())
                menus.push_back(submenu);
        }
    }
    return menus;
}

void NoteWithSubmenus(HMENU menu) {
    std::vector<HMENU> menus = WithSubmenus(menu);
    std::lock_guard<std::mutex> lock(g_mutex);
    g_translated.insert(menus.begin(), menus.end());
}

// The key of the menu that the window's class names; empty when it names none.
std::string ClassMenuKey(HWND window) {
    auto module = reinterpret_cast<HMODULE>(GetClassLongPtrA(window, GCLP_HMODULE));
    auto name = reinterpret_cast<const char*>(GetClassLongPtrA(window, GCLP_MENUNAME));
    if (!name) return {};
    std::string key(IS_INTRESOURCE(name) ? 300 : 300 + strlen(name), '\0');
    MakeResourceKey(module, name, key.data(), QXKEY_MENU);
    key.resize(strlen(key.c_str()));
    return key;
}

void TellTexts(HMENU menu, const std::string& key) {
    for (int i = 0, count = GetMenuItemCount(menu); i < count; ++i) {
        wchar_t text[512] = L"";
        if (!GetMenuStringW(menu, static_cast<UINT>(i), text, 512, MF_BYPOSITION)) continue;
        std::string narrow = Narrow(text);
        const char* target = TranslateInContext(narrow.c_str(), key.c_str());
        TellText("menu of the system", nullptr, key, text, Widen(target ? target : narrow));
    }
}

void TranslateOnce(HMENU menu, const std::string& key) {
    if (!menu || !IsMenu(menu) || !IsFirstTime(menu)) return;
    if (IsRecording()) {
        for (HMENU each : WithSubmenus(menu)) TellTexts(each, key);
    }
    g_Wld.TranslateMenuInContext(menu, key.c_str());
    NoteWithSubmenus(menu);
}

bool HasMenuBar(HWND window) {
    return (GetWindowLongPtrW(window, GWL_STYLE) & WS_CHILD) == 0;
}

}  // namespace

// Handles are used again for other menus.
void Forget(HMENU menu) {
    std::vector<HMENU> menus = WithSubmenus(menu);
    std::lock_guard<std::mutex> lock(g_mutex);
    for (HMENU gone : menus) g_translated.erase(gone);
}

void TranslateMenusOf(const CWPSTRUCT& message) {
    switch (message.message) {
        case WM_CREATE:
            if (HasMenuBar(message.hwnd))
                TranslateOnce(GetMenu(message.hwnd), ClassMenuKey(message.hwnd));
            break;
        case WM_INITDIALOG:
            if (HasMenuBar(message.hwnd)) TranslateOnce(GetMenu(message.hwnd), "");
            break;
        case WM_INITMENUPOPUP:
            // The window menu is the system's own.
            if (!HIWORD(message.lParam)) TranslateOnce(reinterpret_cast<HMENU>(message.wParam), "");
            break;
        case WM_NCDESTROY:
            if (HasMenuBar(message.hwnd)) Forget(GetMenu(message.hwnd));
            break;
    }
}

HMENU Translated(HMENU menu) {
    NoteWithSubmenus(menu);
    return menu;
}

}  // namespace qx
