// The shared text, its header, and what locks and separates it.
#include "strings/string_probe.h"

#include <stdexcept>

template <class S>
struct StringSharingTest : BothStrings<S> {
    using P = StringProbe<S>;
};
TYPED_TEST_SUITE(StringSharingTest, BothStringClasses);

TYPED_TEST(StringSharingTest, AStringIsATablePointerAndTheText) {
    EXPECT_EQ(sizeof(TypeParam), 2 * sizeof(void*));
    TypeParam s(this->T("abc"));
    EXPECT_EQ(reinterpret_cast<const void* const*>(&s)[1], s.GetData(0));
}

TYPED_TEST(StringSharingTest, EmptyStringsHaveOneTextWithTheCountMinusOne) {
    TypeParam a, b, copy(a);
    EXPECT_EQ(a.GetData(0), b.GetData(0));
    EXPECT_EQ(copy.GetData(0), a.GetData(0));
    EXPECT_EQ(RefsOf(a), -1);
    EXPECT_EQ(Ascii(a), "");
}

TYPED_TEST(StringSharingTest, ANullTextGivesAnEmptyString) {
    const char* narrow = nullptr;
    const wchar_t* wide = nullptr;
    TypeParam a(narrow), b(wide), c(this->T("x")), d(this->T("x"));
    c = narrow;
    d = wide;
    for (auto s : {&a, &b, &c, &d}) EXPECT_EQ(Ascii(*s), "");
}

TYPED_TEST(StringSharingTest, ACopySharesUntilItIsChanged) {
    TypeParam a(this->T("x"));
    TypeParam b(a);
    EXPECT_EQ(a.GetData(0), b.GetData(0));
    EXPECT_EQ(RefsOf(a), 2);
    b.Insert(1, L'y');
    EXPECT_EQ(Ascii(a), "x");
    EXPECT_EQ(Ascii(b), "xy");
    EXPECT_EQ(RefsOf(a), 1);
    EXPECT_EQ(RefsOf(b), 1);
}

TYPED_TEST(StringSharingTest, DestroyingACopyCountsDown) {
    TypeParam a(this->T("x"));
    {
        TypeParam b(a), c(b);
        EXPECT_EQ(RefsOf(a), 3);
    }
    EXPECT_EQ(RefsOf(a), 1);
    EXPECT_EQ(Ascii(a), "x");
}

TYPED_TEST(StringSharingTest, AssignmentSharesAndGivesUpTheOldText) {
    TypeParam a(this->T("a")), b(this->T("b")), oldB(b);
    b = a;
    EXPECT_EQ(a.GetData(0), b.GetData(0));
    EXPECT_EQ(RefsOf(a), 2);
    EXPECT_EQ(RefsOf(oldB), 1);
    b = a;
    EXPECT_EQ(RefsOf(a), 2);
}

TYPED_TEST(StringSharingTest, AssigningAnEmptyStringEmpties) {
    TypeParam a(this->T("a")), empty;
    a = empty;
    EXPECT_EQ(a.GetData(0), empty.GetData(0));
    EXPECT_EQ(RefsOf(empty), -1);
}

TYPED_TEST(StringSharingTest, AssigningASoleOwnerToItselfEmptiesIt) {
    TypeParam a(this->T("abc"));
    const TypeParam& same = a;
    a = same;
    EXPECT_EQ(Ascii(a), "");
    EXPECT_EQ(a.GetData(0), TypeParam().GetData(0));
    EXPECT_EQ(RefsOf(a), -1);
}

TYPED_TEST(StringSharingTest, AssigningASharedStringToItselfKeepsIt) {
    TypeParam a(this->T("abc")), b(a);
    const TypeParam& same = a;
    a = same;
    EXPECT_EQ(Ascii(a), "abc");
    EXPECT_EQ(RefsOf(a), 2);
    EXPECT_EQ(Ascii(b), "abc");
}

