#include "dump.h"

#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <string>

#include "dialogs.h"
#include "modal_reader.h"
#include "progress_dialog.h"
#include "resource.h"
#include "window.h"

namespace {

// The dialog of the system's comdlg32 that GetOpenFileNameA shows.
constexpr const char* g_openDialog = "1552";

std::string ToUtf8(std::wstring const& wide) {
    std::string utf8(wide.size() * 3, '\0');
    int length = WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()),
                                     utf8.data(), static_cast<int>(utf8.size()), nullptr, nullptr);
    utf8.resize(static_cast<size_t>(length));
    return utf8;
}

std::wstring ToWide(std::string const& narrow) {
    std::wstring wide(narrow.size(), L'\0');
    int length = MultiByteToWideChar(CP_ACP, 0, narrow.data(), static_cast<int>(narrow.size()),
                                     wide.data(), static_cast<int>(wide.size()));
    wide.resize(static_cast<size_t>(length));
    return wide;
}

std::string Escape(std::string const& text) {
    std::string escaped;
    for (char c : text) {
        switch (c) {
            case '\n':
                escaped += "\\n";
                break;
            case '\t':
                escaped += "\\t";
                break;
            case '\\':
                escaped += "\\\\";
                break;
            default:
                escaped += c;
        }
    }
    return escaped;
}

void Print(const char* kind, std::string const& place, std::wstring const& text) {
    std::printf("%s\t%s\t%s\n", kind, place.c_str(), Escape(ToUtf8(text)).c_str());
}

std::wstring WindowText(HWND window) {
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
    text.resize(
        static_cast<size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return text;
}

bool HasClass(HWND window, const char* name) {
    char className[64] = "";
    GetClassNameA(window, className, sizeof className);
    return lstrcmpiA(className, name) == 0;
}

std::wstring MenuText(HMENU menu, int position) {
    auto at = static_cast<UINT>(position);
    std::wstring text(static_cast<size_t>(GetMenuStringW(menu, at, nullptr, 0, MF_BYPOSITION)) + 1,
                      L'\0');
    int length =
        GetMenuStringW(menu, at, text.data(), static_cast<int>(text.size()), MF_BYPOSITION);
    text.resize(static_cast<size_t>(length));
    return text;
}

void DumpMenu(HMENU menu, std::string const& above) {
    for (int position = 0; position < GetMenuItemCount(menu); ++position) {
        std::string path = above + std::to_string(position);
        std::wstring text = MenuText(menu, position);
        if (!text.empty()) Print("menu", path, text);
        if (HMENU popup = GetSubMenu(menu, position)) DumpMenu(popup, path + "/");
    }
}

void DumpListItems(HWND list, std::string const& place) {
    auto count = SendMessageW(list, LB_GETCOUNT, 0, 0);
    for (LRESULT i = 0; i < count; ++i) {
        auto item = static_cast<WPARAM>(i);
        std::wstring text(static_cast<size_t>(SendMessageW(list, LB_GETTEXTLEN, item, 0)) + 1,
                          L'\0');
        auto length = SendMessageW(list, LB_GETTEXT, item, reinterpret_cast<LPARAM>(text.data()));
        text.resize(static_cast<size_t>(length));
        Print("dialog", place, text);
    }
}

void DumpControl(HWND control, std::string const& place) {
    if (HasClass(control, "ListBox")) return DumpListItems(control, place);
    if (!HasClass(control, "Static") && !HasClass(control, "Button") && !HasClass(control, "Edit"))
        return;
    std::wstring text = WindowText(control);
    if (!text.empty()) Print("dialog", place, text);
}

void DumpDialog(HWND dialog, std::string const& name) {
    Print("dialog", name + "\t-1", WindowText(dialog));
    int index = 0;
    for (HWND control = GetWindow(dialog, GW_CHILD); control;
         control = GetWindow(control, GW_HWNDNEXT)) {
        DumpControl(control, name + "\t" + std::to_string(index++));
    }
}

void DumpMessage(HWND box) {
    for (HWND control = GetWindow(box, GW_CHILD); control;
         control = GetWindow(control, GW_HWNDNEXT)) {
        if (!HasClass(control, "Static")) continue;
        std::wstring text = WindowText(control);
        if (!text.empty()) Print("message", Escape(ToUtf8(WindowText(box))), text);
    }
}

void DumpDialogs(HINSTANCE instance, HWND window) {
    HWND task = CreateTaskDialog(instance, window);
    DumpDialog(task, std::to_string(IDD_TASK));
    DestroyWindow(task);
    {
        ModalReader reader([](HWND dialog) { DumpDialog(dialog, "About"); });
        ShowAbout(instance, window);
    }
    {
        ModalReader reader([](HWND dialog) { DumpDialog(dialog, std::to_string(IDD_SERVER)); });
        std::string address;
        AskForAddress(instance, window, address);
    }
    {
        ModalReader reader([](HWND dialog) { DumpDialog(dialog, std::to_string(IDD_PROGRESS)); });
        RunWithProgress(instance, window, [](WorkProgress&) {});
    }
    ModalReader reader([](HWND dialog) { DumpDialog(dialog, g_openDialog); });
    AskListToOpen(instance, window);
}

void DumpStrings(HINSTANCE instance) {
    for (unsigned id = IDS_FIRST; id <= IDS_LAST; ++id) {
        std::string text = LoadText(instance, id);
        if (!text.empty()) Print("string", std::to_string(id), ToWide(text));
    }
}

void DumpMessages(HINSTANCE instance, HWND window) {
    ModalReader reader(DumpMessage);
    AskToDelete(instance, window);
    TellListIsEmpty(window);
    TellManualIsMissing(window);
}

}  // namespace

int DumpInterface(HINSTANCE instance) {
    HWND window = CreateMainWindow(instance);
    if (!window) return 1;
    _setmode(_fileno(stdout), _O_BINARY);
    DumpMenu(GetMenu(window), "");
    DumpDialogs(instance, window);
    DumpStrings(instance);
    DumpMessages(instance, window);
    DestroyWindow(window);
    return std::fflush(stdout) == 0 ? 0 : 1;
}
