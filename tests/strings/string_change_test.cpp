// Insert, Delete, Replace, Extract, FindReplace, Trim, case.
#include "strings/string_probe.h"

#include <climits>

template <class S>
struct StringChangeTest : BothStrings<S> {};
TYPED_TEST_SUITE(StringChangeTest, BothStringClasses);

TYPED_TEST(StringChangeTest, InsertPutsACharacterBeforeThePosition) {
    TypeParam s(this->T("ab"));
    EXPECT_EQ(&s.Insert(1, L'x'), &s);
    EXPECT_EQ(Ascii(s), "axb");
    s.Insert(0, L'y');
    EXPECT_EQ(Ascii(s), "yaxb");
}

TYPED_TEST(StringChangeTest, InsertBeyondTheEndOrAtANegativePositionAppends) {
    TypeParam s(this->T("ab"));
    EXPECT_EQ(Ascii(s.Insert(99, L'x')), "abx");
    EXPECT_EQ(Ascii(s.Insert(-1, L'y')), "abxy");
    EXPECT_EQ(Ascii(s.Insert(-7, this->T("zz"))), "abxyzz");
}

TYPED_TEST(StringChangeTest, InsertOfTheCharacterZeroChangesNothing) {
    TypeParam s(this->T("ab")), copy(s);
    EXPECT_EQ(&s.Insert(1, wchar_t(0)), &s);
    EXPECT_EQ(Ascii(s), "ab");
    EXPECT_EQ(s.GetData(0), copy.GetData(0));
}

TYPED_TEST(StringChangeTest, InsertOfNoTextChangesNothing) {
    TypeParam s(this->T("ab")), copy(s);
    const UnitOf<TypeParam>* none = nullptr;
    s.Insert(1, none);
    s.Insert(1, this->T(""));
    EXPECT_EQ(s.GetData(0), copy.GetData(0));
}

TYPED_TEST(StringChangeTest, InsertPutsATextIntoTheMiddleAndIntoAnEmptyString) {
    TypeParam s(this->T("ad"));
    EXPECT_EQ(Ascii(s.Insert(1, this->T("bc"))), "abcd");
    TypeParam empty;
    EXPECT_EQ(Ascii(empty.Insert(0, this->T("x"))), "x");
    EXPECT_EQ(Ascii(TypeParam()), "");
}

TYPED_TEST(StringChangeTest, InsertOfTheOwnTextIsSafe) {
    TypeParam s(this->T("abc"));
    s.Insert(1, s);
    EXPECT_EQ(Ascii(s), "aabcbc");
    s.GetBuffer(40);
    s.ReleaseBuffer();
    s.Insert(0, s.GetData(4));
    EXPECT_EQ(Ascii(s), "bcaabcbc");
}

TYPED_TEST(StringChangeTest, DeleteRemovesTheRange) {
    TypeParam s(this->T("abcdef")), copy(s);
    EXPECT_EQ(&s.Delete(1, 2), &s);
    EXPECT_EQ(Ascii(s), "adef");
    EXPECT_EQ(Ascii(copy), "abcdef");
    EXPECT_EQ(Ascii(s.Delete(0, 1)), "def");
    EXPECT_EQ(Ascii(s.Delete(1, 99)), "d");
}

TYPED_TEST(StringChangeTest, ANegativePositionMeansTheEndSoNothingIsDeleted) {
    TypeParam s(this->T("abc")), copy(s);
    EXPECT_EQ(Ascii(s.Delete(-1, 3)), "abc");
    EXPECT_EQ(s.GetData(0), copy.GetData(0));
}

TYPED_TEST(StringChangeTest, ANegativeCountDeletesWhatLiesBefore) {
    EXPECT_EQ(Ascii(this->T("abcd").Delete(2, -2)), "cd");
    EXPECT_EQ(Ascii(this->T("abcd").Delete(-1, -2)), "ab");
    EXPECT_EQ(Ascii(this->T("abcd").Delete(99, -1)), "abc");
    EXPECT_EQ(Ascii(this->T("abcd").Delete(2, -99)), "cd");
}

