#include "core/lock_child.h"

#include <qxcore.h>

#include <cstring>

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    HANDLE entered = OpenEventA(EVENT_MODIFY_STATE, FALSE, kEntered);
    HANDLE leave = OpenEventA(SYNCHRONIZE, FALSE, kLeave);
    ICritSect* lock = CriticalSection_New();
    lock->Enter();
    SetEvent(entered);
    WaitForSingleObject(leave, 30000);
    if (strcmp(argv[1], kChildDies) == 0) TerminateProcess(GetCurrentProcess(), 3);
    lock->Leave();
    lock->Release();
    return 0;
}
