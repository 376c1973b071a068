// What the interception costs: each call of a patched module beside the real one, dialogs beside
// creating them, and patching beside looking the functions up.
#include "bench/measure.h"
#include "bench/ui_texts.h"

#include <qxcore.h>

#include <atomic>
#include <cstdlib>
#include <string>

namespace {

constexpr unsigned kEntries = 10000;

// The program's own imports are what is patched. A compiler takes an import slot for a constant, so
// each is read behind its back, and once as it was before.
#define SLOT_OF(function)                                    \
    QXCORE_NOINLINE decltype(&function) SlotOf##function() { \
        decltype(&function) volatile slot = &function;       \
        return slot;                                         \
    }
SLOT_OF(LoadStringA)
SLOT_OF(LoadStringW)
SLOT_OF(LoadMenuA)
SLOT_OF(FindResourceA)
SLOT_OF(LoadResource)
SLOT_OF(SizeofResource)
SLOT_OF(LockResource)
SLOT_OF(FreeResource)
SLOT_OF(CreateDialogParamA)
SLOT_OF(CreateDialogIndirectParamA)
SLOT_OF(LoadMenuW)
SLOT_OF(LoadMenuIndirectA)
SLOT_OF(FindResourceW)
SLOT_OF(FindResourceExA)
SLOT_OF(FindResourceExW)
SLOT_OF(CreateDialogParamW)
SLOT_OF(CreateDialogIndirectParamW)
SLOT_OF(DialogBoxParamA)
SLOT_OF(DialogBoxParamW)
SLOT_OF(DialogBoxIndirectParamA)
SLOT_OF(DialogBoxIndirectParamW)
SLOT_OF(MessageBoxA)
SLOT_OF(MessageBoxExA)
SLOT_OF(MessageBoxIndirectA)

template <class Function>
struct Call {
    Function* real;
    Function* patched;
};
#define CALL_OF(function)                                         \
    Call<decltype(function)> {                                    \
        RealOf<decltype(function)>(#function), SlotOf##function() \
    }

template <class Function>
Function* RealOf(const char* name) {
    FARPROC found = GetProcAddress(GetModuleHandleA("user32.dll"), name);
    if (!found) found = GetProcAddress(GetModuleHandleA("kernel32.dll"), name);
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(found));
}

INT_PTR CALLBACK Silent(HWND, UINT, WPARAM, LPARAM) {
    return FALSE;
}

const HINSTANCE g_self = GetModuleHandleA(nullptr);

void FillDictionary() {
    for (auto& text : UiTexts(kEntries)) {
        g_Wld.m_Contexts.SetAt(text.c_str(),
                               new CContext(text.c_str(), UiTranslation(text).c_str()));
    }
    for (int i = 0; i < 20; ++i) {
        std::string text = "Text of the item " + std::to_string(i);
        g_Wld.m_Contexts.SetAt(
            text.c_str(),
            new CContext(text.c_str(), ("Translated item " + std::to_string(i)).c_str()));
    }
}

template <class C>
void CompareLoad(const char* what, C call, HINSTANCE module, UINT id) {
    char buffer[256];
    bench::Compare(
        what, "the real call", [&] { bench::Keep(call.patched(module, id, buffer, 256)); },
        [&] { bench::Keep(call.real(module, id, buffer, 256)); });
}

void CompareStrings() {
    auto call = CALL_OF(LoadStringA);
    CompareLoad("LoadStringA, translated", call, g_self, 1);
    CompareLoad("LoadStringA, unknown text", call, g_self, 2);
    CompareLoad("LoadStringA, no such string", call, g_self, 9999);
    Supp_SetTranslationEnable(0);
    CompareLoad("LoadStringA, switched off", call, g_self, 1);
    CompareLoad("LoadStringA, switched off, no such string", call, g_self, 9999);
    Supp_SetTranslationEnable(1);
    auto wide = CALL_OF(LoadStringW);
    wchar_t buffer[256];
    bench::Compare(
        "LoadStringW, translated", "the real call",
        [&] { bench::Keep(wide.patched(g_self, 1, buffer, 256)); },
        [&] { bench::Keep(wide.real(g_self, 1, buffer, 256)); });
}

