#include "tools/qxtranslate/model/text/unicode.h"

namespace qx {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

// The bytes of the character that this byte begins; 0 when none does.
int SequenceLength(unsigned char first) {
    if (first < 0x80) return 1;
    if (first >= 0xC2 && first < 0xE0) return 2;
    if (first >= 0xE0 && first < 0xF0) return 3;
    if (first >= 0xF0 && first < 0xF5) return 4;
    return 0;
}

// The character at the beginning of the bytes, which are taken away; nothing when they hold none.
std::optional<char32_t> TakeCharacter(std::string_view& bytes) {
    auto first = static_cast<unsigned char>(bytes[0]);
    int length = SequenceLength(first);
    if (!length || static_cast<size_t>(length) > bytes.size()) return std::nullopt;
    char32_t character = length == 1 ? first : first & (0x7F >> length);
    for (int i = 1; i < length; ++i) {
        auto byte = static_cast<unsigned char>(bytes[i]);
        if ((byte & 0xC0) != 0x80) return std::nullopt;
        character = character << 6 | (byte & 0x3F);
    }
    constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    bool isSurrogate = character >= 0xD800 && character < 0xE000;
    if (character < kSmallest[length] || isSurrogate || character > 0x10FFFF) return std::nullopt;
    bytes.remove_prefix(static_cast<size_t>(length));
    return character;
}

}  // namespace

void AppendUtf8(std::string& text, char32_t c) {
    auto append = [&text](char32_t byte) { text += static_cast<char>(byte); };
    if (c < 0x80) {
        append(c);
    } else if (c < 0x800) {
        append(0xC0 | c >> 6);
        append(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        append(0xE0 | c >> 12);
        append(0x80 | (c >> 6 & 0x3F));
        append(0x80 | (c & 0x3F));
    } else {
        append(0xF0 | c >> 18);
        append(0x80 | (c >> 12 & 0x3F));
        append(0x80 | (c >> 6 & 0x3F));
        append(0x80 | (c & 0x3F));
    }
}

std::string ToUtf8(std::u16string_view text) {
    std::string utf8;
    utf8.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        char32_t c = text[i];
        bool isPair = c >= 0xD800 && c < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
                      text[i + 1] < 0xE000;
        if (isPair) {
            c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00);
        } else if (c >= 0xD800 && c < 0xE000) {
            c = kReplacement;
        }
        AppendUtf8(utf8, c);
    }
    return utf8;
}

std::u32string ToUtf32(std::string_view utf8) {
    std::u32string text;
    while (!utf8.empty()) {
        if (auto character = TakeCharacter(utf8)) {
            text += *character;
        } else {
            text += kReplacement;
            utf8.remove_prefix(1);
        }
    }
    return text;
}

std::string ToUtf8(std::u32string_view text) {
    std::string utf8;
    for (char32_t c : text) AppendUtf8(utf8, c);
    return utf8;
}

bool IsUtf8(std::string_view bytes) {
    while (!bytes.empty()) {
        if (!TakeCharacter(bytes)) return false;
    }
    return true;
}

std::string EscapeLine(std::string_view text) {
    std::string line;
    for (char c : text) {
        switch (c) {
            case '\n':
                line += "\\n";
                break;
            case '\t':
                line += "\\t";
                break;
            case '\r':
                line += "\\r";
                break;
            case '\\':
                line += "\\\\";
                break;
            default:
                line += c;
        }
    }
    return line;
}

std::string UnescapeLine(std::string_view line) {
    std::string text;
    for (size_t i = 0; i < line.size(); ++i) {
        if (line[i] != '\\' || i + 1 == line.size()) {
            text += line[i];
            continue;
        }
        char c = line[++i];
        text += c == 'n' ? '\n' : c == 't' ? '\t' : c == 'r' ? '\r' : c;
    }
    return text;
}

std::string LowerAscii(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
    }
    return lower;
}

}  // namespace qx
