// Sizes, copies, comparison and search.
#include "strings/string_probe.h"

#include <mbstring.h>

#include <climits>

template <class S>
struct StringAccessTest : BothStrings<S> {};
TYPED_TEST_SUITE(StringAccessTest, BothStringClasses);

TYPED_TEST(StringAccessTest, LengthAndSizeCountUpToTheTerminator) {
    TypeParam s(this->T("abcd"));
    EXPECT_EQ(s.GetLength(), 4);
    EXPECT_EQ(s.GetSize(), 4);
    s.GetBuffer(4)[2] = 0;
    s.ReleaseBuffer();
    EXPECT_EQ(s.GetLength(), 2);
    EXPECT_EQ(s.GetSize(), 2);
    EXPECT_EQ(TypeParam().GetLength(), 0);
    EXPECT_EQ(TypeParam().GetSize(), 0);
}

TYPED_TEST(StringAccessTest, SizeOfANullTextIsZero) {
    StringProbe<TypeParam> s;
    s.data = nullptr;
    EXPECT_EQ(s.GetSize(), 0);
    s.Init();
}

TYPED_TEST(StringAccessTest, SizeOfSomeCharactersStopsAtTheEnd) {
    TypeParam s(this->T("abcd"));
    EXPECT_EQ(s.GetSize(0), 0);
    EXPECT_EQ(s.GetSize(3), 3);
    EXPECT_EQ(s.GetSize(99), 4);
    EXPECT_EQ(s.GetSize(-1), 4);
    EXPECT_EQ(s.GetSize(1, 2), 2);
    EXPECT_EQ(s.GetSize(3, 5), 1);
    EXPECT_EQ(s.GetSize(9, 2), 0);
}

TYPED_TEST(StringAccessTest, GetDataPointsToACharacterOrToTheEnd) {
    TypeParam s(this->T("abcd"));
    EXPECT_EQ(s.GetData(2), s.GetData(0) + 2);
    EXPECT_EQ(s.GetData(99), s.GetData(0) + 4);
}

TYPED_TEST(StringAccessTest, GetAtAnswersZeroAtAndBeyondTheEnd) {
    TypeParam s(this->T("abc"));
    EXPECT_EQ(s.GetAt(0), L'a');
    EXPECT_EQ(s.GetAt(2), L'c');
    EXPECT_EQ(s.GetAt(3), 0);
    EXPECT_EQ(s.GetAt(99), 0);
    EXPECT_EQ(TypeParam().GetAt(0), 0);
}

TYPED_TEST(StringAccessTest, CopyAnswersTheUnitsWithoutTheTerminator) {
    TypeParam s(this->T("abcd"));
    UnitOf<TypeParam> buf[8];
    std::fill_n(buf, 8, UnitOf<TypeParam>('#'));
    EXPECT_EQ(s.Copy(buf), 4);
    EXPECT_EQ(Ascii(TypeParam(buf)), "abcd");
    EXPECT_EQ(buf[5], '#');
    EXPECT_EQ(s.Copy(buf, 2), 2);
    EXPECT_EQ(Ascii(TypeParam(buf)), "ab");
    EXPECT_EQ(buf[3], 'd');
    EXPECT_EQ(s.Copy(buf, 99), 4);
    EXPECT_EQ(Ascii(TypeParam(buf)), "abcd");
}

TYPED_TEST(StringAccessTest, CopyFitCutsToTheRoom) {
    TypeParam s(this->T("abcd"));
    UnitOf<TypeParam> buf[8];
    std::fill_n(buf, 8, UnitOf<TypeParam>('#'));
    EXPECT_EQ(s.CopyFit(buf, 3), 2);
    EXPECT_EQ(Ascii(TypeParam(buf)), "ab");
    EXPECT_EQ(buf[3], '#');
    EXPECT_EQ(s.CopyFit(buf, 5), 4);
    EXPECT_EQ(Ascii(TypeParam(buf)), "abcd");
    EXPECT_EQ(s.CopyFit(buf, 8), 4);
}

