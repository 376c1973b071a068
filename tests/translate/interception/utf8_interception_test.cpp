// The translation layer in a process whose narrow texts are UTF-8; the program runs under 65001.
#include "support/scratch_directory.h"
#include "translate/interception/caller.h"
#include "translate/resources/template_model.h"

namespace {

// The word for "open": two characters of three bytes each.
#define OPEN_UTF8 "\xE9\x96\x8B\xE3\x81\x8F"
constexpr const wchar_t* kOpen = L"\u958B\u304F";

class Utf8InterceptionTest : public DictionaryTest {
protected:
    void SetUp() override {
        DictionaryTest::SetUp();
        _InitResTranslation(caller);
        Teach("Open", OPEN_UTF8);
    }
    static CallerModule& Caller() {
        static auto& module = *new CallerModule;
        return module;
    }
    // What becomes of a dialog with this caption.
    std::wstring Caption(const std::wstring& caption) {
        DialogModel dialog;
        dialog.caption = caption;
        auto bytes = WriteTemplate(dialog);
        int size = 0;
        unsigned char* block = TranslateDlgInternal(bytes.data(), &size);
        auto translated = ParseTemplate(block, static_cast<size_t>(size));
        free(block);
        return translated ? translated->caption : L"(none)";
    }
    CallerModule& caller = Caller();
};

}  // namespace

TEST_F(Utf8InterceptionTest, TheProgramRunsUnderUtf8) {
    ASSERT_EQ(GetACP(), 65001u);
}

TEST_F(Utf8InterceptionTest, ADictionaryFileIsReadAsUtf8) {
    ScratchDirectory directory;
    CWld dictionary;
    ASSERT_EQ(1, dictionary.Init(directory
                                     .Write("a.wld", "\"Open\"\n\"" OPEN_UTF8 "\"\n\"" OPEN_UTF8
                                                     "\"\n\"\\t\xC3\xB6\\n\"\n")
                                     .c_str()));
    EXPECT_STREQ(OPEN_UTF8, dictionary.Translate("Open", 1));
    EXPECT_STREQ("\t\xC3\xB6\n", dictionary.Translate(OPEN_UTF8, 1));
}

TEST_F(Utf8InterceptionTest, APlaceEndsInItsTwoBytesAlsoWhereTheyAreNoUtf8) {
    Teach("caller.dll#3#1\xFD\xFDOpen",
          "\xC3\x96"
          "ffnen");
    char text[64];
    EXPECT_EQ(CALL(caller, LoadStringA)(caller, 1, text, 64), 7);
    EXPECT_STREQ(text,
                 "\xC3\x96"
                 "ffnen");
}

TEST_F(Utf8InterceptionTest, ANarrowStringCountsBytesAndAWideOneCharacters) {
    char text[64];
    EXPECT_EQ(CALL(caller, LoadStringA)(caller, 1, text, 64), 6);
    EXPECT_STREQ(text, OPEN_UTF8);
    wchar_t wide[64];
    EXPECT_EQ(CALL(caller, LoadStringW)(caller, 1, wide, 64), 3);
    EXPECT_STREQ(wide, kOpen);
}

TEST_F(Utf8InterceptionTest, NoCharacterOfAWideStringIsLost) {
    wchar_t wide[64];
    EXPECT_EQ(CALL(caller, LoadStringW)(caller, 160, wide, 64), 6);
    EXPECT_STREQ(wide, L"Open\u0416");
}

TEST_F(Utf8InterceptionTest, AWideStringOver1023BytesIsCutAtAWholeCharacter) {
    // 600 characters take 1800 bytes; 341 of them fit.
    wchar_t wide[1024];
    EXPECT_EQ(CALL(caller, LoadStringW)(caller, 416, wide, 1024), 342);
    EXPECT_EQ(std::wstring(wide), std::wstring(341, L'\u958B'));
}

