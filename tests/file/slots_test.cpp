// The order of the operations in the objects' tables, as modules of other compilers rely on it.
#include "file/file_fixture.h"
#include "file/file_slots.h"

namespace {

class SlotsTest : public FileTest {};

}  // namespace

TEST_F(SlotsTest, AFileHasItsOperationsInOrder) {
    IXFile* file = Fio_Open(Path("f").c_str(), QXFIO_OUTPUT);
    WriteThroughSlots(file);
    ReadThroughSlots(file);
    CountThroughSlots(file, qx_typeid<IXFile>());
    EXPECT_EQ(Call<const char*>(file, kGetPath), Path("f"));
    EXPECT_EQ(Call<unsigned>(file, kRelease), 0u);
    EXPECT_EQ(SizeOnDisk(Path("f")), 21u);
}

TEST_F(SlotsTest, AnOutputFileHasCommitBehindThem) {
    IXOutFile* file = Fio_OpenOut(Path("f").c_str(), 0);
    WriteThroughSlots(file);
    ReadThroughSlots(file);
    CountThroughSlots(file, qx_typeid<IXOutFile>());
    EXPECT_EQ(Call<const char*>(file, kGetPath), Path("f"));
    Call<void>(file, kCommit);
    EXPECT_EQ(Call<unsigned>(file, kRelease), 0u);
    EXPECT_EQ(SizeOnDisk(Path("f")), 21u);
}

TEST_F(SlotsTest, AMemoryFileHasTheSameTable) {
    IXOutFile* file = Fio_OpenOut("fmem::16,4", 0);
    WriteThroughSlots(file);
    EXPECT_EQ(Call<unsigned long long>(file, kTell), 0u);
    EXPECT_EQ((Call<unsigned long long, long long, int>(file, kSeek, 4, 0)), 4u);
    EXPECT_EQ(Call<unsigned long long>(file, kGetLength), 4u);
    EXPECT_EQ(Call<int>(file, kFlush), 1);
    CountThroughSlots(file, qx_typeid<IXOutFile>());
    EXPECT_STREQ(Call<const char*>(file, kGetPath), "fmem::16,4");
    Call<void>(file, kCommit);
    EXPECT_EQ(Call<unsigned>(file, kRelease), 0u);
}

TEST_F(SlotsTest, TheIdentitiesAreThoseOfClasses) {
    EXPECT_STREQ(qx_typeid<IXFile>().name, ".?AUIXFile@@");
    EXPECT_STREQ(qx_typeid<IXOutFile>().name, ".?AUIXOutFile@@");
}