TYPED_TEST(StringAccessTest, CopyFitWithRoomForOneWritesOnlyATerminator) {
    UnitOf<TypeParam> buf[2] = {'#', '#'};
    EXPECT_EQ(this->T("abc").CopyFit(buf, 1), 0);
    EXPECT_EQ(buf[0], 0);
    EXPECT_EQ(buf[1], '#');
}

TYPED_TEST(StringAccessTest, CopyFitWithoutRoomWritesNothing) {
    UnitOf<TypeParam> buf[1] = {'#'};
    EXPECT_EQ(this->T("abc").CopyFit(buf, 0), 0);
    EXPECT_EQ(this->T("abc").CopyFit(buf, -1), 0);
    EXPECT_EQ(buf[0], '#');
}

TYPED_TEST(StringAccessTest, ComparisonsTellTheOrder) {
    TypeParam s(this->T("abc"));
    EXPECT_EQ(s.Compare(this->T("abc")), 0);
    EXPECT_LT(s.Compare(this->T("abd")), 0);
    EXPECT_GT(s.Compare(this->T("ab")), 0);
    EXPECT_NE(s.Compare(this->T("ABC")), 0);
    EXPECT_EQ(s.CompareI(this->T("ABC")), 0);
    EXPECT_LT(s.CompareI(this->T("ABD")), 0);
    EXPECT_EQ(s.CompareN(this->T("abX"), 2), 0);
    EXPECT_NE(s.CompareN(this->T("abX"), 3), 0);
    EXPECT_EQ(s.CompareIN(this->T("ABX"), 2), 0);
    EXPECT_NE(s.CompareIN(this->T("ABX"), 3), 0);
    EXPECT_EQ(s.CompareN(this->T("xyz"), 0), 0);
}

TYPED_TEST(StringAccessTest, ANullTextComparesAsEmpty) {
    const UnitOf<TypeParam>* none = nullptr;
    EXPECT_EQ(TypeParam().Compare(none), 0);
    EXPECT_EQ(TypeParam().CompareI(none), 0);
    EXPECT_GT(this->T("a").Compare(none), 0);
    EXPECT_GT(this->T("a").CompareN(none, 1), 0);
    EXPECT_GT(this->T("a").CompareIN(none, 1), 0);
}

TYPED_TEST(StringAccessTest, FindAnswersTheIndexFromStartOn) {
    TypeParam s(this->T("abcabc"));
    EXPECT_EQ(s.Find(this->T("bc")), 1);
    EXPECT_EQ(s.Find(this->T("bc"), 1), 1);
    EXPECT_EQ(s.Find(this->T("bc"), 2), 4);
    EXPECT_EQ(s.Find(this->T("bc"), 5), -1);
    EXPECT_EQ(s.Find(this->T("x")), -1);
    EXPECT_EQ(s.Find(L'c'), 2);
    EXPECT_EQ(s.Find(L'c', 3), 5);
    EXPECT_EQ(s.Find(L'x'), -1);
}

TYPED_TEST(StringAccessTest, ANegativeStartCountsAsZeroAndOneBeyondTheEndFindsNothing) {
    TypeParam s(this->T("abc"));
    EXPECT_EQ(s.Find(this->T("a"), -5), 0);
    EXPECT_EQ(s.Find(L'a', -5), 0);
    EXPECT_EQ(s.FindOnOf(this->T("a"), -5), 0);
    EXPECT_EQ(s.Find(this->T(""), 4), -1);
    EXPECT_EQ(s.Find(this->T("c"), INT_MAX), -1);
    EXPECT_EQ(s.Find(L'c', 4), -1);
    EXPECT_EQ(s.FindOnOf(this->T("c"), 4), -1);
}

TYPED_TEST(StringAccessTest, AnEmptyPatternIsFoundWhereTheSearchStarts) {
    TypeParam s(this->T("abc"));
    EXPECT_EQ(s.Find(this->T("")), 0);
    EXPECT_EQ(s.Find(this->T(""), 2), 2);
    EXPECT_EQ(s.Find(this->T(""), 3), 3);
}

