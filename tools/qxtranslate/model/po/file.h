// A PO file: what the translator works on. UTF-8, one entry for each text.
#ifndef QXTRANSLATE_MODEL_PO_FILE_H
#define QXTRANSLATE_MODEL_PO_FILE_H

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qx {

struct PoEntry {
    std::optional<std::string> context;
    std::string source;
    std::string target;                   // empty: not translated
    std::vector<std::string> comments;    // the translator's
    std::vector<std::string> notes;       // what the text is and how much room it has
    std::vector<std::string> references;  // its places
    std::vector<std::string> flags;
    std::optional<std::string> previousContext;
    std::optional<std::string> previousSource;
    bool isObsolete = false;
    unsigned line = 0;  // where it began in the file it was read from

    bool IsFuzzy() const;
    void SetFuzzy();
    // Left in the source language on purpose: the dictionary gets an empty translation.
    bool IsLeftAsItIs() const;
};

// The translator's comment that makes an entry one that is left as it is.
inline constexpr std::string_view kLeftAsItIs = "left as it is";

struct PoFile {
    // Fields of the header in their order; the first two are always there in what is written.
    std::vector<std::pair<std::string, std::string>> header;
    std::vector<std::string> headerComments;
    bool isTemplate = false;  // the header is fuzzy
    std::vector<PoEntry> entries;

    // The field's value, or "".
    std::string Field(std::string_view name) const;
    void SetField(std::string_view name, std::string_view value);
};

// What tells an entry from others.
using PoKey = std::pair<std::optional<std::string>, std::string>;
inline PoKey KeyOf(const PoEntry& entry) {
    return {entry.context, entry.source};
}

// Throws BadInput with the line's number: wrong syntax, a text that is not UTF-8, another charset,
// plural forms, or two entries of one text.
PoFile ReadPo(std::string_view text);

// No line is wrapped but behind a line break of the text, so that changes stay small.
std::string WritePo(const PoFile& file);

}  // namespace qx

#endif
