// The resource functions of a patched module: records, their blocks and sizes.
#include "translate/interception/caller.h"
#include "translate/resources/template_model.h"

namespace {

const char* const kDialog = MAKEINTRESOURCEA(5);
const char* const kMenu = MAKEINTRESOURCEA(4);
const char* const kStrings = MAKEINTRESOURCEA(6);
constexpr WORD kEnglish = MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US);

// The published layout of what a find call answers in place of a real handle.
struct Record {
    void* links[2];
    uint32_t marker;
    uint64_t type;
    HMODULE module;
    HRSRC handle;
    HGLOBAL loaded;
    void* block;
    uint32_t size;
    int32_t hash;
    char key[128];
};

const Record& RecordAt(HRSRC handle) {
    return *reinterpret_cast<const Record*>(handle);
}

class ResourcesInterceptionTest : public DictionaryTest {
protected:
    void SetUp() override {
        DictionaryTest::SetUp();
        _InitResTranslation(caller);
    }
    HRSRC Find(const char* name, const char* type) {
        return CALL(caller, FindResourceA)(caller, name, type);
    }
    HGLOBAL Load(HRSRC handle) { return CALL(caller, LoadResource)(caller, handle); }
    DWORD Size(HRSRC handle) { return CALL(caller, SizeofResource)(caller, handle); }
    std::optional<DialogModel> LoadDialog(const char* name) {
        HRSRC found = Find(name, kDialog);
        auto bytes = static_cast<const uint8_t*>(CALL(caller, LockResource)(Load(found)));
        return bytes ? ParseTemplate(bytes, Size(found)) : std::nullopt;
    }
    // The entries of a block, with the empty ones at its end.
    std::vector<std::wstring> LoadStrings(UINT block) {
        HRSRC found = Find(MAKEINTRESOURCEA(block), kStrings);
        auto words = static_cast<const wchar_t*>(Load(found));
        size_t count = Size(found) / 2;
        std::vector<std::wstring> entries;
        for (size_t at = 0; at < count; at += words[at] + 1)
            entries.emplace_back(words + at + 1, words[at]);
        return entries;
    }
    // A record outlives its module, so the module stays for the whole run.
    static CallerModule& Caller() {
        static auto& module = *new CallerModule;
        return module;
    }
    CallerModule& caller = Caller();
};

}  // namespace

TEST_F(ResourcesInterceptionTest, ADialogAMenuAndAStringTableGetARecord) {
    for (auto [type, name] : {std::pair(kDialog, 206), {kMenu, 110}, {kStrings, 61}}) {
        HRSRC real = FindResourceA(caller, MAKEINTRESOURCEA(name), type);
        HRSRC found = Find(MAKEINTRESOURCEA(name), type);
        ASSERT_NE(found, real);
        EXPECT_EQ(RecordAt(found).marker, 0xFFFFFFFF);
        EXPECT_EQ(RecordAt(found).type, reinterpret_cast<uint64_t>(type));
        EXPECT_EQ(RecordAt(found).module, static_cast<HMODULE>(caller));
        EXPECT_EQ(RecordAt(found).handle, real);
        EXPECT_EQ(RecordAt(found).loaded, nullptr);
        EXPECT_EQ(RecordAt(found).block, nullptr);
        EXPECT_EQ(RecordAt(found).size, 0u);
        EXPECT_EQ(RecordAt(found).hash, HashResourceKey(RecordAt(found).key));
    }
}

TEST_F(ResourcesInterceptionTest, TheKindInTheKeyFollowsTheType) {
    EXPECT_STREQ(RecordAt(Find(MAKEINTRESOURCEA(200), kDialog)).key, "caller.dll#1#200\xFD\xFD");
    EXPECT_STREQ(RecordAt(Find(MAKEINTRESOURCEA(100), kMenu)).key, "caller.dll#2#100\xFD\xFD");
    EXPECT_STREQ(RecordAt(Find(MAKEINTRESOURCEA(2), kStrings)).key, "caller.dll#3#2\xFD\xFD");
}

TEST_F(ResourcesInterceptionTest, AnyOtherTypeKeepsItsRealHandle) {
    for (auto [name, type] : {std::pair(300, 10), {1, 3}}) {
        HRSRC real = FindResourceA(caller, MAKEINTRESOURCEA(name), MAKEINTRESOURCEA(type));
        ASSERT_NE(real, nullptr);
        HRSRC found = Find(MAKEINTRESOURCEA(name), MAKEINTRESOURCEA(type));
        EXPECT_EQ(found, real);
        HGLOBAL loaded = Load(found);
        EXPECT_EQ(loaded, LoadResource(caller, real));
        EXPECT_EQ(Size(found), SizeofResource(caller, real));
        EXPECT_EQ(CALL(caller, LockResource)(loaded), loaded);
        EXPECT_EQ(memcmp(loaded, LockResource(LoadResource(caller, real)), Size(found)), 0);
    }
}

