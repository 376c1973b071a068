// The order of the operations in the objects' tables, as modules of other compilers rely on it.
#include "file/file_fixture.h"

#include <cstring>

namespace {

class SlotsTest : public FileTest {};

// The operation in slot n, as a plain function whose first argument is the object.
template <class Result, class... A>
Result Call(IXFile* file, int slot, A... arguments) {
    auto table = *reinterpret_cast<void***>(file);
    return reinterpret_cast<Result (*)(IXFile*, A...)>(table[slot])(file, arguments...);
}

enum Slot {
    kAddRef,
    kRelease,
    kQueryInterface,
    kRead,
    kWrite,
    kSeek,
    kTell,
    kFlush,
    kReadByte,
    kReadShort,
    kReadLong,
    kReadDouble,
    kReadLine,
    kWriteByte,
    kWriteShort,
    kWriteLong,
    kWriteDouble,
    kWriteString,
    kGetLength,
    kGetPath,
    kCommit
};

void WriteThroughSlots(IXFile* file) {
    Call<void, unsigned char>(file, kWriteByte, 0x11);
    Call<void, unsigned short>(file, kWriteShort, 0x2222);
    Call<void, unsigned>(file, kWriteLong, 0x33333333);
    Call<void>(file, kWriteDouble, 4.5);
    Call<void, const char*>(file, kWriteString, "ab\n");
    Call<void, const void*, unsigned>(file, kWrite, "cd", 2);
}

void ReadThroughSlots(IXFile* file) {
    char buffer[16] = {};
    EXPECT_EQ((Call<unsigned long long, long long, int>(file, kSeek, 0, 0)), 0u);
    EXPECT_EQ(Call<unsigned char>(file, kReadByte), 0x11u);
    EXPECT_EQ(Call<unsigned short>(file, kReadShort), 0x2222u);
    EXPECT_EQ(Call<unsigned>(file, kReadLong), 0x33333333u);
    EXPECT_EQ(Call<double>(file, kReadDouble), 4.5);
    EXPECT_EQ((Call<int, char*, int>(file, kReadLine, buffer, 15)), 2);
    EXPECT_EQ((Call<unsigned, void*, unsigned>(file, kRead, buffer, 16)), 3u);
    EXPECT_EQ(memcmp(buffer, "\0cd", 3), 0);
    EXPECT_EQ(Call<unsigned long long>(file, kTell), 21u);
    EXPECT_EQ(Call<unsigned long long>(file, kGetLength), 21u);
    EXPECT_NE(Call<int>(file, kFlush), 0);
}

void CountThroughSlots(IXFile* file, const qx_type_info& id) {
    EXPECT_EQ(Call<unsigned>(file, kAddRef), 2u);
    IQXUnknown* out = nullptr;
    EXPECT_EQ((Call<int, const qx_type_info*, IQXUnknown**>(file, kQueryInterface, &id, &out)), 1);
    EXPECT_EQ(out, file);
    EXPECT_EQ(Call<unsigned>(file, kRelease), 2u);
    EXPECT_EQ(Call<unsigned>(file, kRelease), 1u);
}

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
