#include "translate/interception/interception.h"
#include "translate/interception/module_lists.h"
#include "translate/interception/resource_records.h"
#include "translate/resources/dialog_translation.h"

#include <qxcore/dictionary.h>
#include <qxcore/exception.h>

#include <cstdlib>

namespace qx {

namespace {

// What all eight functions take besides the dialog itself.
struct DialogArguments {
    HINSTANCE module;
    HWND parent;
    DLGPROC proc;
    LPARAM param;
};

// A dialog resource goes through the find and load calls above; 0 when there is none.
template <class Find, class Name, class Indirect>
auto RunResource(Find* find, const Name* name, Indirect* indirect, const DialogArguments& a,
                 const LookupCall& call) {
    using Result = decltype(indirect(a.module, nullptr, a.parent, a.proc, a.param));
    auto type = reinterpret_cast<const Name*>(static_cast<uintptr_t>(kDialogType));
    HRSRC found = find(a.module, name, type);
    QX_RESITEM* record = RecordOf(found);
    HGLOBAL block = nullptr;
    if (record) {
        block = LoadRecord(record, call.function);
    } else if (found) {
        block = QX_REAL(LoadResource)(a.module, found);
    }
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
    TranslatedTemplate(const DLGTEMPLATE* dialog, const LookupCall& call)
        : m_translated(const_cast<DLGTEMPLATE*>(dialog)) {
        if (!dialog) return;
        KeptLastError kept;
        auto source = reinterpret_cast<const uint8_t*>(dialog);
        const LookupCall* told = IfObserved(call);
        try {
            unsigned char* block = TranslateTemplate(g_Wld, {source, TemplateBytes::kUnknownSize},
                                                     &m_size, {std::nullopt, told});
            if (block) m_translated = reinterpret_cast<DLGTEMPLATE*>(block);
        } catch (CXMemException&) {
            TellOf(told, nullptr, QXLOOKUP_NO_MEMORY);
        }
    }
    const DLGTEMPLATE* Get() const { return m_translated; }
    void Release() {
        KeptLastError kept;
        if (m_size) free(m_translated);
    }

private:
    DLGTEMPLATE* m_translated;
    int m_size = 0;
};

template <class Indirect>
INT_PTR RunTemplate(Indirect* real, const DLGTEMPLATE* dialog, const DialogArguments& a,
                    const LookupCall& call) {
    TranslatedTemplate translated(dialog, call);
    INT_PTR result = real(a.module, translated.Get(), a.parent, a.proc, a.param);
    translated.Release();
    return result;
}

// The translated template stays allocated, one for each dialog made.
template <class Indirect>
HWND MakeFromTemplate(Indirect* real, const DLGTEMPLATE* dialog, const DialogArguments& a,
                      const LookupCall& call) {
    return real(a.module, TranslatedTemplate(dialog, call).Get(), a.parent, a.proc, a.param);
}

// Whether the dialog of a call is translated; tells why it is not.
bool IsDialogActive(const LookupCall& call) {
    if (IsTranslationActive(call.module)) return true;
    TellOf(IfObserved(call), nullptr, WhyNotActive());
    return false;
}

}  // namespace

HWND WINAPI NewCreateDialogParamA(HINSTANCE module, const char* name, HWND parent, DLGPROC proc,
                                  LPARAM param) {
    LookupCall call = QX_CALL(CreateDialogParamA, module);
    if (!IsDialogActive(call))
        return QX_REAL(CreateDialogParamA)(module, name, parent, proc, param);
    return RunResource(NewFindResourceA, name, QX_REAL(CreateDialogIndirectParamA),
                       {module, parent, proc, param}, call);
}

HWND WINAPI NewCreateDialogParamW(HINSTANCE module, const wchar_t* name, HWND parent, DLGPROC proc,
                                  LPARAM param) {
    LookupCall call = QX_CALL(CreateDialogParamW, module);
    if (!IsDialogActive(call))
        return QX_REAL(CreateDialogParamW)(module, name, parent, proc, param);
    return RunResource(NewFindResourceW, name, QX_REAL(CreateDialogIndirectParamW),
                       {module, parent, proc, param}, call);
}

// Without translation the library's own import serves.
INT_PTR WINAPI NewDialogBoxParamA(HINSTANCE module, const char* name, HWND parent, DLGPROC proc,
                                  LPARAM param) {
    LookupCall call = QX_CALL(DialogBoxParamA, module);
    if (!IsDialogActive(call)) return DialogBoxParamA(module, name, parent, proc, param);
    return RunResource(NewFindResourceA, name, QX_REAL(DialogBoxIndirectParamA),
                       {module, parent, proc, param}, call);
}

INT_PTR WINAPI NewDialogBoxParamW(HINSTANCE module, const wchar_t* name, HWND parent, DLGPROC proc,
                                  LPARAM param) {
    LookupCall call = QX_CALL(DialogBoxParamW, module);
    if (!IsDialogActive(call)) return DialogBoxParamW(module, name, parent, proc, param);
    return RunResource(NewFindResourceW, name, QX_REAL(DialogBoxIndirectParamW),
                       {module, parent, proc, param}, call);
}

INT_PTR WINAPI NewDialogBoxIndirectParamA(HINSTANCE module, const DLGTEMPLATE* dialog, HWND parent,
                                          DLGPROC proc, LPARAM param) {
    LookupCall call = QX_CALL(DialogBoxIndirectParamA, module);
    auto real = QX_REAL(DialogBoxIndirectParamA);
    if (!IsDialogActive(call)) return real(module, dialog, parent, proc, param);
    return RunTemplate(real, dialog, {module, parent, proc, param}, call);
}

INT_PTR WINAPI NewDialogBoxIndirectParamW(HINSTANCE module, const DLGTEMPLATE* dialog, HWND parent,
                                          DLGPROC proc, LPARAM param) {
    LookupCall call = QX_CALL(DialogBoxIndirectParamW, module);
    auto real = QX_REAL(DialogBoxIndirectParamW);
    if (!IsDialogActive(call)) return real(module, dialog, parent, proc, param);
    return RunTemplate(real, dialog, {module, parent, proc, param}, call);
}

HWND WINAPI NewCreateDialogIndirectParamA(HINSTANCE module, const DLGTEMPLATE* dialog, HWND parent,
                                          DLGPROC proc, LPARAM param) {
    LookupCall call = QX_CALL(CreateDialogIndirectParamA, module);
    auto real = QX_REAL(CreateDialogIndirectParamA);
    if (!IsDialogActive(call)) return real(module, dialog, parent, proc, param);
    return MakeFromTemplate(real, dialog, {module, parent, proc, param}, call);
}

HWND WINAPI NewCreateDialogIndirectParamW(HINSTANCE module, const DLGTEMPLATE* dialog, HWND parent,
                                          DLGPROC proc, LPARAM param) {
    LookupCall call = QX_CALL(CreateDialogIndirectParamW, module);
    auto real = QX_REAL(CreateDialogIndirectParamW);
    if (!IsDialogActive(call)) return real(module, dialog, parent, proc, param);
    return MakeFromTemplate(real, dialog, {module, parent, proc, param}, call);
}

}  // namespace qx