TEST_F(ResourcesInterceptionTest, ATypeGivenAsTextKeepsItsRealHandle) {
    HRSRC real = FindResourceA(caller, MAKEINTRESOURCEA(200), "#5");
    ASSERT_NE(real, nullptr);
    EXPECT_EQ(Find(MAKEINTRESOURCEA(200), "#5"), real);
}

TEST_F(ResourcesInterceptionTest, AMissingResourceIsNull) {
    EXPECT_EQ(Find(MAKEINTRESOURCEA(999), kDialog), nullptr);
    EXPECT_EQ(CALL(caller, FindResourceW)(caller, L"NONE", MAKEINTRESOURCEW(5)), nullptr);
}

TEST_F(ResourcesInterceptionTest, FindingTwiceGivesTheSameRecordAndLoadingTwiceTheSameBlock) {
    Teach("Open", "Auf");
    HRSRC found = Find(MAKEINTRESOURCEA(207), kDialog);
    EXPECT_EQ(Find(MAKEINTRESOURCEA(207), kDialog), found);
    HGLOBAL block = Load(found);
    EXPECT_EQ(Load(found), block);
    EXPECT_EQ(Find("#207", kDialog), found);
    EXPECT_NE(block, LoadResource(caller, RecordAt(found).handle));
}

TEST_F(ResourcesInterceptionTest, TheFirstFindDecidesTheKey) {
    HRSRC found = Find("First", kDialog);
    EXPECT_STREQ(RecordAt(found).key, "caller.dll#1#First\xFD\xFD");
    EXPECT_EQ(Find("FIRST", kDialog), found);
    EXPECT_STREQ(RecordAt(found).key, "caller.dll#1#First\xFD\xFD");
}

TEST_F(ResourcesInterceptionTest, AWideFindGivesTheFirstLetterOfANameToTheKey) {
    HRSRC found = CALL(caller, FindResourceW)(caller, L"WideName", MAKEINTRESOURCEW(5));
    EXPECT_STREQ(RecordAt(found).key, "caller.dll#1#W\xFD\xFD");
    EXPECT_STREQ(
        RecordAt(CALL(caller, FindResourceW)(caller, MAKEINTRESOURCEW(208), MAKEINTRESOURCEW(5)))
            .key,
        "caller.dll#1#208\xFD\xFD");
}

TEST_F(ResourcesInterceptionTest, TheExFunctionsTakeTypeAndNameInTheirPlaces) {
    HRSRC found = Find(MAKEINTRESOURCEA(200), kDialog);
    EXPECT_EQ(CALL(caller, FindResourceExA)(caller, kDialog, MAKEINTRESOURCEA(200), kEnglish),
              found);
    EXPECT_EQ(
        CALL(caller, FindResourceExW)(caller, MAKEINTRESOURCEW(5), MAKEINTRESOURCEW(200), kEnglish),
        found);
}

TEST_F(ResourcesInterceptionTest, TheExFunctionsExchangeTypeAndNameWhenNothingIsTranslated) {
    Supp_SetTranslationEnable(0);
    HRSRC real = FindResourceExA(caller, kDialog, MAKEINTRESOURCEA(200), kEnglish);
    ASSERT_NE(real, nullptr);
    auto findA = CALL(caller, FindResourceExA);
    auto findW = CALL(caller, FindResourceExW);
    EXPECT_EQ(findA(caller, kDialog, MAKEINTRESOURCEA(200), kEnglish), nullptr);
    EXPECT_EQ(findA(caller, MAKEINTRESOURCEA(200), kDialog, kEnglish), real);
    EXPECT_EQ(findW(caller, MAKEINTRESOURCEW(5), MAKEINTRESOURCEW(200), kEnglish), nullptr);
    EXPECT_EQ(findW(caller, MAKEINTRESOURCEW(200), MAKEINTRESOURCEW(5), kEnglish), real);
}

TEST_F(ResourcesInterceptionTest, WithTheSwitchOffTheRealHandlesAreThere) {
    Supp_SetTranslationEnable(0);
    HRSRC real = FindResourceA(caller, MAKEINTRESOURCEA(201), kDialog);
    EXPECT_EQ(Find(MAKEINTRESOURCEA(201), kDialog), real);
    EXPECT_EQ(CALL(caller, FindResourceW)(caller, MAKEINTRESOURCEW(201), MAKEINTRESOURCEW(5)),
              real);
    EXPECT_EQ(Load(real), LoadResource(caller, real));
    EXPECT_EQ(Size(real), SizeofResource(caller, real));
    EXPECT_EQ(CALL(caller, LockResource)(Load(real)), LockResource(LoadResource(caller, real)));
    EXPECT_EQ(CALL(caller, FreeResource)(Load(real)), FreeResource(LoadResource(caller, real)));
    EXPECT_EQ(CALL(caller, LockResource)(nullptr), LockResource(nullptr));
    EXPECT_EQ(CALL(caller, FreeResource)(nullptr), FreeResource(nullptr));
}

