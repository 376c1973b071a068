// The text forms of values, which the writers of ini text share. No export shows them yet, so the
// source is built in.
#include "param/ini/ini_value.h"

#include "param/tree_text.h"

#include <gtest/gtest.h>

#include <clocale>
#include <string>

namespace {

std::string Written(const CQXVariant& value) {
    CXString text("untouched");
    return qx::WriteIniValue(value, text) ? std::string(text) : "(no text form)";
}

// Written and read again.
std::string ReadBack(const CQXVariant& value) {
    CXString written;
    if (!qx::WriteIniValue(value, written)) return "(not written)";
    std::string text = written.GetData();
    tagQXVARIANT back;  // owns nothing, so it is not cleared
    QXVariantInit(&back);
    return qx::ReadIniValue(text.data(), back) ? ValueText(back) : "(not read back)";
}

}  // namespace

TEST(IniValueTest, EachTypeIsWrittenWithItsLetter) {
    EXPECT_EQ(Written(CQXVariant()), "e");
    EXPECT_EQ(Written(CQXVariant(5, 1)), "f1");
    EXPECT_EQ(Written(CQXVariant(static_cast<unsigned short>(65535))), "w65535");
    EXPECT_EQ(Written(CQXVariant(4294967295ul)), "W4294967295");
    EXPECT_EQ(Written(CQXVariant(-7)), "i-7");
    EXPECT_EQ(Written(CQXVariant(4000000000u)), "u4000000000");
    EXPECT_EQ(Written(CQXVariant(-8l)), "l-8");
    EXPECT_EQ(Written(CQXVariant(2.5)), "R2.5");
    EXPECT_EQ(Written(CQXVariant(0.25f)), "r0.25");
    EXPECT_EQ(Written(CQXVariant("text")), "stext");
    EXPECT_EQ(Written(CQXVariant(tagSIZE{3, -4})), "z3,-4");
    EXPECT_EQ(Written(CQXVariant(tagRSIZE{3.5, -4.5})), "Z3.5,-4.5");
    EXPECT_EQ(Written(CQXVariant(tagPOINT{1, 2})), "p1,2");
    EXPECT_EQ(Written(CQXVariant(tagRPOINT{1.5, 2.5})), "P1.5,2.5");
    EXPECT_EQ(Written(CQXVariant(tagRECT{1, 2, 3, 4})), "t1,2,3,4");
    EXPECT_EQ(Written(CQXVariant(tagRRECT{1.5, 2.5, 3.5, 4.5})), "T1.5,2.5,3.5,4.5");
}

TEST(IniValueTest, BlobsAndObjectsHaveNoTextForm) {
    char byte = 1;
    EXPECT_EQ(Written(CQXVariant(tagQXBLOB{1, &byte})), "(no text form)");
    EXPECT_EQ(Written(CQXVariant(static_cast<IQXUnknown*>(nullptr))), "(no text form)");
}

TEST(IniValueTest, AFlagIsOneOnlyIfTheValueIsExactlyOne) {
    CQXVariant flag(1, 1);
    flag.value.boolVal = 2;
    EXPECT_EQ(Written(flag), "f0");
    flag.value.boolVal = -1;
    EXPECT_EQ(Written(flag), "f0");
}

TEST(IniValueTest, AByteIsWrittenByNibblesThatBecomeStrangeAboveNine) {
    EXPECT_EQ(Written(CQXVariant(static_cast<unsigned char>(0x19))), "b19");
    EXPECT_EQ(Written(CQXVariant(static_cast<unsigned char>(0xA0))), "b:0");
    EXPECT_EQ(Written(CQXVariant(static_cast<unsigned char>(0x0F))), "b0P");
    EXPECT_EQ(Written(CQXVariant(static_cast<unsigned char>(0xBC))), "bLM");
}

TEST(IniValueTest, AByteIsReadBackAsZeroAndNotAtAllWithANibbleAboveNine) {
    EXPECT_EQ(ReadBack(CQXVariant(static_cast<unsigned char>(0x19))), "2:0");
    EXPECT_EQ(ReadBack(CQXVariant(static_cast<unsigned char>(0xA0))), "(not read back)");
}

TEST(IniValueTest, EveryOtherTypeComesBackAsItWas) {
    EXPECT_EQ(ReadBack(CQXVariant()), "0:");
    EXPECT_EQ(ReadBack(CQXVariant(1, 1)), "1:1");
    EXPECT_EQ(ReadBack(CQXVariant(static_cast<unsigned short>(7))), "3:7");
    EXPECT_EQ(ReadBack(CQXVariant(4294967295ul)), "4:4294967295");
    EXPECT_EQ(ReadBack(CQXVariant(-7)), "5:-7");
    EXPECT_EQ(ReadBack(CQXVariant(4000000000u)), "6:4000000000");
    EXPECT_EQ(ReadBack(CQXVariant(-8l)), "7:-8");
    EXPECT_EQ(ReadBack(CQXVariant(2.5)), "8:2.5");
    EXPECT_EQ(ReadBack(CQXVariant(0.25f)), "9:0.25");
    EXPECT_EQ(ReadBack(CQXVariant("  text")), "10:  text");
    EXPECT_EQ(ReadBack(CQXVariant(tagSIZE{3, -4})), "11:3,-4");
    EXPECT_EQ(ReadBack(CQXVariant(tagRRECT{1.5, 2.5, 3.5, 4.5})), "16:1.5,2.5,3.5,4.5");
}

TEST(IniValueTest, AWholeDoubleIsWrittenByTheRuntimesGcvt) {
    // Windows writes "2.", Wine "2".
    std::string text = Written(CQXVariant(2.0));
    EXPECT_TRUE(text == "R2." || text == "R2") << text;
}

TEST(IniValueTest, DecimalsAreWrittenWithAPointUnderACommaLocale) {
    std::string before = setlocale(LC_ALL, nullptr);
    ASSERT_NE(setlocale(LC_ALL, "German_Germany.1252"), nullptr);
    std::string inside = setlocale(LC_ALL, nullptr);
    EXPECT_EQ(Written(CQXVariant(tagRSIZE{3.5, -4.5})), "Z3.5,-4.5");
    EXPECT_STREQ(setlocale(LC_ALL, nullptr), inside.c_str());
    setlocale(LC_ALL, before.c_str());
}
