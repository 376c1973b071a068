// Paths in code page 932, where the second byte of a character may be a backslash. The process runs
// under that page.
#include "file/file_fixture.h"

#include <mbctype.h>

namespace {

class DoubleBytePathTest : public FileTest {
protected:
    void SetUp() override {
        ASSERT_EQ(GetACP(), 932u);
        _setmbcp(932);
    }
};

// Three characters whose second byte is 0x5C.
const std::string kTable = "\x95\x5C", kAbility = "\x94\x5C", kSo = "\x83\x5C";

}  // namespace

TEST_F(DoubleBytePathTest, ANameThatEndsWithABackslashByteIsReadAndWritten) {
    std::string path = Path(kTable);
    Open(path, QXFIO_OUTPUT)->WriteString("table");
    EXPECT_EQ(Names(), std::vector<std::string>{kTable});
    EXPECT_EQ(Fio_IsFileExist(path.c_str()), 1);
    File file = Open(path);
    EXPECT_EQ(file->ReadByte(), 't');
    EXPECT_EQ(std::string(file->GetPath()), path);
    EXPECT_EQ(FailureOf([&] { Open(Path(kSo)); }), (Failure{QXERR_NOT_FOUND, 1, Path(kSo)}));
}

TEST_F(DoubleBytePathTest, CreateDirectoryDoesNotCutACharacterInTwo) {
    Fio_CreateDirectory(Path(kTable + "\\" + kAbility + kSo + "x\\" + kSo).c_str());
    EXPECT_EQ(Names(), std::vector<std::string>{kTable});
    EXPECT_EQ(NamesIn(Path(kTable)), std::vector<std::string>{kAbility + kSo + "x"});
    EXPECT_EQ(NamesIn(Path(kTable + "\\" + kAbility + kSo + "x")), std::vector<std::string>{kSo});
}

TEST_F(DoubleBytePathTest, TheTemporaryOfAnOutputFileLiesBesideItsTarget) {
    std::string directory = Path(kTable);
    Fio_CreateDirectory(directory.c_str());
    std::string target = directory + "\\" + kAbility;
    OutFile file = OpenOut(target);
    EXPECT_EQ(NamesIn(directory).size(), 1u);
    EXPECT_EQ(Names(), std::vector<std::string>{kTable});
    file->WriteByte('n');
    file->Commit();
    EXPECT_EQ(NamesIn(directory), std::vector<std::string>{kAbility});
    EXPECT_EQ(ContentOf(target), "n");
}

TEST_F(DoubleBytePathTest,
       ATargetInTheCurrentDirectoryWhoseNameHoldsABackslashByteHasNoDirectoryPart) {
    char old[MAX_PATH];
    GetCurrentDirectoryA(MAX_PATH, old);
    SetCurrentDirectoryA(Directory().c_str());
    OutFile file = OpenOut(kTable + kSo);
    EXPECT_EQ(Names().size(), 1u);
    file->WriteByte('n');
    file->Commit();
    SetCurrentDirectoryA(old);
    EXPECT_EQ(Names(), std::vector<std::string>{kTable + kSo});
}

TEST_F(DoubleBytePathTest, LocksHoldSuchFilesToo) {
    std::string path = MakeFile(kTable, "abc");
    Fio_LockFile(path.c_str());
    EXPECT_EQ(Fio_LockCount(path.c_str()), 1);
    EXPECT_EQ(TryOpen(path, GENERIC_WRITE, 3), DWORD(ERROR_SHARING_VIOLATION));
    Fio_UnlockFile(path.c_str());
}