TYPED_TEST(StringAccessTest, NothingIsFoundInAnEmptyString) {
    TypeParam s;
    EXPECT_EQ(s.Find(this->T("")), -1);
    EXPECT_EQ(s.Find(this->T("a")), -1);
    EXPECT_EQ(s.Find(L'a'), -1);
    EXPECT_EQ(s.Find(wchar_t(0)), -1);
    EXPECT_EQ(s.FindOnOf(this->T("a")), -1);
    EXPECT_EQ(s.FindRev(L'a'), -1);
    EXPECT_EQ(s.FindRev(wchar_t(0)), -1);
    EXPECT_EQ(s.FindRevOnOf(this->T("a")), -1);
}

TYPED_TEST(StringAccessTest, TheCharacterZeroIsFoundAtTheEnd) {
    TypeParam s(this->T("abc"));
    EXPECT_EQ(s.Find(wchar_t(0)), 3);
    EXPECT_EQ(s.FindRev(wchar_t(0)), 3);
}

TYPED_TEST(StringAccessTest, FindOnOfAnswersTheFirstOfASet) {
    TypeParam s(this->T("a.b/c"));
    EXPECT_EQ(s.FindOnOf(this->T("/.")), 1);
    EXPECT_EQ(s.FindOnOf(this->T("/."), 2), 3);
    EXPECT_EQ(s.FindOnOf(this->T("/."), 4), -1);
    EXPECT_EQ(s.FindOnOf(this->T("")), -1);
}

TYPED_TEST(StringAccessTest, FindRevAnswersTheLast) {
    TypeParam s(this->T("abcabc"));
    EXPECT_EQ(s.FindRev(L'b'), 4);
    EXPECT_EQ(s.FindRev(L'a'), 3);
    EXPECT_EQ(s.FindRev(L'x'), -1);
    EXPECT_EQ(this->T("xbc").FindRev(L'x'), 0);
}

TYPED_TEST(StringAccessTest, FindRevOnOfTestsTheFirstCharacterToo) {
    EXPECT_EQ(this->T("/abc").FindRevOnOf(this->T("/.")), 0);
    EXPECT_EQ(this->T("a/b.c").FindRevOnOf(this->T("/.")), 3);
    EXPECT_EQ(this->T("abc").FindRevOnOf(this->T("/.")), -1);
    EXPECT_EQ(this->T("abc").FindRevOnOf(this->T("")), -1);
}

TYPED_TEST(StringAccessTest, ANullPatternIsNotFound) {
    const UnitOf<TypeParam>* none = nullptr;
    TypeParam s(this->T("abc"));
    EXPECT_EQ(s.Find(none), -1);
    EXPECT_EQ(s.FindOnOf(none), -1);
    EXPECT_EQ(s.FindRevOnOf(none), -1);
}

TEST(StringAccessNarrowTest, ByteAboveAsciiIsOneCharacterInASingleByteCodePage) {
    for (int number : {1252, _MB_CP_SBCS}) {
        CodePage page(number);
        CXString s("a\x82\xA0\xE9");
        EXPECT_EQ(s.GetLength(), 4);
        EXPECT_EQ(s.GetAt(1), 0x82);
        EXPECT_EQ(s.GetSize(2), 2);
        EXPECT_EQ(s.Find("\xA0"), 2);
        EXPECT_EQ(s.Find(wchar_t(0xE9)), 3);
        EXPECT_EQ(s.FindRev(wchar_t(0x82)), 1);
        EXPECT_EQ(s.FindRevOnOf("\x82\xA0"), 2);
        char buf[8];
        EXPECT_EQ(s.CopyFit(buf, 3), 2);
        EXPECT_STREQ(buf, "a\x82");
    }
}