TYPED_TEST(StringSharingTest, AssigningALockedStringToItselfKeepsItLocked) {
    TypeParam a(this->T("abc"));
    const TypeParam& same = a;
    a.GetBuffer(3);
    a = same;
    EXPECT_EQ(RefsOf(a), -1);
    a.ReleaseBuffer();
    EXPECT_EQ(Ascii(a), "abc");
}

TYPED_TEST(StringSharingTest, ACopyOfALockedStringDoesNotShare) {
    TypeParam a(this->T("abc"));
    auto buffer = a.GetBuffer(10);
    EXPECT_EQ(RefsOf(a), -1);
    buffer[1] = 'X';
    TypeParam copy(a), assigned(this->T("old"));
    assigned = a;
    buffer[1] = 'Y';
    a.ReleaseBuffer();
    EXPECT_EQ(Ascii(copy), "aXc");
    EXPECT_EQ(Ascii(assigned), "aXc");
    EXPECT_EQ(Ascii(a), "aYc");
    EXPECT_EQ(RefsOf(a), 1);
    TypeParam later(a);
    EXPECT_EQ(later.GetData(0), a.GetData(0));
}

TYPED_TEST(StringSharingTest, AssigningToALockedStringUnlocksIt) {
    TypeParam a(this->T("abc")), b(this->T("b"));
    a.GetBuffer(3);
    a = b;
    EXPECT_EQ(a.GetData(0), b.GetData(0));
    EXPECT_EQ(RefsOf(b), 2);
}

TYPED_TEST(StringSharingTest, ALockedStringMayBeDestroyed) {
    TypeParam a(this->T("abc"));
    { TypeParam(a).GetBuffer(3); }
    EXPECT_EQ(RefsOf(a), 1);
    EXPECT_EQ(Ascii(a), "abc");
}

TYPED_TEST(StringSharingTest, GetBufferSeparatesAndMakesRoom) {
    TypeParam a(this->T("abc")), b(a);
    auto buffer = b.GetBuffer(20);
    EXPECT_EQ(AllocOf(b), 21);
    EXPECT_EQ(SizeFieldOf(b), 21);
    EXPECT_EQ(RefsOf(a), 1);
    for (int i = 0; i < 20; ++i) buffer[i] = 'z';
    buffer[20] = 0;
    b.ReleaseBuffer();
    EXPECT_EQ(Ascii(b), std::string(20, 'z'));
    EXPECT_EQ(Ascii(a), "abc");
}

TYPED_TEST(StringSharingTest, GetBufferKeepsABlockThatIsLargeEnough) {
    TypeParam a(this->T("abcdef"));
    auto text = a.GetData(0);
    EXPECT_EQ(a.GetBuffer(2), text);
    a.ReleaseBuffer();
    EXPECT_EQ(Ascii(a), "abcdef");
    EXPECT_EQ(AllocOf(a), 7);
}

TYPED_TEST(StringSharingTest, UnsharingIntoASmallerBufferCutsAndKeepsATerminator) {
    TypeParam a(this->T("abcdef")), b(a);
    b.GetBuffer(2);
    b.ReleaseBuffer();
    EXPECT_EQ(Ascii(b), "ab");
    EXPECT_EQ(AllocOf(b), 3);
    EXPECT_EQ(Ascii(a), "abcdef");
}

TYPED_TEST(StringSharingTest, GetBufferOfAnEmptyStringLeavesTheSharedEmptyText) {
    TypeParam a, empty;
    auto buffer = a.GetBuffer(0);
    EXPECT_NE(buffer, empty.GetData(0));
    a.ReleaseBuffer();
    EXPECT_EQ(RefsOf(a), 1);
    EXPECT_EQ(RefsOf(empty), -1);
}

TYPED_TEST(StringSharingTest, ReleaseBufferIgnoresItsLength) {
    TypeParam a(this->T("abc"));
    a.GetBuffer(3);
    a.ReleaseBuffer(1);
    EXPECT_EQ(Ascii(a), "abc");
    EXPECT_EQ(a.GetLength(), 3);
}

