// Files behind urls, against a real server.
#include "file/file_slots.h"
#include "file/url/ftp_fixture.h"

namespace {

class UrlFileTest : public FtpTest {
protected:
    void SetUp() override { server.MakeDirectory("dir.d"); }
};

}  // namespace

TEST_F(UrlFileTest, AnInputFileReadsWhatTheServerHas) {
    std::string content = Pattern(3 * kChunk + 17);
    server.Put("a.bin", content);
    {
        File file(Fio_UrlOpen(Url("a.bin"), 0));
        ASSERT_TRUE(file);
        EXPECT_EQ(file->GetLength(), content.size());
        std::string read(content.size(), '\0');
        EXPECT_EQ(file->Read(read.data(), unsigned(read.size())), read.size());
        EXPECT_EQ(read, content);
        EXPECT_EQ(FailureOf([&] { file->ReadByte(); }).code, QXERR_EOF);
        EXPECT_EQ(file->Seek(5, QXSEEK_START), 5u);
        EXPECT_EQ(file->ReadByte(), static_cast<unsigned char>(content[5]));
        EXPECT_EQ(file->Tell(), 6u);
    }
    RemoveTempFiles();
}

TEST_F(UrlFileTest, OpenTakesAUrlToTheSameFile) {
    server.Put("a.txt", "line one\nline two");
    {
        File file(Fio_Open(Url("a.txt"), 0));
        char line[100];
        EXPECT_EQ(file->ReadLine(line, 99), 8);
    }
    RemoveTempFiles();
}

TEST_F(UrlFileTest, ThePathIsTheUrl) {
    server.Put("a.txt", "a");
    char* url = Url("a.txt");
    {
        File file(Fio_UrlOpen(url, 0));
        EXPECT_STREQ(file->GetPath(), url);
        OutFile out(Fio_UrlOpenOut(Url("dir.d/b.txt"), 0));
        EXPECT_STREQ(out->GetPath(), Url("dir.d/b.txt"));
    }
    RemoveTempFiles();
}

TEST_F(UrlFileTest, TheLocalCopyOfAnInputFileStaysBehind) {
    server.Put("a.txt", "content");
    Fio_UrlOpen(Url("a.txt"), 0)->Release();
    ASSERT_EQ(TempFiles().size(), 1u);
    EXPECT_EQ(ContentOf(TempPath(TempFiles()[0])), "content");
    RemoveTempFiles();  // nothing holds it any more
}

TEST_F(UrlFileTest, TwoFilesOfOneUrlHaveCopiesOfTheirOwn) {
    server.Put("a.txt", "first");
    {
        File first(Fio_UrlOpen(Url("a.txt"), 0));
        server.Put("a.txt", "second");
        File second(Fio_UrlOpen(Url("a.txt"), 0));
        EXPECT_EQ(TempFiles().size(), 2u);
        EXPECT_EQ(first->GetLength(), 5u);  // what changes on the server is not seen
        EXPECT_EQ(second->GetLength(), 6u);
    }
    RemoveTempFiles();
}

TEST_F(UrlFileTest, AMissingFileRaisesTheUrl) {
    char* url = Url("none.txt");
    Failure failure = FailureOf([&] { Fio_UrlOpen(url, 0); });
    EXPECT_EQ(failure.operation, QXOP_OPEN);
    EXPECT_EQ(failure.name, url);
}

TEST_F(UrlFileTest, WhatAnOutputFlagWritesStaysInTheLocalCopy) {
    server.Put("a.txt", "old");
    {
        File file(Fio_UrlOpen(Url("a.txt"), QXFIO_OUTPUT | QXFIO_KEEP));
        file->Write("NEW", 3);
        EXPECT_EQ(file->GetLength(), 3u);
    }
    ASSERT_EQ(TempFiles().size(), 1u);
    EXPECT_EQ(ContentOf(TempPath(TempFiles()[0])), "NEW");
    EXPECT_EQ(server.ContentOf("a.txt"), "old");
    RemoveTempFiles();
}

TEST_F(UrlFileTest, ExceptionsOfTheLocalCopyNameIt) {
    server.Put("a.txt", "a");
    {
        File file(Fio_UrlOpen(Url("a.txt"), 0));
        ASSERT_EQ(TempFiles().size(), 1u);
        EXPECT_EQ(FailureOf([&] { file->Seek(2, QXSEEK_START); }),
                  (Failure{QXERR_SEEK, QXOP_READ, TempPath(TempFiles()[0])}));
    }
    RemoveTempFiles();
}

TEST_F(UrlFileTest, FilesKnowTheirInterfaces) {
    server.Put("a.txt", "a");
    {
        File file(Fio_UrlOpen(Url("a.txt"), 0));
        EXPECT_EQ(file->QueryInterface(qx_typeid<IXFile>(), nullptr), 1);
        EXPECT_EQ(file->QueryInterface(qx_typeid<IXOutFile>(), nullptr), 0);
        OutFile out(Fio_UrlOpenOut(Url("dir.d/b.txt"), 0));
        EXPECT_EQ(out->QueryInterface(qx_typeid<IXOutFile>(), nullptr), 1);
        EXPECT_EQ(out->QueryInterface(qx_typeid<IXFile>(), nullptr), 0);
        EXPECT_EQ(file->AddRef(), 2u);
        EXPECT_EQ(file->Release(), 1u);
    }
    RemoveTempFiles();
}

