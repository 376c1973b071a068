// The dictionary: what a source text is in the target language, which font that language wants in
// dialogs, and how dialogs grow with their translations.
//
// All texts are bytes in the process's narrow code page; wide callers convert before and after. A
// text can have a translation for one place only: its entry then begins with the place's context
// key (MakeResourceKey), followed directly by the text.
//
// Texts are told apart by case, blanks and every other byte; names of modules in context keys too,
// but not in the geometry of dialogs.
//
// Threading: no lock. Lookups only read, so any number of threads may translate while nobody adds.
#ifndef QXCORE_DICTIONARY_H
#define QXCORE_DICTIONARY_H

#include <qxcore/export.h>
#include <qxcore/map.h>
#include <qxcore/platform.h>
#include <qxcore/string.h>

#include <type_traits>

struct IXStorage;

// One translation. Both texts are unescaped by the constructor.
struct CContext {
    // A null source is empty; a null target is a copy of the source.
    QXCORE_API CContext(const char* source, const char* target);

    CXString source;
    CXString target;  // empty: there is no translation
    int count;        // 1; stored and restored, and read by nobody else
};

// A lookup reads a translation's text.
template <>
struct QXReadBehind<CContext*> {
    static const void* Of(const CContext* context) {
        return context ? static_cast<const char*>(context->target) : nullptr;
    }
};

// What is added to the four edges of a control, in dialog units.
struct CIRect {
    int left, top, right, bottom;
};

// The geometry of one dialog.
struct QXDlgPos {
    // By the control's place in the template, counted from 0.
    CTMap<unsigned int, CIRect> m_Rects;
    // Added to the dialog's width and height.
    SIZE m_Size = {};
};

class CWld {
public:
    // An empty dictionary with the system's dialog font.
    QXCORE_API CWld();
    // Empties both maps. The font object stays, since windows may use it.
    QXCORE_API ~CWld();
    CWld(const CWld&) = delete;
    CWld& operator=(const CWld&) = delete;

    // Reads the dictionary file `path` and, if there is one, the geometry file beside it with the
    // extension "dlg". 1, or 0 on a file failure; entries read before the failure stay. Does
    // nothing once the dictionary is initialised. One thread of the process at a time: the line
    // buffer is static.
    QXCORE_API int Init(const char* path);
    // The same for every further dictionary. Of several translations of one text the first stands;
    // of several geometries of one dialog the last.
    QXCORE_API int Add(const char* path);

    // Reads what Save wrote, over what is there: a text already known gets the stored translation.
    // Neither the font object nor any geometry is touched. A missing stream raises CXFileException
    // code 6 with the stream's name.
    QXCORE_API void Restore(IXStorage* storage);
    // Writes one stream a translation, "C0" and on, and then "ContextHeader". Texts are written as
    // they are, and Restore unescapes them once more, so a backslash before n, r or t does not
    // survive the round trip.
    QXCORE_API void Save(IXStorage* storage);

    // The translation, owned by the dictionary and valid as long as its entry is. Without one:
    // null, or with bNullIfMissing zero `text` itself. A null or empty text gives null in either
    // case.
    QXCORE_API const char* Translate(const char* text, int bNullIfMissing);
    // Translates in place. At most size - 1 bytes, in whole characters; answers the bytes now in
    // the buffer.
    QXCORE_API unsigned int Translate(char* buffer, unsigned int size);
    // Translates a menu with its submenus, however deep. Of an item's states only grayed and
    // checked survive, so one that is disabled without being grayed is enabled, also when its text
    // stays; an item whose id is 0 keeps its text. An empty dictionary changes nothing. Always 1.
    QXCORE_API int Translate(HMENU menu);
    // The same, where texts for the place `key` go first. Always 1.
    QXCORE_API int TranslateMenuInContext(HMENU menu, const char* key);
    // Translates the window's text. All its children get the dialog font, and those of the classes
    // "STATIC" and "BUTTON" the texts of g_Wld. Always 1.
    QXCORE_API int Translate(HWND window);

    // Answers the template itself with *size 0, or a new block from malloc with *size its length,
    // which the caller releases with free. Null when memory ran out. Translated are the caption and
    // the titles of buttons and statics, unless they have characters above 0xFF. The length of the
    // template is not known here: it must be sound.
    QXCORE_API unsigned char* TranslateDlg(unsigned char* dialog, int* size, const char* key);
    // The same after applying the geometry kept under `hash` (HashResourceKey).
    QXCORE_API unsigned char* TranslateDlgPosition(unsigned char* dialog, int hash, int* size,
                                                   const char* key);
    // Makes `name` the font of all translated dialogs; a null or empty name leaves dialogs their
    // own fonts.
    QXCORE_API void SetDialogFont(int script, int size, const char* name);

    int m_bDialogFont;       // non-zero: translated dialogs get the font below
    char m_szFontName[256];  // face name
    int m_nFontScript;       // GDI character set
    int m_nFontSize;         // points
    int m_nContexts;         // as last read by Restore or written by Save
    HFONT m_hFont;
    int m_bInit;  // non-zero after Init or Add
    // Texts are told apart by their 32-bit hash alone: of two texts with one hash the later
    // insertion stands for both.
    CTMap<const char*, CContext*> m_Contexts;
    CTMap<int, QXDlgPos*> m_DlgPos;  // by HashResourceKey
};

// The process's dictionary, which the interception layer uses. It stands before any code of a host
// runs.
extern QXCORE_API CWld& g_Wld;

// The kinds of place in a context key.
enum : int { QXKEY_DIALOG = 1, QXKEY_MENU = 2, QXKEY_STRINGS = 3 };

// Looks up `text` for the place `key`, then for any place, in g_Wld. Untranslated text comes back
// itself; an empty text gives null. A null key is no place.
QXCORE_API const char* TranslateInContext(const char* text, const char* key);
// The same in place. Answers the translation's length, also when the buffer holds less of it: a cut
// copy fills all `size` bytes and is not terminated. With bMeasureOnly the buffer stays.
QXCORE_API unsigned int TranslateBufferInContext(char* buffer, unsigned int size, const char* key,
                                                 int bMeasureOnly);

// Writes the context key of a resource: module file name, "#", kind, "#", id, and the bytes 0xFD
// 0xFD. An id below 0x10000 is a number, any other the address of a narrow name (of a wide name the
// key gets the first letter only); for a string table it is the block, id / 16 + 1. Nothing is
// written when the module has no path. The buffer must hold 280 bytes and the name.
QXCORE_API void MakeResourceKey(HMODULE module, const void* id, char* buffer, int kind);
template <class Id, class = std::enable_if_t<std::is_integral_v<Id>>>
void MakeResourceKey(HMODULE module, Id id, char* buffer, int kind) {
    MakeResourceKey(module, reinterpret_cast<const void*>(static_cast<UINT_PTR>(id)), buffer, kind);
}
// The key of a dialog in m_DlgPos. ASCII letters count as lower case.
QXCORE_API int HashResourceKey(const char* key);

#endif
