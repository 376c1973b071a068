#include "tools/qxagent/modules/make_up.h"

#include "tools/qxagent/modules/late_imports.h"
#include "tools/qxagent/texts/narrow.h"
#include "tools/qxagent/texts/recorder.h"
#include "tools/qxagent/windows/window_menus.h"

#include <qxcore/dictionary.h>
#include <qxcore/translation.h>

#include <cstring>
#include <map>
#include <mutex>
#include <string>

namespace qx {

namespace {

// The agent's own imports lead to the library once they are patched; the real functions are these.
template <class Function>
Function* Real(const char* dll, const char* name, Function*) {
    return reinterpret_cast<Function*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA(dll), name)));
}
#define QX_SYSTEM(dll, function) Real(dll, #function, &::function)

constexpr int kText = 4096;
bool g_wideBoxes = false;

// The string as the system has it, in its own memory.
std::wstring_view SystemString(HINSTANCE module, UINT id) {
    static auto const load = QX_SYSTEM("user32.dll", LoadStringW);
    const wchar_t* text = nullptr;
    int length = load(module, id, reinterpret_cast<wchar_t*>(&text), 0);
    return length > 0 ? std::wstring_view(text, static_cast<size_t>(length)) : std::wstring_view();
}

bool IsWhole(std::wstring_view text) {
    return text.find(L'\0') == std::wstring_view::npos;
}

// The library looks a wide string up by so many bytes of it, and gives as many of a translation.
constexpr size_t kWideStringBytes = 1023;

// The translation of a string, or the string itself: what the code page lacks or what stands behind
// a NUL is lost on the way through the library.
std::wstring TranslatedString(HINSTANCE module, UINT id, std::wstring_view text) {
    if (IsWhole(text) && Narrow(text).size() > kWideStringBytes) {
        std::wstring translated = TranslatedText(text);
        TellText("LoadStringW", module, "", text, translated);
        return translated;
    }
    wchar_t buffer[kText];
    int length = IsWhole(text) ? LoadStringW(module, id, buffer, kText) : 0;
    if (length <= 0 || !HasTranslation(text)) return std::wstring(text);
    return buffer;
}

// Strings that the program has asked to point at stay for good.
const std::wstring& LastingString(HINSTANCE module, UINT id, std::wstring_view text) {
    static std::mutex mutex;
    static std::map<std::pair<HINSTANCE, UINT>, std::wstring> strings;
    std::lock_guard<std::mutex> lock(mutex);
    auto [entry, isNew] = strings.try_emplace({module, id});
    if (isNew) entry->second = TranslatedString(module, id, text);
    return entry->second;
}

// The length is that of the copy, without its terminator, and a text that is cut still ends in one.
int WINAPI AgentLoadStringW(HINSTANCE module, UINT id, wchar_t* buffer, int size) {
    std::wstring_view text = SystemString(module, id);
    if (text.empty() || !buffer || size < 0) {
        static auto const load = QX_SYSTEM("user32.dll", LoadStringW);
        return load(module, id, buffer, size);
    }
    if (size == 0) {
        const std::wstring& lasting = LastingString(module, id, text);
        const wchar_t* pointer = lasting.c_str();
        memcpy(buffer, &pointer, sizeof pointer);
        return static_cast<int>(lasting.size());
    }
    std::wstring translated = TranslatedString(module, id, text);
    size_t length = std::min(translated.size(), static_cast<size_t>(size) - 1);
    memcpy(buffer, translated.c_str(), length * sizeof *buffer);
    buffer[length] = 0;
    return static_cast<int>(length);
}

int WINAPI AgentLoadStringA(HINSTANCE module, UINT id, char* buffer, int size) {
    static auto const load = QX_SYSTEM("user32.dll", LoadStringA);
    if (!buffer || size <= 0 || !IsWhole(SystemString(module, id)))
        return load(module, id, buffer, size);
    char text[kText] = "";
    if (LoadStringA(module, id, text, kText) <= 0) return load(module, id, buffer, size);
    text[kText - 1] = 0;
    size_t length = WholeBytes(text, static_cast<size_t>(size) - 1);
    memcpy(buffer, text, length);
    buffer[length] = 0;
    return static_cast<int>(length);
}

