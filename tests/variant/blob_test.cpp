#include <gtest/gtest.h>
#include <qxcore/heap.h>
#include <qxcore/variant.h>

#include <cstddef>
#include <cstring>

namespace {

char g_abc[] = "abc";
const tagQXBLOB kAbc = {3, g_abc};

tagQXBLOB WithoutData(unsigned long size) {
    return {size, nullptr};
}

}  // namespace

TEST(BlobTest, TheRecordIsASizeAndAPointer) {
    EXPECT_EQ(offsetof(tagQXBLOB, size), 0u);
    EXPECT_EQ(sizeof(tagQXBLOB::size), 4u);
    EXPECT_EQ(offsetof(tagQXBLOB, data), 8u);
    EXPECT_EQ(sizeof(QXBlob), sizeof(tagQXBLOB));
}

TEST(BlobTest, ANewBlobIsEmpty) {
    QXBlob blob;
    EXPECT_EQ(blob.size, 0u);
    EXPECT_EQ(blob.data, nullptr);
}

TEST(BlobTest, ABlobOfASizeIsZeroFilledOnTheDefaultHeap) {
    QXBlob blob(1000ul);
    EXPECT_EQ(blob.size, 1000u);
    for (int i = 0; i < 1000; ++i) ASSERT_EQ(static_cast<char*>(blob.data)[i], 0);
    EXPECT_GE(Mem_DefaultHeap(0)->GetSize(blob.data), 1000u);
}

TEST(BlobTest, EachCopyHasBytesOfItsOwn) {
    QXBlob source(&kAbc);
    QXBlob fromRecord(kAbc);
    QXBlob fromBlob(source);
    for (const QXBlob* copy : {&source, &fromRecord, &fromBlob}) {
        EXPECT_EQ(copy->size, 3u);
        EXPECT_NE(copy->data, g_abc);
        EXPECT_EQ(memcmp(copy->data, "abc", 3), 0);
    }
    EXPECT_NE(source.data, fromBlob.data);
}

TEST(BlobTest, ACopyOfABlobWithoutDataHasItsSizeAndNoData) {
    tagQXBLOB source = WithoutData(7);
    QXBlob copy(source);
    EXPECT_EQ(copy.size, 7u);
    EXPECT_EQ(copy.data, nullptr);
}

TEST(BlobTest, ClearFreesTheBytes) {
    QXBlob blob(&kAbc);
    blob.Clear();
    EXPECT_EQ(blob.size, 0u);
    EXPECT_EQ(blob.data, nullptr);
    blob.Clear();
}

TEST(BlobTest, AssignmentCopiesTheBytes) {
    QXBlob blob(5ul);
    blob = &kAbc;
    EXPECT_EQ(blob.size, 3u);
    EXPECT_NE(blob.data, g_abc);
    EXPECT_EQ(memcmp(blob.data, "abc", 3), 0);

    QXBlob other;
    other = blob;
    EXPECT_NE(other.data, blob.data);
    EXPECT_TRUE(other == blob);
    other = kAbc;
    EXPECT_TRUE(other == blob);
}

TEST(BlobTest, AssigningABlobWithoutDataLeavesNullWithItsSize) {
    QXBlob blob(&kAbc);
    tagQXBLOB source = WithoutData(9);
    blob = &source;
    EXPECT_EQ(blob.size, 9u);
    EXPECT_EQ(blob.data, nullptr);
}

TEST(BlobTest, AssigningABlobToItselfEmptiesIt) {
    QXBlob blob(&kAbc);
    QXBlob& itself = blob;
    blob = itself;
    EXPECT_EQ(blob.size, 0u);
    EXPECT_EQ(blob.data, nullptr);
}

TEST(BlobTest, EqualBlobsHaveTheSameSizeAndBytes) {
    char otherBytes[] = "abd";
    tagQXBLOB shorter = {2, g_abc};
    tagQXBLOB different = {3, otherBytes};
    QXBlob blob(kAbc);
    EXPECT_TRUE(blob == kAbc);
    EXPECT_TRUE(blob == &kAbc);
    EXPECT_TRUE(blob == QXBlob(kAbc));
    EXPECT_FALSE(blob == shorter);
    EXPECT_FALSE(blob == different);
    EXPECT_FALSE(blob == &different);
}

TEST(BlobTest, BytesAfterANulCount) {
    char one[] = {0, 1}, two[] = {0, 2};
    tagQXBLOB a = {2, one}, b = {2, two};
    EXPECT_FALSE(QXBlob(a) == b);
}

TEST(BlobTest, NullDataCountsAsNoBytes) {
    tagQXBLOB five = WithoutData(5), four = WithoutData(4), none = WithoutData(0);
    EXPECT_TRUE(QXBlob(five) == five);
    EXPECT_FALSE(QXBlob(five) == four);
    EXPECT_FALSE(QXBlob(five) == QXBlob(5ul));
    EXPECT_FALSE(QXBlob(5ul) == five);
    EXPECT_TRUE(QXBlob(0ul) == none);
    EXPECT_TRUE(QXBlob() == QXBlob(0ul));
}
