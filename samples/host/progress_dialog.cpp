#include "progress_dialog.h"

#include <qxcore/reference.h>

#include <objbase.h>

#include <commctrl.h>

#include <cstdio>
#include <exception>
#include <thread>
#include <utility>

#include "resource.h"
#include "window.h"

namespace {

constexpr UINT g_workEnded = WM_APP;
constexpr UINT_PTR g_timer = 1;
constexpr UINT g_refreshMilliseconds = 50;

struct Work {
    std::function<void(WorkProgress&)> run;
    qx::Reference<WorkProgress> progress = qx::Make<WorkProgress>();
    std::thread thread;
    std::exception_ptr failure;
};

// Documents are compound files, which belong to OLE, and OLE is prepared thread by thread.
struct OleForThisThread {
    OleForThisThread() { CoInitialize(nullptr); }
    ~OleForThisThread() { CoUninitialize(); }
};

void Start(Work& work, HWND dialog) {
    work.thread = std::thread([&work, dialog] {
        OleForThisThread ole;
        try {
            work.run(*work.progress.Get());
        } catch (...) {
            work.failure = std::current_exception();
        }
        PostMessageA(dialog, g_workEnded, 0, 0);
    });
}

HINSTANCE InstanceOf(HWND dialog) {
    return reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(dialog, GWLP_HINSTANCE));
}

void Refresh(HWND dialog, Work const& work) {
    int done = work.progress->Done(), total = work.progress->Total();
    if (!total) return;
    SendDlgItemMessageA(dialog, IDC_PROGRESS_BAR, PBM_SETRANGE32, 0, total);
    SendDlgItemMessageA(dialog, IDC_PROGRESS_BAR, PBM_SETPOS, static_cast<WPARAM>(done), 0);
    if (work.progress->IsCancelled()) return;
    char text[256];
    std::snprintf(text, sizeof text, LoadText(InstanceOf(dialog), IDS_READING).c_str(), done,
                  total);
    SetDlgItemTextA(dialog, IDC_PROGRESS_TEXT, text);
}

// The dialog stays until the work has stopped, so that nobody starts the same again beside it.
void Cancel(HWND dialog, Work& work) {
    work.progress->Cancel();
    EnableWindow(GetDlgItem(dialog, IDCANCEL), FALSE);
    SetDlgItemTextA(dialog, IDC_PROGRESS_TEXT, LoadText(InstanceOf(dialog), IDS_STOPPING).c_str());
}

INT_PTR CALLBACK ProgressProc(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    auto work = reinterpret_cast<Work*>(GetWindowLongPtrA(dialog, DWLP_USER));
    switch (message) {
        case WM_INITDIALOG:
            SetWindowLongPtrA(dialog, DWLP_USER, lparam);
            SetTimer(dialog, g_timer, g_refreshMilliseconds, nullptr);
            Start(*reinterpret_cast<Work*>(lparam), dialog);
            return TRUE;
        case WM_TIMER:
            Refresh(dialog, *work);
            return TRUE;
        case WM_COMMAND:
            if (LOWORD(wparam) == IDCANCEL) Cancel(dialog, *work);
            return TRUE;
        case g_workEnded:
            EndDialog(dialog, IDOK);
            return TRUE;
        default:
            return FALSE;
    }
}

}  // namespace

void RunWithProgress(HINSTANCE instance, HWND owner, std::function<void(WorkProgress&)> run) {
    INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_PROGRESS_CLASS};
    InitCommonControlsEx(&controls);
    Work work;
    work.run = std::move(run);
    DialogBoxParamA(instance, MAKEINTRESOURCEA(IDD_PROGRESS), owner, ProgressProc,
                    reinterpret_cast<LPARAM>(&work));
    if (work.thread.joinable()) work.thread.join();
    if (work.failure) std::rethrow_exception(work.failure);
}
