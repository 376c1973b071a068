// Locks that keep other programs from writing a document.
#include "file/file_fixture.h"

namespace {

class FileLockTest : public FileTest {
protected:
    // What another process meets when it opens the file for writing, sharing everything.
    static DWORD WriteErrorElsewhere(const std::string& path) {
        return Peer("open \"" + path + "\" 0x40000000 3").ExitCode();
    }
    static DWORD ReadErrorElsewhere(const std::string& path) {
        return Peer("open \"" + path + "\" 0x80000000 1").ExitCode();
    }
    static void Lock(const std::string& path) { Fio_LockFile(path.c_str()); }
    static void Unlock(const std::string& path) { Fio_UnlockFile(path.c_str()); }
    static int Count(const std::string& path) { return Fio_LockCount(path.c_str()); }
    static bool IsHeld(const std::string& path) {
        return TryOpen(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE) ==
               ERROR_SHARING_VIOLATION;
    }
};

}  // namespace

TEST_F(FileLockTest, AnotherProcessReadsALockedFileButDoesNotOpenItForWriting) {
    std::string path = MakeFile("f", "abc");
    EXPECT_EQ(WriteErrorElsewhere(path), 0u);
    Lock(path);
    EXPECT_EQ(WriteErrorElsewhere(path), DWORD(ERROR_SHARING_VIOLATION));
    EXPECT_EQ(ReadErrorElsewhere(path), 0u);
    Unlock(path);
    EXPECT_EQ(WriteErrorElsewhere(path), 0u);
}

TEST_F(FileLockTest, LockingTwiceAndUnlockingOnceKeepsTheHold) {
    std::string path = MakeFile("f", "abc");
    Lock(path);
    Lock(path);
    EXPECT_EQ(Count(path), 2);
    Unlock(path);
    EXPECT_EQ(Count(path), 1);
    EXPECT_TRUE(IsHeld(path));
    Unlock(path);
    EXPECT_EQ(Count(path), 0);
    EXPECT_FALSE(IsHeld(path));
}

TEST_F(FileLockTest, AFileThatAnotherProcessWritesIsNotLockedAndNobodyIsTold) {
    std::string path = MakeFile("f", "abc");
    Peer writer("hold \"" + path + "\" 0x40000000 3");
    ASSERT_TRUE(writer.WaitForWord());
    EXPECT_EQ(FailureOf([&] { Lock(path); }), Failure{});
    EXPECT_EQ(Count(path), 0);
    writer.Continue();
    EXPECT_EQ(writer.ExitCode(), 0u);
    Lock(path);
    EXPECT_EQ(Count(path), 1);
    Unlock(path);
}

TEST_F(FileLockTest, AFileThatAnotherProcessReadsIsNotLockedEither) {
    std::string path = MakeFile("f", "abc");
    Peer reader("hold \"" + path + "\" 0x80000000 7");
    ASSERT_TRUE(reader.WaitForWord());
    Lock(path);
    EXPECT_EQ(Count(path), 0);
}

TEST_F(FileLockTest, TwoProcessesDoNotLockOneFile) {
    std::string path = MakeFile("f", "abc");
    Peer other("lock \"" + path + "\"");
    ASSERT_TRUE(other.WaitForWord());
    Lock(path);
    EXPECT_EQ(Count(path), 0);
    other.Continue();
    EXPECT_EQ(other.ExitCode(), 1u);  // its own count
}

TEST_F(FileLockTest, AProcessThatIsKilledLeavesNoLock) {
    std::string path = MakeFile("f", "abc");
    Peer other("lock \"" + path + "\"");
    ASSERT_TRUE(other.WaitForWord());
    EXPECT_TRUE(IsHeld(path));
    other.Kill();
    Lock(path);
    EXPECT_EQ(Count(path), 1);
    Unlock(path);
}

TEST_F(FileLockTest, AMissingFileGetsARecordAndNoHold) {
    Lock(Path("f"));
    EXPECT_EQ(Count(Path("f")), 1);
    std::string path = MakeFile("f", "abc");
    EXPECT_FALSE(IsHeld(path));
    Fio_ChangeNELock(path.c_str(), 0);  // the next time it is taken, the file is there
    EXPECT_TRUE(IsHeld(path));
    Unlock(path);
    EXPECT_FALSE(IsHeld(path));
}

TEST_F(FileLockTest, OpeningALockedFileLiftsTheLockForTheLifeOfTheFile) {
    std::string path = MakeFile("f", "abc");
    Lock(path);
    File file = Open(path, QXFIO_OUTPUT | QXFIO_KEEP);
    file->WriteByte('X');
    EXPECT_EQ(Count(path), 1);
    file.Release();
    EXPECT_TRUE(IsHeld(path));
    EXPECT_EQ(ContentOf(path), "Xbc");

    file = Open(path);
    EXPECT_FALSE(IsHeld(path));
    file.Release();
    EXPECT_TRUE(IsHeld(path));
    Unlock(path);
}

TEST_F(FileLockTest, AnOpenThatFailsPutsTheLockBack) {
    std::string path = MakeFile("f", "abc");
    Lock(path);
    HANDLE reader = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_EQ(FailureOf([&] { Open(path, QXFIO_OUTPUT); }).code, QXERR_SHARING);
    CloseHandle(reader);
    Fio_ChangeNELock(path.c_str(), 0);
    EXPECT_EQ(Count(path), 1);
    EXPECT_TRUE(IsHeld(path));
    Unlock(path);

    Lock(Path("none"));
    EXPECT_EQ(FailureOf([&] { Open(Path("none")); }).code, QXERR_NOT_FOUND);
    EXPECT_EQ(Count(Path("none")), 1);
    Unlock(Path("none"));
}