TYPED_TEST(StringSharingTest, ReleaseBufferOfAStringThatIsNotLockedChangesNothing) {
    TypeParam empty;
    empty.ReleaseBuffer();
    EXPECT_EQ(RefsOf(empty), -1);
    TypeParam a(this->T("abc")), b(a);
    a.ReleaseBuffer();
    EXPECT_EQ(RefsOf(a), 2);
}

TYPED_TEST(StringSharingTest, TheGuardReleasesWhenAnExceptionPasses) {
    TypeParam a(this->T("abc"));
    try {
        __CXBuff<TypeParam, UnitOf<TypeParam>*> guard(a, 5);
        EXPECT_EQ(RefsOf(a), -1);
        guard.buffer[0] = 'X';
        throw std::runtime_error("passes");
    } catch (std::runtime_error&) {
    }
    EXPECT_EQ(RefsOf(a), 1);
    EXPECT_EQ(Ascii(a), "Xbc");
}

TYPED_TEST(StringSharingTest, AllocBufferGivesAZeroFilledTextOfItsOwn) {
    typename TestFixture::P a(this->T("abc")), b(a);
    a.AllocBuffer(5);
    EXPECT_EQ(RefsOf(a), 1);
    EXPECT_EQ(SizeFieldOf(a), 0);
    EXPECT_EQ(AllocOf(a), 5);
    EXPECT_EQ(a.GetAllocSize(), 5);
    for (int i = 0; i < 5; ++i) EXPECT_EQ(a.GetData(0)[i], 0);
    EXPECT_EQ(Ascii(b), "abc");
}

TYPED_TEST(StringSharingTest, AllocBufferBeyondAnIntThrowsAndLeavesAValidString) {
    typename TestFixture::P a(this->T("abc"));
    EXPECT_THROW(a.AllocBuffer(size_t(1) << 31), CXMemException);
    EXPECT_EQ(Ascii(a), "");
    EXPECT_THROW(a.ReallocBuffer(size_t(-1)), CXMemException);
    EXPECT_THROW(a.AssignCopy(this->T("x"), size_t(-1)), CXMemException);
    EXPECT_THROW(a.ConcatCopy(this->T("x"), size_t(-1)), CXMemException);
    EXPECT_THROW(a.ConcatCopyTo(0, this->T("x"), size_t(-1)), CXMemException);
    EXPECT_EQ(Ascii(a), "");
}

TYPED_TEST(StringSharingTest, AFailedAllocationOfASharingStringLeavesTheOtherAlone) {
    TypeParam a(this->T("abc"));
    {
        typename TestFixture::P b(a);
        EXPECT_THROW(b.AllocBuffer(size_t(1) << 40), CXMemException);
    }
    EXPECT_EQ(RefsOf(a), 1);
    EXPECT_EQ(Ascii(a), "abc");
}

TYPED_TEST(StringSharingTest, ReallocBufferOfASoleOwnerWithRoomDoesNothing) {
    typename TestFixture::P a(this->T("abc"));
    auto text = a.GetData(0);
    a.ReallocBuffer(4);
    a.ReallocBuffer(1);
    EXPECT_EQ(a.GetData(0), text);
    EXPECT_EQ(AllocOf(a), 4);
    a.ReallocBuffer(9);
    EXPECT_NE(a.GetData(0), text);
    EXPECT_EQ(Ascii(a), "abc");
    EXPECT_EQ(AllocOf(a), 9);
    EXPECT_EQ(SizeFieldOf(a), 9);
}

TYPED_TEST(StringSharingTest, ReallocBufferAlwaysSeparatesASharedText) {
    typename TestFixture::P a(this->T("abc")), b(a);
    b.ReallocBuffer(4);
    EXPECT_NE(a.GetData(0), b.GetData(0));
    EXPECT_EQ(Ascii(b), "abc");
    EXPECT_EQ(RefsOf(a), 1);
}

