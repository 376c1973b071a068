// What a program imports, and what it may look up by name while it runs.
#ifndef QXTRANSLATE_MODEL_PE_IMPORTS_H
#define QXTRANSLATE_MODEL_PE_IMPORTS_H

#include "tools/qxtranslate/model/pe/image.h"

#include <string>
#include <unordered_set>
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

// The narrow texts of the file that could be names, in whole: one that the program looks up by name
// stands among them.
std::unordered_set<std::string> CollectNames(const PeImage& image);

// The libraries among these imports, in lower case, without those on which the system itself
// stands.
std::vector<std::string> ImportedLibraries(const std::vector<Import>& imports);

// The libraries that the program may load while it runs, in lower case and without the same ones:
// names of such files among its wide texts; also among its narrow ones where the name tells that
// the library is there for what it shows.
std::vector<std::string> NamedLibraries(const PeImage& image);

}  // namespace qx

#endif
