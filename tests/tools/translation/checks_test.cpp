#include "tools/qxtranslate/model/translation/checks.h"

#include "tools/qxtranslate/platform/platform.h"

#include "tests/tools/po/entries.h"

#include <gtest/gtest.h>

namespace {

using qx::PoEntry;
using qx::PoFile;

// "error tab; warning dots; " and so on.
std::string Found(const std::vector<PoEntry>& entries, unsigned codePage = 1252) {
    PoFile po;
    po.entries = entries;
    unsigned line = 0;
    for (auto& entry : po.entries) entry.line = ++line;
    std::string found;
    for (auto& finding : qx::Check(po, qx::OpenCodePage(codePage).get())) {
        found += finding.severity == qx::Severity::Error ? "error " : "warning ";
        found += finding.check + "; ";
    }
    return found;
}

TEST(ChecksTest, AGoodTranslationHasNoFindings) {
    EXPECT_EQ(Found({Entry("&Open %s...\tCtrl+O", "%s \xC3\x96&ffnen...\tStrg+O")}), "");
}

TEST(ChecksTest, WhatMisleadsTheProgramIsAnError) {
    EXPECT_EQ(Found({Entry("%s", "%d")}), "error directive; ");
    EXPECT_EQ(Found({Entry("a", "c:\\new")}), "error unwritable; ");
    EXPECT_EQ(Found({Entry("a", "\xD0\x96")}), "error code-page; ");
    EXPECT_EQ(Found({Entry("\xD0\x96", "a")}), "error code-page; ");
    EXPECT_EQ(Found({Entry("Open\tCtrl+O", "Offen")}), "error tab; ");
    EXPECT_EQ(Found({Entry("sdsddyb", "1"), Entry("uapfpjg", "2")}), "error hash; ");
}

TEST(ChecksTest, AStringThatIsLongItselfHasRoomForALongTranslation) {
    std::string source(1024, 'a'), target(2000, 'x');
    EXPECT_EQ(Found({Entry(source, target, {"a.exe/strings/1/0"})}), "");
    EXPECT_EQ(Found({Entry(source, target, {"a.exe/menu/1/0"})}), "error too-long; ");
}

TEST(ChecksTest, TheBufferOfTheTextsKindCounts) {
    std::string menu(512, 'x'), text(1024, 'x');
    EXPECT_EQ(Found({Entry("a", menu, {"a.exe/menu/1/0"})}), "error too-long; ");
    EXPECT_EQ(Found({Entry("a", menu.substr(1), {"a.exe/menu/1/0"})}), "");
    EXPECT_EQ(Found({Entry("a", text, {"a.exe/strings/1/0"})}), "error too-long; ");
    EXPECT_EQ(Found({Entry("a", text.substr(1), {"a.exe/strings/1/0"})}), "");
    EXPECT_EQ(Found({Entry("a", text, {"a.exe/dialog/1/0"})}), "");
}

TEST(ChecksTest, LengthsAreBytesOfTheCodePage) {
    std::string kana;
    for (int i = 0; i < 256; ++i) kana += "\xE3\x81\x82";
    EXPECT_EQ(Found({Entry("a", kana, {"a.exe/menu/1/0"})}, 932), "error too-long; ");
}

TEST(ChecksTest, LostMarksAreWarnings) {
    EXPECT_EQ(Found({Entry("&Open", "Offen")}), "warning access-key; ");
    EXPECT_EQ(Found({Entry("Open...", "Offen")}), "warning dots; ");
    EXPECT_EQ(Found({Entry("Open", "Offen...")}), "warning dots; ");
    EXPECT_EQ(Found({Entry("Name:", "Name")}), "warning colon; ");
    EXPECT_EQ(Found({Entry(" a", "a")}), "warning blanks; ");
    EXPECT_EQ(Found({Entry("a ", "a  ")}), "warning blanks; ");
}

TEST(ChecksTest, AccessKeysClashOnlyWhereTheEnglishDoesNot) {
    std::vector<std::string> first = {"a.exe/menu/1/0/0"}, second = {"a.exe/menu/1/0/1"},
                             elsewhere = {"a.exe/menu/1/1/0"};
    EXPECT_EQ(Found({Entry("&One", "&Eins", first), Entry("&Two", "Zw&ei", second)}),
              "warning access-key-clash; ");
    EXPECT_EQ(Found({Entry("&One", "&Eins", first), Entry("&Two", "Zw&ei", elsewhere)}), "");
    EXPECT_EQ(Found({Entry("&One", "&Eins", first), Entry("Tw&o", "Zw&ei", second)}), "");
}

TEST(ChecksTest, FuzzyAndMissingEntriesArePassedOver) {
    PoEntry fuzzy = Entry("%s", "%d");
    fuzzy.SetFuzzy();
    EXPECT_EQ(Found({fuzzy, Entry("%s", "")}), "");
}

TEST(ChecksTest, AContextThatNoKeyExpressesIsAnError) {
    PoEntry entry = Entry("a", "b");
    entry.context = "verb";
    EXPECT_EQ(Found({entry}), "error context; ");
}

}  // namespace
