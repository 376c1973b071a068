#include "strings/characters.h"
#include "translate/interception/interception.h"
#include "translate/interception/module_lists.h"

#include <qxcore/dictionary.h>

#include <atomic>
#include <cstring>

namespace qx {

namespace {

constexpr unsigned kTextSize = 1024;

// Translates into a buffer of kTextSize bytes. A text without a translation that is too long for it
// is shown as it is.
const char* TranslateInto(char* buffer, const char* text) {
    if (!text) return nullptr;
    const char* target = g_Wld.Translate(text, 1);
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
const char* TranslateParameter(HINSTANCE module, const char* text) {
    char* buffer = NextLastingBuffer();
    auto id = static_cast<UINT>(reinterpret_cast<uintptr_t>(text));
    if (QX_REAL(LoadStringA)(module, id, buffer, kTextSize) > 0) {
        g_Wld.Translate(buffer, kTextSize);
        return buffer;
    }
    return IS_INTRESOURCE(text) ? text : TranslateInto(buffer, text);
}

bool IsWritable(const void* at) {
    MEMORY_BASIC_INFORMATION info;
    constexpr DWORD kWritable =
        PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    return VirtualQuery(at, &info, sizeof info) && (info.Protect & kWritable) != 0;
}

// Translates a block in its place, or in `copy` where it cannot be written. Answers the one to
// show.
const MSGBOXPARAMSA* TranslateBlock(const MSGBOXPARAMSA* block, MSGBOXPARAMSA& copy) {
    KeptLastError kept;
    copy.lpszText = TranslateParameter(block->hInstance, block->lpszText);
    copy.lpszCaption = TranslateParameter(block->hInstance, block->lpszCaption);
    if (!IsWritable(block)) return &copy;
    *const_cast<MSGBOXPARAMSA*>(block) = copy;
    return block;
}

}  // namespace

int WINAPI NewMessageBoxA(HWND owner, const char* text, const char* caption, UINT type) {
    auto real = QX_REAL(MessageBoxA);
    if (!IsSwitchedOn()) return real(owner, text, caption, type);
    char textBuffer[kTextSize];
    char captionBuffer[kTextSize];
    return real(owner, TranslateInto(textBuffer, text),
                TranslateInto(captionBuffer, caption ? caption : "Error"), type);
}

// The box keeps the source language, other than MessageBoxA's.
int WINAPI NewMessageBoxExA(HWND owner, const char* text, const char* caption, UINT type,
                            WORD language) {
    return QX_REAL(MessageBoxExA)(owner, text, caption, type, language);
}

// The caller's block points at the translations afterwards.
int WINAPI NewMessageBoxIndirectA(const MSGBOXPARAMSA* parameters) {
    auto real = QX_REAL(MessageBoxIndirectA);
    if (!parameters || !IsTranslationActive(parameters->hInstance)) return real(parameters);
    MSGBOXPARAMSA translated = *parameters;
    return real(TranslateBlock(parameters, translated));
}

}  // namespace qx
