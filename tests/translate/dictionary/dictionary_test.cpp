#include "support/allocation_failure.h"
#include "translate/dictionary/dictionary_fixture.h"

#include <cstring>
#include <memory>
#include <type_traits>

namespace {

const char* AddressOf(const void* field) {
    return static_cast<const char*>(field);
}

// Two texts with one 32-bit hash, 2761887746.
constexpr char kCollidingFirst[] = "Scale row as column";
constexpr char kCollidingSecond[] = "Print arc in active drawing";

}  // namespace

TEST(DictionaryTest, FieldsComeInTheToldOrder) {
    CWld d;
    const void* fields[] = {&d.m_bDialogFont, &d.m_szFontName, &d.m_nFontScript,
                            &d.m_nFontSize,   &d.m_nContexts,  &d.m_hFont,
                            &d.m_bInit,       &d.m_Contexts,   &d.m_DlgPos};
    EXPECT_EQ(AddressOf(&d), AddressOf(fields[0]));
    for (size_t i = 1; i < std::size(fields); ++i)
        EXPECT_LT(AddressOf(fields[i - 1]), AddressOf(fields[i])) << i;
    static_assert(sizeof d.m_szFontName == 256);
}

TEST(DictionaryTest, DictionaryAndItsRecordsHaveNoVirtualOperations) {
    EXPECT_FALSE(std::is_polymorphic_v<CWld>);
    EXPECT_FALSE(std::is_polymorphic_v<CContext>);
    EXPECT_FALSE(std::is_polymorphic_v<QXDlgPos>);
    EXPECT_EQ(sizeof(CIRect), 16u);
}

TEST(DictionaryTest, NewDictionaryIsEmptyAndNotInitialised) {
    CWld d;
    EXPECT_EQ(1, d.m_bDialogFont);
    EXPECT_EQ(0, d.m_bInit);
    EXPECT_EQ(0, d.m_nFontScript);
    EXPECT_EQ(0, d.m_nContexts);
    EXPECT_EQ(0u, d.m_Contexts.count);
    EXPECT_EQ(0u, d.m_DlgPos.count);
}

TEST(DictionaryTest, MapsHave127BucketsMadeAtFirstUse) {
    CWld d;
    EXPECT_EQ(127u, d.m_Contexts.bucketCount);
    EXPECT_EQ(127u, d.m_DlgPos.bucketCount);
    EXPECT_EQ(0u, d.m_Contexts.tableMark);
    EXPECT_EQ(0u, d.m_DlgPos.tableMark);
    Enter(d, "Open", "Auf");
    EXPECT_EQ(6502u, d.m_Contexts.tableMark);
    EXPECT_EQ(0u, d.m_DlgPos.tableMark);
}

TEST(DictionaryTest, NewGeometryIsZeroWithoutRectangles) {
    QXDlgPos geometry;
    EXPECT_EQ(0, geometry.m_Size.cx);
    EXPECT_EQ(0, geometry.m_Size.cy);
    EXPECT_EQ(0u, geometry.m_Rects.count);
    EXPECT_EQ(127u, geometry.m_Rects.bucketCount);
}

TEST(ContextTest, NullSourceIsEmptyAndNullTargetIsTheSource) {
    CContext both(nullptr, nullptr);
    EXPECT_STREQ("", both.source);
    EXPECT_STREQ("", both.target);
    CContext copied("Open", nullptr);
    EXPECT_STREQ("Open", copied.source);
    EXPECT_STREQ("Open", copied.target);
    CContext sourceless(nullptr, "Auf");
    EXPECT_STREQ("", sourceless.source);
    EXPECT_STREQ("Auf", sourceless.target);
}

TEST(ContextTest, CountStartsAtOne) {
    EXPECT_EQ(1, CContext("Open", "Auf").count);
}

TEST(ContextTest, BothTextsAreUnescapedAlsoWhereTheTargetIsACopy) {
    CContext context("a\\tb", "c\\nd");
    EXPECT_STREQ("a\tb", context.source);
    EXPECT_STREQ("c\nd", context.target);
    CContext copied("a\\rb", nullptr);
    EXPECT_STREQ("a\rb", copied.target);
}

