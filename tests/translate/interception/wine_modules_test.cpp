// The real world as input: every dialog, menu and string table, in every language, of the modules
// in the system's folder goes through the layer, and each result is checked against the original by
// a parser of the tests' own.
#include "translate/interception/system_resources_fixture.h"

#include <cstdio>

namespace {

using WineModulesTest = SystemResourcesTest;

constexpr int kLeast = 1000;  // resources of each type

}  // namespace

TEST_F(WineModulesTest, EveryDialogIsTranslatedFieldByField) {
    int dialogs = 0, controls = 0, extended = 0;
    ForEach(kDialogs, [&](const Resource& r) {
        size_t left = 0;
        auto original = ParseTemplate(r.data, r.size, &left);
        ASSERT_TRUE(original) << r.Text();
        EXPECT_LT(left, 4u) << r.Text();
        ASSERT_EQ(original->controls.size(), original->count) << r.Text();
        auto [data, size] = LoadThroughLayer(r);
        ASSERT_NE(data, nullptr) << r.Text();
        EXPECT_EQ(ParseTemplate(data, size), Expected(*original)) << r.Text();
        ++dialogs;
        extended += original->extended;
        controls += original->count;
    });
    printf("checked %d dialogs, %d of them extended, with %d controls\n", dialogs, extended,
           controls);
    EXPECT_GT(dialogs, kLeast);
}

TEST_F(WineModulesTest, EveryStringTableIsTranslatedEntryByEntry) {
    int tables = 0, entries = 0;
    ForEach(kStringTables, [&](const Resource& r) {
        std::vector<std::wstring> expected;
        bool any = false;
        for (const auto& entry : Entries(r.data, r.size)) {
            expected.push_back(ExpectedEntry(entry));
            any = any || !entry.empty();
        }
        auto [data, size] = LoadThroughLayer(r);
        ASSERT_NE(data, nullptr) << r.Text();
        EXPECT_EQ(data == r.data, !any) << r.Text();
        EXPECT_EQ(Entries(data, size), expected) << r.Text();
        ++tables;
        entries += static_cast<int>(
            std::count_if(expected.begin(), expected.end(), [](auto& e) { return !e.empty(); }));
    });
    printf("checked %d string tables with %d texts\n", tables, entries);
    EXPECT_GT(tables, kLeast);
}

namespace {

struct Item {
    std::string text;
    UINT state;
    UINT id;
    bool hasSubMenu;
    bool isReached;  // no untitled popup stands above it
};

void TakeItems(HMENU menu, bool isReached, std::vector<Item>& items) {
    for (int i = 0, n = GetMenuItemCount(menu); i < n; ++i) {
        HMENU sub = GetSubMenu(menu, i);
        // The state of a popup holds the number of its items in the high byte.
        UINT state = GetMenuState(menu, i, MF_BYPOSITION) & 0xFF;
        items.push_back({MenuText(menu, i), state, sub ? 0 : GetMenuItemID(menu, i), sub != nullptr,
                         isReached});
        if (sub) TakeItems(sub, isReached && !MenuText(menu, i).empty(), items);
    }
}

std::vector<Item> ItemsOf(HMENU menu) {
    std::vector<Item> items;
    TakeItems(menu, true, items);
    return items;
}

// An item after translation: what is rewritten keeps grayed and checked only.
Item Rewritten(Item item, const PseudoDictionary& dictionary) {
    if (!item.isReached || item.text.empty() || (!item.hasSubMenu && item.id == 0)) return item;
    item.text = dictionary.Translate(item.text);
    item.state = (item.state & (MF_GRAYED | MF_CHECKED)) | (item.hasSubMenu ? MF_POPUP : 0);
    return item;
}

}  // namespace

TEST_F(WineModulesTest, EveryMenuIsTranslatedItemByItem) {
    int menus = 0, items = 0, refused = 0;
    ForEach(kMenus, [&](const Resource& r) {
        Menu before{LoadMenuIndirectA(r.data)};
        if (!before.handle) return void(++refused);
        Menu after{CALL(*caller, LoadMenuIndirectA)(r.data)};
        auto expected = ItemsOf(before.handle);
        for (Item& item : expected) item = Rewritten(item, *dictionary);
        auto actual = ItemsOf(after.handle);
        ASSERT_EQ(actual.size(), expected.size()) << r.Text();
        for (size_t i = 0; i < actual.size(); ++i) {
            EXPECT_EQ(actual[i].text, expected[i].text) << r.Text() << " item " << i;
            EXPECT_EQ(actual[i].state, expected[i].state) << r.Text() << " item " << i;
            EXPECT_EQ(actual[i].id, expected[i].id) << r.Text() << " item " << i;
        }
        ++menus;
        items += static_cast<int>(actual.size());
    });
    printf("checked %d menus with %d items; %d the system refuses in any case\n", menus, items,
           refused);
    EXPECT_GT(menus, kLeast / 10);
}
