// Every exported function of the translation layer, in the order of <qxcore/translation.h>.
#include "translate/places/lookup.h"
#include "translate/interception/import_table.h"
#include "translate/interception/interception.h"
#include "translate/interception/module_lists.h"

#include <qxcore/translation.h>

namespace {

constexpr const char* kDefaultDictionary = "app.wld";

}  // namespace

int Supp_Init(const char* name) {
    if (!g_Wld.Init(name ? name : kDefaultDictionary)) return 0;
    qx::LoadedModules loaded;
    for (const char* library : qx::g_aPatchModules) _InitResTranslation(loaded.Find(library));
    for (qx::ListedModule& excluded : qx::g_aExcludeModules) excluded.Find(loaded);
    for (qx::ListedModule& extra : qx::g_aExtraModules) _InitResTranslation(extra.module);
    return 1;
}

int Supp_AddWld(const char* name) {
    return g_Wld.m_bInit ? g_Wld.Add(name) : Supp_Init(name);
}

int Supp_InitResTranslation(HINSTANCE module) {
    return _InitResTranslation(module);
}

void Supp_SetTranslationEnable(int enable) {
    qx::g_bTranslationEnable = enable;
}

int Supp_IsTranslationEnable() {
    return qx::g_bTranslationEnable;
}

void Supp_SetLookupObserver(QXLookupObserver observer, void* context) {
    qx::SetObserver(observer, context);
}

HFONT Supp_GetFont() {
    return g_Wld.m_hFont;
}

int Supp_GetFontHeigth() {
    return 0;
}

// Templates carry the font; a window that stands keeps its own.
void Supp_SetDialogFont(HWND) {}

void Supp_SetDialogPos(HWND, HWND, unsigned int) {}

int _InitResTranslation(HMODULE module) {
    if (!module) return 0;
    qx::PatchModule(module);
    return 1;
}

int _DeInitResTranslation(HMODULE module) {
    if (!module) return 0;
    qx::UnpatchModule(module);
    return 1;
}

int _LoadStringNotTrans(HINSTANCE module, unsigned int id, char* buffer, int size) {
    using namespace qx;
    return QX_REAL(LoadStringA)(module, id, buffer, size);
}

void* HookProc_Install(void* module, const char* dll, const char* function, void* replacement) {
    return qx::PatchImportTable(module, dll, function, replacement);
}

// Looks the function up in what is no module and so finds nothing: the host's imports stay patched.
void* HookProc_UnInstall(void*, const char*, const char*) {
    return nullptr;
}

void* __GetHandlesList() {
    return nullptr;
}

void __SetHandlesList(void*) {}

unsigned char* TranslateDlgInternal(unsigned char* dialogTemplate, int* size) {
    return g_Wld.TranslateDlg(dialogTemplate, size, nullptr);
}

unsigned char* TranslateDlgInternalPosition(unsigned char* dialogTemplate, int hash, int* size) {
    return g_Wld.TranslateDlgPosition(dialogTemplate, hash, size, nullptr);
}

unsigned char* PatchDlgTemplateInternal(unsigned char*) {
    return nullptr;
}

// The library's own imports are never patched.
int MessageBoxInternalA(const void* parameters, int wide) {
    if (wide) return MessageBoxIndirectW(static_cast<const MSGBOXPARAMSW*>(parameters));
    return MessageBoxIndirectA(static_cast<const MSGBOXPARAMSA*>(parameters));
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
