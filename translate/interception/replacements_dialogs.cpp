#include "translate/interception/interception.h"
#include "translate/interception/module_lists.h"
#include "translate/interception/resource_records.h"
#include "translate/resources/dialog_translation.h"

#include <qxcore/dictionary.h>
#include <qxcore/exception.h>

#include <cstdlib>
#include <type_traits>

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

// A modal dialog is done with its template; that of any other stays allocated.
template <class Indirect>
auto RunTemplate(Indirect* real, const DLGTEMPLATE* dialog, const DialogArguments& a,
                 const LookupCall& call) {
    TranslatedTemplate translated(dialog, call);
    auto result = real(a.module, translated.Get(), a.parent, a.proc, a.param);
    if constexpr (std::is_same_v<decltype(result), INT_PTR>) translated.Release();
    return result;
}

// Whether the dialog of a call is translated; tells why it is not.
bool IsDialogActive(const LookupCall& call) {
    if (IsTranslationActive(call.module)) return true;
    TellOf(IfObserved(call), nullptr, WhyNotActive());
    return false;
}

}  // namespace

// A dialog by its name. `untranslated` is what serves without translation.
#define QX_NAMED_DIALOG(Result, function, Name, untranslated, find, indirect)                  \
    Result WINAPI New##function(HINSTANCE module, const Name* name, HWND parent, DLGPROC proc, \
                                LPARAM param) {                                                \
        LookupCall call = QX_CALL(function, module);                                           \
        if (!IsDialogActive(call)) return untranslated(module, name, parent, proc, param);     \
        return RunResource(New##find, name, QX_REAL(indirect), {module, parent, proc, param},  \
                           call);                                                              \
    }
QX_NAMED_DIALOG(HWND, CreateDialogParamA, char, QX_REAL(CreateDialogParamA), FindResourceA,
                CreateDialogIndirectParamA)
QX_NAMED_DIALOG(HWND, CreateDialogParamW, wchar_t, QX_REAL(CreateDialogParamW), FindResourceW,
                CreateDialogIndirectParamW)
QX_NAMED_DIALOG(INT_PTR, DialogBoxParamA, char, ::DialogBoxParamA, FindResourceA,
                DialogBoxIndirectParamA)
QX_NAMED_DIALOG(INT_PTR, DialogBoxParamW, wchar_t, ::DialogBoxParamW, FindResourceW,
                DialogBoxIndirectParamW)
#undef QX_NAMED_DIALOG

// A dialog by its template.
#define QX_INDIRECT_DIALOG(Result, function)                                              \
    Result WINAPI New##function(HINSTANCE module, const DLGTEMPLATE* dialog, HWND parent, \
                                DLGPROC proc, LPARAM param) {                             \
        LookupCall call = QX_CALL(function, module);                                      \
        auto real = QX_REAL(function);                                                    \
        if (!IsDialogActive(call)) return real(module, dialog, parent, proc, param);      \
        return RunTemplate(real, dialog, {module, parent, proc, param}, call);            \
    }
QX_INDIRECT_DIALOG(INT_PTR, DialogBoxIndirectParamA)
QX_INDIRECT_DIALOG(INT_PTR, DialogBoxIndirectParamW)
QX_INDIRECT_DIALOG(HWND, CreateDialogIndirectParamA)
QX_INDIRECT_DIALOG(HWND, CreateDialogIndirectParamW)
#undef QX_INDIRECT_DIALOG

}  // namespace qx
