// Format and the sizes it sets aside.
#include "strings/string_probe.h"
#include "support/exponent.h"

#include <clocale>
#include <cstdio>

namespace {

// Both classes' formats come from one ASCII literal.
template <class S>
struct Formatting : BothStrings<S> {
    using P = StringProbe<S>;

    template <class... Args>
    static int Sized(const char* format, Args... args) {
        return P().Sized(Units<S>(format).c_str(), args...);
    }
    template <class... Args>
    static std::string Formatted(const char* format, Args... args) {
        S s;
        s.Format(Units<S>(format).c_str(), args...);
        EXPECT_GT(RefsOf(s), 0);
        return Ascii(s);
    }
};

}  // namespace

template <class S>
struct StringFormatTest : Formatting<S> {};
TYPED_TEST_SUITE(StringFormatTest, BothStringClasses);

TYPED_TEST(StringFormatTest, PlainTextAndDoubledPercentCountOneEach) {
    EXPECT_EQ(this->Sized(""), 0);
    EXPECT_EQ(this->Sized("abc"), 3);
    EXPECT_EQ(this->Sized("a%%b%%"), 4);
    EXPECT_EQ(this->Formatted(""), "");
    EXPECT_EQ(this->Formatted("a%%b%%"), "a%b%");
}

TYPED_TEST(StringFormatTest, CharactersCountTwo) {
    for (const char* format : {"%c", "%C", "%hc", "%hC", "%lc", "%lC"}) {
        EXPECT_EQ(this->Sized(format, 'x'), 2) << format;
        EXPECT_EQ(this->Formatted(format, 'x'), "x") << format;
        EXPECT_EQ(this->Sized((std::string(format) + "%d").c_str(), 'x', 1), 34) << format;
    }
}

TYPED_TEST(StringFormatTest, CharactersAreRaisedToTheWidthAndCutToThePrecision) {
    EXPECT_EQ(this->Sized("%10c", 'x'), 10);
    EXPECT_EQ(this->Sized("%1c", 'x'), 2);
    EXPECT_EQ(this->Sized("%.1c", 'x'), 1);
    EXPECT_EQ(this->Sized("%10.4c", 'x'), 4);
    EXPECT_EQ(this->Formatted("%4c|", 'x'), "   x|");
}

TYPED_TEST(StringFormatTest, ModifiedStringsAreNarrowWithHAndWideWithL) {
    for (const char* format : {"%hs", "%hS"}) {
        EXPECT_EQ(this->Sized(format, "abcd"), 4) << format;
        EXPECT_EQ(this->Formatted(format, "abcd"), "abcd") << format;
    }
    for (const char* format : {"%ls", "%lS"}) {
        EXPECT_EQ(this->Sized(format, L"abcd"), 4) << format;
        EXPECT_EQ(this->Formatted(format, L"abcd"), "abcd") << format;
    }
}

TYPED_TEST(StringFormatTest, StringsCountAtLeastOne) {
    EXPECT_EQ(this->Sized("%hs", ""), 1);
    EXPECT_EQ(this->Sized("%ls", L""), 1);
    EXPECT_EQ(this->Formatted("[%hs%ls]", "", L""), "[]");
}

TYPED_TEST(StringFormatTest, StringsAreRaisedToTheWidthAndCutToThePrecision) {
    EXPECT_EQ(this->Sized("%10hs", "abc"), 10);
    EXPECT_EQ(this->Sized("%2hs", "abc"), 3);
    EXPECT_EQ(this->Sized("%.2hs", "abcdef"), 2);
    EXPECT_EQ(this->Sized("%.9hs", "abc"), 3);
    EXPECT_EQ(this->Sized("%10.2hs", "abcdef"), 2);
    EXPECT_EQ(this->Sized("%.*hs", 4, "abcdef"), 4);
    EXPECT_EQ(this->Sized("%*hs", 9, "abc"), 9);
    EXPECT_EQ(this->Sized("%.2ls", L"abcdef"), 2);
    EXPECT_EQ(this->Formatted("%.2hs", "abcdef"), "ab");
    EXPECT_EQ(this->Formatted("%-6hs|%6ls", "abc", L"def"), "abc   |   def");
}

