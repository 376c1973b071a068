// The layer when memory runs out.
#include "support/allocation_failure.h"
#include "support/import_slot.h"
#include "translate/dialog_template_fixture.h"

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
    auto dialog =
        static_cast<const DLGTEMPLATE*>(LoadResource(caller, FindResourceA(caller, MAKEINTRESOURCEA(230), RT_DIALOG)));
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

TEST_F(InterceptionFailureTest, EachAllocationOfATemplateMayFail) {
    auto bytes = WriteTemplate(FullDialog(false));
    DialogModel wide = FullDialog(true);
    wide.caption = std::wstring(5000, L'x');
    auto longBytes = WriteTemplate(wide);
    for (auto* source : {&bytes, &longBytes}) {
        unsigned failed = FailEachAllocation([] { return 0; },
                                             [&](int) {
                                                 int size = 0;
                                                 unsigned char* block = TranslateDlgInternal(source->data(), &size);
                                                 if (size) free(block);
                                             },
                                             [](int) {});
        EXPECT_GE(failed, 1u);
    }
}
