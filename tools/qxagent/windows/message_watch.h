// What the agent sees of the messages of the program's threads.
#ifndef QXAGENT_WINDOWS_MESSAGE_WATCH_H
#define QXAGENT_WINDOWS_MESSAGE_WATCH_H

#include <windows.h>

namespace qx {

// Any thread may be watched, at most once.
void WatchThread(DWORD thread);

}  // namespace qx

#endif
