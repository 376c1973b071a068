#include "tools/qxagent/windows/message_watch.h"

#include "tools/qxagent/windows/settling.h"
#include "tools/qxagent/windows/window_menus.h"
#include "tools/qxagent/windows/window_order.h"

namespace qx {

namespace {

LRESULT CALLBACK OnSent(int code, WPARAM wparam, LPARAM lparam) {
    if (code == HC_ACTION) {
        const auto& message = *reinterpret_cast<const CWPSTRUCT*>(lparam);
        NoteOrder(message);
        TranslateMenusOf(message);
    }
    return CallNextHookEx(nullptr, code, wparam, lparam);
}

LRESULT CALLBACK OnTaken(int code, WPARAM wparam, LPARAM lparam) {
    if (code == HC_ACTION && wparam == PM_REMOVE) NoteTaken(*reinterpret_cast<const MSG*>(lparam));
    return CallNextHookEx(nullptr, code, wparam, lparam);
}

}  // namespace

void WatchThread(DWORD thread) {
    SetWindowsHookExW(WH_CALLWNDPROC, OnSent, nullptr, thread);
    SetWindowsHookExW(WH_GETMESSAGE, OnTaken, nullptr, thread);
}

}  // namespace qx
