#include "support/allocation_failure.h"
#include "support/build_kind.h"
#include "support/import_slot.h"
#include "support/scratch_directory.h"
#include "translate/dictionary/dictionary_fixture.h"
#include "translate/low_memory.h"

#include <cstring>
#include <map>
#include <memory>
#include <random>

namespace {

// A dictionary that reads texts as files.
class FileDictionary {
public:
    int Init(const std::string& bytes) { return dictionary.Init(File(bytes).c_str()); }
    int Add(const std::string& bytes) { return dictionary.Add(File(bytes).c_str()); }

    // "(null)" for a text without an entry or with an empty one.
    std::string operator[](const char* source) { return Shown(dictionary.Translate(source, 1)); }
    bool Knows(const char* source) { return dictionary.m_Contexts.Find(source) != nullptr; }
    unsigned Entries() const { return dictionary.m_Contexts.count; }

    CWld dictionary;

private:
    std::string File(const std::string& bytes) {
        return m_directory.Write("d" + std::to_string(m_files++) + ".wld", bytes);
    }

    ScratchDirectory m_directory;
    int m_files = 0;
};

std::string operator""_s(const char* bytes, size_t size) {
    return std::string(bytes, size);
}

}  // namespace

TEST(DictionaryFileTest, LinesFormPairsOfSourceAndTarget) {
    FileDictionary d;
    EXPECT_EQ(1, d.Init("\"Open\"\n\"Auf\"\n\"Close\"\n\"Zu\"\n"));
    EXPECT_EQ(2u, d.Entries());
    EXPECT_EQ("Auf", d["Open"]);
    EXPECT_EQ("Zu", d["Close"]);
}

TEST(DictionaryFileTest, CarriageReturnsAreSpace) {
    FileDictionary d;
    EXPECT_EQ(1, d.Init("\"Open\"\r\n\"Auf\"\r\n\"Close\"\r\n\"Zu\"\r\n"));
    EXPECT_EQ("Auf", d["Open"]);
    EXPECT_EQ("Zu", d["Close"]);
}

TEST(DictionaryFileTest, CommentsAndLinesWithoutAQuoteMayStandAnywhere) {
    FileDictionary d;
    d.Init("; head\nnot quoted\n \t; indented\n\"Open\"\n; \"between\"\n'single'\nx\n\"Auf\"\n\n");
    EXPECT_EQ(1u, d.Entries());
    EXPECT_EQ("Auf", d["Open"]);
}

TEST(DictionaryFileTest, SpacesAroundTheQuotesAreTrimmedAndThoseInsideStay) {
    FileDictionary d;
    d.Init(" \t\v\f\"Open\" \t\v\f\n\t\"  Auf  \"\t \r\n");
    EXPECT_EQ("  Auf  ", d["Open"]);
}

TEST(DictionaryFileTest, LastByteIsDroppedWhateverItIs) {
    FileDictionary d;
    d.Init("\"Open\n\"Auf?\n");
    EXPECT_EQ("Auf", d["Ope"]);
}

TEST(DictionaryFileTest, QuotesInsideATextStay) {
    FileDictionary d;
    d.Init("\"a\"b\"\n\"\"c\"\"\n");
    EXPECT_EQ("\"c\"", d["a\"b"]);
}

TEST(DictionaryFileTest, LoneQuoteIsSkippedAsTooShort) {
    FileDictionary d;
    d.Init("\"\n\"Open\"\n  \"  \r\n\"Auf\"\n");
    EXPECT_EQ(1u, d.Entries());
    EXPECT_EQ("Auf", d["Open"]);
}

TEST(DictionaryFileTest, LoneQuoteAtTheEndWithoutALineFeedIsSkippedToo) {
    // The stale byte behind it is the "O" of the line before, and no space.
    FileDictionary d;
    d.Init("\"Close\"\n\"Zu\"\n\"Open\"\n\"");
    EXPECT_EQ("Zu", d["Open"]) << "there is no value, so the last one counts again";
}