TYPED_TEST(StringFormatTest, APrecisionOfZeroIsOne) {
    EXPECT_EQ(this->Sized("%.0hs", "abc"), 0);
    EXPECT_EQ(this->Sized("%.hs", "abc"), 0);
    EXPECT_EQ(this->Sized("%5.0hs", "abc"), 0);
    EXPECT_EQ(this->Formatted("[%.0hs]", "abc"), "[]");
}

TYPED_TEST(StringFormatTest, ANegativePrecisionIsNone) {
    EXPECT_EQ(this->Sized("%.*hs", -1, "abc"), 3);
    EXPECT_EQ(this->Formatted("%.*hs", -1, "abc"), "abc");
}

TYPED_TEST(StringFormatTest, APrecisionKeepsAnUnterminatedTextFromBeingReadOn) {
    const char text[] = {'a', 'b', 'c'};
    const wchar_t wide[] = {'d', 'e', 'f'};
    EXPECT_EQ(this->Formatted("%.3hs%.3ls", text, wide), "abcdef");
}

TYPED_TEST(StringFormatTest, ANullTextIsSizedAsAnEmptyOne) {
    EXPECT_EQ(this->Sized("%hs", static_cast<const char*>(nullptr)), 1);
    EXPECT_EQ(this->Sized("%ls", static_cast<const wchar_t*>(nullptr)), 1);
    EXPECT_EQ(this->Formatted("%hs", static_cast<const char*>(nullptr)), "(null)");
}

TYPED_TEST(StringFormatTest, IntegersCountThirtyTwoOrWidthPlusPrecision) {
    for (const char* type : {"X", "d", "i", "o", "u", "x"}) {
        for (const char* modifier : {"", "h", "l", "F", "L", "N"}) {
            std::string format = std::string("%") + modifier + type;
            EXPECT_EQ(this->Sized(format.c_str(), 5), 32) << format;
            EXPECT_EQ(this->Sized((format + "%hs").c_str(), 5, "abc"), 35) << format;
        }
        EXPECT_EQ(this->Sized((std::string("%40") + type).c_str(), 5), 40);
        EXPECT_EQ(this->Sized((std::string("%40.5") + type).c_str(), 5), 45);
        EXPECT_EQ(this->Sized((std::string("%20.11") + type).c_str(), 5), 32);
        EXPECT_EQ(this->Sized((std::string("%.50") + type).c_str(), 5), 50);
    }
    EXPECT_EQ(this->Formatted("%d%%", 5), "5%");
    EXPECT_EQ(this->Formatted("%d %i %u %o %x %X", -1, 7, 8u, 8, 255, 255), "-1 7 8 10 ff FF");
    EXPECT_EQ(this->Formatted("%hd %ld", 65537, 70000), "1 70000");
}

TYPED_TEST(StringFormatTest, DoublesCountAHundredTwentyEightOrWidthPlusPrecision) {
    for (const char* type : {"G", "e", "f", "g"}) {
        for (const char* modifier : {"", "h", "l", "L"}) {
            std::string format = std::string("%") + modifier + type;
            EXPECT_EQ(this->Sized((format + "%hs").c_str(), 1.5, "abc"), 131) << format;
        }
        EXPECT_EQ(this->Sized((std::string("%100.50") + type).c_str(), 1.5), 150);
        EXPECT_EQ(this->Sized((std::string("%200") + type).c_str(), 1.5), 200);
    }
    EXPECT_EQ(this->Formatted("%.3f %g %G", 1.5, 0.25, 1e-10), "1.500 0.25 1E-" EXPONENT_LEAD "10");
}

