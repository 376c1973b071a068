// The dialogs and message boxes of the program.
#ifndef HOST_DIALOGS_H
#define HOST_DIALOGS_H

#include <qxcore/platform.h>

// The modeless dialog about one task, not shown yet. Its buttons hide it.
HWND CreateTaskDialog(HINSTANCE instance, HWND owner);

// Modal: they return when the user has answered.
void ShowAbout(HINSTANCE instance, HWND owner);
void AskListToOpen(HINSTANCE instance, HWND owner);
void AskToDelete(HINSTANCE instance, HWND owner);
void TellListIsEmpty(HWND owner);
void TellManualIsMissing(HWND owner);

#endif
