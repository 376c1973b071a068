// Locks and events.
//
// Every lock of the family takes one process-spanning named mutex before its own critical section
// and holds it all the while, so one call of Wait_All stops them all, in this process and in every
// other that uses the library.
#ifndef QXCORE_LOCK_H
#define QXCORE_LOCK_H

#include <qxcore/unknown.h>

// A recursive lock. It answers no query, not even for IQXUnknown, and leaves the out pointer alone.
// Threading: Enter and Leave from any thread, in pairs; counting is plain, as everywhere.
class ICritSect : public IQXUnknown {
public:
    virtual void Enter() = 0;
    virtual void Leave() = 0;

protected:
    ~ICritSect() = default;
};
QX_DECLARE_TYPEID(ICritSect, ".?AVICritSect@@");

// Answers of Wait_All and IEvent::Wait.
enum : int {
    QXWAIT_ACQUIRED =
        1,  // acquired or signalled; also any other result, and for Wait_All: no mutex
    QXWAIT_TIMEOUT = 2,
    QXWAIT_ABANDONED = 3  // acquired from an owner that died
};

// An auto-reset event: one wait passes for each Set. It answers no query, like ICritSect.
// Threading: Set, Reset and Wait from any thread; counting is plain, as everywhere.
class IEvent : public IQXUnknown {
public:
    virtual int Set() = 0;    // the system's result
    virtual int Reset() = 0;  // the system's result
    // Milliseconds, or INFINITE. Answers one of QXWAIT_...
    virtual int Wait(unsigned timeout) = 0;

protected:
    ~IEvent() = default;
};
QX_DECLARE_TYPEID(IEvent, ".?AVIEvent@@");

// A new lock with one reference. Throws CXMemException. Make and release locks on one thread at a
// time.
QXCORE_API ICritSect* CriticalSection_New();
// For callers that manage the memory: with null memory the object's size goes to *size and the
// answer is null; else the lock is built there and `size` is ignored. Its last Release frees the
// memory through the global delete, so the memory comes from `new` or carries its tag word.
QXCORE_API ICritSect* _CriticalSection_New_For_Core(void* memory, int* size);

// Takes the global mutex: until Wait_Release no other thread of any process gets past Enter.
// Milliseconds. Call Wait_Release only after QXWAIT_ACQUIRED or QXWAIT_ABANDONED.
QXCORE_API int Wait_All(int timeout);
QXCORE_API void Wait_Release();

// A new event with one reference; non-zero makes it signalled. Throws CXMemException when the
// system refuses.
QXCORE_API IEvent* Event_New(int initialState);

#endif
