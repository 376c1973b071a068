// The main program of every test program: GoogleTest, a temporary directory of the program's own,
// and a watchdog that ends a hanging run.
#include "support/scratch_directory.h"

#include <gtest/gtest.h>
#include <qxcore/platform.h>

#include <cstdio>

namespace {

constexpr DWORD kWatchdogMilliseconds = 500 * 1000;
constexpr UINT kHangExitCode = 98;

DWORD WINAPI Watchdog(void*) {
    Sleep(kWatchdogMilliseconds);
    fprintf(stderr, "the test program hangs and is ended\n");
    TerminateProcess(GetCurrentProcess(), kHangExitCode);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    CloseHandle(CreateThread(nullptr, 0, Watchdog, nullptr, 0, nullptr));
    // What the library leaves in the temporary directory, as it is told to, goes with the program;
    // so does what a second process that is killed leaves there, since it inherits the variable.
    ScratchDirectory temporary;
    SetEnvironmentVariableA("TMP", temporary.Path().c_str());
    return RUN_ALL_TESTS();
}
