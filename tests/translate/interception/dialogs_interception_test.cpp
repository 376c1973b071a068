// The dialog functions of a patched module, read back from the live windows.
#include "translate/interception/caller.h"
#include "translate/resources/template_model.h"

namespace {

// What a user would read in the dialog that came up last.
struct Shown {
    std::string caption, label, button;
    LPARAM param = 0;
};
Shown g_shown;

std::string TextOf(HWND window) {
    char text[256] = "";
    GetWindowTextA(window, text, sizeof text);
    return text;
}

// Control 10 is a label and 12 a button in all dialogs here. A modal dialog ends with 42 before it
// is seen.
INT_PTR CALLBACK ReadDialog(HWND dialog, UINT message, WPARAM, LPARAM param) {
    if (message != WM_INITDIALOG) return FALSE;
    g_shown = {TextOf(dialog), TextOf(GetDlgItem(dialog, 10)), TextOf(GetDlgItem(dialog, 12)),
               param};
    EndDialog(dialog, 42);
    return TRUE;
}

class DialogsInterceptionTest : public DictionaryTest, public testing::WithParamInterface<int> {
protected:
    void SetUp() override {
        DictionaryTest::SetUp();
        _InitResTranslation(caller);
        Teach("Open",
              "\xD6"
              "ffnen");
        Teach("Name:", "Ihr Name:");
        Teach("Close", "Zu");
        g_shown = {};
    }
    const char* Name() const { return MAKEINTRESOURCEA(GetParam()); }
    const wchar_t* WideName() const { return MAKEINTRESOURCEW(GetParam()); }
    const DLGTEMPLATE* Template() const {
        return static_cast<const DLGTEMPLATE*>(
            LoadResource(caller, FindResourceA(caller, Name(), RT_DIALOG)));
    }
    static void ExpectGerman() {
        EXPECT_EQ(g_shown.caption,
                  "\xD6"
                  "ffnen");
        EXPECT_EQ(g_shown.label, "Ihr Name:");
        EXPECT_EQ(g_shown.button, "Zu");
        EXPECT_EQ(g_shown.param, 99);
    }
    static void ExpectEnglish() {
        EXPECT_EQ(g_shown.caption, "Open");
        EXPECT_EQ(g_shown.label, "Name:");
        EXPECT_EQ(g_shown.button, "Close");
        EXPECT_EQ(g_shown.param, 99);
    }
    static CallerModule& Caller() {
        static auto& module = *new CallerModule;
        return module;
    }
    CallerModule& caller = Caller();
};
INSTANTIATE_TEST_SUITE_P(BothForms, DialogsInterceptionTest, testing::Values(230, 231),
                         [](const auto& id) { return id.param == 230 ? "Classic" : "Extended"; });

struct Window {
    HWND handle;
    ~Window() { DestroyWindow(handle); }
    operator HWND() const { return handle; }
};

}  // namespace

TEST_P(DialogsInterceptionTest, ACreatedDialogIsTranslated) {
    Window a{CALL(caller, CreateDialogParamA)(caller, Name(), nullptr, ReadDialog, 99)};
    EXPECT_NE(a, nullptr);
    ExpectGerman();
    g_shown = {};
    Window w{CALL(caller, CreateDialogParamW)(caller, WideName(), nullptr, ReadDialog, 99)};
    EXPECT_NE(w, nullptr);
    ExpectGerman();
    EXPECT_FALSE(IsWindowUnicode(a));
}

TEST_P(DialogsInterceptionTest, AModalDialogIsTranslatedAndAnswersItsResult) {
    EXPECT_EQ(CALL(caller, DialogBoxParamA)(caller, Name(), nullptr, ReadDialog, 99), 42);
    ExpectGerman();
    g_shown = {};
    EXPECT_EQ(CALL(caller, DialogBoxParamW)(caller, WideName(), nullptr, ReadDialog, 99), 42);
    ExpectGerman();
}

TEST_P(DialogsInterceptionTest, ADialogFromATemplateIsTranslated) {
    Window a{CALL(caller, CreateDialogIndirectParamA)(caller, Template(), nullptr, ReadDialog, 99)};
    EXPECT_NE(a, nullptr);
    ExpectGerman();
    g_shown = {};
    Window w{CALL(caller, CreateDialogIndirectParamW)(caller, Template(), nullptr, ReadDialog, 99)};
    EXPECT_NE(w, nullptr);
    ExpectGerman();
}

TEST_P(DialogsInterceptionTest, AModalDialogFromATemplateIsTranslated) {
    EXPECT_EQ(CALL(caller, DialogBoxIndirectParamA)(caller, Template(), nullptr, ReadDialog, 99),
              42);
    ExpectGerman();
    g_shown = {};
    EXPECT_EQ(CALL(caller, DialogBoxIndirectParamW)(caller, Template(), nullptr, ReadDialog, 99),
              42);
    ExpectGerman();
}

