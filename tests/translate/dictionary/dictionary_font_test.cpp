// The font settings of a dictionary file. What the font itself is checked for belongs to the tests
// of dialog fonts.
#include "translate/dictionary/dictionary_fixture.h"

#include <cstring>

namespace {

class FontSettings : public testing::Test {
protected:
    int Add(const std::string& bytes) {
        return d.Add(m_directory.Write("f" + std::to_string(m_files++) + ".wld", bytes).c_str());
    }

    CWld d;

private:
    ScratchDirectory m_directory;
    int m_files = 0;
};

}  // namespace

TEST_F(FontSettings, ThreeSettingsMakeTheFont) {
    HFONT before = d.m_hFont;
    EXPECT_EQ(1, Add("\"DialogFontName\"\n\"No Such "
                     "Face\"\n\"DialogFontScript\"\n\"0\"\n\"DialogFontSize\"\n\"12\"\n"));
    EXPECT_STREQ("No Such Face", d.m_szFontName);
    EXPECT_EQ(0, d.m_nFontScript);
    EXPECT_EQ(12, d.m_nFontSize);
    EXPECT_EQ(1, d.m_bDialogFont);
    EXPECT_NE(nullptr, d.m_hFont);
    EXPECT_NE(before, d.m_hFont);
    EXPECT_EQ(0u, d.m_Contexts.count) << "settings are no texts";
}

TEST_F(FontSettings, SettingsMayStandBetweenTextsInAnyOrder) {
    Add("\"DialogFontSize\"\n\"9\"\n\"Open\"\n\"Auf\"\n\"DialogFontScript\"\n\"0\"\n\"Close\"\n\"Zu"
        "\"\n"
        "\"DialogFontName\"\n\"Face\"\n");
    EXPECT_STREQ("Face", d.m_szFontName);
    EXPECT_EQ(9, d.m_nFontSize);
    EXPECT_EQ(2u, d.m_Contexts.count);
}

TEST_F(FontSettings, TwoSettingsAreNone) {
    HFONT before = d.m_hFont;
    Add("\"DialogFontName\"\n\"Face\"\n\"DialogFontSize\"\n\"12\"\n");
    EXPECT_STREQ("MS Shell Dlg", d.m_szFontName);
    EXPECT_EQ(8, d.m_nFontSize);
    EXPECT_EQ(before, d.m_hFont);
    EXPECT_EQ(1, d.m_bDialogFont);
}

TEST_F(FontSettings, SettingsOfSeveralFilesAreNotAddedUp) {
    Add("\"DialogFontName\"\n\"Face\"\n\"DialogFontSize\"\n\"12\"\n");
    Add("\"DialogFontScript\"\n\"0\"\n");
    EXPECT_STREQ("MS Shell Dlg", d.m_szFontName);
}

TEST_F(FontSettings, OneSettingWrittenThreeTimesCountsAsThree) {
    Add("\"DialogFontName\"\n\"One\"\n\"DialogFontName\"\n\"Two\"\n\"DialogFontName\"\n\"Three\""
        "\n");
    EXPECT_STREQ("Three", d.m_szFontName);
    EXPECT_EQ(8, d.m_nFontSize) << "the missing size is 0 and is raised to 8";
    EXPECT_EQ(0, d.m_nFontScript);
}

TEST_F(FontSettings, ThreeSettingsWithoutANameLeaveDialogsTheirFonts) {
    Add("\"DialogFontSize\"\n\"9\"\n\"DialogFontSize\"\n\"10\"\n\"DialogFontScript\"\n\"204\"\n");
    EXPECT_EQ(0, d.m_bDialogFont);
    EXPECT_EQ(GetStockObject(DEFAULT_GUI_FONT), d.m_hFont);
    EXPECT_STREQ("MS Shell Dlg", d.m_szFontName);
}

TEST_F(FontSettings, SettingWithoutAValueRepeatsTheLastValue) {
    Add("\"DialogFontScript\"\n\"0\"\n\"DialogFontSize\"\n\"11\"\n\"DialogFontName\"\n");
    EXPECT_STREQ("11", d.m_szFontName);
}

TEST_F(FontSettings, NumbersAreReadAsFarAsTheyGo) {
    Add("\"DialogFontName\"\n\"Face\"\n\"DialogFontScript\"\n\"none\"\n\"DialogFontSize\"\n\" "
        "12pt\"\n");
    EXPECT_EQ(12, d.m_nFontSize);
    EXPECT_EQ(0, d.m_nFontScript);
}

TEST_F(FontSettings, KeysAreExact) {
    Add("\"dialogfontname\"\n\"Face\"\n\"DialogFontName \"\n\"Face\"\n\"DialogFont\"\n\"Face\"\n");
    EXPECT_STREQ("MS Shell Dlg", d.m_szFontName);
    EXPECT_EQ(3u, d.m_Contexts.count);
    EXPECT_STREQ("Face", d.Translate("dialogfontname", 1));
}

TEST_F(FontSettings, ValuesAreNotUnescaped) {
    Add("\"DialogFontName\"\n\"A\\nB\"\n\"DialogFontScript\"\n\"0\"\n\"DialogFontSize\"\n\"9\"\n");
    EXPECT_STREQ("A\\nB", d.m_szFontName);
}

TEST_F(FontSettings, LongNamesAreCut) {
    for (size_t size : {254u, 255u, 256u, 511u, 512u, 4000u}) {
        Add("\"DialogFontName\"\n\"" + std::string(size, 'f') +
            "\"\n\"DialogFontScript\"\n\"0\"\n\"DialogFontSize\"\n\"9\"\n");
        EXPECT_EQ(std::string(size < 255 ? size : 255, 'f'), d.m_szFontName) << size;
    }
}

TEST_F(FontSettings, FailureBeforeTheEndLeavesTheFont) {
    EXPECT_EQ(0, d.Add("C:\\no\\such\\file.wld"));
    EXPECT_STREQ("MS Shell Dlg", d.m_szFontName);
}

TEST(DictionaryFontTest, AnEmptyNameInTheThreeSettingsLeavesDialogsTheirOwnFonts) {
    ScratchDirectory directory;
    CWld dictionary;
    EXPECT_EQ(1, dictionary.m_bDialogFont);
    EXPECT_EQ(1, dictionary.Init(directory
                                     .Write("a.wld",
                                            "\"DialogFontName\"\n\"\"\n\"DialogFontScript\"\n"
                                            "\"0\"\n\"DialogFontSize\"\n\"8\"\n")
                                     .c_str()));
    EXPECT_EQ(0, dictionary.m_bDialogFont);
    EXPECT_EQ(0u, dictionary.m_Contexts.count);
}
