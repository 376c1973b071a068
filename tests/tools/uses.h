// All that the verbs do with a file of each kind, for tests that give them broken ones.
#ifndef TESTS_TOOLS_USES_H
#define TESTS_TOOLS_USES_H

#include "tools/qxtranslate/model/text/code_page.h"

#include <cstdint>
#include <vector>

enum class FileKind { Program, Translations, Dictionary };

// Whether the file could be used; false when it ended in a sentence.
bool Use(FileKind kind, const std::vector<uint8_t>& file, const qx::CodePage& page);

#endif
