#include "tools/qxagent/texts/recorder.h"

#include "tools/qxagent/texts/narrow.h"
#include "tools/qxtranslate/model/dictionary/text.h"
#include "tools/qxtranslate/model/translation/record.h"
#include "tools/qxtranslate/platform/wide_text.h"

#include <qxcore/observer.h>

#include <cstdio>
#include <mutex>

namespace qx {

namespace {

std::mutex g_mutex;
FILE* g_file = nullptr;
HANDLE g_failed = nullptr;

// Key and names are in the process's code page.
class ProcessCodePage final : public CodePage {
public:
    std::optional<std::string> Encode(std::string_view utf8) const override {
        return Narrow(ToWide(utf8));
    }
    std::optional<std::string> Decode(std::string_view bytes) const override {
        return FromWide(Widen(bytes));
    }
    bool IsLead(unsigned char byte) const override { return IsDBCSLeadByte(byte) != FALSE; }
};

std::string PlaceOf(std::string_view key) {
    if (!ContextKeySize(std::string(key) + "x")) return {};
    auto context = ParseContextKey(key, ProcessCodePage());
    return context ? FormatContext(*context) : "";
}

std::string ModuleName(HMODULE module) {
    wchar_t path[1024] = L"";
    GetModuleFileNameW(module, path, 1024);
    std::wstring name(path);
    return FromWide(name.substr(name.find_last_of(L"\\/:") + 1));
}

const char* EndingOf(QXLookupEnd end) {
    switch (end) {
        case QXLOOKUP_BY_PLACE:
            return "place";
        case QXLOOKUP_PLAIN:
            return "plain";
        case QXLOOKUP_EMPTY:
            return "empty";
        case QXLOOKUP_MISS:
            return "miss";
        case QXLOOKUP_OFF:
            return "not looked up: the translation is switched off";
        case QXLOOKUP_EXCLUDED:
            return "not looked up: the resources of this module are never translated";
        case QXLOOKUP_WIDE:
            return "not looked up: it has characters that no entry can stand for";
        case QXLOOKUP_LONG:
            return "not looked up: it is longer than 1024 characters";
        case QXLOOKUP_CLASS:
            return "not looked up: only labels and buttons of dialogs are translated";
        case QXLOOKUP_KEPT:
            return "not looked up: it would be shown untranslated in any case";
        case QXLOOKUP_POINTER:
            return "not looked up: the program asked for the address of the text";
        case QXLOOKUP_MENU:
            return "not looked up: a menu loaded as a resource arrives as nothing";
        case QXLOOKUP_NO_MEMORY:
            return "not looked up: memory ran out";
    }
    return "not looked up";
}

void Write(const LookUp& lookUp) {
    std::string line = WriteLookUp(lookUp);
    std::lock_guard<std::mutex> lock(g_mutex);
    if (!g_file) return;
    // At once, since the program may be ended at any time.
    bool isWritten = fwrite(line.data(), 1, line.size(), g_file) == line.size();
    if (fflush(g_file) != 0 || !isWritten) SetEvent(g_failed);
}

std::string Utf8(const char* narrow) {
    return narrow ? FromWide(Widen(narrow)) : "";
}

void OnLookup(const QXLookup* l, void*) {
    Write({l->function, ModuleName(l->module), l->place ? PlaceOf(l->place) : "", EndingOf(l->end),
           Utf8(l->source), Utf8(l->target)});
}

}  // namespace

bool StartRecord(const wchar_t* path, HANDLE failed) {
    g_failed = failed;
    g_file = _wfopen(path, L"wb");
    if (!g_file) return false;
    Supp_SetLookupObserver(OnLookup, nullptr);
    return true;
}

bool IsRecording() {
    return g_file != nullptr;
}

void TellText(const char* function, HMODULE module, const std::string& key, std::wstring_view text,
              std::wstring_view translation) {
    if (!IsRecording()) return;
    bool isFound = text != translation;
    Write({function, ModuleName(module), key.empty() ? "" : PlaceOf(key),
           isFound ? "plain" : "miss", FromWide(text), isFound ? FromWide(translation) : ""});
}

}  // namespace qx
