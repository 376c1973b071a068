// What the file layer asks of the platform, which the bytes of a file do not show.
#include "file/file_fixture.h"
#include "support/import_slot.h"

namespace {

constexpr DWORD kInputAttributes = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_ARCHIVE;
constexpr DWORD kTemporaryAttributes = FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE;
constexpr DWORD kReadWrite = GENERIC_READ | GENERIC_WRITE;

struct OpenCall {
    DWORD access, sharing, creation, attributes;
    bool operator==(const OpenCall&) const = default;
};
void PrintTo(const OpenCall& call, std::ostream* out) {
    *out << std::hex << call.access << " " << call.sharing << " " << call.creation << " "
         << call.attributes;
}

struct MappingCall {
    DWORD protection;
    unsigned long long length;
    bool operator==(const MappingCall&) const = default;
};
void PrintTo(const MappingCall& call, std::ostream* out) {
    *out << call.protection << " " << call.length;
}

struct ViewCall {
    DWORD access;
    unsigned long long offset;
    size_t length;
    bool operator==(const ViewCall&) const = default;
};
void PrintTo(const ViewCall& call, std::ostream* out) {
    *out << call.access << " " << call.offset << " " << call.length;
}

std::vector<OpenCall> g_opens;
std::vector<MappingCall> g_mappings;
std::vector<ViewCall> g_views;
std::vector<std::string> g_tempNames;  // directory, prefix, number

HANDLE WINAPI RecordedOpen(LPCSTR path, DWORD access, DWORD sharing, LPSECURITY_ATTRIBUTES security,
                           DWORD creation, DWORD attributes, HANDLE like) {
    g_opens.push_back({access, sharing, creation, attributes});
    return CreateFileA(path, access, sharing, security, creation, attributes, like);
}

HANDLE WINAPI RecordedMapping(HANDLE file, LPSECURITY_ATTRIBUTES security, DWORD protection,
                              DWORD high, DWORD low, LPCSTR name) {
    g_mappings.push_back({protection, (unsigned long long)high << 32 | low});
    return CreateFileMappingA(file, security, protection, high, low, name);
}

void* WINAPI RecordedView(HANDLE mapping, DWORD access, DWORD high, DWORD low, SIZE_T length) {
    g_views.push_back({access, (unsigned long long)high << 32 | low, length});
    return MapViewOfFile(mapping, access, high, low, length);
}

UINT WINAPI RecordedTempName(LPCSTR directory, LPCSTR prefix, UINT number, LPSTR path) {
    g_tempNames = {directory, prefix, std::to_string(number)};
    return GetTempFileNameA(directory, prefix, number, path);
}

class PlatformCallsTest : public FileTest {
protected:
    PlatformCallsTest() {
        g_opens.clear();
        g_mappings.clear();
        g_views.clear();
        g_tempNames.clear();
    }

    template <class Function>
    static void* Address(Function* function) {
        return reinterpret_cast<void*>(function);
    }

    ReplacedImport opens{"CreateFileA", Address(&RecordedOpen)};
    ReplacedImport mappings{"CreateFileMappingA", Address(&RecordedMapping)};
    ReplacedImport views{"MapViewOfFile", Address(&RecordedView)};
    ReplacedImport tempNames{"GetTempFileNameA", Address(&RecordedTempName)};
};

}  // namespace

TEST_F(PlatformCallsTest, EachFlagOfAnOpenHasItsMeaning) {
    constexpr DWORD kShared = FILE_SHARE_READ | FILE_SHARE_WRITE;
    constexpr DWORD kInOrder = FILE_FLAG_SEQUENTIAL_SCAN, kRandom = FILE_FLAG_RANDOM_ACCESS;
    const struct {
        int flags;
        OpenCall call;
    } kRows[] = {
        {0, {GENERIC_READ, kShared, OPEN_EXISTING, kInputAttributes | kInOrder}},
        {QXFIO_RANDOM, {GENERIC_READ, kShared, OPEN_EXISTING, kInputAttributes | kRandom}},
        {QXFIO_KEEP, {GENERIC_READ, kShared, OPEN_EXISTING, kInputAttributes | kInOrder}},
        {QXFIO_TEMPORARY, {GENERIC_READ, kShared, OPEN_EXISTING, kInputAttributes | kInOrder}},
        {QXFIO_OUTPUT, {kReadWrite, 0, CREATE_ALWAYS, FILE_ATTRIBUTE_ARCHIVE | kInOrder}},
        {QXFIO_OUTPUT | QXFIO_RANDOM,
         {kReadWrite, 0, CREATE_ALWAYS, FILE_ATTRIBUTE_ARCHIVE | kRandom}},
        {QXFIO_OUTPUT | QXFIO_KEEP,
         {kReadWrite, 0, OPEN_EXISTING, FILE_ATTRIBUTE_ARCHIVE | kInOrder}},
        {QXFIO_OUTPUT | QXFIO_TEMPORARY,
         {kReadWrite, 0, CREATE_ALWAYS, kTemporaryAttributes | kInOrder}},
    };
    for (const auto& row : kRows) {
        std::string path = MakeFile("f", "abc");
        g_opens.clear();
        Open(path, row.flags);
        EXPECT_EQ(g_opens, std::vector<OpenCall>{row.call}) << row.flags;
    }
}