TEST(StringAccessNarrowTest, ACharacterAboveAByteIsItsLowByteInASingleByteCodePage) {
    CodePage page(1252);
    CXString s("xAy");
    EXPECT_EQ(s.Find(wchar_t(0x8341)), 1);
    EXPECT_EQ(s.FindRev(wchar_t(0x8341)), 1);
}

TEST(StringAccessNarrowTest, AChangeOfTheCodePageCountsAtOnce) {
    CXString s(kA);
    CodePage page(1252);
    EXPECT_EQ(s.GetLength(), 2);
    _setmbcp(932);
    EXPECT_EQ(s.GetLength(), 1);
    _setmbcp(1252);
    EXPECT_EQ(s.GetLength(), 2);
    _setmbcp(949);
    EXPECT_EQ(s.GetLength(), 1);
    _setmbcp(1252);
    EXPECT_EQ(s.GetLength(), 2);
}

TEST(StringAccessNarrowTest, ComparisonsAreTheRuntimes) {
    const char* texts[] = {"", "a", "b", "A", "\x82\xA0", "\xE9\x41", "ab", "a\xFF"};
    for (int number : {1252, 932}) {
        CodePage page(number);
        for (auto a : texts) {
            for (auto b : texts) {
                auto x = reinterpret_cast<const unsigned char*>(a);
                auto y = reinterpret_cast<const unsigned char*>(b);
                CXString s(a);
                SCOPED_TRACE(testing::PrintToString(a) + testing::PrintToString(b) +
                             std::to_string(number));
                EXPECT_EQ(s.Compare(b), _mbscmp(x, y));
                EXPECT_EQ(s.CompareI(b), _mbsicmp(x, y));
                EXPECT_EQ(s.CompareN(b, 1), _mbsncmp(x, y, 1));
                EXPECT_EQ(s.CompareIN(b, 1), _mbsnicmp(x, y, 1));
            }
        }
    }
}

TEST(StringAccessWideTest, CompareAnswersMinusOneZeroOrOneByUnsignedUnits) {
    EXPECT_EQ(CXStringW(L"a").Compare(L"z"), -1);
    EXPECT_EQ(CXStringW(L"z").Compare(L"a"), 1);
    EXPECT_EQ(CXStringW(L"a").Compare(L"a"), 0);
    EXPECT_EQ(CXStringW(L"\uFFF0").Compare(L"a"), 1);
    EXPECT_EQ(CXStringW(L"a").Compare(L"ab"), -1);
    EXPECT_EQ(CXStringW(L"ab").Compare(L"a"), 1);
}

TEST(StringAccessWideTest, SizesCountUnitsAndSurrogatesCountTwice) {
    CXStringW s(L"a\U0001F600");
    EXPECT_EQ(s.GetLength(), 3);
    EXPECT_EQ(s.GetSize(), 3);
    EXPECT_EQ(s.GetAt(1), 0xD83D);
    EXPECT_EQ(s.Find(wchar_t(0xDE00)), 2);
}

struct StringAccessJapaneseTest : JapaneseTest {
    CXString s = CXString("x") + kA + "y" + kSo + kHalfA;  // x, a, y, so, half-width a
};

TEST_F(StringAccessJapaneseTest, PositionsCountCharactersAndSizesBytes) {
    EXPECT_EQ(s.GetLength(), 5);
    EXPECT_EQ(s.GetSize(), 7);
    EXPECT_EQ(s.GetSize(1), 1);
    EXPECT_EQ(s.GetSize(2), 3);
    EXPECT_EQ(s.GetSize(4), 6);
    EXPECT_EQ(s.GetSize(5), 7);
    EXPECT_EQ(s.GetSize(99), 7);
    EXPECT_EQ(s.GetSize(1, 3), 5);
    EXPECT_EQ(s.GetSize(3, 99), 3);
    EXPECT_EQ(s.GetData(3), s.GetData(0) + 4);
}

