// The dialog font of a dictionary that names none.
#ifndef QXCORE_TRANSLATE_DEFAULT_FONT_H
#define QXCORE_TRANSLATE_DEFAULT_FONT_H

#include <qxcore/dictionary.h>

// The system's interface font on a double-byte system, "MS Shell Dlg" of 8 points on any other.
void TakeDefaultFont(CWld& dictionary);

#endif