TYPED_TEST(StringChangeTest, ExtremeRangesAreClamped) {
    EXPECT_EQ(Ascii(this->T("abcd").Delete(1, INT_MAX)), "a");
    EXPECT_EQ(Ascii(this->T("abcd").Delete(INT_MAX, INT_MIN)), "");
    EXPECT_EQ(Ascii(this->T("abcd").Delete(INT_MIN, INT_MAX)), "abcd");
    EXPECT_EQ(Ascii(this->T("abcd").Delete(99, 1)), "abcd");
    EXPECT_EQ(Ascii(TypeParam().Delete(0, 1)), "");
}

TYPED_TEST(StringChangeTest, DeleteSeparatesIntoTheSizeOfTheOldText) {
    TypeParam s(this->T("abcd")), copy(s);
    s.Delete(0, 3);
    EXPECT_EQ(AllocOf(s), 5);
}

TYPED_TEST(StringChangeTest, ReplacePutsATextInPlaceOfARange) {
    TypeParam s(this->T("abcd")), copy(s);
    EXPECT_EQ(&s.Replace(1, 2, this->T("xyz")), &s);
    EXPECT_EQ(Ascii(s), "axyzd");
    EXPECT_EQ(Ascii(copy), "abcd");
    EXPECT_EQ(Ascii(s.Replace(1, 3, this->T("-"))), "a-d");
    EXPECT_EQ(Ascii(s.Replace(3, -2, this->T("UVW"))), "aUVW");
    EXPECT_EQ(Ascii(s.Replace(0, 99, this->T("w"))), "w");
}

TYPED_TEST(StringChangeTest, ReplaceByAShorterTextKeepsTheTailOfASharedString) {
    TypeParam s(this->T("abcdefgh")), copy(s);
    EXPECT_EQ(Ascii(s.Replace(0, 4, this->T("x"))), "xefgh");
    EXPECT_EQ(Ascii(copy), "abcdefgh");
}

TYPED_TEST(StringChangeTest, ReplaceCannotDelete) {
    TypeParam s(this->T("abcd")), copy(s);
    const UnitOf<TypeParam>* none = nullptr;
    EXPECT_EQ(Ascii(s.Replace(1, 2, this->T(""))), "abcd");
    EXPECT_EQ(Ascii(s.Replace(1, 2, none)), "abcd");
    EXPECT_EQ(s.GetData(0), copy.GetData(0));
}

TYPED_TEST(StringChangeTest, ReplaceCannotInsert) {
    TypeParam s(this->T("abcd")), copy(s);
    EXPECT_EQ(Ascii(s.Replace(1, 0, this->T("x"))), "abcd");
    EXPECT_EQ(Ascii(s.Replace(-1, 5, this->T("x"))), "abcd");
    EXPECT_EQ(s.GetData(0), copy.GetData(0));
}

TYPED_TEST(StringChangeTest, ReplaceByTheOwnTextIsSafe) {
    TypeParam s(this->T("abcd"));
    s.Replace(1, 2, s);
    EXPECT_EQ(Ascii(s), "aabcdd");
}

TYPED_TEST(StringChangeTest, ExtractGivesTheRangeAndItsSize) {
    const TypeParam s(this->T("abcd"));
    TypeParam out(this->T("old"));
    EXPECT_EQ(s.Extract(1, 2, out), 2);
    EXPECT_EQ(Ascii(out), "bc");
    EXPECT_EQ(Ascii(s), "abcd");
    EXPECT_EQ(RefsOf(out), 1);
    EXPECT_EQ(s.Extract(2, -2, out), 2);
    EXPECT_EQ(Ascii(out), "ab");
    EXPECT_EQ(s.Extract(-1, -1, out), 1);
    EXPECT_EQ(Ascii(out), "d");
    EXPECT_EQ(s.Extract(1, 0, out), 0);
    EXPECT_EQ(Ascii(out), "");
}

