#include "window.h"

#include <cstdio>

#include "dialogs.h"
#include "resource.h"
#include "server_document.h"

namespace {

constexpr const char* g_className = "TaskListWindow";

// The modeless dialog that stands beside the window, or null.
HWND g_taskDialog = nullptr;

// The document that came from a server; without an address there is none.
ServerDocument g_open;

HINSTANCE InstanceOf(HWND window) {
    return reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(window, GWLP_HINSTANCE));
}

void DrawRow(HDC dc, int y, std::string const& task, std::string const& due,
             std::string const& state) {
    TextOutA(dc, 12, y, task.c_str(), static_cast<int>(task.size()));
    TextOutA(dc, 232, y, due.c_str(), static_cast<int>(due.size()));
    TextOutA(dc, 342, y, state.c_str(), static_cast<int>(state.size()));
}

void DrawStatus(HDC dc, RECT client, HINSTANCE instance) {
    RECT bar = {client.left, client.bottom - 24, client.right, client.bottom};
    FillRect(dc, &bar, GetSysColorBrush(COLOR_BTNFACE));
    DrawEdge(dc, &bar, BDR_SUNKENOUTER, BF_RECT);
    char count[256];
    std::snprintf(count, sizeof count, LoadText(instance, IDS_COUNT).c_str(), 3, 2);
    std::string text = LoadText(instance, IDS_READY) + "   " + count;
    TextOutA(dc, bar.left + 8, bar.top + 5, text.c_str(), static_cast<int>(text.size()));
}

// As many notes of the open document as there is room for.
void DrawNotes(HDC dc, RECT client, std::string const& state) {
    int y = 40;
    for (std::string const& line : g_open.document.Lines()) {
        if (y > client.bottom - 46) break;
        DrawRow(dc, y, line, "", state);
        y += 22;
    }
}

void Draw(HWND window) {
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(window, &paint);
    RECT client;
    GetClientRect(window, &client);
    HGDIOBJ oldFont = SelectObject(dc, GetStockObject(DEFAULT_GUI_FONT));
    SetBkMode(dc, TRANSPARENT);

    HINSTANCE instance = InstanceOf(window);
    auto text = [instance](unsigned id) { return LoadText(instance, id); };
    DrawRow(dc, 10, text(IDS_COLUMN_TASK), text(IDS_COLUMN_DUE), text(IDS_COLUMN_STATE));
    RECT line = {12, 30, client.right - 12, 32};
    DrawEdge(dc, &line, EDGE_ETCHED, BF_TOP);
    if (g_open.address.empty()) {
        DrawRow(dc, 40, text(IDS_TASK_1), text(IDS_DUE_1), text(IDS_STATE_OPEN));
        DrawRow(dc, 62, text(IDS_TASK_2), text(IDS_DUE_2), text(IDS_STATE_OPEN));
        DrawRow(dc, 84, text(IDS_TASK_3), text(IDS_DUE_3), text(IDS_STATE_CLOSED));
    } else {
        DrawNotes(dc, client, text(IDS_STATE_OPEN));
    }
    DrawStatus(dc, client, instance);

    SelectObject(dc, oldFont);
    EndPaint(window, &paint);
}

void OpenTaskDialog(HWND window) {
    if (!g_taskDialog) g_taskDialog = CreateTaskDialog(InstanceOf(window), window);
    ShowWindow(g_taskDialog, SW_SHOW);
}

void ShowOpenDocument(HWND window) {
    std::string title = LoadText(InstanceOf(window), IDS_TITLE);
    SetWindowTextA(window, (g_open.document.title + " - " + title).c_str());
    EnableMenuItem(GetMenu(window), ID_FILE_SAVE, MF_BYCOMMAND | MF_ENABLED);
    InvalidateRect(window, nullptr, TRUE);
}

// A new task becomes a note of the open document.
void TakeTask(HWND window) {
    if (g_open.address.empty()) return;
    std::string name;
    for (int n = 1; name.empty() || g_open.document.notes.count(name); ++n)
        name = "note " + std::to_string(n);
    g_open.document.AddNote(name.c_str(), TaskTitle(g_taskDialog).c_str());
    InvalidateRect(window, nullptr, TRUE);
}

void OnCommand(HWND window, int command) {
    switch (command) {
        case ID_FILE_OPEN:
        case ID_FILE_RECENT_1:
        case ID_FILE_RECENT_2:
            AskListToOpen(InstanceOf(window), window);
            break;
        case ID_FILE_SERVER:
            if (OpenFromServer(InstanceOf(window), window, g_open)) ShowOpenDocument(window);
            break;
        case ID_FILE_SAVE:
            SaveToServer(InstanceOf(window), window, g_open);
            break;
        case ID_TASK_NOTED:
            TakeTask(window);
            break;
        case ID_FILE_RECENT_CLEAR:
            TellListIsEmpty(window);
            break;
        case ID_FILE_EXIT:
            DestroyWindow(window);
            break;
        case ID_TASK_NEW:
        case ID_TASK_PROPERTIES:
            OpenTaskDialog(window);
            break;
        case ID_TASK_DELETE:
            AskToDelete(InstanceOf(window), window);
            break;
        case ID_HELP_MANUAL:
            TellManualIsMissing(window);
            break;
        case ID_HELP_ABOUT:
            ShowAbout(InstanceOf(window), window);
            break;
        default:
            break;
    }
}

LRESULT CALLBACK WindowProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_COMMAND:
            OnCommand(window, LOWORD(wparam));
            return 0;
        case WM_PAINT:
            Draw(window);
            return 0;
        case WM_DESTROY:
            PostQuitMessage(0);
            return 0;
        default:
            return DefWindowProcA(window, message, wparam, lparam);
    }
}

}  // namespace

std::string LoadText(HINSTANCE instance, unsigned id) {
    // The length that LoadStringA answers is not used: a translation may be longer than the buffer.
    char buffer[512] = "";
    LoadStringA(instance, id, buffer, sizeof buffer - 1);
    return buffer;
}

HWND CreateMainWindow(HINSTANCE instance) {
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = WindowProc;
    windowClass.hInstance = instance;
    windowClass.hIcon = LoadIconA(nullptr, IDI_APPLICATION);
    windowClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
    windowClass.hbrBackground = GetSysColorBrush(COLOR_WINDOW);
    windowClass.lpszClassName = g_className;
    RegisterClassA(&windowClass);
    return CreateWindowExA(0, g_className, LoadText(instance, IDS_TITLE).c_str(),
                           WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT, 480, 260, nullptr,
                           LoadMenuA(instance, MAKEINTRESOURCEA(IDR_MAIN)), instance, nullptr);
}

int RunWindow(HINSTANCE instance) {
    HWND window = CreateMainWindow(instance);
    if (!window) return 1;
    ShowWindow(window, SW_SHOWNORMAL);

    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0) > 0) {
        if (IsDialogMessageA(g_taskDialog, &message)) continue;
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    return 0;
}
