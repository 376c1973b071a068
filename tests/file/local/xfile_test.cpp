// Input files: reading, seeking, typed reads, lines.
#include "file/file_fixture.h"

#include <cstring>

namespace {

class XFileTest : public FileTest {};

std::string ReadUpTo(IXFile& file, unsigned count) {
    std::string text(count, '\xEE');
    text.resize(file.Read(text.data(), count));
    return text;
}

// False where the platform is no Wine.
bool CutBelowThePlatform(const std::string& path) {
    using UnixName = char*(CDECL*)(const wchar_t*);
    auto unixName = reinterpret_cast<UnixName>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleA("kernel32.dll"), "wine_get_unix_file_name")));
    if (!unixName) return false;
    char* name = unixName(std::wstring(path.begin(), path.end()).c_str());
    std::string command = "/usr/bin/truncate --size=0 " + std::string(name);
    HeapFree(GetProcessHeap(), 0, name);
    STARTUPINFOA start = {};
    start.cb = sizeof start;
    PROCESS_INFORMATION process;
    std::string program = "\\\\?\\unix\\usr\\bin\\truncate";
    EXPECT_TRUE(CreateProcessA(program.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr,
                               nullptr, &start, &process))
        << GetLastError();
    WaitForSingleObject(process.hProcess, INFINITE);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    for (int i = 0; i < 500 && SizeOnDisk(path); ++i) Sleep(10);
    return SizeOnDisk(path) == 0;
}

}  // namespace

TEST_F(XFileTest, AnEmptyFileHasNothingToRead) {
    File file = Open(MakeFile("empty", ""));
    char byte = 7;
    EXPECT_EQ(file->Read(&byte, 1), 0u);
    EXPECT_EQ(byte, 7);
    EXPECT_EQ(FailureOf([&] { file->ReadByte(); }), (Failure{QXERR_EOF, QXOP_READ, Path("empty")}));
    EXPECT_EQ(file->GetLength(), 0u);
    EXPECT_EQ(file->Tell(), 0u);
    EXPECT_NE(file->Flush(), 0);
    EXPECT_EQ(file->Seek(0, 2), 0u);
    EXPECT_EQ(FailureOf([&] { file->Seek(1, 0); }).code, QXERR_SEEK);
}

TEST_F(XFileTest, ReadAnswersWhatIsLeftAndThenNothing) {
    File file = Open(MakeFile("f", "abcdefg"));
    EXPECT_EQ(ReadUpTo(*file.Get(), 0), "");
    EXPECT_EQ(ReadUpTo(*file.Get(), 3), "abc");
    EXPECT_EQ(file->Tell(), 3u);
    EXPECT_EQ(ReadUpTo(*file.Get(), 100), "defg");
    EXPECT_EQ(ReadUpTo(*file.Get(), 100), "");
    EXPECT_EQ(file->Tell(), 7u);
}

TEST_F(XFileTest, TypedReadsTakeLittleEndianBytes) {
    double value = -2.5;
    std::string bytes("\x81\x02\x83\x04\x05\x06\x87", 7);
    bytes.append(reinterpret_cast<char*>(&value), 8);
    File file = Open(MakeFile("f", bytes));
    EXPECT_EQ(file->ReadByte(), 0x81u);
    EXPECT_EQ(file->ReadShort(), 0x8302u);
    EXPECT_EQ(file->ReadLong(), 0x87060504u);
    EXPECT_EQ(file->ReadDouble(), -2.5);
    EXPECT_EQ(file->Tell(), 15u);
}

TEST_F(XFileTest, ATypedReadThatIsCutShortIsTheEndOfTheFile) {
    std::string path = MakeFile("f", "1234567");
    Failure end{QXERR_EOF, QXOP_READ, path};
    File file = Open(path);
    EXPECT_EQ(FailureOf([&] { file->ReadDouble(); }), end);
    EXPECT_EQ(file->Tell(), 7u);  // the bytes that were there are consumed
    file->Seek(4, 0);
    EXPECT_EQ(FailureOf([&] { file->ReadLong(); }), end);
    file->Seek(6, 0);
    EXPECT_EQ(FailureOf([&] { file->ReadShort(); }), end);
    EXPECT_EQ(FailureOf([&] { file->ReadByte(); }), end);
}