TYPED_TEST(StringChangeTest, ExtractIntoItselfMakesTheStringTheRange) {
    TypeParam s(this->T("abcd")), copy(s);
    EXPECT_EQ(s.Extract(1, 2), 2);
    EXPECT_EQ(Ascii(s), "bc");
    EXPECT_EQ(Ascii(copy), "abcd");
    EXPECT_EQ(s.Extract(1, 1, s), 1);
    EXPECT_EQ(Ascii(s), "c");
    EXPECT_EQ(s.Extract(0, 0), 0);
    EXPECT_EQ(Ascii(s), "");
}

TYPED_TEST(StringChangeTest, ExtractIntoASharingStringLeavesTheSource) {
    TypeParam s(this->T("abcd")), out(s);
    EXPECT_EQ(s.Extract(2, 2, out), 2);
    EXPECT_EQ(Ascii(out), "cd");
    EXPECT_EQ(Ascii(s), "abcd");
}

TYPED_TEST(StringChangeTest, FindReplaceReplacesTheFirstOccurrenceOnly) {
    TypeParam s(this->T("abab")), copy(s);
    EXPECT_EQ(s.FindReplace(this->T("b"), this->T("xyz")), 1);
    EXPECT_EQ(Ascii(s), "axyzab");
    EXPECT_EQ(Ascii(copy), "abab");
}

TYPED_TEST(StringChangeTest, FindReplaceTakesCharactersOnEitherSide) {
    TypeParam s(this->T("abab"));
    EXPECT_EQ(s.FindReplace(L'b', L'x'), 1);
    EXPECT_EQ(Ascii(s), "axab");
    EXPECT_EQ(s.FindReplace(L'a', this->T("12")), 1);
    EXPECT_EQ(Ascii(s), "12xab");
    EXPECT_EQ(s.FindReplace(this->T("2x"), L'-'), 1);
    EXPECT_EQ(Ascii(s), "1-ab");
}

TYPED_TEST(StringChangeTest, AFailedFindReplaceHasSeparatedTheText) {
    TypeParam s(this->T("abab")), copy(s);
    EXPECT_EQ(s.FindReplace(this->T("x"), this->T("yy")), 0);
    EXPECT_EQ(Ascii(s), "abab");
    EXPECT_NE(s.GetData(0), copy.GetData(0));
    EXPECT_EQ(RefsOf(copy), 1);
    EXPECT_EQ(AllocOf(s), 7);
}

TYPED_TEST(StringChangeTest, FindReplaceWithAnEmptyReplacementRemoves) {
    const UnitOf<TypeParam>* none = nullptr;
    TypeParam s(this->T("abcabc"));
    EXPECT_EQ(s.FindReplace(this->T("bc"), this->T("")), 1);
    EXPECT_EQ(Ascii(s), "aabc");
    EXPECT_EQ(s.FindReplace(this->T("bc"), none), 1);
    EXPECT_EQ(Ascii(s), "aa");
}

TYPED_TEST(StringChangeTest, FindReplaceDoesNotFindAnEmptyText) {
    const UnitOf<TypeParam>* none = nullptr;
    TypeParam s(this->T("abc")), empty;
    EXPECT_EQ(s.FindReplace(this->T(""), this->T("x")), 0);
    EXPECT_EQ(s.FindReplace(none, this->T("x")), 0);
    EXPECT_EQ(empty.FindReplace(this->T("a"), this->T("x")), 0);
    EXPECT_EQ(Ascii(s), "abc");
    EXPECT_EQ(Ascii(empty), "");
    EXPECT_EQ(Ascii(TypeParam()), "");
}

TYPED_TEST(StringChangeTest, FindReplaceWithTheOwnTextIsSafe) {
    TypeParam s(this->T("abc"));
    EXPECT_EQ(s.FindReplace(s.GetData(1), s), 1);
    EXPECT_EQ(Ascii(s), "aabc");
}

