// Files behind urls when memory runs out or a local copy cannot be closed, and what exceptions say.
#include "file/url/ftp_fixture.h"
#include "support/allocation_failure.h"

namespace {

class UrlFailureTest : public FtpTest {
protected:
    void SetUp() override {
        calls.Stop();  // watching takes memory
        server.MakeDirectory("dir.d");
        server.Put("dir.d\\a.txt", "old");
    }

    // With each allocation failing, the operation raises CXMemException or answers "no".
    template <class Act, class Check>
    static unsigned FailEach(Act act, Check check) {
        constexpr bool kMayDoWithout = true;
        return FailEachAllocation([] { return 0; }, [&](int) { act(); }, [&](int) { check(); },
                                  kMayDoWithout);
    }
    template <class Act>
    static unsigned FailEach(Act act) {
        return FailEach(act, [] {});
    }
};

std::string g_logged;

void WINAPI NotingLog(LPCSTR text) {
    g_logged += text;
}

BOOL WINAPI FailingCall(HANDLE) {
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

}  // namespace

TEST_F(UrlFailureTest, AUrlThatFindsNoMemoryForItsPartsChangesNothing) {
    char* url = Url("dir.d/a.txt");
    std::string before = url;
    EXPECT_GT(FailEach([&] {
                  CXString host, user, password, path;
                  Fio_UrlCrack(url, host, user, password, path);
              }),
              0u);
    EXPECT_EQ(url, before);
}

TEST_F(UrlFailureTest, ADownloadThatFindsNoMemoryLosesNothing) {
    char* url = Url("dir.d/a.txt");
    std::string local = Path("local");
    EXPECT_GT(FailEach([&] { Fio_DownloadToFile(url, local.c_str()); }), 0u);
    EXPECT_EQ(ContentOf(local), "old");
}

TEST_F(UrlFailureTest, QuestionsThatFindNoMemoryLeaveNothing) {
    char* url = Url("dir.d/a.txt");
    EXPECT_GT(FailEach([&] { Fio_IsFileExist(url); }), 0u);
    EXPECT_EQ(server.Names("dir.d"), std::vector<std::string>{"a.txt"});
}

TEST_F(UrlFailureTest, AUrlThatFindsNoMemoryToOpenIsNullAndLeavesNoFile) {
    char* url = Url("dir.d/a.txt");
    auto open = [&] {
        File file(Fio_Open(url, 0));
        if (!file) throw CXMemException();
    };
    EXPECT_GT(FailEach(open, [&] { EXPECT_TRUE(TempFiles().empty()); }), 0u);
    RemoveTempFiles();  // of the opening that needed no more
    EXPECT_EQ(server.ContentOf("dir.d\\a.txt"), "old");
}

TEST_F(UrlFailureTest, WhatClosingTheLocalCopyRaisesReachesTheLastRelease) {
    long before = LiveBlocks();
    IXFile* file = Fio_UrlOpen(Url("dir.d/a.txt"), QXFIO_OUTPUT | QXFIO_KEEP);
    {
        ReplacedImport failing("SetEndOfFile", reinterpret_cast<void*>(&FailingCall));
        Failure failure = FailureOf([&] { file->Release(); });
        EXPECT_EQ(failure.code, QXERR_MEMORY);
        EXPECT_EQ(failure.operation, QXOP_WRITE);
    }
    RemoveTempFiles();
    EXPECT_LE(LiveBlocks(), before + 2);  // the texts of the failure
}

TEST_F(UrlFailureTest, WhatClosingTheLocalCopyRaisesReachesCommit) {
    OutFile file(Fio_UrlOpenOut(Url("dir.d/a.txt"), 0));
    file->Write("new", 3);
    {
        ReplacedImport failing("SetEndOfFile", reinterpret_cast<void*>(&FailingCall));
        Failure failure = FailureOf([&] { file->Commit(); });
        EXPECT_EQ(failure.code, QXERR_MEMORY);
        EXPECT_EQ(failure.operation, QXOP_WRITE);
        EXPECT_EQ(failure.name.compare(0, TempPath("QXP").size(), TempPath("QXP")), 0);
    }
    file.Release();
    EXPECT_EQ(server.ContentOf("dir.d\\a.txt"), "old");
    EXPECT_EQ(TempFiles().size(), 1u);  // as without Commit
    RemoveTempFiles();
}

TEST_F(UrlFailureTest, WithoutATemporaryFileThereIsNothingToOpen) {
    TemporaryFilesIn nowhere(Path("none"));
    char* url = Url("dir.d/a.txt");
    for (int attempt : {0, 1}) {
        Failure failure =
            FailureOf([&] { attempt ? OutFile(Fio_OpenOut(url, 0)), 0 : (Fio_Open(url, 0), 0); });
        EXPECT_EQ(failure.operation, QXOP_OPEN);
        EXPECT_EQ(failure.name, url);
    }
    EXPECT_EQ(server.Count("RETR"), 0);
}

TEST_F(UrlFailureTest, CredentialsReachNoLog) {
    ReplacedImport log("OutputDebugStringA", reinterpret_cast<void*>(&NotingLog));
    ASSERT_TRUE(log);
    g_logged.clear();
    std::string local = MakeFile("local", "new");
    for (const char* name : {"dir.d/a.txt", "dir.d/new.txt", "none.d/sub.d/a.txt"}) {
        char* url = Url(name);
        FioFileInfo info;
        FailureOf([&] { Fio_UrlGetFileInfo(url, &info); });
        FailureOf([&] { Fio_UrlCreateDirectory(url); });
        FailureOf([&] { File(Fio_UrlOpen(url, 0)); });
        FailureOf([&] { OutFile(Fio_UrlOpenOut(url, 0)); });
        Fio_UrlIsWritableFile(url);
        Fio_UrlPutFile(url, local.c_str());
        Fio_DownloadToFile(url, local.c_str());
        Fio_UrlDeleteFile(url);
    }
    RemoveTempFiles();
    EXPECT_EQ(g_logged, "");
}

TEST_F(UrlFailureTest, APasswordStandsInNoExceptionButWhereTheUrlDoes) {
    auto saysPassword = [](const Failure& failure) {
        return failure.name.find("secret") != std::string::npos;
    };
    {
        File file(Fio_UrlOpen(Url("dir.d/a.txt"), 0));
        EXPECT_FALSE(saysPassword(FailureOf([&] { file->Seek(99, QXSEEK_START); })));
        EXPECT_FALSE(saysPassword(FailureOf([&] { file->ReadDouble(); })));
        OutFile out(Fio_UrlOpenOut(Url("dir.d/b.txt"), 0));
        EXPECT_FALSE(saysPassword(FailureOf([&] { out->Seek(0, 9); })));
        out->Commit();
        EXPECT_FALSE(saysPassword(FailureOf([&] { out->Commit(); })));
    }
    EXPECT_FALSE(saysPassword(FailureOf([&] { Fio_UrlOpenOut(Url("a.txt"), 0); })));
    RemoveTempFiles();
}
