#include "param/tree_text.h"
#include "support/import_slot.h"

#include <gtest/gtest.h>
#include <mbctype.h>

#include <clocale>
#include <cstdio>
#include <string>
#include <vector>

namespace {

// A file beside the program for the length of a test.
class TextFile {
public:
    TextFile(std::string name, const std::string& text) : name(std::move(name)) {
        FILE* file = fopen(this->name.c_str(), "wb");
        fwrite(text.data(), 1, text.size(), file);
        fclose(file);
    }
    ~TextFile() { remove(name.c_str()); }
    TextFile(const TextFile&) = delete;
    TextFile& operator=(const TextFile&) = delete;

    const std::string name;
};

class IniReaderTest : public testing::Test {
protected:
    ParamPtr root{new_MemParam()};

    std::string Read(const std::string& text) {
        TextFile file("ini_reader_test.ini", text);
        EXPECT_EQ(Param_IniFile2Param(file.name.c_str(), root.Get()), 1);
        return TreeText(root.Get());
    }
    // What one "key=..." gives in a fresh tree.
    std::string ReadValue(const std::string& value) {
        root = ParamPtr(new_MemParam());
        return Read("[\\]\r\nkey=" + value + "\r\n");
    }
};

}  // namespace

namespace {

std::vector<const void*> g_keptViews;

BOOL WINAPI FailingUnmap(const void* view) {
    g_keptViews.push_back(view);
    SetLastError(ERROR_INVALID_ADDRESS);
    return FALSE;
}

// Closes what was kept open. How many views those were.
size_t UnmapKeptViews() {
    size_t count = g_keptViews.size();
    for (const void* view : g_keptViews) EXPECT_TRUE(UnmapViewOfFile(view));
    g_keptViews.clear();
    return count;
}

// The file that is closed first, an included one or the outermost, cannot be closed.
CXFileException FailureOfClosing(const char* path, IParam* root) {
    ReplacedImport failing("UnmapViewOfFile", reinterpret_cast<void*>(&FailingUnmap));
    EXPECT_TRUE(failing);
    try {
        Param_IniFile2Param(path, root);
    } catch (CXFileException& e) {
        return e;
    }
    return CXFileException(0, nullptr, 0);
}

}  // namespace

TEST_F(IniReaderTest, AFileThatCannotBeClosedIsToldAndWhatItHeldIsRead) {
    TextFile file("ini_reader_test.ini", "[\\]\r\nkey=i5\r\n");
    EXPECT_EQ(FailureOfClosing(file.name.c_str(), root.Get()).code, QXERR_MEMORY);
    EXPECT_EQ(TreeText(root.Get()), "key=5:5");
    EXPECT_EQ(UnmapKeptViews(), 1u);
}

TEST_F(IniReaderTest, AnIncludedFileThatCannotBeClosedIsToldToo) {
    TextFile file("ini_reader_test.ini", "[\\]\r\n#include part.ini\r\nlate=i1\r\n");
    TextFile part("part.ini", "key=i5\r\n");
    EXPECT_EQ(FailureOfClosing(file.name.c_str(), root.Get()).code, QXERR_MEMORY);
    EXPECT_EQ(TreeText(root.Get()), "key=5:5");
    EXPECT_EQ(UnmapKeptViews(), 2u);
}

TEST_F(IniReaderTest, TextWithNoSectionHeaderSetsNothing) {
    EXPECT_EQ(Read("key=i5\r\nother\r\n"), "");
}

TEST_F(IniReaderTest, AWholeTreeMayStandInOneLine) {
    EXPECT_EQ(Read("[\\]|key=i5|[\\a]|x=sabc|"), "key=5:5 a{x=10:abc}");
}

TEST_F(IniReaderTest, SectionsAreFullPathsFromTheRoot) {
    EXPECT_EQ(
        Read("[\\a\\b]\r\nx=i1\r\n[\\c]\r\ny=i2\r\n[\\a]\r\nz=i3\r\n[\\a\\b]\r\nx=i4\r\nw=i5\r\n"),
        "a{z=5:3 b{x=5:4 w=5:5}} c{y=5:2}");
}

