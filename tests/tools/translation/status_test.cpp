#include "tools/qxtranslate/model/translation/status.h"

#include "tools/qxtranslate/model/program/harvest.h"
#include "tools/qxtranslate/model/text/bad_input.h"

#include "tests/tools/po/entries.h"

#include <gtest/gtest.h>

namespace {

using qx::LookUp;
using qx::PoEntry;
using qx::PoFile;

const PoFile kHarvest =
    PoOf({Entry("Open", "", {"a.exe/menu/1/0", "a.exe/dialog/2/1"}),
          Entry("Edit", "", {"a.exe/dialog/2/3"}), Entry("New", "", {"a.exe/strings/1/4"})});

std::string States(const qx::Status& status) {
    std::string states;
    for (auto& text : status.texts)
        states += text.source + "=" + std::string(qx::NameOf(text.state)) +
                  (text.why.empty() ? "" : " (" + text.why + ")") + ";";
    return states;
}

TEST(StatusTest, EachTextHasOneState) {
    PoFile po = PoOf({Entry("Open", "Auf"), Entry("Open", "Offen"), Entry("Edit", ""),
                      Entry("Gone", "Weg"), Entry("New", "")});
    po.entries[1].context = "a.exe/dialog/2";
    po.entries[4].comments = {std::string(qx::kLeftAsItIs)};
    EXPECT_EQ(States(qx::StatusOf(po, &kHarvest, nullptr)),
              "Open=translated;Open=by place;Edit=missing;Gone=stale;New=empty;");
}

TEST(StatusTest, TextsThatTheFileLacksAreMissing) {
    qx::Status status = qx::StatusOf(PoOf({Entry("Open", "Auf")}), &kHarvest, nullptr);
    EXPECT_EQ(States(status), "Open=translated;Edit=missing;New=missing;");
    EXPECT_NEAR(status.Coverage(), 100.0 / 3, 0.01);
}

TEST(StatusTest, FuzzyIsMissing) {
    PoFile po = PoOf({Entry("Open", "Auf")});
    po.entries[0].SetFuzzy();
    EXPECT_EQ(States(qx::StatusOf(po, nullptr, nullptr)),
              "Open=missing (the translation is fuzzy);");
}

TEST(StatusTest, AKeyThatCanNeverMatchIsDeadWithItsReason) {
    auto why = [](const char* context) {
        PoFile po = PoOf({Entry("Open", "Auf")});
        po.entries[0].context = context;
        return qx::StatusOf(po, &kHarvest, nullptr).texts[0].why;
    };
    EXPECT_EQ(why("verb"), "no key of a dictionary expresses this context");
    EXPECT_EQ(why("A.EXE/menu/1"), "the program loads the file as a.exe");
    EXPECT_EQ(why("a.exe/menu/7"), "the program has no such resource");
    EXPECT_EQ(why("a.exe/strings/1"), "the text does not stand in this resource");
    EXPECT_EQ(why("a.exe/menu/1"), "");
}

TEST(StatusTest, ATextIsOutOfReachWhenAllItsPlacesAre) {
    PoFile harvest = kHarvest;
    auto note = [](const char* place) {
        return qx::OutOfReachNote(*qx::ParsePlace(place), "only labels");
    };
    harvest.entries[0].notes = {note("a.exe/dialog/2/1")};
    harvest.entries[1].notes = {note("a.exe/dialog/2/3")};
    PoFile po = PoOf({Entry("Open", "Auf"), Entry("Edit", "x"), Entry("New", "Neu")});
    EXPECT_EQ(States(qx::StatusOf(po, &harvest, nullptr)),
              "Open=translated;Edit=out of reach (only labels);New=translated;");
}

TEST(StatusTest, TheRecordTellsWhatWasNeverSeen) {
    std::vector<LookUp> record = {{"LoadStringW", "a.exe", "", "plain", "New", "Neu"}};
    PoFile po = PoOf({Entry("Open", "Auf"), Entry("New", "Neu"), Entry("New", "Neues")});
    po.entries[2].context = "a.exe/strings/1";
    EXPECT_EQ(States(qx::StatusOf(po, nullptr, &record)),
              "Open=never seen;New=translated;New=dead (the program loads it by LoadStringW, which "
              "knows no places);");
}

TEST(RecordTest, ALookUpIsOneLine) {
    LookUp lookUp = {"LoadMenuW", "a.exe", "a.exe/menu/1", "place", "Open\tCtrl+O", "Auf\\\n"};
    std::string line = qx::WriteLookUp(lookUp);
    EXPECT_EQ(line, "LoadMenuW\ta.exe\ta.exe/menu/1\tplace\tOpen\\tCtrl+O\tAuf\\\\\\n\n");
    auto back = qx::ReadRecord(line + line);
    ASSERT_EQ(back.size(), 2u);
    EXPECT_EQ(back[1].source, lookUp.source);
    EXPECT_EQ(back[1].target, lookUp.target);
}

TEST(RecordTest, AnotherFileIsRefusedWithItsLine) {
    EXPECT_THROW(qx::ReadRecord("a\tb\n"), qx::BadInput);
}

}  // namespace
