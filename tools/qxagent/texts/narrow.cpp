#include "tools/qxagent/texts/narrow.h"

#include <qxcore/dictionary.h>

#include <algorithm>

namespace qx {

std::string Narrow(std::wstring_view text) {
    if (text.empty()) return {};
    DWORD flags = GetACP() == CP_UTF8 ? 0 : WC_COMPOSITECHECK;
    int size = static_cast<int>(text.size());
    std::string narrow(text.size() * 4, '\0');
    int length = WideCharToMultiByte(CP_ACP, flags, text.data(), size, narrow.data(),
                                     static_cast<int>(narrow.size()), nullptr, nullptr);
    narrow.resize(static_cast<size_t>(std::max(length, 0)));
    return narrow;
}

std::wstring Widen(std::string_view text) {
    std::wstring wide(text.size(), L'\0');
    if (text.empty()) return wide;
    int length = MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()),
                                     wide.data(), static_cast<int>(wide.size()));
    wide.resize(static_cast<size_t>(length));
    return wide;
}

namespace {

// A byte of UTF-8 that goes on with a character.
bool IsContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

size_t CharacterBytes(std::string_view text) {
    size_t size = 1;
    if (GetACP() == CP_UTF8) {
        while (size < text.size() && IsContinuation(text[size])) ++size;
    } else if (text.size() > 1 && IsDBCSLeadByte(static_cast<BYTE>(text[0]))) {
        size = 2;
    }
    return size;
}

}  // namespace

size_t WholeBytes(std::string_view text, size_t room) {
    size_t whole = 0;
    while (whole < text.size()) {
        size_t next = whole + CharacterBytes(text.substr(whole));
        if (next > room) break;
        whole = next;
    }
    return whole;
}

bool HasTranslation(std::wstring_view text) {
    return g_Wld.Translate(Narrow(text).c_str(), 1) != nullptr;
}

std::wstring TranslatedText(std::wstring_view text) {
    const char* translation = g_Wld.Translate(Narrow(text).c_str(), 1);
    return translation ? Widen(translation) : std::wstring(text);
}

}  // namespace qx