// Resources of a plug-in: one that is patched, and one of which only the resources are used.
void ComparePlugin(const char* what, DWORD flags) {
    HMODULE plugin = LoadLibraryExA("bench_plugin.dll", nullptr, flags);
    if (!flags) _InitResTranslation(plugin);
    auto row = [what](const char* call) { return std::string(call) + ", " + what; };
    auto call = CALL_OF(LoadStringA);
    CompareLoad(row("LoadStringA, translated").c_str(), call, plugin, 1);
    CompareLoad(row("LoadStringA, no such string").c_str(), call, plugin, 9999);
    auto find = CALL_OF(FindResourceA);
    auto load = CALL_OF(LoadResource);
    auto compareFind = [&](const char* name, const char* type, const char* title) {
        load.patched(plugin, find.patched(plugin, name, type));
        bench::Compare(
            row(title).c_str(), "the real call",
            [&] { bench::Keep(find.patched(plugin, name, type)); },
            [&] { bench::Keep(find.real(plugin, name, type)); });
    };
    compareFind(MAKEINTRESOURCEA(200), RT_DIALOG, "FindResourceA, dialog");
    compareFind(MAKEINTRESOURCEA(300), RT_RCDATA, "FindResourceA, raw data");
    _DeInitResTranslation(plugin);
    FreeLibrary(plugin);
}

// The cheapest call that there is, so the difference is what the way to it costs.
void CompareSize(const char* what, HMODULE module, HRSRC resource) {
    auto call = CALL_OF(SizeofResource);
    bench::Compare(
        what, "the real call", [&] { bench::Keep(call.patched(module, resource)); },
        [&] { bench::Keep(call.real(module, resource)); });
}

// An excluded module is one of that name, so a system module is copied to it.
void CompareExcluded() {
    char folder[MAX_PATH], system[MAX_PATH];
    GetTempPathA(MAX_PATH, folder);
    GetSystemDirectoryA(system, MAX_PATH);
    std::string path = std::string(folder) + "acopm.arx";
    CopyFileA((std::string(system) + "\\version.dll").c_str(), path.c_str(), FALSE);
    HMODULE excluded = LoadLibraryA(path.c_str());
    CompareLoad("LoadStringA, excluded module, no such string", CALL_OF(LoadStringA), excluded, 1);
    CompareSize("SizeofResource, excluded module", excluded,
                FindResourceA(excluded, MAKEINTRESOURCEA(1), RT_VERSION));
    FreeLibrary(excluded);
    DeleteFileA(path.c_str());
}

void CompareResources() {
    auto find = CALL_OF(FindResourceA);
    auto load = CALL_OF(LoadResource);
    auto size = CALL_OF(SizeofResource);
    auto lock = CALL_OF(LockResource);
    auto release = CALL_OF(FreeResource);
    const char* name = MAKEINTRESOURCEA(200);
    const char* type = MAKEINTRESOURCEA(5);
    HRSRC record = find.patched(g_self, name, type);
    HRSRC real = find.real(g_self, name, type);
    bench::Compare(
        "FindResourceA, dialog", "the real call",
        [&] { bench::Keep(find.patched(g_self, name, type)); },
        [&] { bench::Keep(find.real(g_self, name, type)); });
    bench::Compare(
        "FindResourceA, raw data", "the real call",
        [&] { bench::Keep(find.patched(g_self, MAKEINTRESOURCEA(300), RT_RCDATA)); },
        [&] { bench::Keep(find.real(g_self, MAKEINTRESOURCEA(300), RT_RCDATA)); });
    bench::Compare(
        "LoadResource, dialog, again", "the real call",
        [&] { bench::Keep(load.patched(g_self, record)); },
        [&] { bench::Keep(load.real(g_self, real)); });
    bench::Compare(
        "SizeofResource, dialog", "the real call",
        [&] { bench::Keep(size.patched(g_self, record)); },
        [&] { bench::Keep(size.real(g_self, real)); });
    Supp_SetTranslationEnable(0);
    CompareSize("SizeofResource, switched off", g_self, real);
    Supp_SetTranslationEnable(1);
    CompareSize("SizeofResource, raw data", g_self,
                find.real(g_self, MAKEINTRESOURCEA(300), RT_RCDATA));
    HGLOBAL block = load.patched(g_self, record);
    bench::Compare(
        "LockResource", "the real call", [&] { bench::Keep(lock.patched(block)); },
        [&] { bench::Keep(lock.real(block)); });
    bench::Compare(
        "FreeResource", "the real call", [&] { bench::Keep(release.patched(block)); },
        [&] { bench::Keep(release.real(block)); });
}

