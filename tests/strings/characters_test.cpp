#include "strings/characters.h"

#include "string_probe.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace {

using qx::Characters;

// A text cut into its characters by nothing but the rule: a lead byte takes the byte behind it.
// Half a character, which can only be the last one, is left out.
std::vector<std::string> CharactersOf(const std::string& text) {
    std::vector<std::string> all;
    for (size_t at = 0; at < text.size();) {
        auto byte = static_cast<unsigned char>(text[at]);
        size_t size = (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC) ? 2 : 1;
        if (at + size <= text.size()) all.push_back(text.substr(at, size));
        at += size;
    }
    return all;
}

// Long runs of ASCII as well as dense double-byte text, and now and then half a character.
std::string RandomText(std::mt19937& random, size_t longest) {
    static const char* const kPieces[] = {
        "a",    "\\",  "A", "\xB1",     "\x82\xA0", "\x83\x5C", ".",
        "\x81", "X:/", " ", "\x83\x41", "\x81\x81", "\xE0",     "plain ascii text of some length"};
    std::string text;
    size_t pieces = random() % (longest + 1);
    for (size_t i = 0; i < pieces; ++i) text += kPieces[random() % std::size(kPieces)];
    return text;
}

struct CharactersTest : JapaneseTest {
    Characters characters = Characters::OfRuntime();

    // Where the characters begin, and behind the last one.
    static std::vector<size_t> Places(const std::vector<std::string>& all) {
        std::vector<size_t> places = {0};
        for (const std::string& one : all) places.push_back(places.back() + one.size());
        return places;
    }
    static ptrdiff_t Offset(const char* found, const std::string& text) {
        return found ? found - text.c_str() : -1;
    }
};

TEST_F(CharactersTest, ALeadByteTakesTheByteBehindIt) {
    EXPECT_TRUE(characters.HasDoubleByte());
    EXPECT_FALSE(characters.IsUtf8());
    EXPECT_TRUE(characters.Leads('\x81'));
    EXPECT_TRUE(characters.Leads('\x9F'));
    EXPECT_TRUE(characters.Leads('\xE0'));
    EXPECT_TRUE(characters.Leads('\xFC'));
    EXPECT_FALSE(characters.Leads('\x80'));
    EXPECT_FALSE(characters.Leads('\xA0'));
    EXPECT_FALSE(characters.Leads('\xDF'));
    EXPECT_FALSE(characters.Leads('\xFD'));
    EXPECT_FALSE(characters.Leads('a'));
    EXPECT_FALSE(characters.Leads('\0'));
    EXPECT_EQ(characters.SizeAt(kSo), 2u);
    EXPECT_EQ(characters.SizeAt(kHalfA), 1u);
}

TEST_F(CharactersTest, HalfACharacterIsOneByteButNoWholeCharacter) {
    const char text[] = "\x83";
    EXPECT_EQ(characters.SizeAt(text), 1u);
    EXPECT_EQ(characters.WholeSizeAt(text), 0u);
    EXPECT_EQ(characters.WholeSizeAt(""), 0u);
    EXPECT_EQ(characters.Count("a\x83", 2), 1u);
    EXPECT_FALSE(characters.IsIn("ab\x83", text));
    EXPECT_EQ(characters.FindAny(text, "\x83"), nullptr);
}

TEST_F(CharactersTest, AnEndHidesTheByteBehindIt) {
    EXPECT_EQ(characters.SizeAt(kSo, kSo + 1), 1u);
    EXPECT_EQ(characters.SizeAt(kSo, kSo + 2), 2u);
    const char zeroTrail[] = "\x83\0x";
    EXPECT_EQ(characters.Next(zeroTrail, zeroTrail + 3), zeroTrail + 2);
    EXPECT_EQ(characters.Previous(zeroTrail, zeroTrail + 2), zeroTrail);
}

TEST_F(CharactersTest, ATrailByteThatLooksLikeABackslashIsNone) {
    const char path[] = "c:\\\x83\x5C.txt";
    EXPECT_EQ(characters.Find(path + 3, '\\'), nullptr);
    EXPECT_EQ(characters.FindLast(path, '\\'), path + 2);
    EXPECT_EQ(characters.FindLastAny(path, ":\\/"), path + 2);
    EXPECT_EQ(characters.FindAny(path + 3, "\\."), path + 5);
    EXPECT_EQ(characters.FindText(path, "\x5C."), nullptr);
    EXPECT_EQ(characters.FindText(path, ""), path);
}

TEST_F(CharactersTest, ADoubleByteCharacterIsInASetAsAWhole) {
    EXPECT_TRUE(characters.IsIn("x\x83\x5Cy", kSo));
    EXPECT_FALSE(characters.IsIn("\x83\x41\\", kSo));
    EXPECT_FALSE(characters.IsIn(kSo, "\\"));
    EXPECT_STREQ(characters.FindAny("A\x83\x41", kAa), kAa);
}

TEST_F(CharactersTest, ACutKeepsCharactersWhole) {
    EXPECT_EQ(characters.WholeBytes("ab\x83\x5C", 3), 2u);
    EXPECT_EQ(characters.WholeBytes("ab\x83\x5C", 4), 4u);
    EXPECT_EQ(characters.WholeBytes("ab\x83\x5C", 9), 4u);
    EXPECT_EQ(characters.WholeBytes("ab", 0), 0u);
    char buffer[4];
    EXPECT_EQ(characters.CopyWhole(buffer, sizeof buffer, "ab\x83\x5C"), 2u);
    EXPECT_STREQ(buffer, "ab");
    EXPECT_EQ(characters.CopyWhole(buffer, 1, "ab"), 0u);
    EXPECT_STREQ(buffer, "");
}

