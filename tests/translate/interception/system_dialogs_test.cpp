// The system's own dialogs in the live process: the file dialog of comdlg32 and the folder browser
// of shell32.
#include "translate/interception/caller.h"
#include "translate/own_process.h"
#include "translate/interception/pseudo_dictionary.h"
#include "support/scratch_directory.h"
#include "translate/resources/template_model.h"

#include <commdlg.h>
#include <shlobj.h>

#include <map>

namespace {

// The texts of a dialog's windows by control id, as they stand once it is initialised.
struct SeenDialog {
    std::wstring caption;
    std::map<int, std::wstring> texts;
};
std::vector<SeenDialog> g_seen;

std::wstring TextOf(HWND window) {
    wchar_t text[512] = L"";
    GetWindowTextW(window, text, 512);
    return text;
}

BOOL CALLBACK TakeChild(HWND child, LPARAM state) {
    auto& dialog = *reinterpret_cast<SeenDialog*>(state);
    int id = GetDlgCtrlID(child);
    if (id) dialog.texts.emplace(id, TextOf(child));
    return TRUE;
}

LRESULT CALLBACK ReadDialog(int code, WPARAM wParam, LPARAM lParam) {
    auto message = reinterpret_cast<const CWPRETSTRUCT*>(lParam);
    if (code == HC_ACTION && message->message == WM_INITDIALOG &&
        !(GetWindowLongA(message->hwnd, GWL_STYLE) & WS_CHILD)) {
        SeenDialog dialog;
        dialog.caption = TextOf(message->hwnd);
        EnumChildWindows(message->hwnd, TakeChild, reinterpret_cast<LPARAM>(&dialog));
        g_seen.push_back(dialog);
        PostMessageA(message->hwnd, WM_COMMAND, IDCANCEL, 0);
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

// The original of a dialog, read from the module's own resources.
std::optional<DialogModel> Original(HMODULE module, const char* name) {
    HRSRC found = FindResourceA(module, name, RT_DIALOG);
    if (!found) return std::nullopt;
    size_t left;
    return ParseTemplate(static_cast<const uint8_t*>(LockResource(LoadResource(module, found))),
                         SizeofResource(module, found), &left);
}

void Teach(PseudoDictionary& dictionary, const DialogModel& dialog) {
    dictionary.Add(std::string(dialog.caption.begin(), dialog.caption.end()));
    for (const ControlModel& c : dialog.controls)
        dictionary.Add(std::string(c.title.text.begin(), c.title.text.end()));
}

bool IsTranslatable(const ControlModel& c) {
    return c.windowClass.number &&
           (*c.windowClass.number == 0x80 || *c.windowClass.number == 0x82) && !c.title.number &&
           !c.title.text.empty();
}

// Compares what was seen with the original in the target language. Answers how many texts were
// compared.
int ExpectTranslated(const SeenDialog& seen, const DialogModel& original,
                     const PseudoDictionary& dictionary) {
    int compared = 0;
    for (const ControlModel& c : original.controls) {
        auto window = seen.texts.find(static_cast<uint16_t>(c.id));
        if (!IsTranslatable(c) || c.id == 0xFFFF || c.id == 0xFFFFFFFF ||
            window == seen.texts.end())
            continue;
        std::wstring expected =
            Wide(dictionary.Translate(std::string(c.title.text.begin(), c.title.text.end())));
        // A control that the dialog itself gives another text at once has that one in any language.
        if (window->second.empty()) continue;
        EXPECT_EQ(window->second, expected) << "control " << c.id;
        ++compared;
    }
    return compared;
}

class SystemDialogsTest : public testing::Test {
protected:
    // A dictionary file of no texts of its own starts the interception.
    void Start() {
        ASSERT_EQ(Supp_Init(directory.Write("start.wld", "\"x\"\n\"y\"\n").c_str()), 1);
        hook = SetWindowsHookExA(WH_CALLWNDPROCRET, ReadDialog, nullptr, GetCurrentThreadId());
    }
    void TearDown() override {
        if (hook) UnhookWindowsHookEx(hook);
    }
    ScratchDirectory directory;
    HHOOK hook = nullptr;
};

}  // namespace

TEST_F(SystemDialogsTest, TheFileDialogIsTranslated) {
    IN_A_PROCESS_OF_ITS_OWN();
    HMODULE module = LoadLibraryA("comdlg32.dll");
    auto original = Original(module, MAKEINTRESOURCEA(1552));
    ASSERT_TRUE(original);
    PseudoDictionary dictionary;
    Teach(dictionary, *original);
    Start();
    char file[MAX_PATH] = "";
    OPENFILENAMEA open = {};
    open.lStructSize = sizeof open;
    open.lpstrFile = file;
    open.nMaxFile = sizeof file;
    open.Flags = OFN_EXPLORER;
    EXPECT_FALSE(GetOpenFileNameA(&open));
    ASSERT_FALSE(g_seen.empty());
    EXPECT_GE(ExpectTranslated(g_seen[0], *original, dictionary), 4);
}

TEST_F(SystemDialogsTest, TheFolderBrowserIsTranslatedOnceItsModuleIsNamed) {
    IN_A_PROCESS_OF_ITS_OWN();
    CoInitialize(nullptr);
    HMODULE module = LoadLibraryA("shell32.dll");
    PseudoDictionary dictionary;
    std::optional<DialogModel> original = Original(module, "SHBRSFORFOLDER_MSGBOX");
    ASSERT_TRUE(original);
    Teach(dictionary, *original);
    Start();
    ASSERT_EQ(Supp_InitResTranslation(module), 1);
    BROWSEINFOA browse = {};
    char name[MAX_PATH];
    browse.pszDisplayName = name;
    browse.lpszTitle = "Folder";
    EXPECT_EQ(SHBrowseForFolderA(&browse), nullptr);
    ASSERT_FALSE(g_seen.empty());
    EXPECT_EQ(g_seen[0].caption, Wide(dictionary.Translate(std::string(original->caption.begin(),
                                                                       original->caption.end()))));
    EXPECT_GE(ExpectTranslated(g_seen[0], *original, dictionary), 2);
    _DeInitResTranslation(module);
}
