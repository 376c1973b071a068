#include "file/url/ftp_child.h"

#include <gtest/gtest.h>
#include <qxcore/platform.h>

#include <cstring>

namespace {

std::string ReadAll(HANDLE pipe) {
    std::string text;
    char part[512];
    DWORD read = 0;
    while (ReadFile(pipe, part, sizeof part, &read, nullptr) && read) text.append(part, read);
    return text;
}

}  // namespace

std::string OutcomeOf(const std::string& operation, const std::string& url,
                      const std::string& local, unsigned seconds) {
    char program[MAX_PATH];
    GetModuleFileNameA(nullptr, program, MAX_PATH);
    *strrchr(program, '\\') = 0;
    std::string command = "\"" + std::string(program) + "\\ftp_peer.exe\" " + operation + " \"" +
                          url + "\" \"" + local + "\"";
    SECURITY_ATTRIBUTES inherit = {sizeof inherit, nullptr, TRUE};
    HANDLE out, in;
    CreatePipe(&out, &in, &inherit, 0);
    SetHandleInformation(out, HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOA start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = in;
    start.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION process = {};
    EXPECT_TRUE(CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                               &start, &process))
        << command;
    CloseHandle(in);
    bool ended = WaitForSingleObject(process.hProcess, seconds * 1000) == WAIT_OBJECT_0;
    if (!ended) {
        TerminateProcess(process.hProcess, 9);
        WaitForSingleObject(process.hProcess, INFINITE);
    }
    std::string said = ReadAll(out);
    DWORD code = 0;
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(out);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return !ended ? "hangs" : code ? "crashed" : said;
}
