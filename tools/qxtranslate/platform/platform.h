// What the verbs need of the platform.
#ifndef QXTRANSLATE_PLATFORM_PLATFORM_H
#define QXTRANSLATE_PLATFORM_PLATFORM_H

#include "tools/qxtranslate/model/text/code_page.h"

#include <memory>
#include <string>
#include <vector>

namespace qx {

// The code page of this number. Throws BadInput when there is none that a dictionary can be in.
std::unique_ptr<CodePage> OpenCodePage(unsigned number);

// The words of the command line behind the program's name, in UTF-8.
std::vector<std::string> CommandLineWords(int count, char** words);

// Output is UTF-8 with bare line feeds, whatever the platform's habit.
void PrepareOutput();

bool IsErrorTerminal();

}  // namespace qx

#endif
