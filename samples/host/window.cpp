#include "window.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "dialogs.h"
#include "resource.h"
#include "server_document.h"
#include "settings.h"

namespace {

constexpr const char* g_className = "TaskListWindow";

// The modeless dialog that stands beside the window, or null.
HWND g_taskDialog = nullptr;

// The document that came from a server; without an address there is none.
ServerDocument g_open;

// What the window shows and remembers.
Settings g_settings;

struct Task {
    unsigned title, due, state;
    int dueRank, priorityRank;
};
constexpr Task g_tasks[] = {
    {IDS_TASK_1, IDS_DUE_1, IDS_STATE_OPEN, 1, 2},
    {IDS_TASK_2, IDS_DUE_2, IDS_STATE_OPEN, 2, 1},
    {IDS_TASK_3, IDS_DUE_3, IDS_STATE_CLOSED, 3, 3},
};

// The choices of the View menu, as the settings call them.
struct Choice {
    int command;
    const char* name;
};
constexpr Choice g_sorts[] = {
    {ID_VIEW_SORT_TITLE, "title"}, {ID_VIEW_SORT_DUE, "due"}, {ID_VIEW_SORT_PRIORITY, "priority"}};

HINSTANCE InstanceOf(HWND window) {
    return reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(window, GWLP_HINSTANCE));
}

void DrawRow(HDC dc, int y, std::string const& task, std::string const& due,
             std::string const& state) {
    auto const& columns = g_settings.columns;
    TextOutA(dc, columns[0], y, task.c_str(), static_cast<int>(task.size()));
    TextOutA(dc, columns[1], y, due.c_str(), static_cast<int>(due.size()));
    TextOutA(dc, columns[2], y, state.c_str(), static_cast<int>(state.size()));
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

bool IsShown(Task const& task) {
    bool closed = task.state == IDS_STATE_CLOSED;
    return g_settings.filter != (closed ? "open" : "closed") && g_settings.filter != "none";
}

std::vector<Task> ShownTasks(HINSTANCE instance) {
    std::vector<Task> tasks;
    std::copy_if(std::begin(g_tasks), std::end(g_tasks), std::back_inserter(tasks), IsShown);
    std::sort(tasks.begin(), tasks.end(), [instance](Task const& a, Task const& b) {
        if (g_settings.sort == "title")
            return LoadText(instance, a.title) < LoadText(instance, b.title);
        return g_settings.sort == "priority" ? a.priorityRank < b.priorityRank
                                             : a.dueRank < b.dueRank;
    });
    return tasks;
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
        int y = 40;
        for (Task const& task : ShownTasks(instance)) {
            DrawRow(dc, y, text(task.title), text(task.due), text(task.state));
            y += 22;
        }
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

// Brings the View menu and the list in line with the settings.
void ShowChoices(HWND window) {
    HMENU menu = GetMenu(window);
    auto check = [menu](int command, bool on) {
        CheckMenuItem(menu, command, MF_BYCOMMAND | (on ? MF_CHECKED : MF_UNCHECKED));
    };
    for (Choice const& sort : g_sorts) check(sort.command, g_settings.sort == sort.name);
    check(ID_VIEW_SHOW_OPEN, g_settings.filter == "all" || g_settings.filter == "open");
    check(ID_VIEW_SHOW_CLOSED, g_settings.filter == "all" || g_settings.filter == "closed");
    InvalidateRect(window, nullptr, TRUE);
}

void ChooseSort(HWND window, int command) {
    for (Choice const& sort : g_sorts) {
        if (sort.command == command) g_settings.sort = sort.name;
    }
    ShowChoices(window);
}

void ToggleShown(HWND window, int command) {
    auto isOn = [window](int id) {
        return (GetMenuState(GetMenu(window), id, MF_BYCOMMAND) & MF_CHECKED) != 0;
    };
    bool open = isOn(ID_VIEW_SHOW_OPEN) != (command == ID_VIEW_SHOW_OPEN);
    bool closed = isOn(ID_VIEW_SHOW_CLOSED) != (command == ID_VIEW_SHOW_CLOSED);
    g_settings.filter = open ? (closed ? "all" : "open") : (closed ? "closed" : "none");
    ShowChoices(window);
}

// Where the window stands when it is neither the largest nor the smallest.
void RememberPlace(HWND window) {
    WINDOWPLACEMENT placement = {};
    placement.length = sizeof placement;
    if (GetWindowPlacement(window, &placement)) g_settings.place = placement.rcNormalPosition;
}

void ReturnToPlace(HWND window) {
    if (IsRectEmpty(&g_settings.place)) return;
    WINDOWPLACEMENT placement = {};
    placement.length = sizeof placement;
    placement.showCmd = SW_HIDE;
    placement.rcNormalPosition = g_settings.place;
    SetWindowPlacement(window, &placement);
}

void OnCommand(HWND window, int command) {
    switch (command) {
        case ID_FILE_OPEN:
        case ID_FILE_RECENT_1:
        case ID_FILE_RECENT_2:
            AskListToOpen(InstanceOf(window), window);
            break;
        case ID_FILE_SERVER:
            if (OpenFromServer(InstanceOf(window), window, g_open)) {
                g_settings.Remember(g_open.address);
                ShowOpenDocument(window);
            }
            break;
        case ID_FILE_SAVE:
            SaveToServer(InstanceOf(window), window, g_open);
            break;
        case ID_TASK_NOTED:
            TakeTask(window);
            break;
        case ID_FILE_RECENT_CLEAR:
            if (g_settings.recent.empty()) TellListIsEmpty(window);
            g_settings.recent.clear();
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
        case ID_VIEW_SORT_TITLE:
        case ID_VIEW_SORT_DUE:
        case ID_VIEW_SORT_PRIORITY:
            ChooseSort(window, command);
            break;
        case ID_VIEW_SHOW_OPEN:
        case ID_VIEW_SHOW_CLOSED:
            ToggleShown(window, command);
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
            RememberPlace(window);
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

int RunWindow(HINSTANCE instance, Settings& settings) {
    g_settings = settings;
    HWND window = CreateMainWindow(instance);
    if (!window) return 1;
    ReturnToPlace(window);
    ShowChoices(window);
    ShowWindow(window, SW_SHOWNORMAL);

    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0) > 0) {
        if (IsDialogMessageA(g_taskDialog, &message)) continue;
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    settings = g_settings;
    g_settings.note = nullptr;  // objects go before the library does
    return 0;
}
