// One mutex spans all processes that use the library, so these tests are a program of their own and
// run alone.
#include "core/lock_child.h"
#include "support/slot.h"

#include <gtest/gtest.h>
#include <qxcore.h>
#include <qxcore/reference.h>

#include <cstring>
#include <string>
#include <thread>

namespace {

constexpr char kMutexName[] = "QX_Fix_Fucking_NT_Bugs_Mutex";

bool MutexExists() {
    HANDLE mutex = OpenMutexA(SYNCHRONIZE, FALSE, kMutexName);
    if (!mutex) return false;
    CloseHandle(mutex);
    return true;
}

// Calls on another thread and answers what the call answered.
template <class Call>
auto OnAnotherThread(Call call) {
    decltype(call()) result{};
    std::thread([&] { result = call(); }).join();
    return result;
}

class ChildProcess {
public:
    explicit ChildProcess(const char* mode)
        : entered(CreateEventA(nullptr, TRUE, FALSE, kEntered)),
          leave(CreateEventA(nullptr, TRUE, FALSE, kLeave)) {
        std::string command = std::string("test_lock_child.exe ") + mode;
        STARTUPINFOA start = {};
        start.cb = sizeof start;
        started = CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr,
                                 nullptr, &start, &info);
        if (started) inside = WaitForSingleObject(entered, 30000) == WAIT_OBJECT_0;
    }
    ~ChildProcess() {
        if (!started) return;
        Leave();
        CloseHandle(info.hThread);
        CloseHandle(info.hProcess);
        CloseHandle(entered);
        CloseHandle(leave);
    }
    void Leave() {
        SetEvent(leave);
        WaitForSingleObject(info.hProcess, 30000);
    }

    bool inside = false;

private:
    HANDLE entered, leave;
    PROCESS_INFORMATION info = {};
    bool started;
};

}  // namespace

TEST(LockTest, ThePlacementFormWithNullMemoryTellsTheSize) {
    int size = 0;
    EXPECT_EQ(_CriticalSection_New_For_Core(nullptr, &size), nullptr);
    EXPECT_GE(size, int(sizeof(CRITICAL_SECTION)) + 4);
    EXPECT_LE(size, 128);
}

TEST(LockTest, ThePlacementFormBuildsInTheGivenMemoryAndIgnoresTheSize) {
    int size = 0;
    _CriticalSection_New_For_Core(nullptr, &size);
    void* memory = ::operator new(size);
    ICritSect* lock = _CriticalSection_New_For_Core(memory, nullptr);
    EXPECT_EQ(static_cast<void*>(lock), memory);
    lock->Enter();
    lock->Leave();
    EXPECT_EQ(lock->Release(), 0u);  // frees the memory through the global delete
}

TEST(LockTest, ALockAnswersNoQueryAndLeavesTheOutPointer) {
    qx::Reference<ICritSect> lock(CriticalSection_New());
    IQXUnknown* out = lock.Get();
    EXPECT_EQ(lock->QueryInterface(qx_typeid<IQXUnknown>(), &out), 0);
    EXPECT_EQ(lock->QueryInterface(qx_typeid<ICritSect>(), &out), 0);
    EXPECT_EQ(lock->QueryInterface(qx_typeid<ICritSect>(), nullptr), 0);
    EXPECT_EQ(out, lock.Get());
}

TEST(LockTest, ALockCountsFromOne) {
    qx::Reference<ICritSect> lock(CriticalSection_New());
    EXPECT_EQ(lock->AddRef(), 2u);
    EXPECT_EQ(lock->Release(), 1u);
}

TEST(LockTest, WithNoLockAliveWaitAllAnswersOneAndWaitReleaseDoesNothing) {
    EXPECT_FALSE(MutexExists());
    EXPECT_EQ(Wait_All(0), 1);
    EXPECT_EQ(OnAnotherThread([] { return Wait_All(0); }), 1);
    Wait_Release();
}

TEST(LockTest, TheMutexComesWithTheFirstLockAndGoesWithTheLast) {
    EXPECT_FALSE(MutexExists());
    qx::Reference<ICritSect> first(CriticalSection_New());
    EXPECT_TRUE(MutexExists());
    qx::Reference<ICritSect> second(CriticalSection_New());
    first.Release();
    EXPECT_TRUE(MutexExists());
    second.Release();
    EXPECT_FALSE(MutexExists());
    qx::Reference<ICritSect> third(CriticalSection_New());
    EXPECT_TRUE(MutexExists());
}

