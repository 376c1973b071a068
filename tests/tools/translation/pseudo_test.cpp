#include "tools/qxtranslate/model/translation/pseudo.h"

#include "tools/qxtranslate/model/translation/checks.h"
#include "tools/qxtranslate/platform/platform.h"

#include <gtest/gtest.h>

namespace {

std::string Pseudo(const std::string& text, unsigned codePage = 1252, unsigned longer = 30) {
    return qx::PseudoLanguage(*qx::OpenCodePage(codePage), longer).Translate(text);
}

TEST(PseudoTest, EveryTextHasBracketsAndLettersOfTheCodePage) {
    EXPECT_EQ(Pseudo("Open", 1252, 50), "[\xC3\x96\xC3\xBE\xC3\xA9\xC3\xB1~~]");
    for (unsigned page : {1250u, 1251u, 1252u, 1253u, 1254u, 932u, 936u, 949u, 950u}) {
        std::string text = Pseudo("Open", page);
        EXPECT_TRUE(qx::OpenCodePage(page)->Encode(text)) << page;
        EXPECT_EQ(text.find("Open"), std::string::npos) << page;
    }
}

TEST(PseudoTest, MarksStayWhereTheyAre) {
    std::string text = Pseudo(" &Save %s to %1!d!...\tCtrl+S");
    EXPECT_EQ(text.substr(0, 4), " [&S");
    EXPECT_NE(text.find("%s"), std::string::npos);
    EXPECT_EQ(text.substr(text.size() - 11), "]...\tCtrl+S");
}

TEST(PseudoTest, FilePatternsStayAsTheyAre) {
    EXPECT_NE(Pseudo("Text (*.txt)").find("(*.txt)"), std::string::npos);
}

TEST(PseudoTest, WhatItMakesPassesTheCheck) {
    qx::PoFile po;
    for (const char* source :
         {"&Open...\tCtrl+O", "Name:", " %d of %s ", "%1 is %2!x!\n", "100%"}) {
        qx::PoEntry entry;
        entry.source = source;
        po.entries.push_back(entry);
    }
    auto page = qx::OpenCodePage(1251);
    for (auto& finding : qx::Check(qx::PseudoLanguage(*page, 30).Translate(po), page.get()))
        ADD_FAILURE() << finding.source << ": " << finding.message;
}

TEST(PseudoTest, ALongTextStaysBelowTheBuffers) {
    EXPECT_LE(Pseudo(std::string(480, 'x')).size(), 511u);
}

}  // namespace