// Menus that the library has translated are not translated again when they appear.
HMENU WINAPI AgentLoadMenuA(HINSTANCE module, const char* name) {
    return Translated(LoadMenuA(module, name));
}
HMENU WINAPI AgentLoadMenuW(HINSTANCE module, const wchar_t* name) {
    return Translated(LoadMenuW(module, name));
}
HMENU WINAPI AgentLoadMenuIndirectA(const MENUTEMPLATEA* menu) {
    return Translated(LoadMenuIndirectA(menu));
}
// Both forms of the function take the same template.
HMENU WINAPI AgentLoadMenuIndirectW(const MENUTEMPLATEW* menu) {
    return Translated(LoadMenuIndirectA(menu));
}

// The handle may soon be that of another menu.
BOOL WINAPI AgentDestroyMenu(HMENU menu) {
    Forget(menu);
    return DestroyMenu(menu);
}

// A menu's own handle goes to the program, since the library would load nothing for its record.
template <class Name>
bool IsMenu(const Name* type) {
    return reinterpret_cast<uintptr_t>(type) == 4;
}
HRSRC WINAPI AgentFindResourceA(HMODULE module, const char* name, const char* type) {
    static auto const find = QX_SYSTEM("kernel32.dll", FindResourceA);
    return IsMenu(type) ? find(module, name, type) : FindResourceA(module, name, type);
}
HRSRC WINAPI AgentFindResourceW(HMODULE module, const wchar_t* name, const wchar_t* type) {
    static auto const find = QX_SYSTEM("kernel32.dll", FindResourceW);
    return IsMenu(type) ? find(module, name, type) : FindResourceW(module, name, type);
}
HRSRC WINAPI AgentFindResourceExA(HMODULE module, const char* type, const char* name,
                                  WORD language) {
    static auto const find = QX_SYSTEM("kernel32.dll", FindResourceExA);
    return IsMenu(type) ? find(module, type, name, language)
                        : FindResourceExA(module, type, name, language);
}
HRSRC WINAPI AgentFindResourceExW(HMODULE module, const wchar_t* type, const wchar_t* name,
                                  WORD language) {
    static auto const find = QX_SYSTEM("kernel32.dll", FindResourceExW);
    return IsMenu(type) ? find(module, type, name, language)
                        : FindResourceExW(module, type, name, language);
}

BOOL WINAPI AgentFreeResource(HGLOBAL loaded) {
    return loaded ? FreeResource(loaded) : FALSE;
}

// The text of a wide box; the text itself without a translation.
std::wstring BoxText(const char* function, const wchar_t* text) {
    std::wstring translated = TranslatedText(text);
    TellText(function, nullptr, "", text, translated);
    return translated;
}

int WINAPI AgentMessageBoxW(HWND owner, const wchar_t* text, const wchar_t* caption, UINT type) {
    std::wstring newText = text ? BoxText("MessageBoxW", text) : L"";
    std::wstring newCaption = caption ? BoxText("MessageBoxW", caption) : L"";
    return MessageBoxW(owner, text ? newText.c_str() : nullptr,
                       caption ? newCaption.c_str() : nullptr, type);
}

int WINAPI AgentMessageBoxExW(HWND owner, const wchar_t* text, const wchar_t* caption, UINT type,
                              WORD language) {
    std::wstring newText = text ? BoxText("MessageBoxExW", text) : L"";
    std::wstring newCaption = caption ? BoxText("MessageBoxExW", caption) : L"";
    return MessageBoxExW(owner, text ? newText.c_str() : nullptr,
                         caption ? newCaption.c_str() : nullptr, type, language);
}

// A text of a parameter block, which may be a string's number.
std::wstring ParameterText(HINSTANCE module, const wchar_t* text) {
    if (!IS_INTRESOURCE(text)) return BoxText("MessageBoxIndirectW", text);
    auto id = static_cast<UINT>(reinterpret_cast<uintptr_t>(text));
    return TranslatedString(module, id, SystemString(module, id));
}

