// A narrow code page. The model is handed one: the tables are the platform's.
#ifndef QXTRANSLATE_MODEL_TEXT_CODE_PAGE_H
#define QXTRANSLATE_MODEL_TEXT_CODE_PAGE_H

#include <optional>
#include <string>
#include <string_view>

namespace qx {

class CodePage {
public:
    virtual ~CodePage() = default;

    // Nothing when the page lacks a character of the text.
    virtual std::optional<std::string> Encode(std::string_view utf8) const = 0;
    // Nothing when the bytes are no text of the page.
    virtual std::optional<std::string> Decode(std::string_view bytes) const = 0;
    // Whether the byte begins a character of two.
    virtual bool IsLead(unsigned char byte) const = 0;
};

// The bytes of the character at `at`: 2 for a lead byte with a byte behind it, else 1.
inline size_t CharacterSize(const CodePage& page, std::string_view text, size_t at) {
    bool isDouble = page.IsLead(static_cast<unsigned char>(text[at])) && at + 1 < text.size();
    return isDouble ? 2 : 1;
}

// Whether the characters in which dictionaries are written are bytes of their own.
inline bool KeepsAscii(const CodePage& page) {
    std::string ascii;
    for (char c = ' '; c < 0x7F; ++c) ascii += c;
    return page.Encode(ascii) == ascii && page.Decode(ascii) == ascii;
}

}  // namespace qx

#endif
