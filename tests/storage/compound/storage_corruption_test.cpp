// Compound files whose tables do not hang together are refused before the platform follows them.
//
// The offsets are those of the published format: sectors of 512 bytes behind a header of 512,
// directory entries of 128 bytes.
#include "storage/compound/storage_fixture.h"

#include <winioctl.h>

namespace {

constexpr unsigned kSector = 512;
constexpr unsigned kEndOfChain = 0xFFFFFFFE;

class CorruptStorageTest : public StorageTest {
protected:
    // A file with a large stream, small ones and a sub-storage.
    void SetUp() override {
        {
            Reference<IXStorage> root(new_Storage(path.c_str(), 0)),
                child(root->CreateStorage("child", 0));
            PutStream(root.Get(), "large", std::string(20000, 'L'));
            PutStream(root.Get(), "small", std::string(300, 's'));
            PutStream(child.Get(), "leaf", "leaf");
        }
        HANDLE file =
            CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        bytes.resize(GetFileSize(file, nullptr));
        DWORD read;
        ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr);
        CloseHandle(file);
    }

    unsigned Number(size_t at) const {
        unsigned value;
        memcpy(&value, &bytes[at], 4);
        return value;
    }
    void Put(size_t at, unsigned value) { memcpy(&bytes[at], &value, 4); }

    size_t FatEntry(unsigned sector) const { return (Number(76) + 1) * kSector + sector * 4; }
    // Where the directory entry of a name stands.
    size_t EntryOf(const std::string& name) const {
        std::string wide;
        for (char c : name) wide += {c, 0};
        size_t at = bytes.find(wide + Bytes({0, 0}));
        EXPECT_NE(at, std::string::npos) << name;
        return at;
    }

    void WriteBytes() {
        HANDLE file =
            CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
        DWORD written;
        WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
        CloseHandle(file);
    }
    // By a hole, which takes no room on the disk.
    void Lengthen(long long length) {
        HANDLE file =
            CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        DWORD answered;
        DeviceIoControl(file, FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &answered, nullptr);
        LARGE_INTEGER end;
        end.QuadPart = length;
        EXPECT_TRUE(SetFilePointerEx(file, end, nullptr, FILE_BEGIN) && SetEndOfFile(file));
        CloseHandle(file);
    }
    // What opening the file with these bytes raises, in both modes.
    std::string Opening() {
        WriteBytes();
        return Opened();
    }
    std::string Opened() {
        std::string reading =
            Thrown([&] { Reference<IXStorage> storage(open_Storage(path.c_str(), 1)); });
        std::string changing =
            Thrown([&] { Reference<IXStorage> storage(open_Storage(path.c_str(), 0)); });
        EXPECT_EQ(reading, changing);
        return reading;
    }

    std::string path = Path("broken.stg");
    std::string bytes;
    std::string refused = "15 0 " + path;
};

enum : size_t {
    kTypeAt = 66,
    kLeftAt = 68,
    kRightAt = 72,
    kChildAt = 76,
    kStartAt = 116,
    kSizeAt = 120
};

}  // namespace

TEST_F(CorruptStorageTest, TheSoundFileIsOpened) {
    EXPECT_EQ(Opening(), "nothing");
}

TEST_F(CorruptStorageTest, AChainThatMeetsItselfIsRefused) {
    unsigned start = Number(EntryOf("large") + kStartAt);
    Put(FatEntry(start), start);
    EXPECT_EQ(Opening(), refused);
}

TEST_F(CorruptStorageTest, AChainThatLeavesTheFileIsRefused) {
    Put(FatEntry(Number(EntryOf("large") + kStartAt)), 0x00FFFFFF);
    EXPECT_EQ(Opening(), refused);
}

TEST_F(CorruptStorageTest, AChainThatIsShorterThanItsStreamIsRefused) {
    Put(FatEntry(Number(EntryOf("large") + kStartAt)), kEndOfChain);
    EXPECT_EQ(Opening(), refused);
}

