// Output files that replace their target on Commit.
#include "file/file_fixture.h"

#include <cstring>

namespace {

class OutFileTest : public FileTest {};

void Put(IXFile& file, const std::string& text) {
    file.Write(text.data(), unsigned(text.size()));
}

}  // namespace

TEST_F(OutFileTest, CommitPutsANewFileInPlace) {
    OutFile file = OpenOut(Path("f"));
    Put(*file.Get(), "new content");
    EXPECT_FALSE(Exists(Path("f")));
    EXPECT_EQ(Names().size(), 1u);
    EXPECT_EQ(_strnicmp(Names()[0].c_str(), "QXP", 3), 0);  // three letters of the prefix are used
    file->Commit();
    EXPECT_EQ(ContentOf(Path("f")), "new content");
    EXPECT_EQ(Names(), std::vector<std::string>{"f"});
}

TEST_F(OutFileTest, CommitReplacesTheTarget) {
    MakeFile("f", "old content, which is longer");
    OutFile file = OpenOut(Path("f"));
    Put(*file.Get(), "new");
    EXPECT_EQ(ContentOf(Path("f")), "old content, which is longer");
    file->Commit();
    file.Release();
    EXPECT_EQ(ContentOf(Path("f")), "new");
    EXPECT_EQ(Names(), std::vector<std::string>{"f"});
    EXPECT_EQ(Fio_LockCount(Path("f").c_str()), 0);
}

TEST_F(OutFileTest, ASecondCommitDoesNothing) {
    OutFile file = OpenOut(Path("f"));
    Put(*file.Get(), "new");
    file->Commit();
    Overwrite(Path("f"), "changed since");
    file->Commit();
    EXPECT_EQ(ContentOf(Path("f")), "changed since");
}

TEST_F(OutFileTest, ReleaseWithoutCommitLeavesTheTargetAndRemovesTheTemporary) {
    MakeFile("f", "old");
    OutFile file = OpenOut(Path("f"));
    Put(*file.Get(), std::string(3 * kChunk, 'n'));
    EXPECT_EQ(Fio_LockCount(Path("f").c_str()), 1);
    file.Release();
    EXPECT_EQ(ContentOf(Path("f")), "old");
    EXPECT_EQ(Names(), std::vector<std::string>{"f"});
    EXPECT_EQ(Fio_LockCount(Path("f").c_str()), 0);
    EXPECT_EQ(TryOpen(Path("f"), GENERIC_READ | GENERIC_WRITE, 0), 0u);
}

TEST_F(OutFileTest, ReleaseWithoutCommitOfAMissingTargetLeavesNothing) {
    OutFile file = OpenOut(Path("f"));
    Put(*file.Get(), "new");
    file.Release();
    EXPECT_EQ(Names(), std::vector<std::string>{});
}

TEST_F(OutFileTest, KeepStartsWithTheOldContentAndAppends) {
    std::string old = Pattern(kChunk + 100);
    MakeFile("f", old);
    OutFile file = OpenOut(Path("f"), QXFIO_KEEP);
    EXPECT_EQ(file->Tell(), old.size());
    EXPECT_EQ(file->GetLength(), old.size());
    Put(*file.Get(), "appended");
    file->Seek(0, 0);
    EXPECT_EQ(file->ReadByte(), static_cast<unsigned char>(old[0]));
    EXPECT_EQ(ContentOf(Path("f")) == old, true);
    file->Commit();
    EXPECT_EQ(ContentOf(Path("f")) == old + "appended", true);
}

TEST_F(OutFileTest, KeepWithAMissingTargetStartsEmpty) {
    OutFile file = OpenOut(Path("f"), QXFIO_KEEP);
    EXPECT_EQ(file->GetLength(), 0u);
    Put(*file.Get(), "new");
    file->Commit();
    EXPECT_EQ(ContentOf(Path("f")), "new");
}

TEST_F(OutFileTest, AbandoningAKeptFileLeavesTheOldContent) {
    MakeFile("f", "old");
    Put(*OpenOut(Path("f"), QXFIO_KEEP).Get(), "lost");
    EXPECT_EQ(ContentOf(Path("f")), "old");
    EXPECT_EQ(Names(), std::vector<std::string>{"f"});
}

TEST_F(OutFileTest, EveryDataOperationReachesTheFile) {
    OutFile file = OpenOut(Path("f"));
    file->WriteByte(1);
    file->WriteShort(2);
    file->WriteLong(3);
    file->WriteDouble(4.5);
    file->WriteString("ab\ncd");
    EXPECT_EQ(file->Tell(), 21u);
    EXPECT_EQ(file->GetLength(), 21u);
    EXPECT_NE(file->Flush(), 0);
    EXPECT_EQ(file->Seek(0, 0), 0u);
    EXPECT_EQ(file->ReadByte(), 1u);
    EXPECT_EQ(file->ReadShort(), 2u);
    EXPECT_EQ(file->ReadLong(), 3u);
    EXPECT_EQ(file->ReadDouble(), 4.5);
    char line[8];
    EXPECT_EQ(file->ReadLine(line, 7), 2);
    char rest[8] = {};
    EXPECT_EQ(file->Read(rest, 8), 3u);
    EXPECT_STREQ(rest, "cd");
}

