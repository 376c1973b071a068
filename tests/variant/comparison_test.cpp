#include "variant/probe_object.h"

#include <gtest/gtest.h>
#include <qxcore/variant.h>

#include <cmath>
#include <limits>

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

bool Equal(const CQXVariant& a, const CQXVariant& b) {
    const tagQXVARIANT& record = b;
    bool byReference = a == record;
    EXPECT_EQ(a == &record, byReference);
    EXPECT_EQ(a == b, byReference);
    EXPECT_EQ(b == a, byReference);  // every rule is symmetric
    return byReference;
}

CQXVariant Bool(int number) {
    CQXVariant v(1, 1);
    v.value.boolVal = number;
    return v;
}

CQXVariant Borrowed(IQXUnknown* object) {
    CQXVariant v;
    v.type = QXVT_UNKNOWN_REF;
    v.value.unknown = object;
    return v;
}

tagRECT Rect(long left, long top, long right, long bottom) {
    return {left, top, right, bottom};
}

tagRRECT RRect(double left, double top, double right, double bottom) {
    return {left, top, right, bottom};
}

}  // namespace

TEST(VariantComparisonTest, UnlikeTypesAreNotEqual) {
    EXPECT_FALSE(Equal(CQXVariant(3), CQXVariant(3l)));
    EXPECT_FALSE(Equal(CQXVariant(), CQXVariant(0)));
    EXPECT_FALSE(Equal(CQXVariant(1, 1), CQXVariant(1)));
}

TEST(VariantComparisonTest, EmptyVariantsAreEqual) {
    EXPECT_TRUE(Equal(CQXVariant(), CQXVariant()));
}

TEST(VariantComparisonTest, TheSameVariantIsEqualToItself) {
    CQXVariant strange;
    strange.type = 700;
    EXPECT_TRUE(strange == strange);
    CQXVariant borrowed = Borrowed(nullptr);
    EXPECT_TRUE(borrowed == &borrowed);
}

TEST(VariantComparisonTest, CodesOfNineteenAndMoreAreNotEqual) {
    Probe probe;
    EXPECT_FALSE(Equal(Borrowed(probe), Borrowed(probe)));
    CQXVariant a, b;
    a.type = b.type = 19;
    EXPECT_FALSE(Equal(a, b));
}

TEST(VariantComparisonTest, BoolsCompareTheStoredNumber) {
    EXPECT_TRUE(Equal(Bool(2), Bool(2)));
    EXPECT_FALSE(Equal(Bool(1), Bool(2)));
}

TEST(VariantComparisonTest, IntegersCompareTheirOwnWidth) {
    CQXVariant byte(static_cast<unsigned char>(7)), sameByte(byte);
    sameByte.value.uintVal |= 0x100;
    EXPECT_TRUE(Equal(byte, sameByte));
    CQXVariant word(static_cast<unsigned short>(7)), sameWord(word);
    sameWord.value.uintVal |= 0x10000;
    EXPECT_TRUE(Equal(word, sameWord));
    EXPECT_FALSE(Equal(CQXVariant(static_cast<unsigned char>(7)),
                       CQXVariant(static_cast<unsigned char>(8))));
    EXPECT_FALSE(Equal(CQXVariant(static_cast<unsigned short>(7)),
                       CQXVariant(static_cast<unsigned short>(0x107))));
    EXPECT_TRUE(Equal(CQXVariant(7ul), CQXVariant(7ul)));
    EXPECT_FALSE(Equal(CQXVariant(7ul), CQXVariant(0x10007ul)));
    EXPECT_TRUE(Equal(CQXVariant(-7), CQXVariant(-7)));
    EXPECT_FALSE(Equal(CQXVariant(-7), CQXVariant(7)));
    EXPECT_TRUE(Equal(CQXVariant(7u), CQXVariant(7u)));
    EXPECT_FALSE(Equal(CQXVariant(7u), CQXVariant(8u)));
    EXPECT_TRUE(Equal(CQXVariant(-7l), CQXVariant(-7l)));
    EXPECT_FALSE(Equal(CQXVariant(-7l), CQXVariant(-8l)));
}