TEST_F(UrlFileTest, EveryOperationReachesTheLocalCopy) {
    server.Put("a.txt", "old");
    IXFile* file = Fio_UrlOpen(Url("a.txt"), QXFIO_OUTPUT);
    WriteThroughSlots(file);
    ReadThroughSlots(file);
    CountThroughSlots(file, qx_typeid<IXFile>());
    EXPECT_STREQ(Call<const char*>(file, kGetPath), Url("a.txt"));
    EXPECT_EQ(Call<unsigned>(file, kRelease), 0u);
    ASSERT_EQ(TempFiles().size(), 1u);
    EXPECT_EQ(SizeOnDisk(TempPath(TempFiles()[0])), 21u);
    RemoveTempFiles();
}

TEST_F(UrlFileTest, EveryOperationOfAnOutputFileReachesTheLocalCopy) {
    IXOutFile* file = Fio_UrlOpenOut(Url("dir.d/a.txt"), 0);
    WriteThroughSlots(file);
    ReadThroughSlots(file);
    CountThroughSlots(file, qx_typeid<IXOutFile>());
    EXPECT_STREQ(Call<const char*>(file, kGetPath), Url("dir.d/a.txt"));
    Call<void>(file, kCommit);
    EXPECT_EQ(server.ContentOf("dir.d\\a.txt").size(), 21u);
    EXPECT_EQ(Call<unsigned>(file, kRelease), 0u);
}

TEST_F(UrlFileTest, CommitSendsTheFile) {
    std::string content = Pattern(kChunk + 100);
    OutFile file(Fio_UrlOpenOut(Url("dir.d/a.bin"), 0));
    ASSERT_TRUE(file);
    file->Write(content.data(), unsigned(content.size()));
    EXPECT_FALSE(server.Has("dir.d\\a.bin"));
    file->Commit();
    EXPECT_EQ(server.ContentOf("dir.d\\a.bin"), content);
    EXPECT_TRUE(TempFiles().empty());
}

TEST_F(UrlFileTest, OpenOutTakesAUrlToTheSameFile) {
    server.Put("dir.d\\a.txt", "the old and longer content");
    OutFile file(Fio_OpenOut(Url("dir.d/a.txt"), 0));
    file->WriteString("new");
    file->Commit();
    EXPECT_EQ(server.ContentOf("dir.d\\a.txt"), std::string("new", 4));
}

TEST_F(UrlFileTest, KeepingStartsEmptyAllTheSame) {
    server.Put("dir.d\\a.txt", "old");
    OutFile file(Fio_UrlOpenOut(Url("dir.d/a.txt"), QXFIO_KEEP));
    EXPECT_EQ(file->GetLength(), 0u);
    file->Write("new", 3);
    file->Commit();
    EXPECT_EQ(server.ContentOf("dir.d\\a.txt"), "new");
}

TEST_F(UrlFileTest, WithoutCommitTheServerKeepsWhatItHad) {
    server.Put("dir.d\\a.txt", "old");
    {
        OutFile file(Fio_UrlOpenOut(Url("dir.d/a.txt"), 0));
        file->Write("new", 3);
    }
    EXPECT_EQ(server.ContentOf("dir.d\\a.txt"), "old");
    EXPECT_EQ(server.Count("STOR /dir.d/a.txt"), 0);
    ASSERT_EQ(TempFiles().size(), 1u);  // the temporary file stays, empty
    EXPECT_EQ(ContentOf(TempPath(TempFiles()[0])), "");
    RemoveTempFiles();
}

TEST_F(UrlFileTest, TheTemporaryFileIsLockedUntilCommit) {
    OutFile file(Fio_UrlOpenOut(Url("dir.d/a.txt"), 0));
    auto names = TempFiles();
    ASSERT_EQ(names.size(), 2u);  // what the url's file is, and what is written before Commit
    int locked = 0;
    for (const std::string& name : names) locked += Fio_LockCount(TempPath(name).c_str());
    EXPECT_EQ(locked, 1);
    file->Commit();
}

TEST_F(UrlFileTest, AFailedUploadIsNotReported) {
    server.Put("dir.d\\a.txt", "old");
    OutFile file(Fio_UrlOpenOut(Url("dir.d/a.txt"), 0));
    file->Write("new", 3);
    server.MakeDirectory("dir.d\\a.txt.moved");
    DeleteFileA(server.PathOf("dir.d\\a.txt").c_str());
    server.MakeDirectory("dir.d\\a.txt");  // in the way
    file->Commit();
    EXPECT_TRUE(server.Names("dir.d\\a.txt").empty());
    EXPECT_TRUE(TempFiles().empty());
}

TEST_F(UrlFileTest, ASecondCommitFindsNoTemporaryFile) {
    OutFile file(Fio_UrlOpenOut(Url("dir.d/a.txt"), 0));
    file->Commit();
    Failure failure = FailureOf([&] { file->Commit(); });
    EXPECT_EQ(failure.code, QXERR_NOT_FOUND);
    EXPECT_EQ(failure.operation, QXOP_DELETE_FILE);
}

TEST_F(UrlFileTest, DataOperationsAfterCommitAreBadUse) {
    OutFile file(Fio_UrlOpenOut(Url("dir.d/a.txt"), 0));
    file->Commit();
    EXPECT_EQ(FailureOf([&] { file->WriteByte(1); }), (Failure{QXERR_BAD_USE, -1, ""}));
}

TEST_F(UrlFileTest, ATargetThatMayNotBeWrittenIsAPlainCode9) {
    server.Put("dir.d\\a.txt", "old");
    const Failure kDenied = {QXERR_ACCESS_DENIED, -1, ""};
    EXPECT_EQ(FailureOf([&] { Fio_UrlOpenOut(Url("dir.d/a.txt", "reader"), 0); }), kDenied);
    EXPECT_EQ(FailureOf([&] { Fio_OpenOut(Url("dir.d/b.txt", "reader"), 0); }), kDenied);
    EXPECT_EQ(FailureOf([&] { Fio_UrlOpenOut(Url("a.txt"), 0); }), kDenied);  // the root
}