void CompareMenus() {
    auto call = CALL_OF(LoadMenuA);
    bench::Compare(
        "LoadMenuA, 20 items", "the real call",
        [&] { DestroyMenu(call.patched(g_self, MAKEINTRESOURCEA(100))); },
        [&] { DestroyMenu(call.real(g_self, MAKEINTRESOURCEA(100))); });
}

void CompareDialogs() {
    auto create = CALL_OF(CreateDialogIndirectParamA);
    auto byName = CALL_OF(CreateDialogParamA);
    HRSRC found =
        RealOf<decltype(FindResourceA)>("FindResourceA")(g_self, MAKEINTRESOURCEA(200), RT_DIALOG);
    auto dialog =
        static_cast<unsigned char*>(RealOf<decltype(LoadResource)>("LoadResource")(g_self, found));
    auto source = reinterpret_cast<const DLGTEMPLATE*>(dialog);
    HWND parent =
        CreateWindowA("STATIC", "", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    bench::Compare(
        "dialog template, 20 controls", "creating the dialog",
        [&] {
            int size;
            unsigned char* block = TranslateDlgInternal(dialog, &size);
            if (size) free(block);
        },
        [&] { DestroyWindow(create.real(g_self, source, parent, Silent, 0)); });
    bench::Compare(
        "opening a dialog from a resource", "the real call",
        [&] { DestroyWindow(byName.patched(g_self, MAKEINTRESOURCEA(200), parent, Silent, 0)); },
        [&] { DestroyWindow(byName.real(g_self, MAKEINTRESOURCEA(200), parent, Silent, 0)); });
    bench::Compare(
        "opening a dialog from a template", "the real call",
        [&] { DestroyWindow(create.patched(g_self, source, parent, Silent, 0)); },
        [&] { DestroyWindow(create.real(g_self, source, parent, Silent, 0)); });
    DestroyWindow(parent);
}

// One row for a call with the same arguments on both sides; `finish` gets rid of what it gave.
template <class C, class Finish, class... Args>
void CompareCall(const char* what, C call, Finish finish, Args... args) {
    bench::Compare(
        what, "the real call", [&] { finish(call.patched(args...)); },
        [&] { finish(call.real(args...)); });
}

void CompareFurtherFinds() {
    auto keep = [](HRSRC found) { bench::Keep(found); };
    CompareCall("FindResourceW, dialog", CALL_OF(FindResourceW), keep, g_self,
                MAKEINTRESOURCEW(200), MAKEINTRESOURCEW(5));
    CompareCall("FindResourceExA, dialog", CALL_OF(FindResourceExA), keep, g_self,
                MAKEINTRESOURCEA(5), MAKEINTRESOURCEA(200), WORD(0));
    CompareCall("FindResourceExW, dialog", CALL_OF(FindResourceExW), keep, g_self,
                MAKEINTRESOURCEW(5), MAKEINTRESOURCEW(200), WORD(0));
}

void CompareFurtherMenus() {
    HRSRC found =
        RealOf<decltype(FindResourceA)>("FindResourceA")(g_self, MAKEINTRESOURCEA(100), RT_MENU);
    const void* menu = RealOf<decltype(LoadResource)>("LoadResource")(g_self, found);
    CompareCall("LoadMenuW, 20 items", CALL_OF(LoadMenuW), DestroyMenu, g_self,
                MAKEINTRESOURCEW(100));
    CompareCall("LoadMenuIndirectA, 20 items", CALL_OF(LoadMenuIndirectA), DestroyMenu, menu);
}

// Refuses every window, so that a modal call ends where its window would be made.
LRESULT CALLBACK RefuseWindows(int code, WPARAM, LPARAM) {
    return code == HCBT_CREATEWND;
}

void CompareModalCalls() {
    HHOOK hook = SetWindowsHookExA(WH_CBT, RefuseWindows, nullptr, GetCurrentThreadId());
    auto keep = [](INT_PTR answer) { bench::Keep(answer); };
    HRSRC found =
        RealOf<decltype(FindResourceA)>("FindResourceA")(g_self, MAKEINTRESOURCEA(200), RT_DIALOG);
    auto dialog = static_cast<const DLGTEMPLATE*>(
        RealOf<decltype(LoadResource)>("LoadResource")(g_self, found));
    HWND none = nullptr;
    LPARAM zero = 0;
    CompareCall("CreateDialogParamW, up to its window", CALL_OF(CreateDialogParamW), DestroyWindow,
                g_self, MAKEINTRESOURCEW(200), none, Silent, zero);
    CompareCall("CreateDialogIndirectParamW, up to its window", CALL_OF(CreateDialogIndirectParamW),
                DestroyWindow, g_self, dialog, none, Silent, zero);
    CompareCall("DialogBoxParamA, up to its window", CALL_OF(DialogBoxParamA), keep, g_self,
                MAKEINTRESOURCEA(200), none, Silent, zero);
    CompareCall("DialogBoxParamW, up to its window", CALL_OF(DialogBoxParamW), keep, g_self,
                MAKEINTRESOURCEW(200), none, Silent, zero);
    CompareCall("DialogBoxIndirectParamA, up to its window", CALL_OF(DialogBoxIndirectParamA), keep,
                g_self, dialog, none, Silent, zero);
    CompareCall("DialogBoxIndirectParamW, up to its window", CALL_OF(DialogBoxIndirectParamW), keep,
                g_self, dialog, none, Silent, zero);
    const char* text = "Text of the item 1";
    CompareCall("MessageBoxA, up to its window", CALL_OF(MessageBoxA), keep, none, text, text, 0u);
    CompareCall("MessageBoxExA, up to its window", CALL_OF(MessageBoxExA), keep, none, text, text,
                0u, WORD(0));
    auto indirect = CALL_OF(MessageBoxIndirectA);
    auto box = [&](decltype(MessageBoxIndirectA)* call) {
        MSGBOXPARAMSA parameters = {};
        parameters.cbSize = sizeof parameters;
        parameters.lpszText = parameters.lpszCaption = text;
        bench::Keep(call(&parameters));
    };
    bench::Compare(
        "MessageBoxIndirectA, up to its window", "the real call", [&] { box(indirect.patched); },
        [&] { box(indirect.real); });
    UnhookWindowsHookEx(hook);
}

// What each intercepted call that looks something up does while nobody observes: one read and one
// branch. It is less than two processes differ by for any other reason, so it is measured alone.
void CompareObserver() {
    static std::atomic<QXLookupObserver> none = nullptr;
    auto ask = [] {
        if (none.load(std::memory_order_relaxed)) abort();
        bench::Keep(none);
    };
    bench::Compare("asking for an observer", "nothing", ask, [] { bench::Keep(none); });
    auto slot = SlotOfLoadStringA();
    char text[64];
    bench::Compare(
        "LoadStringA, no such string, asked for once more", "LoadStringA, no such string",
        [&] {
            ask();
            bench::Keep(slot(g_self, 60000, text, sizeof text));
        },
        [&] { bench::Keep(slot(g_self, 60000, text, sizeof text)); });
}

void ComparePatching() {
    HMODULE module = LoadLibraryA("comdlg32.dll");
    HMODULE user = GetModuleHandleA("user32.dll");
    auto lookUp = [&] {
        for (int i = 0; i < 24; ++i)
            bench::Keep(GetProcAddress(user, "CreateDialogIndirectParamA"));
    };
    bench::Compare(
        "patching and restoring one module", "24 x GetProcAddress",
        [&] {
            _InitResTranslation(module);
            _DeInitResTranslation(module);
        },
        lookUp, 2);
    bench::Compare(
        "restoring alone, nothing patched", "24 x GetProcAddress",
        [&] { _DeInitResTranslation(module); }, lookUp);
    // Each patched module is told to the debugger, which costs what the system takes for it.
    bench::Compare(
        "patching alone, patched already", "OutputDebugStringA",
        [&] { _InitResTranslation(module); },
        [&] { OutputDebugStringA("-----wld init: C:\\windows\\system32\\comdlg32.dll\n"); });
}

}  // namespace

// With a word on the command line only the calls that open no window.
int main(int count, char**) {
    FillDictionary();
    _InitResTranslation(g_self);
    CompareStrings();
    ComparePlugin("patched plug-in", 0);
    ComparePlugin("resource module", DONT_RESOLVE_DLL_REFERENCES);
    CompareExcluded();
    CompareResources();
    CompareMenus();
    CompareFurtherFinds();
    CompareFurtherMenus();
    CompareObserver();
    if (count == 1) {
        CompareDialogs();
        CompareModalCalls();
        ComparePatching();
    }
    _DeInitResTranslation(g_self);
    return 0;
}
