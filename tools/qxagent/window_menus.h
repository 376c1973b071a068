// Menus that the system loads itself, named by a window class or a dialog template: translated when
// they appear.
#ifndef QXAGENT_WINDOW_MENUS_H
#define QXAGENT_WINDOW_MENUS_H

#include <windows.h>

namespace qx {

// Any thread may be watched, at most once.
void WatchMenusOf(DWORD thread);

// Notes that a menu is translated already, and answers it.
HMENU Translated(HMENU menu);

}  // namespace qx

#endif
