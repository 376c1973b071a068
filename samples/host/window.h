// The main window: a list of tasks under a menu bar.
#ifndef HOST_WINDOW_H
#define HOST_WINDOW_H

#include <qxcore/platform.h>

#include <string>

struct Settings;

// Shows the window and runs until it is closed; `settings` are what it begins with, and then what
// it ended with. The answer is the exit code.
int RunWindow(HINSTANCE instance, Settings& settings);

// The window, not shown yet.
HWND CreateMainWindow(HINSTANCE instance);

// A text of the string table.
std::string LoadText(HINSTANCE instance, unsigned id);

#endif
