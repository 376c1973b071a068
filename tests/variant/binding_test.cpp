#include "variant/probe_object.h"
#include "variant/variant_description.h"

#include <gtest/gtest.h>
#include <qxcore/heap.h>

#include <cstring>

namespace {

// The bytes of the value area, and the bytes that each type moves; 10 and 18 own what they hold.
const unsigned char kArea[32] = {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15, 16,
                                 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31, 32};
struct Width {
    unsigned short type;
    size_t bytes;
};
const Width kWidths[] = {{1, 4},   {2, 1},   {3, 2},   {4, 4},  {5, 4},   {6, 4},
                         {7, 4},   {8, 8},   {9, 4},   {11, 8}, {12, 16}, {13, 8},
                         {14, 16}, {15, 16}, {16, 32}, {17, 16}};

char* HeapText(const char* text) {
    return strcpy(static_cast<char*>(Mem_DefaultHeap(0)->Alloc(strlen(text) + 1)), text);
}

void FreeText(char* text) {
    Mem_DefaultHeap(0)->Free(text);
}

}  // namespace

TEST(BindToValueTest, EachTypeStoresItsWidthOfTheValueAreaWhateverTheVariantsCode) {
    tagQXVARIANT v;
    QXVariantInit(&v);
    memcpy(&v.value, kArea, sizeof kArea);
    for (const Width& width : kWidths) {
        unsigned char variable[40];
        memset(variable, 0xEE, sizeof variable);
        EXPECT_EQ(QXVariantBindToValue(width.type, variable, &v), 1) << width.type;
        EXPECT_EQ(memcmp(variable, kArea, width.bytes), 0) << width.type;
        for (size_t i = width.bytes; i < sizeof variable; ++i)
            EXPECT_EQ(variable[i], 0xEE) << width.type << " " << i;
    }
}

TEST(BindToValueTest, OtherTypesStoreNothing) {
    CQXVariant v(5);
    for (unsigned short type : {0, 19, 20, 0x4000, 0xFFFF}) {
        int variable = 77;
        EXPECT_EQ(QXVariantBindToValue(type, &variable, &v), 0);
        EXPECT_EQ(variable, 77);
    }
}

TEST(BindToValueTest, ATextVariableGetsACopyAndItsOldTextIsFreed) {
    CQXVariant v("new text");
    char* variable = HeapText("old");
    EXPECT_EQ(QXVariantBindToValue(QXVT_STRING, &variable, &v), 1);
    EXPECT_STREQ(variable, "new text");
    EXPECT_NE(variable, static_cast<char*>(v));
    FreeText(variable);
}

TEST(BindToValueTest, ATextVariableMayBeNull) {
    CQXVariant v("new text");
    char* variable = nullptr;
    EXPECT_EQ(QXVariantBindToValue(QXVT_STRING, &variable, &v), 1);
    EXPECT_STREQ(variable, "new text");
    FreeText(variable);
}

TEST(BindToValueTest, ANullTextGivesANullVariable) {
    CQXVariant v(static_cast<const char*>(nullptr));
    char* variable = HeapText("old");
    EXPECT_EQ(QXVariantBindToValue(QXVT_STRING, &variable, &v), 1);
    EXPECT_EQ(variable, nullptr);
}

TEST(BindToValueTest, ABlobVariableBorrowsTheVariantsData) {
    char abc[] = "abc";
    CQXVariant v(tagQXBLOB{3, abc});
    tagQXBLOB variable = {0, nullptr};
    EXPECT_EQ(QXVariantBindToValue(QXVT_BLOB, &variable, &v), 1);
    EXPECT_EQ(variable.size, 3u);
    EXPECT_EQ(variable.data, v.value.blob.data);
}

TEST(BindToValueTest, AnObjectVariableChangesItsReference) {
    Probe old, fresh;
    CQXVariant v(static_cast<IQXUnknown*>(fresh));
    IQXUnknown* variable = old;
    variable->AddRef();
    EXPECT_EQ(QXVariantBindToValue(QXVT_UNKNOWN, &variable, &v), 1);
    EXPECT_EQ(variable, static_cast<IQXUnknown*>(fresh));
    EXPECT_EQ(old.Refs(), 1u);
    EXPECT_EQ(fresh.Refs(), 3u);
    variable->Release();
}

