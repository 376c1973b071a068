// Whole files brought from a real server and sent to it.
#include "file/url/ftp_fixture.h"
#include "support/build_kind.h"

namespace {

class TransferTest : public FtpTest {
protected:
    static std::string Of(const std::string& before, const std::string& behind) {
        return before + ServedFiles::kHost + behind;
    }
    int Download(const std::string& name, const std::string& local,
                 const std::string& user = "user") {
        return Fio_DownloadToFile(Url(name, user), local.c_str());
    }
    int Upload(const std::string& local, const std::string& name,
               const std::string& user = "user") {
        return Fio_UrlPutFile(Url(name, user), local.c_str());
    }
};

}  // namespace

TEST_F(TransferTest, ADownloadBringsTheWholeFile) {
    for (size_t size : {0, 1, 4096, 300000}) {
        std::string content = Pattern(size);
        server.Put("a.bin", content);
        EXPECT_NE(Download("a.bin", Path("local")), 0);
        EXPECT_EQ(ContentOf(Path("local")), content);
    }
}

TEST_F(TransferTest, BytesAreNotConverted) {
    std::string content;
    for (int i = 0; i < 512; ++i) content += char(i);
    content += "\r\n\n\r\x1A";
    server.Put("a.bin", content);
    EXPECT_NE(Download("a.bin", Path("local")), 0);
    EXPECT_EQ(ContentOf(Path("local")), content);
    server.MakeDirectory("dir.d");
    EXPECT_NE(Upload(Path("local"), "dir.d/b.bin"), 0);
    EXPECT_EQ(server.ContentOf("dir.d\\b.bin"), content);
}

TEST_F(TransferTest, ADownloadIsOneCallBehindOneConnection) {
    server.Put("a.txt", "a");
    std::string local = Path("local");
    EXPECT_NE(Download("a.txt", local), 0);
    EXPECT_EQ(calls.Texts(),
              (std::vector<std::string>{
                  "InternetOpenA(null, 0, null, null, 0)",
                  "InternetConnectA(" + ServedFiles::kHost + ", 21, user, secret, 1, 0, 0)",
                  "FtpGetFileA(/a.txt, " + local + ", 0, 128, 0x84000802, 0)"}));
}

TEST_F(TransferTest, ADownloadOverwrites) {
    server.Put("a.txt", "new");
    std::string local = MakeFile("local", "the old and longer content");
    EXPECT_NE(Download("a.txt", local), 0);
    EXPECT_EQ(ContentOf(local), "new");
}

TEST_F(TransferTest, AFailedDownloadAnswersZero) {
    server.Put("a.txt", "a");
    EXPECT_EQ(Download("none.txt", Path("local")), 0);
    EXPECT_EQ(Fio_DownloadToFile(Of("ftp://user:wrong@", "/a.txt").c_str(), Path("local").c_str()),
              0);
    EXPECT_EQ(Fio_DownloadToFile("c:\\a.txt", Path("local").c_str()), 0);
    EXPECT_EQ(Fio_DownloadToFile(nullptr, Path("local").c_str()), 0);
    EXPECT_EQ(Fio_DownloadToFile(Url("a.txt"), nullptr), 0);
    EXPECT_TRUE(Names().empty());
    EXPECT_EQ(Download("a.txt", Path("none\\local")), 0);
}

TEST_F(TransferTest, AnHttpUrlIsAskedForByFtp) {
    EXPECT_EQ(Fio_DownloadToFile(Of("http://", "/none.htm").c_str(), Path("local").c_str()), 0);
    EXPECT_EQ(server.Count("RETR /none.htm"), 1);
}

TEST_F(TransferTest, AnUploadWritesANewFileAndOverAnOldOne) {
    server.MakeDirectory("dir.d");
    std::string local = MakeFile("local", "new");
    EXPECT_NE(Upload(local, "dir.d/a.txt"), 0);
    EXPECT_EQ(server.ContentOf("dir.d\\a.txt"), "new");
    server.Put("dir.d\\b.txt", "the old and longer content");
    EXPECT_NE(Upload(local, "dir.d/b.txt"), 0);
    EXPECT_EQ(server.ContentOf("dir.d\\b.txt"), "new");
    EXPECT_EQ(server.Names("dir.d"), (std::vector<std::string>{"a.txt", "b.txt"}));
    EXPECT_EQ(calls.Texts().back(), "FtpPutFileA(" + local + ", /dir.d/b.txt, 0x84000802, 0)");
}

