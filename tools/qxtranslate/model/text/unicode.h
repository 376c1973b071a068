// Texts are UTF-8 everywhere in the model; resources hold UTF-16.
#ifndef QXTRANSLATE_MODEL_TEXT_UNICODE_H
#define QXTRANSLATE_MODEL_TEXT_UNICODE_H

#include <optional>
#include <string>
#include <string_view>

namespace qx {

// Half a surrogate pair becomes U+FFFD.
std::string ToUtf8(std::u16string_view text);
void AppendUtf8(std::string& text, char32_t character);

// REQUIRES: valid UTF-8.
std::u32string ToUtf32(std::string_view utf8);
std::string ToUtf8(std::u32string_view text);

// Shortest forms only, no surrogates.
bool IsUtf8(std::string_view bytes);

// "\n", "\t", "\r" and "\\" in place of these characters, so that a text stands on one line.
std::string EscapeLine(std::string_view text);
std::string UnescapeLine(std::string_view line);

// ASCII letters only; other characters stay.
std::string LowerAscii(std::string_view text);

}  // namespace qx

#endif
