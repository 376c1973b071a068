// The operations of a file by their places in its table, as modules of other compilers call them.
#ifndef QXCORE_TESTS_FILE_SLOTS_H
#define QXCORE_TESTS_FILE_SLOTS_H

#include "support/slot.h"

#include <gtest/gtest.h>
#include <qxcore.h>

#include <cstring>

// The operation in slot n, as a plain function whose first argument is the object.
template <class Result, class... A>
Result Call(IXFile* file, int slot, A... arguments) {
    return Slot<Result(IXFile*, A...)>(file, slot)(file, arguments...);
}

enum FileSlot {
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

inline void WriteThroughSlots(IXFile* file) {
    Call<void, unsigned char>(file, kWriteByte, 0x11);
    Call<void, unsigned short>(file, kWriteShort, 0x2222);
    Call<void, unsigned>(file, kWriteLong, 0x33333333);
    Call<void>(file, kWriteDouble, 4.5);
    Call<void, const char*>(file, kWriteString, "ab\n");
    Call<void, const void*, unsigned>(file, kWrite, "cd", 2);
}

inline void ReadThroughSlots(IXFile* file) {
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

inline void CountThroughSlots(IXFile* file, const qx_type_info& id) {
    EXPECT_EQ(Call<unsigned>(file, kAddRef), 2u);
    IQXUnknown* out = nullptr;
    EXPECT_EQ((Call<int, const qx_type_info*, IQXUnknown**>(file, kQueryInterface, &id, &out)), 1);
    EXPECT_EQ(out, file);
    EXPECT_EQ(Call<unsigned>(file, kRelease), 2u);
    EXPECT_EQ(Call<unsigned>(file, kRelease), 1u);
}

#endif
