// Locks, events and threads when memory runs out, or the system has no more of its objects.
#include "support/allocation_failure.h"
#include "support/import_slot.h"

#include <gtest/gtest.h>
#include <qxcore/lock.h>
#include <qxcore/reference.h>
#include <qxcore/thread.h>

namespace {

int Nothing() {
    return 0;
}

HANDLE WINAPI NoEvent(SECURITY_ATTRIBUTES*, BOOL, BOOL, const char*) {
    return nullptr;
}
HANDLE WINAPI NoMutex(SECURITY_ATTRIBUTES*, BOOL, const char*) {
    return nullptr;
}
uintptr_t NoThread(void*, unsigned, unsigned (*)(void*), void*, unsigned, unsigned*) {
    return 0;
}

template <class Function>
void* Address(Function* function) {
    return reinterpret_cast<void*>(function);
}

unsigned AnswersSeven(void*) {
    return 7;
}

}  // namespace

TEST(LockMemoryTest, ALockThatCannotBeMadeDoesNotCount) {
    auto make = [](int) { qx::Reference<ICritSect> lock(CriticalSection_New()); };
    auto check = [](int) {
        EXPECT_EQ(Wait_All(0), QXWAIT_ACQUIRED);
    };  // there is no lock, so no mutex
    EXPECT_EQ(FailEachAllocation(Nothing, make, check), 1u);
}

TEST(LockMemoryTest, ThePlacementFormTakesNoMemory) {
    int size = 0;
    _CriticalSection_New_For_Core(nullptr, &size);
    void* memory = ::operator new(static_cast<size_t>(size));
    FailingAllocation block(1), runtime(1, Memory::runtime);
    qx::Reference<ICritSect> lock(_CriticalSection_New_For_Core(memory, nullptr));
    EXPECT_EQ(lock.Get(), memory);
    EXPECT_FALSE(block.Happened() || runtime.Happened());
}

TEST(LockMemoryTest, LocksWorkWithoutTheMutexWhenTheSystemRefusesIt) {
    ReplacedImport create("CreateMutexA", Address(NoMutex));
    ASSERT_TRUE(create);
    qx::Reference<ICritSect> lock(CriticalSection_New());
    lock->Enter();
    lock->Enter();
    EXPECT_EQ(Wait_All(0), QXWAIT_ACQUIRED);
    Wait_Release();
    lock->Leave();
    lock->Leave();
}

TEST(LockMemoryTest, AnEventThatCannotBeMadeLeavesNothing) {
    auto make = [](int) { qx::Reference<IEvent> event(Event_New(1)); };
    EXPECT_EQ(FailEachAllocation(Nothing, make, [](int) {}), 1u);
}

TEST(LockMemoryTest, AnEventThatTheSystemRefusesIsAMemoryException) {
    ReplacedImport create("CreateEventA", Address(NoEvent));
    ASSERT_TRUE(create);
    long before = LiveBlocks();
    EXPECT_THROW(Event_New(0), CXMemException);
    EXPECT_EQ(LiveBlocks(), before);
}

TEST(LockMemoryTest, AThreadThatTheSystemRefusesIsNull) {
    ReplacedImport begin("_beginthreadex", Address(NoThread));
    ASSERT_TRUE(begin);
    unsigned long id = 1234;
    EXPECT_EQ(QXCreateThread("refused", AnswersSeven, nullptr, &id), nullptr);
    EXPECT_EQ(id, 1234u);
}

TEST(LockMemoryTest, AThreadWithoutItsHandShakeEventRunsAtOnce) {
    ReplacedImport create("CreateEventA", Address(NoEvent));
    ASSERT_TRUE(create);
    void* thread = QXCreateThread("no event", AnswersSeven, nullptr, nullptr);
    ASSERT_NE(thread, nullptr);
    DWORD code = 0;
    EXPECT_EQ(WaitForSingleObject(thread, 30000), WAIT_OBJECT_0);
    GetExitCodeThread(thread, &code);
    CloseHandle(thread);
    EXPECT_EQ(code, 7u);
}

TEST(LockMemoryTest, StartingAThreadTakesNothingFromTheHeaps) {
    FailingAllocation block(1);
    void* thread = QXCreateThread("no blocks", AnswersSeven, nullptr, nullptr);
    EXPECT_FALSE(block.Happened());
    WaitForSingleObject(thread, 30000);
    CloseHandle(thread);
}
