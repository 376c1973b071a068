#include "tools/qxagent/windows/dump.h"

#include "tools/qxagent/windows/window_order.h"
#include "tools/qxtranslate/platform/wide_text.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <string>

namespace qx {

namespace {

// A thread that does not answer has texts for nobody.
constexpr UINT kPatience = 2000;

std::wstring TextOf(HWND window) {
    DWORD_PTR length = 0;
    if (!SendMessageTimeoutW(window, WM_GETTEXTLENGTH, 0, 0, SMTO_ABORTIFHUNG, kPatience, &length))
        return {};
    std::wstring text(std::min<size_t>(length, 65535) + 1, L'\0');
    DWORD_PTR got = 0;
    if (!SendMessageTimeoutW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()),
                             SMTO_ABORTIFHUNG, kPatience, &got))
        return {};
    text.resize(std::min<size_t>(got, text.size() - 1));
    // What begins with this names a picture by its number.
    constexpr wchar_t kOrdinal = 0xFFFF;
    return text.starts_with(kOrdinal) ? L"" : text.substr(0, text.find(L'\0'));
}

bool IsDialog(HWND window) {
    wchar_t name[32] = L"";
    GetClassNameW(window, name, 32);
    return !wcscmp(name, L"#32770");
}

class Dump {
public:
    std::string Run() {
        int index = 0;
        for (HWND window : VisibleWindows()) {
            if (HMENU menu = GetMenu(window)) Menu(menu, "");
            if (IsDialog(window)) {
                DialogLines(window);
            } else {
                Window(window, std::to_string(index++));
            }
        }
        return std::move(m_lines);
    }

private:
    void Line(const std::string& begin, const std::wstring& text) {
        m_lines += begin + "\t" + EscapeLine(FromWide(text)) + "\n";
    }

    // A menu may hold itself.
    static constexpr size_t kLongestPath = 64;

    void Menu(HMENU menu, const std::string& above) {
        if (above.size() > kLongestPath) return;
        for (int i = 0; i < GetMenuItemCount(menu); ++i) {
            wchar_t text[1024] = L"";
            GetMenuStringW(menu, static_cast<UINT>(i), text, 1024, MF_BYPOSITION);
            std::string path = above + std::to_string(i);
            if (*text) Line("menu\t" + path, text);
            if (HMENU popup = GetSubMenu(menu, i)) Menu(popup, path + "/");
        }
    }

    void DialogLines(HWND dialog) {
        std::wstring title = TextOf(dialog);
        std::string name = EscapeLine(FromWide(title));
        Line("dialog\t" + name + "\t-1", title);
        int index = 0;
        Controls(dialog, name, index);
    }

    // Pages within a dialog count on.
    void Controls(HWND parent, const std::string& name, int& index) {
        for (HWND control = GetWindow(parent, GW_CHILD); control;
             control = GetWindow(control, GW_HWNDNEXT)) {
            std::wstring text = TextOf(control);
            if (!text.empty()) Line("dialog\t" + name + "\t" + std::to_string(index), text);
            ++index;
            if (IsDialog(control)) Controls(control, name, index);
        }
    }

    void Window(HWND window, const std::string& path) {
        std::wstring text = TextOf(window);
        if (!text.empty()) Line("window\t" + path, text);
        int index = 0;
        for (HWND child = GetWindow(window, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
            Window(child, path + "/" + std::to_string(index++));
    }

    std::string m_lines;
};

}  // namespace

bool DumpInterface(const wchar_t* path) {
    std::string lines = Dump().Run();
    FILE* file = _wfopen(path, L"wb");
    if (!file) return false;
    bool isWritten = fwrite(lines.data(), 1, lines.size(), file) == lines.size();
    return fclose(file) == 0 && isWritten;
}

}  // namespace qx
