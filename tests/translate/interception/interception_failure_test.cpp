// The layer when memory runs out.
#include "support/allocation_failure.h"
#include "support/import_slot.h"
#include "translate/resources/dialog_template_fixture.h"

namespace {

void* NoMemory(size_t) {
    return nullptr;
}

HLOCAL WINAPI NoLocalMemory(UINT, SIZE_T) {
    return nullptr;
}

class InterceptionFailureTest : public DictionaryTest {
protected:
    void SetUp() override {
        DictionaryTest::SetUp();
        _InitResTranslation(caller);
        Teach("Open", "Auf");
        Teach("Close", "Zu");
    }
    static CallerModule& Caller() {
        static auto& module = *new CallerModule;
        return module;
    }
    CallerModule& caller = Caller();
};

std::string g_caption;

INT_PTR CALLBACK TakeCaption(HWND dialog, UINT message, WPARAM, LPARAM) {
    char text[64] = "";
    if (message == WM_INITDIALOG) {
        GetWindowTextA(dialog, text, sizeof text);
        g_caption = text;
        EndDialog(dialog, 1);
    }
    return FALSE;
}

}  // namespace

TEST_F(InterceptionFailureTest, ATemplateForWhichThereIsNoBlockIsNull) {
    auto bytes = WriteTemplate(FullDialog(true));
    ReplacedImport none("malloc", reinterpret_cast<void*>(NoMemory));
    int size = -1;
    EXPECT_EQ(TranslateDlgInternal(bytes.data(), &size), nullptr);
}

TEST_F(InterceptionFailureTest, ADialogForWhichThereIsNoBlockKeepsItsLanguage) {
    auto dialog = static_cast<const DLGTEMPLATE*>(
        LoadResource(caller, FindResourceA(caller, MAKEINTRESOURCEA(230), RT_DIALOG)));
    auto run = CALL(caller, DialogBoxIndirectParamA);
    {
        ReplacedImport none("malloc", reinterpret_cast<void*>(NoMemory));
        EXPECT_EQ(run(caller, dialog, nullptr, TakeCaption, 0), 1);
    }
    EXPECT_EQ(g_caption, "Open");
    EXPECT_EQ(run(caller, dialog, nullptr, TakeCaption, 0), 1);
    EXPECT_EQ(g_caption, "Auf");
}

TEST_F(InterceptionFailureTest, AResourceForWhichThereIsNoRecordKeepsItsHandle) {
    HRSRC real = FindResourceA(caller, MAKEINTRESOURCEA(215), RT_DIALOG);
    auto find = CALL(caller, FindResourceA);
    {
        ReplacedImport none("LocalAlloc", reinterpret_cast<void*>(NoLocalMemory));
        EXPECT_EQ(find(caller, MAKEINTRESOURCEA(215), RT_DIALOG), real);
    }
    EXPECT_NE(find(caller, MAKEINTRESOURCEA(215), RT_DIALOG), real);
}

TEST_F(InterceptionFailureTest, AStringTableForWhichThereIsNoBlockIsTheRealResource) {
    HRSRC record = CALL(caller, FindResourceA)(caller, MAKEINTRESOURCEA(63), RT_STRING);
    HGLOBAL real = LoadResource(caller, FindResourceA(caller, MAKEINTRESOURCEA(63), RT_STRING));
    auto load = CALL(caller, LoadResource);
    {
        ReplacedImport none("LocalAlloc", reinterpret_cast<void*>(NoLocalMemory));
        EXPECT_EQ(load(caller, record), real);
    }
    EXPECT_NE(load(caller, record), real);
}

