#include "support/debugged_process.h"

namespace {

std::string TextOf(HANDLE process, const OUTPUT_DEBUG_STRING_INFO& info) {
    std::string text(info.nDebugStringLength, '\0');
    SIZE_T read = 0;
    ReadProcessMemory(process, info.lpDebugStringData, text.data(), text.size(), &read);
    text.resize(read);
    return text.c_str();
}

}  // namespace

DebuggedRun RunDebugged(std::string commandLine) {
    DebuggedRun run;
    STARTUPINFOA start = {};
    start.cb = sizeof start;
    PROCESS_INFORMATION process;
    if (!CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE,
                        DEBUG_ONLY_THIS_PROCESS, nullptr, nullptr, &start, &process)) {
        return run;
    }
    run.started = true;
    DEBUG_EVENT event;
    while (WaitForDebugEvent(&event, 60000)) {
        DWORD answer = DBG_CONTINUE;
        if (event.dwDebugEventCode == OUTPUT_DEBUG_STRING_EVENT) {
            run.output += TextOf(process.hProcess, event.u.DebugString);
        } else if (event.dwDebugEventCode == EXCEPTION_DEBUG_EVENT) {
            bool breakpoint =
                event.u.Exception.ExceptionRecord.ExceptionCode == EXCEPTION_BREAKPOINT;
            if (!breakpoint) answer = DBG_EXCEPTION_NOT_HANDLED;
        }
        bool ended = event.dwDebugEventCode == EXIT_PROCESS_DEBUG_EVENT;
        if (ended) run.exitCode = event.u.ExitProcess.dwExitCode;
        ContinueDebugEvent(event.dwProcessId, event.dwThreadId, answer);
        if (ended) break;
    }
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return run;
}
