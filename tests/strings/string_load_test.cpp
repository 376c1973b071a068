// String resources, from the test program's own table.
#include "strings/string_probe.h"

namespace {

std::string Numbered(int characters) {
    std::string text;
    for (int i = 0; i < characters / 10; ++i) {
        text += static_cast<char>('0' + i / 10);
        text += static_cast<char>('0' + i % 10);
        text += "________";
    }
    return text;
}

HINSTANCE Own() {
    return GetModuleHandleA(nullptr);
}

}  // namespace

template <class S>
struct StringLoadTest : BothStrings<S> {};
TYPED_TEST_SUITE(StringLoadTest, BothStringClasses);

TYPED_TEST(StringLoadTest, AShortTextIsLoadedInPlaceOfTheOldOne) {
    TypeParam s(this->T("old")), copy(s);
    EXPECT_EQ(s.Load(Own(), 1), 1);
    EXPECT_EQ(Ascii(s), "abc");
    EXPECT_EQ(Ascii(copy), "old");
    EXPECT_EQ(RefsOf(s), 1);
}

TYPED_TEST(StringLoadTest, AMissingTextAnswersZero) {
    TypeParam s;
    EXPECT_EQ(s.Load(Own(), 2), 0);
    EXPECT_EQ(s.Load(Own(), 5000), 0);
    EXPECT_EQ(Ascii(s), "");
    EXPECT_EQ(RefsOf(s), -1);
}

TYPED_TEST(StringLoadTest, TextsThatJustFillTheFirstBufferAreWhole) {
    const char* tails[] = {"abc", "abcd", "abcde", "abcdef"};
    CPINFO codePage;
    ASSERT_TRUE(GetCPInfo(CP_ACP, &codePage));
    const int largest = sizeof(UnitOf<TypeParam>) == 1 ? static_cast<int>(codePage.MaxCharSize) : 1;
    for (unsigned id = 3; id <= 6; ++id) {
        TypeParam s;
        EXPECT_EQ(s.Load(Own(), id), 1);
        EXPECT_EQ(Ascii(s), Numbered(250) + tails[id - 3]);
        // Of 256 units one is the terminator's, and a text that leaves no room for one more
        // character may have been cut.
        EXPECT_EQ(AllocOf(s), s.GetLength() < 256 - largest ? 257 : 513);
    }
}

TYPED_TEST(StringLoadTest, ATextOfSixHundredCharactersTakesThreeTriesAndIsWhole) {
    TypeParam s;
    EXPECT_EQ(s.Load(Own(), 600), 1);
    EXPECT_EQ(Ascii(s), Numbered(600));
    EXPECT_EQ(s.GetLength(), 600);
    // Three steps of 256 units and the terminator.
    EXPECT_EQ(AllocOf(s), 769);
}