TEST(DictionaryTest, NullAndEmptyTextGiveNullWhateverTheFlag) {
    CWld d;
    Enter(d, "", "nothing");
    EXPECT_EQ(nullptr, d.Translate(static_cast<const char*>(nullptr), 0));
    EXPECT_EQ(nullptr, d.Translate(static_cast<const char*>(nullptr), 1));
    EXPECT_EQ(nullptr, d.Translate("", 0));
    EXPECT_EQ(nullptr, d.Translate("", 1));
}

TEST(DictionaryTest, UnknownTextGivesNullOrThePointerItself) {
    CWld d;
    const char* text = "Open";
    EXPECT_EQ(nullptr, d.Translate(text, 1));
    EXPECT_EQ(text, d.Translate(text, 0));
    Enter(d, "Close", "Zu");
    EXPECT_EQ(nullptr, d.Translate(text, 1));
    EXPECT_EQ(text, d.Translate(text, 0));
}

TEST(DictionaryTest, LookupInAnEmptyDictionaryMakesNoTable) {
    CWld d;
    char buffer[] = "Open";
    d.Translate("Open", 0);
    d.Translate(buffer, 5u);
    EXPECT_EQ(0u, d.m_Contexts.tableMark);
}

TEST(DictionaryTest, TranslationIsOwnedByTheEntry) {
    CWld d;
    Enter(d, "Open", "Auf");
    const char* translation = d.Translate("Open", 1);
    EXPECT_STREQ("Auf", translation);
    EXPECT_EQ(translation, d.Translate("Open", 0));
    CContext* entry = nullptr;
    ASSERT_EQ(1, d.m_Contexts.Lookup("Open", entry));
    EXPECT_EQ(translation, static_cast<const char*>(entry->target));
}

TEST(DictionaryTest, LookupTellsUpperFromLowerCase) {
    CWld d;
    Enter(d, "Open", "Auf");
    EXPECT_EQ(nullptr, d.Translate("open", 1));
}

TEST(DictionaryTest, BytesAbove127AreFoundByTheirSignedHash) {
    CWld d;
    Enter(d,
          "\xD6"
          "ffnen",
          "Open");
    EXPECT_STREQ("Open", d.Translate("\xD6"
                                     "ffnen",
                                     1));
    // 0xD6 is -42 as a signed char: -42 * 257 + 'f'.
    Enter(d,
          "\xD6"
          "f",
          "short");
    CContext** found = d.m_Contexts.FindHash(static_cast<unsigned>(-42 * 257 + 'f'));
    ASSERT_NE(nullptr, found);
    EXPECT_STREQ("short", (*found)->target);
}

TEST(DictionaryTest, EmptyTargetIsNoTranslation) {
    CWld d;
    Enter(d, "Open", "");
    const char* text = "Open";
    EXPECT_EQ(nullptr, d.Translate(text, 1));
    EXPECT_EQ(text, d.Translate(text, 0));
    char buffer[8] = "Open";
    EXPECT_EQ(4u, d.Translate(buffer, 8u));
    EXPECT_STREQ("Open", buffer);
}

TEST(DictionaryTest, OfTwoTextsWithOneHashTheLaterInsertionStandsForBoth) {
    CWld d;
    Enter(d, kCollidingFirst, "first");
    EXPECT_STREQ("first", d.Translate(kCollidingSecond, 1));
    Enter(d, kCollidingSecond, "second");
    EXPECT_EQ(1u, d.m_Contexts.count);
    EXPECT_STREQ("second", d.Translate(kCollidingFirst, 1));
    EXPECT_STREQ("second", d.Translate(kCollidingSecond, 1));
}

