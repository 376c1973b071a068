#include "tools/qxagent/window_menus.h"

#include "tools/qxagent/narrow.h"
#include "tools/qxagent/recorder.h"

#include <qxcore/dictionary.h>

#include <mutex>
#include <set>
#include <string>

namespace qx {

namespace {

std::mutex g_mutex;
std::set<HMENU> g_translated;

bool IsFirstTime(HMENU menu) {
    std::lock_guard<std::mutex> lock(g_mutex);
    return g_translated.insert(menu).second;
}

void NoteWithSubmenus(HMENU menu) {
    if (!menu) return;
    {
        std::lock_guard<std::mutex> lock(g_mutex);
        g_translated.insert(menu);
    }
    for (int i = GetMenuItemCount(menu) - 1; i >= 0; --i) NoteWithSubmenus(GetSubMenu(menu, i));
}

// Handles are used again for other menus.
void Forget(HMENU menu) {
    if (!menu) return;
    {
        std::lock_guard<std::mutex> lock(g_mutex);
        g_translated.erase(menu);
    }
    for (int i = GetMenuItemCount(menu) - 1; i >= 0; --i) Forget(GetSubMenu(menu, i));
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
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        wchar_t text[512] = L"";
        if (GetMenuStringW(menu, static_cast<UINT>(i), text, 512, MF_BYPOSITION)) {
            std::string narrow = Narrow(text);
            const char* target = TranslateInContext(narrow.c_str(), key.c_str());
            TellText("menu of the system", nullptr, key, text, Widen(target ? target : narrow));
        }
        if (HMENU submenu = GetSubMenu(menu, i)) TellTexts(submenu, key);
    }
}

void TranslateOnce(HMENU menu, const std::string& key) {
    if (!menu || !IsMenu(menu) || !IsFirstTime(menu)) return;
    if (IsRecording()) TellTexts(menu, key);
    g_Wld.TranslateMenuInContext(menu, key.c_str());
    NoteWithSubmenus(menu);
}

bool HasMenuBar(HWND window) {
    return (GetWindowLongPtrW(window, GWL_STYLE) & WS_CHILD) == 0;
}

void Look(const CWPSTRUCT& message) {
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

LRESULT CALLBACK OnMessage(int code, WPARAM wparam, LPARAM lparam) {
    if (code == HC_ACTION) Look(*reinterpret_cast<const CWPSTRUCT*>(lparam));
    return CallNextHookEx(nullptr, code, wparam, lparam);
}

}  // namespace

void WatchMenusOf(DWORD thread) {
    SetWindowsHookExW(WH_CALLWNDPROC, OnMessage, nullptr, thread);
}

HMENU Translated(HMENU menu) {
    NoteWithSubmenus(menu);
    return menu;
}

}  // namespace qx
