// The sample host's user interface in one process: before translation, with it, with the switch off
// and on again, and after the patches are taken back. Prints the texts of each state behind a line
// with its name.
#include <qxcore/translation.h>

#include <fcntl.h>
#include <io.h>

#include <cstdio>

#include "host/dump.h"

namespace {

// The window that the dump destroyed has posted the end of its message loop; the next one must not
// find it.
void ForgetQuit() {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) continue;
}

int DumpState(HINSTANCE instance, const char* state) {
    std::printf("== %s\n", state);
    int failed = DumpInterface(instance);
    ForgetQuit();
    return failed;
}

}  // namespace

int main(int count, char** words) {
    if (count != 2) return 1;
    HINSTANCE instance = GetModuleHandleA(nullptr);
    _setmode(_fileno(stdout), _O_BINARY);

    int failed = DumpState(instance, "before");
    if (!Supp_Init(words[1]) || !Supp_InitResTranslation(instance)) return 2;
    failed |= DumpState(instance, "translated");
    Supp_SetTranslationEnable(0);
    failed |= DumpState(instance, "switched off");
    Supp_SetTranslationEnable(1);
    failed |= DumpState(instance, "switched on");
    _DeInitResTranslation(instance);
    failed |= DumpState(instance, "program restored");
    _DeInitResTranslation(GetModuleHandleA("comdlg32"));
    failed |= DumpState(instance, "system dialog restored");
    return failed;
}
