// What Wine's own network service does not survive: each operation in a process of its own, which
// tells the calls that it makes. An operation answers as it is specified, or it stays in a call to
// the platform.
#include "file/url/ftp_child.h"
#include "file/url/ftp_fixture.h"
#include "support/build_kind.h"

#include <functional>
#include <memory>

namespace {

// A fault, and what becomes of an operation: one of the answers, or this call does not return.
struct Row {
    std::string fault;
    const char* operation;
    std::vector<std::string> answers;
    const char* call;
};

class FtpChildTest : public FtpTest {
protected:
    void SetUp() override {
        server.MakeDirectory("dir.d");
        server.Put("dir.d\\a.txt", "old");
    }

    std::unique_ptr<FtpChild> Start(const std::string& operation, const std::string& name,
                                    int door = 1) {
        return std::make_unique<FtpChild>(operation, ServedFiles::Url(name, "user", door),
                                          Path("local" + std::to_string(door)));
    }

    // The operation with the row's fault, on files that no other door has.
    std::unique_ptr<FtpChild> Start(const Row& row, int door) {
        server.SetFault(row.fault, door);
        std::string content = *row.operation == 'u' ? Pattern(100000) : "local";
        MakeFile("local" + std::to_string(door), content);
        server.Put("dir.d\\" + std::to_string(door) + ".txt", "old");
        bool lists = row.fault.compare(0, 7, "listing") == 0;
        return Start(row.operation, "dir.d/" + (lists ? "a" : std::to_string(door)) + ".txt", door);
    }

    static void ExpectAnswerOrStay(FtpChild& child, const Row& row) {
        std::string outcome = child.Outcome(row.call);
        bool answered = std::count(row.answers.begin(), row.answers.end(), outcome);
        EXPECT_TRUE(answered || outcome == std::string("stays in ") + row.call)
            << row.fault << ": " << outcome;
    }
};

// For half a minute at most.
bool Becomes(const std::function<bool()>& state) {
    for (int wait = 0; wait < 3000; ++wait, Sleep(10))
        if (state()) return true;
    return false;
}

const std::string kRow = "-rw-r--r-- 1 u g 5 Jan 01 00:00 ";
const std::string kEntry = kRow + "a.txt\r\n";

}  // namespace

TEST_F(FtpChildTest, OperationsInAProcessOfTheirOwnAnswerAsHere) {
    server.Put("dir.d\\b.txt", "new");
    auto here = Start("exists", "dir.d/a.txt"), missing = Start("exists", "dir.d/none.txt"),
         info = Start("info", "dir.d/none.txt"), brought = Start("download", "dir.d/b.txt");
    EXPECT_EQ(here->Outcome(), "1");
    EXPECT_EQ(missing->Outcome(), "0");
    EXPECT_EQ(info->Outcome().compare(0, 7, "raised "), 0);
    EXPECT_EQ(brought->Outcome(), "1");
    EXPECT_EQ(ContentOf(Path("local1")), "new");
}

TEST_F(FtpChildTest, WhatDoesNotComeBackIsACallOfThePlatform) {
    auto listing = [&](const std::string& name, const std::string& bytes) {
        return "listing " + server.PutAside(name, bytes);
    };
    const std::vector<Row> kRows = {
        {listing("empty", "\r\n" + kEntry), "exists", {"0", "1"}, "FtpFindFirstFileA"},
        {listing("blank", "   \r\n" + kEntry), "exists", {"0", "1"}, "FtpFindFirstFileA"},
        {listing("nul", std::string("\0\0\r\n", 4) + kEntry),
         "exists",
         {"0", "1"},
         "FtpFindFirstFileA"},
        {listing("random", Pattern(5000)), "exists", {"0"}, "FtpFindFirstFileA"},
        {"silent RETR", "download", {"0"}, "FtpGetFileA"},
        {"no data", "download", {"0"}, "FtpGetFileA"},
        {"reply RETR nonsense", "download", {"0"}, "FtpGetFileA"},
        {"reset 1000", "upload", {"0"}, "FtpPutFileA"},
        {"reply RETR 550 no", "cache", {"0"}, "URLDownloadToCacheFileA"},
    };
    std::vector<std::unique_ptr<FtpChild>> children;
    for (const Row& row : kRows) children.push_back(Start(row, int(children.size()) + 1));
    for (size_t i = 0; i < kRows.size(); ++i) ExpectAnswerOrStay(*children[i], kRows[i]);
}

// The greeting comes before the user, who is the door: such a fault is everybody's.
TEST_F(FtpChildTest, AServerThatSaysNothingKeepsTheCallThatConnects) {
    const Row kSilence = {"silent greeting", "download", {"0"}, "InternetConnectA"};
    auto child = Start(kSilence, 1);
    ExpectAnswerOrStay(*child, kSilence);
}

TEST_F(FtpChildTest, AnUploadWhoseDataConnectionIsResetAtAnyPointIsNoAnswerOfSuccess) {
    const int kPoints = kIsSlowBuild ? 5 : 20;
    const std::string content = Pattern(200000);
    auto nameAt = [](int point) { return "dir.d/" + std::to_string(point) + ".txt"; };
    std::vector<std::unique_ptr<FtpChild>> children;
    for (int point = 1; point <= kPoints; ++point) {
        MakeFile("local" + std::to_string(point), content);
        server.SetFault("reset " + std::to_string(content.size() * point / (kPoints + 1)), point);
        children.push_back(Start("upload", nameAt(point), point));
    }
    for (int point = 1; point <= kPoints; ++point) {
        std::string outcome = children[point - 1]->Outcome("FtpPutFileA");
        EXPECT_TRUE(outcome == "0" || outcome == "stays in FtpPutFileA") << point << outcome;
        children[point - 1]->Kill();
    }
    EXPECT_TRUE(server.AllGone());
    for (int point = 1; point <= kPoints; ++point) {
        std::string left = server.ContentOf("dir.d\\" + std::to_string(point) + ".txt");
        EXPECT_LE(left.size(), content.size() * point / (kPoints + 1));
        EXPECT_EQ(left, content.substr(0, left.size())) << point;
        EXPECT_EQ(ContentOf(Path("local" + std::to_string(point))), content);
    }
}

// The server has neither the old file then nor the new one, but what had come of the new.
TEST_F(FtpChildTest, AProcessKilledInAnUploadLeavesItsFirstBytesOnTheServer) {
    std::string content = Pattern(100000);
    std::string local = MakeFile("local1", content);
    server.SetFault("hold 5000");
    auto child = Start("upload", "dir.d/a.txt");
    EXPECT_TRUE(child->Calls("FtpPutFileA"));
    EXPECT_TRUE(Becomes([&] { return server.Count("held") == 1; }));
    child->Kill();
    EXPECT_TRUE(server.AllGone());
    EXPECT_EQ(server.ContentOf("dir.d\\a.txt"), content.substr(0, 5000));
    EXPECT_EQ(ContentOf(local), content);
}
