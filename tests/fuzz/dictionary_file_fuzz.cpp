// Broken dictionary files: what the dictionary holds is what a plain reader in here finds, which
// knows nothing of blocks, words or shared texts. Half of the rounds run under a double-byte code
// page.
#include "fuzz/fuzz_driver.h"
#include "translate/low_memory.h"

#include <qxcore.h>

#include <mbctype.h>
#include <mbstring.h>

#include <algorithm>
#include <cstring>
#include <map>

namespace {

constexpr size_t kRoom = 1 << 16;
constexpr int kLineSize = 8192;

constexpr const char* kPieces[] = {"\"Open\"\r\n",
                                   "\"Auf\"\n",
                                   "\"\xE3\x82\xBD\"\n",
                                   "\xE3\x82",
                                   "\"DialogFontName\"\n",
                                   "\"DialogFontScript\"\n",
                                   "\"DialogFontSize\"\n",
                                   "\"0\"\n",
                                   "\"12\"\n",
                                   "\"DialogFont\"\n",
                                   "\"view.dll#1#130\xFD\xFDOpen\"\n",
                                   "\"\"\n",
                                   "\"\n",
                                   "\"",
                                   "\n",
                                   "\r\n",
                                   "; note\n",
                                   " \t;x\r\n",
                                   "\\n",
                                   "\\\\t",
                                   "\"a\\nb\\\"\n",
                                   "\\",
                                   " ",
                                   "\x81\x40",
                                   "\"\x83\x5C\"\n",
                                   "\x83",
                                   "text",
                                   "\"long text of several words\\r\\n\"\n"};

std::string RandomFile(Random& random) {
    std::string text;
    for (unsigned n = random.Below(60); n > 0; --n)
        text += kPieces[random.Below(std::size(kPieces))];
    if (random.Below(20) == 0)
        text.insert(random.Below(unsigned(text.size()) + 1), 8150 + random.Below(100), 'x');
    if (random.Below(2)) Mutate(text, random);
    return text;
}

// The whole reader, byte by byte.
class PlainReader {
public:
    explicit PlainReader(const std::string& file) : m_file(file) {
        std::string key, value;
        while (NextText(key)) {
            NextText(value);
            if (!TakeSetting(key, value))
                texts.emplace(HashOf(Unescaped(key)), Entry(Unescaped(key), Unescaped(value)));
            // A repeated value is read as it was entered.
            if (!IsSetting(key)) value = Unescaped(value);
        }
    }

    using Entry = std::pair<std::string, std::string>;
    std::map<unsigned, Entry> texts;
    std::string fontName;
    int fontSize = 0;
    int settings = 0;

private:
    using Byte = unsigned char;

    static unsigned HashOf(const std::string& text) {
        unsigned hash = 0;
        for (char c : text) hash = hash * 257 + static_cast<unsigned>(static_cast<signed char>(c));
        return hash;
    }
    static bool IsLead(const Byte* at) { return _ismbblead(*at) && at[1]; }
    static bool IsSpace(const Byte* at) {
        return _ismbcspace(IsLead(at) ? at[0] << 8 | at[1] : *at) != 0;
    }

    static std::string Unescaped(const std::string& text) {
        std::string out;
        bool pending = false;
        for (size_t i = 0; i < text.size(); ++i) {
            if (text[i] == '\\') {
                pending = true;
                continue;
            }
            const char* known = pending ? strchr("nrt", text[i]) : nullptr;
            if (known && *known) {
                out += *known == 'n' ? '\n' : *known == 'r' ? '\r' : '\t';
            } else {
                if (pending) out += '\\';
                out += text[i];
                if (IsLead(reinterpret_cast<const Byte*>(&text.c_str()[i]))) out += text[++i];
            }
            pending = false;
        }
        return out;
    }

    // Of the line reader: the line feed stays in front of the terminator, where there is room for
    // both.
    int NextLine() {
        int i = 0;
        while (i < kLineSize && m_at < m_file.size()) {
            s_line[i] = static_cast<Byte>(m_file[m_at++]);
            if (s_line[i] == '\n') break;
            ++i;
        }
        s_line[i < kLineSize - 1 ? i + 1 : i] = 0;
        return i;
    }

    bool NextText(std::string& text) {
        for (;;) {
            int size = NextLine();
            if (!size) return false;
            const Byte* first = s_line;
            while (IsSpace(first)) first = _mbsinc(first);
            const Byte* last = s_line + size;
            while (last > first && IsSpace(last)) last = _mbsdec(first, last);
            // A lone quote is too short, whatever stands behind it in the buffer.
            if (last <= first || first + 1 >= s_line + size || *first != '"') continue;
            if (last + 1 < s_line + size && IsLead(last)) ++last;
            text.assign(reinterpret_cast<const char*>(first + 1),
                        static_cast<size_t>(last - first - 1));
            text.resize(strlen(text.c_str()));
            return true;
        }
    }

    static bool IsSetting(const std::string& key) {
        return key == "DialogFontName" || key == "DialogFontScript" || key == "DialogFontSize";
    }
    bool TakeSetting(const std::string& key, const std::string& value) {
        if (!IsSetting(key)) return false;
        ++settings;
        if (key == "DialogFontName") fontName = value;
        if (key == "DialogFontSize") fontSize = atoi(value.c_str());
        return true;
    }

    // As the real one, it keeps its bytes from file to file.
    static inline Byte s_line[kLineSize + 1] = {};
    const std::string& m_file;
    size_t m_at = 0;
};

bool HoldsTexts(CWld& dictionary, const PlainReader& expected) {
    if (dictionary.m_Contexts.count != expected.texts.size()) return false;
    return std::all_of(expected.texts.begin(), expected.texts.end(), [&](auto& text) {
        CContext** found = dictionary.m_Contexts.FindHash(text.first);
        return found && text.second.first == static_cast<const char*>((*found)->source) &&
               text.second.second == static_cast<const char*>((*found)->target) &&
               (*found)->count == 1;
    });
}

bool HasFont(const CWld& dictionary, const PlainReader& expected) {
    if (expected.settings < 3) return dictionary.m_bDialogFont == 1 && dictionary.m_nFontSize == 8;
    if (expected.fontName.empty()) return dictionary.m_bDialogFont == 0;
    return dictionary.m_nFontSize == std::clamp(expected.fontSize, 8, 16);
}

bool Round(Random& random) {
    static LowMemory memory(kRoom);
    constexpr int kCodePages[] = {932, 1252, _MB_CP_ANSI};
    _setmbcp(kCodePages[random.Below(3)]);
    std::string file = RandomFile(random);
    if (!memory.Data() || file.size() > kRoom) return false;
    memcpy(memory.Data(), file.data(), file.size());
    CWld dictionary;
    strcpy(dictionary.m_szFontName, "none");
    dictionary.m_nFontSize = 8;
    bool read = false;
    try {
        // The geometry beside a memory path is the same memory, read as ini text.
        read = dictionary.Add(memory.Path(file.size()).c_str()) == 1;
    } catch (CXException& failure) {
        read = failure.GetCode() == QXERR_INI_LINE;
    }
    PlainReader expected(file);
    bool holds = read && HoldsTexts(dictionary, expected) && HasFont(dictionary, expected);
    DeleteObject(dictionary.m_hFont);
    return holds;
}

}  // namespace

int main(int argc, char** argv) {
    return fuzz::Main(argc, argv, 1500, Round);
}
