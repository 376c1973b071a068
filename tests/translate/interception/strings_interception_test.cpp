// LoadStringA and LoadStringW of a patched module.
#include "translate/interception/caller.h"

namespace {

class StringsInterceptionTest : public DictionaryTest {
protected:
    void SetUp() override {
        DictionaryTest::SetUp();
        _InitResTranslation(caller);
    }
    // The text that the module loads, and what the call answered.
    std::string Load(UINT id, int size = 256) {
        char buffer[2048] = "untouched";
        answer = CALL(caller, LoadStringA)(caller, id, buffer, size);
        return std::string(buffer, strnlen(buffer, size));
    }
    std::wstring LoadWide(UINT id, int size = 256) {
        wchar_t buffer[2048] = L"untouched";
        answer = CALL(caller, LoadStringW)(caller, id, buffer, size);
        return buffer;
    }
    CallerModule caller;
    int answer = 0;
};

}  // namespace

TEST_F(StringsInterceptionTest, AStringIsTranslatedAndTheAnswerIsItsLength) {
    Teach("Open",
          "\xD6"
          "ffnen");
    EXPECT_EQ(Load(1),
              "\xD6"
              "ffnen");
    EXPECT_EQ(answer, 6);
}

TEST_F(StringsInterceptionTest, AnUnknownStringIsTheModules) {
    Teach("Open", "Auf");
    EXPECT_EQ(Load(3), "Not in any dictionary");
    EXPECT_EQ(answer, 21);
}

TEST_F(StringsInterceptionTest, AMissingStringEmptiesTheBufferAndAnswers0) {
    Teach("Open", "Auf");
    EXPECT_EQ(Load(9999), "");
    EXPECT_EQ(answer, 0);
}

TEST_F(StringsInterceptionTest, AMissingStringHasTheTranslationOfItsPlace) {
    // The text of no characters is looked up like any other: what is found is the place alone.
    Teach("caller.dll#3#625\xFD\xFD", "nothing here");
    EXPECT_EQ(Load(9999), "nothing here");
    EXPECT_EQ(answer, 12);
    EXPECT_EQ(Load(9000), "");
    EXPECT_EQ(answer, 0);
}

TEST_F(StringsInterceptionTest, TheSixteenStringsOfABlockShareItsKey) {
    // Id 1 is in block 1 and id 16 in block 2, and both are the text Open.
    Teach("caller.dll#3#1\xFD\xFDOpen", "block one");
    Teach("caller.dll#3#2\xFD\xFDOpen", "block two");
    Teach("Open", "anywhere");
    EXPECT_EQ(Load(1), "block one");
    EXPECT_EQ(Load(16), "block two");
    EXPECT_EQ(Load(2), "Close");
}

TEST_F(StringsInterceptionTest, AnotherModulesBlockHasAnotherKey) {
    CallerModule other("other.dll");
    Teach("other.dll#3#1\xFD\xFDOpen", "the other");
    Teach("Open", "anywhere");
    EXPECT_EQ(Load(1), "anywhere");
    char buffer[64];
    EXPECT_EQ(CALL(caller, LoadStringA)(other, 1, buffer, sizeof buffer), 9);
    EXPECT_STREQ(buffer, "the other");
}

TEST_F(StringsInterceptionTest, AnIdAbove16BitsHasNoKey) {
    // The system looks at the low 16 bits of an id only.
    Teach("caller.dll#3#1\xFD\xFDOpen", "block one");
    Teach("caller.dll#3#4097\xFD\xFDOpen", "block 4097");
    EXPECT_EQ(Load(0x10001), "Open");
    Teach("Open", "anywhere");
    EXPECT_EQ(Load(0x10001), "anywhere");
}

TEST_F(StringsInterceptionTest, ATranslationLongerThanTheBufferAnswersItsWholeLength) {
    // The copy fills the caller's buffer without a terminator; nothing behind it is written.
    Teach("Open", "0123456789");
    char buffer[8];
    memset(buffer, '#', sizeof buffer);
    EXPECT_EQ(CALL(caller, LoadStringA)(caller, 1, buffer, 6), 10);
    EXPECT_EQ(std::string(buffer, 8), "012345##");
}

TEST_F(StringsInterceptionTest, TheSourceIsWhatTheSystemCutToTheBuffer) {
    Teach("Op", "cut");
    EXPECT_EQ(Load(1, 3), "cut");
    EXPECT_EQ(answer, 3);
}

