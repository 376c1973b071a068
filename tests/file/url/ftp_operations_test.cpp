// Questions about a server's files, and changes to them, against a real server.
#include "file/url/ftp_fixture.h"

namespace {

class FtpOperationsTest : public FtpTest {
protected:
    static std::string At(const std::string& before, const std::string& behind) {
        return "ftp://" + before + ServedFiles::kHost + behind;
    }
    static std::string Connecting(const std::string& credentials) {
        return "InternetConnectA(" + ServedFiles::kHost + ", 21, " + credentials + ", 1, 0, 0)";
    }
    // The calls that are made once a url has been cracked.
    static std::vector<std::string> Sequence(const std::string& operation,
                                             const std::string& user = "user",
                                             const std::string& password = "secret") {
        return {"InternetOpenA(null, 0, null, null, 0)", Connecting(user + ", " + password),
                operation};
    }
};

const Failure kNone;

}  // namespace

TEST_F(FtpOperationsTest, GetFileInfoDeliversSizeAndTime) {
    std::string path = server.Put("a.txt", "hello");
    HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    SYSTEMTIME time = {};
    time.wYear = 2004;
    time.wMonth = 2;
    time.wDay = 29;
    FILETIME stamp;
    SystemTimeToFileTime(&time, &stamp);
    ASSERT_TRUE(SetFileTime(file, nullptr, nullptr, &stamp));
    CloseHandle(file);
    FioFileInfo info;
    memset(&info, 0xEE, sizeof info);
    Fio_UrlGetFileInfo(Url("a.txt"), &info);
    EXPECT_EQ(info.size, 5u);
    EXPECT_EQ(info.year, 2004u);
    EXPECT_EQ(info.month, 2u);
    EXPECT_EQ(info.day, 29u);
    EXPECT_EQ(info.minute, 0u);
    EXPECT_EQ(info.second, 0u);
}

TEST_F(FtpOperationsTest, TheLookupConnectsAndSearchesOnceByExtension) {
    server.MakeDirectory("dir.d");
    server.Put("dir.d\\a.txt", "");
    FioFileInfo info;
    Fio_UrlGetFileInfo(Url("dir.d/a.txt"), &info);
    EXPECT_EQ(calls.Texts(), Sequence("FtpFindFirstFileA(/dir.d/*.txt, 0x84000000, 0)"));
    EXPECT_EQ(server.Count("LIST"), 1);
}

TEST_F(FtpOperationsTest, ANameWithoutExtensionSearchesForADotAtTheEnd) {
    server.Put("name", "");
    EXPECT_EQ(Fio_IsFileExist(Url("name")), 0);  // Wine finds no name that ends so
    EXPECT_EQ(calls.Texts(), Sequence("FtpFindFirstFileA(/*., 0x84000000, 0)"));
}

TEST_F(FtpOperationsTest, TheSearchBringsUpNoDialog) {
    server.Put("a.txt", "");
    EXPECT_EQ(Fio_IsFileExist(Url("a.txt")), 1);
    EXPECT_EQ(calls.ErrorModeInSearch(), UINT(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX));
    EXPECT_EQ(Fio_IsFileExist(Url("none.txt")), 0);
    EXPECT_EQ(Fio_IsFileExist(Url("none.d/none.txt")), 0);
}

TEST_F(FtpOperationsTest, NamesAreComparedWithoutRegardToCase) {
    server.Put("Name.Txt", "12345");
    FioFileInfo info;
    Fio_UrlGetFileInfo(Url("nAME.txt"), &info);
    EXPECT_EQ(info.size, 5u);
}

TEST_F(FtpOperationsTest, TheLookupGoesOnToTheLastEntry) {
    for (const char* name : {"a.txt", "b.txt", "c.txt", "d.txt"}) server.Put(name, name);
    for (const char* name : {"a.txt", "b.txt", "c.txt", "d.txt"})
        EXPECT_EQ(Fio_IsFileExist(Url(name)), 1) << name;
    EXPECT_EQ(Fio_IsFileExist(Url("e.txt")), 0);
}

TEST_F(FtpOperationsTest, ALookupThatFailsRaisesTheUrl) {
    FioFileInfo info;
    for (const char* url : {static_cast<const char*>(Url("none.txt")), "c:\\name", "ftp://", ""}) {
        Failure failure = FailureOf([&] { Fio_UrlGetFileInfo(url, &info); });
        EXPECT_NE(failure.code, 0) << url;
        EXPECT_EQ(failure.operation, QXOP_GET_INFORMATION) << url;
        EXPECT_EQ(failure.name, url);
    }
    EXPECT_EQ(FailureOf([&] { Fio_UrlGetFileInfo(nullptr, &info); }).operation,
              QXOP_GET_INFORMATION);
    EXPECT_EQ(FailureOf([&] { Fio_UrlGetFileInfo(nullptr, &info); }).name, "");
}

