#include "param/ini/ini_characters.h"

#include <mbctype.h>
#include <mbstring.h>

IniCharacters::IniCharacters() {
    for (unsigned c = 0; c < 256; ++c) {
        unsigned classes = 0;
        if (_ismbblead(c)) {
            classes = kLead;
            m_multibyte = true;
        } else if (_ismbcspace(c)) {
            classes = kIniSpace;
        }
        if (c == '|') classes |= kIniSeparator;
        if (c == ';') classes |= kIniComment;
        m_classes[c] = static_cast<unsigned char>(classes);
    }
}

// The runtime decides where lead bytes stand side by side.
char* IniCharacters::PreviousOfTwo(char* begin, char* p) {
    auto bytes = [](char* at) { return reinterpret_cast<unsigned char*>(at); };
    return reinterpret_cast<char*>(_mbsdec(bytes(begin), bytes(p)));
}

bool IniCharacters::IsSpaceOfTwo(const char* p) {
    return _ismbcspace(_mbsnextc(reinterpret_cast<const unsigned char*>(p))) != 0;
}
