// The menu functions of a patched module.
#include "translate/interception/caller.h"

namespace {

class MenusInterceptionTest : public DictionaryTest {
protected:
    void SetUp() override {
        DictionaryTest::SetUp();
        _InitResTranslation(caller);
    }
    static std::string Text(HMENU menu, UINT position) {
        char text[256] = "";
        GetMenuStringA(menu, position, text, sizeof text, MF_BYPOSITION);
        return text;
    }
    CallerModule caller;
};

struct Menu {
    HMENU handle;
    ~Menu() { DestroyMenu(handle); }
    operator HMENU() const { return handle; }
};

// A menu template with one item Open of the id 5.
struct MenuTemplate {
    WORD version = 0, offset = 0;
    WORD flags = MF_END, id = 5;
    wchar_t text[5] = L"Open";
};

}  // namespace

TEST_F(MenusInterceptionTest, AMenuIsTranslatedWithItsSubmenus) {
    Teach("&File", "&Datei");
    Teach("Open", "Auf");
    Teach("Close", "Zu");
    Teach("Help", "Hilfe");
    Menu menu{CALL(caller, LoadMenuA)(caller, MAKEINTRESOURCEA(100))};
    EXPECT_EQ(Text(menu, 0), "&Datei");
    EXPECT_EQ(Text(menu, 1), "Hilfe");
    HMENU file = GetSubMenu(menu, 0);
    EXPECT_EQ(Text(file, 0), "Auf");
    EXPECT_EQ(Text(file, 2), "Zu");
    EXPECT_EQ(Text(file, 3), "Checked");
    EXPECT_EQ(GetMenuState(file, 2, MF_BYPOSITION) & MF_GRAYED, UINT(MF_GRAYED));
    EXPECT_EQ(GetMenuState(file, 3, MF_BYPOSITION) & MF_CHECKED, UINT(MF_CHECKED));
    EXPECT_EQ(GetMenuItemID(file, 0), 1001u);
}

TEST_F(MenusInterceptionTest, TheKeyOfAMenuHoldsItsId) {
    Teach("caller.dll#2#100\xFD\xFDOpen", "in menu 100");
    Teach("Open", "anywhere");
    Menu menu{CALL(caller, LoadMenuA)(caller, MAKEINTRESOURCEA(100))};
    EXPECT_EQ(Text(GetSubMenu(menu, 0), 0), "in menu 100");
    Menu named{CALL(caller, LoadMenuA)(caller, "MAINMENU")};
    EXPECT_EQ(Text(named, 0), "anywhere");
}

TEST_F(MenusInterceptionTest, TheKeyOfANamedMenuHoldsItsNameAsTheCallerSpellsIt) {
    Teach("caller.dll#2#MainMenu\xFD\xFDOpen", "in the main menu");
    Menu menu{CALL(caller, LoadMenuA)(caller, "MainMenu")};
    EXPECT_EQ(Text(menu, 0), "in the main menu");
    Menu upper{CALL(caller, LoadMenuA)(caller, "MAINMENU")};
    EXPECT_EQ(Text(upper, 0), "Open");
}

TEST_F(MenusInterceptionTest, AWideCallIsTranslatedToo) {
    Teach("caller.dll#2#100\xFD\xFDOpen", "in menu 100");
    Menu menu{CALL(caller, LoadMenuW)(caller, MAKEINTRESOURCEW(100))};
    EXPECT_EQ(Text(GetSubMenu(menu, 0), 0), "in menu 100");
}

TEST_F(MenusInterceptionTest, AWideNameGivesItsFirstLetterToTheKey) {
    Teach("caller.dll#2#M\xFD\xFDOpen", "M");
    Teach("caller.dll#2#MAINMENU\xFD\xFDOpen", "whole");
    Menu menu{CALL(caller, LoadMenuW)(caller, L"MAINMENU")};
    EXPECT_EQ(Text(menu, 0), "M");
}

TEST_F(MenusInterceptionTest, AMenuFromATemplateIsTranslatedWithoutAKey) {
    Teach("Open", "Auf");
    MenuTemplate menuTemplate;
    Menu menu{CALL(caller, LoadMenuIndirectA)(&menuTemplate)};
    EXPECT_EQ(Text(menu, 0), "Auf");
}

TEST_F(MenusInterceptionTest, AWideMenuFromATemplateIsNotIntercepted) {
    Teach("Open", "Auf");
    MenuTemplate menuTemplate;
    Menu menu{CALL(caller, LoadMenuIndirectW)(&menuTemplate)};
    EXPECT_EQ(Text(menu, 0), "Open");
}

TEST_F(MenusInterceptionTest, AMissingMenuIsNull) {
    Teach("Open", "Auf");
    EXPECT_EQ(CALL(caller, LoadMenuA)(caller, MAKEINTRESOURCEA(999)), nullptr);
    EXPECT_EQ(CALL(caller, LoadMenuW)(caller, L"NONE"), nullptr);
}

TEST_F(MenusInterceptionTest, TheSwitchTurnsTranslationOff) {
    Teach("Open", "Auf");
    Supp_SetTranslationEnable(0);
    Menu menu{CALL(caller, LoadMenuA)(caller, "MAINMENU")};
    EXPECT_EQ(Text(menu, 0), "Open");
    Menu wide{CALL(caller, LoadMenuW)(caller, L"MAINMENU")};
    EXPECT_EQ(Text(wide, 0), "Open");
    MenuTemplate menuTemplate;
    Menu indirect{CALL(caller, LoadMenuIndirectA)(&menuTemplate)};
    EXPECT_EQ(Text(indirect, 0), "Open");
}
