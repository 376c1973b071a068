#include "param/small_stack.h"
#include "translate/dictionary/dictionary_fixture.h"

#include <atomic>
#include <cstring>
#include <thread>
#include <vector>

namespace {

// A menu of the test's own, destroyed with its submenus.
class Menu {
public:
    Menu() : m_menu(CreateMenu()) {}
    Menu(const Menu&) = delete;
    Menu& operator=(const Menu&) = delete;
    ~Menu() { DestroyMenu(m_menu); }
    operator HMENU() const { return m_menu; }

    void Append(UINT flags, UINT_PTR id, const char* text) {
        ASSERT_TRUE(AppendMenuA(m_menu, flags, id, text));
    }
    HMENU AppendPopup(UINT flags, const char* text) {
        HMENU popup = CreatePopupMenu();
        EXPECT_TRUE(AppendMenuA(m_menu, flags | MF_POPUP, reinterpret_cast<UINT_PTR>(popup), text));
        return popup;
    }

private:
    HMENU m_menu;
};

std::string TextAt(HMENU menu, int position) {
    char text[4096] = "";
    GetMenuStringA(menu, position, text, sizeof text, MF_BYPOSITION);
    return text;
}

UINT StateAt(HMENU menu, int position) {
    return GetMenuState(menu, position, MF_BYPOSITION);
}

}  // namespace

class MenuTest : public GlobalDictionary {};

TEST_F(MenuTest, ItemsAreTranslatedAndUnknownOnesStay) {
    CWld d;
    Enter(d, "&Open",
          "\xD6"
          "&ffnen");
    Menu menu;
    menu.Append(0, 10, "&Open");
    menu.Append(0, 11, "&Other");
    EXPECT_EQ(1, d.Translate(menu));
    EXPECT_EQ(
        "\xD6"
        "&ffnen",
        TextAt(menu, 0));
    EXPECT_EQ("&Other", TextAt(menu, 1));
    EXPECT_EQ(10u, GetMenuItemID(menu, 0));
    EXPECT_EQ(11u, GetMenuItemID(menu, 1));
}

TEST_F(MenuTest, SubmenusAreTranslatedAtEveryDepth) {
    CWld d;
    Enter(d, "File", "Datei");
    Enter(d, "Recent", "Zuletzt");
    Enter(d, "Clear", "Leeren");
    Menu menu;
    HMENU file = menu.AppendPopup(0, "File");
    HMENU recent = CreatePopupMenu();
    AppendMenuA(file, MF_POPUP, reinterpret_cast<UINT_PTR>(recent), "Recent");
    AppendMenuA(recent, 0, 5, "Clear");
    EXPECT_EQ(1, d.Translate(menu));
    EXPECT_EQ("Datei", TextAt(menu, 0));
    EXPECT_EQ(file, GetSubMenu(menu, 0));
    EXPECT_EQ("Zuletzt", TextAt(file, 0));
    EXPECT_EQ(recent, GetSubMenu(file, 0));
    EXPECT_EQ("Leeren", TextAt(recent, 0));
    EXPECT_EQ(5u, GetMenuItemID(recent, 0));
}

TEST_F(MenuTest, EmptyDictionaryChangesNothingNotEvenFlags) {
    CWld d;
    Menu menu;
    menu.Append(MF_DISABLED, 10, "Open");
    menu.AppendPopup(MF_DISABLED, "File");
    EXPECT_EQ(1, d.Translate(menu));
    EXPECT_TRUE(StateAt(menu, 0) & MF_DISABLED);
    EXPECT_TRUE(StateAt(menu, 1) & MF_DISABLED);
    EXPECT_EQ(1, d.TranslateMenuInContext(menu, "key"));
    EXPECT_TRUE(StateAt(menu, 0) & MF_DISABLED);
}

TEST_F(MenuTest, OnlyGrayedAndCheckedSurvive) {
    struct {
        UINT before;
        UINT after;
    } const rows[] = {{0, 0},
                      {MF_GRAYED, MF_GRAYED},
                      {MF_CHECKED, MF_CHECKED},
                      {MF_GRAYED | MF_CHECKED, MF_GRAYED | MF_CHECKED},
                      {MF_DISABLED, 0},
                      {MF_DISABLED | MF_CHECKED, MF_CHECKED},
                      {MF_GRAYED | MF_DISABLED, MF_GRAYED},
                      {MF_MENUBREAK, 0},
                      {MF_MENUBARBREAK | MF_GRAYED, MF_GRAYED}};
    CWld d;
    Enter(d, "Open", "Auf");
    for (bool known : {true, false}) {
        for (auto& row : rows) {
            Menu menu;
            menu.Append(row.before, 10, known ? "Open" : "Unknown");
            d.Translate(menu);
            EXPECT_EQ(row.after, StateAt(menu, 0)) << row.before << known;
            EXPECT_EQ(known ? "Auf" : "Unknown", TextAt(menu, 0));
        }
    }
}