TEST_F(IniReaderTest, AHeaderNeedsNoClosingBracket) {
    EXPECT_EQ(Read("[\\a\r\nx=i1\r\n"), "a{x=5:1}");
}

TEST_F(IniReaderTest, TheFirstTwoCharactersOfAHeaderAreDroppedUnread) {
    EXPECT_EQ(Read("[ab]\r\nx=i1\r\n"), "b{x=5:1}");
}

TEST_F(IniReaderTest, ShortHeadersNameTheRoot) {
    EXPECT_EQ(Read("[a]\r\nx=i1\r\n[\\s]\r\n[]\r\ny=i2\r\n[\\s]\r\n[\\]\r\nz=i3\r\n"),
              "x=5:1 y=5:2 z=5:3 s{}");
}

TEST_F(IniReaderTest, AnEmptySegmentIsPassedOnAsItIs) {
    EXPECT_EQ(Read("[\\a\\\\b]\r\nx=i1\r\n"), "a{{b{x=5:1}}}");
}

TEST_F(IniReaderTest, AHeaderIsTrimmedBeforeItIsRead) {
    EXPECT_EQ(Read("  [\\a]  \r\nx=i1\r\n"), "a{x=5:1}");
}

TEST_F(IniReaderTest, ABareKeyIsTheIntZero) {
    EXPECT_EQ(Read("[\\]\r\nkey\r\ntwo words\r\n"), "key=5:0 two words=5:0");
}

TEST_F(IniReaderTest, ALineOfOneCharacterIsDropped) {
    EXPECT_EQ(Read("[\\]\r\nk\r\n=\r\nkk\r\n"), "kk=5:0");
}

TEST_F(IniReaderTest, BlanksAroundKeyAndValueAreDroppedButNotThoseBehindTheLetter) {
    EXPECT_EQ(Read("[\\]\r\n  key \t =  i5 \r\ns1=s  two  blanks  \r\n"),
              "key=5:5 s1=10:  two  blanks");
}

TEST_F(IniReaderTest, ACommentRunsToTheEndOfThePhysicalLineAlsoInsideAValue) {
    EXPECT_EQ(Read("; all\r\n[\\]\r\nkey=i5 ; five\r\ns1=sa;b|lost=i1\r\n;x|y=i1\r\n"),
              "key=5:5 s1=10:a");
}

TEST_F(IniReaderTest, SeparatorsAndBlanksAtTheEndsOfALineAreDropped) {
    EXPECT_EQ(Read("| | [\\] ||key=i5| |  |other=i6 | \r\n"), "key=5:5 other=5:6");
}

TEST_F(IniReaderTest, ARepeatedKeyKeepsTheLastValue) {
    EXPECT_EQ(Read("[\\]\r\nkey=i1\r\nKEY=sx\r\n"), "key=10:x");
}

TEST_F(IniReaderTest, TheKeyEndsAtTheFirstEqualsSign) {
    EXPECT_EQ(Read("[\\]\r\nkey=sa=b\r\n"), "key=10:a=b");
}

TEST_F(IniReaderTest, AnEmptyKeyIsTheDefaultValue) {
    EXPECT_EQ(Read("[\\]\r\n=i5\r\n"), "@=5:5");
}

TEST_F(IniReaderTest, AKeyWithAPathFollowsTheTreesRule) {
    EXPECT_EQ(Read("[\\]\r\na\\b=i5\r\n"), "a\\b a{b=5:5}");
}

TEST_F(IniReaderTest, TheTargetIsNotEmptiedFirst) {
    SetInt(root.Get(), "old", 1);
    EXPECT_EQ(Read("[\\]\r\nnew=i2\r\n"), "old=5:1 new=5:2");
}

TEST_F(IniReaderTest, ALoneLineFeedEndsTheInput) {
    EXPECT_EQ(Read("[\\]\na1=i1\n\nb1=i2\n"), "a1=5:1");
}

