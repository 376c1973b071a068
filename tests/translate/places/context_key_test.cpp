#include "translate/dictionary/dictionary_fixture.h"
#include "translate/places/module_copy.h"

#include <atomic>
#include <cstring>
#include <thread>
#include <vector>

namespace {

std::string KeyOf(HMODULE module, const void* id, int kind) {
    char key[600] = "untouched";
    MakeResourceKey(module, id, key, kind);
    return key;
}

std::string KeyOf(HMODULE module, UINT_PTR id, int kind) {
    return KeyOf(module, reinterpret_cast<const void*>(id), kind);
}

}  // namespace

TEST(ContextKeyTest, KeyIsModuleKindAndIdBeforeTwoMarkBytes) {
    ModuleCopy view("View.dll");
    EXPECT_EQ("View.dll#1#130\xFD\xFD", KeyOf(view.Handle(), UINT_PTR(130), QXKEY_DIALOG));
    EXPECT_EQ("View.dll#2#7\xFD\xFD", KeyOf(view.Handle(), UINT_PTR(7), QXKEY_MENU));
    EXPECT_EQ("View.dll#3#4096\xFD\xFD", KeyOf(view.Handle(), UINT_PTR(4096), QXKEY_STRINGS));
}

TEST(ContextKeyTest, ModuleNameKeepsTheSpellingItWasLoadedWith) {
    ModuleCopy upper("VIEW.Dll");
    EXPECT_EQ("VIEW.Dll#1#1\xFD\xFD", KeyOf(upper.Handle(), UINT_PTR(1), 1));
}

TEST(ContextKeyTest, IdsBelow65536AreNumbersAndOthersNames) {
    ModuleCopy view("View.dll");
    EXPECT_EQ("View.dll#1#0\xFD\xFD", KeyOf(view.Handle(), UINT_PTR(0), 1));
    EXPECT_EQ("View.dll#1#65535\xFD\xFD", KeyOf(view.Handle(), UINT_PTR(0xFFFF), 1));
    EXPECT_EQ("View.dll#1#SETTINGS\xFD\xFD", KeyOf(view.Handle(), "SETTINGS", 1));
    EXPECT_EQ("View.dll#1##130\xFD\xFD", KeyOf(view.Handle(), "#130", 1));
    EXPECT_EQ("View.dll#1#\xFD\xFD", KeyOf(view.Handle(), "", 1));
}

TEST(ContextKeyTest, IdMayBeOfAnyIntegerType) {
    ModuleCopy view("View.dll");
    char key[300];
    auto keyOf = [&](auto id) {
        MakeResourceKey(view.Handle(), id, key, QXKEY_DIALOG);
        return std::string(key);
    };
    EXPECT_EQ("View.dll#1#130\xFD\xFD", keyOf(130));
    EXPECT_EQ("View.dll#1#130\xFD\xFD", keyOf(130u));
    EXPECT_EQ("View.dll#1#130\xFD\xFD", keyOf(WORD(130)));
    EXPECT_EQ("View.dll#1#130\xFD\xFD", keyOf(MAKEINTRESOURCEA(130)));
    MakeResourceKey(view.Handle(), 0, key, QXKEY_DIALOG);
    EXPECT_STREQ("View.dll#1#0\xFD\xFD", key);
}

TEST(ContextKeyTest, LongResourceNameIsWrittenWhole) {
    ModuleCopy view("View.dll");
    std::string name(500, 'n');
    EXPECT_EQ("View.dll#2#" + name + "\xFD\xFD", KeyOf(view.Handle(), name.c_str(), 2));
}

TEST(ContextKeyTest, NullModuleIsTheProgram) {
    EXPECT_EQ("test_context_key.exe#1#5\xFD\xFD", KeyOf(nullptr, UINT_PTR(5), 1));
    EXPECT_EQ("test_context_key.exe#1#5\xFD\xFD", KeyOf(GetModuleHandleA(nullptr), UINT_PTR(5), 1));
}

TEST(ContextKeyTest, KindIsWrittenAsItIs) {
    EXPECT_EQ("test_context_key.exe#-1#5\xFD\xFD", KeyOf(nullptr, UINT_PTR(5), -1));
}

TEST(ContextKeyTest, BufferStaysWhereTheModuleHasNoPath) {
    EXPECT_EQ("untouched", KeyOf(reinterpret_cast<HMODULE>(UINT_PTR(0x10000)), UINT_PTR(5), 1));
}

