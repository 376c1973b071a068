// Output files: growing by chunks, cutting on release, the flags.
#include "file/file_fixture.h"

#include <cstring>

namespace {

class OutputTest : public FileTest {};

std::string ReadBack(IXFile& file) {
    std::string text(size_t(file.GetLength()), '\xEE');
    file.Seek(0, 0);
    EXPECT_EQ(file.Read(text.data(), unsigned(text.size())), text.size());
    return text;
}

}  // namespace

TEST_F(OutputTest, TenBytesLieInAFileOfOneChunkUntilTheLastRelease) {
    File file = Open(Path("f"), QXFIO_OUTPUT);
    file->Write("0123456789", 10);
    EXPECT_GE(SizeOnDisk(Path("f")), kChunk);
    EXPECT_EQ(file->GetLength(), 10u);
    file.Release();
    EXPECT_EQ(ContentOf(Path("f")), "0123456789");
}

TEST_F(OutputTest, TheLastOfSeveralReleasesCutsTheFile) {
    IXFile* file = Fio_Open(Path("f").c_str(), QXFIO_OUTPUT);
    file->WriteByte('x');
    file->AddRef();
    EXPECT_EQ(file->Release(), 1u);
    EXPECT_GE(SizeOnDisk(Path("f")), kChunk);
    EXPECT_EQ(file->Release(), 0u);
    EXPECT_EQ(SizeOnDisk(Path("f")), 1u);
}

TEST_F(OutputTest, AFileThatNothingIsWrittenToIsEmpty) {
    MakeFile("f", "what was there");
    Open(Path("f"), QXFIO_OUTPUT);
    EXPECT_EQ(ContentOf(Path("f")), "");
    Open(Path("new"), QXFIO_OUTPUT);
    EXPECT_EQ(ContentOf(Path("new")), "");
}

TEST_F(OutputTest, AWriteAcrossTheChunksLandsWhole) {
    std::string text = Pattern(3 * kChunk + 11);
    File file = Open(Path("f"), QXFIO_OUTPUT);
    file->WriteByte('>');
    file->Write(text.data(), unsigned(text.size()));
    EXPECT_EQ(file->Tell(), text.size() + 1);
    EXPECT_EQ(SizeOnDisk(Path("f")) % kChunk, 0u);
    EXPECT_EQ(ReadBack(*file.Get()), ">" + text);
    file.Release();
    EXPECT_EQ(ContentOf(Path("f")), ">" + text);
}

TEST_F(OutputTest, AFileOfExactlyOneChunkNeedsNoSecond) {
    std::string text = Pattern(kChunk);
    File file = Open(Path("f"), QXFIO_OUTPUT);
    file->Write(text.data(), kChunk);
    EXPECT_EQ(SizeOnDisk(Path("f")), kChunk);
    char byte;
    EXPECT_EQ(file->Read(&byte, 1), 0u);
    EXPECT_EQ(SizeOnDisk(Path("f")), kChunk);
    file->WriteByte('x');
    EXPECT_EQ(SizeOnDisk(Path("f")), 2 * kChunk);
    file.Release();
    EXPECT_EQ(ContentOf(Path("f")), text + "x");
}

TEST_F(OutputTest, TypedWritesPutLittleEndianBytes) {
    File file = Open(Path("f"), QXFIO_OUTPUT);
    file->WriteByte(0x81);
    file->WriteShort(0x8302);
    file->WriteLong(0x87060504);
    file->WriteDouble(-2.5);
    file->WriteString("text");
    file->WriteString("");
    file.Release();
    EXPECT_EQ(ContentOf(Path("f")), std::string("\x81\x02\x83\x04\x05\x06\x87"
                                                "\0\0\0\0\0\0\x04\xC0"
                                                "text\0"
                                                "\0",
                                                21));
}

