#include "translate/places/context_key.h"

#include "translate/dictionary/dictionary.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>

namespace qx {

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
    KeyWriter(char* buffer, size_t size) : m_buffer(buffer), m_room(size ? size - 1 : 0) {
        if (size) *buffer = 0;
    }
    KeyWriter& operator<<(const char* text) {
        size_t size = strlen(text);
        size_t fits = std::min(size, m_room);
        if (fits) {
            memcpy(m_buffer, text, fits);
            m_buffer += fits;
            *m_buffer = 0;
            m_room -= fits;
        }
        m_written += size;
        return *this;
    }
    size_t Written() const { return m_written; }

private:
    char* m_buffer;
    size_t m_room;
    size_t m_written = 0;
};

// The text hash continued over a few characters, which a call would cost more than.
constexpr unsigned ContinueHash(unsigned hash, const char* text) {
    for (; *text; ++text)
        hash = hash * 257 + static_cast<unsigned>(static_cast<signed char>(*text));
    return hash;
}

}  // namespace

size_t WriteResourceKey(ModuleName& module, const void* id, char* buffer, size_t size, int kind) {
    const char* name = module.Text();
    if (!name) return 0;
    KeyWriter key(buffer, size);
    key << name << "#" << Digits(kind).Text() << "#";
    if (IS_INTRESOURCE(id)) {
        key << Digits(static_cast<int>(reinterpret_cast<UINT_PTR>(id))).Text();
    } else {
        key << static_cast<const char*>(id);
    }
    key << kKeyEnd;
    return key.Written();
}

PlaceHash PlaceOfKey(const char* key) {
    if (!key || !*key) return std::nullopt;
    return QXHashText(key).hash;
}

PlaceHash PlaceOfStrings(ModuleName& module, unsigned block) {
    PlaceHash name = module.Hash();
    if (!name) return std::nullopt;
    static_assert(QXKEY_STRINGS == 3);
    unsigned hash = ContinueHash(*name, "#3#");
    hash = ContinueHash(hash, Digits(static_cast<int>(block)).Text());
    return ContinueHash(hash, kKeyEnd);
}

const char* TranslateAt(const char* text, const Place& place) {
    if (!text) text = "";
    if (place.call && *text) TellLookup(*place.call, g_Wld, text, place.hash);
    QXTextHash hash = QXHashText(text);
    if (place.hash) {
        if (const char* translation = TargetOf(g_Wld, hash.Behind(*place.hash))) return translation;
    }
    if (!*text) return nullptr;
    const char* translation = TargetOf(g_Wld, hash.hash);
    return translation ? translation : text;
}

unsigned int TranslateBufferAt(char* buffer, unsigned int size, const Place& place,
                               int measureOnly) {
    if (!buffer) return 0;
    const char* translation = TranslateAt(buffer, place);
    if (!translation) return 0;
    auto length = static_cast<unsigned>(strlen(translation));
    if (measureOnly || translation == buffer) return length;
    unsigned copied = std::min(length, size);
    memcpy(buffer, translation, copied);
    memset(buffer + copied, 0, size - copied);
    return length;
}

}  // namespace qx

void MakeResourceKey(HMODULE module, const void* id, char* buffer, int kind) {
    qx::ModuleName name(module);
    qx::WriteResourceKey(name, id, buffer, SIZE_MAX, kind);
}

int HashResourceKey(const char* key) {
    return static_cast<int>(QXHashFolded(key ? key : "").hash);
}

const char* TranslateInContext(const char* text, const char* key) {
    return qx::TranslateAt(text, {qx::PlaceOfKey(key)});
}

unsigned int TranslateBufferInContext(char* buffer, unsigned int size, const char* key,
                                      int bMeasureOnly) {
    return qx::TranslateBufferAt(buffer, size, {qx::PlaceOfKey(key)}, bMeasureOnly);
}
