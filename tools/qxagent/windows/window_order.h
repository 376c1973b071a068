// The order in which the program makes its windows; handles do not tell it.
#ifndef QXAGENT_WINDOWS_WINDOW_ORDER_H
#define QXAGENT_WINDOWS_WINDOW_ORDER_H

#include <windows.h>

#include <vector>

namespace qx {

// Sees every message sent to a window of a watched thread.
void NoteOrder(const CWPSTRUCT& message);

// The visible top-level windows of this process, in the order of their making.
std::vector<HWND> VisibleWindows();

}  // namespace qx

#endif
