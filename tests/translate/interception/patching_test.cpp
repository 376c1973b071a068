// Whole modules patched, restored and unloaded, in every order.
#include "translate/interception/caller.h"

#include <algorithm>
#include <array>

namespace {

class PatchingTest : public DictionaryTest {
protected:
    void SetUp() override {
        DictionaryTest::SetUp();
        Teach("Open", "Auf");
    }
    static std::string Load(const CallerModule& module) {
        char buffer[64] = "";
        CALL(module, LoadStringA)(module, 1, buffer, sizeof buffer);
        return buffer;
    }
};

// The import slots of a module, in order: what the loader and the patching put there.
std::vector<void*> Imports(HMODULE module) {
    auto base = reinterpret_cast<char*>(module);
    auto headers = reinterpret_cast<IMAGE_NT_HEADERS64*>(
        base + reinterpret_cast<IMAGE_DOS_HEADER*>(base)->e_lfanew);
    auto d = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(
        base + headers->OptionalHeader.DataDirectory[1].VirtualAddress);
    std::vector<void*> slots;
    for (; d->Name; ++d) {
        for (auto slot = reinterpret_cast<void**>(base + d->FirstThunk); *slot; ++slot)
            slots.push_back(*slot);
    }
    return slots;
}

// A call through the program's own import. Not inlined: a compiler takes an import slot for a
// constant.
QXCORE_NOINLINE int LoadFromProgram(HMODULE module, char* buffer, int size) {
    return LoadStringA(module, 1, buffer, size);
}

size_t Differences(const std::vector<void*>& a, const std::vector<void*>& b) {
    size_t count = 0;
    for (size_t i = 0; i < a.size(); ++i) count += a[i] != b[i];
    return count;
}

}  // namespace

TEST_F(PatchingTest, All24FunctionsAreExchangedAndAllAreRestored) {
    CallerModule caller;
    auto before = Imports(caller);
    EXPECT_EQ(_InitResTranslation(caller), 1);
    EXPECT_EQ(Differences(before, Imports(caller)), 24u);
    EXPECT_EQ(_DeInitResTranslation(caller), 1);
    EXPECT_EQ(Imports(caller), before);
}

TEST_F(PatchingTest, EachOfThe24FunctionsIsExchangedByItself) {
    struct Row {
        const char* dll;
        const char* function;
    };
    constexpr Row kRows[] = {
        {"user32.dll", "LoadStringA"},
        {"user32.dll", "LoadStringW"},
        {"user32.dll", "LoadMenuIndirectA"},
        {"user32.dll", "LoadMenuA"},
        {"user32.dll", "LoadMenuW"},
        {"kernel32.dll", "LoadResource"},
        {"kernel32.dll", "FindResourceA"},
        {"kernel32.dll", "FindResourceExA"},
        {"kernel32.dll", "FindResourceW"},
        {"kernel32.dll", "FindResourceExW"},
        {"kernel32.dll", "LockResource"},
        {"kernel32.dll", "FreeResource"},
        {"kernel32.dll", "SizeofResource"},
        {"user32.dll", "CreateDialogParamA"},
        {"user32.dll", "CreateDialogParamW"},
        {"user32.dll", "DialogBoxParamA"},
        {"user32.dll", "DialogBoxParamW"},
        {"user32.dll", "MessageBoxIndirectA"},
        {"user32.dll", "MessageBoxA"},
        {"user32.dll", "MessageBoxExA"},
        {"user32.dll", "DialogBoxIndirectParamA"},
        {"user32.dll", "DialogBoxIndirectParamW"},
        {"user32.dll", "CreateDialogIndirectParamA"},
        {"user32.dll", "CreateDialogIndirectParamW"},
    };
    CallerModule caller;
    auto before = Imports(caller);
    _InitResTranslation(caller);
    auto after = Imports(caller);
    for (const Row& row : kRows) {
        auto real =
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA(row.dll), row.function));
        EXPECT_EQ(std::count(before.begin(), before.end(), real), 1) << row.function;
        EXPECT_EQ(std::count(after.begin(), after.end(), real), 0) << row.function;
    }
}

TEST_F(PatchingTest, NullIsNoModule) {
    EXPECT_EQ(_InitResTranslation(nullptr), 0);
    EXPECT_EQ(_DeInitResTranslation(nullptr), 0);
    EXPECT_EQ(Supp_InitResTranslation(nullptr), 0);
}

TEST_F(PatchingTest, PatchingTwiceChangesNothingMore) {
    CallerModule caller;
    auto original = Imports(caller);
    _InitResTranslation(caller);
    auto once = Imports(caller);
    EXPECT_EQ(_InitResTranslation(caller), 1);
    EXPECT_EQ(Imports(caller), once);
    EXPECT_EQ(Load(caller), "Auf");
    _DeInitResTranslation(caller);
    EXPECT_EQ(Imports(caller), original);
}

TEST_F(PatchingTest, RestoringTwiceOrWithoutPatchingChangesNothing) {
    CallerModule caller;
    auto original = Imports(caller);
    EXPECT_EQ(_DeInitResTranslation(caller), 1);
    EXPECT_EQ(Imports(caller), original);
    _InitResTranslation(caller);
    _DeInitResTranslation(caller);
    EXPECT_EQ(_DeInitResTranslation(caller), 1);
    EXPECT_EQ(Imports(caller), original);
    EXPECT_EQ(Load(caller), "Open");
}