TEST_F(ResourcesInterceptionTest, WithTheSwitchOnAgainARecordIsWhatItWas) {
    Teach("Open", "Auf");
    HRSRC found = Find(MAKEINTRESOURCEA(216), kDialog);
    HGLOBAL block = Load(found);
    DWORD size = Size(found);
    Supp_SetTranslationEnable(0);
    EXPECT_EQ(Find(MAKEINTRESOURCEA(216), kDialog), RecordAt(found).handle);
    Supp_SetTranslationEnable(1);
    EXPECT_EQ(Find(MAKEINTRESOURCEA(216), kDialog), found);
    EXPECT_EQ(Load(found), block);
    EXPECT_EQ(Size(found), size);
}

TEST_F(ResourcesInterceptionTest, ManyRecordsInTurnAreToldApart) {
    std::vector<std::pair<HRSRC, HGLOBAL>> records;
    for (int name : {217, 218, 219}) {
        HRSRC found = Find(MAKEINTRESOURCEA(name), kDialog);
        records.emplace_back(found, Load(found));
    }
    for (auto [found, block] : records) {
        EXPECT_EQ(Load(found), block);
        EXPECT_EQ(Size(found), RecordAt(found).size);
        // A block lies among the records, and is none.
        EXPECT_EQ(CALL(caller, LockResource)(block), block);
        EXPECT_EQ(Load(RecordAt(found).handle), LoadResource(caller, RecordAt(found).handle));
    }
}

TEST_F(ResourcesInterceptionTest, LockingNullIsNull) {
    EXPECT_EQ(CALL(caller, LockResource)(nullptr), nullptr);
}

TEST_F(ResourcesInterceptionTest, AFindWithoutANameIsTheSystems) {
    EXPECT_EQ(CALL(caller, FindResourceA)(caller, nullptr, kDialog),
              FindResourceA(caller, nullptr, kDialog));
    EXPECT_EQ(CALL(caller, FindResourceW)(caller, nullptr, MAKEINTRESOURCEW(5)),
              FindResourceW(caller, nullptr, MAKEINTRESOURCEW(5)));
}

TEST_F(ResourcesInterceptionTest, ALoadedDialogIsTranslatedInItsContext) {
    Teach("caller.dll#1#201\xFD\xFDOpen", "In dialog 201");
    Teach("Open", "anywhere");
    Teach("Close", "Zu");
    auto dialog = LoadDialog(MAKEINTRESOURCEA(201));
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->caption, L"In dialog 201");
    EXPECT_EQ(dialog->controls[1].title, FieldModel(L"Zu"));
}

TEST_F(ResourcesInterceptionTest, TheSizeOfARecordIs0BeforeTheFirstLoadAndTheBlocksAfterwards) {
    Teach("Open", "A translation that is longer");
    HRSRC found = Find(MAKEINTRESOURCEA(209), kDialog);
    EXPECT_EQ(Size(found), 0u);
    auto block = static_cast<const uint8_t*>(Load(found));
    auto dialog = ParseTemplate(block, Size(found));
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->controls[0].title, FieldModel(L"A translation that is longer"));
    EXPECT_EQ(WriteTemplate(*dialog).size(), Size(found));
}

TEST_F(ResourcesInterceptionTest, WithNothingToTranslateADialogIsTheRealResource) {
    HRSRC found = Find(MAKEINTRESOURCEA(212), kDialog);
    HRSRC real = RecordAt(found).handle;
    EXPECT_EQ(Load(found), LoadResource(caller, real));
    EXPECT_EQ(Size(found), SizeofResource(caller, real));
}

TEST_F(ResourcesInterceptionTest, AMenuIsFoundButFailsToLoad) {
    HRSRC found = Find(MAKEINTRESOURCEA(100), kMenu);
    EXPECT_EQ(Load(found), nullptr);
    EXPECT_EQ(Size(found), SizeofResource(caller, RecordAt(found).handle));
}

TEST_F(ResourcesInterceptionTest, GeometryIsAppliedByTheHashOfTheKey) {
    int hash = HashResourceKey("CALLER.DLL#1#205\xFD\xFD");
    auto geometry = new QXDlgPos;
    geometry->m_Size = {11, 22};
    g_Wld.m_DlgPos.SetAt(hash, geometry);
    auto dialog = LoadDialog(MAKEINTRESOURCEA(205));
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->cx, 111);
    EXPECT_EQ(dialog->cy, 72);
    g_Wld.m_DlgPos.RemoveKey(hash);
}