TEST_F(IniReaderTest, ALineOfACarriageReturnDoesNotEndTheInput) {
    EXPECT_EQ(Read("[\\]\r\na1=i1\r\n\r\nb1=i2\r\n"), "a1=5:1 b1=5:2");
}

TEST_F(IniReaderTest, TheLastLineNeedsNoLineFeed) {
    EXPECT_EQ(Read("[\\]\r\nkey=i1"), "key=5:1");
}

TEST_F(IniReaderTest, AnEmptyFileSetsNothing) {
    EXPECT_EQ(Read(""), "");
}

// The value table, row by row.

TEST_F(IniReaderTest, AnEmptyValueIgnoresTheRest) {
    EXPECT_EQ(ReadValue("e"), "key=0:");
    EXPECT_EQ(ReadValue("e whatever"), "key=0:");
}

TEST_F(IniReaderTest, AFlagIsADigitOrAWord) {
    EXPECT_EQ(ReadValue("f1"), "key=1:1");
    EXPECT_EQ(ReadValue("f0"), "key=1:0");
    EXPECT_EQ(ReadValue("f01"), "key=1:1");
    EXPECT_EQ(ReadValue("f1x"), "key=1:1");
    EXPECT_EQ(ReadValue("fY"), "key=1:1");
    EXPECT_EQ(ReadValue("fyes"), "key=1:1");
    EXPECT_EQ(ReadValue("fNo"), "key=1:0");
    EXPECT_EQ(ReadValue("fn"), "key=1:0");
    for (const char* bad : {"f2", "f10", "f", "fx", "f-1", "f Y"})
        EXPECT_EQ(ReadValue(bad), "") << bad;
}

TEST_F(IniReaderTest, AByteTakesTwoHexadecimalDigitsAndStoresNone) {
    EXPECT_EQ(ReadValue("b1F"), "key=2:0");
    EXPECT_EQ(ReadValue("bffzz"), "key=2:0");
    for (const char* bad : {"b", "b1", "bg0", "b0g", "b:0"}) EXPECT_EQ(ReadValue(bad), "") << bad;
}

TEST_F(IniReaderTest, ASixteenBitNumberEndsAt65535) {
    EXPECT_EQ(ReadValue("w65535"), "key=3:65535");
    EXPECT_EQ(ReadValue("w0x10"), "key=3:16");
    EXPECT_EQ(ReadValue("w 7"), "key=3:7");
    for (const char* bad : {"w70000", "w65536", "w-1", "wx10", "w", "wz"})
        EXPECT_EQ(ReadValue(bad), "") << bad;
}

TEST_F(IniReaderTest, ThirtyTwoBitNumbersAreReadByTheRuntime) {
    EXPECT_EQ(ReadValue("W4294967295"), "key=4:4294967295");
    EXPECT_EQ(ReadValue("W-1"), "key=4:4294967295");
    EXPECT_EQ(ReadValue("i-2147483648"), "key=5:-2147483648");
    EXPECT_EQ(ReadValue("i010"), "key=5:10");
    EXPECT_EQ(ReadValue("i12abc"), "key=5:12");
    EXPECT_EQ(ReadValue("i0xff"), "key=5:255");
    EXPECT_EQ(ReadValue("i99999999999"), "key=5:2147483647");
    EXPECT_EQ(ReadValue("u4000000000"), "key=6:4000000000");
    EXPECT_EQ(ReadValue("l-5"), "key=7:-5");
    for (const char* bad : {"W", "i", "ix", "u ", "lq"}) EXPECT_EQ(ReadValue(bad), "") << bad;
}

TEST_F(IniReaderTest, AnXAnywhereBehindANumberMakesItHexadecimal) {
    EXPECT_EQ(ReadValue("i12 x"), "key=5:18");
    EXPECT_EQ(ReadValue("t10,10,0x10,10"), "key=15:16,16,16,10");
    EXPECT_EQ(ReadValue("t10,0X10,10,10"), "key=15:16,16,10,10");
}