int WINAPI AgentMessageBoxIndirectW(const MSGBOXPARAMSW* parameters) {
    if (!parameters) return MessageBoxIndirectW(parameters);
    MSGBOXPARAMSW translated = *parameters;
    std::wstring text, caption;
    if (translated.lpszText) {
        text = ParameterText(translated.hInstance, translated.lpszText);
        translated.lpszText = text.c_str();
    }
    if (translated.lpszCaption) {
        caption = ParameterText(translated.hInstance, translated.lpszCaption);
        translated.lpszCaption = caption.c_str();
    }
    return MessageBoxIndirectW(&translated);
}

struct Hook {
    const char* dll;
    const char* function;
    void* replacement;
    bool isWideBox;
};

#define QX_HOOK(dll, function, isWideBox) \
    { dll, #function, reinterpret_cast<void*>(&Agent##function), isWideBox }

const Hook kHooks[] = {
    QX_HOOK("user32.dll", LoadStringA, false),
    QX_HOOK("user32.dll", LoadStringW, false),
    QX_HOOK("user32.dll", LoadMenuA, false),
    QX_HOOK("user32.dll", LoadMenuW, false),
    QX_HOOK("user32.dll", LoadMenuIndirectA, false),
    QX_HOOK("user32.dll", LoadMenuIndirectW, false),
    QX_HOOK("user32.dll", DestroyMenu, false),
    QX_HOOK("kernel32.dll", FindResourceA, false),
    QX_HOOK("kernel32.dll", FindResourceW, false),
    QX_HOOK("kernel32.dll", FindResourceExA, false),
    QX_HOOK("kernel32.dll", FindResourceExW, false),
    QX_HOOK("kernel32.dll", FreeResource, false),
    QX_HOOK("user32.dll", MessageBoxW, true),
    QX_HOOK("user32.dll", MessageBoxExW, true),
    QX_HOOK("user32.dll", MessageBoxIndirectW, true),
};

bool IsWanted(const Hook& hook) {
    return !hook.isWideBox || g_wideBoxes;
}

// The agent's own imports lead on to the library: so does a program that asks for one late.
void LeadLateImports() {
    for (const Hook& hook : kHooks) {
        if (IsWanted(hook)) ReplaceLate(hook.dll, hook.function, hook.replacement);
    }
#define QX_LATE(dll, function) ReplaceLate(dll, #function, reinterpret_cast<void*>(&::function))
    QX_LATE("kernel32.dll", LoadResource);
    QX_LATE("kernel32.dll", LockResource);
    QX_LATE("kernel32.dll", SizeofResource);
    QX_LATE("user32.dll", CreateDialogParamA);
    QX_LATE("user32.dll", CreateDialogParamW);
    QX_LATE("user32.dll", CreateDialogIndirectParamA);
    QX_LATE("user32.dll", CreateDialogIndirectParamW);
    QX_LATE("user32.dll", DialogBoxParamA);
    QX_LATE("user32.dll", DialogBoxParamW);
    QX_LATE("user32.dll", DialogBoxIndirectParamA);
    QX_LATE("user32.dll", DialogBoxIndirectParamW);
    QX_LATE("user32.dll", MessageBoxA);
    QX_LATE("user32.dll", MessageBoxExA);
    QX_LATE("user32.dll", MessageBoxIndirectA);
#undef QX_LATE
}

}  // namespace

void PrepareMakeUp(bool wideBoxes) {
    g_wideBoxes = wideBoxes;
    HMODULE own = nullptr;
    GetModuleHandleExW(
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
        reinterpret_cast<const wchar_t*>(&PrepareMakeUp), &own);
    Supp_InitResTranslation(own);
    LeadLateImports();
}

void MakeUpFor(HMODULE module) {
    for (const Hook& hook : kHooks) {
        if (IsWanted(hook)) HookProc_Install(module, hook.dll, hook.function, hook.replacement);
    }
    WatchLateImports(module);
}

}  // namespace qx
