#include "tools/qxtranslate/model/places/place.h"

#include <gtest/gtest.h>

namespace {

using qx::Place;
using qx::PlaceKind;

TEST(PlaceTest, APlaceIsModuleKindResourceAndItem) {
    EXPECT_EQ(qx::FormatPlace({{"wordpad.exe", PlaceKind::Dialog, "2102"}, "3"}),
              "wordpad.exe/dialog/2102/3");
    EXPECT_EQ(qx::FormatPlace({{"a.dll", PlaceKind::Menu, "MAIN"}, "0/2"}), "a.dll/menu/MAIN/0/2");
    EXPECT_EQ(qx::FormatContext({"a.dll", PlaceKind::Strings, "21"}), "a.dll/strings/21");
}

TEST(PlaceTest, EveryPlaceComesBackFromItsText) {
    for (auto kind : {PlaceKind::Dialog, PlaceKind::Menu, PlaceKind::Strings}) {
        Place place = {{"a b%20/c\xC3\xA9.exe", kind, "N A/ME"}, "1/2"};
        auto back = qx::ParsePlace(qx::FormatPlace(place));
        ASSERT_TRUE(back);
        EXPECT_EQ(*back, place);
    }
}

TEST(PlaceTest, NamesHoldNoBlanksSoThatReferencesStayWhole) {
    EXPECT_EQ(qx::FormatContext({"my app.exe", PlaceKind::Menu, "1"}), "my%20app.exe/menu/1");
}

TEST(PlaceTest, OtherTextsAreNoPlaces) {
    for (const char* text :
         {"", "main.c:12", "a/dialog", "a/window/1/2", "a/dialog/1", "/dialog/1/2"})
        EXPECT_FALSE(qx::ParsePlace(text)) << text;
    for (const char* text : {"", "a/dialog", "a/dialog/1/2", "a/window/1", "verb"})
        EXPECT_FALSE(qx::ParseContext(text)) << text;
}

}  // namespace