TEST(VariantComparisonTest, RealsAreEqualUnlessOneIsLess) {
    EXPECT_TRUE(Equal(CQXVariant(1.5), CQXVariant(1.5)));
    EXPECT_FALSE(Equal(CQXVariant(1.5), CQXVariant(std::nextafter(1.5, 2.0))));
    EXPECT_TRUE(Equal(CQXVariant(0.0), CQXVariant(-0.0)));
    EXPECT_TRUE(Equal(CQXVariant(1.5f), CQXVariant(1.5f)));
    EXPECT_FALSE(Equal(CQXVariant(1.5f), CQXVariant(1.75f)));
}

TEST(VariantComparisonTest, ANaNEqualsEverything) {
    EXPECT_TRUE(Equal(CQXVariant(kNan), CQXVariant(1.5)));
    EXPECT_TRUE(Equal(CQXVariant(kNan), CQXVariant(kNan)));
    EXPECT_TRUE(Equal(CQXVariant(static_cast<float>(kNan)), CQXVariant(1.5f)));
}

TEST(VariantComparisonTest, TextsAreComparedExactly) {
    EXPECT_TRUE(Equal(CQXVariant("abc"), CQXVariant("abc")));
    EXPECT_FALSE(Equal(CQXVariant("abc"), CQXVariant("ABC")));
    EXPECT_FALSE(Equal(CQXVariant("abc"), CQXVariant("abcd")));
    EXPECT_TRUE(Equal(CQXVariant(""), CQXVariant("")));
}

TEST(VariantComparisonTest, ANullTextCountsAsAnEmptyOne) {
    CQXVariant null(static_cast<const char*>(nullptr));
    EXPECT_TRUE(Equal(null, CQXVariant(static_cast<const char*>(nullptr))));
    EXPECT_TRUE(Equal(null, CQXVariant("")));
    EXPECT_FALSE(Equal(null, CQXVariant("a")));
}

TEST(VariantComparisonTest, IntegerSizesAndPointsAreComparedExactly) {
    EXPECT_TRUE(Equal(CQXVariant(tagSIZE{1, 2}), CQXVariant(tagSIZE{1, 2})));
    EXPECT_FALSE(Equal(CQXVariant(tagSIZE{1, 2}), CQXVariant(tagSIZE{1, 3})));
    EXPECT_FALSE(Equal(CQXVariant(tagSIZE{1, 2}), CQXVariant(tagSIZE{0, 2})));
    EXPECT_TRUE(Equal(CQXVariant(tagPOINT{1, 2}), CQXVariant(tagPOINT{1, 2})));
    EXPECT_FALSE(Equal(CQXVariant(tagPOINT{1, 2}), CQXVariant(tagPOINT{1, 3})));
    EXPECT_FALSE(Equal(CQXVariant(tagPOINT{1, 2}), CQXVariant(tagPOINT{0, 2})));
}

TEST(VariantComparisonTest, RealSizesAndPointsMatchWithinATolerance) {
    EXPECT_TRUE(Equal(CQXVariant(tagRSIZE{0, 5}), CQXVariant(tagRSIZE{0.001, 5.0005})));
    EXPECT_FALSE(Equal(CQXVariant(tagRSIZE{0, 5}), CQXVariant(tagRSIZE{0.0011, 5})));
    EXPECT_FALSE(Equal(CQXVariant(tagRSIZE{0, 5}), CQXVariant(tagRSIZE{0, 5.0011})));
    EXPECT_TRUE(Equal(CQXVariant(tagRPOINT{0, 5}), CQXVariant(tagRPOINT{-0.001, 5})));
    EXPECT_FALSE(Equal(CQXVariant(tagRPOINT{0, 5}), CQXVariant(tagRPOINT{-0.0011, 5})));
    EXPECT_FALSE(Equal(CQXVariant(tagRPOINT{0, 5}), CQXVariant(tagRPOINT{0, 4.9989})));
    EXPECT_TRUE(Equal(CQXVariant(tagRPOINT{kNan, 5}), CQXVariant(tagRPOINT{100, 5})));
}