TYPED_TEST(StringChangeTest, TrimLeftAndTrimRightTakeWhiteSpace) {
    TypeParam s(this->T(" \t\r\n\v\f a b \t ")), copy(s);
    s.TrimLeft();
    EXPECT_EQ(Ascii(s), "a b \t ");
    s.TrimRight();
    EXPECT_EQ(Ascii(s), "a b");
    EXPECT_EQ(Ascii(copy), " \t\r\n\v\f a b \t ");
    EXPECT_EQ(RefsOf(s), 1);
}

TYPED_TEST(StringChangeTest, TrimmingWorksInABufferOneLargerThanNeeded) {
    TypeParam left(this->T("abc")), right(this->T("abc"));
    left.TrimLeft();
    right.TrimRight();
    EXPECT_EQ(AllocOf(left), 5);
    EXPECT_EQ(AllocOf(right), 5);
}

TYPED_TEST(StringChangeTest, TrimmingAnAllBlankStringLeavesAnEmptyTextInARealBuffer) {
    TypeParam left(this->T("   ")), right(this->T("   "));
    left.TrimLeft();
    right.TrimRight();
    for (auto s : {&left, &right}) {
        EXPECT_EQ(Ascii(*s), "");
        EXPECT_NE(s->GetData(0), TypeParam().GetData(0));
        EXPECT_EQ(RefsOf(*s), 1);
    }
}

TYPED_TEST(StringChangeTest, TrimAndCaseLeaveTheSharedEmptyText) {
    TypeParam s;
    s.TrimLeft();
    s.TrimRight();
    s.Upper();
    s.Lower();
    EXPECT_EQ(s.GetData(0), TypeParam().GetData(0));
    EXPECT_EQ(RefsOf(s), -1);
}

TYPED_TEST(StringChangeTest, UpperAndLowerWorkInADoubledBuffer) {
    TypeParam s(this->T("aBc1")), copy(s);
    s.Upper();
    EXPECT_EQ(Ascii(s), "ABC1");
    EXPECT_EQ(AllocOf(s), 10);
    EXPECT_EQ(RefsOf(s), 1);
    s.Lower();
    EXPECT_EQ(Ascii(s), "abc1");
    EXPECT_EQ(Ascii(copy), "aBc1");
}

TEST(StringChangeNarrowTest, InsertTakesTheLowByteOfACharacterWhoseHighByteIsNoLeadByte) {
    CodePage page(1252);
    CXString s("ab");
    EXPECT_STREQ(s.Insert(1, wchar_t(0x8241)), "aAb");
    EXPECT_STREQ(s.Insert(0, wchar_t(0xFFE9)), "\xE9\x61\x41\x62");
    EXPECT_STREQ(s.Insert(0, wchar_t(0x4100)), "\xE9\x61\x41\x62");
}

TEST(StringChangeWideTest, WhiteSpaceIsJudgedByTheLowByteOfAUnit) {
    CXStringW s(L"\u0120a\u0420");
    s.TrimLeft();
    EXPECT_STREQ(s, L"a\u0420");
    s.TrimRight();
    EXPECT_STREQ(s, L"a");
}

TEST(StringChangeWideTest, TheIdeographicSpaceIsNotTrimmed) {
    CXStringW s(L"\u3000a\u3000");
    s.TrimLeft();
    s.TrimRight();
    EXPECT_STREQ(s, L"\u3000a\u3000");
}

TEST(StringChangeWideTest, InsertAndFindReplaceTakeAUnitAsItIs) {
    CXStringW s(L"ab");
    EXPECT_STREQ(s.Insert(1, wchar_t(0x8341)), L"a\u8341b");
    EXPECT_EQ(s.FindReplace(wchar_t(0x8341), wchar_t(0x82A0)), 1);
    EXPECT_STREQ(s, L"a\u82A0b");
}

struct StringChangeJapaneseTest : JapaneseTest {};

