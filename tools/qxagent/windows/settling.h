// Whether the program has done what its messages asked for.
#ifndef QXAGENT_WINDOWS_SETTLING_H
#define QXAGENT_WINDOWS_SETTLING_H

#include <windows.h>

namespace qx {

// Sees every message that a watched thread takes from its queue.
void NoteTaken(const MSG& message);

// Waits until every thread with a window has taken all that was posted to it before, and opens no
// further window; or until it is clear that a thread takes nothing.
void Settle();

}  // namespace qx

#endif
