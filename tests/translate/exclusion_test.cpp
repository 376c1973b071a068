// Modules whose own resources stay untranslated, whoever loads them.
#include "translate/caller.h"

namespace {

class ExclusionTest : public DictionaryTest {
protected:
    void SetUp() override {
        DictionaryTest::SetUp();
        _InitResTranslation(caller);
        Teach("Open", "Auf");
    }
    // Once found, the late module is known by its handle for good, so it stays for the whole run.
    static CallerModule& Late() {
        static auto& module = *new CallerModule("acopm.arx");
        return module;
    }
    std::string LoadFrom(HMODULE module) {
        char buffer[64] = "";
        CALL(caller, LoadStringA)(module, 1, buffer, sizeof buffer);
        return buffer;
    }
    CallerModule caller;
};

}  // namespace

TEST_F(ExclusionTest, ALateModuleIsExcludedFromItsLoadOn) {
    // The program never called Supp_Init, and the other excluded names are not known before it.
    EXPECT_EQ(LoadFrom(caller), "Auf");
    CallerModule& late = Late();
    EXPECT_EQ(LoadFrom(late), "Open");
    EXPECT_EQ(LoadFrom(caller), "Auf");
    for (const char* name : {"acadres.dll", "acltres.dll", "acad.exe", "aclt.exe"}) {
        CallerModule module(name);
        EXPECT_EQ(LoadFrom(module), "Auf") << name;
    }
}

TEST_F(ExclusionTest, ACallFromAnExcludedModuleForAnotherModuleIsTranslated) {
    CallerModule& late = Late();
    _InitResTranslation(late);
    char buffer[64] = "";
    EXPECT_EQ(CALL(late, LoadStringA)(caller, 1, buffer, sizeof buffer), 3);
    EXPECT_STREQ(buffer, "Auf");
    EXPECT_EQ(CALL(late, LoadStringA)(late, 1, buffer, sizeof buffer), 4);
    EXPECT_STREQ(buffer, "Open");
}

TEST_F(ExclusionTest, EveryFunctionWithAModuleLeavesAnExcludedModuleAlone) {
    CallerModule& late = Late();
    wchar_t wide[64];
    EXPECT_EQ(CALL(caller, LoadStringW)(late, 1, wide, 64), 4);
    char text[64];
    HMENU menu = CALL(caller, LoadMenuA)(late, "MAINMENU");
    GetMenuStringA(menu, 0, text, 64, MF_BYPOSITION);
    EXPECT_STREQ(text, "Open");
    DestroyMenu(menu);
    menu = CALL(caller, LoadMenuW)(late, L"MAINMENU");
    GetMenuStringA(menu, 0, text, 64, MF_BYPOSITION);
    EXPECT_STREQ(text, "Open");
    DestroyMenu(menu);
    HRSRC real = FindResourceA(late, MAKEINTRESOURCEA(200), RT_DIALOG);
    EXPECT_EQ(CALL(caller, FindResourceA)(late, MAKEINTRESOURCEA(200), MAKEINTRESOURCEA(5)), real);
    EXPECT_EQ(CALL(caller, FindResourceW)(late, MAKEINTRESOURCEW(200), MAKEINTRESOURCEW(5)), real);
    EXPECT_EQ(CALL(caller, LoadResource)(late, real), LoadResource(late, real));
    EXPECT_EQ(CALL(caller, SizeofResource)(late, real), SizeofResource(late, real));
}

TEST_F(ExclusionTest, TheHandleOfAnExcludedModuleIsLockedByTheSystem) {
    CallerModule& late = Late();
    LoadFrom(late);  // it is known from here on
    EXPECT_EQ(CALL(caller, LockResource)(late), LockResource(late));
    EXPECT_EQ(CALL(caller, FreeResource)(late), FreeResource(late));
}