TEST(LockTest, WithAThreadInsideALockWaitAllOnAnotherTimesOut) {
    qx::Reference<ICritSect> lock(CriticalSection_New());
    lock->Enter();
    EXPECT_EQ(OnAnotherThread([] { return Wait_All(0); }), 2);
    lock->Leave();
    EXPECT_EQ(OnAnotherThread([] {
                  int result = Wait_All(0);
                  Wait_Release();
                  return result;
              }),
              1);
}

TEST(LockTest, TheHolderOfAllLocksMayEnterAnyOfThem) {
    qx::Reference<ICritSect> a(CriticalSection_New()), b(CriticalSection_New());
    EXPECT_EQ(Wait_All(0), 1);
    a->Enter();
    b->Enter();
    a->Enter();
    a->Leave();
    b->Leave();
    a->Leave();
    EXPECT_EQ(OnAnotherThread([] { return Wait_All(0); }), 2);
    Wait_Release();
}

TEST(LockTest, WaitAllStopsEnterOnOtherThreadsUntilWaitRelease) {
    qx::Reference<ICritSect> lock(CriticalSection_New());
    qx::Reference<IEvent> entered(Event_New(0));
    ASSERT_EQ(Wait_All(0), 1);
    std::thread other([&] {
        lock->Enter();
        entered->Set();
        lock->Leave();
    });
    EXPECT_EQ(entered->Wait(100), 2);
    Wait_Release();
    EXPECT_EQ(entered->Wait(30000), 1);
    other.join();
}

TEST(LockTest, TheSlotsAreEnterLeaveBehindTheRoots) {
    qx::Reference<ICritSect> lock(CriticalSection_New());
    ICritSect* table = lock.Get();
    Slot<void(void*)>(table, 3)(table);
    EXPECT_EQ(OnAnotherThread([] { return Wait_All(0); }), 2);
    Slot<void(void*)>(table, 4)(table);
    EXPECT_EQ(OnAnotherThread([] {
                  int answer = Wait_All(0);
                  Wait_Release();
                  return answer;
              }),
              1);
}

TEST(LockTest, OneLockHoldsUpEveryOtherLock) {
    qx::Reference<ICritSect> a(CriticalSection_New()), b(CriticalSection_New());
    qx::Reference<IEvent> entered(Event_New(0));
    a->Enter();
    std::thread other([&] {
        b->Enter();
        entered->Set();
        b->Leave();
    });
    EXPECT_EQ(entered->Wait(100), 2);
    a->Leave();
    EXPECT_EQ(entered->Wait(30000), 1);
    other.join();
}

TEST(LockTest, TheMutexSpansProcesses) {
    qx::Reference<ICritSect> lock(CriticalSection_New());
    ChildProcess child(kChildWaits);
    ASSERT_TRUE(child.inside);
    EXPECT_EQ(Wait_All(100), 2);
    child.Leave();
    EXPECT_EQ(Wait_All(30000), 1);
    Wait_Release();
}

TEST(LockTest, AProcessThatDiesInsideALockLeavesItAbandoned) {
    qx::Reference<ICritSect> lock(CriticalSection_New());
    ChildProcess child(kChildDies);
    ASSERT_TRUE(child.inside);
    EXPECT_EQ(Wait_All(0), 2);
    child.Leave();
    EXPECT_EQ(Wait_All(30000), 3);
    Wait_Release();
    EXPECT_EQ(Wait_All(0), 1);
    Wait_Release();
}

TEST(LockTest, AThreadThatDiesInsideALockLeavesItAbandoned) {
    qx::Reference<ICritSect> lock(CriticalSection_New());
    OnAnotherThread([] { return Wait_All(0); });
    EXPECT_EQ(Wait_All(0), 3);
    Wait_Release();
}

TEST(EventTest, ASignalledEventLetsOneWaitThrough) {
    qx::Reference<IEvent> event(Event_New(1));
    EXPECT_EQ(event->Wait(0), 1);
    EXPECT_EQ(event->Wait(0), 2);
}