TEST(BindToValueTest, AnObjectVariableMayHoldTheSameObject) {
    bool alive = false;
    IQXUnknown* variable = new ProbeObject(&alive);  // the only counted reference
    CQXVariant v;
    v.type = QXVT_UNKNOWN_REF;
    v.value.unknown = variable;
    EXPECT_EQ(QXVariantBindToValue(QXVT_UNKNOWN, &variable, &v), 1);
    EXPECT_TRUE(alive);
    EXPECT_EQ(variable->Release(), 0u);
}

TEST(BindToValueTest, NullObjectsAreLetPass) {
    Probe probe;
    CQXVariant v(static_cast<IQXUnknown*>(probe)), null(static_cast<IQXUnknown*>(nullptr));
    IQXUnknown* variable = nullptr;
    EXPECT_EQ(QXVariantBindToValue(QXVT_UNKNOWN, &variable, &v), 1);
    EXPECT_EQ(probe.Refs(), 3u);
    EXPECT_EQ(QXVariantBindToValue(QXVT_UNKNOWN, &variable, &null), 1);
    EXPECT_EQ(variable, nullptr);
    EXPECT_EQ(probe.Refs(), 2u);
}

TEST(BindFromValueTest, EachTypeLoadsItsWidthAndZeroesTheRest) {
    for (const Width& width : kWidths) {
        SCOPED_TRACE(width.type);
        tagQXVARIANT v;
        QXVariantInit(&v);
        memset(&v.value, 0xEE, sizeof v.value);
        unsigned char variable[32];
        memcpy(variable, kArea, sizeof variable);
        EXPECT_EQ(QXVariantBindFromValue(width.type, variable, &v), 1);
        EXPECT_EQ(v.type, width.type);
        unsigned char area[32] = {};
        memcpy(area, kArea, width.bytes);
        EXPECT_EQ(memcmp(&v.value, area, sizeof area), 0);
    }
}

TEST(BindFromValueTest, TheOldValueIsCleared) {
    Probe probe;
    CQXVariant v(static_cast<IQXUnknown*>(probe));
    int variable = 5;
    EXPECT_EQ(QXVariantBindFromValue(QXVT_INT, &variable, &v), 1);
    EXPECT_EQ(probe.Refs(), 1u);
    EXPECT_EQ(Describe(v), "INT 5");
}

TEST(BindFromValueTest, OtherTypesSetTheCodeAndAZeroValue) {
    for (unsigned short type : {0, 19, 20, 0x4000, 0xFFFF}) {
        Probe probe;
        CQXVariant v(static_cast<IQXUnknown*>(probe));
        int variable = 77;
        EXPECT_EQ(QXVariantBindFromValue(type, &variable, &v), 0);
        EXPECT_EQ(probe.Refs(), 1u);
        EXPECT_EQ(v.type, type);
        const unsigned char zero[32] = {};
        EXPECT_EQ(memcmp(&v.value, zero, sizeof zero), 0);
    }
}

TEST(BindFromValueTest, ATextIsCopied) {
    const char* variable = "text";
    CQXVariant v;
    EXPECT_EQ(QXVariantBindFromValue(QXVT_STRING, &variable, &v), 1);
    EXPECT_EQ(Describe(v), "TEXT text");
    EXPECT_NE(static_cast<const char*>(v), variable);
}

TEST(BindFromValueTest, AVariantMayLoadItsOwnText) {
    CQXVariant v("text");
    const char* variable = v;
    EXPECT_EQ(QXVariantBindFromValue(QXVT_STRING, &variable, &v), 1);
    EXPECT_EQ(Describe(v), "TEXT text");
}

TEST(BindFromValueTest, ABlobIsHandedOverWithItsBlock) {
    tagQXBLOB variable = {4, HeapText("abc")};
    CQXVariant v;
    EXPECT_EQ(QXVariantBindFromValue(QXVT_BLOB, &variable, &v), 1);
    EXPECT_EQ(v.value.blob.data, variable.data);
    v.Clear();  // frees the block
}

TEST(BindFromValueTest, AnObjectGetsAReference) {
    Probe probe;
    IQXUnknown* variable = probe;
    CQXVariant v;
    EXPECT_EQ(QXVariantBindFromValue(QXVT_UNKNOWN, &variable, &v), 1);
    EXPECT_EQ(probe.Refs(), 2u);
    variable = nullptr;
    EXPECT_EQ(QXVariantBindFromValue(QXVT_UNKNOWN, &variable, &v), 1);
    EXPECT_EQ(probe.Refs(), 1u);
    EXPECT_EQ(Describe(v), "OBJECT null");
}
