// The text form of a dictionary: pairs of quoted lines in a narrow code page, as the library reads
// them.
#ifndef QXTRANSLATE_MODEL_DICTIONARY_TEXT_H
#define QXTRANSLATE_MODEL_DICTIONARY_TEXT_H

#include "tools/qxtranslate/model/places/place.h"
#include "tools/qxtranslate/model/text/code_page.h"

#include <cstdint>
#include <vector>

namespace qx {

// Bytes of the code page, unescaped. The source begins with a context key when it holds for one
// place only.
struct DictionaryEntry {
    std::string source;
    std::string target;
    unsigned line = 0;

    bool operator==(const DictionaryEntry& other) const {
        return source == other.source && target == other.target;
    }
};

struct DialogFont {
    std::string name;
    int script = 0;
    int size = 0;

    bool operator==(const DialogFont&) const = default;
};

struct Dictionary {
    std::optional<DialogFont> font;
    std::vector<DictionaryEntry> entries;
};

// What the program sees: comments and other lines are passed over, a bare empty line ends the file,
// the first translation of a text stands. Throws BadInput for a line that is too long.
Dictionary ReadDictionary(std::string_view file, const CodePage& page);

// Windows line ends. REQUIRES: every text is one that WhyUnwritable has nothing against.
std::string WriteDictionary(const Dictionary& dictionary);

// Why an entry cannot stand in a dictionary; empty when it can.
std::string WhyUnwritable(const DictionaryEntry& entry, const CodePage& page);

// The bytes of a context key. Nothing when the code page lacks a character of the names.
std::optional<std::string> ContextKey(const Context& context, const CodePage& page);
// How many of a source's bytes are its context key; 0 for one that holds everywhere.
size_t ContextKeySize(std::string_view source);
// REQUIRES: the bytes are a context key.
std::optional<Context> ParseContextKey(std::string_view key, const CodePage& page);

// Entries with one hash are one entry to the program.
uint32_t HashText(std::string_view bytes);

}  // namespace qx

#endif
