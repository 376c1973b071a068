#include "support/exponent.h"
#include "variant/probe_object.h"
#include "variant/variant_description.h"

#include <gtest/gtest.h>
#include <qxcore/heap.h>

#include <cstring>
#include <limits>

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// What a source gives as a target, "fail" for a failure.
std::string To(unsigned short target, const CQXVariant& source) {
    CQXVariant dest;
    return QXVariantChangeType(&dest, &source, target) ? Describe(dest) : "fail";
}

}  // namespace

TEST(ConversionTest, AFailureInPlaceLeavesTheSourceIntact) {
    CQXVariant v("Yes");
    const char* text = v;
    EXPECT_EQ(QXVariantChangeType(&v, &v, QXVT_INT), 0);
    EXPECT_EQ(static_cast<const char*>(v), text);
    EXPECT_EQ(Describe(v), "TEXT Yes");
}

TEST(ConversionTest, AFailureIntoAnotherRecordLeavesThatEmpty) {
    Probe probe;
    CQXVariant dest(static_cast<IQXUnknown*>(probe)), src("Yes");
    EXPECT_EQ(QXVariantChangeType(&dest, &src, QXVT_INT), 0);
    EXPECT_EQ(dest.type, 0);
    EXPECT_EQ(probe.Refs(), 1u);
    tagQXVARIANT zero;
    memset(&zero, 0, sizeof zero);
    EXPECT_EQ(memcmp(&dest, &zero, sizeof zero), 0);
}

TEST(ConversionTest, AnObjectGainsAReferenceAndABorrowedOneDoesNot) {
    Probe probe;
    CQXVariant source(static_cast<IQXUnknown*>(probe)), counted, borrowed;
    EXPECT_EQ(QXVariantChangeType(&counted, &source, QXVT_UNKNOWN), 1);
    EXPECT_EQ(probe.Refs(), 3u);
    EXPECT_EQ(QXVariantChangeType(&borrowed, &source, QXVT_UNKNOWN_REF), 1);
    EXPECT_EQ(probe.Refs(), 3u);
    EXPECT_EQ(static_cast<IQXUnknown*>(borrowed), static_cast<IQXUnknown*>(probe));
}

TEST(ConversionTest, BorrowingInPlaceGivesUpTheVariantsReference) {
    Probe probe;
    CQXVariant v(static_cast<IQXUnknown*>(probe));
    EXPECT_EQ(v.ChangeType(QXVT_UNKNOWN_REF), 1);
    EXPECT_EQ(probe.Refs(), 1u);
    EXPECT_EQ(Describe(v), "BORROWED");
}

TEST(ConversionTest, TextAndBlobBecomeCopies) {
    char abc[] = "abc";
    CQXVariant text("abc"), blob(tagQXBLOB{3, abc}), copy;
    EXPECT_EQ(QXVariantChangeType(&copy, &text, QXVT_STRING), 1);
    EXPECT_NE(static_cast<char*>(copy), static_cast<char*>(text));
    EXPECT_EQ(QXVariantChangeType(&copy, &blob, QXVT_BLOB), 1);
    EXPECT_NE(static_cast<tagQXBLOB>(copy).data, static_cast<tagQXBLOB>(blob).data);
}

// ---- numbers

TEST(ConversionTest, RealsAreTruncatedTowardZero) {
    EXPECT_EQ(To(QXVT_INT, 3.9), "INT 3");
    EXPECT_EQ(To(QXVT_INT, -3.9), "INT -3");
    EXPECT_EQ(To(QXVT_LONG, 3.9f), "LONG 3");
    EXPECT_EQ(To(QXVT_LONG, -3.9f), "LONG -3");
    EXPECT_EQ(To(QXVT_INT, 2147483647.9), "INT 2147483647");
    EXPECT_EQ(To(QXVT_INT, -2147483648.9), "INT -2147483648");
}

TEST(ConversionTest, ARealThatDoesNotFitAnIntGivesTheSmallest) {
    for (double v : {2147483648.0, -2147483649.0, 1e300, kInfinity, -kInfinity, kNan}) {
        EXPECT_EQ(To(QXVT_INT, v), "INT -2147483648");
        EXPECT_EQ(To(QXVT_LONG, static_cast<float>(v)), "LONG -2147483648");
    }
}

TEST(ConversionTest, RealsBecomeUnsignedThroughSixtyFourBits) {
    EXPECT_EQ(To(QXVT_UINT, 4294967295.5), "UINT 4294967295");
    EXPECT_EQ(To(QXVT_UINT, 4294967297.0), "UINT 1");
    EXPECT_EQ(To(QXVT_UINT, -1.5), "UINT 4294967295");
    EXPECT_EQ(To(QXVT_UINT, -3.0f), "UINT 4294967293");
    EXPECT_EQ(To(QXVT_UINT, 1e300), "UINT 0");
    EXPECT_EQ(To(QXVT_UINT, kNan), "UINT 0");
}

