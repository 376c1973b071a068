#include "tools/qxtranslate/model/text/text_marks.h"

#include <gtest/gtest.h>

namespace {

TEST(TextMarksTest, TheAccessKeyIsTheLetterBehindTheLastSingleAmpersand) {
    EXPECT_EQ(qx::AccessKey("&File"), U'f');
    EXPECT_EQ(qx::AccessKey("Save && &quit"), U'q');
    EXPECT_EQ(qx::AccessKey("Salt && pepper"), 0u);
    EXPECT_EQ(qx::AccessKey("\xC3\x84&\xC3\xB6"), U'\u00F6');
    EXPECT_EQ(qx::AccessKey("this & that"), 0u);
    EXPECT_EQ(qx::AccessKey("end&"), 0u);
}

TEST(TextMarksTest, AnAccessKeyInBracketsGoesWithThem) {
    EXPECT_EQ(qx::WithoutAccessKey("Datei(&F)..."), "Datei...");
    EXPECT_EQ(qx::WithoutAccessKey("S&ave && go"), "Save && go");
}

TEST(TextMarksTest, DotsAndColonsCountBeforeTheKeysAndBlanks) {
    EXPECT_TRUE(qx::EndsWithDots("Open...\tCtrl+O"));
    EXPECT_TRUE(qx::EndsWithDots("Open\xE2\x80\xA6"));
    EXPECT_FALSE(qx::EndsWithDots("Open"));
    EXPECT_TRUE(qx::EndsWithColon("Name: "));
    EXPECT_TRUE(qx::EndsWithColon("\xE5\x90\x8D\xE5\x89\x8D\xEF\xBC\x9A"));
}

TEST(TextMarksTest, TheTabsOfATextOfSeveralLinesAreNotThoseOfKeys) {
    EXPECT_EQ(qx::BeforeTab("Open\tCtrl+O"), "Open");
    EXPECT_EQ(qx::BeforeTab("DIR\tList\nDEL\tDelete"), "DIR\tList\nDEL\tDelete");
    EXPECT_EQ(qx::FromTab("DIR\tList\n"), "");
}

TEST(TextMarksTest, BareTextsAreEqualWhenOnlyMarksDiffer) {
    EXPECT_EQ(qx::Bare("&Open..."), qx::Bare("open"));
    EXPECT_EQ(qx::Bare("Save &As\tF12"), qx::Bare("save as:"));
    EXPECT_NE(qx::Bare("Open file"), qx::Bare("Open files"));
}

}  // namespace