TEST_F(FtpOperationsTest, AMissingTargetIsAFailureOfTheLookup) {
    server.Put("a.txt", "");
    char* url = Url("a.txt");
    Failure failure = FailureOf([&] { Fio_UrlGetFileInfo(url, nullptr); });
    EXPECT_EQ(failure.operation, QXOP_GET_INFORMATION);
    EXPECT_EQ(failure.name, url);
    EXPECT_TRUE(calls.Texts().empty());
}

TEST_F(FtpOperationsTest, APortInTheUrlIsNotLookedAt) {
    server.Put("a.txt", "");
    EXPECT_EQ(Fio_IsFileExist(At("user:secret@", ":2121/a.txt").c_str()), 1);
    EXPECT_EQ(calls.Texts()[1], Connecting("user, secret"));
}

TEST_F(FtpOperationsTest, WithoutAUserTheServerMeetsAnonymous) {
    server.Put("a.txt", "");
    EXPECT_EQ(Fio_IsFileExist(Url("a.txt", "")), 1);
    EXPECT_EQ(calls.Texts()[1], Connecting(", "));
    EXPECT_EQ(server.Count("USER anonymous"), 1);
}

TEST_F(FtpOperationsTest, AWrongPasswordLooksLikeAMissingFile) {
    server.Put("a.txt", "");
    const std::string wrong = At("user:wrong@", "/a.txt");
    const char* url = wrong.c_str();
    FioFileInfo info;
    EXPECT_EQ(Fio_IsFileExist(url), 0);
    EXPECT_EQ(FailureOf([&] { Fio_UrlGetFileInfo(url, &info); }).name, url);
    EXPECT_EQ(Fio_UrlDeleteFile(url), 0);
    EXPECT_EQ(Fio_UrlIsWritableDir(At("user:wrong@", "/dir.d").c_str()), 0);
    EXPECT_TRUE(server.Has("a.txt"));
}

// Wine sends the backslash of the probe's name as it stands.
TEST_F(FtpOperationsTest, ADirectoryIsWritableWhenAProbeCanBeWritten) {
    server.MakeDirectory("dir.d");
    EXPECT_EQ(Fio_UrlIsWritableDir(Url("dir.d")), 1);
    EXPECT_EQ(server.Names(), std::vector<std::string>{"dir.d"});
    EXPECT_TRUE(server.Names("dir.d").empty());
    // A search for the probe's name, then the probe, deleted behind the same connection.
    EXPECT_EQ(calls.Texts()[2], "FtpFindFirstFileA(/dir.d/*.tmp, 0x84000000, 0)");
    std::string opened = calls.Texts()[5];
    ASSERT_EQ(opened.compare(0, 20, "FtpOpenFileA(/dir.d\\"), 0) << opened;
    std::string probe = opened.substr(13, opened.find(',') - 13);
    EXPECT_EQ(probe.substr(probe.size() - 4), ".tmp");
    EXPECT_EQ(opened, "FtpOpenFileA(" + probe + ", 0x40000000, 0x84000002, 0)");
    EXPECT_EQ(calls.Texts()[6], "FtpDeleteFileA(" + probe + ")");
    EXPECT_EQ(calls.Texts().size(), 7u);
}

// Wine sends the backslash of the probe's name as it stands.
TEST_F(FtpOperationsTest, TheProbeTakesNoNameThatIsThere) {
    server.MakeDirectory("dir.d");
    server.Put("dir.d\\7.tmp", "kept");
    static DWORD tick;
    tick = 5;
    ReplacedImport ticks("GetTickCount",
                         reinterpret_cast<void*>(+[]() -> DWORD { return ++tick < 8 ? 7 : tick; }));
    ASSERT_TRUE(ticks);
    EXPECT_EQ(Fio_UrlIsWritableDir(Url("dir.d")), 1);
    EXPECT_EQ(calls.Texts().back(), "FtpDeleteFileA(/dir.d\\8.tmp)");
    EXPECT_EQ(server.Count("LIST"), 3);  // 7 twice, then 8
    EXPECT_EQ(server.ContentOf("dir.d\\7.tmp"), "kept");
}

TEST_F(FtpOperationsTest, AReadOnlyDirectoryIsNotWritableAndKeepsNoProbe) {
    server.MakeDirectory("dir.d");
    EXPECT_EQ(Fio_UrlIsWritableDir(Url("dir.d", "reader")), 0);
    EXPECT_EQ(server.Names(), std::vector<std::string>{"dir.d"});
    EXPECT_TRUE(server.Names("dir.d").empty());
}

TEST_F(FtpOperationsTest, NothingIsWritableThatIsNoUrl) {
    EXPECT_EQ(Fio_UrlIsWritableDir(nullptr), 0);
    EXPECT_EQ(Fio_UrlIsWritableFile(nullptr), 0);
    EXPECT_EQ(Fio_UrlIsWritableDir("c:\\"), 0);
    EXPECT_EQ(Fio_UrlIsWritableFile("name"), 0);
}

