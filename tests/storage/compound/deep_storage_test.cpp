// Storages in storages, as deep as a file may nest them: nothing here calls itself for each level.
#include "storage/compound/ole_fakes.h"
#include "storage/compound/storage_fixture.h"
#include "support/build_kind.h"

using qx::Reference;

namespace {

// A compound file of nothing but storages, each in the one before it, at most 55,000.
class DeepFile {
public:
    explicit DeepFile(unsigned levels) : m_levels(levels) {
        AppendHeader();
        AppendTable();
        AppendDirectory();
    }
    const std::string& Bytes() const { return m_bytes; }

private:
    static constexpr unsigned kSector = 512, kEndOfChain = 0xFFFFFFFE, kNothing = 0xFFFFFFFF;

    unsigned DirectorySectors() const { return (m_levels + 1 + 3) / 4; }
    // Each table tells of 128 sectors, its own among them.
    unsigned TableSectors() const { return DirectorySectors() / 127 + 1; }

    void Append(unsigned number, int bytes = 4) {
        m_bytes.append(reinterpret_cast<char*>(&number), bytes);
    }
    void AppendHeader() {
        m_bytes = ::Bytes({0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1}) + std::string(16, '\0');
        for (unsigned number : {0x3Eu, 3u, 0xFFFEu, 9u, 6u}) Append(number, 2);
        m_bytes.append(10, 0);
        Append(TableSectors());
        Append(TableSectors());  // where the directory begins
        Append(0);
        Append(4096);
        for (unsigned number : {kEndOfChain, 0u, kEndOfChain, 0u}) Append(number);
        for (unsigned i = 0; i < 109; ++i) Append(i < TableSectors() ? i : kNothing);
    }
    void AppendTable() {
        unsigned tables = TableSectors(), end = tables + DirectorySectors();
        for (unsigned i = 0; i < tables * 128; ++i) {
            Append(i < tables    ? 0xFFFFFFFD
                   : i + 1 < end ? i + 1
                   : i < end     ? kEndOfChain
                                 : kNothing);
        }
    }
    void AppendDirectory() {
        for (unsigned i = 0; i < DirectorySectors() * 4; ++i) {
            bool used = i <= m_levels;
            std::wstring name = !used ? L"" : i == 0 ? L"Root Entry" : L"x";
            std::string text(reinterpret_cast<const char*>(name.c_str()), name.size() * 2);
            m_bytes += text + std::string(64 - text.size(), '\0');
            Append(used ? static_cast<unsigned>(name.size() + 1) * 2 : 0, 2);
            Append(!used ? 0 : i == 0 ? 5 : 1, 1);
            Append(1, 1);
            for (unsigned link : {kNothing, kNothing, i < m_levels ? i + 1 : kNothing})
                Append(link);
            m_bytes.append(16 + 4 + 16, 0);
            Append(i == 0 ? kEndOfChain : 0);
            m_bytes.append(8, 0);
        }
    }

    unsigned m_levels;
    std::string m_bytes;
};

// The innermost of storages that hold each other.
Reference<IXStorage> Nested(FakeStorage& ole, int levels) {
    ole.child = &ole;
    Reference<IXStorage> level(new_StorageByOleStorage(&ole));
    for (int i = 0; i < levels; ++i) level = Reference<IXStorage>(level->OpenStorage("x"));
    return level;
}

}  // namespace

TEST(DeepStorageTest, TheInnermostOfManyStoragesLetsThemAllGo) {
    const unsigned kLevels = kHasGuardPages ? 5000 : 100000;
    FakeStorage ole;
    Reference<IXStorage> innermost = Nested(ole, kLevels);
    EXPECT_EQ(ole.references, kLevels + 2);
    innermost.Release();
    EXPECT_EQ(ole.references, 1u);
}

TEST(DeepStorageTest, AStorageThatIsStillHeldKeepsWhatStandsAboveIt) {
    FakeStorage ole;
    Reference<IXStorage> middle = Nested(ole, 50), innermost = middle;
    for (int i = 0; i < 50; ++i) innermost = Reference<IXStorage>(innermost->OpenStorage("x"));
    EXPECT_EQ(ole.references, 102u);
    innermost.Release();
    EXPECT_EQ(ole.references, 52u);
    EXPECT_EQ(CountOf(middle.Get()), 1u);
    middle.Release();
    EXPECT_EQ(ole.references, 1u);
}

// The platform opens the levels one by one; all of them close with the last.
TEST_F(StorageTest, AFileOfManyLevelsIsWalkedAndClosed) {
    constexpr int kLevels = 3000;
    std::string path = Path("deep.stg");
    {
        std::string bytes = DeepFile(kLevels).Bytes();
        Reference<IXFile> file(Fio_Open(path.c_str(), QXFIO_OUTPUT));
        file->Write(bytes.data(), static_cast<unsigned>(bytes.size()));
    }
    Reference<IXStorage> level(open_Storage(path.c_str(), 1));
    for (int i = 0; i < kLevels; ++i) level = Reference<IXStorage>(level->OpenStorage("x"));
    EXPECT_EQ(Names(level->EnumStorages()), List{});
    EXPECT_EQ(level->GetPath(), path);
    level.Release();
    EXPECT_TRUE(DeleteFileA(path.c_str()));
}

// The platform alone ends the process over so many levels.
TEST_F(StorageTest, AStorageOfManyLevelsIsDeleted) {
    for (bool isReverted : {true, false}) {
        const int kLevels = isReverted ? 1000 : 5000;
        std::string path = Path(isReverted ? "reverted.stg" : "deleted.stg");
        {
            std::string bytes = DeepFile(kLevels).Bytes();
            Reference<IXFile> file(Fio_Open(path.c_str(), QXFIO_OUTPUT));
            file->Write(bytes.data(), static_cast<unsigned>(bytes.size()));
        }
        Reference<IXStorage> root(open_Storage(path.c_str(), 0));
        PutStream(root.Get(), "kept", "abc");
        EXPECT_EQ(root->DeleteStorage("x"), S_OK);
        EXPECT_EQ(Names(root->EnumStorages()), List{});
        if (isReverted) static_cast<CStorage*>(root.Get())->Revert();
        root.Release();
        Reference<IXStorage> again(open_Storage(path.c_str(), 1));
        EXPECT_EQ(Names(again->EnumStorages()), isReverted ? List{"x"} : List{});
        EXPECT_EQ(Names(again->EnumStreams()), isReverted ? List{} : List{"kept"});
        if (!isReverted) continue;
        int depth = 0;
        for (Reference<IXStorage> level = again; !Names(level->EnumStorages()).empty(); ++depth)
            level = Reference<IXStorage>(level->OpenStorage("x"));
        EXPECT_EQ(depth, kLevels);
    }
}

// Fifty thousand levels are looked over without an end of the stack.
TEST_F(StorageTest, AFileOfVeryManyLevelsIsOpened) {
    std::string path = Path("deep.stg");
    {
        std::string bytes = DeepFile(50000).Bytes();
        Reference<IXFile> file(Fio_Open(path.c_str(), QXFIO_OUTPUT));
        file->Write(bytes.data(), static_cast<unsigned>(bytes.size()));
    }
    Reference<IXStorage> storage(open_Storage(path.c_str(), 1));
    EXPECT_EQ(Names(storage->EnumStorages()), List{"x"});
}
