#include "translate/interception/interception.h"
#include "translate/interception/module_lists.h"
#include "translate/interception/resource_records.h"

#include <qxcore/dictionary.h>
#include <qxcore/exception.h>

#include <cstdlib>

namespace qx {

namespace {

struct DialogArguments {
    HINSTANCE module;
    HWND parent;
    DLGPROC proc;
    LPARAM param;
};

// A dialog resource goes through the find and load calls above; 0 when there is none.
template <class Find, class Name, class Indirect>
auto RunResource(Find* find, const Name* name, Indirect* indirect, const DialogArguments& a) {
    using Result = decltype(indirect(a.module, nullptr, a.parent, a.proc, a.param));
    auto type = reinterpret_cast<const Name*>(static_cast<uintptr_t>(kDialogType));
    HRSRC found = find(a.module, name, type);
    HGLOBAL block = found ? NewLoadResource(a.module, found) : nullptr;
    if (!block) return Result{};
    Result result =
        indirect(a.module, static_cast<const DLGTEMPLATE*>(block), a.parent, a.proc, a.param);
    KeptLastError kept;
    NewFreeResource(block);
    return result;
}

// A caller's own template in the target language, or as it is when memory has run out.
class TranslatedTemplate {
public:
    explicit TranslatedTemplate(const DLGTEMPLATE* dialog)
        : translated(const_cast<DLGTEMPLATE*>(dialog)) {
        if (!dialog) return;
        KeptLastError kept;
        auto source = reinterpret_cast<unsigned char*>(translated);
        try {
            unsigned char* block = g_Wld.TranslateDlg(source, &size, nullptr);
            if (block) translated = reinterpret_cast<DLGTEMPLATE*>(block);
        } catch (CXMemException&) {
        }
    }
    const DLGTEMPLATE* Get() const { return translated; }
    void Release() {
        KeptLastError kept;
        if (size) free(translated);
    }

private:
    DLGTEMPLATE* translated;
    int size = 0;
};

template <class Indirect>
INT_PTR RunTemplate(Indirect* real, const DLGTEMPLATE* dialog, const DialogArguments& a) {
    if (!IsTranslationActive(a.module)) return real(a.module, dialog, a.parent, a.proc, a.param);
    TranslatedTemplate translated(dialog);
    INT_PTR result = real(a.module, translated.Get(), a.parent, a.proc, a.param);
    translated.Release();
    return result;
}

// The translated template stays allocated, one for each dialog made.
template <class Indirect>
HWND MakeFromTemplate(Indirect* real, const DLGTEMPLATE* dialog, const DialogArguments& a) {
    if (!IsTranslationActive(a.module)) return real(a.module, dialog, a.parent, a.proc, a.param);
    return real(a.module, TranslatedTemplate(dialog).Get(), a.parent, a.proc, a.param);
}

}  // namespace

HWND WINAPI NewCreateDialogParamA(HINSTANCE module, const char* name, HWND parent, DLGPROC proc,
                                  LPARAM param) {
    if (!IsTranslationActive(module))
        return QX_REAL(CreateDialogParamA)(module, name, parent, proc, param);
    return RunResource(NewFindResourceA, name, QX_REAL(CreateDialogIndirectParamA),
                       {module, parent, proc, param});
}

HWND WINAPI NewCreateDialogParamW(HINSTANCE module, const wchar_t* name, HWND parent, DLGPROC proc,
                                  LPARAM param) {
    if (!IsTranslationActive(module))
        return QX_REAL(CreateDialogParamW)(module, name, parent, proc, param);
    return RunResource(NewFindResourceW, name, QX_REAL(CreateDialogIndirectParamW),
                       {module, parent, proc, param});
}

INT_PTR WINAPI NewDialogBoxParamA(HINSTANCE module, const char* name, HWND parent, DLGPROC proc,
                                  LPARAM param) {
    if (!IsTranslationActive(module)) return DialogBoxParamA(module, name, parent, proc, param);
    return RunResource(NewFindResourceA, name, QX_REAL(DialogBoxIndirectParamA),
                       {module, parent, proc, param});
}

INT_PTR WINAPI NewDialogBoxParamW(HINSTANCE module, const wchar_t* name, HWND parent, DLGPROC proc,
                                  LPARAM param) {
    if (!IsTranslationActive(module)) return DialogBoxParamW(module, name, parent, proc, param);
    return RunResource(NewFindResourceW, name, QX_REAL(DialogBoxIndirectParamW),
                       {module, parent, proc, param});
}

INT_PTR WINAPI NewDialogBoxIndirectParamA(HINSTANCE module, const DLGTEMPLATE* dialog, HWND parent,
                                          DLGPROC proc, LPARAM param) {
    return RunTemplate(QX_REAL(DialogBoxIndirectParamA), dialog, {module, parent, proc, param});
}

INT_PTR WINAPI NewDialogBoxIndirectParamW(HINSTANCE module, const DLGTEMPLATE* dialog, HWND parent,
                                          DLGPROC proc, LPARAM param) {
    return RunTemplate(QX_REAL(DialogBoxIndirectParamW), dialog, {module, parent, proc, param});
}

HWND WINAPI NewCreateDialogIndirectParamA(HINSTANCE module, const DLGTEMPLATE* dialog, HWND parent,
                                          DLGPROC proc, LPARAM param) {
    return MakeFromTemplate(QX_REAL(CreateDialogIndirectParamA), dialog,
                            {module, parent, proc, param});
}

HWND WINAPI NewCreateDialogIndirectParamW(HINSTANCE module, const DLGTEMPLATE* dialog, HWND parent,
                                          DLGPROC proc, LPARAM param) {
    return MakeFromTemplate(QX_REAL(CreateDialogIndirectParamW), dialog,
                            {module, parent, proc, param});
}

}  // namespace qx
