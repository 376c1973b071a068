// What a program imports, and what it may look up by name while it runs.
#ifndef QXTRANSLATE_MODEL_PE_IMPORTS_H
#define QXTRANSLATE_MODEL_PE_IMPORTS_H

#include "tools/qxtranslate/model/pe_image.h"

#include <string>
#include <vector>

namespace qx {

struct Import {
    std::string library;
    std::string function;  // empty for one by ordinal
    unsigned ordinal = 0;
    bool isDelayed = false;
};

// Directly and delay-loaded. Throws BadInput when a table reaches beyond the file.
std::vector<Import> ReadImports(const PeImage& image);

// Whether the bytes of the name, with a terminator, stand anywhere in the file: as the argument of
// a look-up by name does.
bool HoldsName(const PeImage& image, const std::string& name);

}  // namespace qx

#endif
