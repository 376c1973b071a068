#include "tools/qxtranslate/platform/platform.h"

#include "tools/qxtranslate/model/text/bad_input.h"
#include "tools/qxtranslate/model/text/unicode.h"
#include "tools/qxtranslate/platform/wide_text.h"

#include <windows.h>

#include <shellapi.h>

#include <fcntl.h>
#include <io.h>

#include <cstdio>

namespace qx {

namespace {

class SystemCodePage final : public CodePage {
public:
    explicit SystemCodePage(unsigned number) : m_number(number) {}

    // What has no character of its own in the page is refused, also where a similar one would be
    // taken: only what comes back as it was counts.
    std::optional<std::string> Encode(std::string_view utf8) const override {
        std::wstring wide = ToWide(utf8);
        if (wide.empty()) return "";
        int size = static_cast<int>(wide.size());
        std::string bytes(wide.size() * 4, '\0');
        int length = WideCharToMultiByte(m_number, 0, wide.data(), size, bytes.data(),
                                         static_cast<int>(bytes.size()), nullptr, nullptr);
        bytes.resize(static_cast<size_t>(length));
        if (Decode(bytes) != utf8) return std::nullopt;
        return bytes;
    }

    std::optional<std::string> Decode(std::string_view bytes) const override {
        if (bytes.empty()) return "";
        std::wstring wide(bytes.size(), L'\0');
        int length = MultiByteToWideChar(m_number, MB_ERR_INVALID_CHARS, bytes.data(),
                                         static_cast<int>(bytes.size()), wide.data(),
                                         static_cast<int>(wide.size()));
        if (!length) return std::nullopt;
        wide.resize(static_cast<size_t>(length));
        return FromWide(wide);
    }

    bool IsLead(unsigned char byte) const override {
        return IsDBCSLeadByteEx(m_number, byte) != FALSE;
    }

private:
    unsigned m_number;
};

}  // namespace

std::unique_ptr<CodePage> OpenCodePage(unsigned number) {
    auto page = std::make_unique<SystemCodePage>(number);
    if (!number || !IsValidCodePage(number) || !KeepsAscii(*page))
        throw BadInput("there is no code page " + std::to_string(number));
    return page;
}

std::vector<std::string> CommandLineWords(int, char**) {
    int count = 0;
    wchar_t** words = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> result;
    for (int i = 1; words && i < count; ++i) result.push_back(FromWide(words[i]));
    LocalFree(words);
    return result;
}

void PrepareOutput() {
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
}

bool IsErrorTerminal() {
    return _isatty(_fileno(stderr)) != 0;
}

}  // namespace qx