TEST_F(FileLockTest, LiftingIsNotCounted) {
    std::string path = MakeFile("f", "abc");
    Lock(path);
    Fio_ChangeNELock(path.c_str(), 1);
    Fio_ChangeNELock(path.c_str(), 1);
    EXPECT_FALSE(IsHeld(path));
    EXPECT_EQ(Count(path), 1);
    Fio_ChangeNELock(path.c_str(), 0);
    EXPECT_TRUE(IsHeld(path));
    Fio_ChangeNELock(path.c_str(), 0);
    EXPECT_TRUE(IsHeld(path));
    Unlock(path);
    EXPECT_FALSE(IsHeld(path));
}

TEST_F(FileLockTest, ALiftedLockIsUnlockedToo) {
    std::string path = MakeFile("f", "abc");
    Lock(path);
    Fio_ChangeNELock(path.c_str(), 1);
    Unlock(path);
    EXPECT_EQ(Count(path), 0);
    Fio_ChangeNELock(path.c_str(), 0);
    EXPECT_FALSE(IsHeld(path));
}

TEST_F(FileLockTest, PathsWithoutARecordAreLeftAlone) {
    std::string path = MakeFile("f", "abc");
    Unlock(path);
    Fio_ChangeNELock(path.c_str(), 0);
    Fio_ChangeNELock(path.c_str(), 1);
    EXPECT_EQ(Count(path), 0);
    EXPECT_FALSE(IsHeld(path));
    Fio_LockFile(nullptr);
    Fio_UnlockFile(nullptr);
    Fio_ChangeNELock(nullptr, 1);
    EXPECT_EQ(Fio_LockCount(nullptr), 0);
}

TEST_F(FileLockTest, CaseMakesNoDifferenceToTheRecord) {
    std::string path = MakeFile("some_file", "abc");
    Lock(path);
    EXPECT_EQ(Count(Path("SOME_FILE")), 1);
    Lock(Path("Some_File"));
    EXPECT_EQ(Count(path), 2);
    Unlock(path);
    Unlock(path);
    EXPECT_EQ(Count(Path("Some_File")), 0);
}

// The second spelling meets the hold of the first, as a foreign program would.
TEST_F(FileLockTest, TwoSpellingsOfOneFileAreTwoRecords) {
    std::string path = MakeFile("f", "abc");
    std::string other = Directory() + "\\.\\f";
    Lock(path);
    EXPECT_EQ(Count(other), 0);
    Lock(other);
    EXPECT_EQ(Count(other), 0);
    Fio_ChangeNELock(path.c_str(), 1);
    Lock(other);
    EXPECT_EQ(Count(other), 1);
    EXPECT_EQ(Count(path), 1);
    Unlock(other);
    Unlock(path);
}

TEST_F(FileLockTest, ManyRecordsAreToldApart) {
    std::string names[10];
    for (int i = 0; i < 10; ++i) {
        names[i] = MakeFile("f" + std::to_string(i), "abc");
        for (int times = 0; times <= i; ++times) Lock(names[i]);
    }
    for (int i : {5, 0, 9, 3}) {
        EXPECT_EQ(Count(names[i]), i + 1);
        for (int times = 0; times <= i; ++times) Unlock(names[i]);
        EXPECT_EQ(Count(names[i]), 0);
    }
    for (int i : {1, 2, 4, 6, 7, 8}) {
        EXPECT_EQ(Count(names[i]), i + 1);
        EXPECT_TRUE(IsHeld(names[i]));
        for (int times = 0; times <= i; ++times) Unlock(names[i]);
        EXPECT_FALSE(IsHeld(names[i]));
    }
}

TEST_F(FileLockTest, TheSwitchAnswersItsOldValue) {
    EXPECT_EQ(Fio_EnableLocking(0), 1);
    EXPECT_EQ(Fio_EnableLocking(7), 0);
    EXPECT_EQ(Fio_EnableLocking(1), 7);
}

TEST_F(FileLockTest, ADisabledSwitchLocksOrdinaryFilesAllTheSame) {
    std::string path = MakeFile("f", "abc");
    Fio_EnableLocking(0);
    Lock(path);
    EXPECT_EQ(Count(path), 1);
    EXPECT_TRUE(IsHeld(path));
    Unlock(path);
    Lock("fmem::1,2");
    EXPECT_EQ(Count("fmem::1,2"), 0);
    Fio_EnableLocking(1);
}

// It "exists" and cannot be opened on a disk, so the lock is not taken.
TEST_F(FileLockTest, AMemoryFileIsNeverLocked) {
    Lock("fmem::1,2");
    EXPECT_EQ(Count("fmem::1,2"), 0);
}

TEST_F(FileLockTest, IsWritableFileLiftsTheLockOnlyForItself) {
    std::string path = MakeFile("f", "abc");
    Lock(path);
    EXPECT_EQ(Fio_IsWritableFile(path.c_str()), 1);
    EXPECT_TRUE(IsHeld(path));
    Unlock(path);
}
