// What the parts of the dictionary share.
#ifndef QXCORE_TRANSLATE_DICTIONARY_DICTIONARY_H
#define QXCORE_TRANSLATE_DICTIONARY_DICTIONARY_H

#include <qxcore/dictionary.h>

namespace qx {

// Build and take down g_Wld, when the library is loaded and unloaded.
void StartDictionary();
void StopDictionary();

// The dialog font of a dictionary that names none: the system's interface font on a double-byte
// system, "MS Shell Dlg" of 8 points on any other.
void TakeDefaultFont(CWld& dictionary);

// The entry of the texts with this hash, if it holds a translation.
inline CContext* FindTranslation(CWld& dictionary, unsigned hash) {
    CContext** entry = dictionary.m_Contexts.count ? dictionary.m_Contexts.FindHash(hash) : nullptr;
    return entry && *(*entry)->target ? *entry : nullptr;
}
// Its translation, or null.
inline const char* TargetOf(CWld& dictionary, unsigned hash) {
    CContext* found = FindTranslation(dictionary, hash);
    return found ? static_cast<const char*>(found->target) : nullptr;
}

// Reads the geometry file at `path`: how dialogs and their controls grow with the translations. A
// later record of a dialog replaces an earlier one. 0 on a file failure, such as a missing file.
int ReadDlgFile(CWld& dictionary, const char* path);

// Replaces \n, \r and \t. A run of backslashes counts as one, and one at the end disappears; before
// any other character it stays. So no text can hold a backslash before n, r or t.
void UnescapeText(CXString& text);

}  // namespace qx

#endif