TEST_F(IniReaderTest, DecimalsAreDoublesAndFloats) {
    EXPECT_EQ(ReadValue("R2.5"), "key=8:2.5");
    EXPECT_EQ(ReadValue("R-1e3"), "key=8:-1000");
    EXPECT_EQ(ReadValue("r0.25"), "key=9:0.25");
    for (const char* bad : {"R", "r", "Rq"}) EXPECT_EQ(ReadValue(bad), "") << bad;
}

TEST_F(IniReaderTest, ATextMayBeEmpty) {
    EXPECT_EQ(ReadValue("s"), "key=10:");
    EXPECT_EQ(ReadValue("sabc"), "key=10:abc");
}

TEST_F(IniReaderTest, PairsAndRectanglesTakeTheirNumbersInOrder) {
    EXPECT_EQ(ReadValue("z3,4"), "key=11:3,4");
    EXPECT_EQ(ReadValue("Z3.5,-4.5"), "key=12:3.5,-4.5");
    EXPECT_EQ(ReadValue("p3,4"), "key=13:3,4");
    EXPECT_EQ(ReadValue("P0.5,1.5"), "key=14:0.5,1.5");
    EXPECT_EQ(ReadValue("t1,2,3,4"), "key=15:1,2,3,4");
    EXPECT_EQ(ReadValue("T1.5,2.5,3.5,4.5"), "key=16:1.5,2.5,3.5,4.5");
}

TEST_F(IniReaderTest, WhatStandsBetweenANumberAndItsCommaIsSkipped) {
    EXPECT_EQ(ReadValue("p3 units ,4 units"), "key=13:3,4");
    EXPECT_EQ(ReadValue("t1,2,3,4,5"), "key=15:1,2,3,4");
}

TEST_F(IniReaderTest, AMissingNumberOrCommaFailsTheValue) {
    for (const char* bad :
         {"p3", "p3,", "p,4", "z1 2", "t1,2,3", "t1,,3,4", "T1.5,2.5,3.5", "Z1.5"}) {
        EXPECT_EQ(ReadValue(bad), "") << bad;
    }
}

TEST_F(IniReaderTest, AValueWithoutAValidLetterSetsNothing) {
    for (const char* bad : {"", "q1", "5", "I5", "S", "F1", "B00"})
        EXPECT_EQ(ReadValue(bad), "") << bad;
}

TEST_F(IniReaderTest, DecimalsReadTheSameUnderACommaLocale) {
    std::string before = setlocale(LC_ALL, nullptr);
    ASSERT_NE(setlocale(LC_ALL, "German_Germany.1252"), nullptr);
    std::string inside = setlocale(LC_ALL, nullptr);
    EXPECT_EQ(ReadValue("Rq"), "");
    EXPECT_STREQ(setlocale(LC_ALL, nullptr), inside.c_str());
    ReadValue("R2.5");
    EXPECT_STREQ(setlocale(LC_ALL, nullptr), inside.c_str());
    setlocale(LC_ALL, before.c_str());
    EXPECT_EQ(TreeText(root.Get()), "key=8:2.5");
}

// Bounds.

TEST_F(IniReaderTest, ALineOf8192BytesIsWholeAndALongerOneComesInPieces) {
    // "key=s" and 8187 characters are 8192 bytes; the next piece is a line of its own, a bare key.
    std::string value(8192 - 5, 'v');
    EXPECT_EQ(Read("[\\]\r\nkey=s" + value + "\n"), "key=10:" + value);
    root = ParamPtr(new_MemParam());
    EXPECT_EQ(Read("[\\]\r\nkey=s" + value + "rest\r\n"), "key=10:" + value + " rest=5:0");
}

TEST_F(IniReaderTest, AFullLineBeforeALoneLineFeedEndsTheInput) {
    // 8192 bytes are one piece, and what is left of the line is an empty one; with a carriage
    // return it is not.
    std::string value(8192 - 5, 'v');
    EXPECT_EQ(Read("[\\]\nkey=s" + value + "\nk1=i1\n"), "key=10:" + value);
    root = ParamPtr(new_MemParam());
    EXPECT_EQ(Read("[\\]\nkey=s" + value + "\r\nk1=i1\n"), "key=10:" + value + " k1=5:1");
    // A line feed as byte 8192 ends its own line.
    value.pop_back();
    root = ParamPtr(new_MemParam());
    EXPECT_EQ(Read("[\\]\nkey=s" + value + "\nk1=i1\n"), "key=10:" + value + " k1=5:1");
}

