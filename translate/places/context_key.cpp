#include "translate/places/context_key.h"

#include "translate/dictionary/dictionary.h"
#include "translate/places/module_name.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cstring>
#include <intrin.h>

namespace {

// Every key ends with them, so that no key with a text behind it can be a plain text.
constexpr char kKeyEnd[] = "\xFD\xFD";

// A number in decimal digits.
class Digits {
public:
    explicit Digits(int number) {
        *std::to_chars(m_text, m_text + sizeof m_text - 1, number).ptr = 0;
    }
    const char* Text() const { return m_text; }

private:
    char m_text[12];
};

// Puts texts one behind the other into a buffer, as far as they fit, and counts them whole.
class KeyWriter {
public:
    KeyWriter(char* buffer, unsigned size) : m_buffer(buffer), m_room(size ? size - 1 : 0) {
        if (size) *buffer = 0;
    }
    KeyWriter& operator<<(const char* text) {
        auto size = static_cast<unsigned>(strlen(text));
        unsigned fits = std::min(size, m_room);
        if (fits) {
            memcpy(m_buffer, text, fits);
            m_buffer += fits;
            *m_buffer = 0;
            m_room -= fits;
        }
        m_written += size;
        return *this;
    }
    unsigned Written() const { return m_written; }

private:
    char* m_buffer;
    unsigned m_room;
    unsigned m_written = 0;
};

// The text hash continued over a few characters, which a call would cost more than.
constexpr unsigned ContinueHash(unsigned hash, const char* text) {
    for (; *text; ++text)
        hash = hash * 257 + static_cast<unsigned>(static_cast<signed char>(*text));
    return hash;
}

// Clears what is left of a buffer. Short ends are what there is, and the runtime's function is slow
// with them.
void ClearEnd(char* end, size_t size) {
    __stosb(reinterpret_cast<unsigned char*>(end), 0, size);
}

}  // namespace

unsigned WriteResourceKey(HMODULE module, const void* id, char* buffer, unsigned size, int kind) {
    ModuleName name(module);
    if (!name.Text()) return 0;
    KeyWriter key(buffer, size);
    key << name.Text() << "#" << Digits(kind).Text() << "#";
    if (IS_INTRESOURCE(id)) {
        key << Digits(static_cast<int>(reinterpret_cast<UINT_PTR>(id))).Text();
    } else {
        key << static_cast<const char*>(id);
    }
    key << kKeyEnd;
    return key.Written();
}

void MakeResourceKey(HMODULE module, const void* id, char* buffer, int kind) {
    WriteResourceKey(module, id, buffer, UINT_MAX, kind);
}

int HashResourceKey(const char* key) {
    return static_cast<int>(QXHashFolded(key ? key : "").hash);
}

PlaceHash PlaceOfKey(const char* key) {
    if (!key || !*key) return std::nullopt;
    return QXHashText(key).hash;
}

PlaceHash PlaceOfStrings(HMODULE module, unsigned block) {
    PlaceHash name = ModuleNameHash(module);
    if (!name) return std::nullopt;
    static_assert(QXKEY_STRINGS == 3);
    unsigned hash = ContinueHash(*name, "#3#");
    hash = ContinueHash(hash, Digits(static_cast<int>(block)).Text());
    return ContinueHash(hash, kKeyEnd);
}

const char* TranslateAt(const char* text, PlaceHash place) {
    if (!text) text = "";
    QXTextHash hash = QXHashText(text);
    if (place) {
        if (const char* translation = TargetOf(g_Wld, hash.Behind(*place))) return translation;
    }
    if (!*text) return nullptr;
    const char* translation = TargetOf(g_Wld, hash.hash);
    return translation ? translation : text;
}

unsigned int TranslateBufferAt(char* buffer, unsigned int size, PlaceHash place, int measureOnly) {
    if (!buffer) return 0;
    const char* translation = TranslateAt(buffer, place);
    if (!translation) return 0;
    auto length = static_cast<unsigned>(strlen(translation));
    if (measureOnly || translation == buffer) return length;
    unsigned copied = std::min(length, size);
    memcpy(buffer, translation, copied);
    ClearEnd(buffer + copied, size - copied);
    return length;
}

const char* TranslateInContext(const char* text, const char* key) {
    return TranslateAt(text, PlaceOfKey(key));
}

unsigned int TranslateBufferInContext(char* buffer, unsigned int size, const char* key,
                                      int bMeasureOnly) {
    return TranslateBufferAt(buffer, size, PlaceOfKey(key), bMeasureOnly);
}