TEST_F(CorruptStorageTest, TwoStreamsInOneChainAreRefused) {
    Put(EntryOf("large") + kStartAt, Number(48));  // the directory's own first sector
    EXPECT_EQ(Opening(), refused);
}

TEST_F(CorruptStorageTest, ASmallStreamOutsideTheMiniStreamIsRefused) {
    Put(EntryOf("small") + kStartAt, 5000);
    EXPECT_EQ(Opening(), refused);
}

TEST_F(CorruptStorageTest, AStreamThatClaimsMoreThanItsChainIsRefused) {
    Put(EntryOf("large") + kSizeAt, 0x7FFFFFFF);
    EXPECT_EQ(Opening(), refused);
}

TEST_F(CorruptStorageTest, ADirectoryThatMeetsItselfIsRefused) {
    unsigned directory = Number(48);
    Put(FatEntry(directory), directory);
    EXPECT_EQ(Opening(), refused);
}

TEST_F(CorruptStorageTest, ATreeThatMeetsItselfIsRefused) {
    std::string sound = bytes;
    size_t directory = (Number(48) + 1) * kSector;
    for (size_t link : {kLeftAt, kRightAt}) {
        bytes = sound;
        size_t entry = EntryOf("large");
        Put(entry + link, static_cast<unsigned>((entry - directory) / 128));
        EXPECT_EQ(Opening(), refused);
    }
    bytes = sound;
    Put(EntryOf("child") + kChildAt, Number(directory + kChildAt));
    EXPECT_EQ(Opening(), refused);
}

TEST_F(CorruptStorageTest, AnEntryOutsideTheDirectoryIsRefused) {
    Put(EntryOf("child") + kChildAt, 4000);
    EXPECT_EQ(Opening(), refused);
}

TEST_F(CorruptStorageTest, AnEntryOfAnUnknownTypeIsRefused) {
    bytes[EntryOf("small") + kTypeAt] = 9;
    EXPECT_EQ(Opening(), refused);
}

TEST_F(CorruptStorageTest, MoreTablesThanSectorsAreRefused) {
    std::string sound = bytes;
    for (size_t count : {44, 64, 72}) {  // of the sectors, the mini sectors, the lists
        bytes = sound;
        Put(count, 0x7FFFFFFF);
        EXPECT_EQ(Opening(), refused) << count;
    }
}

TEST_F(CorruptStorageTest, AFileCutInItsTablesIsRefused) {
    bytes.resize(kSector + 100);
    EXPECT_EQ(Opening(), refused);
}

// 8 MiB need more sector tables than the header lists.
TEST_F(CorruptStorageTest, ALargeFileWithListsOfTablesIsOpened) {
    std::string block(1 << 20, 'B');
    {
        Reference<IXStorage> storage(new_Storage(path.c_str(), 0));
        Reference<IXStream> stream(storage->CreateStream("big"));
        for (int i = 0; i < 8; ++i) stream->Write(block.data(), 1 << 20);
    }
    Reference<IXStorage> storage(open_Storage(path.c_str(), 1));
    Reference<IXStream> stream(storage->OpenStream("big"));
    EXPECT_EQ(stream->GetLength(), 8 << 20);
}

TEST_F(CorruptStorageTest, AFileOfLargeSectorsIsOpened) {
    IStorage* ole = nullptr;
    STGOPTIONS options = {};
    options.usVersion = 1;
    options.ulSectorSize = 4096;
    std::wstring wide = Widen(Path("v4.stg"));
    ASSERT_EQ(StgCreateStorageEx(wide.c_str(), STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE,
                                 STGFMT_DOCFILE, 0, &options, nullptr, IID_IStorage,
                                 reinterpret_cast<void**>(&ole)),
              S_OK);
    {
        Reference<IXStorage> storage(new_StorageByOleStorage(ole));
        PutStream(storage.Get(), "one", std::string(9000, '1'));
        PutStream(storage.Get(), "two", "2");
    }
    ole->Release();
    Reference<IXStorage> storage(open_Storage(Path("v4.stg").c_str(), 1));
    EXPECT_EQ(StreamOf(storage.Get(), "one"), std::string(9000, '1'));
    EXPECT_EQ(StreamOf(storage.Get(), "two"), "2");
}

