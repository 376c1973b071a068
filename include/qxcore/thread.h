// Threads that start with a hand-shake. Threading: any thread.
#ifndef QXCORE_THREAD_H
#define QXCORE_THREAD_H

#include <qxcore/export.h>

// Starts `proc(arg)` and waits up to one second for the event named by QXCreateObjName(name, ...,
// the thread's id). A procedure that is ready earlier opens that event by the same `name` pointer
// and sets it. The caller owns the thread handle; null when the thread could not be made.
// `threadId` may be null.
QXCORE_API void* QXCreateThread(const char* name, unsigned (*proc)(void*), void* arg,
                                unsigned long* threadId);

// Writes the name of a kernel object: the low 32 bits of the pointer `base` as a number, then the
// process id. The text behind the pointer and the thread's id do not enter, so both sides must pass
// the same pointer. REQUIRES: out has room for 24 characters.
QXCORE_API void QXCreateObjName(const char* base, char* out, unsigned long threadId);

#endif
