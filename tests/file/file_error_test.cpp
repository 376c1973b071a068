// What becomes of the failures of the operating system.
#include "file/file_fixture.h"
#include "support/import_slot.h"

namespace {

class FileErrorTest : public FileTest {};

struct ErrorRow {
    int code;
    std::vector<DWORD> errors;
};

const ErrorRow kRows[] = {
    {6, {2}},
    {7, {3, 15, 20, 55, 67, 123, 161, 206, 1203, 1214}},
    {14, {4}},
    {9, {5, 19, 65}},
    {2, {8, 14, 84, 1130}},
    {12, {21, 23, 25, 27, 30, 132, 267, 1006, 1117, 1126, 1127, 1128, 1392, 1393}},
    {8, {32, 33, 108}},
    {4, {38}},
    {3, {39, 112}},
    {13, {50, 53, 54, 58, 64, 70, 88, 1201, 1204, 1206, 1222, 6118}},
};

int CodeOf(DWORD error) {
    for (const ErrorRow& row : kRows) {
        if (std::find(row.errors.begin(), row.errors.end(), error) != row.errors.end())
            return row.code;
    }
    return 11;
}

DWORD g_error;

template <class... A>
HANDLE WINAPI FailingCreateFile(A...) {
    SetLastError(g_error);
    return INVALID_HANDLE_VALUE;
}
constexpr auto kFailingCreateFile =
    &FailingCreateFile<LPCSTR, DWORD, DWORD, LPSECURITY_ATTRIBUTES, DWORD, DWORD, HANDLE>;

HANDLE WINAPI FailingCreateMapping(HANDLE, LPSECURITY_ATTRIBUTES, DWORD, DWORD, DWORD, LPCSTR) {
    SetLastError(g_error);
    return nullptr;
}

void* WINAPI FailingMapView(HANDLE, DWORD, DWORD, DWORD, SIZE_T) {
    SetLastError(g_error);
    return nullptr;
}

UINT WINAPI FailingTempName(LPCSTR, LPCSTR, UINT, LPSTR) {
    SetLastError(g_error);
    return 0;
}

BOOL WINAPI FailingCall(void*) {
    SetLastError(g_error);
    return FALSE;
}

const void* g_keptView;

BOOL WINAPI FailingUnmap(const void* view) {
    g_keptView = view;
    SetLastError(g_error);
    return FALSE;
}

template <class Function>
void* Address(Function* function) {
    return reinterpret_cast<void*>(function);
}

}  // namespace

TEST_F(FileErrorTest, EveryErrorOfTheTableHasItsCodeAndTheOthersHaveEleven) {
    std::string path = MakeFile("f", "abc");
    for (DWORD error = 0; error < 7000; ++error) {
        ReplacedImport failing("CreateFileA", Address(kFailingCreateFile));
        ASSERT_TRUE(failing);
        g_error = error;
        ASSERT_EQ(FailureOf([&] { Open(path); }), (Failure{CodeOf(error), 1, path}))
            << "error " << error;
    }
}

TEST_F(FileErrorTest, OutputFailuresNameTheModeWrite) {
    ReplacedImport failing("CreateFileA", Address(kFailingCreateFile));
    g_error = ERROR_DISK_FULL;
    EXPECT_EQ(FailureOf([&] { Open(Path("f"), QXFIO_OUTPUT); }),
              (Failure{QXERR_DISK_FULL, 2, Path("f")}));
}

TEST_F(FileErrorTest, TheTemporaryFileOfOpenOutHasCodesOfItsOwn) {
    ReplacedImport failing("GetTempFileNameA", Address(&FailingTempName));
    ASSERT_TRUE(failing);
    for (DWORD error = 0; error < 2000; ++error) {
        int code = 2;
        if (error == 5) code = 9;
        if (error >= 64 && error <= 67) code = 13;
        for (DWORD badName : {3, 53, 123, 161, 267}) code = error == badName ? 7 : code;
        g_error = error;
        ASSERT_EQ(FailureOf([&] { OpenOut(Path("f")); }), (Failure{code, -1, ""}))
            << "error " << error;
    }
}

