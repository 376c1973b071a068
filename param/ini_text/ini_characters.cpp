#include "param/ini_text/ini_characters.h"

#include <mbctype.h>
#include <mbstring.h>

namespace qx {

IniCharacters::IniCharacters() {
    for (unsigned c = 0; c < 256; ++c) {
        unsigned classes = 0;
        if (!m_characters.Leads(static_cast<char>(c)) && _ismbcspace(c)) classes = kIniSpace;
        if (c == '|') classes |= kIniSeparator;
        if (c == ';') classes |= kIniComment;
        m_classes[c] = static_cast<unsigned char>(classes);
    }
}

bool IniCharacters::IsSpaceOfTwo(const char* p) {
    return _ismbcspace(_mbsnextc(reinterpret_cast<const unsigned char*>(p))) != 0;
}

}  // namespace qx
