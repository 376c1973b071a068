// What is wrong with the translations of a PO file.
#ifndef QXTRANSLATE_MODEL_TRANSLATION_CHECKS_H
#define QXTRANSLATE_MODEL_TRANSLATION_CHECKS_H

#include "tools/qxtranslate/model/po/file.h"
#include "tools/qxtranslate/model/text/code_page.h"

namespace qx {

enum class Severity { Error, Warning };

struct Finding {
    Severity severity;
    unsigned line;      // of the PO file
    std::string check;  // one word for the kind
    std::string source;
    std::string message;
};

// In the order of the lines. Fuzzy and obsolete entries are passed over. Without a code page what
// depends on one is left out.
std::vector<Finding> Check(const PoFile& po, const CodePage* page);

}  // namespace qx

#endif
