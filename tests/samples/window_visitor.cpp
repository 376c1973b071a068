// window_visitor PROGRAM [ARGUMENT ...]: starts the sample host with its window, chooses a sort
// order and a filter, moves the window, prints where it stood and which choices were checked
// before, and closes it. The exit code is the program's, or 3 when no window came.
#include <qxcore/platform.h>

#include <cstdio>
#include <string>

#include "samples/host/resource.h"

namespace {

struct Search {
    DWORD process;
    HWND found;
};

// The program's own window: others of its class may belong to programs that run beside it.
BOOL CALLBACK LookAt(HWND window, LPARAM search) {
    auto& wanted = *reinterpret_cast<Search*>(search);
    char name[32] = "";
    DWORD process = 0;
    GetClassNameA(window, name, sizeof name);
    GetWindowThreadProcessId(window, &process);
    bool isIt = process == wanted.process && lstrcmpA(name, "TaskListWindow") == 0;
    if (isIt && IsWindowVisible(window)) wanted.found = window;
    return !wanted.found;
}

HWND WaitForWindow(PROCESS_INFORMATION const& process) {
    while (WaitForSingleObject(process.hProcess, 50) == WAIT_TIMEOUT) {
        Search search = {process.dwProcessId, nullptr};
        EnumWindows(LookAt, reinterpret_cast<LPARAM>(&search));
        if (search.found) return search.found;
    }
    return nullptr;
}

void PrintPlace(HWND window) {
    RECT place;
    GetWindowRect(window, &place);
    std::printf("%ld,%ld,%ld,%ld\n", place.left, place.top, place.right, place.bottom);
}

}  // namespace

int main(int count, char** words) {
    std::string command;
    for (int i = 1; i < count; ++i) command += std::string("\"") + words[i] + "\" ";
    STARTUPINFOA start = {};
    start.cb = sizeof start;
    PROCESS_INFORMATION process;
    if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &start, &process))
        return 3;
    HWND window = WaitForWindow(process);
    if (!window) return 3;
    PrintPlace(window);
    SendMessageA(window, WM_COMMAND, ID_VIEW_SORT_TITLE, 0);
    SendMessageA(window, WM_COMMAND, ID_VIEW_SHOW_CLOSED, 0);
    SetWindowPos(window, nullptr, 60, 70, 500, 300, SWP_NOZORDER);
    PostMessageA(window, WM_COMMAND, ID_FILE_EXIT, 0);
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 3;
    GetExitCodeProcess(process.hProcess, &code);
    return static_cast<int>(code);
}