TEST(ConversionTest, TheTruthOfARealIsItsBeingLessOrGreaterThanZero) {
    EXPECT_EQ(To(QXVT_BOOL, 0.0), "BOOL 0");
    EXPECT_EQ(To(QXVT_BOOL, -0.0), "BOOL 0");
    EXPECT_EQ(To(QXVT_BOOL, 1e-300), "BOOL 1");
    EXPECT_EQ(To(QXVT_BOOL, -0.5), "BOOL 1");
    EXPECT_EQ(To(QXVT_BOOL, kNan), "BOOL 0");
    EXPECT_EQ(To(QXVT_BOOL, static_cast<float>(kNan)), "BOOL 0");
    EXPECT_EQ(To(QXVT_BOOL, -0.5f), "BOOL 1");
}

TEST(ConversionTest, TheTruthOfAnIntegerIsThatOfItsOwnWidth) {
    CQXVariant byte(static_cast<unsigned char>(0)), word(static_cast<unsigned short>(0));
    byte.value.uintVal = 0x100;
    word.value.uintVal = 0x10000;
    EXPECT_EQ(To(QXVT_BOOL, byte), "BOOL 0");
    EXPECT_EQ(To(QXVT_BOOL, word), "BOOL 0");
    EXPECT_EQ(To(QXVT_BOOL, 0x10000ul), "BOOL 1");
    EXPECT_EQ(To(QXVT_INT, byte), "INT 0");
    EXPECT_EQ(To(QXVT_INT, word), "INT 0");
}

TEST(ConversionTest, ADoubleNarrowsToAFloat) {
    EXPECT_EQ(To(QXVT_FLOAT, 0.1), "FLOAT 0.1000000015");
    EXPECT_EQ(To(QXVT_FLOAT, 16777217), "FLOAT 16777216");
    EXPECT_EQ(To(QXVT_DOUBLE, 0.1f), "DOUBLE 0.1000000015");
}

TEST(ConversionTest, EmptyBecomesZeroOrAnEmptyTextAndNothingElse) {
    const char* outcomes[] = {"EMPTY",  "BOOL 0", "UI1 0",    "UI2 0",   "ULONG 0", "INT 0",
                              "UINT 0", "LONG 0", "DOUBLE 0", "FLOAT 0", "TEXT "};
    for (unsigned short target = 0; target <= 10; ++target)
        EXPECT_EQ(To(target, CQXVariant()), outcomes[target]);
    for (unsigned short target = 11; target <= 18; ++target)
        EXPECT_EQ(To(target, CQXVariant()), "fail");
}

// ---- text

TEST(ConversionTest, BoolTextIsWrittenAndNotReadBack) {
    EXPECT_EQ(To(QXVT_STRING, CQXVariant(1, 1)), "TEXT Yes");
    EXPECT_EQ(To(QXVT_STRING, CQXVariant(0, 1)), "TEXT No");
    EXPECT_EQ(To(QXVT_BOOL, "Yes"), "fail");
    EXPECT_EQ(To(QXVT_BOOL, "1"), "fail");
}

TEST(ConversionTest, AByteAsTextReadsTheByteBehindItToo) {
    CQXVariant v(static_cast<unsigned char>(200));
    EXPECT_EQ(To(QXVT_STRING, v), "TEXT 200");
    v.value.uintVal = 0x9901C8;  // 16 bits are read
    EXPECT_EQ(To(QXVT_STRING, v), "TEXT 456");
}

TEST(ConversionTest, AnUnsignedShortAsTextReadsFourBytes) {
    CQXVariant v(static_cast<unsigned short>(5));
    v.value.uintVal = 0x10005;
    EXPECT_EQ(To(QXVT_STRING, v), "TEXT 65541");
}

TEST(ConversionTest, NumbersAsTextUseTheRuntimesForms) {
    EXPECT_EQ(To(QXVT_STRING, std::numeric_limits<int>::min()), "TEXT -2147483648");
    EXPECT_EQ(To(QXVT_STRING, std::numeric_limits<long>::max()), "TEXT 2147483647");
    EXPECT_EQ(To(QXVT_STRING, 4294967295ul), "TEXT 4294967295");
    EXPECT_EQ(To(QXVT_STRING, 0), "TEXT 0");
    EXPECT_EQ(To(QXVT_STRING, 1234567.0), "TEXT 1.23457e+" EXPONENT_LEAD "06");  // six digits
    EXPECT_EQ(To(QXVT_STRING, 0.1f), "TEXT 0.1");
    EXPECT_EQ(To(QXVT_STRING, 100000.0), "TEXT 100000");
}