TEST_F(OutputTest, WhatIsWrittenCanBeReadAtOnce) {
    File file = Open(Path("f"), QXFIO_OUTPUT);
    file->WriteLong(12345);
    file->WriteString("line\n");
    EXPECT_EQ(FailureOf([&] { file->ReadByte(); }), (Failure{QXERR_EOF, QXOP_READ, Path("f")}));
    file->Seek(0, 0);
    EXPECT_EQ(file->ReadLong(), 12345u);
    char line[16];
    EXPECT_EQ(file->ReadLine(line, 15), 4);
    EXPECT_STREQ(line, "line\n");
}

TEST_F(OutputTest, AnOverwriteInTheMiddleKeepsTheLength) {
    File file = Open(Path("f"), QXFIO_OUTPUT);
    file->Write("0123456789", 10);
    file->Seek(3, 0);
    file->Write("xyz", 3);
    EXPECT_EQ(file->GetLength(), 10u);
    EXPECT_EQ(file->Tell(), 6u);
    file.Release();
    EXPECT_EQ(ContentOf(Path("f")), "012xyz6789");
}

TEST_F(OutputTest, ASeekBehindTheEndIsAcceptedAndTheGapReadsAsZeros) {
    File file = Open(Path("f"), QXFIO_OUTPUT);
    file->Write("ab", 2);
    EXPECT_EQ(file->Seek(2 * kChunk + 5, 0), 2 * kChunk + 5u);
    EXPECT_EQ(file->GetLength(), 2u);
    char byte;
    EXPECT_EQ(file->Read(&byte, 1), 0u);
    file->Write("cd", 2);
    EXPECT_EQ(file->GetLength(), 2 * kChunk + 7u);
    file.Release();
    EXPECT_EQ(ContentOf(Path("f")), "ab" + std::string(2 * kChunk + 3, '\0') + "cd");
}

TEST_F(OutputTest, ABadSeekOnOutputNamesTheModeWrite) {
    File file = Open(Path("f"), QXFIO_OUTPUT);
    Failure bad{QXERR_SEEK, 2, Path("f")};
    EXPECT_EQ(FailureOf([&] { file->Seek(-1, 0); }), bad);
    EXPECT_EQ(FailureOf([&] { file->Seek(0, 3); }), bad);
}

TEST_F(OutputTest, AWriteWhereNoFileCanReachIsAFailureAndTheFileGoesOn) {
    File file = Open(Path("f"), QXFIO_OUTPUT);
    file->Write("ab", 2);
    file->Seek(LLONG_MAX, 0);
    EXPECT_NE(FailureOf([&] { file->WriteByte('x'); }).code, 0);
    file->Seek(LLONG_MAX, 1);
    EXPECT_NE(FailureOf([&] { file->WriteByte('x'); }).code, 0);
    EXPECT_EQ(file->GetLength(), 2u);
    file->Seek(0, 2);
    file->WriteByte('c');
    file.Release();
    EXPECT_EQ(ContentOf(Path("f")), "abc");
}

TEST_F(OutputTest, KeepLeavesWhatExistsAndStartsAtItsBeginning) {
    MakeFile("f", "0123456789");
    File file = Open(Path("f"), QXFIO_OUTPUT | QXFIO_KEEP);
    EXPECT_EQ(file->Tell(), 0u);
    EXPECT_EQ(file->GetLength(), 10u);
    file->Write("ab", 2);
    file->Seek(0, 2);
    file->Write("cd", 2);
    file.Release();
    EXPECT_EQ(ContentOf(Path("f")), "ab23456789cd");
}

TEST_F(OutputTest, KeepOnALongFileChangesOnlyWhatIsWritten) {
    std::string text = Pattern(4 * kChunk + 100);
    MakeFile("f", text);
    File file = Open(Path("f"), QXFIO_OUTPUT | QXFIO_KEEP);
    file->Seek(2 * kChunk - 1, 0);
    file->WriteShort(0x4241);
    file->Seek(0, 0);
    file->WriteByte('!');
    file.Release();
    text.replace(2 * kChunk - 1, 2, "AB");
    text[0] = '!';
    EXPECT_EQ(ContentOf(Path("f")), text);
}

