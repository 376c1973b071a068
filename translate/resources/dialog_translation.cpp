#include "translate/resources/dialog_template.h"

#include <qxcore/dictionary.h>
#include <qxcore/translation.h>

unsigned char* CWld::TranslateDlg(unsigned char* dialog, int* size, const char* key) {
    return TranslateTemplate(*this, {dialog, TemplateBytes::kUnknownSize}, size, key);
}

unsigned char* CWld::TranslateDlgPosition(unsigned char* dialog, int hash, int* size,
                                          const char* key) {
    return TranslateTemplatePosition(*this, {dialog, TemplateBytes::kUnknownSize}, hash, size, key);
}

unsigned char* TranslateDlgInternal(unsigned char* dialogTemplate, int* size) {
    return g_Wld.TranslateDlg(dialogTemplate, size, nullptr);
}

unsigned char* TranslateDlgInternalPosition(unsigned char* dialogTemplate, int hash, int* size) {
    return g_Wld.TranslateDlgPosition(dialogTemplate, hash, size, nullptr);
}

unsigned char* PatchDlgTemplateInternal(unsigned char*) {
    return nullptr;
}