TEST_F(XFileTest, SeekCountsFromTheStartThePositionAndTheEnd) {
    File file = Open(MakeFile("f", "0123456789"));
    EXPECT_EQ(file->Seek(4, QXSEEK_START), 4u);
    EXPECT_EQ(file->Seek(3, QXSEEK_CURRENT), 7u);
    EXPECT_EQ(file->Seek(-5, QXSEEK_CURRENT), 2u);
    EXPECT_EQ(file->ReadByte(), '2');
    EXPECT_EQ(file->Seek(-1, QXSEEK_END), 9u);
    EXPECT_EQ(file->ReadByte(), '9');
    EXPECT_EQ(file->Seek(0, QXSEEK_END), 10u);
    EXPECT_EQ(file->Tell(), 10u);
}

TEST_F(XFileTest, ASeekBehindTheEndOfAnInputFileIsABadSeek) {
    std::string path = MakeFile("f", "0123456789");
    Failure bad{QXERR_SEEK, 1, path};
    File file = Open(path);
    file->Seek(3, 0);
    EXPECT_EQ(file->Seek(10, 0), 10u);
    file->Seek(3, 0);
    EXPECT_EQ(FailureOf([&] { file->Seek(11, 0); }), bad);
    EXPECT_EQ(FailureOf([&] { file->Seek(8, 1); }), bad);
    EXPECT_EQ(FailureOf([&] { file->Seek(1, 2); }), bad);
    EXPECT_EQ(FailureOf([&] { file->Seek(LLONG_MAX, 0); }), bad);
    EXPECT_EQ(FailureOf([&] { file->Seek(LLONG_MAX, 1); }), bad);
    EXPECT_EQ(file->Tell(), 3u);
}

TEST_F(XFileTest, ANegativeTargetOrAnotherOriginIsABadSeek) {
    std::string path = MakeFile("f", "0123456789");
    Failure bad{QXERR_SEEK, 1, path};
    File file = Open(path);
    file->Seek(3, 0);
    EXPECT_EQ(FailureOf([&] { file->Seek(-1, 0); }), bad);
    EXPECT_EQ(FailureOf([&] { file->Seek(-4, 1); }), bad);
    EXPECT_EQ(FailureOf([&] { file->Seek(-11, 2); }), bad);
    EXPECT_EQ(FailureOf([&] { file->Seek(LLONG_MIN, 2); }), bad);
    EXPECT_EQ(FailureOf([&] { file->Seek(0, 3); }), bad);
    EXPECT_EQ(FailureOf([&] { file->Seek(0, -1); }), bad);
    EXPECT_EQ(file->Tell(), 3u);
}

TEST_F(XFileTest, ReadLineKeepsTheLineFeedButDoesNotCountIt) {
    File file = Open(MakeFile("f", "ab\ncd"));
    char line[16];
    memset(line, '#', sizeof line);
    EXPECT_EQ(file->ReadLine(line, 10), 2);
    EXPECT_EQ(std::string(line, 5), std::string("ab\n\0#", 5));
}

TEST_F(XFileTest, ReadLineAtTheEndOfTheFileLeavesTheCellBeforeTheNul) {
    File file = Open(MakeFile("f", "cd"));
    char line[16];
    memset(line, '#', sizeof line);
    EXPECT_EQ(file->ReadLine(line, 10), 2);
    EXPECT_EQ(std::string(line, 5), std::string("cd#\0#", 5));
    memset(line, '#', sizeof line);
    EXPECT_EQ(file->ReadLine(line, 10), 0);
    EXPECT_EQ(std::string(line, 3), std::string("#\0#", 3));
}

TEST_F(XFileTest, ReadLineStopsAtTheCountAndPutsTheNulBehindIt) {
    File file = Open(MakeFile("f", "abcdef\n"));
    char line[16];
    memset(line, '#', sizeof line);
    EXPECT_EQ(file->ReadLine(line, 3), 3);
    EXPECT_EQ(std::string(line, 5), std::string("abc\0#", 5));
    EXPECT_EQ(file->Tell(), 3u);
}

