// The layer under a double-byte code page; the program runs under 932.
#include "translate/interception/caller.h"
#include "translate/resources/template_model.h"

namespace {

// The word for "open": two characters of two bytes each.
#define OPEN_932 "\x8A\x4A\x82\xAD"
constexpr const wchar_t* kOpen = L"\u958B\u304F";

class DoubleByteInterceptionTest : public DictionaryTest {
protected:
    void SetUp() override {
        DictionaryTest::SetUp();
        _InitResTranslation(caller);
        Teach("Open", OPEN_932);
    }
    static CallerModule& Caller() {
        static auto& module = *new CallerModule;
        return module;
    }
    std::pair<const wchar_t*, DWORD> LoadBlock(UINT block) {
        HRSRC found = CALL(caller, FindResourceA)(caller, MAKEINTRESOURCEA(block), RT_STRING);
        auto data = static_cast<const wchar_t*>(CALL(caller, LoadResource)(caller, found));
        return {data, CALL(caller, SizeofResource)(caller, found)};
    }
    CallerModule& caller = Caller();
};

}  // namespace

TEST_F(DoubleByteInterceptionTest, TheProgramRunsUnderCodePage932) {
    ASSERT_EQ(GetACP(), 932u);
}

TEST_F(DoubleByteInterceptionTest, ANarrowStringCountsBytesAndAWideOneCharacters) {
    char text[64];
    EXPECT_EQ(CALL(caller, LoadStringA)(caller, 1, text, 64), 4);
    EXPECT_STREQ(text, OPEN_932);
    wchar_t wide[64];
    EXPECT_EQ(CALL(caller, LoadStringW)(caller, 1, wide, 64), 3);
    EXPECT_STREQ(wide, kOpen);
}

TEST_F(DoubleByteInterceptionTest, AWideStringThatDoesNotFitAnswers0AndIsCutAtAWholeCharacter) {
    Teach("Op", OPEN_932 "\x82\xAD");
    wchar_t wide[5] = L"####";
    EXPECT_EQ(CALL(caller, LoadStringW)(caller, 1, wide, 3), 0);
    EXPECT_EQ(std::wstring(wide, 4), std::wstring(L"\u958B\u304F\0#", 4));
}

TEST_F(DoubleByteInterceptionTest, AWideStringOver1023BytesIsCutAtAWholeCharacter) {
    // 600 characters take 1200 bytes; 511 of them fit.
    wchar_t wide[1024];
    EXPECT_EQ(CALL(caller, LoadStringW)(caller, 416, wide, 1024), 512);
    EXPECT_EQ(std::wstring(wide), std::wstring(511, L'\u958B'));
}

TEST_F(DoubleByteInterceptionTest, AnEntryOfAStringTableIsAsLongAsItsBytes) {
    // Two characters, and zeros up to the four that the length tells.
    auto [words, size] = LoadBlock(1);
    ASSERT_GT(size, 14u);
    EXPECT_EQ(words[0], 0);
    EXPECT_EQ(words[1], 4);
    EXPECT_EQ(std::wstring(words + 2, 4), std::wstring(L"\u958B\u304F\0\0", 4));
    EXPECT_EQ(words[6], 5);
    EXPECT_EQ(std::wstring(words + 7, 5), L"Close");
}

TEST_F(DoubleByteInterceptionTest, AnEntryThatTakesMoreBytesThanCharactersStays) {
    Teach(OPEN_932, "wrong");
    auto [words, size] = LoadBlock(52);
    ASSERT_EQ(size, 6u);
    EXPECT_EQ(words[0], 2);
    EXPECT_EQ(std::wstring(words + 1, 2), kOpen);
}

TEST_F(DoubleByteInterceptionTest, ADialogIsTranslatedIntoCharacters) {
    HRSRC found = FindResourceA(caller, MAKEINTRESOURCEA(200), RT_DIALOG);
    auto dialog = static_cast<unsigned char*>(LoadResource(caller, found));
    size_t left;
    auto expected = ParseTemplate(dialog, SizeofResource(caller, found), &left);
    int size = 0;
    unsigned char* block = TranslateDlgInternal(dialog, &size);
    auto actual = ParseTemplate(block, static_cast<size_t>(size));
    expected->caption = kOpen;
    EXPECT_EQ(actual, expected);
    free(block);
}

TEST_F(DoubleByteInterceptionTest, AFontNameIsCutAtAWholeCharacter) {
    std::string name;
    for (int i = 0; i < 200; ++i) name += "\x8A\x4A";
    CWld dictionary;
    dictionary.SetDialogFont(0, 10, name.c_str());
    EXPECT_EQ(dictionary.m_szFontName, name.substr(0, 254));
}
