// Memory files: a caller's block behind a path.
#include "file/file_fixture.h"

#include <cstring>

namespace {

// A block below 2 GiB, where a path can name it.
class LowBlock {
public:
    explicit LowBlock(const std::string& content) {
        for (size_t at = 0x10000000; !bytes && at < 0x70000000; at += 0x10000) {
            bytes = static_cast<char*>(VirtualAlloc(reinterpret_cast<void*>(at), kSize,
                                                    MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
        }
        memcpy(bytes, content.data(), content.size());
        size = content.size();
    }
    LowBlock(const LowBlock&) = delete;
    ~LowBlock() { VirtualFree(bytes, 0, MEM_RELEASE); }

    std::string Path(const char* separator = ",") const {
        return "fmem::" + std::to_string(reinterpret_cast<size_t>(bytes)) + separator +
               std::to_string(size);
    }

    static constexpr size_t kSize = 4096;
    char* bytes = nullptr;
    size_t size = 0;
};

std::string ReadAll(IXFile& file) {
    char buffer[64];
    return std::string(buffer, file.Read(buffer, sizeof buffer));
}

}  // namespace

TEST(MemFileTest, ThePrefixIsKnownInAnyCaseAndNothingElseIsLookedAt) {
    EXPECT_EQ(Fio_IsMemFile("fmem::"), 1);
    EXPECT_EQ(Fio_IsMemFile("FMEM::1,2"), 1);
    EXPECT_EQ(Fio_IsMemFile("FmEm::any text"), 1);
    EXPECT_EQ(Fio_IsMemFile("fmem:1,2"), 0);
    EXPECT_EQ(Fio_IsMemFile("fmem:"), 0);
    EXPECT_EQ(Fio_IsMemFile(" fmem::1,2"), 0);
    EXPECT_EQ(Fio_IsMemFile(""), 0);
    EXPECT_EQ(Fio_IsMemFile(nullptr), 0);
    LowBlock block("abcd");
    std::string capitals = block.Path();
    capitals.replace(0, 6, "FMEM::");
    EXPECT_EQ(ReadAll(*Open(capitals).Get()), "abcd");
}

TEST(MemFileTest, AReadOfTenFromFourBytesAnswersFour) {
    LowBlock block("abcd");
    File file = Open(block.Path());
    char buffer[10] = {};
    EXPECT_EQ(file->Read(buffer, 10), 4u);
    EXPECT_STREQ(buffer, "abcd");
    EXPECT_EQ(file->Read(buffer, 10), 0u);
    EXPECT_EQ(file->Read(buffer, 0), 0u);
    EXPECT_EQ(file->Tell(), 4u);
}

TEST(MemFileTest, SeparatorsAreAnyMixOfCommasAndPoints) {
    LowBlock block("abcd");
    for (const char* separator : {",", ".", ",,", "..", ",.,.", ".,"}) {
        EXPECT_EQ(ReadAll(*Open(block.Path(separator)).Get()), "abcd") << separator;
    }
    std::string address = std::to_string(reinterpret_cast<size_t>(block.bytes));
    EXPECT_EQ(ReadAll(*Open("fmem::,." + address + ",3.,7,x").Get()), "abc");
    EXPECT_EQ(ReadAll(*Open("fmem:: " + address + ", 3 bytes").Get()), "abc");
}

TEST(MemFileTest, AMissingNumberLeavesAnEmptyFile) {
    LowBlock block("abcd");
    for (const std::string& path :
         {"fmem::" + std::to_string(reinterpret_cast<size_t>(block.bytes)), std::string("fmem::"),
          std::string("fmem::,.,"), std::string("fmem::x,y")}) {
        File file = Open(path);
        EXPECT_EQ(file->GetLength(), 0u) << path;
        EXPECT_EQ(ReadAll(*file.Get()), "") << path;
        EXPECT_STREQ(file->GetPath(), path.c_str());
    }
}

TEST(MemFileTest, TwoOpensHavePositionsOfTheirOwnOverTheSameBytes) {
    LowBlock block("abcd");
    File one = Open(block.Path()), two = Open(block.Path());
    EXPECT_EQ(one->ReadShort(), 0x6261u);
    block.bytes[0] = 'X';
    EXPECT_EQ(two->ReadByte(), 'X');
    EXPECT_EQ(one->Tell(), 2u);
}

TEST(MemFileTest, ASeekToTheEndIsAllowedAndTheNextReadByteIsTheEnd) {
    LowBlock block("abcd");
    std::string path = block.Path();
    File file = Open(path);
    EXPECT_EQ(file->Seek(4, 0), 4u);
    Failure end{QXERR_EOF, 1, path};
    EXPECT_EQ(FailureOf([&] { file->ReadByte(); }), end);
    file->Seek(1, 0);
    EXPECT_EQ(FailureOf([&] { file->ReadLong(); }), end);
    EXPECT_EQ(file->GetLength(), 4u);
}

TEST(MemFileTest, ABadSeekIsCodeFiveWithThePath) {
    LowBlock block("abcd");
    std::string path = block.Path();
    File file = Open(path);
    Failure bad{QXERR_SEEK, 1, path};
    EXPECT_EQ(FailureOf([&] { file->Seek(5, 0); }), bad);
    EXPECT_EQ(FailureOf([&] { file->Seek(-1, 0); }), bad);
    EXPECT_EQ(FailureOf([&] { file->Seek(0, 3); }), bad);
    EXPECT_EQ(file->Seek(-1, 2), 3u);
}

TEST(MemFileTest, TypedReadsAndLinesAreThoseOfEveryFile) {
    LowBlock block(
        std::string("\x01\x02\x03\x04\x05\x06\x07\0\0\0\0\0\0\xF8\x3F"
                    "ab\ncd",
                    20));
    File file = Open(block.Path());
    EXPECT_EQ(file->ReadByte(), 1u);
    EXPECT_EQ(file->ReadShort(), 0x0302u);
    EXPECT_EQ(file->ReadLong(), 0x07060504u);
    EXPECT_EQ(file->ReadDouble(), 1.5);
    char line[8];
    EXPECT_EQ(file->ReadLine(line, 7), 2);
    EXPECT_STREQ(line, "ab\n");
}

TEST(MemFileTest, EverythingWrittenIsSilentlyLost) {
    LowBlock block("abcd");
    OutFile file = OpenOut(block.Path());
    file->Write("XXXXXXXX", 8);
    file->WriteByte(1);
    file->WriteShort(1);
    file->WriteLong(1);
    file->WriteDouble(1);
    file->WriteString("text");
    EXPECT_EQ(file->GetLength(), 4u);
    EXPECT_EQ(file->Tell(), 0u);
    EXPECT_EQ(file->Flush(), 1);
    file->Commit();
    file->Commit();
    EXPECT_EQ(ReadAll(*file.Get()), "abcd");
}

TEST(MemFileTest, TheFlagsMeanNothing) {
    LowBlock block("abcd");
    EXPECT_EQ(ReadAll(*Open(block.Path(), QXFIO_OUTPUT).Get()), "abcd");
    EXPECT_EQ(ReadAll(*OpenOut(block.Path(), QXFIO_KEEP | QXFIO_TEMPORARY).Get()), "abcd");
}

// Though Fio_Open gives it as an IXFile, the lookup knows the interface it implements and the root.
TEST(MemFileTest, TheLookupKnowsIXOutFileAndTheRootOnly) {
    LowBlock block("abcd");
    File file = Open(block.Path());
    IQXUnknown* out = nullptr;
    EXPECT_EQ(file->QueryInterface(qx_typeid<IXOutFile>(), &out), 1);
    out->Release();
    EXPECT_EQ(file->QueryInterface(qx_typeid<IQXUnknown>(), &out), 1);
    out->Release();
    EXPECT_EQ(file->QueryInterface(qx_typeid<IXFile>(), nullptr), 0);
}

TEST(MemFileTest, AddRefAndReleaseCountFromOne) {
    LowBlock block("abcd");
    IXFile* file = Fio_Open(block.Path().c_str(), 0);
    EXPECT_EQ(file->AddRef(), 2u);
    EXPECT_EQ(file->Release(), 1u);
    EXPECT_EQ(file->Release(), 0u);
    EXPECT_EQ(block.bytes[0], 'a');
}

TEST(MemFileTest, ABadAddressIsADeviceFailureInEveryWidthAndTheProcessLives) {
    // Nothing is mapped at 0, nor at 16; negative numbers name the top of the address space.
    for (const char* text :
         {"fmem::0,4096", "fmem::16.4096", "fmem::-4096,4096", "fmem::-2147483648,4096"}) {
        std::string path = text;
        Failure fault{QXERR_DEVICE, 1, path};
        File file = Open(path);
        char buffer[4096];
        for (unsigned width : {1u, 2u, 3u, 4u, 5u, 7u, 8u, 9u, 16u, 100u, 4096u}) {
            EXPECT_EQ(FailureOf([&] { file->Read(buffer, width); }), fault) << path << " " << width;
        }
        EXPECT_EQ(FailureOf([&] { file->ReadByte(); }), fault);
        EXPECT_EQ(FailureOf([&] { file->ReadShort(); }), fault);
        EXPECT_EQ(FailureOf([&] { file->ReadLong(); }), fault);
        EXPECT_EQ(FailureOf([&] { file->ReadDouble(); }), fault);
        EXPECT_EQ(FailureOf([&] { file->ReadLine(buffer, 10); }), fault);
        EXPECT_EQ(file->Tell(), 0u);
        EXPECT_EQ(file->Seek(2000, 0), 2000u);
        EXPECT_EQ(FailureOf([&] { file->ReadLong(); }), fault);
    }
}

TEST(MemFileTest, AnAddressOfZeroWithASizeOfFourRaisesCodeTwelve) {
    char buffer[4];
    EXPECT_EQ(FailureOf([&] { Open("fmem::0,4")->Read(buffer, 4); }),
              (Failure{QXERR_DEVICE, 1, "fmem::0,4"}));
}

TEST(MemFileTest, ABlockThatIsReadableOnlyInPartFailsWhereItEnds) {
    LowBlock block(std::string(100, 'a'));
    std::string path =
        "fmem::" + std::to_string(reinterpret_cast<size_t>(block.bytes)) + ",1000000000";
    File file = Open(path);
    std::string buffer(3 * 65536, 'x');
    EXPECT_EQ(FailureOf([&] { file->Read(buffer.data(), unsigned(buffer.size())); }).code,
              QXERR_DEVICE);
    EXPECT_EQ(file->Tell(), 0u);
    EXPECT_EQ(file->Read(buffer.data(), 100), 100u);
    EXPECT_EQ(buffer.substr(0, 100), std::string(100, 'a'));
}

TEST(MemFileTest, LinesOfEveryLengthAreCopiedFromEveryPlaceAndNothingBehindThem) {
    for (size_t start = 0; start < 18; ++start) {
        for (size_t length = 0; length < 40; ++length) {
            std::string text(length, 'a');
            LowBlock block(std::string(start, 's') + text + "\nbehind it another line\n");
            File file = Open(block.Path());
            file->Seek(int64_t(start), 0);
            std::string buffer(100, '?');
            EXPECT_EQ(file->ReadLine(buffer.data(), 90), int(length)) << start;
            EXPECT_EQ(buffer, (text + "\n" + '\0' + std::string(98 - length, '?')))
                << start << " " << length;
            EXPECT_EQ(file->Tell(), start + length + 1);
        }
    }
}

TEST(MemFileTest, ALineIsReadUpToWhereMemoryEnds) {
    LowBlock block(std::string(LowBlock::kSize, 'a'));
    std::string path =
        "fmem::" + std::to_string(reinterpret_cast<size_t>(block.bytes)) + ",1000000000";
    for (size_t left = 0; left < 40; ++left) {
        File file = Open(path);
        size_t start = LowBlock::kSize - left;
        std::string buffer(100, '?');
        file->Seek(int64_t(start), 0);
        EXPECT_EQ(FailureOf([&] { file->ReadLine(buffer.data(), 90); }).code, QXERR_DEVICE);
        EXPECT_EQ(file->Tell(), LowBlock::kSize);
        EXPECT_EQ(buffer, std::string(left, 'a') + std::string(100 - left, '?'));
        if (left == 0) continue;
        // A line that ends there is whole.
        block.bytes[LowBlock::kSize - 1] = '\n';
        file->Seek(int64_t(start), 0);
        EXPECT_EQ(file->ReadLine(buffer.data(), 90), int(left) - 1);
        block.bytes[LowBlock::kSize - 1] = 'a';
    }
}

// Faults of several threads at once are told apart, and none reaches the process.
TEST(MemFileTest, FaultsInSeveralThreadsStayInTheirThreads) {
    auto body = [](void* count) -> DWORD {
        char buffer[16];
        for (int i = 0; i < 200; ++i) {
            File file = Open("fmem::16,1000");
            for (unsigned width : {4u, 16u}) {
                try {
                    file->Read(buffer, width);
                } catch (CXException& e) {
                    if (e.GetCode() == QXERR_DEVICE) ++*static_cast<int*>(count);
                }
            }
        }
        return 0;
    };
    int counts[4] = {};
    HANDLE threads[4];
    for (int i = 0; i < 4; ++i) threads[i] = CreateThread(nullptr, 0, body, &counts[i], 0, nullptr);
    WaitForMultipleObjects(4, threads, TRUE, INFINITE);
    for (int i = 0; i < 4; ++i) {
        CloseHandle(threads[i]);
        EXPECT_EQ(counts[i], 400);
    }
}

// The size is a signed 32-bit number, widened: below zero it is nearly the whole address space.
TEST(MemFileTest, ANegativeSizeIsAnEnormousFile) {
    File file = Open("fmem::16,-1");
    EXPECT_EQ(file->GetLength(), 0xFFFFFFFFFFFFFFFFull);
    EXPECT_EQ(file->Seek(0, 2), 0xFFFFFFFFFFFFFFFFull);
    char byte;
    EXPECT_EQ(file->Read(&byte, 1), 0u);
    EXPECT_EQ(FailureOf([&] { file->Seek(1, 1); }).code, QXERR_SEEK);
}

// The number is read as 32 bits, so what is opened is something else.
TEST(MemFileTest, ABlockAboveTwoGibibytesCannotBeNamed) {
    void* high = nullptr;
    for (size_t at = size_t(1) << 33; !high; at += size_t(1) << 30) {
        high = VirtualAlloc(reinterpret_cast<void*>(at + 0x10000), 4096, MEM_RESERVE | MEM_COMMIT,
                            PAGE_READWRITE);
    }
    memcpy(high, "high", 4);
    char buffer[5] = {};
    std::string path = "fmem::" + std::to_string(reinterpret_cast<size_t>(high)) + ",4";
    File file = Open(path);
    EXPECT_EQ(file->GetLength(), 4u);
    FailureOf([&] { file->Read(buffer, 4); });
    EXPECT_STRNE(buffer, "high");
    VirtualFree(high, 0, MEM_RELEASE);
}

TEST(MemFileTest, PathOperationsNeedNoFile) {
    EXPECT_EQ(Fio_IsFileExist("fmem::"), 1);
    EXPECT_EQ(Fio_IsFileExist("FMEM::whatever"), 1);
    EXPECT_EQ(Fio_IsWritableFile("fmem::1,2"), 1);
    CXString holder("stays");
    EXPECT_EQ(Fio_IsWritableFile("fmem::1,2", holder), 1);
    EXPECT_EQ(FailureOf([] { Fio_DeleteFile("fmem::1,2"); }), Failure{});
    EXPECT_EQ(FailureOf([] { Fio_CreateDirectory("fmem::1,2"); }), Failure{});
}

TEST(MemFileTest, GetFileInfoDeliversTheSecondNumberAndLeavesTheRest) {
    FioFileInfo info = {1, 2, 3, 4, 5, 6, 7, 8};
    Fio_GetFileInfo("fmem::100.,4711,9", &info);
    EXPECT_EQ(info.size, 4711u);
    EXPECT_EQ(info.second, 2u);
    EXPECT_EQ(info.year, 8u);
    Fio_GetFileInfo("fmem::100", &info);
    EXPECT_EQ(info.size, 4711u);
    Fio_GetFileInfo("fmem::", &info);
    EXPECT_EQ(info.size, 4711u);
    Fio_GetFileInfo("fmem::1,-2", &info);
    EXPECT_EQ(info.size, 0xFFFFFFFEu);
}