// The line feed is consumed, and a caller that looks for it in the buffer does not find it.
TEST_F(XFileTest, ALineFeedInTheLastCellOfReadLineIsReplacedByTheNul) {
    File file = Open(MakeFile("f", "ab\ncd"));
    char line[16];
    memset(line, '#', sizeof line);
    EXPECT_EQ(file->ReadLine(line, 3), 2);
    EXPECT_EQ(std::string(line, 4), std::string("ab\0#", 4));
    EXPECT_EQ(file->Tell(), 3u);
}

TEST_F(XFileTest, TheEndOfTheFileInTheLastCellOfReadLineGetsTheNul) {
    File file = Open(MakeFile("f", "ab"));
    char line[16];
    memset(line, '#', sizeof line);
    EXPECT_EQ(file->ReadLine(line, 3), 2);
    EXPECT_EQ(std::string(line, 4), std::string("ab\0#", 4));
}

TEST_F(XFileTest, ReadLineWithCountsOneZeroAndLessWritesOneNulAtMost) {
    File file = Open(MakeFile("f", "abc"));
    char line[4] = {'#', '#', '#', '#'};
    EXPECT_EQ(file->ReadLine(line, 1), 1);
    EXPECT_EQ(std::string(line, 4), std::string("a\0##", 4));
    for (int count : {0, -1, INT_MIN}) {
        memset(line, '#', sizeof line);
        EXPECT_EQ(file->ReadLine(line, count), 0);
        EXPECT_EQ(std::string(line, 2), std::string("\0#", 2));
    }
    EXPECT_EQ(file->Tell(), 1u);
}

TEST_F(XFileTest, ReadLinePassesNulBytesAndCarriageReturnsOn) {
    File file = Open(MakeFile("f", std::string("a\0\r\nb", 5)));
    char line[16];
    EXPECT_EQ(file->ReadLine(line, 10), 3);
    EXPECT_EQ(std::string(line, 5), std::string("a\0\r\n\0", 5));
}

TEST_F(XFileTest, ReadLineGoesAcrossTheEndOfTheView) {
    std::string text(kChunk - 3, 'x');
    text += "\n12345\nend";
    File file = Open(MakeFile("f", text));
    file->Seek(kChunk - 2, 0);
    char line[16];
    EXPECT_EQ(file->ReadLine(line, 15), 5);
    EXPECT_STREQ(line, "12345\n");
    EXPECT_EQ(file->Tell(), kChunk + 4u);
}

TEST_F(XFileTest, AFileOpenForInputTakesNoBytes) {
    std::string path = MakeFile("f", "abc");
    File file = Open(path);
    Failure refused{QXERR_DEVICE, 1, path};
    EXPECT_EQ(FailureOf([&] { file->Write("x", 1); }), refused);
    EXPECT_EQ(FailureOf([&] { file->WriteByte(1); }), refused);
    EXPECT_EQ(FailureOf([&] { file->WriteShort(1); }), refused);
    EXPECT_EQ(FailureOf([&] { file->WriteLong(1); }), refused);
    EXPECT_EQ(FailureOf([&] { file->WriteDouble(1); }), refused);
    EXPECT_EQ(FailureOf([&] { file->WriteString(""); }), refused);
    EXPECT_EQ(FailureOf([&] { file->Write("x", 0); }), Failure{});
    EXPECT_EQ(file->Tell(), 0u);
    file.Release();
    EXPECT_EQ(ContentOf(path), "abc");
    File empty = Open(MakeFile("empty", ""));
    EXPECT_EQ(FailureOf([&] { empty->Write("x", 1); }).code, QXERR_DEVICE);
}

TEST_F(XFileTest, GetPathAnswersThePathAsOpened) {
    std::string path = MakeFile("f", "abc");
    std::string spelling = Directory() + "/./F";
    EXPECT_STREQ(Open(spelling)->GetPath(), spelling.c_str());
}

TEST_F(XFileTest, ANullPathMakesATemporaryFileOfTheSystem) {
    IXFile* file = Fio_Open(nullptr, QXFIO_OUTPUT);
    std::string path = file->GetPath();
    char temp[MAX_PATH];
    GetTempPathA(MAX_PATH, temp);
    EXPECT_EQ(path.substr(0, strlen(temp)), temp);
    EXPECT_EQ(_strnicmp(path.c_str() + strlen(temp), "QXP", 3), 0);
    file->WriteString("temporary");
    file->Release();
    EXPECT_EQ(ContentOf(path), std::string("temporary", 10));
    DeleteFileA(path.c_str());
}