TEST(DictionaryTest, CollidingTextsShareAnEntryAlsoAmongThousands) {
    CWld d;
    for (int i = 0; i < kManyEntries / 2; ++i) Enter(d, ("text " + std::to_string(i)).c_str(), "x");
    Enter(d, kCollidingFirst, "first");
    for (int i = kManyEntries / 2; i < kManyEntries; ++i)
        Enter(d, ("text " + std::to_string(i)).c_str(), "x");
    Enter(d, kCollidingSecond, "second");
    EXPECT_EQ(kManyEntries + 1u, d.m_Contexts.count);
    EXPECT_STREQ("second", d.Translate(kCollidingFirst, 1));
}

TEST(DictionaryTest, EveryTextOfALargeDictionaryIsFound) {
    CWld d;
    for (int i = 0; i < kManyEntries; ++i) {
        std::string text = "text " + std::to_string(i);
        Enter(d, text.c_str(), ("T" + text).c_str());
    }
    for (int i = 0; i < kManyEntries; ++i) {
        std::string text = "text " + std::to_string(i);
        ASSERT_EQ("T" + text, Shown(d.Translate(text.c_str(), 1)));
    }
    EXPECT_EQ(nullptr, d.Translate("text -1", 1));
}

TEST(DictionaryTest, SeveralThreadsTranslateWhileNobodyAdds) {
    CWld d;
    for (int i = 0; i < kManyEntries; ++i) {
        std::string text = "text " + std::to_string(i);
        Enter(d, text.c_str(), ("T" + text).c_str());
    }
    struct Work {
        CWld* dictionary;
        int wrong;
    };
    auto translate = [](void* argument) -> DWORD {
        auto work = static_cast<Work*>(argument);
        for (int i = 0; i < kManyEntries; ++i) {
            char text[32], expected[32], buffer[32];
            snprintf(text, sizeof text, "text %d", i);
            snprintf(expected, sizeof expected, "Ttext %d", i);
            strcpy(buffer, text);
            const char* source = text;
            const char* found = work->dictionary->Translate(source, 1);
            work->dictionary->Translate(buffer, static_cast<unsigned>(sizeof buffer));
            work->wrong += !found || strcmp(found, expected) != 0 || strcmp(buffer, expected) != 0;
        }
        return 0;
    };
    Work work[4];
    HANDLE threads[4];
    for (int i = 0; i < 4; ++i) {
        work[i] = {&d, 0};
        threads[i] = CreateThread(nullptr, 0, translate, &work[i], 0, nullptr);
        ASSERT_NE(nullptr, threads[i]);
    }
    WaitForMultipleObjects(4, threads, TRUE, INFINITE);
    for (int i = 0; i < 4; ++i) {
        CloseHandle(threads[i]);
        EXPECT_EQ(0, work[i].wrong);
    }
}

TEST(DictionaryTest, NewDictionaryNeedsNothingOfTheHeaps) {
    FailingAllocation failing(1);
    CWld d;
    EXPECT_FALSE(failing.Happened());
    EXPECT_NE(nullptr, d.m_hFont);
    DeleteObject(d.m_hFont);
}

TEST(DictionaryTest, LookupsNeedNothingOfTheHeaps) {
    CWld d;
    Enter(d, "Open", "Auf");
    HMENU menu = CreateMenu();
    AppendMenuA(menu, 0, 10, "Open");
    HWND window = CreateWindowA("STATIC", "Open", WS_OVERLAPPED, 0, 0, 9, 9, nullptr, nullptr,
                                nullptr, nullptr);
    char buffer[300] = "Open";
    {
        FailingAllocation failing(1);
        d.Translate("Open", 1);
        d.Translate("Unknown", 0);
        d.Translate(buffer, static_cast<unsigned>(sizeof buffer));
        d.Translate(menu);
        d.TranslateMenuInContext(menu, "key");
        d.Translate(window);
        TranslateInContext("Open", "key");
        TranslateBufferInContext(buffer, sizeof buffer, "key", 0);
        MakeResourceKey(nullptr, 5, buffer, QXKEY_DIALOG);
        HashResourceKey("key");
        EXPECT_FALSE(failing.Happened());
    }
    DestroyWindow(window);
    DestroyMenu(menu);
    DeleteObject(d.m_hFont);
}

