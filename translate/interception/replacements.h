// What patched modules call in place of the system's functions. Same contracts, with translated
// results.
#ifndef QXCORE_TRANSLATE_REPLACEMENTS_H
#define QXCORE_TRANSLATE_REPLACEMENTS_H

#include <qxcore/platform.h>

int WINAPI NewLoadStringA(HINSTANCE module, UINT id, char* buffer, int size);
int WINAPI NewLoadStringW(HINSTANCE module, UINT id, wchar_t* buffer, int size);

HMENU WINAPI NewLoadMenuIndirectA(const MENUTEMPLATEA* menuTemplate);
HMENU WINAPI NewLoadMenuA(HINSTANCE module, const char* name);
HMENU WINAPI NewLoadMenuW(HINSTANCE module, const wchar_t* name);

HGLOBAL WINAPI NewLoadResource(HMODULE module, HRSRC resource);
HRSRC WINAPI NewFindResourceA(HMODULE module, const char* name, const char* type);
HRSRC WINAPI NewFindResourceExA(HMODULE module, const char* type, const char* name, WORD language);
HRSRC WINAPI NewFindResourceW(HMODULE module, const wchar_t* name, const wchar_t* type);
HRSRC WINAPI NewFindResourceExW(HMODULE module, const wchar_t* type, const wchar_t* name,
                                WORD language);
void* WINAPI NewLockResource(HGLOBAL loaded);
BOOL WINAPI NewFreeResource(HGLOBAL loaded);
DWORD WINAPI NewSizeofResource(HMODULE module, HRSRC resource);

HWND WINAPI NewCreateDialogParamA(HINSTANCE module, const char* name, HWND parent, DLGPROC proc,
                                  LPARAM param);
HWND WINAPI NewCreateDialogParamW(HINSTANCE module, const wchar_t* name, HWND parent, DLGPROC proc,
                                  LPARAM param);
INT_PTR WINAPI NewDialogBoxParamA(HINSTANCE module, const char* name, HWND parent, DLGPROC proc,
                                  LPARAM param);
INT_PTR WINAPI NewDialogBoxParamW(HINSTANCE module, const wchar_t* name, HWND parent, DLGPROC proc,
                                  LPARAM param);
INT_PTR WINAPI NewDialogBoxIndirectParamA(HINSTANCE module, const DLGTEMPLATE* dialog, HWND parent,
                                          DLGPROC proc, LPARAM param);
INT_PTR WINAPI NewDialogBoxIndirectParamW(HINSTANCE module, const DLGTEMPLATE* dialog, HWND parent,
                                          DLGPROC proc, LPARAM param);
HWND WINAPI NewCreateDialogIndirectParamA(HINSTANCE module, const DLGTEMPLATE* dialog, HWND parent,
                                          DLGPROC proc, LPARAM param);
HWND WINAPI NewCreateDialogIndirectParamW(HINSTANCE module, const DLGTEMPLATE* dialog, HWND parent,
                                          DLGPROC proc, LPARAM param);

int WINAPI NewMessageBoxIndirectA(const MSGBOXPARAMSA* parameters);
int WINAPI NewMessageBoxA(HWND owner, const char* text, const char* caption, UINT type);
int WINAPI NewMessageBoxExA(HWND owner, const char* text, const char* caption, UINT type,
                            WORD language);

#endif