TYPED_TEST(StringFormatTest, ExponentsHaveTheRuntimesForm) {
    // Two digits at least in the universal runtime, three in the older one.
    EXPECT_EQ(this->Formatted("%e", 1.0), "1.000000e+" EXPONENT_LEAD "00");
    EXPECT_EQ(this->Formatted("%g", 2.5e-7), "2.5e-" EXPONENT_LEAD "07");
    EXPECT_EQ(this->Formatted("%g %G", 1e100, 1e-300), "1e+100 1E-300");
}

TYPED_TEST(StringFormatTest, PointersCountLikeIntegers) {
    void* p = reinterpret_cast<void*>(0x1234);
    EXPECT_EQ(this->Sized("%p", p), 32);
    EXPECT_EQ(this->Sized("%30.10p", p), 40);
    EXPECT_EQ(this->Sized("%p%hs", p, "abc"), 35);
    EXPECT_EQ(this->Formatted("%p", p), "0000000000001234");
}

TYPED_TEST(StringFormatTest, TheCountDirectiveTakesAPointerAndCountsNothing) {
    int n = 0;
    EXPECT_EQ(this->Sized("%n", &n), 0);
    EXPECT_EQ(this->Sized("%n%hs", &n, "abc"), 3);
}

TYPED_TEST(StringFormatTest, FlagsHaveNoSizeButTheHashSign) {
    EXPECT_EQ(this->Sized("%-+ 0d", 5), 32);
    EXPECT_EQ(this->Sized("%#x", 5), 34);
    EXPECT_EQ(this->Sized("%##x", 5), 36);
    EXPECT_EQ(this->Sized("%-040d", 5), 40);
    EXPECT_EQ(this->Formatted("%#x|%05d|%+d|%-4d|% d", 255, 42, 7, 3, 9), "0xff|00042|+7|3   | 9");
}

TYPED_TEST(StringFormatTest, AnAsteriskTakesWidthAndPrecisionFromTheArguments) {
    EXPECT_EQ(this->Sized("%*d", 60, 5), 60);
    EXPECT_EQ(this->Sized("%*.*d", 40, 7, 5), 47);
    EXPECT_EQ(this->Sized("%-*d%hs", 60, 5, "abc"), 63);
    EXPECT_EQ(this->Sized("%*d", -60, 5), 32);
    EXPECT_EQ(this->Formatted("%*d|%-*d|%.*f", 4, 5, 3, 6, 2, 1.0), "   5|6  |1.00");
}

TYPED_TEST(StringFormatTest, WidthsDoNotCarryOverToTheNextDirective) {
    EXPECT_EQ(this->Sized("%*d%d", 60, 5, 6), 92);
    EXPECT_EQ(this->Sized("%60.60d%.1d%hs", 5, 6, "abcd"), 120 + 32 + 4);
}

TYPED_TEST(StringFormatTest, UnknownTypesTakeNothingAndCountNothing) {
    EXPECT_EQ(this->Sized("%k"), 0);
    EXPECT_EQ(this->Sized("%k%hs", "abc"), 3);
    EXPECT_EQ(this->Sized("%hk%lk"), 0);
    // F is skipped, the second percent sign is the type, d is text.
    EXPECT_EQ(this->Sized("%F%d", 5), 1);
}

TYPED_TEST(StringFormatTest, AnUnfinishedDirectiveEndsTheWalk) {
    for (const char* format : {"%", "%-", "%5", "%5.", "%.3", "%l", "%h", "%L"}) {
        EXPECT_EQ(this->Sized(format), 0) << format;
    }
    EXPECT_EQ(this->Sized("%*", 5), 0);
}

TYPED_TEST(StringFormatTest, TheSecondOfTwoModifiersIsAnUnknownType) {
    EXPECT_EQ(this->Sized("%lld%hs", "abc"), 4);
}