TEST_F(OutFileTest, GetPathAnswersTheTargetAndFailuresNameTheTemporary) {
    OutFile file = OpenOut(Path("f"));
    EXPECT_STREQ(file->GetPath(), Path("f").c_str());
    Failure end = FailureOf([&] { file->ReadByte(); });
    EXPECT_EQ(end.code, QXERR_EOF);
    EXPECT_EQ(end.name, Path(Names()[0]));
    file->Commit();
    EXPECT_STREQ(file->GetPath(), Path("f").c_str());
}

TEST_F(OutFileTest, DataOperationsAfterCommitAreBadUse) {
    OutFile file = OpenOut(Path("f"));
    file->Commit();
    EXPECT_EQ(FailureOf([&] { file->WriteByte(1); }), (Failure{QXERR_BAD_USE, -1, ""}));
    EXPECT_EQ(FailureOf([&] { file->GetLength(); }), (Failure{QXERR_BAD_USE, -1, ""}));
}

TEST_F(OutFileTest, AReadOnlyTargetIsAPlainExceptionOfCodeNine) {
    std::string path = MakeFile("f", "old");
    SetReadOnly(path, true);
    EXPECT_EQ(FailureOf([&] { OpenOut(path); }), (Failure{QXERR_ACCESS_DENIED, -1, ""}));
    EXPECT_EQ(ContentOf(path), "old");
    EXPECT_EQ(Names(), std::vector<std::string>{"f"});
}

TEST_F(OutFileTest, AMissingDirectoryIsAPlainExceptionOfCodeSeven) {
    EXPECT_EQ(FailureOf([&] { OpenOut(Path("none\\f")); }), (Failure{QXERR_BAD_NAME, -1, ""}));
    MakeFile("plain", "");
    EXPECT_EQ(FailureOf([&] { OpenOut(Path("plain\\f")); }), (Failure{QXERR_BAD_NAME, -1, ""}));
}

TEST_F(OutFileTest, ADirectoryTooLongForTemporaryNamesIsAPlainExceptionOfCodeTwo) {
    DeepDirectory deep(Directory(), 250);
    EXPECT_EQ(FailureOf([&] { OpenOut(deep.Path() + "\\f"); }), (Failure{QXERR_MEMORY, -1, ""}));
    DeepDirectory deeper(Directory(), 600);
    EXPECT_EQ(FailureOf([&] { OpenOut(deeper.Path() + "\\f"); }), (Failure{QXERR_MEMORY, -1, ""}));
    EXPECT_TRUE(deep.IsEmpty());
    EXPECT_TRUE(deeper.IsEmpty());
}

TEST_F(OutFileTest, APathWithoutDirectoryMakesItsTemporaryInTheCurrentOne) {
    char old[MAX_PATH];
    GetCurrentDirectoryA(MAX_PATH, old);
    SetCurrentDirectoryA(Directory().c_str());
    OutFile file = OpenOut("f");
    EXPECT_EQ(Names().size(), 1u);
    Put(*file.Get(), "new");
    file->Commit();
    SetCurrentDirectoryA(old);
    EXPECT_EQ(ContentOf(Path("f")), "new");
}

TEST_F(OutFileTest, TheTargetIsLockedWhileItIsBeingReplaced) {
    std::string path = MakeFile("f", "old");
    OutFile file = OpenOut(path);
    EXPECT_EQ(TryOpen(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE),
              DWORD(ERROR_SHARING_VIOLATION));
    EXPECT_EQ(TryOpen(path, GENERIC_READ, FILE_SHARE_READ), 0u);
    file->Commit();
    EXPECT_EQ(TryOpen(path, GENERIC_WRITE, 0), 0u);
}

TEST_F(OutFileTest, AfterCommitTheLockOfOthersHoldsTheNewFile) {
    std::string path = MakeFile("f", "old");
    Fio_LockFile(path.c_str());
    OutFile file = OpenOut(path);
    EXPECT_EQ(Fio_LockCount(path.c_str()), 2);
    Put(*file.Get(), "new");
    file->Commit();
    EXPECT_EQ(Fio_LockCount(path.c_str()), 1);
    EXPECT_EQ(ContentOf(path), "new");
    EXPECT_EQ(TryOpen(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE),
              DWORD(ERROR_SHARING_VIOLATION));
    Fio_UnlockFile(path.c_str());
    EXPECT_EQ(TryOpen(path, GENERIC_WRITE, 0), 0u);
}

