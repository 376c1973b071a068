#include "dialogs.h"

#include <commdlg.h>

#include <mbstring.h>

#include <cstdio>

#include "resource.h"
#include "window.h"

namespace {

HINSTANCE InstanceOf(HWND dialog) {
    return reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(dialog, GWLP_HINSTANCE));
}

// Turns the bars of a filter from the string table into the NUL bytes that the system wants.
void EndAtBars(std::string& filter) {
    auto at = reinterpret_cast<unsigned char*>(filter.data());
    while ((at = _mbschr(at, '|'))) *at++ = '\0';
}

void FillTaskDialog(HWND dialog) {
    HINSTANCE instance = InstanceOf(dialog);
    SetDlgItemTextA(dialog, IDC_TASK_TITLE, LoadText(instance, IDS_TASK_1).c_str());
    for (unsigned id = IDS_PRIORITY_LOW; id <= IDS_PRIORITY_HIGH; ++id) {
        SendDlgItemMessageA(dialog, IDC_TASK_PRIORITY, LB_ADDSTRING, 0,
                            reinterpret_cast<LPARAM>(LoadText(instance, id).c_str()));
    }
    SendDlgItemMessageA(dialog, IDC_TASK_PRIORITY, LB_SETCURSEL, 1, 0);
    CheckRadioButton(dialog, IDC_TASK_OPEN, IDC_TASK_CLOSED, IDC_TASK_OPEN);
    CheckDlgButton(dialog, IDC_TASK_REMIND, BST_CHECKED);
}

INT_PTR CALLBACK TaskProc(HWND dialog, UINT message, WPARAM wparam, LPARAM) {
    switch (message) {
        case WM_INITDIALOG:
            FillTaskDialog(dialog);
            return TRUE;
        case WM_COMMAND:
            if (LOWORD(wparam) == IDOK || LOWORD(wparam) == IDCANCEL) ShowWindow(dialog, SW_HIDE);
            if (LOWORD(wparam) == IDOK)
                SendMessageA(GetParent(dialog), WM_COMMAND, ID_TASK_NOTED, 0);
            return TRUE;
        default:
            return FALSE;
    }
}

std::string TextOf(HWND dialog, int control) {
    HWND window = GetDlgItem(dialog, control);
    std::string text(static_cast<size_t>(GetWindowTextLengthA(window)) + 1, '\0');
    text.resize(
        static_cast<size_t>(GetWindowTextA(window, text.data(), static_cast<int>(text.size()))));
    return text;
}

INT_PTR CALLBACK ServerProc(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    auto address = reinterpret_cast<std::string*>(GetWindowLongPtrA(dialog, DWLP_USER));
    switch (message) {
        case WM_INITDIALOG:
            SetWindowLongPtrA(dialog, DWLP_USER, lparam);
            SetDlgItemTextA(dialog, IDC_SERVER_ADDRESS, "ftp://");
            return TRUE;
        case WM_COMMAND:
            if (LOWORD(wparam) == IDOK) *address = TextOf(dialog, IDC_SERVER_ADDRESS);
            if (LOWORD(wparam) == IDOK || LOWORD(wparam) == IDCANCEL)
                EndDialog(dialog, LOWORD(wparam));
            return TRUE;
        default:
            return FALSE;
    }
}

INT_PTR CALLBACK AboutProc(HWND dialog, UINT message, WPARAM wparam, LPARAM) {
    switch (message) {
        case WM_INITDIALOG:
            return TRUE;
        case WM_COMMAND:
            if (LOWORD(wparam) == IDC_ABOUT_MANUAL) TellManualIsMissing(dialog);
            if (LOWORD(wparam) == IDOK || LOWORD(wparam) == IDCANCEL) EndDialog(dialog, 0);
            return TRUE;
        default:
            return FALSE;
    }
}

}  // namespace

HWND CreateTaskDialog(HINSTANCE instance, HWND owner) {
    return CreateDialogParamA(instance, MAKEINTRESOURCEA(IDD_TASK), owner, TaskProc, 0);
}

void ShowAbout(HINSTANCE instance, HWND owner) {
    DialogBoxParamA(instance, "About", owner, AboutProc, 0);
}

void AskListToOpen(HINSTANCE instance, HWND owner) {
    std::string filter = LoadText(instance, IDS_FILTER);
    EndAtBars(filter);
    char file[MAX_PATH] = "";
    OPENFILENAMEA open = {};
    open.lStructSize = sizeof open;
    open.hwndOwner = owner;
    open.lpstrFilter = filter.c_str();
    open.lpstrFile = file;
    open.nMaxFile = sizeof file;
    open.lpstrInitialDir = "C:\\";
    open.Flags = OFN_EXPLORER | OFN_NOCHANGEDIR;
    GetOpenFileNameA(&open);
}

bool AskForAddress(HINSTANCE instance, HWND owner, std::string& address) {
    return DialogBoxParamA(instance, MAKEINTRESOURCEA(IDD_SERVER), owner, ServerProc,
                           reinterpret_cast<LPARAM>(&address)) == IDOK;
}

std::string TaskTitle(HWND dialog) {
    return TextOf(dialog, IDC_TASK_TITLE);
}

void AskToDelete(HINSTANCE instance, HWND owner) {
    char question[512];
    std::snprintf(question, sizeof question, LoadText(instance, IDS_DELETE_QUESTION).c_str(),
                  LoadText(instance, IDS_TASK_2).c_str());
    MessageBoxA(owner, question, LoadText(instance, IDS_DELETE_TASK).c_str(),
                MB_OKCANCEL | MB_ICONQUESTION);
}

void TellListIsEmpty(HWND owner) {
    MessageBoxA(owner, "The list of recent files is empty.", nullptr, MB_OK | MB_ICONERROR);
}

void TellManualIsMissing(HWND owner) {
    MessageBoxA(owner, "There is no manual yet.\nThe program is small enough without.", "Task List",
                MB_OK | MB_ICONINFORMATION);
}
