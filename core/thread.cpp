#include <qxcore/platform.h>
#include <qxcore/thread.h>

#include <cassert>
#include <cstdint>
#include <cstdio>
#include <process.h>

namespace {

constexpr size_t kObjNameSize = 24;
constexpr DWORD kHandShakeMilliseconds = 1000;

}  // namespace

// The name has two numbers; the thread's id, which every caller knows, is not one of them.
void QXCreateObjName(const char* base, char* out, unsigned long) {
    assert(out);
    int number = static_cast<int>(reinterpret_cast<intptr_t>(base));
    sprintf(out, "%i%i", number, static_cast<int>(GetCurrentProcessId()));
}

void* QXCreateThread(const char* name, unsigned (*proc)(void*), void* arg,
                     unsigned long* threadId) {
    unsigned id = 0;
    // On 64-bit Windows all calling conventions are one, so the procedure goes to the runtime as it
    // is.
    auto thread =
        reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, proc, arg, CREATE_SUSPENDED, &id));
    if (!thread) return nullptr;
    char eventName[kObjNameSize];
    QXCreateObjName(name, eventName, id);
    HANDLE started = CreateEventA(nullptr, TRUE, FALSE, eventName);
    ResumeThread(thread);
    WaitForSingleObject(started, kHandShakeMilliseconds);
    CloseHandle(started);
    if (threadId) *threadId = id;
    return thread;
}
