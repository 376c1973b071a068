// qxtranslate: the translator's workbench.
#include "tools/qxtranslate/platform/platform.h"
#include "tools/qxtranslate/verbs/command_line.h"
#include "tools/qxtranslate/verbs/verbs.h"

#include <cstdio>
#include <exception>

int main(int count, char** words) {
    qx::PrepareOutput();
    try {
        return qx::RunCommandLine(qx::CommandLineWords(count, words));
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "qxtranslate: %s\n", failure.what());
        return qx::kFailure;
    }
}