TEST_F(StringAccessJapaneseTest, GetAtPutsTheLeadByteHigh) {
    EXPECT_EQ(s.GetAt(0), L'x');
    EXPECT_EQ(s.GetAt(1), 0x82A0);
    EXPECT_EQ(s.GetAt(3), 0x835C);
    EXPECT_EQ(s.GetAt(4), 0xB1);
    EXPECT_EQ(s.GetAt(5), 0);
}

TEST_F(StringAccessJapaneseTest, CopyTakesWholeCharacters) {
    char buf[16];
    EXPECT_EQ(s.Copy(buf, 2), 3);
    EXPECT_STREQ(buf, "x\x82\xA0");
    EXPECT_EQ(s.Copy(buf), 7);
}

TEST_F(StringAccessJapaneseTest, CopyFitStopsBeforeACharacterThatWouldBeSplit) {
    char buf[16];
    EXPECT_EQ(s.CopyFit(buf, 3), 1);
    EXPECT_STREQ(buf, "x");
    EXPECT_EQ(s.CopyFit(buf, 4), 3);
    EXPECT_STREQ(buf, "x\x82\xA0");
    EXPECT_EQ(CXString(kA).CopyFit(buf, 2), 0);
    EXPECT_STREQ(buf, "");
    EXPECT_EQ(s.CopyFit(buf, 8), 7);
    EXPECT_EQ(s.CopyFit(buf, 16), 7);
}

TEST_F(StringAccessJapaneseTest, ATrailByteIsNeverFound) {
    EXPECT_EQ(s.Find("\\"), -1);
    EXPECT_EQ(s.Find(L'\\'), -1);
    EXPECT_EQ(s.FindOnOf("\\/"), -1);
    EXPECT_EQ(s.FindRev(L'\\'), -1);
    EXPECT_EQ(s.FindRevOnOf("\\/"), -1);
    CXString both = CXString(kSo) + "\\" + kSo;
    EXPECT_EQ(both.Find("\\"), 1);
    EXPECT_EQ(both.Find(L'\\'), 1);
    EXPECT_EQ(both.FindOnOf(":\\/"), 1);
    EXPECT_EQ(both.FindRev(L'\\'), 1);
    EXPECT_EQ(both.FindRevOnOf(":\\/"), 1);
}

TEST_F(StringAccessJapaneseTest, APatternThatStartsWithATrailByteIsNotFoundAcrossCharacters) {
    // The bytes A0 82 lie between the two characters.
    EXPECT_EQ((CXString(kA) + kA).Find("\xA0\x82"), -1);
}

TEST_F(StringAccessJapaneseTest, DoubleByteCharactersAreFoundByTheirIndex) {
    EXPECT_EQ(s.Find(kA), 1);
    EXPECT_EQ(s.Find(kSo), 3);
    EXPECT_EQ(s.Find(kSo, 4), -1);
    EXPECT_EQ(s.Find(kACode), 1);
    EXPECT_EQ(s.Find(wchar_t(0xB1)), 4);
    EXPECT_EQ(s.Find(wchar_t(0)), 5);
    EXPECT_EQ(s.FindRev(kACode), 1);
    EXPECT_EQ((s + s).FindRev(kACode), 6);
    EXPECT_EQ(s.FindRev(wchar_t(0)), 5);
}

TEST_F(StringAccessJapaneseTest, HalfACharacterIsNotFoundInAWholeOne) {
    EXPECT_EQ(s.Find(wchar_t(0x82)), -1);
    EXPECT_EQ(s.FindRev(wchar_t(0x82)), -1);
    EXPECT_EQ(s.Find(wchar_t(0x83)), -1);
    EXPECT_EQ(s.FindRev(wchar_t(0x83)), -1);
    EXPECT_EQ(s.Find(wchar_t(0x5C)), -1);
    EXPECT_EQ(s.FindRev(wchar_t(0xA0)), -1);
}

