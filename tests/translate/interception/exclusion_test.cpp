// Modules whose own resources stay untranslated, whoever loads them.
#include "support/import_slot.h"
#include "translate/interception/caller.h"

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

std::string g_caption;

INT_PTR CALLBACK TakeCaption(HWND dialog, UINT message, WPARAM, LPARAM) {
    if (message != WM_INITDIALOG) return FALSE;
    char text[64] = "";
    GetWindowTextA(dialog, text, sizeof text);
    g_caption = text;
    EndDialog(dialog, 42);
    return TRUE;
}

const MSGBOXPARAMSA* g_block;

int WINAPI AnswerBlock(const MSGBOXPARAMSA* block) {
    g_block = block;
    return 4711;
}

INT_PTR WINAPI AnswerDialogA(HINSTANCE, const char*, HWND, DLGPROC, LPARAM) {
    return 1001;
}

INT_PTR WINAPI AnswerDialogW(HINSTANCE, const wchar_t*, HWND, DLGPROC, LPARAM) {
    return 1002;
}

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

TEST_F(ExclusionTest, TheExFunctionsExchangeTypeAndNameForAnExcludedModule) {
    CallerModule& late = Late();
    constexpr WORD kEnglish = MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US);
    HRSRC real = FindResourceExA(late, RT_DIALOG, MAKEINTRESOURCEA(200), kEnglish);
    auto findA = CALL(caller, FindResourceExA);
    auto findW = CALL(caller, FindResourceExW);
    EXPECT_EQ(findA(late, MAKEINTRESOURCEA(200), RT_DIALOG, kEnglish), real);
    EXPECT_EQ(findA(late, RT_DIALOG, MAKEINTRESOURCEA(200), kEnglish), nullptr);
    EXPECT_EQ(findW(late, MAKEINTRESOURCEW(200), MAKEINTRESOURCEW(5), kEnglish), real);
    EXPECT_EQ(findW(late, MAKEINTRESOURCEW(5), MAKEINTRESOURCEW(200), kEnglish), nullptr);
}

TEST_F(ExclusionTest, DialogsOfAnExcludedModuleKeepTheirLanguage) {
    CallerModule& late = Late();
    const char* name = MAKEINTRESOURCEA(230);
    const wchar_t* wideName = MAKEINTRESOURCEW(230);
    auto dialog =
        static_cast<const DLGTEMPLATE*>(LoadResource(late, FindResourceA(late, name, RT_DIALOG)));
    auto captionOf = [&](auto run) {
        g_caption = "";
        run();
        return g_caption;
    };
#define CAPTION(function, source) \
    captionOf([&] { CALL(caller, function)(late, source, nullptr, TakeCaption, 0); })
    EXPECT_EQ(CAPTION(CreateDialogParamA, name), "Open");
    EXPECT_EQ(CAPTION(CreateDialogParamW, wideName), "Open");
    EXPECT_EQ(CAPTION(DialogBoxParamA, name), "Open");
    EXPECT_EQ(CAPTION(DialogBoxParamW, wideName), "Open");
    EXPECT_EQ(CAPTION(CreateDialogIndirectParamA, dialog), "Open");
    EXPECT_EQ(CAPTION(CreateDialogIndirectParamW, dialog), "Open");
    EXPECT_EQ(CAPTION(DialogBoxIndirectParamA, dialog), "Open");
    EXPECT_EQ(CAPTION(DialogBoxIndirectParamW, dialog), "Open");
#undef CAPTION
    CALL(caller, DialogBoxParamA)(caller, name, nullptr, TakeCaption, 0);
    EXPECT_EQ(g_caption, "Auf");
}

TEST_F(ExclusionTest, AMessageBoxBlockOfAnExcludedModuleIsPassedOn) {
    CallerModule& late = Late();
    LoadFrom(late);
    ReplacedImport none("MessageBoxIndirectA", reinterpret_cast<void*>(AnswerBlock));
    // The library's own import serves while nothing was found at an installation.
    std::vector<char> noModule(4096);
    _InitResTranslation(reinterpret_cast<HMODULE>(noModule.data()));
    MSGBOXPARAMSA block = {};
    block.cbSize = sizeof block;
    block.hInstance = late;
    block.lpszText = MAKEINTRESOURCEA(1);
    block.lpszCaption = "Open";
    EXPECT_EQ(CALL(caller, MessageBoxIndirectA)(&block), 4711);
    EXPECT_EQ(g_block, &block);
    EXPECT_EQ(block.lpszText, MAKEINTRESOURCEA(1));
    EXPECT_STREQ(block.lpszCaption, "Open");
    block.hInstance = caller;
    EXPECT_EQ(CALL(caller, MessageBoxIndirectA)(&block), 4711);
    EXPECT_STREQ(block.lpszText, "Auf");
    EXPECT_STREQ(block.lpszCaption, "Auf");
}

TEST_F(ExclusionTest, WithoutTranslationModalDialogsGoThroughTheLibrarysOwnImport) {
    ReplacedImport narrow("DialogBoxParamA", reinterpret_cast<void*>(AnswerDialogA));
    ReplacedImport wide("DialogBoxParamW", reinterpret_cast<void*>(AnswerDialogW));
    CallerModule& late = Late();
    auto runA = CALL(caller, DialogBoxParamA);
    auto runW = CALL(caller, DialogBoxParamW);
    EXPECT_EQ(runA(late, MAKEINTRESOURCEA(230), nullptr, TakeCaption, 0), 1001);
    EXPECT_EQ(runW(late, MAKEINTRESOURCEW(230), nullptr, TakeCaption, 0), 1002);
    Supp_SetTranslationEnable(0);
    EXPECT_EQ(runA(caller, MAKEINTRESOURCEA(230), nullptr, TakeCaption, 0), 1001);
    EXPECT_EQ(runW(caller, MAKEINTRESOURCEW(230), nullptr, TakeCaption, 0), 1002);
    Supp_SetTranslationEnable(1);
    EXPECT_EQ(runA(caller, MAKEINTRESOURCEA(230), nullptr, TakeCaption, 0), 42);
}

TEST_F(ExclusionTest, TheHandleOfAnExcludedModuleIsLockedByTheSystem) {
    CallerModule& late = Late();
    LoadFrom(late);  // it is known from here on
    EXPECT_EQ(CALL(caller, LockResource)(late), LockResource(late));
    EXPECT_EQ(CALL(caller, FreeResource)(late), FreeResource(late));
}