TEST_F(FileErrorTest, AMappingThatFailsAtOpenClosesTheFile) {
    std::string path = MakeFile("f", "abc");
    for (const char* call : {"CreateFileMappingA", "MapViewOfFile"}) {
        void* failing = call[0] == 'C' ? Address(&FailingCreateMapping) : Address(&FailingMapView);
        for (int flags : {0, QXFIO_OUTPUT | QXFIO_KEEP}) {
            ReplacedImport replaced(call, failing);
            ASSERT_TRUE(replaced);
            g_error = ERROR_NOT_ENOUGH_MEMORY;
            EXPECT_EQ(FailureOf([&] { Open(path, flags); }),
                      (Failure{QXERR_MEMORY, flags ? 2 : 1, path}))
                << call;
            EXPECT_EQ(TryOpen(path, GENERIC_READ | GENERIC_WRITE, 0), 0u) << call;
            EXPECT_EQ(ContentOf(path), "abc") << call;  // not as long as a chunk
        }
    }
}

TEST_F(FileErrorTest, AViewThatCannotMoveIsMovedAgainByTheNextRead) {
    std::string text = Pattern(2 * kChunk);
    std::string path = MakeFile("f", text);
    File file = Open(path);
    std::string buffer(kChunk + 100, '\0');
    {
        ReplacedImport failing("MapViewOfFile", Address(&FailingMapView));
        g_error = ERROR_NOT_ENOUGH_MEMORY;
        EXPECT_EQ(FailureOf([&] { file->Read(buffer.data(), kChunk + 100); }),
                  (Failure{QXERR_MEMORY, 1, path}));
        EXPECT_EQ(file->Tell(), kChunk);  // what the old view held was read
        EXPECT_EQ(FailureOf([&] { file->ReadByte(); }), (Failure{QXERR_MEMORY, 1, path}));
        file->Seek(0, 0);
        EXPECT_EQ(FailureOf([&] { file->ReadByte(); }), (Failure{QXERR_MEMORY, 1, path}));
        EXPECT_NE(file->Flush(), 0);  // no view, nothing to do
    }
    EXPECT_EQ(file->Read(buffer.data(), kChunk + 100), kChunk + 100);
    EXPECT_EQ(buffer == text.substr(0, kChunk + 100), true);
}

TEST_F(FileErrorTest, ADiskThatIsFullWhileAFileGrowsKeepsWhatWasWritten) {
    std::string text = Pattern(kChunk + 10);
    File file = Open(Path("f"), QXFIO_OUTPUT);
    {
        ReplacedImport failing("CreateFileMappingA", Address(&FailingCreateMapping));
        g_error = ERROR_DISK_FULL;
        EXPECT_EQ(FailureOf([&] { file->Write(text.data(), kChunk + 10); }),
                  (Failure{QXERR_DISK_FULL, 2, Path("f")}));
        EXPECT_EQ(file->GetLength(), kChunk);
    }
    file->Write(text.data() + kChunk, 10);
    file.Release();
    EXPECT_EQ(ContentOf(Path("f")) == text, true);
}

TEST_F(FileErrorTest, AFullDiskUnderOpenOutLeavesTheTargetAsItWas) {
    std::string path = MakeFile("f", "old");
    OutFile file = OpenOut(path);
    std::string text = Pattern(kChunk + 10);
    {
        ReplacedImport failing("CreateFileMappingA", Address(&FailingCreateMapping));
        g_error = ERROR_DISK_FULL;
        EXPECT_EQ(FailureOf([&] { file->Write(text.data(), kChunk + 10); }).code, QXERR_DISK_FULL);
        file.Release();
    }
    EXPECT_EQ(ContentOf(path), "old");
    EXPECT_EQ(Names(), std::vector<std::string>{"f"});
    EXPECT_EQ(Fio_LockCount(path.c_str()), 0);
}

TEST_F(FileErrorTest, AConstructorOfAnOutputFileThatFailsLeavesNoTemporaryAndNoLock) {
    std::string path = MakeFile("f", "old");
    {
        ReplacedImport failing("CreateFileMappingA", Address(&FailingCreateMapping));
        g_error = ERROR_DISK_FULL;
        EXPECT_EQ(FailureOf([&] { OpenOut(path); }).code, QXERR_DISK_FULL);
        EXPECT_EQ(FailureOf([&] { OpenOut(path, QXFIO_KEEP); }).code, QXERR_DISK_FULL);
        EXPECT_EQ(FailureOf([&] { OpenOut(Path("missing")); }).code, QXERR_DISK_FULL);
    }
    EXPECT_EQ(ContentOf(path), "old");
    EXPECT_EQ(Names(), std::vector<std::string>{"f"});
    EXPECT_EQ(Fio_LockCount(path.c_str()), 0);
    EXPECT_EQ(TryOpen(path, GENERIC_WRITE, 0), 0u);
}

