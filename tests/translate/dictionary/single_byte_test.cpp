// What holds under a single-byte code page only; the program runs under 1252.
#include "translate/dictionary/dictionary_fixture.h"

TEST(SingleByteSystem, DialogFontIsMsShellDlgOf8Points) {
    ASSERT_EQ(0, GetSystemMetrics(SM_DBCSENABLED));
    CWld d;
    EXPECT_STREQ("MS Shell Dlg", d.m_szFontName);
    EXPECT_EQ(8, d.m_nFontSize);
    EXPECT_EQ(0, d.m_nFontScript);
    LOGFONTA font;
    ASSERT_NE(0, GetObjectA(d.m_hFont, sizeof font, &font));
    EXPECT_STREQ("MS Shell Dlg", font.lfFaceName);
    EXPECT_EQ(-(ScreenDotsPerInch() * 8) / 72, font.lfHeight);
    EXPECT_EQ(400, font.lfWeight);
    EXPECT_EQ(0, font.lfWidth);
    EXPECT_EQ(0, font.lfCharSet);
    EXPECT_EQ(0, font.lfItalic);
    DeleteObject(d.m_hFont);
}

TEST(SingleByteSystem, EachDictionaryHasAFontOfItsOwn) {
    CWld a, b;
    EXPECT_NE(a.m_hFont, b.m_hFont);
    DeleteObject(a.m_hFont);
    DeleteObject(b.m_hFont);
}

TEST(SingleByteSystem, BytesAbove127StandAlone) {
    CWld d;
    Enter(d, "a", "x\x83\x5Cn");
    EXPECT_STREQ("x\x83\n", d.Translate("a", 1)) << "0x83 leads nothing, so the backslash is one";
}

// Under Wine 0xA0, the no-break space, counts as a space of code page 1252.
TEST(SingleByteSystem, NoBreakSpaceAroundTheQuotesIsTrimmed) {
    EXPECT_EQ("Auf", TranslationIn("\xA0\"Open\"\xA0\n \xA0\"Auf\"\xA0 \n", "Open"));
}