TEST_F(StringsInterceptionTest, ABufferOfNoSizeIsLeftToTheSystem) {
    Teach("Open", "Auf");
    char buffer[4] = "abc";
    EXPECT_EQ(CALL(caller, LoadStringA)(caller, 1, buffer, 0), LoadStringA(caller, 1, buffer, 0));
    EXPECT_STREQ(buffer, "abc");
}

TEST_F(StringsInterceptionTest, TheOriginalTextIsStillToBeHad) {
    Teach("Open", "Auf");
    char buffer[64];
    EXPECT_EQ(_LoadStringNotTrans(caller, 1, buffer, sizeof buffer), 4);
    EXPECT_STREQ(buffer, "Open");
}

TEST_F(StringsInterceptionTest, TheSwitchTurnsTranslationOff) {
    Teach("Open", "Auf");
    Supp_SetTranslationEnable(0);
    EXPECT_EQ(Load(1), "Open");
    EXPECT_EQ(answer, 4);
    EXPECT_EQ(LoadWide(1), L"Open");
    EXPECT_EQ(answer, 4);
    Supp_SetTranslationEnable(1);
    EXPECT_EQ(Load(1), "Auf");
}

TEST_F(StringsInterceptionTest, AWideStringIsTranslatedAndTheAnswerCountsTheTerminator) {
    Teach("Open",
          "\xD6"
          "ffnen");
    EXPECT_EQ(LoadWide(1), L"\u00D6ffnen");
    EXPECT_EQ(answer, 7);
}

TEST_F(StringsInterceptionTest, AnUntranslatedWideStringCountsTheTerminatorToo) {
    EXPECT_EQ(LoadWide(2), L"Close");
    EXPECT_EQ(answer, 6);
}

TEST_F(StringsInterceptionTest, AWideStringHasNoKey) {
    Teach("caller.dll#3#1\xFD\xFDOpen", "block one");
    EXPECT_EQ(LoadWide(1), L"Open");
}

TEST_F(StringsInterceptionTest, AMissingWideStringLeavesTheBufferAndAnswers0) {
    EXPECT_EQ(LoadWide(9999), L"untouched");
    EXPECT_EQ(answer, 0);
}

TEST_F(StringsInterceptionTest, AWideStringPassesThroughTheCodePage) {
    if (GetACP() != 1252) GTEST_SKIP() << "the letter is lost in code page 1252 only";
    EXPECT_EQ(LoadWide(160), L"Open?");
    EXPECT_EQ(answer, 6);
}

TEST_F(StringsInterceptionTest, AComposedCharacterIsLookedUpPrecomposed) {
    if (GetACP() != 1252) GTEST_SKIP() << "the letter is in code page 1252";
    Teach("Caf\xE9", "Kaffee");
    EXPECT_EQ(LoadWide(176), L"Kaffee");
    EXPECT_EQ(answer, 7);
}

TEST_F(StringsInterceptionTest, AWideTranslationThatDoesNotFitAnswers0AndIsCut) {
    Teach("Open", "0123456789");
    auto load = CALL(caller, LoadStringW);
    wchar_t buffer[12];
    for (int size : {6, 10}) {
        wmemset(buffer, L'#', 12);
        EXPECT_EQ(load(caller, 1, buffer, size), 0);
        EXPECT_EQ(buffer, std::wstring(L"0123456789", size - 1));
        EXPECT_EQ(buffer[size], L'#');
    }
    EXPECT_EQ(load(caller, 1, buffer, 11), 11);
    EXPECT_EQ(buffer, std::wstring(L"0123456789"));
}

TEST_F(StringsInterceptionTest, ABufferOfNoSizeTakesTheAddressOfTheWideString) {
    Teach("Open", "Auf");
    const wchar_t* text = nullptr;
    EXPECT_EQ(CALL(caller, LoadStringW)(caller, 1, reinterpret_cast<wchar_t*>(&text), 0), 4);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(std::wstring(text, 4), L"Open");
}

TEST_F(StringsInterceptionTest, AWideStringOver1023BytesIsCutThere) {
    // String 400 has 2000 characters, and its first 1023 bytes are a source text.
    Teach(std::string(1023, 'a'), "short");
    EXPECT_EQ(LoadWide(400, 2048), L"short");
    EXPECT_EQ(answer, 6);
}

TEST_F(StringsInterceptionTest, AnUntranslatedWideStringOver1023BytesIsCutThere) {
    EXPECT_EQ(LoadWide(400, 2048), std::wstring(1023, L'a'));
    EXPECT_EQ(answer, 1024);
}

TEST_F(StringsInterceptionTest, ALongNarrowStringIsNotCut) {
    EXPECT_EQ(Load(400, 2048), std::string(2000, 'a'));
    EXPECT_EQ(answer, 2000);
}
