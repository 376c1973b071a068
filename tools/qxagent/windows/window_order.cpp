#include "tools/qxagent/windows/window_order.h"

#include <algorithm>
#include <map>
#include <mutex>

namespace qx {

namespace {

std::mutex g_mutex;
std::map<HWND, unsigned> g_made;
unsigned g_count = 0;

unsigned NumberOf(HWND window) {
    std::lock_guard<std::mutex> lock(g_mutex);
    auto found = g_made.find(window);
    return found == g_made.end() ? 0 : found->second;
}

BOOL CALLBACK AddVisible(HWND window, LPARAM list) {
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    if (process == GetCurrentProcessId() && IsWindowVisible(window))
        reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
    return TRUE;
}

}  // namespace

void NoteOrder(const CWPSTRUCT& message) {
    if (message.message != WM_NCCREATE && message.message != WM_NCDESTROY) return;
    std::lock_guard<std::mutex> lock(g_mutex);
    if (message.message == WM_NCCREATE) {
        g_made[message.hwnd] = ++g_count;
    } else {
        g_made.erase(message.hwnd);
    }
}

std::vector<HWND> VisibleWindows() {
    std::vector<HWND> windows;
    EnumWindows(AddVisible, reinterpret_cast<LPARAM>(&windows));
    std::sort(windows.begin(), windows.end(),
              [](HWND a, HWND b) { return NumberOf(a) < NumberOf(b); });
    return windows;
}

}  // namespace qx
