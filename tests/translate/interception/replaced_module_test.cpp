// A module that comes to the address of one that is gone: nothing that was kept of the old one
// speaks for the new one, whether or not the loader tells of their coming and going.
#include "support/scratch_directory.h"
#include "translate/interception/caller.h"
#include "translate/resources/template_model.h"

namespace {

// A copy of a test plug-in under a name of the test's choice, loaded as long as the object lives.
class Plugin {
public:
    Plugin(const char* source, const char* name, DWORD flags = 0) {
        std::string path = m_directory.PathOf(name);
        EXPECT_TRUE(CopyFileA((ModuleFolder() + source).c_str(), path.c_str(), TRUE)) << source;
        m_module = LoadLibraryExA(path.c_str(), nullptr, flags);
        EXPECT_NE(m_module, nullptr) << path;
    }
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;
    ~Plugin() {
        if (m_module) FreeLibrary(m_module);
    }

    operator HMODULE() const { return m_module; }

private:
    ScratchDirectory m_directory;
    HMODULE m_module;
};

class ReplacedModuleTest : public DictionaryTest {
protected:
    void SetUp() override {
        DictionaryTest::SetUp();
        _InitResTranslation(caller);
        Teach("First", "Erster");
        Teach("Later", "Zweiter");
    }
    HRSRC Find(HMODULE module, int name, const char* type = MAKEINTRESOURCEA(5)) {
        return CALL(caller, FindResourceA)(module, MAKEINTRESOURCEA(name), type);
    }
    // The caption of a dialog as a host gets it.
    std::wstring Caption(HMODULE module, int name) {
        HRSRC found = Find(module, name);
        auto block = static_cast<const uint8_t*>(CALL(caller, LoadResource)(module, found));
        auto dialog = block ? ParseTemplate(block, CALL(caller, SizeofResource)(module, found))
                            : std::nullopt;
        return dialog ? dialog->caption : L"(none)";
    }
    std::string String(HMODULE module) {
        char text[64] = "";
        CALL(caller, LoadStringA)(module, 1, text, sizeof text);
        return text;
    }
    // Runs an act with one module, and then another with one that is loaded where the first was.
    template <class First, class Second>
    void InTurn(Plugin* (*makeFirst)(), First first, Plugin* (*makeSecond)(), Second second) {
        std::unique_ptr<Plugin> plugin(makeFirst());
        HMODULE base = *plugin;
        first(base);
        plugin.reset();
        plugin.reset(makeSecond());
        ASSERT_EQ(static_cast<HMODULE>(*plugin), base) << "nothing is shown at another address";
        second(base);
    }
    CallerModule caller;
};

// What is taught for a place stays for the tests that follow, so those places have other modules.
template <DWORD flags = 0>
Plugin* FirstTaught() {
    return new Plugin("plugin_first.dll", "taught_one.dll", flags);
}
template <DWORD flags = 0>
Plugin* SecondTaught() {
    return new Plugin("plugin_second.dll", "taught_two.dll", flags);
}
template <DWORD flags = 0>
Plugin* FirstOne() {
    return new Plugin("plugin_first.dll", "one.dll", flags);
}
template <DWORD flags = 0>
Plugin* SecondTwo() {
    return new Plugin("plugin_second.dll", "two.dll", flags);
}
Plugin* FirstView() {
    return new Plugin("plugin_first.dll", "view.dll");
}
Plugin* SecondView() {
    return new Plugin("plugin_second.dll", "view.dll");
}
constexpr DWORD kData = DONT_RESOLVE_DLL_REFERENCES;

}  // namespace

TEST_F(ReplacedModuleTest, AModuleOfAnotherNameHasItsOwnDialog) {
    InTurn(
        FirstOne, [&](HMODULE m) { EXPECT_EQ(Caption(m, 200), L"Erster"); }, SecondTwo,
        [&](HMODULE m) { EXPECT_EQ(Caption(m, 200), L"Zweiter"); });
}

