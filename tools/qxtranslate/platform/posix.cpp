#include "tools/qxtranslate/platform/platform.h"

#include "tools/qxtranslate/model/text/bad_input.h"
#include "tools/qxtranslate/model/text/unicode.h"

#include <iconv.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace qx {

namespace {

class Conversion {
public:
    Conversion(const char* to, const char* from) : m_handle(iconv_open(to, from)) {}
    ~Conversion() {
        if (IsOpen()) iconv_close(m_handle);
    }
    Conversion(const Conversion&) = delete;
    Conversion& operator=(const Conversion&) = delete;

    bool IsOpen() const { return m_handle != reinterpret_cast<iconv_t>(-1); }

    // Converts as much as it can and takes it off the text; errno tells what stopped it, 0 that
    // nothing did.
    std::string Run(std::string_view& text) const {
        std::string out;
        char buffer[4096];
        char* from = const_cast<char*>(text.data());
        size_t left = text.size();
        iconv(m_handle, nullptr, nullptr, nullptr, nullptr);
        int error = 0;
        do {
            char* to = buffer;
            size_t room = sizeof buffer;
            size_t lossy = iconv(m_handle, &from, &left, &to, &room);
            error = lossy == static_cast<size_t>(-1) ? errno : 0;
            out.append(buffer, to);
        } while (error == E2BIG);
        text.remove_prefix(text.size() - left);
        errno = error;
        return out;
    }

private:
    iconv_t m_handle;
};

class IconvCodePage final : public CodePage {
public:
    explicit IconvCodePage(const std::string& name)
        : m_encoding(name.c_str(), "UTF-8"), m_decoding("UTF-8", name.c_str()) {
        for (unsigned byte = 0x80; byte < 0x100 && IsOpen(); ++byte) {
            char c = static_cast<char>(byte);
            std::string_view text(&c, 1);
            m_decoding.Run(text);
            m_isLead[byte] = errno == EINVAL;
            m_isUndefined[byte] = errno == EILSEQ;
            m_isDouble = m_isDouble || m_isLead[byte];
        }
    }

    bool IsOpen() const { return m_encoding.IsOpen() && m_decoding.IsOpen(); }

    // The bytes that a single-byte page leaves undefined stand for U+0080 to U+009F on Windows.
    std::optional<std::string> Encode(std::string_view utf8) const override {
        std::string bytes = m_encoding.Run(utf8);
        while (!utf8.empty()) {
            std::u32string rest = ToUtf32(utf8.substr(0, 2));
            if (m_isDouble || rest.size() != 1 || rest[0] < 0x80 || rest[0] > 0x9F ||
                !m_isUndefined[rest[0]])
                return std::nullopt;
            bytes += static_cast<char>(rest[0]);
            utf8.remove_prefix(2);
            bytes += m_encoding.Run(utf8);
        }
        return bytes;
    }

    std::optional<std::string> Decode(std::string_view bytes) const override {
        std::string utf8 = m_decoding.Run(bytes);
        while (!bytes.empty()) {
            auto byte = static_cast<unsigned char>(bytes[0]);
            if (m_isDouble || byte > 0x9F || !m_isUndefined[byte]) return std::nullopt;
            AppendUtf8(utf8, byte);
            bytes.remove_prefix(1);
            utf8 += m_decoding.Run(bytes);
        }
        return utf8;
    }

    bool IsLead(unsigned char byte) const override { return m_isLead[byte]; }

private:
    Conversion m_encoding, m_decoding;
    std::array<bool, 256> m_isLead = {};
    std::array<bool, 256> m_isUndefined = {};
    bool m_isDouble = false;
};

}  // namespace

std::unique_ptr<CodePage> OpenCodePage(unsigned number) {
    std::string name = number == 65001 ? "UTF-8" : "CP" + std::to_string(number);
    auto page = std::make_unique<IconvCodePage>(name);
    if (!page->IsOpen() || !KeepsAscii(*page))
        throw BadInput("there is no code page " + std::to_string(number));
    return page;
}

std::vector<std::string> CommandLineWords(int count, char** words) {
    return std::vector<std::string>(words + 1, words + count);
}

void PrepareOutput() {}

bool IsErrorTerminal() {
    return isatty(STDERR_FILENO) != 0;
}

}  // namespace qx