TEST_F(Utf8InterceptionTest, ABufferNeverEndsInAPartOfASequence) {
    for (auto [size, bytes] : {std::pair(7, 6), {6, 3}, {4, 3}, {3, 0}, {1, 0}}) {
        char buffer[16] = "Open";
        EXPECT_EQ(Supp_Translate(buffer, static_cast<unsigned>(size)), unsigned(bytes)) << size;
        EXPECT_EQ(std::string(OPEN_UTF8, bytes), buffer) << size;
    }
}

TEST_F(Utf8InterceptionTest, AMenuIsTranslated) {
    HMENU menu = CALL(caller, LoadMenuA)(caller, "MAINMENU");
    wchar_t text[64] = L"";
    GetMenuStringW(menu, 0, text, 64, MF_BYPOSITION);
    EXPECT_STREQ(text, kOpen);
    DestroyMenu(menu);
}

TEST_F(Utf8InterceptionTest, AMenuTextIsCutAtAWholeSequence) {
    std::string target;
    for (int i = 0; i < 300; ++i) target += "\xE9\x96\x8B";
    Teach("Open", target);
    HMENU menu = CALL(caller, LoadMenuA)(caller, "MAINMENU");
    wchar_t text[512] = L"";
    GetMenuStringW(menu, 0, text, 512, MF_BYPOSITION);
    EXPECT_EQ(std::wstring(text), std::wstring(511 / 3, L'\u958B'));
    DestroyMenu(menu);
}

TEST_F(Utf8InterceptionTest, ADialogIsTranslatedIntoCharacters) {
    EXPECT_EQ(Caption(L"Open"), kOpen);
}

TEST_F(Utf8InterceptionTest, ADialogTextWithLettersFrom80ToFFIsLookedUpByTheirLowBytes) {
    // These are no UTF-8, so an entry for the text cannot be typed, and without one the letters are
    // lost.
    EXPECT_EQ(Caption(L"Caf\u00E9"), L"Caf\uFFFD");
    Teach("Caf\xE9", OPEN_UTF8);
    EXPECT_EQ(Caption(L"Caf\u00E9"), kOpen);
}

TEST_F(Utf8InterceptionTest, AStringTablesEntryIsAsLongAsItsBytes) {
    HRSRC found = CALL(caller, FindResourceA)(caller, MAKEINTRESOURCEA(1), RT_STRING);
    auto words = static_cast<const wchar_t*>(CALL(caller, LoadResource)(caller, found));
    EXPECT_EQ(words[1], 6);
    EXPECT_EQ(std::wstring(words + 2, 6), std::wstring(L"\u958B\u304F\0\0\0\0", 6));
}

TEST_F(Utf8InterceptionTest, AStringTablesEntryWithOtherLettersThanAsciiStays) {
    Teach(OPEN_UTF8, "wrong");
    HRSRC found = CALL(caller, FindResourceA)(caller, MAKEINTRESOURCEA(52), RT_STRING);
    auto words = static_cast<const wchar_t*>(CALL(caller, LoadResource)(caller, found));
    EXPECT_EQ(words[0], 2);
    EXPECT_EQ(std::wstring(words + 1, 2), kOpen);
}

TEST_F(Utf8InterceptionTest, ModuleNamesInKeysAreUtf8) {
    ScratchDirectory directory;
    std::string path = directory.PathOf("\xC3\xB6.dll");
    ASSERT_TRUE(CopyFileA((ModuleFolder() + "caller.dll").c_str(), path.c_str(), TRUE));
    HMODULE module = LoadLibraryA(path.c_str());
    char key[64] = "";
    MakeResourceKey(module, 5, key, 1);
    EXPECT_STREQ(key, "\xC3\xB6.dll#1#5\xFD\xFD");
    FreeLibrary(module);
}

TEST_F(Utf8InterceptionTest, AFontNameIsCutAtAWholeSequence) {
    std::string name;
    for (int i = 0; i < 200; ++i) name += "\xE9\x96\x8B";
    CWld dictionary;
    dictionary.SetDialogFont(0, 10, name.c_str());
    EXPECT_EQ(dictionary.m_szFontName, name.substr(0, 255 / 3 * 3));
}