TEST(ContextTest, MakingOneSurvivesEveryFailingAllocation) {
    auto make = [] { return std::unique_ptr<CContext>(); };
    auto act = [](auto& context) { context = std::make_unique<CContext>("a\\tb", "c\\nd"); };
    EXPECT_GT(FailEachAllocation(make, act, [](auto& context) { EXPECT_EQ(nullptr, context); }),
              2u);
}

TEST(DictionaryTest, NewestEntryOfABucketComesFirst) {
    CWld d;
    // "\1\1" has the hash 258, which is 4 in the count of 127, as the hash of "\4" is.
    Enter(d, "\1\1", "older");
    Enter(d, "\4", "newer");
    decltype(d.m_Contexts)::position at;
    CContext** first = d.m_Contexts.GetNext(at);
    ASSERT_NE(nullptr, first);
    EXPECT_STREQ("newer", (*first)->target);
    EXPECT_STREQ("older", (*d.m_Contexts.GetNext(at))->target);
}

TEST(BufferTest, NullAndEmptyBufferGiveZero) {
    CWld d;
    Enter(d, "Open", "Auf");
    char empty[4] = "";
    EXPECT_EQ(0u, d.Translate(static_cast<char*>(nullptr), 10u));
    EXPECT_EQ(0u, d.Translate(empty, 4u));
}

TEST(BufferTest, TextWithoutTranslationStaysAndItsLengthIsTheAnswer) {
    CWld d;
    Enter(d, "Open", "Auf");
    char buffer[16] = "Unknown";
    EXPECT_EQ(7u, d.Translate(buffer, 16u));
    EXPECT_STREQ("Unknown", buffer);
    EXPECT_EQ(7u, d.Translate(buffer, 3u)) << "the size does not cut what is not translated";
    EXPECT_STREQ("Unknown", buffer);
}

TEST(BufferTest, TranslationReplacesTheTextWithATerminator) {
    CWld d;
    Enter(d, "Open", "Aufmachen");
    char buffer[12];
    memset(buffer, 'x', sizeof buffer);
    strcpy(buffer, "Open");
    EXPECT_EQ(9u, d.Translate(buffer, 12u));
    EXPECT_STREQ("Aufmachen", buffer);
    EXPECT_EQ('x', buffer[10]);
}

TEST(BufferTest, TranslationIsCutToTheSizeWithItsTerminator) {
    CWld d;
    Enter(d, "Open", "Aufmachen");
    struct {
        unsigned size;
        unsigned length;
        const char* text;
    } const rows[] = {{10, 9, "Aufmachen"}, {9, 8, "Aufmache"}, {6, 5, "Aufma"},
                      {2, 1, "A"},          {1, 0, ""},         {0, 0, ""}};
    for (auto& row : rows) {
        char buffer[12];
        memset(buffer, 'x', sizeof buffer);
        strcpy(buffer, "Open");
        EXPECT_EQ(row.length, d.Translate(buffer, row.size)) << row.size;
        EXPECT_STREQ(row.text, buffer) << row.size;
        for (unsigned i = row.size > 5 ? row.size : 5; i < sizeof buffer; ++i)
            EXPECT_EQ('x', buffer[i]) << row.size;
    }
}

TEST(BufferTest, SizeBeyondThePositiveIntegersIsRoomEnough) {
    CWld d;
    Enter(d, "Open", "Auf");
    char buffer[8] = "Open";
    EXPECT_EQ(3u, d.Translate(buffer, 0xFFFFFFFFu));
    EXPECT_STREQ("Auf", buffer);
}

TEST(FontTest, GlobalDictionaryHasAFontBeforeAnyCall) {
    EXPECT_NE(nullptr, g_Wld.m_hFont);
    EXPECT_EQ(1, g_Wld.m_bDialogFont);
}

TEST(FontTest, FontOutlivesItsDictionary) {
    HFONT font;
    {
        CWld d;
        font = d.m_hFont;
    }
    LOGFONTA description;
    EXPECT_NE(0, GetObjectA(font, sizeof description, &description));
    DeleteObject(font);
}