TYPED_TEST(StringSharingTest, ReallocBufferOfALockedTextWithoutRoomUnlocksIt) {
    typename TestFixture::P a(this->T("abc"));
    a.GetBuffer(3);
    a.ReallocBuffer(4);
    EXPECT_EQ(RefsOf(a), -1);
    a.ReallocBuffer(5);
    EXPECT_EQ(RefsOf(a), 1);
    EXPECT_EQ(Ascii(a), "abc");
}

TYPED_TEST(StringSharingTest, AssignCopyTakesUnitsAndSetsTheSize) {
    typename TestFixture::P a(this->T("old"));
    auto text = Units<TypeParam>("abcdef");
    a.AssignCopy(text.c_str(), 4);
    EXPECT_EQ(Ascii(a), "abcd");
    EXPECT_EQ(SizeFieldOf(a), 4);
    EXPECT_EQ(AllocOf(a), 5);
}

TYPED_TEST(StringSharingTest, AssignCopyOfTheOwnTextDoesNothing) {
    typename TestFixture::P a(this->T("abc")), b(a);
    a.AssignCopy(a.data, 1);
    EXPECT_EQ(Ascii(a), "abc");
    EXPECT_EQ(RefsOf(a), 2);
}

TYPED_TEST(StringSharingTest, AssigningAPieceOfTheOwnTextIsSafe) {
    TypeParam a(this->T("abcdef"));
    a = a.GetData(2);
    EXPECT_EQ(Ascii(a), "cdef");
    a = a.GetData(0);
    EXPECT_EQ(Ascii(a), "cdef");
}

TYPED_TEST(StringSharingTest, ConcatCopyAppendsIntoABlockOfTheExactSize) {
    typename TestFixture::P a(this->T("abc")), b(a);
    auto text = Units<TypeParam>("defg");
    a.ConcatCopy(text.c_str(), 3);
    EXPECT_EQ(Ascii(a), "abcdef");
    EXPECT_EQ(AllocOf(a), 7);
    EXPECT_EQ(SizeFieldOf(a), 7);
    EXPECT_EQ(Ascii(b), "abc");
}

TYPED_TEST(StringSharingTest, ConcatCopyOfTheOwnTextIsSafe) {
    typename TestFixture::P a(this->T("abc"));
    a.ConcatCopy(a.data + 1, 2);
    EXPECT_EQ(Ascii(a), "abcbc");
}

TYPED_TEST(StringSharingTest, ConcatCopyToDropsTheOldTail) {
    typename TestFixture::P a(this->T("abcdefgh"));
    auto text = Units<TypeParam>("XY");
    a.ConcatCopyTo(3, text.c_str(), 2);
    EXPECT_EQ(Ascii(a), "abcXY");
}

TYPED_TEST(StringSharingTest, ConcatCopyToOfASharedTextSeparatesIt) {
    typename TestFixture::P a(this->T("abcdefgh")), b(a);
    auto text = Units<TypeParam>("XY");
    a.ConcatCopyTo(3, text.c_str(), 2);
    EXPECT_EQ(Ascii(a), "abcXY");
    EXPECT_EQ(Ascii(b), "abcdefgh");
}

TYPED_TEST(StringSharingTest, ConcatCopyToAtOrBeyondTheEndAppends) {
    typename TestFixture::P a(this->T("abc"));
    auto text = Units<TypeParam>("XY");
    a.ConcatCopyTo(3, text.c_str(), 2);
    EXPECT_EQ(Ascii(a), "abcXY");
    a.ConcatCopyTo(99, text.c_str(), 1);
    EXPECT_EQ(Ascii(a), "abcXYX");
}

TYPED_TEST(StringSharingTest, ReleaseEmptiesTheString) {
    typename TestFixture::P a(this->T("abc")), b(a);
    b.Release();
    EXPECT_EQ(Ascii(b), "");
    EXPECT_EQ(RefsOf(a), 1);
    a.GetBuffer(3);
    a.Release();
    EXPECT_EQ(a.GetData(0), TypeParam().GetData(0));
}

