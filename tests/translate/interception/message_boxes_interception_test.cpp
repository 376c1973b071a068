// The message boxes of a patched module, read from their windows before they are seen.
#include "translate/interception/caller.h"

namespace {

struct ShownBox {
    std::wstring caption, text;
};
ShownBox g_box;

std::wstring WideTextOf(HWND window) {
    wchar_t text[4096] = L"";
    GetWindowTextW(window, text, 4096);
    return text;
}

// The one static text of a message box; its icon is a static without a text.
BOOL CALLBACK TakeText(HWND child, LPARAM) {
    wchar_t name[32];
    GetClassNameW(child, name, 32);
    if (_wcsicmp(name, L"Static") == 0 && !WideTextOf(child).empty())
        g_box.text = WideTextOf(child);
    return TRUE;
}

// Reads a box when its dialog is initialised, and ends it.
LRESULT CALLBACK ReadBox(int code, WPARAM wParam, LPARAM lParam) {
    auto message = reinterpret_cast<const CWPRETSTRUCT*>(lParam);
    if (code == HC_ACTION && message->message == WM_INITDIALOG) {
        g_box.caption = WideTextOf(message->hwnd);
        EnumChildWindows(message->hwnd, TakeText, 0);
        EndDialog(message->hwnd, IDOK);
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

class MessageBoxesInterceptionTest : public DictionaryTest {
protected:
    void SetUp() override {
        DictionaryTest::SetUp();
        _InitResTranslation(caller);
        Teach("Open", "Auf");
        Teach("Close", "Zu");
        Teach("Error", "Fehler");
        g_box = {};
        hook = SetWindowsHookExA(WH_CALLWNDPROCRET, ReadBox, nullptr, GetCurrentThreadId());
    }
    void TearDown() override {
        UnhookWindowsHookEx(hook);
        DictionaryTest::TearDown();
    }
    static MSGBOXPARAMSA Block(HINSTANCE module, const char* text, const char* caption) {
        MSGBOXPARAMSA block = {};
        block.cbSize = sizeof block;
        block.hInstance = module;
        block.lpszText = text;
        block.lpszCaption = caption;
        return block;
    }
    CallerModule caller;
    HHOOK hook = nullptr;
};

}  // namespace

TEST_F(MessageBoxesInterceptionTest, AMessageBoxIsTranslated) {
    EXPECT_EQ(CALL(caller, MessageBoxA)(nullptr, "Open", "Close", MB_OK), IDOK);
    EXPECT_EQ(g_box.text, L"Auf");
    EXPECT_EQ(g_box.caption, L"Zu");
}

TEST_F(MessageBoxesInterceptionTest, WithoutACaptionTheCaptionIsErrorInTheTargetLanguage) {
    CALL(caller, MessageBoxA)(nullptr, "Open", nullptr, MB_OK);
    EXPECT_EQ(g_box.caption, L"Fehler");
}

TEST_F(MessageBoxesInterceptionTest, AnUntranslatedMessageOfManyThousandCharactersIsShownWhole) {
    std::string text(3000, 'm');
    CALL(caller, MessageBoxA)(nullptr, text.c_str(), "Close", MB_OK);
    EXPECT_EQ(g_box.text, std::wstring(3000, L'm'));
}

TEST_F(MessageBoxesInterceptionTest, ATranslationIsCutAt1023Bytes) {
    Teach(std::string(3000, 'm'), std::string(2000, 't'));
    Teach("short", std::string(2000, 'u'));
    CALL(caller, MessageBoxA)(nullptr, std::string(3000, 'm').c_str(), "short", MB_OK);
    EXPECT_EQ(g_box.text, std::wstring(1023, L't'));
    EXPECT_EQ(g_box.caption, std::wstring(1023, L'u'));
}

TEST_F(MessageBoxesInterceptionTest, ANullTextIsTheSystemsAffair) {
    EXPECT_EQ(CALL(caller, MessageBoxA)(nullptr, nullptr, "Close", MB_OK), IDOK);
    EXPECT_EQ(g_box.caption, L"Zu");
}

TEST_F(MessageBoxesInterceptionTest, MessageBoxExKeepsTheSourceLanguage) {
    EXPECT_EQ(CALL(caller, MessageBoxExA)(nullptr, "Open", "Close", MB_OK, 0), IDOK);
    EXPECT_EQ(g_box.text, L"Open");
    EXPECT_EQ(g_box.caption, L"Close");
    g_box = {};
    EXPECT_EQ(CALL(caller, MessageBoxExA)(nullptr, "Open", nullptr, MB_OK, 0), IDOK);
    EXPECT_NE(g_box.caption, L"Fehler");
}

TEST_F(MessageBoxesInterceptionTest, TheWideMessageBoxIsNotIntercepted) {
    EXPECT_EQ(CALL(caller, MessageBoxW)(nullptr, L"Open", L"Close", MB_OK), IDOK);
    EXPECT_EQ(g_box.text, L"Open");
    EXPECT_EQ(g_box.caption, L"Close");
}

TEST_F(MessageBoxesInterceptionTest, AnIndirectBoxTakesTextsAndStringIds) {
    MSGBOXPARAMSA block = Block(caller, "Open", MAKEINTRESOURCEA(2));
    EXPECT_EQ(CALL(caller, MessageBoxIndirectA)(&block), IDOK);
    EXPECT_EQ(g_box.text, L"Auf");
    EXPECT_EQ(g_box.caption, L"Zu");
}

TEST_F(MessageBoxesInterceptionTest, AnIndirectBoxHasNoContext) {
    Teach("caller.dll#3#1\xFD\xFDOpen", "in its block");
    MSGBOXPARAMSA block = Block(caller, MAKEINTRESOURCEA(1), "Close");
    CALL(caller, MessageBoxIndirectA)(&block);
    EXPECT_EQ(g_box.text, L"Auf");
}

TEST_F(MessageBoxesInterceptionTest, TheCallersBlockPointsAtTheTranslationsAfterwards) {
    MSGBOXPARAMSA block = Block(caller, "Open", "Close");
    CALL(caller, MessageBoxIndirectA)(&block);
    EXPECT_STREQ(block.lpszText, "Auf");
    EXPECT_STREQ(block.lpszCaption, "Zu");
    // So a second box from the same block looks like the first.
    g_box = {};
    CALL(caller, MessageBoxIndirectA)(&block);
    EXPECT_EQ(g_box.text, L"Auf");
    EXPECT_EQ(g_box.caption, L"Zu");
}

TEST_F(MessageBoxesInterceptionTest, AnUntranslatedTextOfABlockIsCopiedToo) {
    const char* text = "Nobody knows";
    MSGBOXPARAMSA block = Block(caller, text, "Close");
    CALL(caller, MessageBoxIndirectA)(&block);
    EXPECT_EQ(g_box.text, L"Nobody knows");
    EXPECT_NE(block.lpszText, text);
    EXPECT_STREQ(block.lpszText, text);
}

TEST_F(MessageBoxesInterceptionTest, ATextWhoseAddressLooksLikeAStringIdShowsThatString) {
    // The low half of the address is tried as an id, of which the system looks at 16 bits: here 1.
    auto pages =
        static_cast<char*>(VirtualAlloc(nullptr, 4096, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    ASSERT_EQ(reinterpret_cast<uintptr_t>(pages) & 0xFFFF, 0u);
    strcpy(pages + 1, "Close");
    MSGBOXPARAMSA block = Block(caller, pages + 1, "Close");
    CALL(caller, MessageBoxIndirectA)(&block);
    EXPECT_EQ(g_box.text, L"Auf");
    VirtualFree(pages, 0, MEM_RELEASE);
}

TEST_F(MessageBoxesInterceptionTest, WithoutATextABlockShowsTheString0) {
    Teach("Nothing said", "Nichts");
    MSGBOXPARAMSA block = Block(GetModuleHandleA(nullptr), nullptr, "Close");
    CALL(caller, MessageBoxIndirectA)(&block);
    EXPECT_EQ(g_box.text, L"Nichts");
    EXPECT_STREQ(block.lpszText, "Nichts");
    // A module without that string leaves null to the system.
    block = Block(caller, nullptr, "Close");
    EXPECT_EQ(CALL(caller, MessageBoxIndirectA)(&block), IDOK);
    EXPECT_EQ(block.lpszText, nullptr);
}

TEST_F(MessageBoxesInterceptionTest, ABlockInReadOnlyMemoryIsShownAllTheSame) {
    void* page = VirtualAlloc(nullptr, 4096, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
    auto block = static_cast<MSGBOXPARAMSA*>(page);
    *block = Block(caller, "Open", "Close");
    DWORD old;
    VirtualProtect(page, 4096, PAGE_READONLY, &old);
    EXPECT_EQ(CALL(caller, MessageBoxIndirectA)(block), IDOK);
    EXPECT_EQ(g_box.text, L"Auf");
    EXPECT_STREQ(block->lpszText, "Open");
    VirtualFree(page, 0, MEM_RELEASE);
}

TEST_F(MessageBoxesInterceptionTest, AMissingStringIdIsTheSystemsAffair) {
    MSGBOXPARAMSA block = Block(caller, MAKEINTRESOURCEA(9999), "Close");
    EXPECT_EQ(CALL(caller, MessageBoxIndirectA)(&block), IDOK);
    EXPECT_EQ(g_box.text, L"");
    EXPECT_EQ(g_box.caption, L"Zu");
}

TEST_F(MessageBoxesInterceptionTest, TheSwitchTurnsTranslationOff) {
    Supp_SetTranslationEnable(0);
    CALL(caller, MessageBoxA)(nullptr, "Open", "Close", MB_OK);
    EXPECT_EQ(g_box.text, L"Open");
    EXPECT_EQ(g_box.caption, L"Close");
    g_box = {};
    CALL(caller, MessageBoxExA)(nullptr, "Open", "Close", MB_OK, 0);
    EXPECT_EQ(g_box.text, L"Open");
    MSGBOXPARAMSA block = Block(caller, "Open", MAKEINTRESOURCEA(2));
    CALL(caller, MessageBoxIndirectA)(&block);
    EXPECT_EQ(g_box.text, L"Open");
    EXPECT_EQ(g_box.caption, L"Close");
    EXPECT_EQ(block.lpszCaption, MAKEINTRESOURCEA(2));
}

TEST_F(MessageBoxesInterceptionTest, MessageBoxInternalIsNeverTranslated) {
    MSGBOXPARAMSA block = Block(caller, "Open", MAKEINTRESOURCEA(2));
    EXPECT_EQ(MessageBoxInternalA(&block, 0), IDOK);
    EXPECT_EQ(g_box.text, L"Open");
    EXPECT_EQ(g_box.caption, L"Close");
    MSGBOXPARAMSW wide = {};
    wide.cbSize = sizeof wide;
    wide.lpszText = L"Op\u0416";
    wide.lpszCaption = L"Cl\u0416";
    EXPECT_EQ(MessageBoxInternalA(&wide, 1), IDOK);
    EXPECT_EQ(g_box.text, L"Op\u0416");
    EXPECT_EQ(g_box.caption, L"Cl\u0416");
}
