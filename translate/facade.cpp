#include "translate/interception/module_lists.h"

#include <qxcore/dictionary.h>
#include <qxcore/translation.h>

namespace {

constexpr const char* kDefaultDictionary = "app.wld";

}  // namespace

int Supp_Init(const char* name) {
    if (!g_Wld.Init(name ? name : kDefaultDictionary)) return 0;
    for (const char* library : g_aPatchModules) _InitResTranslation(GetModuleHandleA(library));
    for (ListedModule& excluded : g_aExcludeModules) excluded.Find();
    for (ListedModule& extra : g_aExtraModules) _InitResTranslation(extra.module);
    return 1;
}

int Supp_AddWld(const char* name) {
    return g_Wld.m_bInit ? g_Wld.Add(name) : Supp_Init(name);
}

int Supp_InitResTranslation(HINSTANCE module) {
    return _InitResTranslation(module);
}

void Supp_SetTranslationEnable(int enable) {
    g_bTranslationEnable = enable;
}

int Supp_IsTranslationEnable() {
    return g_bTranslationEnable;
}

HFONT Supp_GetFont() {
    return g_Wld.m_hFont;
}

int Supp_GetFontHeigth() {
    return 0;
}

const char* Supp_Translate(const char* text) {
    return g_Wld.Translate(text, 0);
}

unsigned int Supp_Translate(char* buffer, unsigned int size) {
    return g_Wld.Translate(buffer, size);
}

int Supp_Translate(HMENU menu) {
    return g_Wld.Translate(menu);
}

int Supp_Translate(HWND window) {
    return g_Wld.Translate(window);
}
