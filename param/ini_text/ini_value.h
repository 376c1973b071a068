// The typed values of ini text: one letter, then the text of that type.
#ifndef QXCORE_PARAM_INI_TEXT_VALUE_H
#define QXCORE_PARAM_INI_TEXT_VALUE_H

#include "param/ini_text/cut_text.h"

#include <qxcore/variant.h>

namespace qx {

// Reads "w65535", "p3,4" and their like into an empty variant. A string is not copied: the variant
// borrows it from `text` and must not be cleared. False when the letter is unknown or the text does
// not fit its type; the variant then has no meaning.
bool ReadIniValue(char* text, tagQXVARIANT& value);

// Adds the letter and the text. False, with nothing added, for the types that have no text form:
// blobs and objects.
bool WriteIniValue(const tagQXVARIANT& value, CutText& out);

}  // namespace qx

#endif