TEST_F(StringAccessJapaneseTest, ACharacterAboveAByteIsNeverFoundByItsLowByte) {
    EXPECT_EQ(s.Find(wchar_t(0x0178)), -1);
    EXPECT_EQ(s.FindRev(wchar_t(0x0178)), -1);
    EXPECT_EQ(s.Find(wchar_t(0x41B1)), -1);
    EXPECT_EQ(s.FindRev(wchar_t(0x41B1)), -1);
    EXPECT_EQ(s.Find(wchar_t(0x0100)), -1);
    EXPECT_EQ(s.FindRev(wchar_t(0x4100)), -1);
    // A lead byte and no trail byte.
    EXPECT_EQ(s.Find(wchar_t(0x8300)), -1);
    EXPECT_EQ(s.FindRev(wchar_t(0x8300)), -1);
    EXPECT_EQ(CXString("x\x83").Find(wchar_t(0x8300)), -1);
}

TEST_F(StringAccessJapaneseTest, SetsHoldWholeCharacters) {
    CXString set = CXString(kI) + kSo;
    EXPECT_EQ(s.FindOnOf(set), 3);
    EXPECT_EQ(s.FindRevOnOf(set), 3);
    EXPECT_EQ(s.FindRevOnOf(CXString(kA) + "y"), 2);
    EXPECT_EQ(s.FindOnOf(CXString("z") + kHalfA), 4);
    EXPECT_EQ(s.FindRevOnOf("x"), 0);
    // A set of the lead byte's character alone does not match another character with that lead
    // byte.
    EXPECT_EQ(CXString(kA).FindOnOf(kI), -1);
    EXPECT_EQ(CXString(kA).FindRevOnOf(kI), -1);
}

TEST_F(StringAccessJapaneseTest, ADoubleByteCharacterIsNotFoundByItsTrailByteInAnAsciiText) {
    CXString ascii("x\\A");
    for (const char* what : {kSo, kAa}) {
        EXPECT_EQ(ascii.Find(what), -1);
        EXPECT_EQ(ascii.FindOnOf(what), -1);
        EXPECT_EQ(ascii.FindRevOnOf(what), -1);
    }
    EXPECT_EQ(ascii.Find(kAaCode), -1);
    EXPECT_EQ(ascii.FindRev(kAaCode), -1);
    EXPECT_EQ(ascii.FindOnOf(CXString(kSo) + "A"), 2);
    EXPECT_EQ(ascii.FindRevOnOf(CXString(kAa) + "x"), 0);
}

TEST_F(StringAccessJapaneseTest, ALeadByteWithoutItsTrailByteIsNoCharacter) {
    CXString cut("ab\x82");
    EXPECT_EQ(cut.GetLength(), 2);
    EXPECT_EQ(cut.GetSize(), 3);
    EXPECT_EQ(cut.GetSize(9), 2);
    EXPECT_EQ(cut.Find("\x82"), -1);
    EXPECT_EQ(cut.FindOnOf("\x82"), -1);
    EXPECT_EQ(cut.FindRevOnOf("\x82"), -1);
    EXPECT_EQ(cut.FindRev(L'b'), 1);
    EXPECT_EQ(cut.Find(wchar_t(0x82)), -1);
    EXPECT_EQ(cut.FindRev(wchar_t(0x82)), -1);
    EXPECT_EQ(cut.GetAt(1), L'b');
    EXPECT_EQ(cut.GetAt(2), 0);
    EXPECT_EQ(cut.GetAt(3), 0);
    EXPECT_EQ(cut.GetAt(-1), 0);
    EXPECT_EQ(CXString("\x82").GetAt(0), 0);
    char buf[8];
    EXPECT_EQ(cut.CopyFit(buf, 8), 2);
    EXPECT_EQ(cut.Compare("ab"), 0);
    EXPECT_EQ(cut.CompareI("AB\x82"), 0);
    EXPECT_EQ(cut.CompareN("ab\x83", 9), 0);
    EXPECT_EQ(cut.CompareIN("AB\x83", 9), 0);
    cut.Upper();
    EXPECT_STREQ(cut, "AB\x82");
}
