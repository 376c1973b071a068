// Whole trees written to ini files, and the text forms of all values.
#include "param/ini_file_fixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>

namespace {

class IniWriterTest : public IniFileTest {
protected:
    ParamPtr tree{new_MemParam()};

    std::string Written() {
        EXPECT_EQ(Param_Param2IniFile(tree.Get(), file.c_str()), 1);
        return Content();
    }
    // The value of the line that a value is written as.
    std::string Written(const CQXVariant& value) {
        tree->Clear();
        tree->SetValue("key", &value);
        std::string text = Written(), head = "\r\n[\\]\r\n";
        EXPECT_EQ(text.substr(0, head.size()), head);
        text.erase(0, head.size());
        if (text.empty()) return "(left out)";
        EXPECT_EQ(text.substr(0, 4), "key=");
        EXPECT_EQ(text.substr(text.size() - 2), "\r\n");
        return text.substr(4, text.size() - 6);
    }
    std::string ReadBack(const CQXVariant& value) {
        Written(value);
        ParamPtr back(new_MemParam());
        EXPECT_EQ(Param_IniFile2Param(file.c_str(), back.Get()), 1);
        return TreeText(back.Get());
    }
};

std::string Repeated(int count, const char* text) {
    std::string all;
    while (count-- > 0) all += text;
    return all;
}

}  // namespace

TEST_F(IniWriterTest, AnEmptyTreeIsTheHeaderOfTheRoot) {
    EXPECT_EQ(Written(), "\r\n[\\]\r\n");
}

TEST_F(IniWriterTest, ValuesComeBeforeChildrenAndChildrenDepthFirst) {
    SetInt(tree.Get(), "z", 1);
    SetInt(ParamPtr(tree->CreateSubParam("a\\deep\\deeper")).Get(), "x", 2);
    ParamPtr(tree->CreateSubParam("b"));
    SetInt(tree.Get(), "y", 3);
    SetInt(ParamPtr(tree->OpenSubParam("a", 0)).Get(), "w", 4);
    EXPECT_EQ(Written(),
              "\r\n[\\]\r\nz=i1\r\ny=i3\r\n\r\n[\\a]\r\nw=i4\r\n\r\n[\\a\\deep]\r\n"
              "\r\n[\\a\\deep\\deeper]\r\nx=i2\r\n\r\n[\\b]\r\n");
}

TEST_F(IniWriterTest, ANodeBelowOthersIsWrittenAsARoot) {
    SetInt(ParamPtr(tree->CreateSubParam("a\\b\\c")).Get(), "x", 1);
    SetInt(tree.Get(), "above", 2);
    tree = ParamPtr(tree->OpenSubParam("a\\b", 0));
    EXPECT_EQ(Written(), "\r\n[\\]\r\n\r\n[\\c]\r\nx=i1\r\n");
}

TEST_F(IniWriterTest, EachTypeIsWrittenWithItsLetter) {
    EXPECT_EQ(Written(CQXVariant()), "e");
    EXPECT_EQ(Written(CQXVariant(5, 1)), "f1");
    EXPECT_EQ(Written(CQXVariant(0, 1)), "f0");
    EXPECT_EQ(Written(CQXVariant(static_cast<unsigned short>(65535))), "w65535");
    EXPECT_EQ(Written(CQXVariant(4294967295ul)), "W4294967295");
    EXPECT_EQ(Written(CQXVariant(-2147483647 - 1)), "i-2147483648");
    EXPECT_EQ(Written(CQXVariant(4000000000u)), "u4000000000");
    EXPECT_EQ(Written(CQXVariant(-8l)), "l-8");
    EXPECT_EQ(Written(CQXVariant("a text")), "sa text");
    EXPECT_EQ(Written(CQXVariant("")), "s");
    EXPECT_EQ(Written(CQXVariant(tagSIZE{3, -4})), "z3,-4");
    EXPECT_EQ(Written(CQXVariant(tagRSIZE{1.5, 2.5})), "Z1.5,2.5");
    EXPECT_EQ(Written(CQXVariant(tagPOINT{5, 6})), "p5,6");
    EXPECT_EQ(Written(CQXVariant(tagRPOINT{0.5, -0.25})), "P0.5,-0.25");
    EXPECT_EQ(Written(CQXVariant(tagRECT{1, 2, 3, 4})), "t1,2,3,4");
    EXPECT_EQ(Written(CQXVariant(tagRRECT{0.5, 1.5, 2.5, -3.5})), "T0.5,1.5,2.5,-3.5");
}

