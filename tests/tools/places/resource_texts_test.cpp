#include "tests/tools/pe/image_builder.h"
#include "tools/qxtranslate/model/places/resource_texts.h"

#include <gtest/gtest.h>

namespace {

using qx::ReadDialog;
using qx::ReadMenu;
using qx::ReadStrings;
using qx::ResourceText;

const std::vector<BuiltItem> kMenu = {
    {u"&File", 7, {{u"&Open", 101}, {u"", 0}, {u"&Recent", 8, {{u"One", 102}, {u"Two", 103}}}}},
    {u"&Help", 9, {{u"About", 104}}},
    {u"Last", 105},
};

std::string Items(const std::vector<ResourceText>& texts) {
    std::string items;
    for (auto& text : texts)
        items += text.item + "=" + std::string(text.text.begin(), text.text.end()) + ";";
    return items;
}

constexpr const char* kItems =
    "0=&File;0/0=&Open;0/2=&Recent;0/2/0=One;0/2/1=Two;1=&Help;1/0=About;2=Last;";

TEST(ResourceTextsTest, AClassicMenuIsReadWithThePathsOfItsPositions) {
    EXPECT_EQ(Items(ReadMenu(BuildMenu(kMenu))), kItems);
}

TEST(ResourceTextsTest, AnExtendedMenuIsReadLikeAClassicOne) {
    EXPECT_EQ(Items(ReadMenu(BuildExtendedMenu(kMenu))), kItems);
}

TEST(ResourceTextsTest, AMenuOfAThousandLevelsIsWalked) {
    std::vector<BuiltItem> items = {{u"x", 1}};
    for (int i = 0; i < 1000; ++i) items = {{u"p", 0, items}};
    EXPECT_EQ(ReadMenu(BuildMenu(items)).size(), 1001u);
}

TEST(ResourceTextsTest, AnItemWithTheNumber0IsOutOfReach) {
    auto texts = ReadMenu(BuildMenu({{u"None", 0}, {u"Some", 1}}));
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_EQ(texts[0].outOfReach, "a menu item with the number 0 keeps its text");
    EXPECT_EQ(texts[1].outOfReach, "");
}

TEST(ResourceTextsTest, BothFormsOfDialogsAreRead) {
    std::vector<BuiltControl> controls = {
        {0x82, u"", u"Name:", 10}, {0x81, u"", u"edit", 11}, {0x80, u"", u"OK", 1}};
    for (auto& bytes : {BuildDialog(u"Title", controls), BuildExtendedDialog(u"Title", controls)}) {
        auto texts = ReadDialog(bytes);
        EXPECT_EQ(Items(texts), "caption=Title;0=Name:;1=edit;2=OK;");
        EXPECT_EQ(texts[1].what, "label");
        EXPECT_EQ(texts[1].room, "about 10 characters");
        EXPECT_EQ(texts[1].outOfReach, "");
        EXPECT_EQ(texts[2].outOfReach, "only labels and buttons of dialogs are translated");
        EXPECT_EQ(texts[3].id, 1u);
    }
}

TEST(ResourceTextsTest, ANamedClassIsOutOfReachAlsoWhenItIsButton) {
    auto texts = ReadDialog(BuildDialog(u"", {{0, u"Button", u"Text"}}));
    ASSERT_EQ(texts.size(), 1u);
    EXPECT_NE(texts[0].outOfReach, "");
}

TEST(ResourceTextsTest, ADialogTextWithAWideCharacterIsOutOfReach) {
    auto texts = ReadDialog(BuildDialog(u"caf\u00E9", {{0x80, u"", u"a \u2013 b"}}));
    EXPECT_EQ(texts[0].outOfReach, "");
    EXPECT_NE(texts[1].outOfReach, "");
}

TEST(ResourceTextsTest, OnlyTheLowByteOfAnExtendedCountIsSeen) {
    std::vector<BuiltControl> controls(300, BuiltControl{0x82, u"", u"x"});
    auto texts = ReadDialog(BuildExtendedDialog(u"", controls));
    ASSERT_EQ(texts.size(), 300u);
    EXPECT_EQ(texts[43].outOfReach, "");
    EXPECT_NE(texts[44].outOfReach, "");
    EXPECT_EQ(ReadDialog(BuildDialog(u"", controls))[299].outOfReach, "");
}

TEST(ResourceTextsTest, StringsAreNumberedByTheirBlock) {
    auto texts = ReadStrings(BuildStrings({u"", u"One", u"Two"}), 21);
    EXPECT_EQ(Items(texts), "321=One;322=Two;");
}

TEST(ResourceTextsTest, TemplatesCutAtAnyByteAreRefusedOrRead) {
    auto menu = BuildMenu(kMenu);
    auto dialog = BuildDialog(u"T", {{0x82, u"", u"Name:"}, {0x80, u"Cls", u"OK"}});
    auto extended = BuildExtendedDialog(u"T", {{0x82, u"", u"Name:"}, {0x80, u"Cls", u"OK"}});
    auto strings = BuildStrings({u"One", u"Two"});
    auto cut = [](const std::vector<uint8_t>& whole, auto read) {
        for (size_t size = 0; size < whole.size(); ++size) {
            std::vector<uint8_t> part(whole.begin(), whole.begin() + static_cast<long>(size));
            try {
                read(part);
            } catch (const qx::BadInput&) {
            }
        }
    };
    cut(menu, [](auto& b) { ReadMenu(b); });
    cut(dialog, [](auto& b) { EXPECT_THROW(ReadDialog(b), qx::BadInput); });
    cut(extended, [](auto& b) { EXPECT_THROW(ReadDialog(b), qx::BadInput); });
    cut(strings, [](auto& b) { ReadStrings(b, 1); });
}

TEST(ResourceTextsTest, AStringBeyondTheLayersBufferSaysWhereItIsTranslated) {
    auto texts =
        qx::ReadStrings(BuildStrings({std::u16string(1023, u'a'), std::u16string(1024, u'a')}), 1);
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_EQ(texts[0].room, "1023 bytes");
    EXPECT_EQ(texts[1].room, "translated in programs started by qxtranslate run only");
}

}  // namespace
