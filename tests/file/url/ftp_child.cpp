#include "file/url/ftp_child.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

namespace {

constexpr DWORD kMoment = 1500, kMinute = 60000;  // milliseconds

std::string CommandFor(const std::string& operation, const std::string& url,
                       const std::string& local) {
    char program[MAX_PATH];
    GetModuleFileNameA(nullptr, program, MAX_PATH);
    *strrchr(program, '\\') = 0;
    return "\"" + std::string(program) + "\\ftp_peer.exe\" " + operation + " \"" + url + "\" \"" +
           local + "\"";
}

}  // namespace

FtpChild::FtpChild(const std::string& operation, const std::string& url, const std::string& local)
    : m_since(GetTickCount()) {
    std::string command = CommandFor(operation, url, local);
    SECURITY_ATTRIBUTES inherit = {sizeof inherit, nullptr, TRUE};
    HANDLE in;
    CreatePipe(&m_said, &in, &inherit, 0);
    SetHandleInformation(m_said, HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOA start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = in;
    start.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    EXPECT_TRUE(CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                               &start, &m_process))
        << command;
    CloseHandle(in);
}

FtpChild::~FtpChild() {
    Kill();
    CloseHandle(m_said);
    CloseHandle(m_process.hThread);
    CloseHandle(m_process.hProcess);
}

void FtpChild::Kill() {
    TerminateProcess(m_process.hProcess, 9);
    WaitForSingleObject(m_process.hProcess, INFINITE);
}

// A line is a word, the time at which it was said, and the rest.
void FtpChild::Take(const std::string& line) {
    size_t word = line.find(' ');
    char* rest;
    m_since = strtoul(line.c_str() + word, &rest, 10);
    if (line.compare(0, word, "answer") == 0) m_answer = rest + 1;
    if (!m_call.empty()) m_last = m_call;
    m_call = line.compare(0, word, "call") == 0 ? rest + 1 : "";
}

void FtpChild::Listen() {
    char part[512];
    DWORD waiting = 0, read = 0;
    while (PeekNamedPipe(m_said, nullptr, 0, nullptr, &waiting, nullptr) && waiting &&
           ReadFile(m_said, part, std::min<DWORD>(waiting, sizeof part), &read, nullptr))
        m_rest.append(part, read);
    for (size_t end; (end = m_rest.find('\n')) != std::string::npos; m_rest.erase(0, end + 1))
        Take(m_rest.substr(0, end));
}

std::string FtpChild::Outcome(const std::string& staying) {
    for (;;) {
        bool ended = Ended();
        Listen();
        if (!m_answer.empty()) return m_answer;
        bool known = !staying.empty() && m_call == staying;
        if (ended || GetTickCount() - m_since > (known ? kMoment : kMinute)) break;
        Sleep(10);
    }
    return m_call.empty() ? "lost behind " + m_last : "stays in " + m_call;
}

bool FtpChild::Calls(const std::string& name) {
    for (DWORD start = GetTickCount(); GetTickCount() - start < kMinute; Sleep(10)) {
        Listen();
        if (m_call == name) return true;
        if (!m_answer.empty() || Ended()) break;
    }
    return false;
}