TEST_F(TransferTest, AnUploadMakesTheDirectoryAboveIt) {
    EXPECT_NE(Upload(MakeFile("local", "new"), "dir.d/a.txt"), 0);
    EXPECT_EQ(server.ContentOf("dir.d\\a.txt"), "new");
}

TEST_F(TransferTest, AnUploadTwoMissingLevelsDownAnswersZero) {
    EXPECT_EQ(Upload(MakeFile("local", "new"), "dir.d/sub.d/a.txt"), 0);
    EXPECT_TRUE(server.Names().empty());
}

TEST_F(TransferTest, AnUploadToTheRootAnswersZero) {
    EXPECT_EQ(Upload(MakeFile("local", "new"), "a.txt"), 0);  // the root cannot be looked up
    EXPECT_TRUE(server.Names().empty());
}

TEST_F(TransferTest, AnUploadWithoutALocalFileAsksNoServer) {
    server.MakeDirectory("dir.d");
    EXPECT_EQ(Upload(Path("none"), "dir.d/a.txt"), 0);
    EXPECT_EQ(Fio_UrlPutFile(Url("dir.d/a.txt"), nullptr), 0);
    EXPECT_TRUE(calls.Texts().empty());
}

TEST_F(TransferTest, AnUploadWithoutTheRightToWriteAnswersZero) {
    server.MakeDirectory("dir.d");
    server.Put("dir.d\\a.txt", "old");
    std::string local = MakeFile("local", "new");
    EXPECT_EQ(Upload(local, "dir.d/a.txt", "reader"), 0);
    EXPECT_EQ(Upload(local, "dir.d/b.txt", "reader"), 0);
    EXPECT_EQ(server.ContentOf("dir.d\\a.txt"), "old");
    EXPECT_EQ(server.Names("dir.d"), std::vector<std::string>{"a.txt"});
    EXPECT_EQ(server.Count("STOR /dir.d/a.txt"), 0);  // it is known not to be writable
}

TEST_F(TransferTest, AnUploadToWhatIsNoUrlAnswersZero) {
    std::string local = MakeFile("local", "new");
    EXPECT_EQ(Fio_UrlPutFile("c:\\dir\\a.txt", local.c_str()), 0);
    EXPECT_EQ(Fio_UrlPutFile(nullptr, local.c_str()), 0);
}

TEST_F(TransferTest, TheCacheGivesTheWholeFile) {
    std::string content = Pattern(100000);
    server.Put("a.bin", content);
    const char* copy = Fio_DownloadToCacheFile(Url("a.bin", ""));
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(ContentOf(copy), content);
    const char* again = Fio_DownloadToCacheFile(Url("a.bin", ""));
    EXPECT_EQ(again, copy);  // one text for all answers
    EXPECT_EQ(calls.Texts()[0],
              "URLDownloadToCacheFileA(" + ServedFiles::Url("a.bin", "") + ", 512, 16)");
    DeleteFileA(copy);
}

TEST_F(TransferTest, TheCacheTakesUrlsOnly) {
    EXPECT_EQ(Fio_DownloadToCacheFile(nullptr), nullptr);
    EXPECT_EQ(Fio_DownloadToCacheFile(""), nullptr);
    EXPECT_EQ(Fio_DownloadToCacheFile("c:\\name"), nullptr);
}

TEST_F(TransferTest, ALargeFileGoesThereAndBack) {
    const size_t kMegabytes = kIsSlowBuild ? 5 : 100;
    const std::string megabyte = Pattern(1 << 20);
    std::string content;
    content.reserve(kMegabytes << 20);
    for (size_t i = 0; i < kMegabytes; ++i) content += std::to_string(i) + megabyte;
    server.MakeDirectory("dir.d");
    server.Put("dir.d\\large.bin", content);
    std::string local = Path("local");
    EXPECT_NE(Fio_DownloadToFile(Url("dir.d/large.bin"), local.c_str()), 0);
    EXPECT_TRUE(ContentOf(local) == content);
    EXPECT_NE(Fio_UrlPutFile(Url("dir.d/back.bin"), local.c_str()), 0);
    EXPECT_TRUE(server.ContentOf("dir.d\\back.bin") == content);
}
