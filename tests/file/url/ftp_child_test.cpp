// What the platform's own network service does not survive: each operation in a process of its
// own, beside the same calls by hand.
#include "file/url/ftp_child.h"
#include "file/url/ftp_fixture.h"

namespace {

class FtpChildTest : public FtpTest {
protected:
    void SetUp() override {
        server.MakeDirectory("dir.d");
        server.Put("dir.d\\a.txt", "old");
    }

    // Either an answer as it is specified, or what becomes of the platform's calls too.
    void ExpectNothingOfOurs(const std::string& what, const std::string& operation,
                             const std::string& local = "") {
        std::string url = ServedFiles::Url("dir.d/a.txt");
        std::string outcome = OutcomeOf(operation, url, local, kSeconds);
        if (outcome == "0" || outcome == "1" || outcome.compare(0, 7, "raised ") == 0) return;
        EXPECT_EQ(outcome, OutcomeOf("hand-" + operation, url, local, kSeconds)) << what;
    }

    static constexpr unsigned kSeconds = 3;
};

const std::string kRow = "-rw-r--r-- 1 u g 5 Jan 01 00:00 ";
const std::string kEntry = kRow + "a.txt\r\n";

}  // namespace

TEST_F(FtpChildTest, OperationsInAProcessOfTheirOwnAnswerAsHere) {
    std::string url = ServedFiles::Url("dir.d/a.txt");
    EXPECT_EQ(OutcomeOf("exists", url, "", 60), "1");
    EXPECT_EQ(OutcomeOf("hand-exists", url, "", 60), "1");
    std::string missing = ServedFiles::Url("dir.d/none.txt");
    EXPECT_EQ(OutcomeOf("exists", missing, "", 60), "0");
    EXPECT_EQ(OutcomeOf("info", missing, "", 60).compare(0, 7, "raised "), 0);
}

TEST_F(FtpChildTest, OddListingsMeetNothingOfOurs) {
    const std::string kListings[] = {"\r\n" + kEntry, "   \r\n" + kEntry,
                                     std::string("\0\0\r\n", 4) + kEntry, Pattern(5000)};
    for (const std::string& listing : kListings) {
        server.SetFault("listing " + server.PutAside("listing", listing));
        ExpectNothingOfOurs(listing, "info");
    }
}

TEST_F(FtpChildTest, ServersThatNeverAnswerMeetNothingOfOurs) {
    for (const char* fault : {"silent greeting", "silent RETR", "no data", "reply RETR nonsense"}) {
        server.SetFault(fault);
        ExpectNothingOfOurs(fault, "download", Path("local"));
    }
    DeleteFileA(Path("local").c_str());
}

TEST_F(FtpChildTest, AnUploadWhoseDataConnectionIsResetMeetsNothingOfOurs) {
    server.SetFault("reset 1000");
    ExpectNothingOfOurs("reset", "upload", MakeFile("local", Pattern(100000)));
}

TEST_F(FtpChildTest, TheCacheOfAServerThatRefusesMeetsNothingOfOurs) {
    server.SetFault("reply RETR 550 no");
    ExpectNothingOfOurs("missing", "cache");
}

// The server has neither the old file then nor the new one, but what had come of the new.
TEST_F(FtpChildTest, AProcessKilledInAnUploadLeavesItsFirstBytesOnTheServer) {
    std::string content = Pattern(100000);
    std::string local = MakeFile("local", content);
    server.SetFault("hold 5000");
    EXPECT_EQ(OutcomeOf("upload", ServedFiles::Url("dir.d/a.txt"), local, 10), "hangs");
    EXPECT_EQ(server.ContentOf("dir.d\\a.txt"), content.substr(0, 5000));
    EXPECT_EQ(ContentOf(local), content);
}