TEST_F(MenuTest, DisabledPopupIsEnabledByTheRewriteAlsoWithItsTextUnchanged) {
    CWld d;
    Enter(d, "Other", "Anderes");
    Menu menu;
    menu.AppendPopup(MF_DISABLED, "File");
    ASSERT_TRUE(StateAt(menu, 0) & MF_DISABLED);
    d.Translate(menu);
    EXPECT_FALSE(StateAt(menu, 0) & MF_DISABLED);
    EXPECT_EQ("File", TextAt(menu, 0));
}

TEST_F(MenuTest, GrayedPopupStaysGrayed) {
    CWld d;
    Enter(d, "File", "Datei");
    Menu menu;
    menu.AppendPopup(MF_GRAYED, "File");
    d.Translate(menu);
    EXPECT_TRUE(StateAt(menu, 0) & MF_GRAYED);
    EXPECT_TRUE(StateAt(menu, 0) & MF_POPUP);
    EXPECT_EQ("Datei", TextAt(menu, 0));
}

TEST_F(MenuTest, ItemWithIdZeroKeepsItsTextAndState) {
    CWld d;
    Enter(d, "Open", "Auf");
    Menu menu;
    menu.Append(MF_DISABLED, 0, "Open");
    d.Translate(menu);
    EXPECT_EQ("Open", TextAt(menu, 0));
    EXPECT_TRUE(StateAt(menu, 0) & MF_DISABLED);
}

TEST_F(MenuTest, SeparatorsAndOwnerDrawnItemsAreSkipped) {
    CWld d;
    Enter(d, "Open", "Auf");
    Menu menu;
    menu.Append(MF_SEPARATOR, 3, nullptr);
    menu.Append(MF_OWNERDRAW, 4, reinterpret_cast<const char*>(UINT_PTR(0x1234)));
    menu.Append(0, 5, "Open");
    d.Translate(menu);
    EXPECT_TRUE(StateAt(menu, 0) & MF_SEPARATOR);
    EXPECT_TRUE(StateAt(menu, 1) & MF_OWNERDRAW);
    EXPECT_EQ("Auf", TextAt(menu, 2));
}

TEST_F(MenuTest, NullMenuIsNothingToDo) {
    CWld d;
    Enter(d, "Open", "Auf");
    EXPECT_EQ(1, d.Translate(static_cast<HMENU>(nullptr)));
    EXPECT_EQ(1, d.TranslateMenuInContext(nullptr, "key"));
}

TEST_F(MenuTest, TextsAreCutTo255Bytes) {
    CWld d;
    std::string source(1000, 's'), target(1000, 't');
    Enter(d, "Open", target.c_str());
    Menu menu;
    menu.Append(0, 10, "Open");
    menu.Append(0, 11, source.c_str());
    d.Translate(menu);
    EXPECT_EQ(target.substr(0, 255), TextAt(menu, 0));
    EXPECT_EQ(source.substr(0, 255), TextAt(menu, 1));
}

TEST_F(MenuTest, MenuInContextTakesTextsOfThePlaceFirst) {
    Enter(g_Wld, "Open", "plain");
    Enter(g_Wld, "Close", "Zu");
    Enter(g_Wld, "view.dll#2#5\xFD\xFDOpen", "here");
    Menu menu;
    HMENU file = menu.AppendPopup(0, "Open");
    AppendMenuA(file, MF_CHECKED, 10, "Open");
    AppendMenuA(file, 0, 11, "Close");
    AppendMenuA(file, 0, 12, "Other");
    EXPECT_EQ(1, g_Wld.TranslateMenuInContext(menu, "view.dll#2#5\xFD\xFD"));
    EXPECT_EQ("here", TextAt(menu, 0));
    EXPECT_EQ("here", TextAt(file, 0)) << "the key goes along into submenus";
    EXPECT_EQ(UINT(MF_CHECKED), StateAt(file, 0));
    EXPECT_EQ("Zu", TextAt(file, 1));
    EXPECT_EQ("Other", TextAt(file, 2));
}

