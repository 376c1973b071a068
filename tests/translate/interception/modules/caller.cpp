// A module that calls each intercepted function through its own import table.
#include <windows.h>

#define FORWARD(result, name, parameters, arguments)                       \
    extern "C" __declspec(dllexport) result WINAPI Call##name parameters { \
        return name arguments;                                             \
    }

FORWARD(int, LoadStringA, (HINSTANCE m, UINT id, char* b, int n), (m, id, b, n))
FORWARD(int, LoadStringW, (HINSTANCE m, UINT id, wchar_t* b, int n), (m, id, b, n))
FORWARD(HMENU, LoadMenuIndirectA, (const MENUTEMPLATEA* t), (t))
FORWARD(HMENU, LoadMenuA, (HINSTANCE m, const char* name), (m, name))
FORWARD(HMENU, LoadMenuW, (HINSTANCE m, const wchar_t* name), (m, name))
FORWARD(HGLOBAL, LoadResource, (HMODULE m, HRSRC r), (m, r))
FORWARD(HRSRC, FindResourceA, (HMODULE m, const char* name, const char* type), (m, name, type))
FORWARD(HRSRC, FindResourceExA, (HMODULE m, const char* type, const char* name, WORD l),
        (m, type, name, l))
FORWARD(HRSRC, FindResourceW, (HMODULE m, const wchar_t* name, const wchar_t* type),
        (m, name, type))
FORWARD(HRSRC, FindResourceExW, (HMODULE m, const wchar_t* type, const wchar_t* name, WORD l),
        (m, type, name, l))
FORWARD(void*, LockResource, (HGLOBAL g), (g))
FORWARD(BOOL, FreeResource, (HGLOBAL g), (g))
FORWARD(DWORD, SizeofResource, (HMODULE m, HRSRC r), (m, r))
FORWARD(HWND, CreateDialogParamA, (HINSTANCE m, const char* name, HWND w, DLGPROC f, LPARAM p),
        (m, name, w, f, p))
FORWARD(HWND, CreateDialogParamW, (HINSTANCE m, const wchar_t* name, HWND w, DLGPROC f, LPARAM p),
        (m, name, w, f, p))
FORWARD(INT_PTR, DialogBoxParamA, (HINSTANCE m, const char* name, HWND w, DLGPROC f, LPARAM p),
        (m, name, w, f, p))
FORWARD(INT_PTR, DialogBoxParamW, (HINSTANCE m, const wchar_t* name, HWND w, DLGPROC f, LPARAM p),
        (m, name, w, f, p))
FORWARD(int, MessageBoxIndirectA, (const MSGBOXPARAMSA* p), (p))
FORWARD(int, MessageBoxA, (HWND w, const char* text, const char* caption, UINT type),
        (w, text, caption, type))
FORWARD(int, MessageBoxExA, (HWND w, const char* text, const char* caption, UINT type, WORD l),
        (w, text, caption, type, l))
FORWARD(INT_PTR, DialogBoxIndirectParamA,
        (HINSTANCE m, const DLGTEMPLATE* t, HWND w, DLGPROC f, LPARAM p), (m, t, w, f, p))
FORWARD(INT_PTR, DialogBoxIndirectParamW,
        (HINSTANCE m, const DLGTEMPLATE* t, HWND w, DLGPROC f, LPARAM p), (m, t, w, f, p))
FORWARD(HWND, CreateDialogIndirectParamA,
        (HINSTANCE m, const DLGTEMPLATE* t, HWND w, DLGPROC f, LPARAM p), (m, t, w, f, p))
FORWARD(HWND, CreateDialogIndirectParamW,
        (HINSTANCE m, const DLGTEMPLATE* t, HWND w, DLGPROC f, LPARAM p), (m, t, w, f, p))

// The wide message boxes are not intercepted, nor is the wide indirect menu.
FORWARD(int, MessageBoxW, (HWND w, const wchar_t* text, const wchar_t* caption, UINT type),
        (w, text, caption, type))
FORWARD(HMENU, LoadMenuIndirectW, (const MENUTEMPLATEW* t), (t))
