#include "tests/tools/pe/image_builder.h"
#include "tools/qxtranslate/model/program/harvest.h"

#include <gtest/gtest.h>

namespace {

using qx::PoFile;

// The texts of an image as a PO file.
PoFile Harvest(const std::vector<BuiltResource>& resources, std::optional<uint16_t> second = {},
               unsigned* lost = nullptr) {
    unsigned ignored = 0;
    auto texts = qx::ReadTexts(BuildImage({resources, {}, ""}), "a.exe", 0x409, second).texts;
    return qx::ToPo(texts, "a.exe", lost ? lost : &ignored);
}

// "context|source=target@references;"
std::string Entries(const PoFile& po) {
    std::string all;
    for (auto& entry : po.entries) {
        all += entry.context.value_or("") + "|" + entry.source + "=" + entry.target + "@";
        for (auto& reference : entry.references) all += reference + " ";
        all += ";";
    }
    return all;
}

std::vector<uint8_t> Menu(const std::u16string& text, unsigned id = 5) {
    return BuildMenu({{text, id}});
}

TEST(HarvestTest, OneEntryForEachTextWithAllItsPlaces) {
    PoFile po = Harvest({{4, 1, u"", 0x409, BuildMenu({{u"Open", 5}, {u"Close", 6}})},
                         {5, 2, u"", 0x409, BuildDialog(u"Open", {})},
                         {6, 21, u"", 0x409, BuildStrings({u"Open"})}});
    EXPECT_EQ(Entries(po),
              "|Open=@a.exe/menu/1/0 a.exe/dialog/2/caption a.exe/strings/21/320 ;"
              "|Close=@a.exe/menu/1/1 ;");
    EXPECT_EQ(po.entries[0].notes[0], "menu item, 511 bytes");
}

TEST(HarvestTest, TheSecondLanguageFillsTheTranslations) {
    PoFile po = Harvest({{4, 1, u"", 0x409, BuildMenu({{u"Open", 5}, {u"Close", 6}})},
                         {4, 1, u"", 0x407, BuildMenu({{u"Zu", 6}, {u"Auf", 5}})}},
                        0x407);
    EXPECT_EQ(Entries(po), "|Open=Auf@a.exe/menu/1/0 ;|Close=Zu@a.exe/menu/1/1 ;");
}

TEST(HarvestTest, ATextWithTwoTranslationsIsSplitAtItsResource) {
    PoFile po = Harvest({{4, 1, u"", 0x409, Menu(u"Open")},
                         {4, 1, u"", 0x407, Menu(u"Auf")},
                         {4, 2, u"", 0x409, Menu(u"Open")},
                         {4, 2, u"", 0x407, Menu(u"Offen")},
                         {4, 3, u"", 0x409, Menu(u"Open")},
                         {4, 3, u"", 0x407, Menu(u"Auf")}},
                        0x407);
    EXPECT_EQ(Entries(po),
              "|Open=Auf@a.exe/menu/1/0 a.exe/menu/3/0 ;a.exe/menu/2|Open=Offen@a.exe/menu/2/0 ;");
}

TEST(HarvestTest, StringsHaveTheTranslationForEverywhere) {
    PoFile po = Harvest({{4, 1, u"", 0x409, Menu(u"Open")},
                         {4, 1, u"", 0x407, Menu(u"Auf")},
                         {4, 2, u"", 0x409, Menu(u"Open")},
                         {4, 2, u"", 0x407, Menu(u"Auf")},
                         {6, 1, u"", 0x409, BuildStrings({u"", u"Open"})},
                         {6, 1, u"", 0x407, BuildStrings({u"", u"Offen"})}},
                        0x407);
    EXPECT_EQ(po.entries[0].target, "Offen");
    EXPECT_EQ(po.entries[0].context, std::nullopt);
    EXPECT_EQ(po.entries[1].context, "a.exe/menu/1");
    EXPECT_EQ(po.entries[2].context, "a.exe/menu/2");
}

TEST(HarvestTest, TwoTranslationsWithinOneResourceAreCounted) {
    unsigned lost = 0;
    PoFile po = Harvest({{4, 1, u"", 0x409, BuildMenu({{u"A", 5}, {u"A", 6}, {u"A", 7}})},
                         {4, 1, u"", 0x407, BuildMenu({{u"x", 5}, {u"y", 6}, {u"x", 7}})}},
                        0x407, &lost);
    EXPECT_EQ(po.entries.size(), 1u);
    EXPECT_EQ(po.entries[0].target, "x");
    EXPECT_EQ(lost, 1u);
}

TEST(HarvestTest, ATextEndsAtANulAndIsOutOfReach) {
    PoFile po = Harvest({{6, 1, u"", 0x409, BuildStrings({u"", std::u16string(u"a\0b", 3)})}});
    ASSERT_EQ(po.entries.size(), 1u);
    EXPECT_EQ(po.entries[0].source, "a");
    auto note = qx::ParseOutOfReachNote(po.entries[0].notes[1]);
    ASSERT_TRUE(note);
    EXPECT_EQ(note->place, "a.exe/strings/1/1");
}

TEST(HarvestTest, AMissingLanguageFallsBackForEachResource) {
    PoFile po = Harvest({{4, 1, u"", 0x809, Menu(u"Colour")},
                         {4, 2, u"", 0x009, Menu(u"Plain")},
                         {4, 2, u"", 0x809, Menu(u"British")},
                         {4, 3, u"", 0x407, Menu(u"Deutsch")}});
    EXPECT_EQ(Entries(po), "|Colour=@a.exe/menu/1/0 ;|Plain=@a.exe/menu/2/0 ;");
}

}  // namespace
