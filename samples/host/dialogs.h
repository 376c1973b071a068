// The dialogs and message boxes of the program.
#ifndef HOST_DIALOGS_H
#define HOST_DIALOGS_H

#include <qxcore/platform.h>

#include <string>

// The modeless dialog about one task, not shown yet. Its buttons hide it; OK tells the owner, by
// the command ID_TASK_NOTED, that a title stands in it.
HWND CreateTaskDialog(HINSTANCE instance, HWND owner);
std::string TaskTitle(HWND dialog);

// Modal: they return when the user has answered.
void ShowAbout(HINSTANCE instance, HWND owner);
void AskListToOpen(HINSTANCE instance, HWND owner);
// False when the user gave up; else `address` is what he typed.
bool AskForAddress(HINSTANCE instance, HWND owner, std::string& address);
void AskToDelete(HINSTANCE instance, HWND owner);
void TellListIsEmpty(HWND owner);
void TellManualIsMissing(HWND owner);

#endif
