// Trees written to ini files on a full disk: drive T: is a file system of about a megabyte, empty
// at the start of each test.
#include "param/ini_file_fixture.h"
#include "support/full_disk.h"

#include <gtest/gtest.h>

namespace {

constexpr char kFile[] = "T:\\settings.ini";

}  // namespace

TEST(ParamFullDiskTest, ATreeThatFindsNoRoomLeavesTheOldFileAndNothingElse) {
    ASSERT_TRUE(Exists("T:\\")) << "this program is started by tests/file/local/full_disk";
    ParamPtr tree(new_MemParam());
    SetInt(tree.Get(), "old", 1);
    ASSERT_EQ(Param_Param2IniFile(tree.Get(), kFile), 1);
    for (int i = 0; i < 200; ++i) {
        CQXVariant text(std::string(2000, 'x').c_str());
        tree->SetValue(("value" + std::to_string(i)).c_str(), &text);
    }
    for (unsigned left : {0u, 8192u, 131072u, 262144u}) {
        FillDisk(left);
        try {
            Param_Param2IniFile(tree.Get(), kFile);
            ADD_FAILURE() << "it was written with " << left << " bytes left";
        } catch (CXFileException& e) {
            // Wine extends a file by a hole, which may then have no page for a byte.
            EXPECT_TRUE(e.GetCode() == QXERR_DISK_FULL || e.GetCode() == QXERR_DEVICE)
                << e.GetCode();
        }
        FreeDisk();
        EXPECT_EQ(ContentOfFile(kFile), "\r\n[\\]\r\nold=i1\r\n");
        WIN32_FIND_DATAA found;
        HANDLE search = FindFirstFileA("T:\\*.tmp", &found);
        EXPECT_EQ(search, INVALID_HANDLE_VALUE);
        if (search != INVALID_HANDLE_VALUE) FindClose(search);
    }
    EXPECT_EQ(Param_Param2IniFile(tree.Get(), kFile), 1);
    EXPECT_GT(ContentOfFile(kFile).size(), 300000u);
    DeleteFileA(kFile);
}