TEST(DictionaryFileTest, TwoQuotesAreAnEmptyText) {
    FileDictionary d;
    d.Init("\"Open\"\n\"\"\n\"\"\n\"Auf\"\n");
    EXPECT_EQ(2u, d.Entries());
    EXPECT_TRUE(d.Knows("Open"));
    EXPECT_EQ("(null)", d["Open"]);
    ASSERT_TRUE(d.Knows(""));
    EXPECT_STREQ("Auf", (*d.dictionary.m_Contexts.Find(""))->target);
}

TEST(DictionaryFileTest, BlankLineWithABareLineFeedEndsTheDictionary) {
    FileDictionary d;
    EXPECT_EQ(1, d.Init("\"Open\"\n\"Auf\"\n\n\"Close\"\n\"Zu\"\n"));
    EXPECT_EQ(1u, d.Entries());
    EXPECT_FALSE(d.Knows("Close"));
}

TEST(DictionaryFileTest, BlankLineWithACarriageReturnIsSkipped) {
    FileDictionary d;
    d.Init("\r\n\"Open\"\r\n\r\n\"Auf\"\r\n\r\n\"Close\"\r\n\"Zu\"\r\n");
    EXPECT_EQ(2u, d.Entries());
    EXPECT_EQ("Zu", d["Close"]);
}

TEST(DictionaryFileTest, LineOfSpacesIsSkippedInBothConventions) {
    FileDictionary d;
    d.Init("  \n\"Open\"\n \t \n\"Auf\"\n \r\n\"Close\"\n\"Zu\"\n");
    EXPECT_EQ(2u, d.Entries());
    EXPECT_EQ("Auf", d["Open"]);
    EXPECT_EQ("Zu", d["Close"]);
}

TEST(DictionaryFileTest, BlankLineInPlaceOfAValueRepeatsTheLastValueAndReadingGoesOn) {
    FileDictionary d;
    d.Init("\"Open\"\n\"Auf\"\n\"Close\"\n\n\"Save\"\n\"Sichern\"\n");
    EXPECT_EQ(3u, d.Entries());
    EXPECT_EQ("Auf", d["Close"]);
    EXPECT_EQ("Sichern", d["Save"]);
}

TEST(DictionaryFileTest, KeyWithoutAValueAtTheEndGetsTheValueBeforeIt) {
    FileDictionary d;
    d.Init("\"Open\"\n\"Auf\"\n\"Close\"\n");
    EXPECT_EQ("Auf", d["Close"]);
}

TEST(DictionaryFileTest, FirstKeyWithoutAValueGetsAnEmptyOne) {
    FileDictionary d;
    d.Init("\"Open\"\n");
    EXPECT_TRUE(d.Knows("Open"));
    EXPECT_EQ("(null)", d["Open"]);
}

TEST(DictionaryFileTest, RepeatedValueIsTheUnescapedOne) {
    FileDictionary d;
    d.Init("\"Open\"\n\"a\\tb\"\n\"Close\"\n");
    EXPECT_EQ("a\tb", d["Close"]);
}

// What stands behind a last line without a line feed is what an earlier line left there.

TEST(StaleByteTest, LineOfTheSameLengthBeforeItLeavesItsLineFeed) {
    FileDictionary d;
    d.Init("\"Off\"\n\"Aus\"");
    EXPECT_EQ("Aus", d["Off"]);
}

TEST(StaleByteTest, LongerLineBeforeItKeepsTheClosingQuote) {
    FileDictionary d;
    d.Init("\"Opening\"\n\"Auf\"");
    EXPECT_EQ("Auf\"", d["Opening"]);
}

TEST(StaleByteTest, LineOneByteShorterLeavesItsTerminatorAndKeepsTheClosingQuote) {
    FileDictionary d;
    d.Init("\"Of\"\n\"Aus\"");
    EXPECT_EQ("Aus\"", d["Of"]);
}