TEST_F(StringChangeJapaneseTest, InsertPutsADoubleByteCharacterInHighByteFirst) {
    CXString s("ab");
    EXPECT_STREQ(s.Insert(1, kACode), "a\x82\xA0\x62");
    EXPECT_STREQ(s.Insert(2, L'x'), "a\x82\xA0xb");
    EXPECT_STREQ(s.Insert(99, wchar_t(0xB1)), "a\x82\xA0xb\xB1");
    EXPECT_STREQ(s.Insert(0, wchar_t(0xFF43)), "Ca\x82\xA0xb\xB1");
}

TEST_F(StringChangeJapaneseTest, DeleteReplaceAndExtractTakeWholeCharacters) {
    CXString s = CXString(kA) + kSo + "x" + kI;
    CXString out;
    EXPECT_EQ(s.Extract(1, 2, out), 3);
    EXPECT_STREQ(out, "\x83\x5Cx");
    EXPECT_STREQ(CXString(s).Delete(1, 1), "\x82\xA0x\x82\xA2");
    EXPECT_STREQ(CXString(s).Delete(-1, -2), "\x82\xA0\x83\x5C");
    EXPECT_STREQ(CXString(s).Replace(0, 2, "-"), "-x\x82\xA2");
    EXPECT_STREQ(CXString(s).Replace(2, 1, kU), "\x82\xA0\x83\x5C\x82\xA4\x82\xA2");
}

TEST_F(StringChangeJapaneseTest, FindReplaceOfTextsMatchesWholeCharacters) {
    CXString s = CXString(kSo) + "\\" + kAa + "A";
    EXPECT_EQ(s.FindReplace("\\", "/"), 1);
    EXPECT_EQ(s.FindReplace(L'A', L'B'), 1);
    EXPECT_STREQ(s,
                 "\x83\x5C/\x83\x41"
                 "B");
    EXPECT_EQ(s.FindReplace(kAa, kA), 1);
    EXPECT_STREQ(s,
                 "\x83\x5C/\x82\xA0"
                 "B");
}

TEST_F(StringChangeJapaneseTest, FindReplaceDoesNotFindADoubleByteCharacterGivenByItsCode) {
    CXString s(kAa);
    EXPECT_EQ(s.FindReplace(kAaCode, L'x'), 0);
    EXPECT_STREQ(s, kAa);
}

TEST_F(StringChangeJapaneseTest, FindReplaceTakesADoubleByteCharacterLowByteFirst) {
    // 'A' and the half of a character: the bytes of the code 0x8341 as it lies in memory.
    CXString s("x\x41\x83y");
    EXPECT_EQ(s.FindReplace(kAaCode, L'-'), 1);
    EXPECT_STREQ(s, "x-y");
    EXPECT_EQ(s.FindReplace(L'-', kAaCode), 1);
    EXPECT_STREQ(s, "x\x41\x83y");
}

TEST_F(StringChangeJapaneseTest, TrimmingStepsOverDoubleByteCharacters) {
    CXString s = CXString("  ") + kSo + " " + kA + " \t";
    s.TrimLeft();
    s.TrimRight();
    EXPECT_STREQ(s, "\x83\x5C \x82\xA0");
    CXString blank("  ");
    blank.TrimRight();
    EXPECT_STREQ(blank, "");
}

TEST_F(StringChangeJapaneseTest, CaseLeavesTrailBytesAlone) {
    CXString s = CXString("a") + kAa + "z" + "\x83\x61";
    s.Upper();
    EXPECT_STREQ(s, "A\x83\x41Z\x83\x61");
    s.Lower();
    EXPECT_STREQ(s, "a\x83\x41z\x83\x61");
}

TEST_F(StringChangeJapaneseTest, ConcatenationAndInsertKeepALoneLeadByte) {
    CXString s("ab\x82");
    EXPECT_STREQ(s + "\xA0", "ab\x82\xA0");
    EXPECT_STREQ(s.Insert(0, L'x'), "xab\x82");
}
