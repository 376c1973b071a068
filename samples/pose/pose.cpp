// pose READY PROGRAM [ARGUMENT ...]
//
// Poses the sample host for a picture: starts it once for each thing to be seen, opens the View
// menu and the dialogs, and puts them side by side. Then it creates the file READY, waits until
// somebody deletes it, and ends what it started. Exit code 0, or 1 with a line on the standard
// error when a window does not come.
#include <windows.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "../../samples/host/resource.h"

namespace {

constexpr const char* g_mainClass = "TaskListWindow";
constexpr const char* g_dialogClass = "#32770";
constexpr DWORD g_patience = 30000;

class Handle {
public:
    explicit Handle(HANDLE handle) : m_handle(handle) {}
    Handle(Handle&& other) noexcept : m_handle(other.m_handle) { other.m_handle = nullptr; }
    Handle(Handle const&) = delete;
    ~Handle() {
        if (m_handle) CloseHandle(m_handle);
    }
    operator HANDLE() const { return m_handle; }

private:
    HANDLE m_handle;
};

// Asks `ready` again and again until it answers something.
template <class Ready>
auto WaitFor(Ready ready) {
    auto answer = ready();
    for (DWORD start = GetTickCount(); !answer && GetTickCount() - start < g_patience;
         answer = ready())
        Sleep(20);
    return answer;
}

struct WindowSearch {
    DWORD process;
    const char* className;
    HWND found;
};

BOOL CALLBACK CompareWindow(HWND window, LPARAM lparam) {
    auto search = reinterpret_cast<WindowSearch*>(lparam);
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    char className[64] = "";
    GetClassNameA(window, className, sizeof className);
    if (process != search->process || !IsWindowVisible(window) ||
        std::strcmp(className, search->className))
        return TRUE;
    search->found = window;
    return FALSE;
}

// One run of the program, ended with this object.
class Sitter {
public:
    static Sitter Start(std::string commandLine) {
        STARTUPINFOA startup = {};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION process = {};
        CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                       &startup, &process);
        if (process.hThread) CloseHandle(process.hThread);
        return Sitter(process);
    }
    Sitter(Sitter&&) noexcept = default;
    ~Sitter() {
        if (!m_process) return;
        TerminateProcess(m_process, 0);
        WaitForSingleObject(m_process, g_patience);
    }

    // A visible top-level window of the program, or null when none comes.
    HWND Window(const char* className) const {
        return WaitFor([&] {
            WindowSearch search = {m_id, className, nullptr};
            EnumWindows(CompareWindow, reinterpret_cast<LPARAM>(&search));
            return search.found;
        });
    }

private:
    explicit Sitter(PROCESS_INFORMATION const& process)
        : m_process(process.hProcess), m_id(process.dwProcessId) {}

    Handle m_process;
    DWORD m_id;
};

void Place(HWND window, int x, int y) {
    SetWindowPos(window, HWND_TOP, x, y, 0, 0, SWP_NOSIZE);
}

// Gives a window's thread the time to do what was posted to it, painting included.
void Settle(HWND window) {
    Sleep(200);
    DWORD_PTR answer;
    SendMessageTimeoutA(window, WM_NULL, 0, 0, SMTO_NORMAL, g_patience, &answer);
}

struct Pose {
    unsigned command;
    int x, y;
};

// A dialog of the program and where it stands in the picture. The last one belongs to the run whose
// menu is open, since it alone does not block the window that owns it.
constexpr Pose g_poses[] = {
    {ID_FILE_OPEN, 400, 376},
    {ID_TASK_DELETE, 12, 470},
    {ID_HELP_ABOUT, 12, 290},
    {ID_TASK_PROPERTIES, 540, 12},
};

bool PoseDialog(Sitter const& sitter, Pose const& pose) {
    HWND window = sitter.Window(g_mainClass);
    if (!window) return false;
    Place(window, 12, 12);
    PostMessageA(window, WM_COMMAND, pose.command, 0);
    HWND dialog = sitter.Window(g_dialogClass);
    if (!dialog) return false;
    Place(dialog, pose.x, pose.y);
    Settle(dialog);
    return true;
}

// Opens the third menu and in it the submenu above its last item.
void OpenMenu(HWND window) {
    SetForegroundWindow(window);
    PostMessageA(window, WM_SYSCOMMAND, SC_KEYMENU, 0);
    for (int key : {VK_RIGHT, VK_RIGHT, VK_DOWN, VK_UP, VK_UP, VK_RIGHT}) {
        Settle(window);
        PostMessageA(window, WM_KEYDOWN, static_cast<WPARAM>(key), 1);
    }
    Settle(window);
}

bool WaitForPicture(const char* ready) {
    HANDLE file = CreateFileA(ready, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    CloseHandle(file);
    return WaitFor([ready] { return GetFileAttributesA(ready) == INVALID_FILE_ATTRIBUTES; });
}

std::string CommandLineBehind(int count, char** words) {
    std::string line;
    for (int i = 2; i < count; ++i) line += std::string(i > 2 ? " \"" : "\"") + words[i] + "\"";
    return line;
}

}  // namespace

int main(int count, char** words) {
    if (count < 3) {
        std::fputs("usage: pose READY PROGRAM [ARGUMENT ...]\n", stderr);
        return 1;
    }
    std::string commandLine = CommandLineBehind(count, words);
    std::vector<Sitter> sitters;
    for (Pose const& pose : g_poses) {
        sitters.push_back(Sitter::Start(commandLine));
        if (!PoseDialog(sitters.back(), pose)) {
            std::fprintf(stderr, "pose: no window for command %u\n", pose.command);
            return 1;
        }
    }
    OpenMenu(sitters.back().Window(g_mainClass));
    return WaitForPicture(words[1]) ? 0 : 1;
}