TEST_F(OutputTest, KeepNeedsTheFile) {
    EXPECT_EQ(FailureOf([&] { Open(Path("none"), QXFIO_OUTPUT | QXFIO_KEEP); }),
              (Failure{QXERR_NOT_FOUND, 2, Path("none")}));
    EXPECT_FALSE(Exists(Path("none")));
}

TEST_F(OutputTest, ATemporaryFileGoesWhenItIsClosed) {
    File file = Open(Path("f"), QXFIO_OUTPUT | QXFIO_TEMPORARY);
    file->WriteLong(1);
    EXPECT_TRUE(Exists(Path("f")));
    file.Release();
    EXPECT_FALSE(Exists(Path("f")));
}

TEST_F(OutputTest, AnOutputFileIsSharedWithNobody) {
    File file = Open(Path("f"), QXFIO_OUTPUT);
    EXPECT_EQ(TryOpen(Path("f"), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE),
              DWORD(ERROR_SHARING_VIOLATION));
    EXPECT_EQ(FailureOf([&] { Open(Path("f")); }), (Failure{QXERR_SHARING, 1, Path("f")}));
    EXPECT_EQ(FailureOf([&] { Open(Path("f"), QXFIO_OUTPUT); }),
              (Failure{QXERR_SHARING, 2, Path("f")}));
}

TEST_F(OutputTest, FlushPutsTheViewOnDisk) {
    File file = Open(Path("f"), QXFIO_OUTPUT);
    file->Write("abc", 3);
    EXPECT_NE(file->Flush(), 0);
}

TEST_F(OutputTest, ABadSourceIsADeviceFailureInEveryWidthAndTheLengthStays) {
    File file = Open(Path("f"), QXFIO_OUTPUT);
    file->Write("ab", 2);
    auto nowhere = reinterpret_cast<const void*>(size_t(16));
    for (unsigned width : {1u, 2u, 3u, 4u, 5u, 7u, 8u, 9u, 100u}) {
        EXPECT_EQ(FailureOf([&] { file->Write(nowhere, width); }),
                  (Failure{QXERR_DEVICE, 2, Path("f")}))
            << width;
    }
    EXPECT_EQ(file->Tell(), 2u);
    file.Release();
    EXPECT_EQ(ContentOf(Path("f")), "ab");
}

TEST_F(OutputTest, AReadOnlyFileIsReadButNotOpenedForOutput) {
    std::string path = MakeFile("f", "abc");
    SetReadOnly(path, true);
    EXPECT_EQ(Open(path)->ReadByte(), 'a');
    // Wine lets root write read-only files.
    if (TryOpen(path, GENERIC_WRITE, 0) == 0)
        GTEST_SKIP() << "the platform lets this user write read-only files";
    EXPECT_EQ(FailureOf([&] { Open(path, QXFIO_OUTPUT); }),
              (Failure{QXERR_ACCESS_DENIED, 2, path}));
    EXPECT_EQ(ContentOf(path), "abc");
}

TEST_F(OutputTest, AFileOfMoreThanFourGibibytesIsReachedInItsFullLength) {
    constexpr unsigned long long kFar = (5ull << 30) + 7;
    // The gap costs no disk where the platform keeps sparse files.
    File file = Open(Path("f"), QXFIO_OUTPUT);
    file->Seek((long long)kFar, 0);
    file->WriteLong(0xCAFEF00D);
    EXPECT_EQ(file->GetLength(), kFar + 4);
    file->Seek(0, 0);
    file->WriteByte('<');
    file.Release();
    EXPECT_EQ(SizeOnDisk(Path("f")), kFar + 4);

    FioFileInfo info = {};
    Fio_GetFileInfo(Path("f").c_str(), &info);
    EXPECT_EQ(info.size, unsigned((kFar + 4) & 0xFFFFFFFF));  // the low 32 bits

    file = Open(Path("f"), QXFIO_RANDOM);
    EXPECT_EQ(file->GetLength(), kFar + 4);
    EXPECT_EQ(file->Seek(-4, 2), kFar);
    EXPECT_EQ(file->ReadLong(), 0xCAFEF00D);
    file->Seek(0, 0);
    EXPECT_EQ(file->ReadByte(), '<');
}
