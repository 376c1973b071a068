// Tests that need a process in which nothing has happened yet.
#ifndef QXCORE_TESTS_TRANSLATE_OWN_PROCESS_H
#define QXCORE_TESTS_TRANSLATE_OWN_PROCESS_H

#include <gtest/gtest.h>
#include <qxcore/platform.h>

#include <string>

inline constexpr char kOwnProcessVariable[] = "QXCORE_TEST_OWN_PROCESS";

// Runs a program to its end and answers its exit code.
inline DWORD RunToEnd(std::string commandLine) {
    STARTUPINFOA start = {};
    start.cb = sizeof start;
    PROCESS_INFORMATION process;
    if (!CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                        &start, &process)) {
        return ~0u;
    }
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = ~0u;
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return code;
}

// Whether this process was started for one test. The first process starts it, and answers false.
inline bool IsOwnProcess(DWORD expectedExitCode) {
    if (GetEnvironmentVariableA(kOwnProcessVariable, nullptr, 0)) return true;
    char program[MAX_PATH];
    GetModuleFileNameA(nullptr, program, sizeof program);
    const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
    std::string name = std::string(test->test_suite_name()) + "." + test->name();
    SetEnvironmentVariableA(kOwnProcessVariable, "1");
    std::string commandLine =
        std::string("\"") + program + "\" --gtest_brief=1 --gtest_filter=" + name;
    EXPECT_EQ(RunToEnd(commandLine), expectedExitCode) << name << " in a process of its own";
    SetEnvironmentVariableA(kOwnProcessVariable, nullptr);
    return false;
}

// The first line of such a test.
#define IN_A_PROCESS_OF_ITS_OWN() \
    if (!IsOwnProcess(0)) return

#endif