TEST_F(MenuTest, MenuInContextAsksTheProcesssDictionaryUnlessItsOwnIsEmpty) {
    CWld d;
    Enter(g_Wld, "Open", "global");
    Menu menu;
    menu.Append(0, 10, "Open");
    d.TranslateMenuInContext(menu, nullptr);
    EXPECT_EQ("Open", TextAt(menu, 0));
    Enter(d, "Open", "own");
    d.TranslateMenuInContext(menu, nullptr);
    EXPECT_EQ("global", TextAt(menu, 0));
}

TEST_F(MenuTest, TextsInContextAreCutTo511Bytes) {
    std::string source(1000, 's'), target(1000, 't');
    Enter(g_Wld, "Open", target.c_str());
    Menu menu;
    menu.Append(0, 10, "Open");
    menu.Append(0, 11, source.c_str());
    g_Wld.TranslateMenuInContext(menu, nullptr);
    EXPECT_EQ(target.substr(0, 511), TextAt(menu, 0));
    EXPECT_EQ(source.substr(0, 511), TextAt(menu, 1));
}

TEST_F(MenuTest, SeveralThreadsTranslateMenusOfTheirOwn) {
    Enter(g_Wld, "Open", "plain");
    Enter(g_Wld, "view.dll#2#5\xFD\xFDOpen", "here");
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&wrong, inContext = i % 2 != 0] {
            for (int round = 0; round < 200; ++round) {
                Menu menu;
                HMENU file = menu.AppendPopup(0, "Open");
                AppendMenuA(file, 0, 10, "Open");
                inContext ? g_Wld.TranslateMenuInContext(menu, "view.dll#2#5\xFD\xFD")
                          : g_Wld.Translate(menu);
                const char* expected = inContext ? "here" : "plain";
                wrong += TextAt(menu, 0) != expected || TextAt(file, 0) != expected;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(0, wrong);
}

namespace {

// Popups that hang one in the other, each with one item besides. They are taken apart one by one:
// the system destroys nested menus one within the other.
class NestedMenus {
public:
    explicit NestedMenus(int depth) {
        for (int i = 0; i < depth; ++i) {
            HMENU menu = CreatePopupMenu();
            EXPECT_TRUE(menu);
            AppendMenuA(menu, MF_STRING, 7, "Open");
            if (!m_menus.empty()) {
                EXPECT_TRUE(AppendMenuA(m_menus.back(), MF_POPUP, reinterpret_cast<UINT_PTR>(menu),
                                        "Open"));
            }
            m_menus.push_back(menu);
        }
    }
    ~NestedMenus() {
        for (auto menu = m_menus.rbegin(); menu != m_menus.rend(); ++menu) {
            while (GetMenuItemCount(*menu) > 0) RemoveMenu(*menu, 0, MF_BYPOSITION);
            DestroyMenu(*menu);
        }
    }
    const std::vector<HMENU>& All() const { return m_menus; }

private:
    std::vector<HMENU> m_menus;
};

}  // namespace

// Each time with menus of their own: where popups nest more than 30 deep, the system takes them
// apart as their texts are written back.
TEST_F(MenuTest, MenusNestedToAnyDepthAreWalkedOnASmallStack) {
    CWld d;
    Enter(d, "Open", "Auf");
    Enter(g_Wld, "Open", "Offen");
    auto expectTexts = [](const NestedMenus& menus, const char* text) {
        EXPECT_EQ(TextAt(menus.All().front(), 1), text);
        for (HMENU menu : menus.All()) ASSERT_EQ(TextAt(menu, 0), text);
    };
    NestedMenus first(3000), second(3000);
    OnSmallStack([&] { d.Translate(first.All()[0]); });
    expectTexts(first, "Auf");
    OnSmallStack([&] { g_Wld.TranslateMenuInContext(second.All()[0], "a#2#1\xFD\xFD"); });
    expectTexts(second, "Offen");
}

TEST_F(MenuTest, AMenuThatHangsInItselfIsTranslatedOnce) {
    CWld d;
    Enter(d, "Open", "Auf");
    Enter(d, "Auf", "twice");
    NestedMenus menus(2);
    HMENU menu = menus.All()[0], inner = menus.All()[1];
    if (!AppendMenuA(inner, MF_POPUP, reinterpret_cast<UINT_PTR>(menu), "Open"))
        GTEST_SKIP() << "the system hangs no menu in itself";
    EXPECT_EQ(d.Translate(menu), 1);
    EXPECT_EQ(TextAt(menu, 0), "Auf");
    EXPECT_EQ(TextAt(menu, 1), "Auf");
    EXPECT_EQ(TextAt(inner, 0), "Auf");
    EXPECT_EQ(TextAt(inner, 1), "Auf");
}
