// Dialog templates of both forms in the target language, and their geometry before that.
#ifndef QXCORE_TRANSLATE_RESOURCES_DIALOG_TRANSLATION_H
#define QXCORE_TRANSLATE_RESOURCES_DIALOG_TRANSLATION_H

#include "translate/places/context_key.h"
#include "translate/resources/template_walk.h"

namespace qx {

// CWld::TranslateDlg and CWld::TranslateDlgPosition. Font and geometry are the dictionary's own;
// the texts are those of g_Wld, also for a dictionary that a host made. A template that ends too
// early comes back as it is if not even its head is there; else it keeps the controls that are
// whole, and counts those only.
unsigned char* TranslateTemplate(CWld& dictionary, TemplateBytes dialog, int* size,
                                 const Place& place);
unsigned char* TranslateTemplatePosition(CWld& dictionary, TemplateBytes dialog, int hash,
                                         int* size, const Place& place);

}  // namespace qx

#endif