TYPED_TEST(StringFormatTest, TheLargeEIsAHoleThatPutsTheSizesOutOfStep) {
    EXPECT_EQ(this->Sized("%E", 1.5), 0);
    // The string directive takes the double for a text.
    EXPECT_EQ(this->Sized("%E%hs", 1.5, "abcdef"), 1);
    EXPECT_EQ(this->Sized("%E%ls", 1.5, L"abcdef"), 1);
}

TYPED_TEST(StringFormatTest, TheSixtyFourBitPrefixIsAHoleToo) {
    EXPECT_EQ(this->Sized("%I64d", 5ll), 3);
    EXPECT_EQ(this->Sized("%I64d%hs", 5ll, "abcdef"), 4);
}

TYPED_TEST(StringFormatTest, FormatDeliversTheWholeTextOfTheHoles) {
    EXPECT_EQ(this->Formatted("%E|%hs", 1.5, "abcdef"), "1.500000E+" EXPONENT_LEAD "00|abcdef");
    EXPECT_EQ(this->Formatted("%I64d|%hs", 1234567890123ll, "abcdef"), "1234567890123|abcdef");
}

TYPED_TEST(StringFormatTest, FormatDeliversTheWholeTextWhereTheSizeIsTooSmall) {
    EXPECT_EQ(this->Sized("%.200f", 1e300), 200);
    std::string large = this->Formatted("%.200f", 1e300);
    EXPECT_EQ(large.size(), 301u + 1 + 200);
    EXPECT_EQ(large.substr(0, 3), "100");
    EXPECT_EQ(large.substr(301), "." + std::string(200, '0'));
    EXPECT_EQ(this->Formatted("%.2000f", 1.0), "1." + std::string(2000, '0'));

    EXPECT_EQ(this->Sized("%10.2hs", "abcdef"), 2);
    EXPECT_EQ(this->Formatted("%10.2hs", "abcdef"), std::string(8, ' ') + "ab");
    EXPECT_EQ(this->Formatted("%3000.2hs", "abcdef"), std::string(2998, ' ') + "ab");
    EXPECT_EQ(this->Formatted("%*d", -700, 5), "5" + std::string(699, ' '));
}

TYPED_TEST(StringFormatTest, LongTextsAreWholeAroundTheSizeOfTheFirstTry) {
    for (size_t n : {510u, 511u, 512u, 513u, 5000u}) {
        std::string text(n, 'x');
        text[0] = '<';
        text[n - 1] = '>';
        EXPECT_EQ(this->Formatted("%hs", text.c_str()), text);
        EXPECT_EQ(this->Formatted("%hs%d", text.c_str(), 7), text + "7");
    }
}

TYPED_TEST(StringFormatTest, FormatSetsAsideWhatTheWalkSays) {
    TypeParam s;
    s.Format(Units<TypeParam>("%d").c_str(), 5);
    EXPECT_EQ(AllocOf(s), 33);
    EXPECT_EQ(RefsOf(s), 1);
}

TYPED_TEST(StringFormatTest, FormatReplacesTheTextAndLeavesCopies) {
    TypeParam s(this->T("a longer old text")), copy(s);
    s.Format(Units<TypeParam>("%d").c_str(), 5);
    EXPECT_EQ(Ascii(s), "5");
    EXPECT_EQ(Ascii(copy), "a longer old text");
    auto text = s.GetData(0);
    s.Format(Units<TypeParam>("%d").c_str(), 6);
    EXPECT_EQ(s.GetData(0), text);
    EXPECT_EQ(Ascii(s), "6");
}

