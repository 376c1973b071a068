// A program run to its end under a debugger, for what it says through OutputDebugString.
#ifndef QXCORE_TESTS_SUPPORT_DEBUGGED_PROCESS_H
#define QXCORE_TESTS_SUPPORT_DEBUGGED_PROCESS_H

#include <qxcore/platform.h>

#include <string>

struct DebuggedRun {
    bool started = false;
    DWORD exitCode = 0;
    std::string output;  // all debug texts, one after the other
};

DebuggedRun RunDebugged(std::string commandLine);

#endif
