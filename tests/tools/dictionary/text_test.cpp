#include "tools/qxtranslate/model/dictionary/text.h"
#include "tools/qxtranslate/model/text/bad_input.h"
#include "tools/qxtranslate/platform/platform.h"

#include <gtest/gtest.h>

namespace {

using qx::Dictionary;
using qx::PlaceKind;

const qx::CodePage& Western() {
    static auto page = qx::OpenCodePage(1252);
    return *page;
}
const qx::CodePage& Japanese() {
    static auto page = qx::OpenCodePage(932);
    return *page;
}

std::string Pairs(const std::string& file, const qx::CodePage& page = Western()) {
    std::string pairs;
    for (auto& entry : qx::ReadDictionary(file, page).entries)
        pairs += entry.source + "=" + entry.target + ";";
    return pairs;
}

TEST(DictionaryTextTest, LinesFormPairsAndOthersArePassedOver) {
    EXPECT_EQ(Pairs("; c\r\n\"a\"\r\nnone\r\n\r\n  \"b\"  \r\n\"c\"\r\n\"\"\r\n"), "a=b;c=;");
}

TEST(DictionaryTextTest, ABareEmptyLineEndsTheFile) {
    EXPECT_EQ(Pairs("\"a\"\n\"b\"\n\n\"c\"\n\"d\"\n"), "a=b;");
}

TEST(DictionaryTextTest, TheLastByteGoesWhateverItIs) {
    EXPECT_EQ(Pairs("\"abc\r\n\"d\"x\r\n"), "ab=d\";");
}

TEST(DictionaryTextTest, ALoneQuoteIsTooShort) {
    EXPECT_EQ(Pairs("\"\r\n\"a\"\r\n\"b\"\r\n"), "a=b;");
}

TEST(DictionaryTextTest, WithoutALineEndTheClosingQuoteStays) {
    EXPECT_EQ(Pairs("\"a\"\r\n\"b\""), "a=b\";");
}

TEST(DictionaryTextTest, AKeyWithoutAValueGetsTheOneBefore) {
    EXPECT_EQ(Pairs("\"a\"\r\n\"b\"\r\n\"c\"\r\n"), "a=b;c=b;");
}

TEST(DictionaryTextTest, TheFirstTranslationStands) {
    EXPECT_EQ(Pairs("\"a\"\r\n\"b\"\r\n\"a\"\r\n\"c\"\r\n"), "a=b;");
}

TEST(DictionaryTextTest, EscapesAreReadAsTheProgramDoes) {
    EXPECT_EQ(Pairs("\"\\n\\r\\t\"\r\n\"c:\\data\\\\x\\\"\r\n"), "\n\r\t=c:\\data\\x;");
}

TEST(DictionaryTextTest, ATrailByteIsNoBackslash) {
    // U+8868 is 95 5C in code page 932.
    EXPECT_EQ(Pairs("\"\x95\x5Cn\"\r\n\"x\"\r\n", Japanese()), "\x95\x5Cn=x;");
    EXPECT_EQ(qx::WhyUnwritable({"\x95\x5Cn", "\x95\x5C", 0}, Japanese()), "");
}

TEST(DictionaryTextTest, ThreeSettingsMakeAFont) {
    const std::string two = "\"DialogFontName\"\r\n\"Tahoma\"\r\n\"DialogFontSize\"\r\n\"9\"\r\n";
    EXPECT_FALSE(qx::ReadDictionary(two, Western()).font);
    auto font = qx::ReadDictionary(two + "\"DialogFontScript\"\r\n\"204\"\r\n", Western()).font;
    ASSERT_TRUE(font);
    EXPECT_EQ(*font, (qx::DialogFont{"Tahoma", 204, 9}));
}

TEST(DictionaryTextTest, ALineThatIsTooLongIsRefused) {
    std::string line = "\"" + std::string(8188, 'x') + "\"\r\n";
    EXPECT_THROW(qx::ReadDictionary(line, Western()), qx::BadInput);
}

TEST(DictionaryTextTest, WhatIsWrittenIsReadBack) {
    Dictionary dictionary;
    dictionary.font = qx::DialogFont{"MS UI Gothic", 128, 9};
    dictionary.entries = {
        {"a\nb\r\tc", "\"quoted\" ;", 0}, {" blank ", "", 0}, {"c:\\data", "x", 0}};
    Dictionary back = qx::ReadDictionary(qx::WriteDictionary(dictionary), Western());
    EXPECT_EQ(back.entries, dictionary.entries);
    EXPECT_EQ(back.font, dictionary.font);
}

TEST(DictionaryTextTest, BackslashesWithoutAFormAreUnwritable) {
    for (const char* text : {"c:\\new", "a\\\\b", "end\\", "c:\\rest", "\\t"})
        EXPECT_NE(qx::WhyUnwritable({text, "x", 0}, Western()), "") << text;
    EXPECT_EQ(qx::WhyUnwritable({"c:\\data", "d:\\Namen", 0}, Western()), "");
    EXPECT_NE(qx::WhyUnwritable({"a", std::string(8188, 'x'), 0}, Western()), "");
    EXPECT_NE(qx::WhyUnwritable({"DialogFontName", "x", 0}, Western()), "");
}

TEST(DictionaryTextTest, TheKeyOfAPlaceHasTwoMarkerBytes) {
    qx::Context context = {"view.dll", PlaceKind::Dialog, "130"};
    auto key = qx::ContextKey(context, Western());
    EXPECT_EQ(key, "view.dll#1#130\xFD\xFD");
    std::string source = *key + "Open";
    EXPECT_EQ(qx::ContextKeySize(source), key->size());
    EXPECT_EQ(qx::ParseContextKey(*key, Western()), context);
    EXPECT_EQ(qx::ContextKeySize("C# code#1#x"), 0u);
    EXPECT_EQ(qx::ContextKeySize("a#4#1\xFD\xFDx"), 0u);
}

TEST(DictionaryTextTest, TheHashTakesBytesAsSignedNumbers) {
    EXPECT_EQ(qx::HashText("ab"), 97u * 257 + 98);
    EXPECT_EQ(qx::HashText("\xFF"), 0xFFFFFFFFu);
    EXPECT_EQ(qx::HashText("sdsddyb"), qx::HashText("uapfpjg"));
}

TEST(CodePageTest, UndefinedBytesOfWesternPagesAreControls) {
    EXPECT_EQ(Western().Decode("\x81"), "\xC2\x81");
    EXPECT_EQ(Western().Encode("\xC2\x81"), "\x81");
    EXPECT_EQ(Western().Encode("\xE2\x82\xAC"), "\x80");
    EXPECT_EQ(Western().Encode("\xD0\x96"), std::nullopt);
}

TEST(CodePageTest, LeadBytesAreKnown) {
    EXPECT_TRUE(Japanese().IsLead(0x95));
    EXPECT_FALSE(Japanese().IsLead(0xB1));
    EXPECT_FALSE(Western().IsLead(0x95));
}

TEST(CodePageTest, AnUnknownNumberIsRefused) {
    EXPECT_THROW(qx::OpenCodePage(4711), qx::BadInput);
    EXPECT_THROW(qx::OpenCodePage(0), qx::BadInput);
}

}  // namespace