TEST_F(PlatformCallsTest, AnInputFileIsMappedOnceInItsLengthAndSeenByChunks) {
    File file = Open(MakeFile("f", Pattern(2 * kChunk + 10)));
    file->Seek(kChunk + 5, 0);
    file->ReadByte();
    file->Seek(-1, 2);
    file->ReadByte();
    EXPECT_EQ(g_mappings, (std::vector<MappingCall>{{PAGE_READONLY, 0}}));
    EXPECT_EQ(g_views, (std::vector<ViewCall>{{FILE_MAP_READ, 0, kChunk},
                                              {FILE_MAP_READ, kChunk, kChunk},
                                              {FILE_MAP_READ, 2 * kChunk, 10}}));
}

TEST_F(PlatformCallsTest, AnEmptyInputFileIsNotMapped) {
    Open(MakeFile("f", ""));
    EXPECT_TRUE(g_mappings.empty());
    EXPECT_TRUE(g_views.empty());
}

TEST_F(PlatformCallsTest, AnOutputFileGrowsByANewMappingForEachView) {
    File file = Open(Path("f"), QXFIO_OUTPUT);
    file->Seek(3 * kChunk + 5, 0);
    file->WriteByte(1);
    EXPECT_EQ(g_mappings,
              (std::vector<MappingCall>{{PAGE_READWRITE, kChunk}, {PAGE_READWRITE, 4 * kChunk}}));
    EXPECT_EQ(g_views, (std::vector<ViewCall>{{FILE_MAP_WRITE, 0, kChunk},
                                              {FILE_MAP_WRITE, 3 * kChunk, kChunk}}));
}

TEST_F(PlatformCallsTest, SmallReadsInsideAViewAskNothing) {
    File file = Open(MakeFile("f", Pattern(kChunk)));
    size_t views = g_views.size();
    for (unsigned i = 0; i < kChunk / 8; ++i) file->ReadDouble();
    char byte;
    EXPECT_EQ(file->Read(&byte, 1), 0u);  // at the end, which is a chunk's end too
    EXPECT_EQ(g_views.size(), views);
}

TEST_F(PlatformCallsTest, ALockTriesTheFileForItselfAndThenHoldsItForReading) {
    constexpr DWORD kAttributes = kInputAttributes | FILE_FLAG_NO_BUFFERING;
    std::string path = MakeFile("f", "abc");
    Fio_LockFile(path.c_str());
    EXPECT_EQ(g_opens,
              (std::vector<OpenCall>{{kReadWrite, 0, OPEN_EXISTING, kAttributes},
                                     {GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, kAttributes}}));
    Fio_UnlockFile(path.c_str());
}

TEST_F(PlatformCallsTest, TemporaryNamesHaveOnePrefixEverywhere) {
    char system[MAX_PATH];
    GetTempPathA(MAX_PATH, system);
    const std::vector<std::string> inSystem{system, "QXPR", "0"};
    DeleteFileA(Fio_GetTempFileName());
    EXPECT_EQ(g_tempNames, inSystem);
    g_tempNames.clear();
    File(Fio_Open(nullptr, QXFIO_OUTPUT | QXFIO_TEMPORARY));
    EXPECT_EQ(g_tempNames, inSystem);
    OpenOut(Path("f"));
    EXPECT_EQ(g_tempNames, (std::vector<std::string>{Directory(), "QXPR", "0"}));
}