TEST_F(FileErrorTest, AFileThatCannotBeCutIsCodeTwoAndTheObjectIsGone) {
    IXFile* file = Fio_Open(Path("f").c_str(), QXFIO_OUTPUT);
    file->WriteByte(1);
    {
        ReplacedImport failing("SetEndOfFile", Address(&FailingCall));
        ASSERT_TRUE(failing);
        g_error = ERROR_DISK_FULL;
        EXPECT_EQ(FailureOf([&] { file->Release(); }), (Failure{QXERR_MEMORY, 2, Path("f")}));
    }
    EXPECT_EQ(TryOpen(Path("f"), GENERIC_READ, 0), 0u);
}

TEST_F(FileErrorTest, AViewThatCannotBeUnmappedIsCodeTwoOnRelease) {
    IXFile* file = Fio_Open(MakeFile("f", "abc").c_str(), 0);
    {
        ReplacedImport failing("UnmapViewOfFile", Address(&FailingUnmap));
        g_error = ERROR_INVALID_ADDRESS;
        EXPECT_EQ(FailureOf([&] { file->Release(); }), (Failure{QXERR_MEMORY, 1, Path("f")}));
    }
    EXPECT_TRUE(UnmapViewOfFile(g_keptView));
}

TEST_F(FileErrorTest, AnOutputFileThatCannotBeClosedWholeIsAbandonedByCommit) {
    std::string path = MakeFile("f", "old");
    OutFile file = OpenOut(path);
    file->WriteByte(1);
    {
        ReplacedImport failing("SetEndOfFile", Address(&FailingCall));
        g_error = ERROR_DISK_FULL;
        EXPECT_EQ(FailureOf([&] { file->Commit(); }).code, QXERR_MEMORY);
    }
    file->Commit();
    file.Release();
    EXPECT_EQ(ContentOf(path), "old");
    EXPECT_EQ(Names(), std::vector<std::string>{"f"});
    EXPECT_EQ(Fio_LockCount(path.c_str()), 0);
}

TEST_F(FileErrorTest, AnAbandonedFileThatCannotBeClosedWholeGoesAllTheSame) {
    std::string path = MakeFile("f", "old");
    OutFile file = OpenOut(path);
    file->WriteByte(1);
    ReplacedImport failing("SetEndOfFile", Address(&FailingCall));
    g_error = ERROR_DISK_FULL;
    EXPECT_EQ(FailureOf([&] { file.Release(); }), Failure{});
    EXPECT_EQ(Names(), std::vector<std::string>{"f"});
    EXPECT_EQ(Fio_LockCount(path.c_str()), 0);
}

TEST_F(FileErrorTest, FlushTellsAFailure) {
    File file = Open(Path("f"), QXFIO_OUTPUT);
    ReplacedImport failing("FlushViewOfFile", Address(&FailingCall));
    ASSERT_TRUE(failing);
    EXPECT_EQ(file->Flush(), 0);
}

// The same rows, as far as the platform can be brought to them.
TEST_F(FileErrorTest, FailuresOfTheRealPlatformHaveTheirCodes) {
    EXPECT_EQ(FailureOf([&] { Open(Path("none")); }).code, QXERR_NOT_FOUND);
    EXPECT_EQ(FailureOf([&] { Open(Path("none\\f")); }).code, QXERR_BAD_NAME);
    EXPECT_EQ(FailureOf([&] { Open(Path("a*b")); }).code, QXERR_BAD_NAME);
    EXPECT_EQ(FailureOf([&] { Open(Path("a<b"), QXFIO_OUTPUT); }).code, QXERR_BAD_NAME);
    EXPECT_EQ(FailureOf([&] { Open(Path(std::string(300, 'n'))); }).code, QXERR_BAD_NAME);
    EXPECT_EQ(FailureOf([&] { Open(Directory()); }).code, QXERR_ACCESS_DENIED);
    EXPECT_EQ(FailureOf([&] { Open(Directory(), QXFIO_OUTPUT); }).code, QXERR_ACCESS_DENIED);
    HANDLE held = CreateFileA(MakeFile("f", "abc").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                              0, nullptr);
    EXPECT_EQ(FailureOf([&] { Open(Path("f")); }).code, QXERR_SHARING);
    CloseHandle(held);
}