TEST(ConversionTest, TextIsScannedUpToTheFirstByteThatDoesNotFit) {
    EXPECT_EQ(To(QXVT_INT, "12abc"), "INT 12");
    EXPECT_EQ(To(QXVT_UINT, "12abc"), "UINT 12");
    EXPECT_EQ(To(QXVT_LONG, " \t\r\n\v\f-12 abc"), "LONG -12");
    EXPECT_EQ(To(QXVT_INT, "+7"), "INT 7");
    EXPECT_EQ(To(QXVT_INT, "0x1F"), "INT 0");
    EXPECT_EQ(To(QXVT_INT, "007"), "INT 7");
    EXPECT_EQ(To(QXVT_INT, "-2147483648"), "INT -2147483648");
    EXPECT_EQ(To(QXVT_UINT, "4294967295"), "UINT 4294967295");
    EXPECT_EQ(To(QXVT_UINT, "-1"), "UINT 4294967295");
    EXPECT_EQ(To(QXVT_DOUBLE, "-12.5e2xyz"), "DOUBLE -1250");
    EXPECT_EQ(To(QXVT_FLOAT, " .25"), "FLOAT 0.25");
}

TEST(ConversionTest, TextWithoutALeadingNumberFails) {
    for (const char* text : {"", " ", "abc", "-", "+", "- 5", "--5", ".", "a1"}) {
        SCOPED_TRACE(text);
        for (unsigned short target : {QXVT_INT, QXVT_UINT, QXVT_LONG, QXVT_DOUBLE, QXVT_FLOAT}) {
            EXPECT_EQ(To(target, text), "fail") << target;
        }
    }
}

TEST(ConversionTest, ANullTextBecomesANullTextAndNoNumber) {
    CQXVariant null(static_cast<const char*>(nullptr));
    EXPECT_EQ(To(QXVT_STRING, null), "TEXT null");
    for (unsigned short target : {QXVT_INT, QXVT_UINT, QXVT_LONG, QXVT_DOUBLE, QXVT_FLOAT}) {
        EXPECT_EQ(To(target, null), "fail");
    }
}

TEST(ConversionTest, ADoubleToUnsignedLongIsScannedAsTheTextItPointsTo) {
    char digits[] = "4000000000 and more", letters[] = "none";
    CQXVariant v(0.0);
    v.value.string = digits;
    EXPECT_EQ(To(QXVT_ULONG, v), "ULONG 4000000000");
    v.value.string = letters;
    EXPECT_EQ(To(QXVT_ULONG, v), "fail");
}

TEST(ConversionTest, ARealDoubleToUnsignedLongFailsAndTheProcessLives) {
    for (double v : {0.0, 1.0, -1.0, 3.9, 1e300, 1e-310, kNan, kInfinity})
        EXPECT_EQ(To(QXVT_ULONG, v), "fail") << v;
}

TEST(ConversionTest, TextToUnsignedLongFails) {
    EXPECT_EQ(To(QXVT_ULONG, "12"), "fail");
    EXPECT_EQ(To(QXVT_ULONG, 12.0f), "fail");
}

// ---- geometry

TEST(ConversionTest, RealsAreRoundedHalfUpAndHalfDownToZero) {
    EXPECT_EQ(To(QXVT_SIZE, tagRSIZE{3.5, -3.5}), "SIZE 4,-3");
    EXPECT_EQ(To(QXVT_POINT, tagRPOINT{0.5, -0.5}), "POINT 1,0");
    EXPECT_EQ(To(QXVT_POINT, tagRPOINT{0.4999, -0.50000011}), "POINT 0,-1");
    EXPECT_EQ(To(QXVT_POINT, tagRPOINT{2.4, -2.6}), "POINT 2,-3");
    EXPECT_EQ(To(QXVT_SIZE, tagRSIZE{-1.5, -1.6}), "SIZE -1,-2");
}

TEST(ConversionTest, ARoundedRealThatDoesNotFitGivesTheSmallestInt) {
    EXPECT_EQ(To(QXVT_SIZE, tagRSIZE{1e10, kNan}), "SIZE -2147483648,-2147483648");
    EXPECT_EQ(To(QXVT_SIZE, tagRSIZE{2147483647.4, -2147483648.4}), "SIZE 2147483647,-2147483648");
}

TEST(ConversionTest, RectanglesDifferByOneAndComeBack) {
    CQXVariant v(tagRECT{0, 0, 10, 10});
    EXPECT_EQ(v.ChangeType(QXVT_RRECT), 1);
    EXPECT_EQ(Describe(v), "RRECT 0,0,9,9");
    EXPECT_EQ(v.ChangeType(QXVT_RECT), 1);
    EXPECT_EQ(Describe(v), "RECT 0,0,10,10");
    EXPECT_EQ(To(QXVT_RRECT, tagRECT{-5, -6, -5, -6}), "RRECT -5,-6,-6,-7");
}

TEST(ConversionTest, RectanglesWrapAtTheEndsOfTheIntegers) {
    EXPECT_EQ(To(QXVT_RECT, tagRRECT{0, 0, 2147483647, 1}), "RECT 0,0,-2147483648,2");
    EXPECT_EQ(To(QXVT_RRECT, tagRECT{0, 0, std::numeric_limits<long>::min(), 1}),
              "RRECT 0,0,2147483647,0");
}