namespace {

// Runs an act with its first allocation failing, then with its second, and so on until it needs no
// more. It must go on without the memory each time: a module that calls the system expects no
// exception. Answers how many failed.
template <class Act>
unsigned GoesOnWithoutMemory(Act act) {
    for (unsigned n = 1;; ++n) {
        FailingAllocation failing(n);
        EXPECT_NO_THROW(act(n)) << "allocation " << n;
        if (!failing.Happened()) return n - 1;
    }
}

char g_label[64];

INT_PTR CALLBACK TakeLabel(HWND dialog, UINT message, WPARAM, LPARAM) {
    if (message != WM_INITDIALOG) return FALSE;
    GetDlgItemTextA(dialog, 20, g_label, sizeof g_label);
    EndDialog(dialog, 1);
    return TRUE;
}

// Refuses every window, so that a message box ends where it would be made.
LRESULT CALLBACK RefuseWindows(int code, WPARAM, LPARAM) {
    return code == HCBT_CREATEWND;
}

}  // namespace

TEST_F(InterceptionFailureTest, StringsMenusFindsAndMessageBoxesTakeNoMemoryOfTheLibrary) {
    char text[64];
    wchar_t wide[64];
    MSGBOXPARAMSA box = {};
    box.cbSize = sizeof box;
    box.lpszText = box.lpszCaption = "Open";
    struct {
        WORD version = 0, offset = 0, flags = MF_END, id = 5;
        wchar_t text[5] = L"Open";
    } menuTemplate;
    HRSRC record = CALL(caller, FindResourceA)(caller, MAKEINTRESOURCEA(254), RT_DIALOG);
    HHOOK hook = SetWindowsHookExA(WH_CBT, RefuseWindows, nullptr, GetCurrentThreadId());
#define TAKES_NONE(function, ...)                 \
    EXPECT_EQ(GoesOnWithoutMemory([&](unsigned) { \
                  CALL(caller, function)          \
                  (__VA_ARGS__);                  \
              }),                                 \
              0u)                                 \
        << #function
#define MENU_TAKES_NONE(function, ...)                                                            \
    EXPECT_EQ(                                                                                    \
        GoesOnWithoutMemory([&](unsigned) { DestroyMenu(CALL(caller, function)(__VA_ARGS__)); }), \
        0u)
    TAKES_NONE(LoadStringA, caller, 1, text, 64);
    TAKES_NONE(LoadStringW, caller, 1, wide, 64);
    MENU_TAKES_NONE(LoadMenuIndirectA, &menuTemplate);
    MENU_TAKES_NONE(LoadMenuA, caller, MAKEINTRESOURCEA(100));
    MENU_TAKES_NONE(LoadMenuW, caller, MAKEINTRESOURCEW(100));
    TAKES_NONE(FindResourceA, caller, MAKEINTRESOURCEA(250), RT_DIALOG);
    TAKES_NONE(FindResourceW, caller, MAKEINTRESOURCEW(251), MAKEINTRESOURCEW(5));
    TAKES_NONE(FindResourceExA, caller, RT_DIALOG, MAKEINTRESOURCEA(252), 0);
    TAKES_NONE(FindResourceExW, caller, MAKEINTRESOURCEW(5), MAKEINTRESOURCEW(253), 0);
    TAKES_NONE(LockResource, text);
    TAKES_NONE(FreeResource, text);
    TAKES_NONE(SizeofResource, caller, record);
    TAKES_NONE(MessageBoxA, nullptr, "Open", "Close", MB_OK);
    TAKES_NONE(MessageBoxExA, nullptr, "Open", "Close", MB_OK, 0);
    TAKES_NONE(MessageBoxIndirectA, &box);
    UnhookWindowsHookEx(hook);
    EXPECT_EQ(GoesOnWithoutMemory(
                  [&](unsigned) { _DeInitResTranslation(caller), _InitResTranslation(caller); }),
              0u);
}

