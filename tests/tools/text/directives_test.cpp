#include "tools/qxtranslate/model/text/directives.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using qx::CompareDirectives;

TEST(DirectivesTest, TheSameDirectivesInOrderAreFine) {
    EXPECT_EQ(CompareDirectives("%s has %d files", "%s hat %d Dateien"), "");
    EXPECT_EQ(CompareDirectives("%5.2f%%", "%.1f %%"), "");
    EXPECT_EQ(CompareDirectives("%i", "%d"), "");
    EXPECT_EQ(CompareDirectives("%-10ls|%I64u", "%ls|%I64u"), "");
}

TEST(DirectivesTest, OrderTypeAndCountMatter) {
    EXPECT_EQ(CompareDirectives("%s has %d", "%d hat %s"), "the directives stand in another order");
    EXPECT_EQ(CompareDirectives("%s", "%d"), "%d stands where the source text has %s");
    EXPECT_EQ(CompareDirectives("%ls", "%s"), "%s stands where the source text has %ls");
    EXPECT_EQ(CompareDirectives("%s and %s", "%s"), "%s is missing");
    EXPECT_EQ(CompareDirectives("none", "doch %d"), "%d is not in the source text");
    EXPECT_EQ(CompareDirectives("%*d", "%d"), "%d stands where the source text has %*d");
}

TEST(DirectivesTest, NumberedOnesMayMoveAndRepeat) {
    EXPECT_EQ(CompareDirectives("%1 of %2", "%2 von %1"), "");
    EXPECT_EQ(CompareDirectives("%1!s! of %2!d!", "%2!d! (%1!s!)"), "");
    EXPECT_EQ(CompareDirectives("%1", "%1 und %1"), "");
    EXPECT_EQ(CompareDirectives("%1 of %2", "%1"), "%2 is missing");
    EXPECT_EQ(CompareDirectives("a text", "un %1"), "%1 is not in the source text");
    EXPECT_EQ(CompareDirectives("%1!s!", "%1!d!"), "%1 has another format");
}

TEST(DirectivesTest, PercentSignsOfTheTextAreNoDirectives) {
    EXPECT_EQ(CompareDirectives("50% off", "50 % weniger"), "");
    EXPECT_EQ(CompareDirectives("100%", "100 %"), "");
    EXPECT_EQ(CompareDirectives("%% done", "fertig"), "");
}

TEST(DirectivesTest, LineBreaksOfMessagesAreNoDirectives) {
    EXPECT_EQ(CompareDirectives("%1 is gone%n", "%1 ist weg"), "");
}

TEST(DirectivesTest, SpansCoverWidthsAndFormats) {
    // Of every byte, whether a directive covers it.
    auto covered = [](const char* text) {
        std::string map(strlen(text), '.');
        for (auto& span : qx::FindDirectives(text))
            map.replace(span.begin, span.end - span.begin, span.end - span.begin, 'x');
        return map;
    };
    EXPECT_EQ(covered("a %-5ld b %% c"), "..xxxxx...xx..");
    EXPECT_EQ(covered("%1!08x! %s"), "xxxxxxx.xx");
}

}  // namespace