TEST(VariantComparisonTest, RectanglesAreComparedMemberByMember) {
    CQXVariant rect(Rect(1, 2, 3, 4));
    EXPECT_TRUE(Equal(rect, CQXVariant(Rect(1, 2, 3, 4))));
    EXPECT_FALSE(Equal(rect, CQXVariant(Rect(0, 2, 3, 4))));
    EXPECT_FALSE(Equal(rect, CQXVariant(Rect(1, 0, 3, 4))));
    EXPECT_FALSE(Equal(rect, CQXVariant(Rect(1, 2, 9, 4))));
    EXPECT_FALSE(Equal(rect, CQXVariant(Rect(1, 2, 3, 9))));
}

TEST(VariantComparisonTest, DifferentEmptyRectanglesAreEqual) {
    EXPECT_TRUE(Equal(CQXVariant(Rect(0, 0, 0, 0)), CQXVariant(Rect(5, 5, 1, 1))));
    EXPECT_TRUE(Equal(CQXVariant(Rect(0, 0, 0, 10)),
                      CQXVariant(Rect(0, 7, 10, 7))));  // zero width, zero height
    EXPECT_FALSE(Equal(CQXVariant(Rect(0, 0, 0, 0)), CQXVariant(Rect(0, 0, 1, 1))));
}

TEST(VariantComparisonTest, RealRectanglesMatchWithinATolerance) {
    CQXVariant rect(RRect(0, 0, 10, 10));
    EXPECT_TRUE(Equal(rect, CQXVariant(RRect(0.001, 0, 10, 10))));
    EXPECT_FALSE(Equal(rect, CQXVariant(RRect(0.0011, 0, 10, 10))));
    EXPECT_FALSE(Equal(rect, CQXVariant(RRect(0, 0.0011, 10, 10))));
    EXPECT_FALSE(Equal(rect, CQXVariant(RRect(0, 0, 10.0011, 10))));
    EXPECT_FALSE(Equal(rect, CQXVariant(RRect(0, 0, 10, 9.9989))));
}

TEST(VariantComparisonTest, DifferentEmptyRealRectanglesAreEqual) {
    EXPECT_TRUE(Equal(CQXVariant(RRect(5, 0, 1, 1)), CQXVariant(RRect(0, 7, 1, 2))));
}

TEST(VariantComparisonTest, ARealRectangleOfZeroWidthIsNotEmpty) {
    EXPECT_FALSE(Equal(CQXVariant(RRect(0, 0, 0, 0)), CQXVariant(RRect(5, 5, 5, 5))));
    EXPECT_FALSE(Equal(CQXVariant(RRect(0, 0, 0, 0)), CQXVariant(RRect(5, 5, 1, 1))));
}

TEST(VariantComparisonTest, BlobsAreComparedByTheirBytes) {
    char abc[] = "abc", abd[] = "abd";
    tagQXBLOB first = {3, abc}, same = {3, abc}, other = {3, abd}, shorter = {2, abc},
              null = {3, nullptr};
    EXPECT_TRUE(Equal(CQXVariant(first), CQXVariant(same)));
    EXPECT_FALSE(Equal(CQXVariant(first), CQXVariant(other)));
    EXPECT_FALSE(Equal(CQXVariant(first), CQXVariant(shorter)));
    EXPECT_FALSE(Equal(CQXVariant(first), CQXVariant(null)));
    EXPECT_TRUE(Equal(CQXVariant(null), CQXVariant(null)));
}

TEST(VariantComparisonTest, ObjectsAreComparedByAddress) {
    Probe one, two;
    IQXUnknown *first = one, *second = two;
    EXPECT_TRUE(Equal(CQXVariant(first), CQXVariant(first)));
    EXPECT_FALSE(Equal(CQXVariant(first), CQXVariant(second)));
    EXPECT_FALSE(Equal(CQXVariant(first), CQXVariant(static_cast<IQXUnknown*>(nullptr))));
}