TEST_F(ReplacedModuleTest, ANewVersionUnderTheSameNameHasItsOwnDialog) {
    InTurn(
        FirstView, [&](HMODULE m) { EXPECT_EQ(Caption(m, 200), L"Erster"); }, SecondView,
        [&](HMODULE m) { EXPECT_EQ(Caption(m, 200), L"Zweiter"); });
}

TEST_F(ReplacedModuleTest, TheSameBytesUnderAnotherNumberHaveTheirOwnPlace) {
    Teach("view.dll#1#201\xFD\xFDSame", "in 201");
    Teach("view.dll#1#202\xFD\xFDSame", "in 202");
    InTurn(
        FirstView, [&](HMODULE m) { EXPECT_EQ(Caption(m, 201), L"in 201"); }, SecondView,
        [&](HMODULE m) { EXPECT_EQ(Caption(m, 202), L"in 202"); });
}

TEST_F(ReplacedModuleTest, ADialogFoundAndNeverLoadedLeavesNothingToTheNextModule) {
    Teach(
        "taught_one.dll#1#200\xFD\xFD"
        "First",
        "in one");
    Teach(
        "taught_two.dll#1#200\xFD\xFD"
        "Later",
        "in two");
    HRSRC old = nullptr;
    InTurn(
        FirstTaught, [&](HMODULE m) { old = Find(m, 200); }, SecondTaught,
        [&](HMODULE m) {
            EXPECT_NE(Find(m, 200), old);
            EXPECT_EQ(Caption(m, 200), L"in two");
        });
}

TEST_F(ReplacedModuleTest, AStringTableOfTheNewModuleIsItsOwn) {
    auto firstEntry = [&](HMODULE module) {
        HRSRC found = Find(module, 1, MAKEINTRESOURCEA(6));
        auto words = static_cast<const wchar_t*>(CALL(caller, LoadResource)(module, found));
        return std::wstring(words + 2, words[1]);
    };
    InTurn(
        FirstView, [&](HMODULE m) { EXPECT_EQ(firstEntry(m), L"Erster"); }, SecondView,
        [&](HMODULE m) { EXPECT_EQ(firstEntry(m), L"Zweiter"); });
}

TEST_F(ReplacedModuleTest, TheSizeOfANewModulesDialogIs0UntilItIsLoaded) {
    InTurn(
        FirstView, [&](HMODULE m) { Caption(m, 200); }, SecondView,
        [&](HMODULE m) {
            EXPECT_EQ(CALL(caller, SizeofResource)(m, Find(m, 200)), 0u);
            EXPECT_EQ(Caption(m, 200), L"Zweiter");
        });
}

TEST_F(ReplacedModuleTest, AModuleThatComesBackToItsPlaceIsTranslated) {
    for (int round = 0; round < 3; ++round) {
        InTurn(
            FirstView, [&](HMODULE m) { EXPECT_EQ(Caption(m, 200), L"Erster"); }, FirstView,
            [&](HMODULE m) { EXPECT_EQ(Caption(m, 200), L"Erster"); });
    }
}

TEST_F(ReplacedModuleTest, WhileItsModuleStaysARecordIsTheSameForEverySpellingOfItsName) {
    Plugin view("plugin_first.dll", "view.dll");
    HRSRC found = Find(view, 200);
    Caption(view, 200);
    auto find = CALL(caller, FindResourceA);
    EXPECT_EQ(find(view, "#200", MAKEINTRESOURCEA(5)), found);
    EXPECT_EQ(CALL(caller, FindResourceW)(view, L"#200", MAKEINTRESOURCEW(5)), found);
    HRSRC named = find(caller, "TwoSpellings", MAKEINTRESOURCEA(5));
    EXPECT_EQ(find(caller, "TWOSPELLINGS", MAKEINTRESOURCEA(5)), named);
    EXPECT_EQ(CALL(caller, FindResourceW)(caller, L"TwoSpellings", MAKEINTRESOURCEW(5)), named);
}

