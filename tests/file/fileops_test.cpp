// Operations on paths.
#include "file/file_fixture.h"

#include <cstring>

namespace {

class FileOpsTest : public FileTest {};

const Failure kNone;

}  // namespace

TEST_F(FileOpsTest, IsFileExistKnowsFilesAndDirectories) {
    EXPECT_EQ(Fio_IsFileExist(MakeFile("f", "").c_str()), 1);
    EXPECT_EQ(Fio_IsFileExist(Directory().c_str()), 1);
    EXPECT_EQ(Fio_IsFileExist(Path("none").c_str()), 0);
    EXPECT_EQ(Fio_IsFileExist(Path("none\\f").c_str()), 0);
    EXPECT_EQ(Fio_IsFileExist("q:\\none"), 0);
    EXPECT_EQ(Fio_IsFileExist(""), 0);
    EXPECT_EQ(Fio_IsFileExist(nullptr), 0);
}

TEST_F(FileOpsTest, GetFileInfoDeliversSizeAndTimeOfTheLastWrite) {
    std::string path = MakeFile("f", "12345");
    SYSTEMTIME time = {};
    time.wYear = 2004;
    time.wMonth = 2;
    time.wDay = 29;  // a Sunday
    time.wHour = 23;
    time.wMinute = 58;
    time.wSecond = 57;
    FILETIME fileTime;
    ASSERT_TRUE(SystemTimeToFileTime(&time, &fileTime));
    HANDLE file =
        CreateFileA(path.c_str(), FILE_WRITE_ATTRIBUTES, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_TRUE(SetFileTime(file, nullptr, nullptr, &fileTime));
    CloseHandle(file);
    FioFileInfo info;
    memset(&info, 0xEE, sizeof info);
    Fio_GetFileInfo(path.c_str(), &info);
    EXPECT_EQ(info.size, 5u);
    EXPECT_EQ(info.second, 57u);
    EXPECT_EQ(info.minute, 58u);
    EXPECT_EQ(info.hour, 23u);
    EXPECT_EQ(info.day, 29u);
    EXPECT_EQ(info.dayOfWeek, 0u);
    EXPECT_EQ(info.month, 2u);
    EXPECT_EQ(info.year, 2004u);
}

TEST_F(FileOpsTest, FileInfoIsEightFieldsOf32BitsInTheirOrder) {
    EXPECT_EQ(sizeof(FioFileInfo), 32u);
    FioFileInfo info = {1, 2, 3, 4, 5, 6, 7, 8};
    const unsigned fields[] = {info.size, info.second,    info.minute, info.hour,
                               info.day,  info.dayOfWeek, info.month,  info.year};
    for (unsigned i = 0; i < 8; ++i) EXPECT_EQ(fields[i], i + 1);
    EXPECT_EQ(memcmp(&info, fields, sizeof info), 0);
}

TEST_F(FileOpsTest, GetFileInfoOfAMissingFileNamesTheOperationAndRestoresTheErrorMode) {
    UINT mode = SetErrorMode(SEM_NOGPFAULTERRORBOX);
    FioFileInfo info;
    EXPECT_EQ(FailureOf([&] { Fio_GetFileInfo(Path("none").c_str(), &info); }),
              (Failure{QXERR_NOT_FOUND, QXOP_GET_INFORMATION, Path("none")}));
    EXPECT_EQ(SetErrorMode(SEM_NOGPFAULTERRORBOX), UINT(SEM_NOGPFAULTERRORBOX));
    Fio_GetFileInfo(Directory().c_str(), &info);
    EXPECT_EQ(SetErrorMode(mode), UINT(SEM_NOGPFAULTERRORBOX));
}

TEST_F(FileOpsTest, CopyFileOverwritesUnlessItIsToldNotTo) {
    std::string from = MakeFile("from", "new"), to = MakeFile("to", "old");
    EXPECT_EQ(FailureOf([&] { Fio_CopyFile(from.c_str(), to.c_str(), 1); }),
              (Failure{QXERR_UNKNOWN, QXOP_COPY,
                       from}));  // the file exists: an error without a code of its own
    EXPECT_EQ(ContentOf(to), "old");
    Fio_CopyFile(from.c_str(), to.c_str(), 0);
    EXPECT_EQ(ContentOf(to), "new");
    EXPECT_EQ(FailureOf([&] { Fio_CopyFile(Path("none").c_str(), to.c_str(), 0); }),
              (Failure{QXERR_NOT_FOUND, QXOP_COPY, Path("none")}));
    EXPECT_EQ(ContentOf(to), "new");
}

TEST_F(FileOpsTest, DeleteFileDeletesOrRaises) {
    std::string path = MakeFile("f", "abc");
    Fio_DeleteFile(path.c_str());
    EXPECT_FALSE(Exists(path));
    EXPECT_EQ(FailureOf([&] { Fio_DeleteFile(path.c_str()); }),
              (Failure{QXERR_NOT_FOUND, QXOP_DELETE_FILE, path}));
    EXPECT_EQ(FailureOf([&] { Fio_DeleteFile(Directory().c_str()); }),
              (Failure{QXERR_ACCESS_DENIED, QXOP_DELETE_FILE, Directory()}));
    std::string readOnly = MakeFile("r", "abc");
    SetReadOnly(readOnly, true);
    EXPECT_EQ(FailureOf([&] { Fio_DeleteFile(readOnly.c_str()); }),
              (Failure{QXERR_ACCESS_DENIED, QXOP_DELETE_FILE, readOnly}));
}

TEST_F(FileOpsTest, DeleteFileOfAnOpenFileIsASharingFailure) {
    std::string path = MakeFile("f", "abc");
    File file = Open(path);
    EXPECT_EQ(FailureOf([&] { Fio_DeleteFile(path.c_str()); }),
              (Failure{QXERR_SHARING, QXOP_DELETE_FILE, path}));
    EXPECT_EQ(file->ReadByte(), 'a');
}

TEST_F(FileOpsTest, RenameFileMovesAndNeverOverwrites) {
    std::string from = MakeFile("from", "new"), to = Path("to");
    Fio_RenameFile(from.c_str(), to.c_str());
    EXPECT_EQ(ContentOf(to), "new");
    EXPECT_FALSE(Exists(from));
    MakeFile("from", "newer");
    EXPECT_EQ(FailureOf([&] { Fio_RenameFile(from.c_str(), to.c_str()); }),
              (Failure{QXERR_UNKNOWN, QXOP_RENAME, from}));
    EXPECT_EQ(ContentOf(to), "new");
    EXPECT_EQ(FailureOf([&] { Fio_RenameFile(Path("none").c_str(), to.c_str()); }),
              (Failure{QXERR_NOT_FOUND, QXOP_RENAME, Path("none")}));
}

TEST_F(FileOpsTest, CreateDirectoryMakesTheUpperLevelAndThenTheLower) {
    Fio_CreateDirectory(Path("upper\\lower").c_str());
    EXPECT_EQ(NamesIn(Path("upper")), std::vector<std::string>{"lower"});
    Fio_CreateDirectory(Path("upper/lower/deep/deeper/").c_str());
    EXPECT_EQ(NamesIn(Path("upper\\lower\\deep")), std::vector<std::string>{"deeper"});
}

TEST_F(FileOpsTest, CreateDirectoryLeavesWhatExistsAlone) {
    Fio_CreateDirectory(Directory().c_str());
    Fio_CreateDirectory(MakeFile("f", "abc").c_str());
    EXPECT_EQ(ContentOf(Path("f")), "abc");
    EXPECT_EQ(FailureOf([] { Fio_CreateDirectory(""); }), kNone);
    EXPECT_EQ(FailureOf([] { Fio_CreateDirectory(nullptr); }), kNone);
}

TEST_F(FileOpsTest, CreateDirectoryTakesNamesRelativeToTheCurrentDirectoryAndToTheDrive) {
    char old[MAX_PATH];
    GetCurrentDirectoryA(MAX_PATH, old);
    SetCurrentDirectoryA(Directory().c_str());
    Fio_CreateDirectory("single");
    Fio_CreateDirectory("one\\two");
    std::string drive = Directory().substr(0, 2);
    Fio_CreateDirectory((drive + "of_drive\\three").c_str());
    Fio_CreateDirectory((Directory().substr(2) + "\\rooted\\four").c_str());
    SetCurrentDirectoryA(old);
    EXPECT_EQ(Names(), (std::vector<std::string>{"of_drive", "one", "rooted", "single"}));
    EXPECT_EQ(NamesIn(Path("one")), std::vector<std::string>{"two"});
    EXPECT_EQ(NamesIn(Path("of_drive")), std::vector<std::string>{"three"});
    EXPECT_EQ(NamesIn(Path("rooted")), std::vector<std::string>{"four"});
}

TEST_F(FileOpsTest, CreateDirectoryNamesTheLevelThatFails) {
    std::string file = MakeFile("f", "abc");
    Failure failure = FailureOf([&] { Fio_CreateDirectory((file + "\\upper\\lower").c_str()); });
    EXPECT_EQ(failure, (Failure{QXERR_BAD_NAME, QXOP_CREATE_DIRECTORY, file + "\\upper"}));
}

// The text names the server and the share as it finds them, and fails at the first level below.
TEST_F(FileOpsTest, CreateDirectoryDoesNotTryToMakeANetworkShare) {
    Failure failure = FailureOf([] { Fio_CreateDirectory("\\\\?\\Q:\\none\\deep"); });
    EXPECT_EQ(failure.operation, int(QXOP_CREATE_DIRECTORY));
    EXPECT_EQ(failure.name, "\\\\?\\Q:\\none");
    std::string deep = "\\\\?\\" + Path("of_long_path\\deep");
    Fio_CreateDirectory(deep.c_str());
    EXPECT_EQ(NamesIn(Path("of_long_path")), std::vector<std::string>{"deep"});
}

TEST_F(FileOpsTest, DeleteDirectoryTakesEmptyOnesOnly) {
    Fio_CreateDirectory(Path("d").c_str());
    MakeFile("d\\f", "abc");
    EXPECT_EQ(FailureOf([&] { Fio_DeleteDirectory(Path("d").c_str()); }),
              (Failure{QXERR_UNKNOWN, QXOP_DELETE_DIRECTORY, Path("d")}));
    Fio_DeleteFile(Path("d\\f").c_str());
    Fio_DeleteDirectory(Path("d").c_str());
    EXPECT_FALSE(Exists(Path("d")));
    EXPECT_EQ(FailureOf([&] { Fio_DeleteDirectory(Path("d").c_str()); }),
              (Failure{QXERR_NOT_FOUND, QXOP_DELETE_DIRECTORY, Path("d")}));
    EXPECT_EQ(FailureOf([&] { Fio_DeleteDirectory(MakeFile("f", "").c_str()); }),
              (Failure{QXERR_DEVICE, QXOP_DELETE_DIRECTORY, Path("f")}));
}

TEST_F(FileOpsTest, TheCurrentDirectoryIsSetAndRead) {
    char old[MAX_PATH], now[MAX_PATH];
    Fio_GetCurrentDirectory(old, sizeof old);
    GetCurrentDirectoryA(MAX_PATH, now);
    EXPECT_STREQ(old, now);
    Fio_SetCurrentDirectory(Directory().c_str());
    Fio_GetCurrentDirectory(now, sizeof now);
    EXPECT_STREQ(now, Directory().c_str());
    Failure failure = FailureOf([&] { Fio_SetCurrentDirectory(Path("none").c_str()); });
    EXPECT_EQ(failure, (Failure{QXERR_NOT_FOUND, QXOP_SET_CURRENT_DIRECTORY, Path("none")}));
    Fio_SetCurrentDirectory(old);
}

TEST_F(FileOpsTest, GetCurrentDirectoryWritesNothingBehindASmallBuffer) {
    char buffer[8];
    memset(buffer, '#', sizeof buffer);
    Fio_GetCurrentDirectory(buffer, 2);
    EXPECT_EQ(std::string(buffer + 2, 6), "######");
}

TEST_F(FileOpsTest, OnlyTheReadOnlyAttributeMakesAFileNotWritable) {
    std::string path = MakeFile("f", "abc");
    EXPECT_EQ(Fio_IsWritableFile(path.c_str()), 1);
    EXPECT_EQ(Fio_IsWritableFile(Path("none").c_str()), 1);
    EXPECT_EQ(Fio_IsWritableFile(nullptr), 1);
    File held = Open(path, QXFIO_OUTPUT);
    EXPECT_EQ(Fio_IsWritableFile(path.c_str()), 1);
    held.Release();
    SetReadOnly(path, true);
    EXPECT_EQ(Fio_IsWritableFile(path.c_str()), 0);
}

TEST_F(FileOpsTest, TheHolderOfAFileThatIsNotWritableStaysUntold) {
    std::string path = MakeFile("f", "abc");
    CXString holder("stays");
    EXPECT_EQ(Fio_IsWritableFile(path.c_str(), holder), 1);
    SetReadOnly(path, true);
    EXPECT_EQ(Fio_IsWritableFile(path.c_str(), holder), 0);
    EXPECT_STREQ(holder, "stays");
}

TEST_F(FileOpsTest, ADirectoryIsWritableUnlessItsAttributeSaysNo) {
    EXPECT_EQ(Fio_IsWritableDir(Directory().c_str()), 1);
    EXPECT_EQ(Fio_IsWritableDir(Path("none").c_str()), 1);
    std::string path = MakeFile("f", "abc");
    SetReadOnly(path, true);
    EXPECT_EQ(Fio_IsWritableDir(path.c_str()), 0);
    EXPECT_EQ(Names(), std::vector<std::string>{"f"});  // nothing is written to find out
}

TEST_F(FileOpsTest, ATempFileNameComesWithItsEmptyFileAndLivesUntilTheNext) {
    const char* name = Fio_GetTempFileName();
    std::string first = name;
    EXPECT_EQ(SizeOnDisk(first), 0u);
    char temp[MAX_PATH];
    GetTempPathA(MAX_PATH, temp);
    EXPECT_EQ(first.substr(0, strlen(temp)), temp);
    EXPECT_EQ(_strnicmp(first.c_str() + strlen(temp), "QXP", 3), 0);
    EXPECT_EQ(Fio_GetTempFileName(), name);
    EXPECT_STRNE(name, first.c_str());
    DeleteFileA(first.c_str());
    DeleteFileA(name);
}

TEST_F(FileOpsTest, PathIsUrlAnswersAsThePlatformDoes) {
    EXPECT_EQ(Fio_PathIsURL("ftp://host/path"), 1);
    EXPECT_EQ(Fio_PathIsURL("http://host"), 1);
    EXPECT_EQ(Fio_PathIsURL("FILE:///c:/f"), 1);
    EXPECT_EQ(Fio_PathIsURL("c:\\path"), 0);
    EXPECT_EQ(Fio_PathIsURL("\\\\server\\share"), 0);
    EXPECT_EQ(Fio_PathIsURL("relative"), 0);
    EXPECT_EQ(Fio_PathIsURL(""), 0);
    EXPECT_EQ(Fio_PathIsURL(nullptr), 0);
}

// The platform's narrow calls end at 259 characters.
TEST_F(FileOpsTest, PathsOf260AndMoreCharactersAreBadNames) {
    for (size_t length : {260, 300, 511, 512, 600, 2000}) {
        DeepDirectory deep(Directory(), length);
        std::string path = deep.Path() + "\\f";
        std::string name = path.substr(0, 511);  // what an exception has room for
        EXPECT_EQ(FailureOf([&] { Open(path); }), (Failure{QXERR_BAD_NAME, 1, name})) << length;
        EXPECT_EQ(FailureOf([&] { Open(path, QXFIO_OUTPUT); }), (Failure{QXERR_BAD_NAME, 2, name}))
            << length;
        EXPECT_EQ(Fio_IsFileExist(path.c_str()), 0);
        EXPECT_EQ(FailureOf([&] { Fio_DeleteFile(path.c_str()); }),
                  (Failure{QXERR_BAD_NAME, QXOP_DELETE_FILE, name}));
        EXPECT_EQ(FailureOf([&] { Fio_CreateDirectory((path + "\\g").c_str()); }).code,
                  QXERR_BAD_NAME);
        EXPECT_TRUE(deep.IsEmpty()) << length;
    }
}

TEST_F(FileOpsTest, LongPathsAreToldApartInTheLockTable) {
    std::string path = Directory() + "\\" + std::string(600, 'n');
    Fio_LockFile((path + "1").c_str());
    EXPECT_EQ(Fio_LockCount((path + "1").c_str()), 1);
    EXPECT_EQ(Fio_LockCount((path + "2").c_str()), 0);
    EXPECT_EQ(Fio_LockCount(path.c_str()), 0);
    Fio_UnlockFile((path + "1").c_str());
    EXPECT_EQ(Fio_LockCount((path + "1").c_str()), 0);
}

TEST_F(FileOpsTest, APathOf259CharactersIsReadWrittenAndReplaced) {
    std::string path = Directory();
    while (path.size() < 200) Fio_CreateDirectory((path += "\\level").c_str());
    path += "\\" + std::string(258 - path.size(), 'n');
    ASSERT_EQ(path.size(), 259u);
    Open(path, QXFIO_OUTPUT)->WriteByte('a');
    EXPECT_EQ(ContentOf(path), "a");
    OutFile file = OpenOut(path, QXFIO_KEEP);
    file->WriteByte('b');
    file->Commit();
    EXPECT_EQ(ContentOf(path), "ab");
}
