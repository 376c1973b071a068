// The dialog font: its size, its script, and the face that has it.
#include "translate/interception/caller.h"
#include "translate/interception/handle_room.h"

namespace {

constexpr int kRussian = RUSSIAN_CHARSET;

int DotsPerInch() {
    HDC screen = GetDC(nullptr);
    int dots = GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(nullptr, screen);
    return dots;
}

LOGFONTA FontOf(const CWld& dictionary) {
    LOGFONTA font = {};
    EXPECT_EQ(GetObjectA(dictionary.m_hFont, sizeof font, &font), int(sizeof font));
    return font;
}

// A face and script that some family really has, with the family's name.
struct Installed {
    std::string family, full, face;
    int script = -1;
};

int CALLBACK TakeFont(const LOGFONTA* font, const TEXTMETRICA*, DWORD, LPARAM state) {
    auto& installed = *reinterpret_cast<Installed*>(state);
    auto full = reinterpret_cast<const ENUMLOGFONTA*>(font);
    if (font->lfFaceName[0] == '@' || font->lfCharSet == 0) return 1;
    std::string fullName = reinterpret_cast<const char*>(full->elfFullName);
    if (fullName.find(font->lfFaceName) == std::string::npos) return 1;
    installed = {font->lfFaceName, fullName, font->lfFaceName, font->lfCharSet};
    return 0;
}

int CALLBACK TakeFamily(const LOGFONTA* font, const TEXTMETRICA*, DWORD, LPARAM state) {
    HDC screen = GetDC(nullptr);
    int goOn = EnumFontFamiliesA(screen, font->lfFaceName, TakeFont, state);
    ReleaseDC(nullptr, screen);
    return goOn;
}

Installed SomeFontWithAScript() {
    Installed installed;
    HDC screen = GetDC(nullptr);
    EnumFontFamiliesA(screen, nullptr, TakeFamily, reinterpret_cast<LPARAM>(&installed));
    ReleaseDC(nullptr, screen);
    return installed;
}

}  // namespace

TEST(DialogFontTest, ANewDictionaryHasAFontAndUsesIt) {
    CWld dictionary;
    EXPECT_EQ(dictionary.m_bDialogFont, 1);
    EXPECT_NE(dictionary.m_hFont, nullptr);
}

TEST(DialogFontTest, SettingAFontStoresItsNameScriptAndSize) {
    CWld dictionary;
    dictionary.SetDialogFont(0, 10, "Tahoma");
    EXPECT_EQ(dictionary.m_bDialogFont, 1);
    EXPECT_STREQ(dictionary.m_szFontName, "Tahoma");
    EXPECT_EQ(dictionary.m_nFontScript, 0);
    EXPECT_EQ(dictionary.m_nFontSize, 10);
    LOGFONTA font = FontOf(dictionary);
    EXPECT_STREQ(font.lfFaceName, "Tahoma");
    EXPECT_EQ(font.lfHeight, -(DotsPerInch() * 10) / 72);
    EXPECT_EQ(font.lfWeight, 400);
    EXPECT_EQ(font.lfItalic, 0);
    EXPECT_EQ(font.lfCharSet, 0);
}

TEST(DialogFontTest, TheSizeIsClampedTo8To16) {
    CWld dictionary;
    for (auto [given, stored] : {std::pair(20, 16),
                                 {17, 16},
                                 {16, 16},
                                 {12, 12},
                                 {8, 8},
                                 {7, 8},
                                 {6, 8},
                                 {0, 8},
                                 {-100, 8},
                                 {2147483647, 16}}) {
        dictionary.SetDialogFont(0, given, "Tahoma");
        EXPECT_EQ(dictionary.m_nFontSize, stored) << given;
        EXPECT_EQ(FontOf(dictionary).lfHeight, -(DotsPerInch() * stored) / 72) << given;
    }
}

TEST(DialogFontTest, WithoutANameDialogsKeepTheirFonts) {
    for (const char* name : {static_cast<const char*>(nullptr), ""}) {
        CWld dictionary;
        dictionary.SetDialogFont(0, 12, "Tahoma");
        dictionary.SetDialogFont(kRussian, 9, name);
        EXPECT_EQ(dictionary.m_bDialogFont, 0);
        EXPECT_EQ(dictionary.m_hFont, GetStockObject(DEFAULT_GUI_FONT));
        // The rest stays.
        EXPECT_STREQ(dictionary.m_szFontName, "Tahoma");
        EXPECT_EQ(dictionary.m_nFontSize, 12);
        EXPECT_EQ(dictionary.m_nFontScript, 0);
    }
}

