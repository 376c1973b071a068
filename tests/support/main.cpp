// The main program of every test program: GoogleTest, and a watchdog that ends a hanging run.
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
    return RUN_ALL_TESTS();
}
