// Narrow texts in a process whose code page is UTF-8: positions are bytes, and what cuts a text by
// itself keeps the sequences whole.
#include "strings/characters.h"
#include "strings/string_probe.h"

#include <clocale>
#include <random>
#include <vector>

namespace {

using qx::Characters;

constexpr char kUmlaut[] = "\xC3\xA4";         // two bytes
constexpr char kHiragana[] = "\xE3\x81\x82";   // three
constexpr char kSmile[] = "\xF0\x9F\x98\x80";  // four
constexpr char kGrave[] = "\xC3\xA0";          // its last byte is white space in single-byte pages

constexpr wchar_t kFourWide[] = L"\u3042\u3044\u3046\u30BD";
constexpr char kFour[] = "\xE3\x81\x82\xE3\x81\x84\xE3\x81\x86\xE3\x82\xBD";

}  // namespace

TEST(StringUtf8Test, TheCodePageIsTheOneThatTheseTestsNeed) {
    ASSERT_EQ(GetACP(), 65001u);
    for (auto characters : {Characters::OfRuntime(), Characters::OfProcess()}) {
        EXPECT_TRUE(characters.IsUtf8());
        EXPECT_FALSE(characters.HasDoubleByte());
    }
}

TEST(StringUtf8Test, PositionsAreBytes) {
    CXString s = CXString("x") + kUmlaut + "\\" + kHiragana;
    EXPECT_EQ(s.GetLength(), 7);
    EXPECT_EQ(s.GetSize(3), 3);
    EXPECT_EQ(s.GetAt(1), 0xC3);
    EXPECT_EQ(s.GetAt(2), 0xA4);
    EXPECT_EQ(s.GetAt(7), 0);
    EXPECT_EQ(s.Find(kHiragana), 4);
    EXPECT_EQ(s.Find(L'\\'), 3);
    EXPECT_EQ(s.FindRev(wchar_t(0xA4)), 2);
    EXPECT_EQ(s.FindRevOnOf(":\\/"), 3);
    EXPECT_EQ(s.FindOnOf(kHiragana), 4);
    EXPECT_STREQ(CXString(s).Insert(3, kSmile), "x\xC3\xA4\xF0\x9F\x98\x80\\\xE3\x81\x82");
    EXPECT_STREQ(CXString(s).Delete(1, 2), "x\\\xE3\x81\x82");
    CXString out;
    EXPECT_EQ(s.Extract(4, 3, out), 3);
    EXPECT_STREQ(out, kHiragana);
}

TEST(StringUtf8Test, HalfASequenceCountsByBytesToo) {
    CXString s("ab\xE3\x81");
    EXPECT_EQ(s.GetLength(), 4);
    EXPECT_EQ(s.GetAt(2), 0xE3);
    EXPECT_EQ(s.Find(wchar_t(0xE3)), 2);
    EXPECT_EQ(s.CompareN("ab\xE3\x81\x82", 4), 0);
    s.Upper();
    EXPECT_STREQ(s, "AB\xE3\x81");
}

TEST(StringUtf8Test, CopyFitKeepsSequencesWhole) {
    CXString s = CXString("x") + kUmlaut + kHiragana + kSmile;  // 1, 3, 6 and 10 bytes
    char buf[16];
    const int fits[] = {0, 0, 1, 1, 3, 3, 3, 6, 6, 6, 6, 10, 10};
    for (int size = 1; size <= 12; ++size) {
        EXPECT_EQ(s.CopyFit(buf, size), fits[size]) << size;
        EXPECT_EQ(std::string(buf), std::string(s).substr(0, fits[size]));
    }
}

TEST(StringUtf8Test, WhatIsNoSequenceIsCutByBytes) {
    const auto characters = Characters::OfRuntime();
    EXPECT_EQ(characters.WholeBytes("\x81\x82\x83\x84\x85\x86", 4), 4u);  // nothing began it
    EXPECT_EQ(characters.WholeBytes("a\xE3xyz", 2), 2u);                  // it does not go on
    EXPECT_EQ(characters.WholeBytes("a\xC3\xA4\xA4\xA4", 4), 4u);         // it ended before
    EXPECT_EQ(characters.WholeBytes("ab\xE3\x81", 9), 4u);                // nothing is cut
    EXPECT_EQ(characters.WholeBytes("ab\xE3\x81", 4), 4u);
    EXPECT_EQ(characters.WholeBytes("ab\xE3\x81\x82", 4), 2u);
    EXPECT_EQ(characters.WholeBytes("\xC0\x80\x80", 1), 1u);  // begins no sequence
    EXPECT_EQ(characters.WholeBytes("\xF5\x80\x80", 1), 1u);
}