TEST_F(OutFileTest, ATargetThatAnotherProcessHoldsStaysAndTheNewContentStaysBesideIt) {
    std::string path = MakeFile("f", "old");
    OutFile file = OpenOut(path);
    Put(*file.Get(), "new");
    HANDLE other = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                               0, nullptr);
    Failure failure = FailureOf([&] { file->Commit(); });
    EXPECT_EQ(failure, (Failure{QXERR_SHARING, QXOP_DELETE_FILE, path}));
    CloseHandle(other);
    file.Release();
    EXPECT_EQ(ContentOf(path), "old");
    ASSERT_EQ(Names().size(), 2u);
    EXPECT_EQ(ContentOf(Path(Names()[0] == "f" ? Names()[1] : Names()[0])), "new");
    EXPECT_EQ(Fio_LockCount(path.c_str()), 0);
}

TEST_F(OutFileTest, ATargetThatVanishedIsMadeByCommitAndKeepsTheLockOfTheFile) {
    std::string path = MakeFile("f", "old");
    OutFile file = OpenOut(path);
    Put(*file.Get(), "new");
    Fio_ChangeNELock(path.c_str(), 1);
    DeleteFileA(path.c_str());
    file->Commit();
    EXPECT_EQ(ContentOf(path), "new");
    EXPECT_EQ(Fio_LockCount(path.c_str()), 1);
    EXPECT_EQ(TryOpen(path, GENERIC_WRITE, 3), DWORD(ERROR_SHARING_VIOLATION));
    Fio_UnlockFile(path.c_str());
}

TEST_F(OutFileTest, ATargetThatVanishedKeepsTheLockOfAnAbandonedFileToo) {
    std::string path = MakeFile("f", "old");
    OutFile file = OpenOut(path);
    Fio_ChangeNELock(path.c_str(), 1);
    DeleteFileA(path.c_str());
    file.Release();
    EXPECT_TRUE(Names().empty());
    EXPECT_EQ(Fio_LockCount(path.c_str()), 1);
    Fio_UnlockFile(path.c_str());
}

TEST_F(OutFileTest, ATargetThatAppearedIsReplacedAndLosesOneLock) {
    std::string path = Path("f");
    Fio_LockFile(path.c_str());
    OutFile file = OpenOut(path);
    Put(*file.Get(), "new");
    MakeFile("f", "of somebody else");
    file->Commit();
    EXPECT_EQ(ContentOf(path), "new");
    EXPECT_EQ(Fio_LockCount(path.c_str()), 0);
    EXPECT_EQ(TryOpen(path, GENERIC_WRITE, 0), 0u);
}

TEST_F(OutFileTest, ATargetThatIsOpenElsewhereIsReplacedOnceItIsClosed) {
    std::string path = MakeFile("f", "old");
    HANDLE reader = CreateFileA(path.c_str(), GENERIC_READ, 7, nullptr, OPEN_EXISTING, 0, nullptr);
    OutFile file = OpenOut(path);
    EXPECT_EQ(Fio_LockCount(path.c_str()), 0);
    Put(*file.Get(), "new");
    CloseHandle(reader);
    file->Commit();
    EXPECT_EQ(ContentOf(path), "new");
    EXPECT_EQ(Fio_LockCount(path.c_str()), 0);
}

// The inner file takes its temporary with it, so Commit deletes the target and finds nothing to
// rename.
TEST_F(OutFileTest, TheTemporaryFlagLosesTheFileOnCommit) {
    MakeFile("f", "old");
    OutFile file = OpenOut(Path("f"), QXFIO_TEMPORARY);
    Put(*file.Get(), "new");
    Failure failure = FailureOf([&] { file->Commit(); });
    EXPECT_EQ(failure.code, QXERR_NOT_FOUND);
    EXPECT_EQ(failure.operation, int(QXOP_RENAME));
    file.Release();
    EXPECT_EQ(Names(), std::vector<std::string>{});
}

TEST_F(OutFileTest, TheLookupKnowsIXOutFileAndTheRootOnly) {
    OutFile file = OpenOut(Path("f"));
    IQXUnknown* out = nullptr;
    EXPECT_EQ(file->QueryInterface(qx_typeid<IXOutFile>(), &out), 1);
    EXPECT_EQ(out, file.Get());
    out->Release();
    EXPECT_EQ(file->QueryInterface(qx_typeid<IQXUnknown>(), &out), 1);
    out->Release();
    EXPECT_EQ(file->QueryInterface(qx_typeid<IXFile>(), nullptr), 0);
}

TEST_F(OutFileTest, TheLastReferenceAbandonsAndTheOthersDoNot) {
    IXOutFile* file = Fio_OpenOut(Path("f").c_str(), 0);
    EXPECT_EQ(file->AddRef(), 2u);
    EXPECT_EQ(file->Release(), 1u);
    EXPECT_EQ(Names().size(), 1u);
    EXPECT_EQ(file->Release(), 0u);
    EXPECT_EQ(Names().size(), 0u);
}
