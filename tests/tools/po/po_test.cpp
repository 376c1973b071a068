#include "tools/qxtranslate/model/po/file.h"
#include "tools/qxtranslate/model/text/bad_input.h"

#include <gtest/gtest.h>

namespace {

using qx::PoEntry;
using qx::PoFile;
using qx::ReadPo;

const std::string kWhole =
    "# head\n"
    "#, fuzzy\n"
    "msgid \"\"\n"
    "msgstr \"\"\n"
    "\"Project-Id-Version: p: 1\\n\"\n"
    "\"Content-Type: text/plain; charset=UTF-8\\n\"\n"
    "\n"
    "# mine\n"
    "#\n"
    "#. button, about 3 characters\n"
    "#: a.exe/dialog/1/2 a.exe/menu/1/0\n"
    "#, fuzzy, no-wrap\n"
    "#| msgctxt \"a.exe/dialog/0\"\n"
    "#| msgid \"Old\"\n"
    "msgctxt \"a.exe/dialog/1\"\n"
    "msgid \"Open\\t\\\"x\\\"\"\n"
    "msgstr \"\xC3\x96"
    "ffnen\"\n"
    "\n"
    "msgid \"\"\n"
    "\"one\\n\"\n"
    "\"two\"\n"
    "msgstr \"end\\n\"\n"
    "\n"
    "#~ msgid \"gone\"\n"
    "#~ msgstr \"weg\"\n";

TEST(PoTest, EveryPartOfAnEntryIsRead) {
    PoFile po = ReadPo(kWhole);
    EXPECT_TRUE(po.isTemplate);
    EXPECT_EQ(po.Field("Project-Id-Version"), "p: 1");
    EXPECT_EQ(po.headerComments, std::vector<std::string>{"head"});
    ASSERT_EQ(po.entries.size(), 3u);
    const PoEntry& entry = po.entries[0];
    EXPECT_EQ(entry.comments, (std::vector<std::string>{"mine", ""}));
    EXPECT_EQ(entry.notes, std::vector<std::string>{"button, about 3 characters"});
    EXPECT_EQ(entry.references, (std::vector<std::string>{"a.exe/dialog/1/2", "a.exe/menu/1/0"}));
    EXPECT_TRUE(entry.IsFuzzy());
    EXPECT_EQ(entry.previousContext, "a.exe/dialog/0");
    EXPECT_EQ(entry.previousSource, "Old");
    EXPECT_EQ(entry.context, "a.exe/dialog/1");
    EXPECT_EQ(entry.source, "Open\t\"x\"");
    EXPECT_EQ(entry.target,
              "\xC3\x96"
              "ffnen");
    EXPECT_EQ(entry.line, 15u);
    EXPECT_EQ(po.entries[1].source, "one\ntwo");
    EXPECT_EQ(po.entries[1].target, "end\n");
    EXPECT_TRUE(po.entries[2].isObsolete);
}

TEST(PoTest, WhatIsReadIsWrittenByteForByte) {
    EXPECT_EQ(qx::WritePo(ReadPo(kWhole)), kWhole);
}

TEST(PoTest, EscapesAreThoseOfC) {
    PoFile po = ReadPo("msgid \"\\a\\b\\f\\r\\v\\101\\x42\"\nmsgstr \"\"\n");
    EXPECT_EQ(po.entries[0].source, "\a\b\f\r\vAB");
}

TEST(PoTest, AByteOrderMarkAndWindowsLineEndsAreTolerated) {
    PoFile po = ReadPo("\xEF\xBB\xBFmsgid \"a\"\r\nmsgstr \"b\"\r\n");
    EXPECT_EQ(po.entries[0].target, "b");
}

// The sentence that reading the text ends in.
std::string Failure(const std::string& text) {
    try {
        ReadPo(text);
    } catch (const qx::BadInput& failure) {
        return failure.what();
    }
    return "";
}

TEST(PoTest, WrongSyntaxIsToldWithItsLine) {
    const std::string entry = "msgid \"a\"\nmsgstr \"b\"\n\n";
    EXPECT_EQ(Failure(entry + "msgid \"x\n"), "line 4: the closing quote is missing");
    EXPECT_EQ(Failure(entry + "msgid x\n"), "line 4: a text in double quotes is missing");
    EXPECT_EQ(Failure(entry + "msgstr \"x\"\n"), "line 4: msgstr without a msgid before it");
    EXPECT_EQ(Failure(entry + "msgid \"x\"\n"), "line 4: the entry has no msgstr");
    EXPECT_EQ(Failure(entry + "hello\n"), "line 4: neither a keyword nor a text in double quotes");
    EXPECT_EQ(Failure("\"x\"\n"), "line 1: a text without a keyword before it");
    EXPECT_EQ(Failure("msgid \"\\q\"\n"), "line 1: unknown escape \\q");
    EXPECT_EQ(Failure("msgid \"\\0\"\n"), "line 1: a text holds a NUL");
    EXPECT_EQ(Failure("msgid \"\xFF\"\n"), "line 1: the text is not UTF-8");
    EXPECT_EQ(Failure("msgid \"a\" b\n"), "line 1: something stands behind the closing quote");
    EXPECT_EQ(Failure("msgid \"a\"\n# c\nmsgstr \"\"\n"),
              "line 2: a comment stands within an entry");
    EXPECT_EQ(Failure("msgid \"a\"\nmsgid_plural \"b\"\nmsgstr[0] \"\"\n"),
              "line 2: a dictionary has no plural forms");
}

TEST(PoTest, TwoTranslationsOfOneEntryAreRefused) {
    EXPECT_EQ(Failure("msgid \"a\"\nmsgstr \"b\"\nmsgid \"a\"\nmsgstr \"c\"\n"),
              "line 3: a second translation of the text of another entry");
    EXPECT_EQ(Failure("msgid \"a\"\nmsgstr \"b\"\nmsgctxt \"x\"\nmsgid \"a\"\nmsgstr \"c\"\n"), "");
}

TEST(PoTest, AnotherCharsetIsRefused) {
    EXPECT_EQ(Failure("msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=ISO-8859-1\\n\"\n"),
              "line 1: the charset is iso-8859-1 and not UTF-8");
}

}  // namespace
