// Menus in the target language.
#ifndef QXCORE_TRANSLATE_RESOURCES_MENU_TRANSLATION_H
#define QXCORE_TRANSLATE_RESOURCES_MENU_TRANSLATION_H

#include "translate/places/context_key.h"

namespace qx {

// CWld::Translate of a menu, told unless the call is null; and CWld::TranslateMenuInContext, whose
// texts are those of g_Wld, also for a dictionary that a host made.
void TranslateMenu(CWld& dictionary, HMENU menu, const LookupCall* call);
void TranslateMenuAt(const CWld& dictionary, HMENU menu, const Place& place);

}  // namespace qx

#endif