TEST_F(IniReaderTest, ALineOfNulCharactersThrowsCode34) {
    TextFile file("ini_reader_nul.ini", std::string("[\\]\r\na1=i1\r\n\0\0\0\nb1=i2\r\n", 24));
    try {
        Param_IniFile2Param(file.name.c_str(), root.Get());
        ADD_FAILURE();
    } catch (CXException& e) {
        EXPECT_EQ(e.GetCode(), 34);
    }
    EXPECT_EQ(TreeText(root.Get()), "a1=5:1");
}

TEST_F(IniReaderTest, ANulInsideALineEndsItsText) {
    EXPECT_EQ(Read(std::string("[\\]\r\nab=sx\0y\r\n", 14)), "ab=10:x");
}

TEST_F(IniReaderTest, ANulInAHeaderEndsItsLevels) {
    EXPECT_EQ(Read(std::string("[\\a\0b\\c]\r\nk1=i1\r\n", 18)), "a{k1=5:1}");
}

TEST_F(IniReaderTest, ANullTargetAnswersZero) {
    TextFile file("ini_reader_null.ini", "[\\]\r\nkey=i1\r\n");
    EXPECT_EQ(Param_IniFile2Param(file.name.c_str(), nullptr), 0);
}

TEST_F(IniReaderTest, AFileThatCannotBeOpenedThrows) {
    try {
        Param_IniFile2Param("no such file.ini", root.Get());
        ADD_FAILURE();
    } catch (CXFileException& e) {
        EXPECT_EQ(e.GetCode(), 6);
        EXPECT_STREQ(e.name, "no such file.ini");
    }
}

TEST_F(IniReaderTest, AFileMayLieInMemory) {
    const std::string text = "[\\a]\r\nx=i1\r\n";
    char* block = nullptr;  // a path in memory names an address below 2 GB
    for (size_t at = 0x10000000; !block && at < 0x70000000; at += 0x1000000)
        block = static_cast<char*>(VirtualAlloc(reinterpret_cast<void*>(at), text.size(),
                                                MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE));
    ASSERT_NE(block, nullptr);
    memcpy(block, text.data(), text.size());
    std::string path = "fmem::" + std::to_string(reinterpret_cast<size_t>(block)) + "," +
                       std::to_string(text.size());
    EXPECT_EQ(Param_IniFile2Param(path.c_str(), root.Get()), 1);
    EXPECT_EQ(TreeText(root.Get()), "a{x=5:1}");
    VirtualFree(block, 0, MEM_RELEASE);
}

TEST_F(IniReaderTest, TheFileIsClosedAfterwards) {
    TextFile file("ini_reader_closed.ini", "[\\]\r\nkey=i1\r\n");
    Param_IniFile2Param(file.name.c_str(), root.Get());
    EXPECT_EQ(remove(file.name.c_str()), 0);
}

// Directives.

TEST_F(IniReaderTest, AnIncludeIsReadInPlaceAndCarriesTheSectionThrough) {
    TextFile sub("ini_reader_sub.ini", "inside=i2\r\n[\\b]\r\nx1=i3\r\n");
    EXPECT_EQ(Read("[\\a]\r\nbefore=i1\r\n#include ini_reader_sub.ini\r\nafter=i4\r\n"),
              "a{before=5:1 inside=5:2} b{x1=5:3 after=5:4}");
}

TEST_F(IniReaderTest, AnIncludeMayBeQuotedSpacedAndInAnyCase) {
    TextFile sub("ini_reader_sub.ini", "k1=i1\r\n");
    EXPECT_EQ(Read("[\\]\r\n# include \"ini_reader_sub.ini\"\r\n"), "k1=5:1");
    root = ParamPtr(new_MemParam());
    EXPECT_EQ(Read("[\\]\r\n#INCLUDE ini_reader_sub.ini\r\n"), "k1=5:1");
    root = ParamPtr(new_MemParam());
    EXPECT_EQ(Read("[\\]\r\n#include ini_reader_sub.ini behind it\r\n"), "k1=5:1");
}

