// A run of the sample host that sits for a picture.
#ifndef POSE_SITTER_H
#define POSE_SITTER_H

#include <windows.h>

#include <cstdio>
#include <cstring>
#include <string>

inline constexpr const char* g_mainClass = "TaskListWindow";
inline constexpr const char* g_dialogClass = "#32770";
inline constexpr DWORD g_patience = 30000;

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
        Sleep(1);
    return answer;
}

struct WindowSearch {
    DWORD process;
    const char* className;
    HWND found;
};

inline BOOL CALLBACK CompareWindow(HWND window, LPARAM lparam) {
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

    DWORD ProcessId() const { return m_id; }

private:
    explicit Sitter(PROCESS_INFORMATION const& process)
        : m_process(process.hProcess), m_id(process.dwProcessId) {}

    Handle m_process;
    DWORD m_id;
};

inline void Place(HWND window, int x, int y) {
    SetWindowPos(window, HWND_TOP, x, y, 0, 0, SWP_NOSIZE);
}

// Gives a window's thread the time to do what was posted to it, painting included.
inline void Settle(HWND window) {
    Sleep(200);
    DWORD_PTR answer;
    SendMessageTimeoutA(window, WM_NULL, 0, 0, SMTO_NORMAL, g_patience, &answer);
}

// Creates the file `ready` and waits until somebody deletes it.
inline bool WaitForPicture(const char* ready) {
    HANDLE file = CreateFileA(ready, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    CloseHandle(file);
    return WaitFor([ready] { return GetFileAttributesA(ready) == INVALID_FILE_ATTRIBUTES; });
}

// The words from `first` on as the command line of a program.
inline std::string CommandLineFrom(int first, int count, char** words) {
    std::string line;
    for (int i = first; i < count; ++i)
        line += std::string(i > first ? " \"" : "\"") + words[i] + "\"";
    return line;
}

#endif