TYPED_TEST(StringSharingTest, InitTakesTheSharedEmptyText) {
    typename TestFixture::P a;
    a.Init();
    EXPECT_EQ(a.GetData(0), TypeParam().GetData(0));
}

TYPED_TEST(StringSharingTest, ConcatenationBuildsFreshResultsInFiveForms) {
    TypeParam a(this->T("ab")), b(this->T("cd"));
    auto text = Units<TypeParam>("xy");
    EXPECT_EQ(Ascii(a + b), "abcd");
    EXPECT_EQ(Ascii(a + text.c_str()), "abxy");
    EXPECT_EQ(Ascii(text.c_str() + a), "xyab");
    EXPECT_EQ(Ascii(a + L'z'), "abz");
    EXPECT_EQ(Ascii(a + 'z'), "abz");
    EXPECT_EQ(Ascii(L'z' + a), "zab");
    EXPECT_EQ(Ascii(a), "ab");
}

TYPED_TEST(StringSharingTest, ConcatenationHasTheExactCapacity) {
    TypeParam a(this->T("ab"));
    TypeParam sum = a + a;
    EXPECT_EQ(AllocOf(sum), 5);
    EXPECT_EQ(SizeFieldOf(sum), 5);
    EXPECT_EQ(RefsOf(sum), 1);
    TypeParam same = a + TypeParam();
    EXPECT_NE(same.GetData(0), a.GetData(0));
    EXPECT_EQ(Ascii(same), "ab");
}

TYPED_TEST(StringSharingTest, ConcatenationWithANullTextTakesItAsEmpty) {
    const UnitOf<TypeParam>* none = nullptr;
    EXPECT_EQ(Ascii(this->T("ab") + none), "ab");
    EXPECT_EQ(Ascii(none + this->T("ab")), "ab");
}

TYPED_TEST(StringSharingTest, FreeExtraAndTheOemConversionsDoNothing) {
    TypeParam a(this->T("abc"));
    a.GetBuffer(20);
    a.ReleaseBuffer();
    auto text = a.GetData(0);
    a.FreeExtra();
    a.CharToOemA();
    a.OemToCharA();
    EXPECT_EQ(a.GetData(0), text);
    EXPECT_EQ(AllocOf(a), 21);
    EXPECT_EQ(Ascii(a), "abc");
}

TEST(StringConversionTest, NarrowComesFromWideInTheAnsiCodePage) {
    const wchar_t wide[] = L"caf\u00E9 \u4E2D";
    char expected[32];
    ASSERT_GT(WideCharToMultiByte(CP_ACP, 0, wide, -1, expected, sizeof expected, nullptr, nullptr),
              0);
    EXPECT_STREQ(CXString(wide), expected);
    CXString assigned("old");
    assigned = wide;
    EXPECT_STREQ(assigned, expected);
    EXPECT_EQ(CXString(L"abc").GetLength(), 3);
}

TEST(StringConversionTest, WideComesFromNarrowWithTwiceTheBytesAndTwoUnitsOfRoom) {
    CXStringW wide("abc");
    EXPECT_STREQ(wide, L"abc");
    EXPECT_EQ(AllocOf(wide), 8);
    for (int i = 3; i < 8; ++i) EXPECT_EQ(wide.GetData(0)[i], 0);
    CXStringW assigned(L"old");
    assigned = "xyz";
    EXPECT_STREQ(assigned, L"xyz");
    EXPECT_EQ(AllocOf(assigned), 8);
}

TEST(StringConversionTest, ADoubleByteCharacterTakenAsWideIsPutInHighByteFirst) {
    CodePage page(932);
    CXString a("x");
    EXPECT_STREQ(a + kACode, "x\x82\xA0");
    EXPECT_STREQ(kACode + a, "\x82\xA0x");
}
