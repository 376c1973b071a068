#include <qxcore/string_enum.h>

#include <mbctype.h>

#include <cstring>

namespace {

// A lead byte before the terminator stands alone.
const char* NextCharacter(const char* at) {
    return at + (_ismbblead(static_cast<unsigned char>(*at)) && at[1] ? 2 : 1);
}

bool IsSeparator(const char* at, const char* separators) {
    ptrdiff_t size = NextCharacter(at) - at;
    for (; *separators; separators = NextCharacter(separators)) {
        if (NextCharacter(separators) - separators == size && memcmp(at, separators, size) == 0)
            return true;
    }
    return false;
}

// Cuts the pieces of `text` one after the other, writing a zero over the separator behind each.
class PieceCutter {
public:
    PieceCutter(char* text, const char* separators) : at(text), separators(separators) {}

    char* Next() {
        while (*at && IsSeparator(at, separators)) Step();
        if (!*at) return nullptr;
        char* piece = at;
        while (*at && !IsSeparator(at, separators)) Step();
        if (char* end = at; *end) {
            Step();
            *end = 0;
        }
        return piece;
    }

private:
    void Step() { at += NextCharacter(at) - at; }

    char* at;
    const char* separators;
};

unsigned CountPieces(const char* text, const char* separators) {
    unsigned count = 0;
    bool inside = false;
    for (; *text; text = NextCharacter(text)) {
        bool separates = IsSeparator(text, separators);
        if (!separates && !inside) ++count;
        inside = !separates;
    }
    return count;
}

// Room for the texts and their characters, with the characters filled in.
void Fill(QXTextArray& array, unsigned count, const char* bytes, size_t size) {
    array.characters = static_cast<char*>(memcpy(new char[size], bytes, size));
    array.texts = new char*[count];
}

}  // namespace

void QXTextArray::Split(const char* separators, const char* text) {
    unsigned pieces = text ? CountPieces(text, separators) : 0;
    if (!pieces) return;
    Fill(*this, pieces, text, strlen(text) + 1);
    PieceCutter cutter(characters, separators);
    while (char* piece = cutter.Next()) texts[count++] = piece;
}

void QXTextArray::CopyBlock(const char* block) {
    if (!block || !*block) return;
    unsigned found = 0;
    const char* end = block;
    for (; *end; end += strlen(end) + 1) ++found;
    Fill(*this, found, block, static_cast<size_t>(end - block) + 1);
    for (char* at = characters; *at; at += strlen(at) + 1) texts[count++] = at;
}
