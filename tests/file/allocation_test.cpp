// The file layer when memory runs out: null where the heap gives none, and nothing lost, locked or
// left behind.
#include "file/file_fixture.h"
#include "support/allocation_failure.h"

namespace {

class FileAllocationTest : public FileTest {
protected:
    // Runs an operation with each of its allocations failing. A null file counts as the failure it
    // is.
    template <class Act, class Check>
    static unsigned FailEach(Act act, Check check) {
        return FailEachAllocation([] { return 0; }, [&](int) { act(); }, [&](int) { check(); });
    }
    template <class F>
    static F NotNull(F file) {
        if (!file) throw CXMemException();
        return file;
    }
};

}  // namespace

TEST_F(FileAllocationTest, OpenAnswersNullForEachAllocationThatFails) {
    std::string path = MakeFile("f", "abc");
    auto check = [&] { EXPECT_EQ(TryOpen(path, GENERIC_READ | GENERIC_WRITE, 0), 0u); };
    EXPECT_GT(FailEach([&] { NotNull(Open(path)); }, check), 0u);
    EXPECT_GT(FailEach([&] { NotNull(Open("fmem::16,4")); }, check), 0u);
    EXPECT_GT(FailEach([&] { NotNull(OpenOut("fmem::16,4")); }, check), 0u);
}

TEST_F(FileAllocationTest, AnOutputFileThatFindsNoMemoryLeavesTheOldContentAlone) {
    std::string path = MakeFile("f", "abc");
    auto check = [&] {
        EXPECT_EQ(ContentOf(path), "abc");
        EXPECT_EQ(TryOpen(path, GENERIC_READ | GENERIC_WRITE, 0), 0u);
    };
    EXPECT_GT(FailEach([&] { NotNull(Open(path, QXFIO_OUTPUT | QXFIO_KEEP)); }, check), 0u);
    EXPECT_GT(FailEach([&] { NotNull(Open(Path("new"), QXFIO_OUTPUT)); }, check), 0u);
    DeleteFileA(Path("new").c_str());
}

TEST_F(FileAllocationTest, ATemporaryFileThatFindsNoMemoryIsNull) {
    EXPECT_GT(
        FailEach([&] { NotNull(File(Fio_Open(nullptr, QXFIO_OUTPUT | QXFIO_TEMPORARY))); }, [] {}),
        0u);
}

TEST_F(FileAllocationTest, ANewTargetIsThereWholeOrNotAtAll) {
    std::string path = Path("f");
    auto save = [&] {
        OutFile file = NotNull(OpenOut(path));
        file->Write("new", 3);
        file->Commit();
    };
    EXPECT_GT(FailEach(save, [&] { EXPECT_TRUE(Names().empty()); }), 2u);
    EXPECT_EQ(ContentOf(path), "new");
}

TEST_F(FileAllocationTest, AnOpenThatGivesNullPutsTheLockBack) {
    std::string path = MakeFile("f", "abc");
    Fio_LockFile(path.c_str());
    FailEach([&] { NotNull(Open(path)); },
             [&] {
                 EXPECT_EQ(Fio_LockCount(path.c_str()), 1);
                 EXPECT_EQ(TryOpen(path, GENERIC_WRITE, 3), DWORD(ERROR_SHARING_VIOLATION));
             });
    Fio_UnlockFile(path.c_str());
}

TEST_F(FileAllocationTest, SavingLeavesTheOldContentOrTheNew) {
    std::string path = MakeFile("f", "old");
    auto save = [&] {
        OutFile file = NotNull(OpenOut(path, QXFIO_KEEP));
        file->Write("new", 3);
        file->Commit();
    };
    EXPECT_GT(FailEach(save,
                       [&] {
                           EXPECT_EQ(ContentOf(path), "old");
                           EXPECT_EQ(Names(), std::vector<std::string>{"f"});
                           EXPECT_EQ(Fio_LockCount(path.c_str()), 0);
                       }),
              2u);
    EXPECT_EQ(ContentOf(path), "oldnew");
}

TEST_F(FileAllocationTest, AnOpenFileNeedsNoMoreMemory) {
    std::string path = MakeFile("f", "old");
    OutFile file = OpenOut(path);
    {
        FailingAllocation failing(1);
        for (int i = 0; i < 100000; ++i) file->WriteLong(7);
        file->Seek(0, 0);
        file->ReadDouble();
        char line[101];
        file->ReadLine(line, 100);
        file->WriteString("text");
        EXPECT_EQ(file->GetLength(), 400000u);
        EXPECT_NE(file->Flush(), 0);
        EXPECT_THROW(file->Seek(0, 9), CXFileException);
        file->Commit();
        EXPECT_FALSE(failing.Happened());
    }
    file.Release();
    EXPECT_EQ(SizeOnDisk(path), 400000u);
}

TEST_F(FileAllocationTest, ALockThatFindsNoMemoryIsNotTaken) {
    std::string path = MakeFile("f", "abc");
    auto lockAndUnlock = [&] {
        Fio_LockFile(path.c_str());
        Fio_UnlockFile(path.c_str());
    };
    EXPECT_GT(FailEach(lockAndUnlock, [&] { EXPECT_EQ(Fio_LockCount(path.c_str()), 0); }), 0u);
}

TEST_F(FileAllocationTest, OperationsOnPathsNeedNoMemory) {
    std::string path = MakeFile("f", "abc"), directory = Path("directory");
    std::string copy = Path("copy"), moved = Path("moved"), missing = Path("missing");
    CreateDirectoryA(directory.c_str(), nullptr);
    Fio_LockFile(path.c_str());
    FailingAllocation failing(1);
    FioFileInfo info;
    Fio_GetFileInfo(path.c_str(), &info);
    EXPECT_EQ(Fio_IsFileExist(missing.c_str()), 0);
    EXPECT_EQ(Fio_IsWritableFile(path.c_str()), 1);
    Fio_CopyFile(path.c_str(), copy.c_str(), 0);
    Fio_RenameFile(copy.c_str(), moved.c_str());
    Fio_DeleteFile(moved.c_str());
    EXPECT_THROW(Fio_DeleteFile(moved.c_str()), CXFileException);
    Fio_DeleteDirectory(directory.c_str());
    Fio_LockFile(path.c_str());
    EXPECT_EQ(Fio_LockCount(path.c_str()), 2);
    Fio_ChangeNELock(path.c_str(), 1);
    Fio_ChangeNELock(path.c_str(), 0);
    Fio_UnlockFile(path.c_str());
    Fio_UnlockFile(path.c_str());
    DeleteFileA(Fio_GetTempFileName());
    EXPECT_EQ(Fio_PathIsURL("http://host/"), 1);
    EXPECT_FALSE(failing.Happened());
}

TEST_F(FileAllocationTest, AMemoryFileIsNotFoundWithoutMemoryForTheTextOfItsNumbers) {
    FioFileInfo info;
    EXPECT_GT(FailEach([&] { Fio_GetFileInfo("fmem::16,4", &info); }, [] {}), 0u);
    FailingAllocation failing(1);
    EXPECT_EQ(Fio_IsFileExist("fmem::16,4"), 0);
}

TEST_F(FileAllocationTest, CreateDirectoryGoesOnWhereItStopped) {
    FailEach([&] { Fio_CreateDirectory(Path("upper\\lower").c_str()); }, [] {});
    EXPECT_EQ(NamesIn(Path("upper")), std::vector<std::string>{"lower"});
}