TEST(StaleByteTest, SpaceOfAnEarlierLineIsTrimmed) {
    FileDictionary d;
    // Byte 5 is the space of the comment: the line of the key ends before it.
    d.Init(";1234 678\n\"A\"\n\"Auf\"");
    EXPECT_EQ("Auf", d["A"]);
}

TEST(StaleByteTest, OtherByteOfAnEarlierLineIsCutInPlaceOfTheQuote) {
    FileDictionary d;
    d.Init(";123456789\n\"A\"\n\"Auf\"");
    EXPECT_EQ("Auf\"", d["A"]);
}

TEST(StaleByteTest, BytesOutliveTheirFile) {
    FileDictionary d;
    d.Add(";1234 678\n");
    d.Add("\"A\"\n\"Auf\"");
    EXPECT_EQ("Auf", d["A"]);
    d.Add(";123456789\n");
    d.Add("\"B\"\n\"Auf\"");
    EXPECT_EQ("Auf\"", d["B"]);
}

TEST(DictionaryFileTest, EscapesOfKeyAndValue) {
    struct {
        const char* written;
        const char* text;
    } const rows[] = {{"a\\nb", "a\nb"},      {"a\\rb", "a\rb"},       {"a\\tb", "a\tb"},
                      {"a\\xb", "a\\xb"},     {"a\\\"b", "a\\\"b"},    {"a\\\\nb", "a\nb"},
                      {"a\\\\xb", "a\\xb"},   {"a\\\\\\\\tb", "a\tb"}, {"ab\\", "ab"},
                      {"ab\\\\\\", "ab"},     {"\\n", "\n"},           {"\\", ""},
                      {"a\\ b", "a\\ b"},     {"\\n\\r\\t", "\n\r\t"}, {"a\\0b", "a\\0b"},
                      {"a\\Nb", "a\\Nb"},     {"\\xn\\n", "\\xn\n"},   {"C:\\\\dir", "C:\\dir"},
                      {"C:\\temp", "C:\temp"}};
    for (auto& row : rows) {
        FileDictionary d;
        d.Init("\"k\"\n\"" + std::string(row.written) + "\"\n\"#" + row.written +
               "\"\n\"found\"\n");
        EXPECT_STREQ(row.text, (*d.dictionary.m_Contexts.Find("k"))->target) << row.written;
        EXPECT_EQ("found", d[("#" + std::string(row.text)).c_str()]) << row.written;
    }
}

TEST(DictionaryFileTest, OfTwoTranslationsOfOneTextTheFirstStands) {
    FileDictionary d;
    d.Init("\"Open\"\n\"first\"\n\"Open\"\n\"second\"\n");
    EXPECT_EQ("first", d["Open"]);
    EXPECT_EQ(1, d.Add("\"Open\"\n\"third\"\n\"Close\"\n\"Zu\"\n"));
    EXPECT_EQ("first", d["Open"]);
    EXPECT_EQ("Zu", d["Close"]);
}

TEST(DictionaryFileTest, EmptyTranslationBlocksLaterDictionaries) {
    FileDictionary d;
    d.Init("\"Open\"\n\"\"\n");
    d.Add("\"Open\"\n\"late\"\n");
    EXPECT_EQ("(null)", d["Open"]);
}

TEST(DictionaryFileTest, OfTwoCollidingTextsInFilesTheFirstStandsForBoth) {
    FileDictionary d;
    d.Init("\"Scale row as column\"\n\"first\"\n\"Print arc in active drawing\"\n\"second\"\n");
    EXPECT_EQ(1u, d.Entries());
    EXPECT_EQ("first", d["Print arc in active drawing"]);
}

TEST(DictionaryFileTest, SameTextWrittenInTwoWaysIsOneText) {
    FileDictionary d;
    d.Init("\"a\\nb\"\n\"first\"\n\"a\\\\nb\"\n\"second\"\n");
    EXPECT_EQ(1u, d.Entries());
    EXPECT_EQ("first", d["a\nb"]);
}

