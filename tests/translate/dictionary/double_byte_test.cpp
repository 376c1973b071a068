// What holds under a double-byte code page only; the program runs under 932.
#include "translate/dictionary/dictionary_fixture.h"
#include "translate/places/module_copy.h"

#include <cstdlib>

TEST(DoubleByteSystem, DialogFontIsTheSystemsInterfaceFont) {
    ASSERT_NE(0, GetSystemMetrics(SM_DBCSENABLED));
    CWld d;
    EXPECT_EQ(GetStockObject(DEFAULT_GUI_FONT), d.m_hFont);
    LOGFONTA font;
    ASSERT_NE(0, GetObjectA(d.m_hFont, sizeof font, &font));
    EXPECT_STREQ(font.lfFaceName, d.m_szFontName);
    EXPECT_EQ(MulDiv(std::abs(font.lfHeight), 72, ScreenDotsPerInch()), d.m_nFontSize);
    EXPECT_EQ(0, d.m_nFontScript);
    EXPECT_EQ(1, d.m_bDialogFont);
}

TEST(DoubleByteSystem, BufferNeverEndsInHalfACharacter) {
    CWld d;
    Enter(d, "Open",
          "\x8A\x4A\x82\xAD"
          "a");  // two double-byte characters and a letter
    struct {
        unsigned size;
        unsigned bytes;
    } const rows[] = {{6, 5}, {5, 4}, {4, 2}, {3, 2}, {2, 0}, {1, 0}, {0, 0}};
    for (auto& row : rows) {
        char buffer[8] = "Open";
        EXPECT_EQ(row.bytes, d.Translate(buffer, row.size)) << row.size;
        EXPECT_EQ(std::string("\x8A\x4A\x82\xAD"
                              "a",
                              row.bytes),
                  buffer)
            << row.size;
    }
}

TEST(DoubleByteSystem, TrailByteThatLooksLikeABackslashEscapesNothing) {
    CContext context("\x83\x5Cn", "\x83\x5C\x83\x5Ct\\t");
    EXPECT_STREQ("\x83\x5Cn", context.source);
    EXPECT_STREQ("\x83\x5C\x83\x5Ct\t", context.target);
}

TEST(DoubleByteSystem, BackslashBeforeADoubleByteCharacterStays) {
    CContext context("\\\x83\x5Cn", "\\\x83\x6E");
    EXPECT_STREQ("\\\x83\x5Cn", context.source);
    EXPECT_STREQ("\\\x83\x6E", context.target) << "the trail byte 0x6E is no n";
}

TEST(DoubleByteSystem, HalfACharacterAtTheEndOfATextStays) {
    CContext context("ab\\\x83", "\x83");
    EXPECT_STREQ("ab\\\x83", context.source);
    EXPECT_STREQ("\x83", context.target);
}

TEST(DoubleByteSystem, IdeographicSpaceAroundTheQuotesIsTrimmed) {
    EXPECT_EQ("Auf",
              TranslationIn("\x81\x40\"Open\"\x81\x40\n \x81\x40\"Auf\" \x81\x40\r\n", "Open"));
}

TEST(DoubleByteSystem, DoubleByteTextsAreReadWhole) {
    EXPECT_EQ("\x8A\x4A\x82\xAD",
              TranslationIn("\"\x83\x5C\"\n\"\x8A\x4A\x82\xAD\"\n", "\x83\x5C"));
}

TEST(DoubleByteSystem, HalfACharacterBeforeTheClosingQuoteStays) {
    EXPECT_EQ("a\x83", TranslationIn("\"Open\"\n\"a\x83\"\n", "Open"));
}

TEST(DoubleByteSystem, LastByteIsDroppedAlsoWhereItIsATrailByte) {
    EXPECT_EQ("a\x8A", TranslationIn("\"Open\"\n\"a\x8A\x4A\n", "Open"));
}

TEST(DoubleByteSystem, HalfACharacterAtTheEndOfTheFileIsSurvived) {
    EXPECT_EQ("Auf", TranslationIn("\"Open\"\n\"Auf\"\n\"x\"\n\"y\x83", "Open"));
    EXPECT_EQ("Auf", TranslationIn("\"Open\"\n\"Auf\"\n\"x\"\n\x83", "Open"));
}

TEST(DoubleByteSystem, BackslashOfATrailByteSeparatesNoModuleName) {
    ModuleCopy module("\x83\x5C.dll");
    char key[64] = "";
    MakeResourceKey(module.Handle(), UINT_PTR(1), key, 1);
    EXPECT_STREQ("\x83\x5C.dll#1#1\xFD\xFD", key);
}

TEST(DoubleByteSystem, MenuTextsAreCutAtAWholeCharacter) {
    std::string source, target;
    for (int i = 0; i < 300; ++i) source += "\x8A\x4A", target += "\x82\xAD";
    CWld d;
    Enter(d, "Open", target.c_str());
    HMENU menu = CreateMenu();
    AppendMenuA(menu, 0, 10, "Open");
    AppendMenuA(menu, 0, 11, source.c_str());
    d.Translate(menu);
    char text[1024];
    GetMenuStringA(menu, 0, text, sizeof text, MF_BYPOSITION);
    EXPECT_EQ(target.substr(0, 254), text);
    GetMenuStringA(menu, 1, text, sizeof text, MF_BYPOSITION);
    EXPECT_EQ(source.substr(0, 254), text);
    DestroyMenu(menu);
}

TEST(DoubleByteSystem, MenuTextsInContextAreCutAtAWholeCharacter) {
    std::string target;
    for (int i = 0; i < 300; ++i) target += "\x82\xAD";
    Empty(g_Wld);
    Enter(g_Wld, "Open", target.c_str());
    HMENU menu = CreateMenu();
    AppendMenuA(menu, 0, 10, "Open");
    g_Wld.TranslateMenuInContext(menu, nullptr);
    char text[1024];
    GetMenuStringA(menu, 0, text, sizeof text, MF_BYPOSITION);
    EXPECT_EQ(target.substr(0, 510), text);
    DestroyMenu(menu);
    Empty(g_Wld);
}

TEST(DoubleByteSystem, BufferInContextIsCutAtItsSizeAlsoInsideACharacter) {
    Empty(g_Wld);
    Enter(g_Wld, "Open", "\x8A\x4A\x82\xAD");
    char buffer[8] = "Open";
    EXPECT_EQ(4u, TranslateBufferInContext(buffer, 3, nullptr, 0));
    EXPECT_EQ(0, memcmp(buffer, "\x8A\x4A\x82n\0\0\0", 8));
    Empty(g_Wld);
}

TEST(DoubleByteSystem, WindowTextsAreCutAtAWholeCharacter) {
    std::string source, target;
    for (int i = 0; i < 600; ++i) source += "\x8A\x4A", target += "\x82\xAD";
    Empty(g_Wld);
    Enter(g_Wld, "Open", target.c_str());
    HWND frame = CreateWindowA("STATIC", "Open", WS_OVERLAPPED, 0, 0, 9, 9, nullptr, nullptr,
                               nullptr, nullptr);
    HWND child = CreateWindowA("BUTTON", source.c_str(), WS_CHILD, 0, 0, 9, 9, frame, nullptr,
                               nullptr, nullptr);
    g_Wld.Translate(frame);
    char text[2048];
    GetWindowTextA(frame, text, sizeof text);
    EXPECT_EQ(target.substr(0, 1022), text);
    GetWindowTextA(child, text, sizeof text);
    EXPECT_EQ(source.substr(0, 1022), text);
    DestroyWindow(frame);
    Empty(g_Wld);
}