TEST(DialogFontTest, TheFormerFontIsDeleted) {
    CWld dictionary;
    dictionary.SetDialogFont(0, 10, "Tahoma");
    HFONT former = dictionary.m_hFont;
    dictionary.SetDialogFont(0, 12, "Tahoma");
    LOGFONTA font;
    // The handle may serve the new font already.
    EXPECT_TRUE(former == dictionary.m_hFont || GetObjectA(former, sizeof font, &font) == 0);
    EXPECT_EQ(FontOf(dictionary).lfHeight, -(DotsPerInch() * 12) / 72);
}

TEST(DialogFontTest, AStockFontIsGivenUpUnharmed) {
    CWld dictionary;
    dictionary.SetDialogFont(0, 12, nullptr);
    dictionary.SetDialogFont(0, 12, "Tahoma");
    LOGFONTA font;
    EXPECT_EQ(GetObjectA(GetStockObject(DEFAULT_GUI_FONT), sizeof font, &font), int(sizeof font));
    EXPECT_STREQ(FontOf(dictionary).lfFaceName, "Tahoma");
}

TEST(DialogFontTest, AnUnknownFamilyKeepsItsNameAndItsScript) {
    CWld dictionary;
    dictionary.SetDialogFont(kRussian, 10, "No Such Family");
    EXPECT_STREQ(dictionary.m_szFontName, "No Such Family");
    EXPECT_EQ(dictionary.m_nFontScript, kRussian);
    EXPECT_EQ(FontOf(dictionary).lfCharSet, kRussian);
}

TEST(DialogFontTest, AScriptThatNoFontHasStays) {
    CWld dictionary;
    dictionary.SetDialogFont(123, 10, "Tahoma");
    EXPECT_STREQ(dictionary.m_szFontName, "Tahoma");
    EXPECT_EQ(dictionary.m_nFontScript, 123);
}

TEST(DialogFontTest, AnInstalledFamilyIsRefinedToTheFaceThatHasTheScript) {
    Installed installed = SomeFontWithAScript();
    if (installed.script < 0) GTEST_SKIP() << "no installed font has a script of its own";
    CWld dictionary;
    dictionary.SetDialogFont(installed.script, 10, installed.family.c_str());
    EXPECT_EQ(dictionary.m_szFontName, installed.face);
    EXPECT_EQ(dictionary.m_nFontScript, installed.script);
    EXPECT_EQ(FontOf(dictionary).lfCharSet, installed.script);
}

TEST(DialogFontTest, AFullNameIsRefinedToItsFaceWhenThatHasTheScript) {
    // Wine brings this family along, and finds a font by its full name too.
    const char* fullName = "Tahoma Bold";
    CWld dictionary;
    dictionary.SetDialogFont(kRussian, 10, fullName);
    EXPECT_STREQ(dictionary.m_szFontName, "Tahoma");
    EXPECT_STREQ(FontOf(dictionary).lfFaceName, "Tahoma");
    EXPECT_EQ(dictionary.m_nFontScript, kRussian);
    // The script 0 is not looked for, and of another one nothing is found.
    for (int script : {0, 123}) {
        dictionary.SetDialogFont(script, 10, fullName);
        EXPECT_STREQ(dictionary.m_szFontName, fullName) << script;
        EXPECT_EQ(dictionary.m_nFontScript, script);
    }
}

TEST(DialogFontTest, TheFaceFoundOverwritesAFamilyNameInAnotherSpelling) {
    // Families are found without regard to case, but the full name must hold the wanted name as it
    // is spelled.
    Installed installed = SomeFontWithAScript();
    if (installed.script < 0) GTEST_SKIP() << "no installed font has a script of its own";
    std::string lower = installed.family;
    CharLowerA(lower.data());
    if (lower == installed.family) GTEST_SKIP() << "the family has no capital letters";
    CWld dictionary;
    dictionary.SetDialogFont(installed.script, 10, lower.c_str());
    EXPECT_EQ(dictionary.m_szFontName, lower);
}

TEST(DialogFontTest, ANameThatIsTooLongIsCut) {
    CWld dictionary;
    dictionary.SetDialogFont(kRussian, 10, std::string(600, 'x').c_str());
    EXPECT_EQ(dictionary.m_szFontName, std::string(255, 'x'));
}

TEST(DialogFontTest, TheDictionarysOwnNameCanBeSetAgain) {
    CWld dictionary;
    dictionary.SetDialogFont(0, 10, "Tahoma");
    dictionary.SetDialogFont(0, 14, dictionary.m_szFontName);
    EXPECT_STREQ(dictionary.m_szFontName, "Tahoma");
    EXPECT_EQ(dictionary.m_nFontSize, 14);
}

TEST(DialogFontTest, AThousandChangesKeepOneFont) {
    CWld dictionary;
    dictionary.SetDialogFont(0, 10, "Tahoma");
    size_t before = GdiRoom();
    for (int i = 0; i < 1000; ++i)
        dictionary.SetDialogFont(i % 2 ? kRussian : 0, 8 + i % 9, "Tahoma");
    EXPECT_GT(GdiRoom() + 10, before);
}
