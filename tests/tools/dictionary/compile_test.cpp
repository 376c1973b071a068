#include "tools/qxtranslate/model/dictionary/compile.h"

#include "tools/qxtranslate/model/text/bad_input.h"
#include "tools/qxtranslate/platform/platform.h"

#include "tests/tools/po/entries.h"

#include <gtest/gtest.h>

namespace {

using qx::PoEntry;
using qx::PoFile;

std::string Lines(const PoFile& po, unsigned codePage = 1252) {
    std::string lines;
    for (auto& entry : qx::Compile(po, *qx::OpenCodePage(codePage)).dictionary.entries)
        lines += entry.source + "=" + entry.target + ";";
    return lines;
}

TEST(CompileTest, OnlyFinishedEntriesReachTheDictionary) {
    PoFile po;
    po.entries = {Entry("a", "1"), Entry("b", ""), Entry("c", "3"), Entry("d", "4")};
    po.entries[2].SetFuzzy();
    po.entries[3].isObsolete = true;
    EXPECT_EQ(Lines(po), "a=1;");
}

TEST(CompileTest, AnEntryLeftAsItIsIsWrittenEmpty) {
    PoFile po;
    po.entries = {Entry("a", "")};
    po.entries[0].comments = {"left as it is"};
    EXPECT_EQ(Lines(po), "a=;");
}

TEST(CompileTest, AContextBecomesTheKeyOfThePlace) {
    PoFile po;
    po.entries = {Entry("Open", "Offen")};
    po.entries[0].context = "host.exe/dialog/130";
    EXPECT_EQ(Lines(po), "host.exe#1#130\xFD\xFDOpen=Offen;");
}

TEST(CompileTest, ANamedResourceGetsTheKeyOfItsFirstLetterToo) {
    PoFile po;
    po.entries = {Entry("Open", "Offen")};
    po.entries[0].context = "a.exe/menu/MAIN";
    EXPECT_EQ(Lines(po), "a.exe#2#MAIN\xFD\xFDOpen=Offen;a.exe#2#M\xFD\xFDOpen=Offen;");
}

TEST(CompileTest, DialogTextsAreLookedUpByTheirLowBytes) {
    PoFile po;
    po.entries = {Entry("caf\xC3\xA9", "x", {"a.exe/dialog/1/0"}),
                  Entry("th\xC3\xA9", "y", {"a.exe/strings/1/0"})};
    // In code page 1251 there is no e with an accent.
    EXPECT_EQ(Lines(po, 1251), "caf\xE9=x;");
    EXPECT_EQ(Lines(po), "caf\xE9=x;th\xE9=y;");
}

TEST(CompileTest, ATextOfBothKindsGetsBothKeys) {
    PoFile po;
    // U+00E4 is E4 in 1252 and 84 in 437.
    po.entries = {Entry("\xC3\xA4", "x", {"a.exe/dialog/1/0", "a.exe/menu/1/0"})};
    EXPECT_EQ(Lines(po), "\xE4=x;");
    EXPECT_EQ(Lines(po, 437), "\x84=x;\xE4=x;");
}

std::string Why(const PoEntry& entry) {
    PoFile po;
    po.entries = {entry};
    auto compiled = qx::Compile(po, *qx::OpenCodePage(1252));
    return compiled.leftOut.empty() ? "" : compiled.leftOut[0].why;
}

TEST(CompileTest, WhatNoDictionaryHoldsIsLeftOutWithTheReason) {
    EXPECT_EQ(Why(Entry("a", "\xD0\x96")), "the code page lacks a character of it");
    EXPECT_EQ(Why(Entry("\xD0\x96", "a")), "the code page lacks a character of the source text");
    EXPECT_NE(Why(Entry("c:\\new", "a")), "");
    PoEntry entry = Entry("a", "b");
    entry.context = "verb";
    EXPECT_EQ(Why(entry), "no key of a dictionary expresses the context \"verb\"");
}

TEST(CompileTest, OfTwoKeysWithOneHashTheFirstStands) {
    PoFile po;
    ASSERT_EQ(qx::HashText("sdsddyb"), qx::HashText("uapfpjg"));
    po.entries = {Entry("sdsddyb", "1"), Entry("uapfpjg", "2")};
    auto compiled = qx::Compile(po, *qx::OpenCodePage(1252));
    EXPECT_EQ(compiled.dictionary.entries.size(), 1u);
    ASSERT_EQ(compiled.leftOut.size(), 1u);
}

TEST(CompileTest, TheFontStandsInTheHeader) {
    PoFile po;
    qx::SetFont(po, {"MS UI Gothic", 128, 9});
    EXPECT_EQ(qx::Compile(po, *qx::OpenCodePage(932)).dictionary.font,
              (qx::DialogFont{"MS UI Gothic", 128, 9}));
    po.SetField("X-Dialog-Font-Size", "big");
    EXPECT_THROW(qx::Compile(po, *qx::OpenCodePage(932)), qx::BadInput);
}

TEST(CompileTest, ADictionaryComesBackAsThePoFileItWasMadeFrom) {
    PoFile po;
    po.entries = {Entry("&Open...\tCtrl+O", "\xC3\x96&ffnen...\tStrg+O"), Entry("a\nb", "c\nd"),
                  Entry("Open", "Offen"), Entry("left", "")};
    po.entries[2].context = "a.exe/menu/MAIN";
    po.entries[3].comments = {"left as it is"};
    auto page = qx::OpenCodePage(1252);
    auto file = qx::WriteDictionary(qx::Compile(po, *page).dictionary);
    PoFile back = qx::Decompile(qx::ReadDictionary(file, *page), *page);
    ASSERT_EQ(back.entries.size(), po.entries.size());
    for (size_t i = 0; i < po.entries.size(); ++i) {
        EXPECT_EQ(qx::KeyOf(back.entries[i]), qx::KeyOf(po.entries[i]));
        EXPECT_EQ(back.entries[i].target, po.entries[i].target);
        EXPECT_EQ(back.entries[i].comments, po.entries[i].comments);
    }
}

TEST(CompileTest, BytesOutsideTheCodePageAreRefusedWithTheirLine) {
    qx::Dictionary dictionary;
    dictionary.entries = {{"a", "\x81\x30", 7}};
    try {
        qx::Decompile(dictionary, *qx::OpenCodePage(932));
        ADD_FAILURE();
    } catch (const qx::BadInput& failure) {
        EXPECT_EQ(std::string(failure.what()).substr(0, 7), "line 7:");
    }
}

}  // namespace
