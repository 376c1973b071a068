// What a program shows that comes from the system and not from its own resources.
#ifndef QXTRANSLATE_MODEL_PROGRAM_SYSTEM_TEXTS_H
#define QXTRANSLATE_MODEL_PROGRAM_SYSTEM_TEXTS_H

#include <functional>
#include <string>
#include <vector>

namespace qx {

// A sentence for each source of such texts, with what a translator can do about it. `reaches` tells
// whether the program gets at a function of this name.
std::vector<std::string> TellSystemTexts(const std::function<bool(const std::string&)>& reaches);

}  // namespace qx

#endif