// A quote goes where the line ends; in front of something else it is a part of the name.
TEST_F(IniReaderTest, AClosingQuoteIsDroppedAtTheEndOfTheLineOnly) {
    TextFile sub("ini_reader_sub.ini", "k1=i1\r\n");
    EXPECT_EQ(Read("[\\]\r\n#include \"ini_reader_sub.ini\"  ; why\r\n"), "k1=5:1");
    EXPECT_EQ(Read("[\\]\r\n#include ini_reader_sub.ini\"\r\n"), "k1=5:1");
    EXPECT_THROW(Read("[\\]\r\n#include \"ini_reader_sub.ini\" behind it\r\n"), CXFileException);
    EXPECT_THROW(Read("[\\]\r\n#include \"ini_reader_sub.ini\" \"\r\n"), CXFileException);
}

TEST_F(IniReaderTest, OtherDirectivesAndThoseWithoutArgumentAreSkipped) {
    EXPECT_EQ(Read("[\\]\r\n#define x y\r\n#include\r\n#if\r\nkey=i1\r\n"), "key=5:1");
}

TEST_F(IniReaderTest, ANumberSignBeforeTheLastCharacterIsNoDirective) {
    EXPECT_EQ(Read("[\\]\r\n#a\r\n#  b\r\n"), "#a=5:0 #  b=5:0");
}

TEST_F(IniReaderTest, IncludesNest) {
    TextFile inner("ini_reader_inner.ini", "deep=i3\r\n");
    TextFile middle("ini_reader_middle.ini", "m1=i1\r\n#include ini_reader_inner.ini\r\nm2=i2\r\n");
    EXPECT_EQ(Read("[\\]\r\n#include ini_reader_middle.ini\r\nlast=i4\r\n"),
              "m1=5:1 deep=5:3 m2=5:2 last=5:4");
}

TEST_F(IniReaderTest, AMissingIncludeEndsTheWholeReadWithTheFilesException) {
    TextFile file("ini_reader_missing.ini", "[\\]\r\nk1=i1\r\n#include nowhere.ini\r\nk2=i2\r\n");
    try {
        Param_IniFile2Param(file.name.c_str(), root.Get());
        ADD_FAILURE();
    } catch (CXFileException& e) {
        EXPECT_EQ(e.GetCode(), 6);
        EXPECT_STREQ(e.name, "nowhere.ini");
    }
    EXPECT_EQ(TreeText(root.Get()), "k1=5:1");
    EXPECT_EQ(remove(file.name.c_str()), 0);
}

TEST_F(IniReaderTest, AnArgumentIsCutAtItsFirstBlank) {
    TextFile sub("ini_reader_sub.ini", "k1=i1\r\n");
    TextFile file("ini_reader_blank.ini", "[\\]\r\n#include \"ini_reader_sub.ini and more\"\r\n");
    EXPECT_EQ(Param_IniFile2Param(file.name.c_str(), root.Get()), 1);
    EXPECT_EQ(TreeText(root.Get()), "k1=5:1");
}

TEST_F(IniReaderTest, AnIncludeStandsBesideTheOutermostFile) {
    CreateDirectoryA("ini_reader_dir", nullptr);
    {
        TextFile sub("ini_reader_dir\\sub.ini", "k1=i1\r\n");
        TextFile main("ini_reader_dir\\main.ini", "[\\]\r\n#include sub.ini\r\n");
        EXPECT_EQ(Param_IniFile2Param(main.name.c_str(), root.Get()), 1);
        EXPECT_EQ(TreeText(root.Get()), "k1=5:1");
    }
    RemoveDirectoryA("ini_reader_dir");
}