TEST_F(ResourcesInterceptionTest, AStringTableBlockIsRewrittenEntryForEntry) {
    Teach("caller.dll#3#2\xFD\xFDOpen", "Ein l\xE4ngerer Text");
    Teach("Open", "anywhere");
    // Block 2 is ids 16 to 31, of which only 16 has a text.
    auto entries = LoadStrings(2);
    ASSERT_EQ(entries.size(), 16u);
    EXPECT_EQ(entries[0], L"Ein l\u00E4ngerer Text");
    for (size_t i = 1; i < 16; ++i) EXPECT_EQ(entries[i], L"");
}

TEST_F(ResourcesInterceptionTest, UnknownEntriesOfABlockStay) {
    Teach("Close", "Zu");
    auto entries = LoadStrings(1);  // ids 0 to 15
    ASSERT_EQ(entries.size(), 16u);
    EXPECT_EQ(entries[0], L"");
    EXPECT_EQ(entries[1], L"Open");
    EXPECT_EQ(entries[2], L"Zu");
    EXPECT_EQ(entries[3], L"Not in any dictionary");
}

TEST_F(ResourcesInterceptionTest, AnEntryOver1024CharactersStays) {
    Teach(std::string(2000, 'a'), "short");
    auto entries = LoadStrings(26);  // ids 400 to 415
    ASSERT_FALSE(entries.empty());
    EXPECT_EQ(entries[0], std::wstring(2000, L'a'));
}

TEST_F(ResourcesInterceptionTest, ABlockOfEmptyEntriesIsTheRealResource) {
    HRSRC found = Find(MAKEINTRESOURCEA(50), kStrings);
    HRSRC real = RecordAt(found).handle;
    EXPECT_EQ(Load(found), LoadResource(caller, real));
    EXPECT_EQ(Size(found), SizeofResource(caller, real));
    EXPECT_EQ(RecordAt(found).block, nullptr);
}

TEST_F(ResourcesInterceptionTest, AnEntryThatClaimsMoreThanTheBlockHoldsIsCut) {
    Teach("ab", "longer");
    // Block 51 is a text of two characters and one that claims 500 characters and has two.
    auto entries = LoadStrings(51);
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0], L"longer");
    EXPECT_EQ(entries[1], L"cd");
}

TEST_F(ResourcesInterceptionTest,
       ATemplateThatCountsMoreThanTheResourceHoldsKeepsAndCountsWhatIsThere) {
    Teach("Close", "Zu");
    HRSRC found = Find(MAKEINTRESOURCEA(210), kDialog);
    auto block = static_cast<const uint8_t*>(Load(found));
    auto dialog = ParseTemplate(block, Size(found));
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->count, 1);
    ASSERT_EQ(dialog->controls.size(), 1u);
    EXPECT_EQ(dialog->controls[0].title, FieldModel(L"Zu"));
}

TEST_F(ResourcesInterceptionTest, ATemplateThatEndsWithinItsHeadIsTheRealResource) {
    Teach("Close", "Zu");
    HRSRC found = Find(MAKEINTRESOURCEA(211), kDialog);
    HRSRC real = RecordAt(found).handle;
    EXPECT_EQ(Load(found), LoadResource(caller, real));
    EXPECT_EQ(Size(found), SizeofResource(caller, real));
}

TEST_F(ResourcesInterceptionTest, FreeingFreesNoRecordAndNoBlock) {
    Teach("Open", "Auf");
    HRSRC found = Find(MAKEINTRESOURCEA(213), kDialog);
    HGLOBAL block = Load(found);
    CALL(caller, FreeResource)(block);
    CALL(caller, FreeResource)(reinterpret_cast<HGLOBAL>(found));
    EXPECT_EQ(Find(MAKEINTRESOURCEA(213), kDialog), found);
    EXPECT_EQ(Load(found), block);
    EXPECT_EQ(RecordAt(found).marker, 0xFFFFFFFF);
}

TEST_F(ResourcesInterceptionTest, ARecordFoundInOneModuleLoadsInAnother) {
    CallerModule other("other.dll");
    _InitResTranslation(other);
    Teach("Open", "Auf");
    HRSRC found = Find(MAKEINTRESOURCEA(214), kDialog);
    EXPECT_EQ(CALL(other, LoadResource)(caller, found), Load(found));
    EXPECT_EQ(CALL(other, SizeofResource)(caller, found), Size(found));
}

TEST_F(ResourcesInterceptionTest, TheProgramsResourcesHaveTheNullModule) {
    // A null module means the program for the system and for the key, and only the switch counts
    // for the test.
    EXPECT_EQ(CALL(caller, FindResourceA)(nullptr, MAKEINTRESOURCEA(999), kDialog), nullptr);
    EXPECT_EQ(CALL(caller, SizeofResource)(nullptr, nullptr), SizeofResource(nullptr, nullptr));
}
