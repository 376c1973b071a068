// The translated user interface of a host: one call at start-up, one more for each module of the
// host's own.
//
//     if (Supp_Init("german.wld")) {  // reads the dictionary, intercepts the class libraries
//         Supp_InitResTranslation(GetModuleHandleA(nullptr));  // and this program
//     }
//
// From then on strings, menus, dialogs and message boxes that those modules load appear in the
// target language. What counts is whose imports a call goes through: a patched module's calls are
// intercepted whichever module's resources it asks for, and no other module's calls are seen, nor
// calls through an address from GetProcAddress.
//
// In a patched module some calls answer otherwise than the system does:
//
//   LoadStringA     answers the whole length of the translation, which may be more than the buffer
//                   holds; the buffer is then full and not terminated
//   LoadStringW     counts the terminator; 0 means that the text in the buffer is cut; characters
//                   that the code page lacks are lost; a buffer of size 0 gets the source text
//   LoadMenu...     enables items that are disabled without being grayed
//   FindResource... answers a handle of the library's own for dialogs, menus and string tables: it
//                   serves LoadResource and SizeofResource in patched modules only. In a module
//                   that is excluded, or with the switch off, the two Ex functions take type and
//                   name in exchanged places
//   LoadResource    answers null for a menu that a patched module found
//   SizeofResource  answers 0 for such a handle before LoadResource, then the size of what is
//                   loaded
//   LockResource    answers its argument
//   FreeResource    faults on null
//   CreateDialogParam, DialogBoxParam   answer 0 for a dialog that is missing
//   CreateDialogIndirectParam           keeps one translated template for each dialog made
//   MessageBoxA     shows "Error", or its translation, for a null caption
//   MessageBoxExA   stays in the source language
//   MessageBoxIndirectA   takes a text pointer whose low half is the number of a string for that
//                   string, and leaves the caller's block pointing at the translations
//
// The last error is always that of the system's function.
//
// Threading: nothing here takes a lock. Start and patch on the main thread, before the patched
// modules are busy. LoadStringA and LoadStringW, menus, message boxes and dialogs from a caller's
// own template may then run on any thread while nobody adds to the dictionary; finding and loading
// dialogs, menus and string tables as resources happens on one thread.
#ifndef QXCORE_TRANSLATION_H
#define QXCORE_TRANSLATION_H

#include <qxcore/export.h>
#include <qxcore/platform.h>

extern "C" {

// Reads a dictionary into the process-wide one and patches the class libraries that are loaded.
// Null means "app.wld" in the current directory. 1: the dictionary is there, whatever could be
// patched. 0: the file cannot be read to its end or closed; nothing is patched then, and the host
// goes on in the source language. A dictionary whose texts are all unusable still gives 1. A later
// call reads nothing, but reaches class libraries loaded since.
QXCORE_API int Supp_Init(const char* name);
// Adds a further dictionary, whose texts never replace earlier ones; the first call acts as
// Supp_Init. A later null adds nothing.
QXCORE_API int Supp_AddWld(const char* name);
// Intercepts the calls made from this module. It works with or without a dictionary. A plug-in that
// comes late is loaded, then patched; before it or the library is unloaded the host undoes it with
// _DeInitResTranslation, since neither is tracked. 0 for null, else 1.
QXCORE_API int Supp_InitResTranslation(HINSTANCE module);

// The master switch of the interception, 1 at the start. Supp_Translate does not look at it.
QXCORE_API void Supp_SetTranslationEnable(int enable);
QXCORE_API int Supp_IsTranslationEnable();

// The dialog font of the target language; borrowed. The system's before a dictionary names one.
QXCORE_API HFONT Supp_GetFont();
// Always 0.
QXCORE_API int Supp_GetFontHeigth();

// Do nothing: a host that needs its dialogs placed places them itself.
QXCORE_API void Supp_SetDialogFont(HWND dialog);
QXCORE_API void Supp_SetDialogPos(HWND dialog, HWND parent, unsigned int flags);

// Patches the 24 intercepted functions in the imports of this module, or restores them. Patching
// twice changes nothing more. 0 for null, else 1, also for a module in which nothing can be
// patched.
QXCORE_API int _InitResTranslation(HMODULE module);
QXCORE_API int _DeInitResTranslation(HMODULE module);
// LoadStringA of the system, whatever is patched.
QXCORE_API int _LoadStringNotTrans(HINSTANCE module, unsigned int id, char* buffer, int size);

// Replaces one function in the imports of the 64-bit module at this address, in every descriptor.
// The answer is the function's real address, also when the module does not import it; 0 when the
// library or function is unknown, the image is none or a slot cannot be written; for a null module
// the address of a function that returns 0.
QXCORE_API void* HookProc_Install(void* module, const char* dll, const char* function,
                                  void* replacement);
// Inert: always null, and the imports stay as they are. _DeInitResTranslation is the way back.
QXCORE_API void* HookProc_UnInstall(void* module, const char* dll, const char* function);

// Always null, and nothing.
QXCORE_API void* __GetHandlesList();
QXCORE_API void __SetHandlesList(void* list);

// Translates a dialog template, of either form, through the process-wide dictionary. The answer is
// the input with *size 0, or a block of `size` bytes that the caller releases with `free`; null
// when memory has run out. The length of the template is not known here: it must be sound.
QXCORE_API unsigned char* TranslateDlgInternal(unsigned char* dialogTemplate, int* size);
// The same, after the geometry that the dictionary holds for this hash of a dialog's context key is
// applied. An adjusted dialog is always a new block.
QXCORE_API unsigned char* TranslateDlgInternalPosition(unsigned char* dialogTemplate, int hash,
                                                       int* size);
// Always null.
QXCORE_API unsigned char* PatchDlgTemplateInternal(unsigned char* dialogTemplate);
// A message box that is never translated: `parameters` is a MSGBOXPARAMSW if `wide` is non-zero,
// else a MSGBOXPARAMSA.
QXCORE_API int MessageBoxInternalA(const void* parameters, int wide);

}  // extern "C"

// The translation of a text, or the text pointer itself; null for a null or empty text. The answer
// is owned by the dictionary.
QXCORE_API const char* Supp_Translate(const char* text);
// Translates in place, cut to `size` bytes with the terminator at a whole character. The answer is
// the length in bytes.
QXCORE_API unsigned int Supp_Translate(char* buffer, unsigned int size);
// Translates all texts of a menu and its submenus. Always 1.
QXCORE_API int Supp_Translate(HMENU menu);
// Translates the window's text and those of its static and button children, and sets the dialog
// font on all children. Always 1.
QXCORE_API int Supp_Translate(HWND window);

#endif
