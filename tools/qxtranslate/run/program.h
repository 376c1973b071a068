// What the verb `run` does.
#ifndef QXTRANSLATE_RUN_PROGRAM_H
#define QXTRANSLATE_RUN_PROGRAM_H

#include <string>
#include <vector>

namespace qx {

struct RunOptions {
    std::vector<std::string> dictionaries;
    std::vector<std::string> modules;
    std::string record;
    std::string dump;
    double after = 3;  // seconds
    std::vector<unsigned> commands;
    bool closes = false;
    bool wideBoxes = false;
    std::vector<std::string> program;  // with its arguments
};

// Starts the program with the agent in it, and waits for its end. Throws BadInput.
void RunProgram(const RunOptions& options);

}  // namespace qx

#endif
