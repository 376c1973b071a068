// Strings where the system's code page has double-byte characters: conversions and resources, which
// go through it, and the runtime's code page, which is then the same one without being set.
#include "strings/string_probe.h"

namespace {

constexpr wchar_t kFourWide[] = L"\u3042\u3044\u3046\u30BD";
const std::string kFour = std::string(kA) + kI + kU + kSo;

}  // namespace

TEST(StringSystemCodePageTest, IsTheOneThatTheseTestsNeed) {
    EXPECT_EQ(GetACP(), 932u);
}

TEST(StringSystemCodePageTest, CharactersHaveTwoBytesFromTheStart) {
    CXString s((kFour + "\\").c_str());
    EXPECT_EQ(s.GetLength(), 5);
    EXPECT_EQ(s.Find(L'\\'), 4);
    EXPECT_EQ(s.GetAt(0), kACode);
}

TEST(StringSystemCodePageTest, ConversionsKeepEachCharacter) {
    EXPECT_STREQ(CXString(kFourWide), kFour.c_str());
    EXPECT_STREQ(CXStringW(kFour.c_str()), kFourWide);
    CXString narrow("old");
    narrow = kFourWide;
    EXPECT_STREQ(narrow, kFour.c_str());
    EXPECT_EQ(AllocOf(narrow), 9);
    CXStringW wide(L"old");
    wide = kFour.c_str();
    EXPECT_STREQ(wide, kFourWide);
    EXPECT_EQ(AllocOf(wide), 2 * 8 + 2);
}

TEST(StringSystemCodePageTest, ATextWithoutItsLastByteIsConvertedAsTheSystemDoes) {
    wchar_t expected[8];
    ASSERT_GT(MultiByteToWideChar(CP_ACP, 0, "a\x82", -1, expected, 8), 0);
    EXPECT_STREQ(CXStringW("a\x82"), expected);
}

TEST(StringSystemCodePageTest, ResourcesAreWholeWhereverTheBufferEnds) {
    HINSTANCE own = GetModuleHandleA(nullptr);
    for (unsigned id : {1u, 253u, 254u, 255u}) {
        int letters = id == 1 ? 0 : static_cast<int>(id);
        CXString narrow;
        ASSERT_EQ(narrow.Load(own, id), 1) << id;
        EXPECT_EQ(narrow.GetLength(), letters + 4) << id;
        EXPECT_EQ(narrow.GetSize(), letters + 8) << id;
        EXPECT_STREQ(narrow.GetData(letters), kFour.c_str()) << id;
        CXStringW wide;
        ASSERT_EQ(wide.Load(own, id), 1) << id;
        EXPECT_EQ(wide.GetLength(), letters + 4) << id;
        EXPECT_STREQ(wide.GetData(letters), kFourWide) << id;
    }
}