TEST_F(PatchingTest, ARestoredModuleCanBePatchedAgain) {
    CallerModule caller;
    _InitResTranslation(caller);
    _DeInitResTranslation(caller);
    _InitResTranslation(caller);
    EXPECT_EQ(Load(caller), "Auf");
}

TEST_F(PatchingTest, ModulesArePatchedRestoredAndUnloadedInEveryOrder) {
    std::array<int, 3> order = {0, 1, 2};
    const char* const files[] = {"caller.dll", "other.dll", "mfc71.dll"};
    do {
        std::unique_ptr<CallerModule> modules[3];
        for (int i = 0; i < 3; ++i) modules[i] = std::make_unique<CallerModule>(files[i]);
        for (int i : order) _InitResTranslation(*modules[i]);
        for (auto& module : modules) EXPECT_EQ(Load(*module), "Auf");
        for (int i : order) {
            _DeInitResTranslation(*modules[i]);
            EXPECT_EQ(Load(*modules[i]), "Open");
            modules[i].reset();
            for (auto& module : modules) EXPECT_EQ(module ? Load(*module) : "Auf", "Auf");
        }
    } while (std::next_permutation(order.begin(), order.end()));
}

namespace {

int WINAPI AnswerOwn(HINSTANCE, UINT, char*, int) {
    return 4711;
}

}  // namespace

TEST_F(PatchingTest, AReplacementOfTheHostsOwnStaysWhenTheModuleIsPatchedAndRestored) {
    CallerModule caller;
    auto original = Imports(caller);
    HookProc_Install(caller, "user32", "LoadStringA", reinterpret_cast<void*>(AnswerOwn));
    _InitResTranslation(caller);
    char buffer[64];
    EXPECT_EQ(CALL(caller, LoadStringA)(caller, 1, buffer, 64), 4711);
    EXPECT_EQ(Differences(original, Imports(caller)), 24u);
    _DeInitResTranslation(caller);
    EXPECT_EQ(CALL(caller, LoadStringA)(caller, 1, buffer, 64), 4711);
    EXPECT_EQ(Differences(original, Imports(caller)), 1u);
}

TEST_F(PatchingTest, AHostsReplacementOfAPatchedFunctionFindsNoSlot) {
    CallerModule caller;
    _InitResTranslation(caller);
    auto patched = Imports(caller);
    auto real = reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("user32"), "LoadStringA"));
    EXPECT_EQ(HookProc_Install(caller, "user32", "LoadStringA", reinterpret_cast<void*>(AnswerOwn)),
              real);
    EXPECT_EQ(Imports(caller), patched);
    EXPECT_EQ(Load(caller), "Auf");
}

TEST_F(PatchingTest, AModuleUnloadedWhilePatchedLeavesTheOthersWhole) {
    CallerModule caller;
    _InitResTranslation(caller);
    HMODULE gone = LoadLibraryA((ModuleFolder() + "other.dll").c_str());
    _InitResTranslation(gone);
    FreeLibrary(gone);
    EXPECT_EQ(_DeInitResTranslation(gone), 1);
    EXPECT_EQ(Load(caller), "Auf");
}

TEST_F(PatchingTest, AModuleWithNothingToPatchTakesNothingFromTheOthers) {
    // Its rows fail and leave no real address; the replacements go on through the library's own
    // imports.
    CallerModule caller;
    _InitResTranslation(caller);
    std::vector<char> nothing(4096);
    EXPECT_EQ(_InitResTranslation(reinterpret_cast<HMODULE>(nothing.data())), 1);
    EXPECT_EQ(Load(caller), "Auf");
    char buffer[64];
    EXPECT_EQ(_LoadStringNotTrans(caller, 1, buffer, sizeof buffer), 4);
    HRSRC found = CALL(caller, FindResourceA)(caller, MAKEINTRESOURCEA(300), RT_RCDATA);
    EXPECT_EQ(CALL(caller, SizeofResource)(caller, found), 19u);  // 17 letters and a word
    EXPECT_EQ(Load(caller), "Auf");
}

TEST_F(PatchingTest, TheLibrarysOwnImportsStay) {
    HMODULE library = GetModuleHandleA("qxcore.dll");
    auto before = Imports(library);
    EXPECT_EQ(_InitResTranslation(library), 1);
    EXPECT_EQ(Imports(library), before);
}

TEST_F(PatchingTest, AProgramsOwnImportsCanBePatched) {
    HMODULE program = GetModuleHandleA(nullptr);
    CallerModule caller;
    char buffer[64];
    ASSERT_EQ(Supp_InitResTranslation(program), 1);
    EXPECT_EQ(LoadFromProgram(caller, buffer, sizeof buffer), 3);
    EXPECT_STREQ(buffer, "Auf");
    EXPECT_EQ(_DeInitResTranslation(program), 1);
    EXPECT_EQ(LoadFromProgram(caller, buffer, sizeof buffer), 4);
}
