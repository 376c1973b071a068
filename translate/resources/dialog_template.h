// Passes over dialog templates of both forms: translation, and geometry before it.
#ifndef QXCORE_TRANSLATE_DIALOG_TEMPLATE_H
#define QXCORE_TRANSLATE_DIALOG_TEMPLATE_H

#include <cstddef>
#include <cstdint>

class CWld;

// A template with the bytes that may be read of it. One whose length nobody knows is taken as
// sound.
struct TemplateBytes {
    const uint8_t* data;
    size_t size;

    static constexpr size_t kUnknownSize = SIZE_MAX / 2;
};

// CWld::TranslateDlg and CWld::TranslateDlgPosition. Font and geometry are the dictionary's own;
// the texts are those of g_Wld, also for a dictionary that a host made. A template that ends too
// early comes back as it is if not even its head is there; else it keeps the controls that are
// whole, and counts those only.
unsigned char* TranslateTemplate(CWld& dictionary, TemplateBytes dialog, int* size,
                                 const char* key);
unsigned char* TranslateTemplatePosition(CWld& dictionary, TemplateBytes dialog, int hash,
                                         int* size, const char* key);

#endif
