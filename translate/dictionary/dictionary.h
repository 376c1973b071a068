// What the parts of the dictionary share.
#ifndef QXCORE_TRANSLATE_DICTIONARY_H
#define QXCORE_TRANSLATE_DICTIONARY_H

#include <qxcore/dictionary.h>

// Build and take down g_Wld, when the library is loaded and unloaded.
void StartDictionary();
void StopDictionary();

// The translation of the texts with this hash; null when there is none or it is empty.
const char* TargetOf(CWld& dictionary, unsigned hash);

// Replaces \n, \r and \t. A run of backslashes counts as one, and one at the end disappears; before
// any other character it stays. So no text can hold a backslash before n, r or t.
void UnescapeText(CXString& text);

#endif