TEST(DictionaryFileTest, KeysMayBeginWithAPlace) {
    Empty(g_Wld);
    ScratchDirectory directory;
    auto path = directory.Write("a.wld",
                                "\"Open\"\n\"plain\"\n\"view.dll#1#130\xFD\xFDOpen\"\n\"here\"\n"
                                "\"view.dll#1#SETTINGS\xFD\xFDOpen\"\n\"named\"\n");
    ASSERT_EQ(1, g_Wld.Add(path.c_str()));
    EXPECT_STREQ("here", TranslateInContext("Open", "view.dll#1#130\xFD\xFD"));
    EXPECT_STREQ("named", TranslateInContext("Open", "view.dll#1#SETTINGS\xFD\xFD"));
    EXPECT_STREQ("plain", TranslateInContext("Open", "view.dll#1#131\xFD\xFD"));
    Empty(g_Wld);
}

TEST(DictionaryFileTest, EntryHoldsBothTextsAndTheCountOne) {
    FileDictionary d;
    d.Init("\"a\\tb\"\n\"c\\nd\"\n");
    CContext** entry = d.dictionary.m_Contexts.Find("a\tb");
    ASSERT_NE(nullptr, entry);
    EXPECT_STREQ("a\tb", (*entry)->source);
    EXPECT_STREQ("c\nd", (*entry)->target);
    EXPECT_EQ(1, (*entry)->count);
}

TEST(DictionaryFileTest, InitReadsOnlyOnce) {
    FileDictionary d;
    EXPECT_EQ(1, d.Init("\"Open\"\n\"Auf\"\n"));
    EXPECT_EQ(1, d.dictionary.m_bInit);
    EXPECT_EQ(1, d.Init("\"Close\"\n\"Zu\"\n"));
    EXPECT_FALSE(d.Knows("Close"));
    EXPECT_EQ(1, d.dictionary.Init("C:\\no\\such\\file.wld")) << "the file is not even looked for";
}

TEST(DictionaryFileTest, AddOnAnEmptyDictionaryInitialisesIt) {
    FileDictionary d;
    EXPECT_EQ(1, d.Add("\"Open\"\n\"Auf\"\n"));
    EXPECT_EQ(1, d.dictionary.m_bInit);
    EXPECT_EQ(1, d.Init("\"Close\"\n\"Zu\"\n"));
    EXPECT_FALSE(d.Knows("Close"));
}

TEST(DictionaryFileTest, CountOfContextsIsNotKeptUpToDate) {
    FileDictionary d;
    d.Init("\"Open\"\n\"Auf\"\n");
    EXPECT_EQ(0, d.dictionary.m_nContexts);
}

TEST(DictionaryFileTest, MissingFileGivesZeroAndChangesNothing) {
    FileDictionary d;
    EXPECT_EQ(0, d.dictionary.Init("C:\\no\\such\\directory\\app.wld"));
    EXPECT_EQ(0, d.dictionary.m_bInit);
    EXPECT_EQ(1, d.Init("\"Open\"\n\"Auf\"\n")) << "a failed Init may be repeated";
    EXPECT_EQ(0, d.dictionary.Add("C:\\no\\such\\directory\\app.wld"));
    EXPECT_EQ(1, d.dictionary.m_bInit);
    EXPECT_EQ("Auf", d["Open"]);
}

TEST(DictionaryFileTest, UrlThatCannotBeReachedGivesZero) {
    CWld d;
    EXPECT_EQ(0, d.Init("ftp://127.0.0.1/app.wld"));
    EXPECT_EQ(0, d.m_bInit);
}

TEST(DictionaryFileTest, EmptyFileIsAnEmptyDictionary) {
    FileDictionary d;
    EXPECT_EQ(1, d.Init(""));
    EXPECT_EQ(0u, d.Entries());
    EXPECT_EQ(1, d.dictionary.m_bInit);
}

TEST(DictionaryFileTest, DictionaryInMemoryIsNamedByItsPath) {
    std::string bytes = "\"Open\"\n\"Auf\"\n";
    LowMemory memory(4096);
    ASSERT_NE(nullptr, memory.Data());
    memcpy(memory.Data(), bytes.data(), bytes.size());
    CWld d;
    EXPECT_EQ(1, d.Init(memory.Path(bytes.size()).c_str()));
    EXPECT_STREQ("Auf", d.Translate("Open", 1));
}