TEST_F(XFileTest, AnEmptyPathIsNoTemporaryFile) {
    EXPECT_EQ(FailureOf([] { Fio_Open("", 0); }).code, QXERR_BAD_NAME);
}

TEST_F(XFileTest, AddRefAndReleaseCountFromOne) {
    IXFile* file = Fio_Open(MakeFile("f", "abc").c_str(), 0);
    EXPECT_EQ(file->AddRef(), 2u);
    EXPECT_EQ(file->AddRef(), 3u);
    EXPECT_EQ(file->Release(), 2u);
    EXPECT_EQ(file->Release(), 1u);
    EXPECT_EQ(file->ReadByte(), 'a');
    EXPECT_EQ(file->Release(), 0u);
    EXPECT_EQ(TryOpen(Path("f"), GENERIC_READ, 0), 0u);
}

TEST_F(XFileTest, TheLookupKnowsIXFileAndTheRootOnly) {
    File file = Open(MakeFile("f", "abc"));
    IQXUnknown* out = nullptr;
    EXPECT_EQ(file->QueryInterface(qx_typeid<IXFile>(), &out), 1);
    EXPECT_EQ(out, file.Get());
    out->Release();
    EXPECT_EQ(file->QueryInterface(qx_typeid<IQXUnknown>(), &out), 1);
    out->Release();
    EXPECT_EQ(file->QueryInterface(qx_typeid<IXOutFile>(), &out), 0);
    EXPECT_EQ(out, nullptr);
}

TEST_F(XFileTest, SeveralReadersAndAForeignWriterShareTheFile) {
    std::string path = MakeFile("f", "abc");
    File one = Open(path), two = Open(path);
    one->Seek(1, 0);
    EXPECT_EQ(two->ReadByte(), 'a');
    EXPECT_EQ(one->ReadByte(), 'b');
    EXPECT_EQ(TryOpen(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE), 0u);
}

TEST_F(XFileTest, BothAccessHintsReadTheSameBytes) {
    std::string text = Pattern(3 * kChunk + 5);
    std::string path = MakeFile("f", text);
    EXPECT_EQ(ReadUpTo(*Open(path).Get(), 4 * kChunk), text);
    EXPECT_EQ(ReadUpTo(*Open(path, QXFIO_RANDOM).Get(), 4 * kChunk), text);
}

// A page of the mapping whose bytes are gone raises the platform's in-page error.
TEST_F(XFileTest, AFileThatShrinksUnderTheViewIsADeviceFailureInEveryWidth) {
    std::string path = MakeFile("f", Pattern(kChunk));
    File file = Open(path);
    // The platform itself keeps a mapped file from shrinking, so the tool of the system below Wine
    // does it.
    if (!CutBelowThePlatform(path)) GTEST_SKIP() << "there is no system below the platform";
    Failure lost{QXERR_DEVICE, 1, path};
    char buffer[4096];
    file->Seek(8192, 0);
    EXPECT_EQ(FailureOf([&] { file->ReadByte(); }), lost);
    EXPECT_EQ(FailureOf([&] { file->ReadShort(); }), lost);
    EXPECT_EQ(FailureOf([&] { file->ReadLong(); }), lost);
    EXPECT_EQ(FailureOf([&] { file->ReadDouble(); }), lost);
    EXPECT_EQ(FailureOf([&] { file->ReadLine(buffer, 10); }), lost);
    for (unsigned width : {1u, 2u, 3u, 4u, 5u, 7u, 8u, 9u, 16u, 100u, 4096u}) {
        EXPECT_EQ(FailureOf([&] { file->Read(buffer, width); }), lost) << width;
    }
    EXPECT_EQ(file->Tell(), 8192u);
}

TEST_F(XFileTest, AnUnreadableBufferIsADeviceFailure) {
    std::string path = MakeFile("f", Pattern(1000));
    File file = Open(path);
    auto nowhere = reinterpret_cast<void*>(size_t(16));
    for (unsigned width : {1u, 2u, 4u, 8u, 100u}) {
        EXPECT_EQ(FailureOf([&] { file->Read(nowhere, width); }), (Failure{QXERR_DEVICE, 1, path}))
            << width;
    }
    EXPECT_EQ(file->ReadByte(), static_cast<unsigned char>(Pattern(1)[0]));
}
