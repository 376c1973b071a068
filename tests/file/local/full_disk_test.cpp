// Saving to a full disk: drive T: is a file system of about a megabyte, empty at the start of each
// test.
#include "file/file_fixture.h"
#include "support/full_disk.h"

namespace {

class FullDiskTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(Exists("T:\\")) << "this program is started by tests/file/full_disk";
        Overwrite(kDocument, m_old);
    }
    void TearDown() override {
        for (const std::string& name : Names()) DeleteFileA(("T:\\" + name).c_str());
    }

    static std::vector<std::string> Names() {
        std::vector<std::string> names;
        WIN32_FIND_DATAA found;
        HANDLE search = FindFirstFileA("T:\\*", &found);
        if (search == INVALID_HANDLE_VALUE) return names;
        do {
            if (found.cFileName[0] != '.') names.push_back(found.cFileName);
        } while (FindNextFileA(search, &found));
        FindClose(search);
        return names;
    }

    static constexpr const char* kDocument = "T:\\document";
    std::string m_old = Pattern(100000);
};

void Save(IXOutFile& file, const std::string& content) {
    file.Write(content.data(), unsigned(content.size()));
    file.Commit();
}

}  // namespace

TEST_F(FullDiskTest, WithoutRoomForAChunkTheFileIsNotOpenedAndNothingIsLeft) {
    FillDisk(0);
    Failure failure = FailureOf([] { OpenOut(kDocument); });
    EXPECT_EQ(failure.code, QXERR_DISK_FULL);
    EXPECT_EQ(failure.operation, 2);
    FreeDisk();
    EXPECT_EQ(ContentOf(kDocument) == m_old, true);
    EXPECT_EQ(Names(), std::vector<std::string>{"document"});
}

TEST_F(FullDiskTest, ADiskThatFillsUpWhileSavingLosesNothing) {
    for (unsigned left : {8192u, kChunk, 2 * kChunk, 3 * kChunk}) {
        FillDisk(left);
        std::string content = Pattern(600000, left);
        OutFile file;
        Failure failure = FailureOf([&] {
            file = OpenOut(kDocument);
            Save(*file.Get(), content);
        });
        // Wine extends a file by a hole, which may then have no page for a byte; Windows refuses to
        // extend it.
        EXPECT_TRUE(failure.code == QXERR_DISK_FULL || failure.code == QXERR_DEVICE)
            << failure.code;
        EXPECT_EQ(failure.operation, 2);
        file.Release();
        FreeDisk();
        EXPECT_EQ(ContentOf(kDocument) == m_old, true);
        EXPECT_EQ(Names(), std::vector<std::string>{"document"});
    }
}

TEST_F(FullDiskTest, OnceThereIsRoomTheSameFileGoesOn) {
    FillDisk(kChunk + 8192);
    std::string content = Pattern(600000, 3);
    OutFile file = OpenOut(kDocument);
    EXPECT_NE(FailureOf([&] { Save(*file.Get(), content); }).code, 0);
    FreeDisk();
    file->Seek(0, 0);
    Save(*file.Get(), content);
    EXPECT_EQ(ContentOf(kDocument) == content, true);
}

TEST_F(FullDiskTest, AFileThatIsKeptForAppendingKeepsItsContentAndLength) {
    FillDisk(0);
    std::string more = Pattern(600000, 5);
    Failure failure = FailureOf([&] {
        File file = Open(kDocument, QXFIO_OUTPUT | QXFIO_KEEP);
        file->Seek(0, 2);
        file->Write(more.data(), unsigned(more.size()));
    });
    EXPECT_TRUE(failure.code == QXERR_DISK_FULL || failure.code == QXERR_DEVICE) << failure.code;
    FreeDisk();
    EXPECT_EQ(ContentOf(kDocument).substr(0, m_old.size()) == m_old, true);
}

TEST_F(FullDiskTest, ACopyThatDoesNotFitNamesTheSource) {
    FillDisk(8192);
    EXPECT_EQ(FailureOf([] { Fio_CopyFile(kDocument, "T:\\copy", 0); }),
              (Failure{QXERR_DISK_FULL, QXOP_COPY, kDocument}));
    EXPECT_EQ(FailureOf([] { OpenOut(kDocument, QXFIO_KEEP); }),
              (Failure{QXERR_DISK_FULL, QXOP_COPY, kDocument}));
    DeleteFileA("T:\\copy");
    FreeDisk();
    EXPECT_EQ(ContentOf(kDocument) == m_old, true);
    EXPECT_EQ(Names(), std::vector<std::string>{"document"});
}
