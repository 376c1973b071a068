#include <qxcore/string_enum.h>

#include "strings/characters.h"

#include <cassert>
#include <cstring>

namespace qx {

namespace {

// Half a character at the end of both is the same, unlike in other searches.
bool IsSeparator(const Characters& characters, const char* at, const char* separators) {
    size_t size = characters.SizeAt(at);
    for (; *separators; separators = characters.Next(separators)) {
        if (characters.SizeAt(separators) == size && memcmp(at, separators, size) == 0) return true;
    }
    return false;
}

// Cuts the pieces of `text` one after the other, writing a zero over the separator behind each.
class PieceCutter {
public:
    PieceCutter(const Characters& characters, char* text, const char* separators)
        : m_characters(characters), m_at(text), m_separators(separators) {}

    char* Next() {
        while (*m_at && IsSeparator()) Step();
        if (!*m_at) return nullptr;
        char* piece = m_at;
        while (*m_at && !IsSeparator()) Step();
        if (char* end = m_at; *end) {
            Step();
            *end = 0;
        }
        return piece;
    }

private:
    bool IsSeparator() const { return qx::IsSeparator(m_characters, m_at, m_separators); }
    void Step() { m_at += m_characters.SizeAt(m_at); }

    const Characters& m_characters;
    char* m_at;
    const char* m_separators;
};

unsigned CountPieces(const Characters& characters, const char* text, const char* separators) {
    unsigned count = 0;
    bool inside = false;
    for (; *text; text = characters.Next(text)) {
        bool separates = IsSeparator(characters, text, separators);
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

}  // namespace qx

void QXTextArray::Split(const char* separators, const char* text) {
    assert(separators && !texts);
    const auto codePage = qx::Characters::OfRuntime();
    unsigned pieces = text ? qx::CountPieces(codePage, text, separators) : 0;
    if (!pieces) return;
    qx::Fill(*this, pieces, text, strlen(text) + 1);
    qx::PieceCutter cutter(codePage, characters, separators);
    while (char* piece = cutter.Next()) texts[count++] = piece;
}

void QXTextArray::CopyBlock(const char* block) {
    assert(!texts);
    if (!block || !*block) return;
    unsigned found = 0;
    const char* end = block;
    for (; *end; end += strlen(end) + 1) ++found;
    qx::Fill(*this, found, block, static_cast<size_t>(end - block) + 1);
    for (char* at = characters; *at; at += strlen(at) + 1) texts[count++] = at;
}