TEST_F(InterceptionFailureTest,
       ADialogResourceWithoutMemoryIsTheRealOneAndTheNextLoadTranslatesIt) {
    HRSRC record = CALL(caller, FindResourceA)(caller, MAKEINTRESOURCEA(254), RT_DIALOG);
    HGLOBAL real = LoadResource(caller, FindResourceA(caller, MAKEINTRESOURCEA(254), RT_DIALOG));
    HGLOBAL loaded = nullptr;
    EXPECT_GE(GoesOnWithoutMemory([&](unsigned n) {
                  if (n > 1) {
                      EXPECT_EQ(loaded, real);
                  }
                  loaded = CALL(caller, LoadResource)(caller, record);
              }),
              1u);
    EXPECT_NE(loaded, real);
    EXPECT_EQ(CALL(caller, LoadResource)(caller, record), loaded);
}

TEST_F(InterceptionFailureTest, ADialogWithoutMemoryComesUpInItsOwnLanguage) {
    auto dialog = static_cast<const DLGTEMPLATE*>(
        LoadResource(caller, FindResourceA(caller, MAKEINTRESOURCEA(250), RT_DIALOG)));
    auto comesUp = [](auto run) {
        strcpy(g_label, "none");
        EXPECT_GE(GoesOnWithoutMemory([&](unsigned n) {
                      if (n > 1) {
                          EXPECT_STREQ(g_label, "Open");
                      }
                      run();
                  }),
                  1u);
        EXPECT_STREQ(g_label, "Auf");
    };
#define COMES_UP(function, source) \
    comesUp([&] { CALL(caller, function)(caller, source, nullptr, TakeLabel, 0); })
    COMES_UP(CreateDialogParamA, MAKEINTRESOURCEA(250));
    COMES_UP(CreateDialogParamW, MAKEINTRESOURCEW(251));
    COMES_UP(DialogBoxParamA, MAKEINTRESOURCEA(252));
    COMES_UP(DialogBoxParamW, MAKEINTRESOURCEW(253));
    COMES_UP(CreateDialogIndirectParamA, dialog);
    COMES_UP(CreateDialogIndirectParamW, dialog);
    COMES_UP(DialogBoxIndirectParamA, dialog);
    COMES_UP(DialogBoxIndirectParamW, dialog);
}

TEST_F(InterceptionFailureTest, EachAllocationOfATemplateMayFail) {
    auto bytes = WriteTemplate(FullDialog(false));
    DialogModel wide = FullDialog(true);
    wide.caption = std::wstring(5000, L'x');
    auto longBytes = WriteTemplate(wide);
    constexpr int kHash = 4711;
    auto geometry = new QXDlgPos;
    geometry->m_Size = {1, 1};
    g_Wld.m_DlgPos.SetAt(kHash, geometry);
    for (auto* source : {&bytes, &longBytes}) {
        for (int hash : {0, kHash}) {
            unsigned failed = FailEachAllocation([] { return 0; },
                                                 [&](int) {
                                                     int size = 0;
                                                     unsigned char* block =
                                                         TranslateDlgInternalPosition(
                                                             source->data(), hash, &size);
                                                     if (size) free(block);
                                                 },
                                                 [](int) {});
            EXPECT_GE(failed, hash ? 2u : 1u);
        }
    }
    g_Wld.m_DlgPos.RemoveKey(kHash);
}

TEST_F(InterceptionFailureTest, GeometryWithoutControlsTakesNoTable) {
    // A look into it must not change it, since any number of threads may look.
    constexpr int kHash = 4711;
    auto geometry = new QXDlgPos;
    geometry->m_Size = {1, 1};
    g_Wld.m_DlgPos.SetAt(kHash, geometry);
    auto bytes = WriteTemplate(FullDialog(false));
    int size = 0;
    long before = LiveBlocks();
    free(TranslateDlgInternalPosition(bytes.data(), kHash, &size));
    EXPECT_EQ(LiveBlocks(), before);
    g_Wld.m_DlgPos.RemoveKey(kHash);
}

TEST_F(InterceptionFailureTest, SettingAFontTakesNoMemoryOfTheLibrary) {
    CWld dictionary;
    EXPECT_EQ(GoesOnWithoutMemory(
                  [&](unsigned) { dictionary.SetDialogFont(RUSSIAN_CHARSET, 10, "Tahoma"); }),
              0u);
}
