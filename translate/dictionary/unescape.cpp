#include "strings/characters.h"
#include "translate/dictionary/dictionary.h"

#include <cstring>

namespace qx {

namespace {

// What a backslash and this character stand for; 0 when they stay as they are.
char EscapedCharacter(char c) {
    switch (c) {
        case 'n':
            return '\n';
        case 'r':
            return '\r';
        case 't':
            return '\t';
        default:
            return 0;
    }
}

}  // namespace

void UnescapeText(CXString& text) {
    if (!strchr(text, '\\')) return;
    auto characters = Characters::OfRuntime();
    __CXBuff<CXString, char*> buffer(text, text.GetSize());
    char* to = buffer.buffer;
    bool pending = false;
    for (const char* from = to; *from;) {
        if (*from == '\\') {
            pending = true;
            ++from;
            continue;
        }
        char escaped = pending ? EscapedCharacter(*from) : '\0';
        if (escaped) {
            *to++ = escaped;
            ++from;
        } else {
            if (pending) *to++ = '\\';
            for (size_t size = characters.SizeAt(from); size; --size) *to++ = *from++;
        }
        pending = false;
    }
    *to = 0;
}

}  // namespace qx
