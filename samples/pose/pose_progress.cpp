// pose_progress READY ADDRESS PROGRAM [ARGUMENT ...]
//
// Lets the sample host open the document at ADDRESS as a user would, and poses it twice: with the
// progress bar half way, the loading held, and after Cancel. For each picture it creates the file
// READY and waits until somebody deletes it. Exit code 0, or 1 with a line on the standard error.
#include "sitter.h"

#include <commctrl.h>
#include <tlhelp32.h>

#include <memory>
#include <vector>

#include "../host/resource.h"

namespace {

// All threads of a program but that of its windows, held still for a scope.
class HeldWork {
public:
    HeldWork(DWORD process, HWND window) {
        DWORD windowThread = GetWindowThreadProcessId(window, nullptr);
        Handle all(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
        THREADENTRY32 thread = {};
        thread.dwSize = sizeof thread;
        for (BOOL more = Thread32First(all, &thread); more; more = Thread32Next(all, &thread)) {
            if (thread.th32OwnerProcessID != process || thread.th32ThreadID == windowThread)
                continue;
            m_threads.emplace_back(OpenThread(THREAD_SUSPEND_RESUME, FALSE, thread.th32ThreadID));
            SuspendThread(m_threads.back());
        }
    }
    ~HeldWork() {
        for (Handle const& thread : m_threads) ResumeThread(thread);
    }
    HeldWork(HeldWork const&) = delete;
    HeldWork& operator=(HeldWork const&) = delete;

private:
    std::vector<Handle> m_threads;
};

int Fail(const char* what) {
    std::fprintf(stderr, "pose_progress: %s\n", what);
    return 1;
}

// A visible dialog of the program that has this control.
HWND DialogWith(Sitter const& sitter, int control) {
    return WaitFor([&] {
        HWND dialog = sitter.Window(g_dialogClass);
        return dialog && GetDlgItem(dialog, control) ? dialog : nullptr;
    });
}

// Whether the dialog has drawn what its work has told. A lock that the held work has may keep it
// from that.
bool HasCaughtUp(HWND dialog) {
    constexpr DWORD kTimerAndMore = 80;
    constexpr UINT kHung = 500;
    Sleep(kTimerAndMore);
    DWORD_PTR answer;
    return SendMessageTimeoutA(dialog, WM_NULL, 0, 0, SMTO_ABORTIFHUNG, kHung, &answer) != 0;
}

bool IsHalfWay(HWND bar) {
    auto done = SendMessageA(bar, PBM_GETPOS, 0, 0);
    auto total = SendMessageA(bar, PBM_GETRANGE, FALSE, 0);
    return total > 0 && done * 2 >= total;
}

// Lets the work run for moments until the bar is half way, and holds it there; null when the dialog
// goes before.
std::unique_ptr<HeldWork> HoldHalfWay(DWORD process, HWND dialog) {
    constexpr DWORD kMoment = 5;
    HWND bar = GetDlgItem(dialog, IDC_PROGRESS_BAR);
    while (IsWindow(dialog)) {
        auto held = std::make_unique<HeldWork>(process, dialog);
        if (HasCaughtUp(dialog) && IsHalfWay(bar)) return held;
        held.reset();
        Sleep(kMoment);
    }
    return nullptr;
}

}  // namespace

int main(int count, char** words) {
    if (count < 4) return Fail("usage: pose_progress READY ADDRESS PROGRAM [ARGUMENT ...]");
    Sitter sitter = Sitter::Start(CommandLineFrom(3, count, words));
    HWND window = sitter.Window(g_mainClass);
    if (!window) return Fail("the program shows no window");
    Place(window, 12, 12);
    PostMessageA(window, WM_COMMAND, ID_FILE_SERVER, 0);

    HWND question = DialogWith(sitter, IDC_SERVER_ADDRESS);
    if (!question) return Fail("nobody asks for an address");
    SetDlgItemTextA(question, IDC_SERVER_ADDRESS, words[2]);
    PostMessageA(question, WM_COMMAND, IDOK, 0);

    HWND progress = DialogWith(sitter, IDC_PROGRESS_BAR);
    if (!progress) return Fail("no progress is shown");
    auto held = HoldHalfWay(sitter.ProcessId(), progress);
    if (!held) return Fail("the bar does not come half way");
    Place(progress, 60, 60);
    Settle(progress);
    if (!WaitForPicture(words[1])) return Fail("nobody takes the first picture");
    held.reset();
    PostMessageA(progress, WM_COMMAND, IDCANCEL, 0);
    if (!WaitFor([progress] { return !IsWindow(progress); })) return Fail("Cancel does not help");
    Settle(window);
    return WaitForPicture(words[1]) ? 0 : Fail("nobody takes the second picture");
}
