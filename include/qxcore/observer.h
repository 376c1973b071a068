// What the interception does with each text, for tools that show translators what a program asks
// for: which texts were found, which are missing, and why others were never looked up.
//
//     void Show(const QXLookup* lookup, void* file) {
//         fprintf(static_cast<FILE*>(file), "%s\t%d\t%s\n", lookup->function, lookup->end,
//                 lookup->source ? lookup->source : "(all of it)");
//     }
//     Supp_SetLookupObserver(Show, stdout);
//
// It is told of the look-ups of intercepted calls only, not of those that a host makes itself with
// Supp_Translate. Each is told once it is made: the dialogs and string tables that a module loads
// as resources are translated at their first load, so later loads tell of nothing. Functions that
// look no text up (the find functions, LockResource, FreeResource and SizeofResource) tell of
// nothing at all.
//
// Without an observer an intercepted call costs what it would cost if there were none.
#ifndef QXCORE_OBSERVER_H
#define QXCORE_OBSERVER_H

#include <qxcore/export.h>
#include <qxcore/platform.h>

// How a look-up ended. Programs store these numbers: new ones are added at the end.
enum QXLookupEnd : int {
    // There is a translation: that of the place, or the one for any place.
    QXLOOKUP_BY_PLACE = 0,
    QXLOOKUP_PLAIN = 1,
    // The dictionary has the text with an empty translation: it stays in the source language.
    QXLOOKUP_EMPTY = 2,
    // The dictionary does not have the text.
    QXLOOKUP_MISS = 3,

    // The other ends mean that the text was not looked up:
    // The switch is off (Supp_SetTranslationEnable).
    QXLOOKUP_OFF = 4,
    // The resource belongs to a module whose resources are never translated.
    QXLOOKUP_EXCLUDED = 5,
    // The text has characters that no entry can stand for: in a dialog those above 0xFF, in a
    // string table those that take more than one byte each in the code page.
    QXLOOKUP_WIDE = 6,
    // The entry of the string table is longer than 1024 characters.
    QXLOOKUP_LONG = 7,
    // The text of a dialog's control of another class than button and static.
    QXLOOKUP_CLASS = 8,
    // It would be shown untranslated in any case: a menu item whose id is 0, and what
    // MessageBoxExA shows.
    QXLOOKUP_KEPT = 9,
    // LoadStringW gave the address of the text instead of a copy (a buffer of size 0).
    QXLOOKUP_POINTER = 10,
    // LoadResource of a menu answered null.
    QXLOOKUP_MENU = 11,
    // Memory ran out before it could be translated.
    QXLOOKUP_NO_MEMORY = 12
};

// One look-up. All texts are in the code page of the process and good during the call only.
struct QXLookup {
    // Which of the 24 intercepted functions: "LoadStringA" and so on.
    const char* function;
    // The module that the call names, whose resource it is; null for the program, and for a call
    // that names none.
    HMODULE module;
    // The context key of the place (MakeResourceKey), with the two bytes at its end; null where a
    // text has no place.
    const char* place;
    // The text that was asked for. Null where a menu, a dialog or a string table was passed on as a
    // whole.
    const char* source;
    // The translation; null unless `end` is QXLOOKUP_BY_PLACE or QXLOOKUP_PLAIN.
    const char* target;
    QXLookupEnd end;
};

// Called on the thread of the intercepted call, in its midst. It may call any function, also
// intercepted ones. REQUIRES: it throws nothing.
using QXLookupObserver = void (*)(const QXLookup* lookup, void* context);

// Sets the one observer of the process, or none for null. `context` is handed to each call. Set it
// while no other thread makes intercepted calls, and take it back before the observer's module
// goes.
extern "C" QXCORE_API void Supp_SetLookupObserver(QXLookupObserver observer, void* context);

#endif
