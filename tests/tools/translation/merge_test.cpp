#include "tools/qxtranslate/model/translation/merge.h"

#include "tests/tools/po/entries.h"

#include <gtest/gtest.h>

namespace {

using qx::MergeCounts;
using qx::PoEntry;
using qx::PoFile;

// "context|source=target", with "~" for fuzzy and "#" for obsolete.
std::string Merged(const PoFile& old, const PoFile& fresh) {
    MergeCounts counts;
    std::string all;
    for (auto& e : qx::Merge(old, fresh, &counts).entries) {
        all += e.isObsolete ? "#" : e.IsFuzzy() ? "~" : "";
        all += e.context.value_or("") + "|" + e.source + "=" + e.target + ";";
    }
    return all;
}

TEST(MergeTest, TheSameTextKeepsItsTranslationWhereverItStands) {
    EXPECT_EQ(Merged(PoOf({Entry("Open", "Auf", {"a/menu/1/0"})}),
                     PoOf({Entry("Open", "", {"a/menu/2/5"})})),
              "|Open=Auf;");
}

TEST(MergeTest, HeaderAndCommentsAreTheTranslatorsPlacesAndNotesTheProgramsOwn) {
    PoFile old = PoOf({Entry("Open", "Auf", {"a/menu/1/0"})});
    old.header = {{"Language", "de"}};
    old.entries[0].comments = {"mine"};
    old.entries[0].notes = {"old note"};
    PoFile fresh = PoOf({Entry("Open", "", {"a/menu/2/5"})});
    fresh.entries[0].notes = {"new note"};
    MergeCounts counts;
    PoFile merged = qx::Merge(old, fresh, &counts);
    EXPECT_EQ(merged.Field("Language"), "de");
    EXPECT_EQ(merged.entries[0].comments, old.entries[0].comments);
    EXPECT_EQ(merged.entries[0].notes, fresh.entries[0].notes);
    EXPECT_EQ(merged.entries[0].references, fresh.entries[0].references);
}

TEST(MergeTest, ATextThatDiffersInMarksOnlyIsSuggested) {
    for (const char* text : {"&Open", "OPEN", "Open...", "Open:", "Open\tCtrl+O"}) {
        EXPECT_EQ(Merged(PoOf({Entry("Open", "Auf")}), PoOf({Entry(text, "")})),
                  std::string("~|") + text + "=Auf;")
            << text;
    }
}

TEST(MergeTest, ASuggestionKeepsTheOldText) {
    MergeCounts counts;
    PoFile merged = qx::Merge(PoOf({Entry("Open", "Auf")}), PoOf({Entry("&Open", "")}), &counts);
    EXPECT_EQ(merged.entries[0].previousSource, "Open");
    EXPECT_EQ(counts.suggested, 1u);
}

TEST(MergeTest, ASimilarTextInTheSamePlaceIsSuggested) {
    PoFile old = PoOf({Entry("Save the file", "Datei sichern", {"a/menu/1/0"})});
    EXPECT_EQ(Merged(old, PoOf({Entry("Save this file now", "", {"a/menu/1/0"})})),
              "~|Save this file now=Datei sichern;");
    EXPECT_EQ(Merged(old, PoOf({Entry("Save this file now", "", {"a/menu/1/1"})})),
              "|Save this file now=;#|Save the file=Datei sichern;");
}

TEST(MergeTest, AnotherTextInTheSamePlaceIsNotSuggested) {
    EXPECT_EQ(Merged(PoOf({Entry("Print", "Drucken", {"a/menu/1/0"})}),
                     PoOf({Entry("Close", "", {"a/menu/1/0"})})),
              "|Close=;#|Print=Drucken;");
}

TEST(MergeTest, AVerySimilarTextIsSuggestedFromAnywhere) {
    EXPECT_EQ(Merged(PoOf({Entry("The file could not be saved", "Nicht gesichert")}),
                     PoOf({Entry("The file could not be saved!", "")})),
              "~|The file could not be saved!=Nicht gesichert;");
}

TEST(MergeTest, ATranslationForOnePlaceStaysWhileTheTextStandsThere) {
    PoFile old = PoOf({Entry("Open", "Auf"), Entry("Open", "Offen")});
    old.entries[1].context = "a/dialog/2";
    EXPECT_EQ(Merged(old, PoOf({Entry("Open", "", {"a/menu/1/0", "a/dialog/2/3"})})),
              "|Open=Auf;a/dialog/2|Open=Offen;");
    EXPECT_EQ(Merged(old, PoOf({Entry("Open", "", {"a/menu/1/0"})})),
              "|Open=Auf;#a/dialog/2|Open=Offen;");
}

TEST(MergeTest, FuzzyStaysFuzzyAndEmptyStaysEmpty) {
    PoFile old = PoOf({Entry("a", "b"), Entry("c", "")});
    old.entries[0].SetFuzzy();
    old.entries[1].comments = {std::string(qx::kLeftAsItIs)};
    EXPECT_EQ(Merged(old, PoOf({Entry("a", ""), Entry("c", "")})), "~|a=b;|c=;");
}

TEST(MergeTest, AnObsoleteTranslationComesBackWithItsText) {
    PoFile old = PoOf({Entry("Open", "Auf")});
    old.entries[0].isObsolete = true;
    EXPECT_EQ(Merged(old, PoOf({Entry("Open", "")})), "|Open=Auf;");
}

}  // namespace
