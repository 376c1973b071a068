#include "modal_reader.h"

#include <utility>

namespace {

constexpr const char* g_ownProcedure = "ModalReader";

// Stands before a dialog's own window procedure and lets nobody show the window.
LRESULT CALLBACK StayHidden(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    auto own = reinterpret_cast<WNDPROC>(GetPropA(window, g_ownProcedure));
    LRESULT result = CallWindowProcW(own, window, message, wparam, lparam);
    if (message == WM_WINDOWPOSCHANGING) {
        reinterpret_cast<WINDOWPOS*>(lparam)->flags &= ~static_cast<UINT>(SWP_SHOWWINDOW);
    } else if (message == WM_NCDESTROY) {
        RemovePropA(window, g_ownProcedure);
    }
    return result;
}

void KeepHidden(HWND window) {
    auto own = SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(StayHidden));
    SetPropA(window, g_ownProcedure, reinterpret_cast<HANDLE>(own));
}

}  // namespace

ModalReader* ModalReader::s_current = nullptr;

ModalReader::ModalReader(std::function<void(HWND)> read) : m_read(std::move(read)) {
    s_current = this;
    m_hook = SetWindowsHookExA(WH_CALLWNDPROCRET, AfterMessage, nullptr, GetCurrentThreadId());
}

ModalReader::~ModalReader() {
    UnhookWindowsHookEx(m_hook);
    s_current = nullptr;
}

LRESULT CALLBACK ModalReader::AfterMessage(int code, WPARAM wparam, LPARAM lparam) {
    auto sent = reinterpret_cast<CWPRETSTRUCT const*>(lparam);
    if (code == HC_ACTION && sent->message == WM_INITDIALOG &&
        !(GetWindowLongA(sent->hwnd, GWL_STYLE) & WS_CHILD)) {
        KeepHidden(sent->hwnd);
        s_current->m_read(sent->hwnd);
        EndDialog(sent->hwnd, IDCANCEL);
    }
    return CallNextHookEx(nullptr, code, wparam, lparam);
}
