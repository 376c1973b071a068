// Which of the intercepted functions a module calls, and what therefore stays out of reach.
#ifndef QXTRANSLATE_MODEL_PROGRAM_AUDIT_H
#define QXTRANSLATE_MODEL_PROGRAM_AUDIT_H

#include "tools/qxtranslate/model/pe/bytes.h"

#include <string>
#include <vector>

namespace qx {

struct AuditedFunction {
    std::string function;
    std::string way;  // "directly", "delay-loaded", "by ordinal", "only by GetProcAddress"
};

struct Audit {
    std::vector<AuditedFunction> functions;  // of the 24, those that the module uses at all
    std::vector<std::string> sentences;      // what is out of reach, and what a host must mind
};

// Throws BadInput.
Audit AuditModule(Bytes file);

}  // namespace qx

#endif
