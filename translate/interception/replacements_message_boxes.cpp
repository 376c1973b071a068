#include "strings/characters.h"
#include "translate/interception/interception.h"
#include "translate/interception/module_lists.h"

#include <qxcore/dictionary.h>

#include <atomic>
#include <cstring>
#include <initializer_list>

namespace qx {

namespace {

constexpr unsigned kTextSize = 1024;

// Translates into a buffer of kTextSize bytes. A text without a translation that is too long for it
// is shown as it is.
const char* TranslateInto(char* buffer, const char* text, const LookupCall* call) {
    if (!text) return nullptr;
    const char* target = TranslateText(g_Wld, text, call);
    if (!target && strlen(text) >= kTextSize) return text;
    Characters::OfRuntime().CopyWhole(buffer, kTextSize, target ? target : text);
    return buffer;
}

// Buffers that outlive the call, since the caller's block points at them afterwards. Later boxes
// use them again.
char* NextLastingBuffer() {
    constexpr unsigned kBuffers = 16;
    static constinit char buffers[kBuffers][kTextSize] = {};
    static constinit std::atomic<unsigned> next = 0;
    return buffers[next++ % kBuffers];
}

// A text of a parameter block: the string of that id if the module has one, else what the pointer
// leads to. The number tried is the pointer's low half, so a text that lies at an unlucky address
// shows another string, and null shows the string 0.
const char* TranslateParameter(HINSTANCE module, const char* text, const LookupCall* call) {
    char* buffer = NextLastingBuffer();
    auto id = static_cast<UINT>(reinterpret_cast<uintptr_t>(text));
    if (QX_REAL(LoadStringA)(module, id, buffer, kTextSize) > 0) {
        TranslateBuffer(g_Wld, buffer, kTextSize, call);
        return buffer;
    }
    return IS_INTRESOURCE(text) ? text : TranslateInto(buffer, text, call);
}

bool IsWritable(const void* at) {
    MEMORY_BASIC_INFORMATION info;
    constexpr DWORD kWritable =
        PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    return VirtualQuery(at, &info, sizeof info) && (info.Protect & kWritable) != 0;
}

// Tells why the texts of a box are not looked up; null for one that is none.
void TellBox(const LookupCall& call, const char* text, const char* caption, QXLookupEnd end) {
    for (const char* source : {text, caption}) {
        if (source && *source) TellOf(IfObserved(call), source, end);
    }
}
const char* TextOf(const char* textOrId) {
    return IS_INTRESOURCE(textOrId) ? nullptr : textOrId;
}

// Translates a block in its place, or in `copy` where it cannot be written. Answers the one to
// show.
const MSGBOXPARAMSA* TranslateBlock(const MSGBOXPARAMSA* block, MSGBOXPARAMSA& copy) {
    KeptLastError kept;
    LookupCall call = QX_CALL(MessageBoxIndirectA, block->hInstance);
    copy.lpszText = TranslateParameter(block->hInstance, block->lpszText, IfObserved(call));
    copy.lpszCaption = TranslateParameter(block->hInstance, block->lpszCaption, IfObserved(call));
    if (!IsWritable(block)) return &copy;
    *const_cast<MSGBOXPARAMSA*>(block) = copy;
    return block;
}

}  // namespace

int WINAPI NewMessageBoxA(HWND owner, const char* text, const char* caption, UINT type) {
    auto real = QX_REAL(MessageBoxA);
    LookupCall call = QX_CALL(MessageBoxA, nullptr);
    if (!IsSwitchedOn()) {
        TellBox(call, text, caption, QXLOOKUP_OFF);
        return real(owner, text, caption, type);
    }
    char textBuffer[kTextSize];
    char captionBuffer[kTextSize];
    const char* shown = TranslateInto(textBuffer, text, IfObserved(call));
    const char* shownCaption =
        TranslateInto(captionBuffer, caption ? caption : "Error", IfObserved(call));
    return real(owner, shown, shownCaption, type);
}

// The box keeps the source language, other than MessageBoxA's.
int WINAPI NewMessageBoxExA(HWND owner, const char* text, const char* caption, UINT type,
                            WORD language) {
    LookupCall call = QX_CALL(MessageBoxExA, nullptr);
    TellBox(call, text, caption, IsSwitchedOn() ? QXLOOKUP_KEPT : QXLOOKUP_OFF);
    return QX_REAL(MessageBoxExA)(owner, text, caption, type, language);
}

// The caller's block points at the translations afterwards.
int WINAPI NewMessageBoxIndirectA(const MSGBOXPARAMSA* parameters) {
    auto real = QX_REAL(MessageBoxIndirectA);
    if (!parameters) return real(parameters);
    if (!IsTranslationActive(parameters->hInstance)) {
        LookupCall call = QX_CALL(MessageBoxIndirectA, parameters->hInstance);
        TellBox(call, TextOf(parameters->lpszText), TextOf(parameters->lpszCaption),
                WhyNotActive());
        return real(parameters);
    }
    MSGBOXPARAMSA translated = *parameters;
    return real(TranslateBlock(parameters, translated));
}

}  // namespace qx