TEST(ContextKeyTest, NothingIsWrittenBehindTheTerminator) {
    ModuleCopy view("View.dll");
    char key[32];
    memset(key, 'x', sizeof key);
    MakeResourceKey(view.Handle(), UINT_PTR(130), key, 1);
    EXPECT_EQ(16u, strlen(key));
    for (size_t i = 17; i < sizeof key; ++i) EXPECT_EQ('x', key[i]);
}

TEST(ContextKeyTest, HashLowersAsciiLettersAndNothingElse) {
    EXPECT_EQ(0, HashResourceKey(""));
    EXPECT_EQ(97, HashResourceKey("A"));
    EXPECT_EQ(97, HashResourceKey("a"));
    EXPECT_EQ(97 * 257 + 98, HashResourceKey("Ab"));
    EXPECT_EQ(-42, HashResourceKey("\xD6")) << "0xD6 is -42 as a signed char";
    EXPECT_NE(HashResourceKey("\xD6"), HashResourceKey("\xF6"));
    EXPECT_EQ(-3 * 257 - 3, HashResourceKey(kKeyEnd));
    EXPECT_EQ('[' * 257 + '@', HashResourceKey("[@"));
}

TEST(ContextKeyTest, HashOfADialogDisregardsTheCaseOfItsModule) {
    EXPECT_EQ(HashResourceKey("view.dll#1#settings\xFD\xFD"),
              HashResourceKey("VIEW.DLL#1#Settings\xFD\xFD"));
}

TEST(ContextKeyTest, HashWrapsAround32Bits) {
    // 257^4 mod 2^32 is 67503105, 257^3 is 16974593, 257^2 is 66049; the digit '1' is 49.
    unsigned hash = 49u * 67503105u + 49u * 16974593u + 49u * 66049u + 49u * 257u + 49u;
    EXPECT_EQ(static_cast<int>(hash), HashResourceKey("11111"));
}

class InContext : public GlobalDictionary {
protected:
    static constexpr char kKey[] = "view.dll#1#130\xFD\xFD";

    void EnterAt(const char* key, const char* text, const char* target) {
        Enter(g_Wld, (std::string(key) + text).c_str(), target);
    }
};

TEST_F(InContext, EntryOfThePlaceWinsOverThePlainOne) {
    Enter(g_Wld, "Open", "plain");
    EnterAt(kKey, "Open", "here");
    EXPECT_STREQ("here", TranslateInContext("Open", kKey));
    EXPECT_STREQ("plain", TranslateInContext("Open", "view.dll#1#131\xFD\xFD"));
    EXPECT_STREQ("plain", TranslateInContext("Open", "View.dll#1#130\xFD\xFD"))
        << "text keys depend on case";
}

TEST_F(InContext, EntryOfAPlaceIsFoundAsOneText) {
    EnterAt(kKey, "Open", "here");
    EXPECT_STREQ("here", g_Wld.Translate("view.dll#1#130\xFD\xFDOpen", 1));
    EXPECT_EQ(nullptr, g_Wld.Translate("Open", 1));
}

TEST_F(InContext, EmptyTranslationForThePlaceLeadsToThePlainOne) {
    Enter(g_Wld, "Open", "plain");
    EnterAt(kKey, "Open", "");
    EXPECT_STREQ("plain", TranslateInContext("Open", kKey));
}

TEST_F(InContext, UntranslatedTextComesBackItself) {
    const char* text = "Open";
    EXPECT_EQ(text, TranslateInContext(text, kKey));
    EXPECT_EQ(text, TranslateInContext(text, nullptr));
    Enter(g_Wld, "Close", "Zu");
    EXPECT_EQ(text, TranslateInContext(text, kKey));
}

TEST_F(InContext, NullAndEmptyKeyAreNoPlace) {
    Enter(g_Wld, "Open", "plain");
    EXPECT_STREQ("plain", TranslateInContext("Open", nullptr));
    EXPECT_STREQ("plain", TranslateInContext("Open", ""));
}

TEST_F(InContext, EmptyTextGivesNullUnlessThePlaceItselfIsAnEntry) {
    EXPECT_EQ(nullptr, TranslateInContext("", kKey));
    EXPECT_EQ(nullptr, TranslateInContext(nullptr, kKey));
    EXPECT_EQ(nullptr, TranslateInContext("", nullptr));
    EnterAt(kKey, "", "caption");
    EXPECT_STREQ("caption", TranslateInContext("", kKey));
}

TEST_F(InContext, KeyAndTextAreOneTextWhereverTheBorderLies) {
    EnterAt("ab", "cd", "joined");
    EXPECT_STREQ("joined", TranslateInContext("d", "abc"));
    EXPECT_STREQ("joined", TranslateInContext("bcd", "a"));
}

