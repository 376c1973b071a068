// Wide texts of a program and the dictionary's narrow ones.
#ifndef QXAGENT_TEXTS_NARROW_H
#define QXAGENT_TEXTS_NARROW_H

#include <windows.h>

#include <string>
#include <string_view>

namespace qx {

// In the process's code page, as the library makes it.
std::string Narrow(std::wstring_view text);
std::wstring Widen(std::string_view text);

// How many of at most `room` bytes of a text are whole characters.
size_t WholeBytes(std::string_view text, size_t room);

// Whether the dictionary has it for everywhere.
bool HasTranslation(std::wstring_view text);
// The text itself without a translation.
std::wstring TranslatedText(std::wstring_view text);

}  // namespace qx

#endif