TEST_F(FileErrorTest, FailuresOfRealOperationsHaveTheirCodesAndNames) {
    std::string file = MakeFile("f", "abc"), other = MakeFile("g", "def"), directory = Path("d"),
                none = Path("none");
    std::string held = MakeFile("held", "ghi"), below = file + "\\x";
    CreateDirectoryA(directory.c_str(), nullptr);
    CreateDirectoryA((directory + "\\sub").c_str(), nullptr);
    HANDLE holder = CreateFileA(held.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    auto expect = [](auto operation, int code, int number, const std::string& name) {
        EXPECT_EQ(FailureOf(operation), (Failure{code, number, name}));
    };
    expect([&] { Fio_DeleteFile(none.c_str()); }, QXERR_NOT_FOUND, 7, none);
    expect([&] { Fio_DeleteFile(directory.c_str()); }, QXERR_ACCESS_DENIED, 7, directory);
    expect([&] { Fio_DeleteFile(held.c_str()); }, QXERR_SHARING, 7, held);
    expect([&] { Fio_CopyFile(none.c_str(), other.c_str(), 0); }, QXERR_NOT_FOUND, 8, none);
    expect([&] { Fio_CopyFile(file.c_str(), other.c_str(), 1); }, QXERR_UNKNOWN, 8, file);
    expect([&] { Fio_CopyFile(directory.c_str(), none.c_str(), 0); }, QXERR_ACCESS_DENIED, 8,
           directory);
    expect([&] { Fio_CopyFile(held.c_str(), none.c_str(), 0); }, QXERR_SHARING, 8, held);
    expect([&] { Fio_RenameFile(none.c_str(), other.c_str()); }, QXERR_NOT_FOUND, 9, none);
    expect([&] { Fio_RenameFile(file.c_str(), other.c_str()); }, QXERR_UNKNOWN, 9, file);
    expect([&] { Fio_RenameFile(held.c_str(), none.c_str()); }, QXERR_SHARING, 9, held);
    expect([&] { Fio_CreateDirectory(below.c_str()); }, QXERR_BAD_NAME, 10, below);
    expect([&] { Fio_DeleteDirectory(file.c_str()); }, QXERR_DEVICE, 11, file);
    expect([&] { Fio_DeleteDirectory(directory.c_str()); }, QXERR_UNKNOWN, 11, directory);
    FioFileInfo info;
    expect([&] { Fio_GetFileInfo(none.c_str(), &info); }, QXERR_NOT_FOUND, 12, none);
    expect([&] { Fio_GetFileInfo(below.c_str(), &info); }, QXERR_BAD_NAME, 12, below);
    expect([&] { Fio_SetCurrentDirectory(file.c_str()); }, QXERR_DEVICE, 14, file);
    CloseHandle(holder);
    RemoveDirectoryA((directory + "\\sub").c_str());
}

TEST_F(FileErrorTest, AFifthExceptionAtOnceTakesTheNameOfTheFirst) {
    char one[] = "one";
    CXFileException first(1, one, 0), second(1, "two", 0), third(1, "three", 0),
        fourth(1, "four", 0);
    {
        CXFileException fifth(1, "five", 0);
        EXPECT_STREQ(first.name, "five");
        EXPECT_STREQ(fifth.name, "five");
        EXPECT_STREQ(second.name, "two");
        EXPECT_STREQ(fourth.name, "four");
    }
    CXFileException sixth(1, nullptr, 0);
    EXPECT_EQ(sixth.name, first.name);
    EXPECT_STREQ(sixth.name, "");
}

TEST_F(FileErrorTest, TheNameOfAFileExceptionIsFreeAgainWhenItIsDestroyed) {
    char* slot;
    {
        CXFileException first(1, "name", 0);
        slot = first.name;
    }
    CXFileException again(1, "other", 0);
    EXPECT_EQ(again.name, slot);
}