TEST(EventTest, AnUnsignalledEventTimesOutUntilItIsSet) {
    qx::Reference<IEvent> event(Event_New(0));
    EXPECT_EQ(event->Wait(0), 2);
    EXPECT_NE(event->Set(), 0);
    EXPECT_EQ(event->Wait(0), 1);
    EXPECT_NE(event->Set(), 0);
    EXPECT_NE(event->Reset(), 0);
    EXPECT_EQ(event->Wait(0), 2);
}

TEST(EventTest, AnEventAnswersNoQueryAndCounts) {
    qx::Reference<IEvent> event(Event_New(0));
    IQXUnknown* out = event.Get();
    EXPECT_EQ(event->QueryInterface(qx_typeid<IEvent>(), &out), 0);
    EXPECT_EQ(event->QueryInterface(qx_typeid<IQXUnknown>(), &out), 0);
    EXPECT_EQ(out, event.Get());
    EXPECT_EQ(event->AddRef(), 2u);
    EXPECT_EQ(event->Release(), 1u);
}

TEST(EventTest, TheSlotsAreSetResetWaitBehindTheRoots) {
    qx::Reference<IEvent> event(Event_New(0));
    IEvent* table = event.Get();
    auto set = Slot<int(void*)>(table, 3), reset = Slot<int(void*)>(table, 4);
    auto wait = Slot<int(void*, unsigned)>(table, 5);
    set(table);
    EXPECT_EQ(wait(table, 0), 1);
    set(table);
    reset(table);
    EXPECT_EQ(wait(table, 0), 2);
}

namespace {

std::string ObjName(const char* base, unsigned long threadId) {
    char name[24];
    QXCreateObjName(base, name, threadId);
    return name;
}

const char kHandShakeName[] = "hand-shake";

unsigned SignalAtOnce(void* arg) {
    char name[24];
    QXCreateObjName(kHandShakeName, name, 0);
    HANDLE event = OpenEventA(EVENT_MODIFY_STATE, FALSE, name);
    *static_cast<bool*>(arg) = event != nullptr;
    SetEvent(event);
    CloseHandle(event);
    return 5;
}

unsigned NeverSignal(void*) {
    return 6;
}

DWORD Join(void* thread) {
    DWORD code = 0;
    WaitForSingleObject(thread, 30000);
    GetExitCodeThread(thread, &code);
    CloseHandle(thread);
    return code;
}

}  // namespace

TEST(ThreadTest, TheNameIsTheLowHalfOfThePointerAndTheProcess) {
    auto base = reinterpret_cast<const char*>(uintptr_t(0x1234500000007B));
    std::string process = std::to_string(int(GetCurrentProcessId()));
    EXPECT_EQ(ObjName(base, 1), "123" + process);
    EXPECT_EQ(ObjName(base, 0), "123" + process);
    auto negative = reinterpret_cast<const char*>(uintptr_t(0x7FFFFFFFFF));
    EXPECT_EQ(ObjName(negative, 99), "-1" + process);
}

TEST(ThreadTest, TheNameIsTheSameOnEveryThreadOfTheProcess) {
    std::string here = ObjName(kHandShakeName, 0);
    EXPECT_EQ(OnAnotherThread([] { return ObjName(kHandShakeName, 0); }), here);
}

TEST(ThreadTest, AThreadThatSignalsReleasesItsCreatorEarly) {
    bool found = false;
    unsigned long id = 0;
    DWORD start = GetTickCount();
    void* thread = QXCreateThread(kHandShakeName, SignalAtOnce, &found, &id);
    DWORD spent = GetTickCount() - start;
    ASSERT_NE(thread, nullptr);
    EXPECT_EQ(Join(thread), 5u);
    EXPECT_TRUE(found);
    EXPECT_NE(id, 0u);
    EXPECT_LT(spent, 900u);
}

TEST(ThreadTest, AThreadThatDoesNotSignalDelaysItsCreatorByASecond) {
    DWORD start = GetTickCount();
    void* thread = QXCreateThread("quiet", NeverSignal, nullptr, nullptr);
    DWORD spent = GetTickCount() - start;
    EXPECT_EQ(Join(thread), 6u);
    EXPECT_GE(spent, 950u);
}
