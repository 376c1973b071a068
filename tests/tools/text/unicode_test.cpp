#include "tools/qxtranslate/model/text/unicode.h"

#include <gtest/gtest.h>

namespace {

TEST(UnicodeTest, PairsOfSurrogatesBecomeOneCharacter) {
    EXPECT_EQ(qx::ToUtf8(u"a\u00E9\u20AC\U0001F600"), "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
}

TEST(UnicodeTest, HalfAPairBecomesTheReplacementCharacter) {
    EXPECT_EQ(qx::ToUtf8(std::u16string{0xD800, u'x'}), "\xEF\xBF\xBDx");
    EXPECT_EQ(qx::ToUtf8(std::u16string{u'x', 0xDC00}), "x\xEF\xBF\xBD");
}

TEST(UnicodeTest, LongFormsSurrogatesAndTornCharactersAreNoUtf8) {
    EXPECT_TRUE(qx::IsUtf8("\xF4\x8F\xBF\xBF"));
    for (const char* bad :
         {"\x80", "\xC0\x80", "\xC3", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xFF"})
        EXPECT_FALSE(qx::IsUtf8(bad)) << bad;
}

TEST(UnicodeTest, ALineOfADumpHoldsEveryText) {
    EXPECT_EQ(qx::EscapeLine("a\tb\nc\\d\re"), "a\\tb\\nc\\\\d\\re");
    EXPECT_EQ(qx::UnescapeLine(qx::EscapeLine("a\tb\nc\\nd\r")), "a\tb\nc\\nd\r");
}

}  // namespace