TEST_P(DialogsInterceptionTest, TheSwitchTurnsTranslationOff) {
    Supp_SetTranslationEnable(0);
    DestroyWindow(CALL(caller, CreateDialogParamA)(caller, Name(), nullptr, ReadDialog, 99));
    ExpectEnglish();
    DestroyWindow(CALL(caller, CreateDialogParamW)(caller, WideName(), nullptr, ReadDialog, 99));
    ExpectEnglish();
    EXPECT_EQ(CALL(caller, DialogBoxParamA)(caller, Name(), nullptr, ReadDialog, 99), 42);
    ExpectEnglish();
    EXPECT_EQ(CALL(caller, DialogBoxParamW)(caller, WideName(), nullptr, ReadDialog, 99), 42);
    ExpectEnglish();
    DestroyWindow(
        CALL(caller, CreateDialogIndirectParamA)(caller, Template(), nullptr, ReadDialog, 99));
    ExpectEnglish();
    DestroyWindow(
        CALL(caller, CreateDialogIndirectParamW)(caller, Template(), nullptr, ReadDialog, 99));
    ExpectEnglish();
    EXPECT_EQ(CALL(caller, DialogBoxIndirectParamA)(caller, Template(), nullptr, ReadDialog, 99),
              42);
    ExpectEnglish();
    EXPECT_EQ(CALL(caller, DialogBoxIndirectParamW)(caller, Template(), nullptr, ReadDialog, 99),
              42);
    ExpectEnglish();
}

TEST_P(DialogsInterceptionTest, ADialogComesUpInTheDictionarysFont) {
    std::string face = g_Wld.m_szFontName;
    int points = g_Wld.m_nFontSize;
    g_Wld.m_bDialogFont = 1;
    strcpy(g_Wld.m_szFontName, "Courier New");
    g_Wld.m_nFontSize = 13;
    Window dialog{
        CALL(caller, CreateDialogIndirectParamA)(caller, Template(), nullptr, ReadDialog, 99)};
    LOGFONTA font = {};
    auto used = reinterpret_cast<HFONT>(SendMessageA(dialog, WM_GETFONT, 0, 0));
    ASSERT_NE(GetObjectA(used, sizeof font, &font), 0);
    EXPECT_STREQ(font.lfFaceName, "Courier New");
    HDC screen = GetDC(nullptr);
    EXPECT_EQ(font.lfHeight, -MulDiv(13, GetDeviceCaps(screen, LOGPIXELSY), 72));
    ReleaseDC(nullptr, screen);
    // The size stands in the weight's place of the extended form.
    EXPECT_EQ(font.lfWeight, GetParam() == 231 ? 13 : FW_DONTCARE);
    strcpy(g_Wld.m_szFontName, face.c_str());
    g_Wld.m_nFontSize = points;
}

TEST_P(DialogsInterceptionTest, ADialogFromATemplateHasNoContext) {
    std::string key = "caller.dll#1#" + std::to_string(GetParam()) + "\xFD\xFD";
    Teach(key + "Open", "in its context");
    EXPECT_EQ(CALL(caller, DialogBoxIndirectParamA)(caller, Template(), nullptr, ReadDialog, 99),
              42);
    EXPECT_EQ(g_shown.caption,
              "\xD6"
              "ffnen");
}

using MissingDialogTest = DialogsInterceptionTest;
INSTANTIATE_TEST_SUITE_P(Missing, MissingDialogTest, testing::Values(9999));

TEST_P(MissingDialogTest, AMissingDialogAnswers0WhereTheSystemAnswersMinus1) {
    EXPECT_EQ(CALL(caller, CreateDialogParamA)(caller, Name(), nullptr, ReadDialog, 0), nullptr);
    EXPECT_EQ(CALL(caller, CreateDialogParamW)(caller, WideName(), nullptr, ReadDialog, 0),
              nullptr);
    EXPECT_EQ(CALL(caller, DialogBoxParamA)(caller, Name(), nullptr, ReadDialog, 0), 0);
    EXPECT_EQ(CALL(caller, DialogBoxParamW)(caller, WideName(), nullptr, ReadDialog, 0), 0);
    Supp_SetTranslationEnable(0);
    EXPECT_EQ(CALL(caller, DialogBoxParamA)(caller, Name(), nullptr, ReadDialog, 0), -1);
}

TEST_P(MissingDialogTest, ANullTemplateIsTheSystemsAffair) {
    EXPECT_EQ(CALL(caller, CreateDialogIndirectParamA)(caller, nullptr, nullptr, ReadDialog, 0),
              CreateDialogIndirectParamA(caller, nullptr, nullptr, ReadDialog, 0));
    EXPECT_EQ(CALL(caller, DialogBoxIndirectParamW)(caller, nullptr, nullptr, ReadDialog, 0),
              DialogBoxIndirectParamW(caller, nullptr, nullptr, ReadDialog, 0));
}