TEST(DictionaryFileTest, FailureInTheMiddleGivesZeroAndKeepsTheEntriesBeforeIt) {
    std::string bytes = "\"Open\"\n\"Auf\"\n\"Close\"\n\"Zu\"\n";
    bytes += std::string(4096 - bytes.size(), ';');
    LowMemory memory(4096, 4096);
    ASSERT_NE(nullptr, memory.Data());
    memcpy(memory.Data(), bytes.data(), bytes.size());
    CWld d;
    EXPECT_EQ(0, d.Init(memory.Path(8192).c_str()));
    EXPECT_EQ(0, d.m_bInit);
    EXPECT_STREQ("Auf", d.Translate("Open", 1));
    EXPECT_STREQ("Zu", d.Translate("Close", 1));
}

// Numbered texts of this length have many hashes in common, and then the first stands.
TEST(DictionaryFileTest, OfManyPairsEveryTextFindsTheFirstWithItsHash) {
    const int kPairs = kHasGuardPages ? kManyEntries : 100000;
    auto text = [](int i) { return "Text number " + std::to_string(i); };
    auto hash = [](const std::string& text) {
        unsigned h = 0;
        for (char c : text) h = h * 257 + static_cast<unsigned>(c);
        return h;
    };
    std::string bytes;
    std::map<unsigned, int> firsts;
    for (int i = 0; i < kPairs; ++i) {
        bytes += "\"" + text(i) + "\"\n\"T" + std::to_string(i) + "\"\n";
        firsts.emplace(hash(text(i)), i);
    }
    FileDictionary d;
    EXPECT_EQ(1, d.Init(bytes));
    EXPECT_EQ(firsts.size(), d.Entries());
    EXPECT_TRUE(firsts.size() < size_t(kPairs) || kPairs < 100000);
    for (int i = 0; i < kPairs; ++i) {
        ASSERT_EQ("T" + std::to_string(firsts[hash(text(i))]), d[text(i).c_str()]);
    }
}

// Bad input: the entries before it keep working, and nothing is written past a buffer.

class BadInput : public testing::Test {
protected:
    // Reads a good pair, the bytes, and looks for the pair.
    void ReadBehindAPair(const std::string& bytes) {
        EXPECT_EQ(1, d.Add("\"Good\"\n\"Gut\"\n" + bytes));
        EXPECT_EQ("Gut", d["Good"]);
    }

    FileDictionary d;
};

TEST_F(BadInput, LineOf100000BytesIsReadIn8192ByteLines) {
    ReadBehindAPair("\"" + std::string(100000, 'k') + "\"\n\"Value\"\n\"Next\"\n\"N\"\n");
    // The terminator behind the full buffer is taken for the closing quote, and the rest of the
    // line has no quote in front.
    EXPECT_EQ("Value", d[std::string(8191, 'k').c_str()]);
    EXPECT_EQ("N", d["Next"]);
}

TEST_F(BadInput, LinesAroundTheBuffersSize) {
    for (int size = 8185; size <= 8200; ++size) {
        FileDictionary one;
        one.Init("\"" + std::string(size - 2, 'k') + "\"\n\"Value\"\n");
        std::string text(size - 2, 'k'), value = "Value";
        // Where the terminator takes the line feed's place, the closing quote stays; of longer
        // lines the first 8192 bytes count. A line that just fills the buffer leaves a lone line
        // feed as the next one, so it has no value.
        if (size == 8191 || size == 8192) text += '"';
        if (size == 8192) value = "(null)";
        if (size > 8192) text = std::string(8191, 'k');
        EXPECT_TRUE(one.Knows(text.c_str())) << size;
        EXPECT_EQ(value, one[text.c_str()]) << size;
    }
}