TEST_F(FtpOperationsTest, AFileIsWritableWhenItsDirectoryIs) {
    server.MakeDirectory("dir.d");
    server.Put("dir.d\\a.txt", "old");
    EXPECT_EQ(Fio_UrlIsWritableFile(Url("dir.d/a.txt")), 1);
    EXPECT_EQ(Fio_UrlIsWritableFile(Url("dir.d/new.txt")), 1);
    EXPECT_EQ(Fio_UrlIsWritableFile(Url("dir.d/a.txt", "reader")), 0);
    EXPECT_EQ(server.Names("dir.d"), std::vector<std::string>{"a.txt"});
}

TEST_F(FtpOperationsTest, DeleteAnswersWhetherTheFileWent) {
    server.Put("a.txt", "");
    EXPECT_EQ(Fio_UrlDeleteFile(Url("a.txt")), 1);
    EXPECT_FALSE(server.Has("a.txt"));
    EXPECT_EQ(Fio_UrlDeleteFile(Url("a.txt")), 0);
    EXPECT_EQ(Fio_UrlDeleteFile(nullptr), 0);
}

TEST_F(FtpOperationsTest, DeleteMayBeRefused) {
    server.Put("a.txt", "kept");
    EXPECT_EQ(Fio_UrlDeleteFile(Url("a.txt", "reader")), 0);
    EXPECT_EQ(server.ContentOf("a.txt"), "kept");
}

TEST_F(FtpOperationsTest, CreateDirectoryMakesOneLevel) {
    Fio_UrlCreateDirectory(Url("new.d"));
    EXPECT_TRUE(server.Has("new.d"));
    EXPECT_EQ(calls.Texts().back(), "FtpCreateDirectoryA(/new.d)");
    Fio_UrlCreateDirectory(Url("new.d/sub.d"));
    EXPECT_TRUE(server.Has("new.d\\sub.d"));
    char* deep = Url("none.d/sub.d");
    Failure failure = FailureOf([&] { Fio_UrlCreateDirectory(deep); });
    EXPECT_EQ(failure.operation, QXOP_CREATE_DIRECTORY);
    EXPECT_EQ(failure.name, deep);
    EXPECT_FALSE(server.Has("none.d"));
}

TEST_F(FtpOperationsTest, CreateDirectoryLeavesWhatExistsAlone) {
    server.MakeDirectory("old.d");
    Fio_UrlCreateDirectory(Url("old.d"));
    EXPECT_EQ(server.Count("MKD"), 0);
}

TEST_F(FtpOperationsTest, CreateDirectoryRaisesEveryFailure) {
    for (const char* url : {static_cast<const char*>(Url("new.d", "reader")),
                            static_cast<const char*>(Url("")), "name"}) {
        Failure failure = FailureOf([&] { Fio_UrlCreateDirectory(url); });
        EXPECT_EQ(failure.operation, QXOP_CREATE_DIRECTORY) << url;
        EXPECT_EQ(failure.name, url);
    }
    EXPECT_EQ(FailureOf([] { Fio_UrlCreateDirectory(nullptr); }).operation, QXOP_CREATE_DIRECTORY);
    EXPECT_TRUE(server.Names().empty());
}

TEST_F(FtpOperationsTest, TheFunctionsOverPathsReachTheServer) {
    server.MakeDirectory("dir.d");
    server.Put("dir.d\\a.txt", "hello");
    FioFileInfo info;
    Fio_GetFileInfo(Url("dir.d/a.txt"), &info);
    EXPECT_EQ(info.size, 5u);
    EXPECT_EQ(Fio_IsFileExist(Url("dir.d/a.txt")), 1);
    EXPECT_EQ(Fio_IsWritableFile(Url("dir.d/a.txt")), 1);
    CXString holder("nobody");
    EXPECT_EQ(Fio_IsWritableFile(Url("dir.d/a.txt", "reader"), holder), 0);
    EXPECT_STREQ(holder, "nobody");
    Fio_DeleteFile(Url("dir.d/a.txt"));
    EXPECT_FALSE(server.Has("dir.d\\a.txt"));
    EXPECT_EQ(FailureOf([&] { Fio_DeleteFile(Url("dir.d/a.txt")); }), kNone);  // no word about it
    Fio_CreateDirectory(Url("dir.d/sub.d"));
    EXPECT_TRUE(server.Has("dir.d\\sub.d"));
    EXPECT_EQ(FailureOf([&] { Fio_CreateDirectory(Url("x.d/y.d")); }).operation,
              QXOP_CREATE_DIRECTORY);
    EXPECT_EQ(FailureOf([&] { Fio_GetFileInfo(Url("none.txt"), &info); }).operation,
              QXOP_GET_INFORMATION);
}

TEST_F(FtpOperationsTest, TheUrlIsWholeAfterEveryOperation) {
    server.MakeDirectory("dir.d");
    std::string url = ServedFiles::Url("dir.d/a.txt"), before = url;
    FioFileInfo info;
    Fio_IsFileExist(url.data());
    FailureOf([&] { Fio_UrlGetFileInfo(url.data(), &info); });
    Fio_UrlIsWritableFile(url.data());
    Fio_UrlIsWritableDir(url.data());
    Fio_UrlDeleteFile(url.data());
    FailureOf([&] { Fio_UrlCreateDirectory(url.data()); });
    EXPECT_EQ(url, before);
}
