// pose READY PROGRAM [ARGUMENT ...]
//
// Poses the sample host for a picture: starts it once for each thing to be seen, opens the View
// menu and the dialogs, and puts them side by side. Then it creates the file READY, waits until
// somebody deletes it, and ends what it started. Exit code 0, or 1 with a line on the standard
// error when a window does not come.
#include <vector>

#include "../host/resource.h"
#include "sitter.h"

namespace {

struct Pose {
    unsigned command;
    int x, y;
};

// A dialog of the program and where it stands in the picture. The last one belongs to the run whose
// menu is open, since it alone does not block the window that owns it.
constexpr Pose g_poses[] = {
    {ID_FILE_OPEN, 400, 376},
    {ID_TASK_DELETE, 12, 470},
    {ID_HELP_ABOUT, 12, 290},
    {ID_TASK_PROPERTIES, 540, 12},
};

bool PoseDialog(Sitter const& sitter, Pose const& pose) {
    HWND window = sitter.Window(g_mainClass);
    if (!window) return false;
    Place(window, 12, 12);
    PostMessageA(window, WM_COMMAND, pose.command, 0);
    HWND dialog = sitter.Window(g_dialogClass);
    if (!dialog) return false;
    Place(dialog, pose.x, pose.y);
    Settle(dialog);
    return true;
}

// Opens the third menu and in it the submenu above its last item.
void OpenMenu(HWND window) {
    SetForegroundWindow(window);
    PostMessageA(window, WM_SYSCOMMAND, SC_KEYMENU, 0);
    for (int key : {VK_RIGHT, VK_RIGHT, VK_DOWN, VK_UP, VK_UP, VK_RIGHT}) {
        Settle(window);
        PostMessageA(window, WM_KEYDOWN, static_cast<WPARAM>(key), 1);
    }
    Settle(window);
}

}  // namespace

int main(int count, char** words) {
    if (count < 3) {
        std::fputs("usage: pose READY PROGRAM [ARGUMENT ...]\n", stderr);
        return 1;
    }
    std::string commandLine = CommandLineFrom(2, count, words);
    std::vector<Sitter> sitters;
    for (Pose const& pose : g_poses) {
        sitters.push_back(Sitter::Start(commandLine));
        if (!PoseDialog(sitters.back(), pose)) {
            std::fprintf(stderr, "pose: no window for command %u\n", pose.command);
            return 1;
        }
    }
    OpenMenu(sitters.back().Window(g_mainClass));
    return WaitForPicture(words[1]) ? 0 : 1;
}
