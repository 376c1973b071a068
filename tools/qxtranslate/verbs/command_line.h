// The command line of qxtranslate.
#ifndef QXTRANSLATE_VERBS_COMMAND_LINE_H
#define QXTRANSLATE_VERBS_COMMAND_LINE_H

#include <string>
#include <vector>

namespace qx {

// Does what the words behind the program's name ask for. The exit code; throws BadInput when they
// ask for nothing that there is.
int RunCommandLine(std::vector<std::string> words);

}  // namespace qx

#endif