TEST_F(InContext, TextsBeyond2048BytesAreFound) {
    std::string text(5000, 't'), key = kKey;
    EnterAt(kKey, text.c_str(), "long");
    EXPECT_STREQ("long", TranslateInContext(text.c_str(), kKey));
    std::string longKey(3000, 'k');
    EnterAt(longKey.c_str(), "Open", "far");
    EXPECT_STREQ("far", TranslateInContext("Open", longKey.c_str()));
}

TEST_F(InContext, StringsOfOneBlockShareItsKey) {
    ModuleCopy view("View.dll");
    EnterAt("View.dll#3#2\xFD\xFD", "Open", "in block 2");
    Enter(g_Wld, "Open", "plain");
    for (unsigned id : {15u, 16u, 20u, 31u, 32u}) {
        char key[300];
        MakeResourceKey(view.Handle(), (id >> 4) + 1, key, QXKEY_STRINGS);
        EXPECT_STREQ(id >= 16 && id < 32 ? "in block 2" : "plain", TranslateInContext("Open", key))
            << id;
    }
}

TEST_F(InContext, ManyThreadsTranslateWhileNobodyAdds) {
    EnterAt(kKey, "Open", "here");
    Enter(g_Wld, "Open", "plain");
    Enter(g_Wld, "Close", "Zu");
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 20000; ++round) {
                char buffer[16] = "Open";
                wrong += TranslateBufferInContext(buffer, sizeof buffer, kKey, 0) != 4 ||
                         strcmp(buffer, "here") != 0;
                wrong += strcmp(TranslateInContext("Open", "view.dll#1#131\xFD\xFD"), "plain") != 0;
                wrong += strcmp(TranslateInContext("Close", kKey), "Zu") != 0;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(0, wrong);
}

TEST_F(InContext, OtherDictionariesAreNotAsked) {
    CWld other;
    Enter(other, "Open", "other");
    const char* text = "Open";
    EXPECT_EQ(text, TranslateInContext(text, kKey));
}

TEST_F(InContext, BufferGetsTheTranslationAndZerosBehindIt) {
    EnterAt(kKey, "Open", "Auf");
    char buffer[16];
    memset(buffer, 'x', sizeof buffer);
    strcpy(buffer, "Open");
    EXPECT_EQ(3u, TranslateBufferInContext(buffer, 12, kKey, 0));
    EXPECT_EQ(0, memcmp(buffer, "Auf\0\0\0\0\0\0\0\0\0xxxx", 16));
}

TEST_F(InContext, CutCopyIsNotTerminatedAndTheLengthIsTheWholeTranslations) {
    Enter(g_Wld, "Open", "Aufmachen");
    for (unsigned size : {9u, 5u, 1u, 0u}) {
        char buffer[16] = "Open";
        memset(buffer + 5, 'x', sizeof buffer - 5);
        char expected[16];
        memcpy(expected, buffer, sizeof buffer);
        memcpy(expected, "Aufmachen", size);
        EXPECT_EQ(9u, TranslateBufferInContext(buffer, size, kKey, 0)) << size;
        EXPECT_EQ(0, memcmp(expected, buffer, sizeof buffer)) << size;
    }
}

TEST_F(InContext, MeasuringLeavesTheBuffer) {
    Enter(g_Wld, "Open", "Aufmachen");
    char buffer[16] = "Open";
    EXPECT_EQ(9u, TranslateBufferInContext(buffer, 16, kKey, 1));
    EXPECT_STREQ("Open", buffer);
}

TEST_F(InContext, UntranslatedBufferStaysByteForByte) {
    char buffer[16];
    memset(buffer, 'x', sizeof buffer);
    strcpy(buffer, "Open");
    EXPECT_EQ(4u, TranslateBufferInContext(buffer, 16, kKey, 0));
    EXPECT_STREQ("Open", buffer);
    EXPECT_EQ('x', buffer[5]) << "nothing was copied";
    EXPECT_EQ(4u, TranslateBufferInContext(buffer, 2, kKey, 0));
}

TEST_F(InContext, EmptyOrNullBufferGivesZero) {
    char buffer[4] = "";
    EXPECT_EQ(0u, TranslateBufferInContext(buffer, 4, kKey, 0));
    EXPECT_EQ(0u, TranslateBufferInContext(buffer, 4, nullptr, 1));
    EXPECT_EQ(0u, TranslateBufferInContext(nullptr, 4, kKey, 0));
}
