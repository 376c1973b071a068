// The translated user interface of a host: one call at start-up, one more for each module of the
// host's own.
//
//     Supp_Init("german.wld");                 // reads the dictionary, intercepts the class
//     libraries Supp_InitResTranslation(GetModuleHandleA(nullptr));  // and this program
//
// From then on strings, menus, dialogs and message boxes that those modules load appear in the
// target language.
//
// Threading: nothing here takes a lock. Start and patch on the main thread, before the patched
// modules are busy; resource loading for the user interface happens on one thread.
#ifndef QXCORE_TRANSLATION_H
#define QXCORE_TRANSLATION_H

#include <qxcore/export.h>
#include <qxcore/platform.h>

extern "C" {

// Reads a dictionary into the process-wide one and patches the class libraries that are loaded.
// Null means "app.wld". 0 when the file fails: nothing is patched then. A later call reads nothing,
// but reaches class libraries loaded since.
QXCORE_API int Supp_Init(const char* name);
// Adds a further dictionary, whose texts never replace earlier ones; the first call acts as
// Supp_Init. A later null adds nothing.
QXCORE_API int Supp_AddWld(const char* name);
// Intercepts the calls made from this module. Before unloading the module or the library the host
// undoes it with _DeInitResTranslation: neither is tracked. 0 for null, else 1.
QXCORE_API int Supp_InitResTranslation(HINSTANCE module);

// The master switch of the interception, 1 at the start. Supp_Translate does not look at it.
QXCORE_API void Supp_SetTranslationEnable(int enable);
QXCORE_API int Supp_IsTranslationEnable();

// The dialog font of the target language; borrowed.
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
