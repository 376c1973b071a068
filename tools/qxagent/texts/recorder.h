// Writes the record: a line for each text that the program looked up.
#ifndef QXAGENT_TEXTS_RECORDER_H
#define QXAGENT_TEXTS_RECORDER_H

#include <windows.h>

#include <string>
#include <string_view>

namespace qx {

// Hears of every look-up of the library from now on. False when the file cannot be opened; `failed`
// is set when a line cannot be written later.
bool StartRecord(const wchar_t* path, HANDLE failed);
bool IsRecording();

// A look-up that the agent makes itself. `key` is a context key, or empty.
void TellText(const char* function, HMODULE module, const std::string& key, std::wstring_view text,
              std::wstring_view translation);

}  // namespace qx

#endif
