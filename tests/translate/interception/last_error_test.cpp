// The last error that a caller sees after an intercepted call is the real function's.
#include "support/scratch_directory.h"
#include "translate/interception/caller.h"

namespace {

constexpr DWORD kBefore = 4711;

INT_PTR CALLBACK EndAtOnce(HWND dialog, UINT message, WPARAM, LPARAM) {
    if (message == WM_INITDIALOG) EndDialog(dialog, 1);
    return FALSE;
}

// Refuses every window, so that a message box ends where it would be made.
LRESULT CALLBACK RefuseWindows(int code, WPARAM, LPARAM) {
    return code == HCBT_CREATEWND;
}

template <class Act>
DWORD ErrorAfter(Act act) {
    SetLastError(kBefore);
    act();
    return GetLastError();
}

// What a call that is intercepted meets.
enum Branch { kTranslated, kSwitchedOff, kExcluded, kObserved, kLoadedAsData };

void CALLBACK HearAndFail(const QXLookup*, void*) {
    SetLastError(ERROR_INVALID_DATA);
}

class LastErrorTest : public DictionaryTest, public testing::WithParamInterface<Branch> {
protected:
    void SetUp() override {
        DictionaryTest::SetUp();
        _InitResTranslation(caller);
        Teach("Open", "Auf");
        Teach("Close", "Zu");
        Supp_SetTranslationEnable(GetParam() != kSwitchedOff);
        if (GetParam() == kObserved) Supp_SetLookupObserver(HearAndFail, nullptr);
    }
    // A module that nobody knows yet, so that whatever a call must find out of it is due.
    HMODULE Fresh() {
        bool excluded = GetParam() == kExcluded;
        if (excluded && !modules.empty()) FreeLibrary(modules.back()), modules.pop_back();
        std::string folder = directory.PathOf("fresh" + std::to_string(++copies));
        CreateDirectoryA(folder.c_str(), nullptr);
        std::string name = excluded ? "acopm.arx" : "fresh" + std::to_string(copies) + ".dll";
        std::string path = folder + "\\" + name;
        CopyFileA((ModuleFolder() + "caller.dll").c_str(), path.c_str(), TRUE);
        DWORD flags = GetParam() == kLoadedAsData ? DONT_RESOLVE_DLL_REFERENCES : 0;
        modules.push_back(LoadLibraryExA(path.c_str(), nullptr, flags));
        return modules.back();
    }
    void TearDown() override {
        Supp_SetLookupObserver(nullptr, nullptr);
        for (HMODULE module : modules) FreeLibrary(module);
        DictionaryTest::TearDown();
    }
    static bool IsExchanging() { return GetParam() == kSwitchedOff || GetParam() == kExcluded; }

    ScratchDirectory directory;
    CallerModule caller;
    std::vector<HMODULE> modules;
    int copies = 0;
};

// The patched call beside the real one, each with a fresh module of its own called `m`.
#define EXPECT_SAME_ERROR(function, ...)                                          \
    do {                                                                          \
        HMODULE m = Fresh();                                                      \
        DWORD real = ErrorAfter([&] { ::function(__VA_ARGS__); });                \
        m = Fresh();                                                              \
        EXPECT_EQ(ErrorAfter([&] { CALL(caller, function)                         \
                                   (__VA_ARGS__); }), real) \
            << #function "(" #__VA_ARGS__ ")";                                    \
    } while (false)

std::string NameOf(const testing::TestParamInfo<Branch>& info) {
    constexpr const char* kNames[] = {"Translated", "SwitchedOff", "Excluded", "Observed",
                                      "LoadedAsData"};
    return kNames[info.param];
}
INSTANTIATE_TEST_SUITE_P(Branches, LastErrorTest,
                         testing::Values(kTranslated, kSwitchedOff, kExcluded, kObserved,
                                         kLoadedAsData),
                         NameOf);

}  // namespace

TEST_P(LastErrorTest, OfStringsIsTheRealFunctions) {
    char text[64];
    wchar_t wide[64];
    for (UINT id : {1u, 3u, 160u, 400u, 9999u}) {
        EXPECT_SAME_ERROR(LoadStringA, m, id, text, 64);
        EXPECT_SAME_ERROR(LoadStringW, m, id, wide, 64);
    }
    EXPECT_SAME_ERROR(LoadStringW, m, 1, wide, 3);
}

TEST_P(LastErrorTest, OfMenusIsTheRealFunctions) {
    struct {
        WORD version = 0, offset = 0, flags = MF_END, id = 5;
        wchar_t text[5] = L"Open";
    } menu;
    EXPECT_SAME_ERROR(LoadMenuA, m, MAKEINTRESOURCEA(100));
    EXPECT_SAME_ERROR(LoadMenuA, m, "NONE");
    EXPECT_SAME_ERROR(LoadMenuW, m, MAKEINTRESOURCEW(100));
    EXPECT_SAME_ERROR(LoadMenuW, m, L"NONE");
    EXPECT_SAME_ERROR(LoadMenuIndirectA, (static_cast<void>(m), &menu));
}

