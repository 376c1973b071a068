#include "strings/characters.h"
#include "translate/dictionary/dictionary.h"

#include <cstring>

namespace qx {

namespace {

void TranslateWindowText(CWld& dictionary, HWND window) {
    char text[1024] = "";
    GetWindowTextA(window, text, sizeof text);
    Characters::OfRuntime().EndAtWholeCharacter(text, sizeof text);
    dictionary.Translate(text, static_cast<unsigned>(sizeof text));
    SetWindowTextA(window, text);
}

bool HasTranslatableClass(const char* name) {
    return !_stricmp(name, "STATIC") || !_stricmp(name, "BUTTON");
}

BOOL CALLBACK TranslateChild(HWND child, LPARAM font) {
    char name[20];
    if (!GetClassNameA(child, name, sizeof name)) return TRUE;
    SendMessageA(child, WM_SETFONT, static_cast<WPARAM>(font), 1);
    if (HasTranslatableClass(name)) TranslateWindowText(g_Wld, child);
    return TRUE;
}

}  // namespace

}  // namespace qx

// Children take their texts from g_Wld, also when this is another dictionary.
int CWld::Translate(HWND window) {
    if (!m_Contexts.count) return 1;
    qx::TranslateWindowText(*this, window);
    EnumChildWindows(window, qx::TranslateChild, reinterpret_cast<LPARAM>(m_hFont));
    return 1;
}