TEST_F(CharactersTest, ATextThatFitsKeepsItsHalfCharacter) {
    EXPECT_EQ(characters.WholeBytes("ab\x83", 5), 3u);
    char buffer[5] = "ab\x83";
    characters.EndAtWholeCharacter(buffer, sizeof buffer);
    EXPECT_STREQ(buffer, "ab\x83");
}

TEST_F(CharactersTest, AFilledBufferLosesItsHalfCharacter) {
    char cut[4] = {'a', 'b', '\x83', 'x'};
    characters.EndAtWholeCharacter(cut, sizeof cut);
    EXPECT_STREQ(cut, "ab");
    char whole[4] = {'a', '\x83', '\x83', 'x'};
    characters.EndAtWholeCharacter(whole, sizeof whole);
    EXPECT_STREQ(whole, "a\x83\x83");
    char nothing[1] = {'x'};
    characters.EndAtWholeCharacter(nothing, 1);
    EXPECT_STREQ(nothing, "");
}

TEST_F(CharactersTest, BlanksGoFromBothEndsByCharacters) {
    auto isBackslash = [](const char* at) { return *at == '\\'; };
    const std::string text = "\\\\a\x83\x5C\\\\";
    const char* end = text.c_str() + text.size();
    EXPECT_EQ(characters.SkipWhile(text.c_str(), end, isBackslash), text.c_str() + 2);
    EXPECT_EQ(characters.Trim(text.c_str(), end, isBackslash), text.c_str() + 5);
}

TEST_F(CharactersTest, EverySearchAndStepAgreesWithAListOfTheCharacters) {
    std::mt19937 random(932);
    for (int round = 0; round < 1500 && !HasFailure(); ++round) {
        const std::string text = RandomText(random, 12);
        const std::string set = RandomText(random, 3);
        const auto all = CharactersOf(text), wanted = CharactersOf(set);
        const auto places = Places(all);

        ptrdiff_t first = -1, last = -1, firstDot = -1, lastBackslash = -1;
        for (size_t i = 0; i < all.size(); ++i) {
            auto place = static_cast<ptrdiff_t>(places[i]);
            bool isWanted = std::count(wanted.begin(), wanted.end(), all[i]) > 0;
            if (isWanted && first < 0) first = place;
            if (isWanted) last = place;
            if (all[i] == "." && firstDot < 0) firstDot = place;
            if (all[i] == "\\") lastBackslash = place;
            EXPECT_EQ(characters.IsIn(set.c_str(), text.c_str() + place), isWanted);
            EXPECT_EQ(characters.Next(text.c_str() + place), text.c_str() + places[i + 1]);
            EXPECT_EQ(characters.Previous(text.c_str(), text.c_str() + places[i + 1]),
                      text.c_str() + place);
            EXPECT_EQ(characters.Skip(text.c_str(), i), text.c_str() + place);
            EXPECT_EQ(characters.Count(text.c_str(), static_cast<size_t>(place)), i);
        }
        EXPECT_EQ(Offset(characters.FindAny(text.c_str(), set.c_str()), text), first);
        EXPECT_EQ(Offset(characters.FindLastAny(text.c_str(), set.c_str()), text), last);
        EXPECT_EQ(Offset(characters.Find(text.c_str(), '.'), text), firstDot);
        EXPECT_EQ(Offset(characters.FindLast(text.c_str(), '\\'), text), lastBackslash);
        EXPECT_EQ(characters.Skip(text.c_str(), all.size() + 5), text.c_str() + places.back());

        for (size_t limit = 0; limit <= text.size() + 1; ++limit) {
            size_t whole = text.size();
            if (limit < whole) whole = *--std::upper_bound(places.begin(), places.end(), limit);
            EXPECT_EQ(characters.WholeBytes(text.c_str(), limit), whole) << limit;
        }
        EXPECT_FALSE(HasFailure())
            << testing::PrintToString(set) << " in " << testing::PrintToString(text);
    }
}

TEST(CharactersOfOneByteTest, EachByteIsACharacter) {
    CodePage page(1252);
    Characters characters = Characters::OfRuntime();
    EXPECT_FALSE(characters.HasDoubleByte());
    EXPECT_EQ(characters.SizeAt("\x83\x5C"), 1u);
    EXPECT_STREQ(characters.Find("\x83\x5C", '\\'), "\\");
    EXPECT_EQ(characters.WholeBytes("ab\x83\x5C", 3), 3u);
    EXPECT_EQ(characters.EncodedSizeAt("\x83\x5C"), 1u);
    char cut[4] = {'a', 'b', '\x83', 'x'};
    characters.EndAtWholeCharacter(cut, sizeof cut);
    EXPECT_STREQ(cut, "ab\x83");
}

TEST(CharactersOfOneByteTest, EveryCodePageKeepsItsLeadBytesWhileOthersAreAskedFor) {
    for (int round = 0; round < 3; ++round) {
        for (int number : {932, 1252, 949, 936, 950, 1251, 1250, 1253, 1254, 1255, 1256, 1257}) {
            CodePage page(number);
            ASSERT_EQ(_getmbcp(), number);
            Characters characters = Characters::OfRuntime();
            for (unsigned c = 0; c <= 0xFF; ++c)
                EXPECT_EQ(characters.Leads(static_cast<char>(c)), _ismbblead(c) != 0)
                    << number << ": " << c;
        }
    }
}

TEST(CharactersOfTheProcessTest, LeadWhatTheSystemSays) {
    Characters characters = Characters::OfProcess();
    for (unsigned c = 0; c <= 0xFF; ++c)
        EXPECT_EQ(characters.Leads(static_cast<char>(c)),
                  IsDBCSLeadByte(static_cast<BYTE>(c)) != 0);
    EXPECT_EQ(characters.IsUtf8(), GetACP() == 65001);
}

}  // namespace