TEST_F(IniWriterTest, AFlagIsTrueOnlyWhenItIsExactlyOne) {
    CQXVariant flag(1, 1);
    flag.value.boolVal = 2;
    EXPECT_EQ(Written(flag), "f0");
    flag.value.boolVal = -1;
    EXPECT_EQ(Written(flag), "f0");
}

// Above nine the characters are no digits, so such a byte is not read back; nor is any other, since
// reading a byte stores nothing.
TEST_F(IniWriterTest, AByteIsWrittenByNibblesThatTenAndMoreAreNoDigitsOf) {
    auto byte = [&](int value) { return Written(CQXVariant(static_cast<unsigned char>(value))); };
    EXPECT_EQ(byte(0x00), "b00");
    EXPECT_EQ(byte(0x19), "b19");
    EXPECT_EQ(byte(0xA5), "b:5");
    EXPECT_EQ(byte(0x5A), "b5:");
    EXPECT_EQ(byte(0xBC), "bLM");
    EXPECT_EQ(byte(0xFF), "bPP");
    EXPECT_EQ(ReadBack(CQXVariant(static_cast<unsigned char>(0x19))), "key=2:0");
    EXPECT_EQ(ReadBack(CQXVariant(static_cast<unsigned char>(0xAB))), "");
}

TEST_F(IniWriterTest, DecimalsHaveFourteenDigitsAndAPointInEveryLocale) {
    EXPECT_EQ(Written(CQXVariant(2.5)), "R2.5");
    // The system's runtime writes "1.", that of Wine "1".
    std::string whole = Written(CQXVariant(1.0));
    EXPECT_TRUE(whole == "R1." || whole == "R1") << whole;
    EXPECT_EQ(Written(CQXVariant(0.25f)), "r0.25");
    EXPECT_EQ(Written(CQXVariant(1.0 / 3)), "R0.33333333333333");
    EXPECT_EQ(Written(CQXVariant(-123456789.125)), "R-123456789.125");
    if (!setlocale(LC_ALL, "German_Germany.1252")) GTEST_SKIP() << "no locale with a comma";
    EXPECT_EQ(Written(CQXVariant(2.5)), "R2.5");
    EXPECT_EQ(Written(CQXVariant(tagRPOINT{0.5, 1.5})), "P0.5,1.5");
    EXPECT_STREQ(setlocale(LC_ALL, nullptr), "German_Germany.1252");
    setlocale(LC_ALL, "C");
}

TEST_F(IniWriterTest, BlobsAndObjectsAreLeftOut) {
    char bytes[] = {1, 2};
    EXPECT_EQ(Written(CQXVariant(tagQXBLOB{2, bytes})), "(left out)");
    EXPECT_EQ(Written(CQXVariant(static_cast<IQXUnknown*>(tree.Get()))), "(left out)");
    tree->Clear();
}

TEST_F(IniWriterTest, ValuesThatCannotBeReadAreLeftOut) {
    SetInt(tree.Get(), "a\\b", 5);
    ParamPtr(tree->OpenSubParam("a", 0))->DeleteAllValues();
    EXPECT_EQ(Written(), "\r\n[\\]\r\n\r\n[\\a]\r\n");
    SetInt(tree.Get(), "a\\b", 6);
    EXPECT_EQ(Written(), "\r\n[\\]\r\na\\b=i6\r\n\r\n[\\a]\r\nb=i6\r\n");
}

TEST_F(IniWriterTest, ReadingBackGivesTheSameTree) {
    for (const CQXVariant& value :
         {CQXVariant(), CQXVariant(1, 1), CQXVariant(static_cast<unsigned short>(7)),
          CQXVariant(8ul), CQXVariant(-9), CQXVariant(10u), CQXVariant(-11l), CQXVariant(0.1),
          CQXVariant(0.5f), CQXVariant("  text with = and [\\x]"), CQXVariant(tagSIZE{1, 2}),
          CQXVariant(tagRSIZE{0.1, 1e-9}), CQXVariant(tagPOINT{3, 4}),
          CQXVariant(tagRPOINT{1e300, -2}), CQXVariant(tagRECT{1, 2, 3, 4}),
          CQXVariant(tagRRECT{0.1, 0.2, 0.3, 0.4})}) {
        EXPECT_EQ(ReadBack(value), "key=" + ValueText(value));
    }
}