TYPED_TEST(StringFormatTest, FormatMayTakeTheOwnTextAsAnArgument) {
    const char* format = sizeof(UnitOf<TypeParam>) == 1 ? "<%hs|%hs>" : "<%ls|%ls>";
    TypeParam s(this->T("abc"));
    s.Format(Units<TypeParam>(format).c_str(), s.GetData(0), s.GetData(1));
    EXPECT_EQ(Ascii(s), "<abc|bc>");
    TypeParam large(std::basic_string<UnitOf<TypeParam>>(600, 'x').c_str());
    large.Format(Units<TypeParam>(format).c_str(), large.GetData(0), large.GetData(599));
    EXPECT_EQ(Ascii(large), "<" + std::string(600, 'x') + "|x>");
}

TYPED_TEST(StringFormatTest, ANullFormatGivesAnEmptyText) {
    TypeParam s(this->T("abc"));
    const UnitOf<TypeParam>* none = nullptr;
    s.Format(none);
    EXPECT_EQ(Ascii(s), "");
}

TEST(StringFormatNarrowTest, SmallSIsNarrowAndLargeSIsWide) {
    Probe p;
    EXPECT_EQ(p.Sized("%s", "abcd"), 4);
    EXPECT_EQ(p.Sized("%S", L"abcde"), 5);
    EXPECT_EQ(p.Sized("%.2s", "abcdef"), 2);
    EXPECT_EQ(p.Sized("%Fs%Ls%Ns", "a", "bc", "def"), 6);
    CXString s;
    s.Format("%s-%S", "narrow", L"wide");
    EXPECT_STREQ(s, "narrow-wide");
    s.Format("%s: %d items, %.3f", "abc", 5, 1.5);
    EXPECT_STREQ(s, "abc: 5 items, 1.500");
}

TEST(StringFormatNarrowTest, BytesAboveAsciiPassInEachCodePage) {
    for (int number : {1252, 932}) {
        CodePage page(number);
        std::string text = std::string("\xE4") + kSo + kA;
        CXString s;
        s.Format((text + "|%s|%7s|%.3s|%c").c_str(), text.c_str(), kSo, text.c_str(), 0xB1);
        EXPECT_EQ(std::string(s),
                  text + "|" + text + "|     " + kSo + "|" + text.substr(0, 3) + "|\xB1");
        EXPECT_EQ(Probe().Sized("%s", text.c_str()), 5);
    }
}

// A wide text counts its units, of which each may become two bytes.
TEST(StringFormatNarrowTest, AWideTextThatTakesMoreBytesThanUnitsIsWhole) {
    std::string old = setlocale(LC_CTYPE, nullptr);
    ASSERT_TRUE(setlocale(LC_CTYPE, "Japanese_Japan.932"));
    for (size_t n : {5u, 300u, 1000u}) {
        std::wstring wide(n, L'\u3042');
        std::string expected;
        for (size_t i = 0; i < n; ++i) expected += kA;
        EXPECT_EQ(Probe().Sized("%S", wide.c_str()), static_cast<int>(n));
        CXString s;
        s.Format("%S|%d", wide.c_str(), 7);
        EXPECT_EQ(std::string(s), expected + "|7");
    }
    setlocale(LC_CTYPE, old.c_str());
}

TEST(StringFormatWideTest, SmallSIsWideAndLargeSIsNarrow) {
    ProbeW p;
    EXPECT_EQ(p.Sized(L"%s", L"abcd"), 4);
    EXPECT_EQ(p.Sized(L"%S", "abcde"), 5);
    EXPECT_EQ(p.Sized(L"%.2s", L"abcdef"), 2);
    EXPECT_EQ(p.Sized(L"%Fs%Ls%Ns", L"a", L"bc", L"def"), 6);
    CXStringW s;
    s.Format(L"%s-%S", L"wide\u4E2D", "narrow");
    EXPECT_STREQ(s, L"wide\u4E2D-narrow");
}

TEST(StringFormatWideTest, TypesBeyondAsciiAreUnknown) {
    EXPECT_EQ(ProbeW().Sized(L"%\u0164%\u0473"), 0);
    EXPECT_EQ(Probe().Sized("%\xE4"), 0);
}