TEST_F(ReplacedModuleTest, StringsOfModulesLoadedAsDataHaveThePlaceOfTheirOwnModule) {
    // The loader tells of no such module, neither of its coming nor of its going.
    Teach(
        "taught_one.dll#3#1\xFD\xFD"
        "First",
        "in one");
    Teach(
        "taught_two.dll#3#1\xFD\xFD"
        "Later",
        "in two");
    InTurn(
        FirstTaught<kData>, [&](HMODULE m) { EXPECT_EQ(String(m), "in one"); }, SecondTaught<kData>,
        [&](HMODULE m) { EXPECT_EQ(String(m), "in two"); });
}

TEST_F(ReplacedModuleTest, DialogsOfModulesLoadedAsDataAreTheirOwn) {
    InTurn(
        FirstOne<kData>, [&](HMODULE m) { EXPECT_EQ(Caption(m, 200), L"Erster"); },
        SecondTwo<kData>, [&](HMODULE m) { EXPECT_EQ(Caption(m, 200), L"Zweiter"); });
}

// A patched module is known by its slots, which go with it.
TEST_F(ReplacedModuleTest, DialogsOfPatchedModulesAreTheirOwn) {
    for (bool isNextPatched : {true, false}) {
        for (bool isRestored : {true, false}) {
            InTurn(
                FirstView,
                [&](HMODULE m) {
                    _InitResTranslation(m);
                    HRSRC found = Find(m, 200);
                    EXPECT_EQ(Caption(m, 200), L"Erster");
                    EXPECT_EQ(CALL(caller, FindResourceA)(m, "#200", MAKEINTRESOURCEA(5)), found);
                    if (isRestored) _DeInitResTranslation(m);
                    EXPECT_EQ(Find(m, 200), found);
                },
                SecondView,
                [&](HMODULE m) {
                    if (isNextPatched) _InitResTranslation(m);
                    EXPECT_EQ(Caption(m, 200), L"Zweiter");
                    EXPECT_EQ(String(m), "Zweiter");
                });
        }
    }
}

TEST_F(ReplacedModuleTest, StringsOfPatchedModulesHaveThePlaceOfTheirOwnModule) {
    Teach(
        "taught_one.dll#3#1\xFD\xFD"
        "First",
        "in one");
    Teach(
        "taught_two.dll#3#1\xFD\xFD"
        "Later",
        "in two");
    for (bool isNextPatched : {true, false}) {
        InTurn(
            FirstTaught,
            [&](HMODULE m) {
                _InitResTranslation(m);
                EXPECT_EQ(String(m), "in one");
            },
            SecondTaught,
            [&](HMODULE m) {
                if (isNextPatched) _InitResTranslation(m);
                EXPECT_EQ(String(m), "in two");
            });
    }
}

TEST_F(ReplacedModuleTest, AnExcludedModuleLoadedAsDataIsExcludedFromItsLoadOn) {
    EXPECT_EQ(String(caller), "Open");  // the search for late modules has been done once
    Plugin late("plugin_first.dll", "acopm.arx", kData);
    EXPECT_EQ(String(late), "First");
    EXPECT_EQ(Caption(late, 200), L"First");
}

TEST_F(ReplacedModuleTest, AModuleInThePlaceOfAnExcludedOneIsTranslated) {
    InTurn([] { return new Plugin("plugin_first.dll", "acopm.arx", kData); },
           [&](HMODULE m) { EXPECT_EQ(String(m), "First"); }, SecondTwo<kData>,
           [&](HMODULE m) {
               EXPECT_EQ(String(m), "Zweiter");
               EXPECT_EQ(Caption(m, 200), L"Zweiter");
           });
}

TEST_F(ReplacedModuleTest, AnExcludedModuleThatComesAgainElsewhereIsExcluded) {
    HMODULE before = nullptr;
    {
        Plugin late("plugin_first.dll", "acopm.arx");
        EXPECT_EQ(String(late), "First");
        before = late;
    }
    Plugin inItsPlace("plugin_second.dll", "two.dll");
    EXPECT_EQ(static_cast<HMODULE>(inItsPlace), before);
    Plugin late("plugin_first.dll", "acopm.arx");
    EXPECT_EQ(String(inItsPlace), "Zweiter");
    EXPECT_EQ(String(late), "First");
}
