#include "tools/qxagent/windows/settling.h"

#include "tools/qxagent/windows/window_order.h"

#include <atomic>
#include <set>
#include <vector>

namespace qx {

namespace {

// A message that nobody else minds, told from others by its number.
constexpr UINT kMark = WM_NULL;
constexpr WPARAM kMarkNumber = 0x51584147;
constexpr DWORD kStep = 20;
constexpr ULONGLONG kPatience = 10000;

std::atomic<size_t> g_taken;

std::set<DWORD> ThreadsOf(const std::vector<HWND>& windows) {
    std::set<DWORD> threads;
    for (HWND window : windows) threads.insert(GetWindowThreadProcessId(window, nullptr));
    threads.erase(0);
    return threads;
}

// Posts a mark behind all that waits in each queue. False when the time is up before all are taken.
bool AwaitMarks(const std::set<DWORD>& threads, ULONGLONG deadline) {
    g_taken = 0;
    size_t posted = 0;
    for (DWORD thread : threads) posted += PostThreadMessageW(thread, kMark, kMarkNumber, 0) != 0;
    while (g_taken < posted) {
        if (GetTickCount64() > deadline) return false;
        Sleep(kStep);
    }
    return true;
}

}  // namespace

void NoteTaken(const MSG& message) {
    if (!message.hwnd && message.message == kMark && message.wParam == kMarkNumber) ++g_taken;
}

void Settle() {
    ULONGLONG deadline = GetTickCount64() + kPatience;
    std::vector<HWND> before, now = VisibleWindows();
    do {
        before = now;
        // What the first round's messages have posted is taken in the second.
        for (int round = 0; round < 2; ++round) {
            if (!AwaitMarks(ThreadsOf(now), deadline)) return;
        }
        now = VisibleWindows();
    } while (now != before && GetTickCount64() <= deadline);
}

}  // namespace qx