TEST_P(LastErrorTest, OfResourcesIsTheRealFunctions) {
    for (const char* type : {MAKEINTRESOURCEA(4), MAKEINTRESOURCEA(5), MAKEINTRESOURCEA(10)}) {
        auto wideType = reinterpret_cast<const wchar_t*>(type);
        for (int name : {100, 200, 300, 999}) {
            auto id = MAKEINTRESOURCEA(name);
            auto wideId = MAKEINTRESOURCEW(name);
            EXPECT_SAME_ERROR(FindResourceA, m, id, type);
            EXPECT_SAME_ERROR(FindResourceW, m, wideId, wideType);
            if (IsExchanging()) continue;  // what the real function is asked for differs then
            EXPECT_SAME_ERROR(FindResourceExA, m, type, id, 0);
            EXPECT_SAME_ERROR(FindResourceExW, m, wideType, wideId, 0);
        }
    }
    HMODULE module = caller;
    HRSRC real = FindResourceA(module, MAKEINTRESOURCEA(200), MAKEINTRESOURCEA(5));
    HRSRC record = CALL(caller, FindResourceA)(module, MAKEINTRESOURCEA(200), MAKEINTRESOURCEA(5));
    EXPECT_EQ(ErrorAfter([&] { CALL(caller, SizeofResource)
                               (module, record); }),
              ErrorAfter([&] { SizeofResource(module, real); }));
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(ErrorAfter([&] { CALL(caller, LoadResource)
                                   (module, record); }),
                  ErrorAfter([&] { LoadResource(module, real); }));
    }
    EXPECT_SAME_ERROR(LoadResource, m, nullptr);
    EXPECT_SAME_ERROR(SizeofResource, m, nullptr);
    EXPECT_SAME_ERROR(LockResource, m);
    EXPECT_SAME_ERROR(FreeResource, m);
}

TEST_P(LastErrorTest, OfDialogsIsTheRealFunctions) {
    auto dialog = static_cast<const DLGTEMPLATE*>(
        LoadResource(caller, FindResourceA(caller, MAKEINTRESOURCEA(230), RT_DIALOG)));
    // The first dialog of a process leaves what the system's own start leaves.
    DialogBoxIndirectParamA(caller, dialog, nullptr, EndAtOnce, 0);
    EXPECT_SAME_ERROR(DialogBoxParamA, m, MAKEINTRESOURCEA(230), nullptr, EndAtOnce, 0);
    EXPECT_SAME_ERROR(DialogBoxParamW, m, MAKEINTRESOURCEW(230), nullptr, EndAtOnce, 0);
    EXPECT_SAME_ERROR(DialogBoxParamA, m, "NONE", nullptr, EndAtOnce, 0);
    EXPECT_SAME_ERROR(DialogBoxParamW, m, L"NONE", nullptr, EndAtOnce, 0);
    EXPECT_SAME_ERROR(CreateDialogParamA, m, "NONE", nullptr, EndAtOnce, 0);
    EXPECT_SAME_ERROR(CreateDialogParamW, m, L"NONE", nullptr, EndAtOnce, 0);
    EXPECT_SAME_ERROR(DialogBoxIndirectParamA, m, dialog, nullptr, EndAtOnce, 0);
    EXPECT_SAME_ERROR(DialogBoxIndirectParamW, m, dialog, nullptr, EndAtOnce, 0);
    auto owned = reinterpret_cast<HWND>(UINT_PTR(0x7FFFFFF0));  // no window
    EXPECT_SAME_ERROR(CreateDialogParamA, m, MAKEINTRESOURCEA(230), owned, EndAtOnce, 0);
    EXPECT_SAME_ERROR(CreateDialogParamW, m, MAKEINTRESOURCEW(230), owned, EndAtOnce, 0);
    EXPECT_SAME_ERROR(CreateDialogIndirectParamA, m, dialog, owned, EndAtOnce, 0);
    EXPECT_SAME_ERROR(CreateDialogIndirectParamW, m, dialog, owned, EndAtOnce, 0);
}

TEST_P(LastErrorTest, OfMessageBoxesIsTheRealFunctions) {
    MSGBOXPARAMSA box = {};
    box.cbSize = sizeof box;
    box.lpszText = box.lpszCaption = "Open";
    HHOOK hook = SetWindowsHookExA(WH_CBT, RefuseWindows, nullptr, GetCurrentThreadId());
    MessageBoxA(nullptr, "Open", "Close", MB_OK);
    EXPECT_SAME_ERROR(MessageBoxA, (static_cast<void>(m), nullptr), "Open", "Close", MB_OK);
    EXPECT_SAME_ERROR(MessageBoxExA, (static_cast<void>(m), nullptr), "Open", "Close", MB_OK, 0);
    EXPECT_SAME_ERROR(MessageBoxIndirectA, (box.hInstance = m, &box));
    UnhookWindowsHookEx(hook);
}