TEST_F(CorruptStorageTest, AFileWithDeletedElementsIsOpened) {
    {
        Reference<IXStorage> storage(open_Storage(path.c_str(), 0));
        storage->DeleteStream("large");
        storage->DeleteStorage("child");
        PutStream(storage.Get(), "after", std::string(5000, 'a'));
        PutStream(storage.Get(), "empty", "");
    }
    Reference<IXStorage> storage(open_Storage(path.c_str(), 1));
    EXPECT_EQ(Names(storage->EnumStreams()), (List{"after", "empty", "small"}));
}

// 2^25 tables of 128 numbers are 2^32 numbers, which 32 bits count as none. The lists of the tables
// lie where the file has never been written: all of them are sector 0, whose link is sector 0.
TEST_F(CorruptStorageTest, AHugeFileWhoseTablesOverflowTheirCountIsRefused) {
    constexpr unsigned kTables = 1u << 25;
    Put(44, kTables);
    Put(48, 0);  // the directory
    Put(68, 0);  // the first list
    Put(72, (kTables - 109 + 126) / 127);
    bytes.resize(kSector);
    WriteBytes();
    Lengthen((16ll << 30) + 2 * kSector);
    EXPECT_EQ(Opened(), refused);
}

TEST_F(CorruptStorageTest, AHugeFileWhoseMiniTablesOverflowTheirCountIsRefused) {
    Put(64, 1u << 25);
    WriteBytes();
    Lengthen((16ll << 30) + 2 * kSector);
    EXPECT_EQ(Opened(), refused);
}

TEST_F(CorruptStorageTest, ASoundFileWithAHugeEmptyTailIsLeftToThePlatform) {
    WriteBytes();
    Lengthen(1ll << 30);
    EXPECT_EQ(Opened(), "nothing");
}

// 109 tables stand in the header, 254 more in two lists.
TEST_F(CorruptStorageTest, ListsOfTablesThatRunInACircleAreRefused) {
    Put(44, 109 + 254);
    Put(68, 0);
    Put(72, 0x10000);
    WriteBytes();
    Lengthen(64 << 20);
    EXPECT_EQ(Opened(), refused);
}

// The look over a document leaves a lifted lock lifted until the platform has opened the file.
TEST_F(StorageTest, ALockedDocumentOpensWhileItsLockIsLifted) {
    std::string path = Path("locked.stg");
    Reference<IXStorage>(new_Storage(path.c_str(), 0));
    Fio_LockFile(path.c_str());
    ASSERT_EQ(Fio_LockCount(path.c_str()), 1);
    for (int readOnly : {0, 1}) {
        Fio_ChangeNELock(path.c_str(), 1);
        EXPECT_EQ(Thrown([&] { Reference<IXStorage>(open_Storage(path.c_str(), readOnly)); }),
                  "nothing");
        Fio_ChangeNELock(path.c_str(), 0);
    }
    EXPECT_EQ(Fio_LockCount(path.c_str()), 1);
    Fio_UnlockFile(path.c_str());
}

// Two lifts and one restore leave the lock in place, and the platform is then refused the file.
TEST_F(StorageTest, LiftsOfALockAreNotCounted) {
    std::string path = Path("locked.stg");
    Reference<IXStorage>(new_Storage(path.c_str(), 0));
    Fio_LockFile(path.c_str());
    Fio_ChangeNELock(path.c_str(), 1);
    Fio_ChangeNELock(path.c_str(), 1);
    Fio_ChangeNELock(path.c_str(), 0);
    EXPECT_EQ(Thrown([&] { Reference<IXStorage>(open_Storage(path.c_str(), 0)); }), "8 0 " + path);
    Fio_UnlockFile(path.c_str());
    EXPECT_EQ(Thrown([&] { Reference<IXStorage>(open_Storage(path.c_str(), 0)); }), "nothing");
}