TEST_F(IniReaderTest, AnIncludeThatStartsWithADotGetsBothDirectories) {
    // The directory of the outermost file comes before that of the including one, so "a\" doubles
    // here.
    CreateDirectoryA("ini_reader_a", nullptr);
    CreateDirectoryA("ini_reader_a\\ini_reader_a", nullptr);
    {
        TextFile sub("ini_reader_a\\ini_reader_a\\sub.ini", "k1=i1\r\n");
        TextFile main("ini_reader_a\\main.ini", "[\\]\r\n#include .\\sub.ini\r\n");
        EXPECT_EQ(Param_IniFile2Param(main.name.c_str(), root.Get()), 1);
        EXPECT_EQ(TreeText(root.Get()), "k1=5:1");
    }
    RemoveDirectoryA("ini_reader_a\\ini_reader_a");
    RemoveDirectoryA("ini_reader_a");
}

TEST_F(IniReaderTest, ADotIncludeOfAFileWithoutDirectoryIsTheNameAlone) {
    TextFile sub("ini_reader_sub.ini", "k1=i1\r\n");
    EXPECT_EQ(Read("[\\]\r\n#include ./ini_reader_sub.ini\r\n"), "k1=5:1");
}

TEST_F(IniReaderTest, WhatStandsBehindAnIncludeIsLostToWhatTheIncludedFileLeftInTheLineBuffer) {
    // "|k1=i1" stands at bytes 27 to 32 of its line; there the included file's last line has six of
    // its characters.
    std::string value(40, 'v');
    TextFile sub("ini_reader_sub.ini", "[\\s]\r\nlong=s" + value + "\r\n");
    EXPECT_EQ(Read("[\\]\r\n#include ini_reader_sub.ini|k1=i1\r\nk2=i2\r\n"),
              "s{long=10:" + value + " vvvvvv=5:0 k2=5:2}");
}

// Double-byte text.

class IniReaderDoubleByteTest : public IniReaderTest {
protected:
    void SetUp() override {
        before = _getmbcp();
        _setmbcp(932);
    }
    void TearDown() override { _setmbcp(before); }

    int before;
};

TEST_F(IniReaderDoubleByteTest, TrailBytesAreNoDelimiters) {
    // 0x83 0x5C holds a backslash, 0x83 0x7C a separator, 0x83 0x5B and 0x83 0x5D brackets.
    EXPECT_EQ(Read("[\\a\x83\x5C]\r\nk1=s\x83\x7C\x83\x5D\r\n\x83\x5B=i1\r\n"),
              "a\x83\x5C{k1=10:\x83\x7C\x83\x5D \x83\x5B=5:1}");
}

TEST_F(IniReaderDoubleByteTest, ADoubleByteSpaceIsWhiteSpace) {
    EXPECT_EQ(Read("[\\]\r\n\x81\x40k1\x81\x40=\x81\x40i5\x81\x40\r\n"), "k1=5:5");
}

TEST_F(IniReaderDoubleByteTest, ALeadByteDoesNotHideTheNulBehindIt) {
    EXPECT_EQ(Read(std::string("[\\]\r\nab\x83\0=i5\r\n", 14)), "ab\x83=5:0");
}

TEST_F(IniReaderDoubleByteTest, OneDoubleByteCharacterIsTooShort) {
    EXPECT_EQ(Read("[\\]\r\n\x83\x41\r\n\x83\x41\x83\x42\r\n"), "\x83\x41\x83\x42=5:0");
}

// The second byte of the character 0x83 0x58 is an "X", that of 0x83 0x78 an "x".
TEST_F(IniReaderDoubleByteTest, OnlyACharacterXMakesANumberHexadecimal) {
    EXPECT_EQ(ReadValue("i10 \x83\x58"), "key=5:10");
    EXPECT_EQ(ReadValue("i10 \x83\x78"), "key=5:10");
    EXPECT_EQ(ReadValue("i10 \x83\x58 x"), "key=5:16");
    EXPECT_EQ(ReadValue("p10 \x83\x58,20"), "key=13:10,20");
    EXPECT_EQ(ReadValue("t10 \x83\x58,20,3x0,40"), "key=15:16,32,3,40");
}