TEST(StringUtf8Test, AFilledBufferLosesTheSequenceThatIsNotWhole) {
    const auto characters = Characters::OfRuntime();
    const std::string text = std::string("ab") + kSmile + "c";
    for (size_t size : {1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u}) {
        std::string buffer = text.substr(0, size - 1) + "#";
        characters.EndAtWholeCharacter(buffer.data(), size);
        size_t whole = size - 1 < 2 ? size - 1 : size - 1 < 6 ? 2 : size - 1;
        EXPECT_EQ(std::string(buffer.c_str()), text.substr(0, whole)) << size;
    }
    char short_[8] = "ab\xF0\x9F";
    characters.EndAtWholeCharacter(short_, sizeof short_);
    EXPECT_STREQ(short_, "ab\xF0\x9F");
}

TEST(StringUtf8Test, EveryCutOfASoundTextIsSound) {
    const auto characters = Characters::OfRuntime();
    const char* const pieces[] = {"a", "plain text", kUmlaut, kHiragana, kSmile, "\\"};
    std::mt19937 random(65001);
    for (int round = 0; round < 500; ++round) {
        std::string text;
        std::vector<size_t> places = {0};
        for (unsigned n = random() % 12; n; --n) {
            const std::string piece = pieces[random() % std::size(pieces)];
            for (size_t i = 0; i < piece.size(); ++i) {
                if (piece[i] >= 0 || i + 1 == piece.size()) places.push_back(text.size() + i + 1);
            }
            text += piece;
        }
        for (size_t limit = 0; limit <= text.size() + 1; ++limit) {
            size_t whole = *--std::upper_bound(places.begin(), places.end(), limit);
            EXPECT_EQ(characters.WholeBytes(text.c_str(), limit), whole);
            std::vector<char> buffer(limit + 1, '#');
            EXPECT_EQ(characters.CopyWhole(buffer.data(), limit + 1, text.c_str()), whole);
            EXPECT_EQ(std::string(buffer.data()), text.substr(0, whole));
        }
    }
}

TEST(StringUtf8Test, ASequenceIsOneEncodedCharacter) {
    const auto characters = Characters::OfProcess();
    EXPECT_EQ(characters.EncodedSizeAt("x"), 1u);
    EXPECT_EQ(characters.EncodedSizeAt(kUmlaut), 2u);
    EXPECT_EQ(characters.EncodedSizeAt(kHiragana), 3u);
    EXPECT_EQ(characters.EncodedSizeAt(kSmile), 4u);
    EXPECT_EQ(characters.EncodedSizeAt("\xE3\x81"), 1u);
    EXPECT_EQ(characters.EncodedSizeAt("\x81\x82"), 1u);
    EXPECT_EQ(characters.SizeAt(kSmile), 1u);
}

TEST(StringUtf8Test, ConversionsKeepEachCharacter) {
    EXPECT_STREQ(CXString(kFourWide), kFour);
    EXPECT_STREQ(CXStringW(kFour), kFourWide);
    EXPECT_STREQ(CXString(L"\xD83D\xDE00"), kSmile);
    EXPECT_STREQ(CXStringW(kSmile), L"\xD83D\xDE00");
    CXString narrow("old");
    narrow = kFourWide;
    EXPECT_STREQ(narrow, kFour);
    EXPECT_EQ(AllocOf(narrow), 13);
    CXStringW wide(L"old");
    wide = kFour;
    EXPECT_STREQ(wide, kFourWide);
    EXPECT_EQ(AllocOf(wide), 2 * 12 + 2);
}

TEST(StringUtf8Test, ResourcesAreWholeWhereverTheBufferEnds) {
    HINSTANCE own = GetModuleHandleA(nullptr);
    for (unsigned id : {1u, 253u, 254u, 255u}) {
        int letters = id == 1 ? 0 : static_cast<int>(id);
        CXString narrow;
        ASSERT_EQ(narrow.Load(own, id), 1) << id;
        EXPECT_EQ(narrow.GetLength(), letters + 12) << id;
        EXPECT_STREQ(narrow.GetData(letters), kFour) << id;
    }
}

TEST(StringUtf8Test, TrimmingTakesNoPartOfASequence) {
    ASSERT_TRUE(setlocale(LC_CTYPE, "English_United States.1252"));
    ASSERT_TRUE(isspace(0xA0));
    CXString s = CXString(" ") + kGrave + " ";
    s.TrimLeft();
    s.TrimRight();
    setlocale(LC_CTYPE, "C");
    EXPECT_STREQ(s, kGrave);
}

TEST(StringUtf8Test, PathsGoByBytes) {
    CXString path = CXString("c:\\") + kUmlaut + "\\" + kHiragana + "." + kSmile;
    EXPECT_STREQ(path.FilePath(), "c:\\\xC3\xA4");
    EXPECT_STREQ(path.FileExt(), kSmile);
    char buf[16];
    EXPECT_EQ(path.GetFileName(buf), 3);
    EXPECT_STREQ(buf, kHiragana);
    CXString shown = CXString("c:\\aaa\\") + kHiragana + kHiragana + "\\" + kHiragana + "\\f.txt";
    EXPECT_EQ(shown.GetLength(), 23);
    EXPECT_EQ(shown.ReducePathString(20), 1);
    EXPECT_STREQ(shown, "c:\\aaa\\...\\\xE3\x81\x82\\f.txt");
}