TEST_F(BadInput, TextEndsAtItsFirstNul) {
    ReadBehindAPair("\"Op\0en\"\n\"Au\0f\"\n"_s);
    EXPECT_EQ("Au", d["Op"]);
}

TEST_F(BadInput, LineThatBeginsWithANulIsSkipped) {
    ReadBehindAPair("\0\"Open\"\n\"Close\"\n\0\0\n\"Zu\"\n"_s);
    EXPECT_EQ("Zu", d["Close"]);
    EXPECT_EQ(2u, d.Entries());
}

TEST_F(BadInput, FileOfNulsHoldsNothing) {
    ReadBehindAPair(std::string(100000, '\0'));
    EXPECT_EQ(1u, d.Entries());
}

TEST_F(BadInput, MissingClosingQuoteCostsTheLastByte) {
    ReadBehindAPair("\"Open\n\"Auf\n");
    EXPECT_EQ("Au", d["Ope"]);
}

TEST_F(BadInput, TenMillionRandomBytesAreSurvived) {
    std::mt19937 random(20240817);
    std::string bytes(10'000'000, 0);
    for (auto& byte : bytes) byte = static_cast<char>(random());
    ReadBehindAPair(bytes);
}

TEST_F(BadInput, RandomBytesOfTheFormatsOwnAreSurvived) {
    std::mt19937 random(4711);
    constexpr char kBytes[] = "\"\"\"\"\n\n\r\\\\ nrt;\x81\x83\xFD#aA\t\0";
    std::string bytes(kHasGuardPages ? 80'000 : 10'000'000, 0);
    for (auto& byte : bytes) byte = kBytes[random() % (sizeof kBytes - 1)];
    for (size_t at = bytes.find("\n\n"); at != std::string::npos; at = bytes.find("\n\n", at))
        bytes[at] = '\r';
    bytes[0] = ';';
    ReadBehindAPair(bytes);
    EXPECT_GT(d.Entries(), 300u);
}

TEST(DictionaryFileTest, ReadingSurvivesEveryFailingAllocation) {
    ScratchDirectory directory;
    std::string path = directory.Write(
        "a.wld", "\"Open\"\n\"Auf\"\n\"Close\\n\"\n\"Zu\\t\"\n\"Save\"\n\"Sichern\"\n");
    auto make = [] { return std::make_unique<CWld>(); };
    auto read = [&](auto& d) { d->Init(path.c_str()); };
    auto isUsable = [&](auto& d) {
        EXPECT_EQ(1, d->Init(path.c_str()));
        EXPECT_STREQ("Zu\t", d->Translate("Close\n", 1));
        EXPECT_STREQ("Auf", d->Translate("Open", 1));
    };
    // A geometry file that cannot be opened for want of memory counts as missing.
    EXPECT_GT(FailEachAllocation(make, read, isUsable, true), 15u) << "four blocks a pair";
}

namespace {

const void* g_keptView;

BOOL WINAPI FailingUnmap(const void* view) {
    g_keptView = view;
    return FALSE;
}

}  // namespace

TEST(DictionaryFileTest, AFileThatCannotBeClosedIsAFileFailure) {
    FileDictionary d;
    {
        ReplacedImport failing("UnmapViewOfFile", reinterpret_cast<void*>(&FailingUnmap));
        EXPECT_EQ(0, d.Init("\"Open\"\n\"Auf\"\n"));
    }
    EXPECT_EQ(0, d.dictionary.m_bInit);
    EXPECT_EQ("Auf", d["Open"]) << "what was read before stays";
    EXPECT_TRUE(UnmapViewOfFile(g_keptView));
}

TEST(DictionaryFileTest, AByteOrderMarkTakesTheFirstTextAndShiftsThePairs) {
    FileDictionary d;
    d.Init("\xEF\xBB\xBF\"Open\"\r\n\"Auf\"\r\n\"Close\"\r\n\"Zu\"\r\n");
    EXPECT_EQ("(null)", d["Open"]);
    EXPECT_EQ("Close", d["Auf"]);
}