TEST_F(IniWriterTest, ASemicolonOrASeparatorInATextIsLostInReading) {
    EXPECT_EQ(Written(CQXVariant("a;b")), "sa;b");
    EXPECT_EQ(ReadBack(CQXVariant("a;b")), "key=10:a");
    EXPECT_EQ(ReadBack(CQXVariant("a|name=i5")), "key=10:a name=5:5");
}

TEST_F(IniWriterTest, WhatTheTargetHeldIsReplaced) {
    Write("[old]\r\nkey=1\r\n");
    SetInt(tree.Get(), "x", 1);
    EXPECT_EQ(Written(), "\r\n[\\]\r\nx=i1\r\n");
}

TEST_F(IniWriterTest, ATreeOverTheSameFileIsWrittenAsItStands) {
    ParamPtr live = Root();
    SetInt(live.Get(), "ab\\x", 1);
    EXPECT_EQ(Param_Param2IniFile(live.Get(), file.c_str()), 1);
    EXPECT_EQ(Content(), "\r\n[\\]\r\n@=e\r\n\r\n[\\ab]\r\n@=e\r\nx=i1\r\n");
    EXPECT_EQ(TreeText(live.Get()), "@=0: ab{@=0: x=5:1}");
}

TEST_F(IniWriterTest, AListedChildThatCannotBeOpenedIsSkipped) {
    Write("[\\]\r\n@=e\r\n[\\aa\\bb]\r\nx=i1\r\n");
    std::string other = directory.PathOf("other.ini");
    EXPECT_EQ(Param_Param2IniFile(Root().Get(), other.c_str()), 1);
    EXPECT_EQ(ContentOfFile(other), "\r\n[\\]\r\n@=e\r\n");
}

TEST_F(IniWriterTest, AFileThatCannotBeWrittenIsTold) {
    try {
        Param_Param2IniFile(tree.Get(), directory.PathOf("no\\such\\folder.ini").c_str());
        ADD_FAILURE() << "nothing was thrown";
    } catch (CXException& e) {
        EXPECT_EQ(e.GetCode(), QXERR_BAD_NAME);
    }
}

TEST_F(IniWriterTest, ANullTreeLeavesTheTarget) {
    Write("old");
    EXPECT_EQ(Param_Param2IniFile(nullptr, file.c_str()), 0);
    EXPECT_EQ(Content(), "old");
}

// A line has 8191 bytes with its line end.
TEST_F(IniWriterTest, ALineThatIsTooLongIsCutAndTheNextOneIsWhole) {
    std::string text(9000, 't');
    CQXVariant value(text.c_str());
    tree->SetValue("long", &value);
    SetInt(tree.Get(), "next", 5);
    EXPECT_EQ(Written(), "\r\n[\\]\r\nlong=s" + text.substr(0, 8189 - 6) + "\r\nnext=i5\r\n");
    ParamPtr back(new_MemParam());
    Param_IniFile2Param(file.c_str(), back.Get());
    EXPECT_EQ(TreeText(back.Get()), "long=10:" + text.substr(0, 8189 - 6) + " next=5:5");
}

TEST_F(IniWriterTest, APathThatIsTooLongIsCut) {
    std::string name(6000, 'n'), other(6000, 'm');
    SetInt(ParamPtr(tree->CreateSubParam((name + "\\" + other).c_str())).Get(), "x", 1);
    SetInt(ParamPtr(tree->CreateSubParam("after")).Get(), "y", 2);
    std::string path = "\\" + name, below = path + "\\" + other;
    EXPECT_EQ(Written(), "\r\n[\\]\r\n\r\n[" + path + "]\r\n\r\n[" + below.substr(0, 8187) +
                             "]\r\nx=i1\r\n\r\n[\\after]\r\ny=i2\r\n");
}

TEST_F(IniWriterTest, ATreeOfAnyDepthIsWalked) {
    std::string path = Repeated(std::min(3000, kTooManyCalls), "a\\") + "a";
    SetInt(ParamPtr(tree->CreateSubParam(path.c_str())).Get(), "x", 1);
    OnSmallStack([&] { EXPECT_EQ(Param_Param2IniFile(tree.Get(), file.c_str()), 1); });
    ParamPtr back(new_MemParam());
    Param_IniFile2Param(file.c_str(), back.Get());
    EXPECT_EQ(GetInt(back.Get(), (path + "\\x").c_str()), 1);
}
