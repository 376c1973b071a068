// Menus that the system loads itself, named by a window class or a dialog template: translated when
// they appear.
#ifndef QXAGENT_WINDOWS_WINDOW_MENUS_H
#define QXAGENT_WINDOWS_WINDOW_MENUS_H

#include <windows.h>

namespace qx {

// Sees every message sent to a window of a watched thread, before the window does.
void TranslateMenusOf(const CWPSTRUCT& message);

// Notes that a menu and those below it are about to go.
void Forget(HMENU menu);

// Notes that a menu is translated already, and answers it.
HMENU Translated(HMENU menu);

}  // namespace qx

#endif
