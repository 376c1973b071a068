#include "translate/dictionary/dictionary_file.h"

#include "translate/dictionary/dictionary.h"

#include <qxcore/exception.h>
#include <qxcore/reference.h>

#include <mbctype.h>
#include <mbstring.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

using Byte = unsigned char;

// A longer line is read as several. The line reader puts its terminator behind a full buffer.
constexpr int kLineSize = 8192;
// Keeps its bytes from line to line and from file to file: behind a last line without a line feed
// stands what an earlier line left there.
constinit Byte g_line[kLineSize + 1] = {};

// No byte below it leads a double-byte character, in any code page.
constexpr Byte kFirstLead = 0x80;

bool IsDoubleByte(const Byte* at) {
    return *at >= kFirstLead && _ismbblead(*at) && at[1];
}

bool IsSpace(const Byte* at) {
    if (*at < kFirstLead) return *at == ' ' || (*at >= '\t' && *at <= '\r');
    return _ismbcspace(IsDoubleByte(at) ? at[0] << 8 | at[1] : at[0]) != 0;
}

// The character before `at`, which is behind `first`.
const Byte* StepBack(const Byte* first, const Byte* at) {
    bool single = at - first < 2 || at[-2] < kFirstLead;
    return single ? at - 1 : _mbsdec(first, at);
}

// Some bytes of the line buffer.
struct Span {
    const Byte* first;
    const Byte* end;
};

// The text of the line in the buffer, whose `size` bytes leave out the line feed; nothing when the
// line holds none. A comment, which begins with a semicolon, is one of the lines that do not begin
// with a quote.
//
// Trimming ends on the byte behind the line, normally the line feed. Where a last line has none, a
// stale byte stands there; unless that is a space, it is taken for the closing quote and the quote
// itself stays in the text.
bool FindQuotedText(int size, Span& text) {
    const Byte* behind = g_line + size;
    const Byte* first = g_line;
    while (IsSpace(first)) first += IsDoubleByte(first) ? 2 : 1;
    const Byte* last = behind;
    while (last > first && IsSpace(last)) last = StepBack(first, last);
    if (last <= first || first + 1 >= behind || *first != '"') return false;
    // The last byte goes whatever it is; nothing tests for the quote.
    if (last + 1 < behind && IsDoubleByte(last)) ++last;
    text = {first + 1, last};
    return true;
}

// The bytes that need a closer look, found eight at a time: nearly no text has one.
bool HoldsNulOrBackslash(const Span& span) {
    constexpr uint64_t kOnes = 0x0101010101010101, kHighBits = kOnes << 7;
    auto holdsZero = [](uint64_t bytes) { return (bytes - kOnes) & ~bytes & kHighBits; };
    uint64_t found = 0;
    const Byte* at = span.first;
    for (; span.end - at >= 8; at += 8) {
        uint64_t bytes;
        memcpy(&bytes, at, sizeof bytes);
        found |= holdsZero(bytes) | holdsZero(bytes ^ kOnes * '\\');
    }
    for (; at < span.end; ++at) found |= !*at || *at == '\\';
    return found != 0;
}

}  // namespace

// The old text goes first: an entry shares it, so its memory cannot be used again.
void FileText::Assign(const char* bytes, size_t size) {
    text = CXString();
    __CXBuff<CXString, char*> buffer(text, static_cast<int>(size));
    memcpy(buffer.buffer, bytes, size);
    buffer.buffer[size] = 0;
}

void FileText::Unescape() {
    if (escaped) UnescapeText(text);
    escaped = false;
}

namespace {

// The dialog font as the settings of one file give it.
class FontSettings {
public:
    // False when the key is no setting.
    bool Take(const char* key, const CXString& value) {
        constexpr char kPrefix[] = "DialogFont";
        if (*key != *kPrefix || strncmp(key, kPrefix, sizeof kPrefix - 1)) return false;
        const char* setting = key + sizeof kPrefix - 1;
        if (!strcmp(setting, "Name")) {
            value.CopyFit(m_name, sizeof m_name);
        } else if (!strcmp(setting, "Script")) {
            m_script = atoi(value);
        } else if (!strcmp(setting, "Size")) {
            m_size = atoi(value);
        } else {
            return false;
        }
        ++m_count;
        return true;
    }

    // Only a file with three settings changes the font. They are counted, not told apart: one key
    // written three times is enough.
    void Apply(CWld& dictionary) const {
        if (m_count >= 3) dictionary.SetDialogFont(m_script, m_size, m_name);
    }

private:
    char m_name[512] = "";
    int m_script = 0;
    int m_size = 0;
    int m_count = 0;
};

// The first translation of a text stands, also an empty one. The entry shares the texts just read.
void AddText(CWld& dictionary, FileText& source, FileText& target) {
    source.Unescape();
    target.Unescape();
    unsigned hash = QXHashText(source.text).hash;
    if (dictionary.m_Contexts.FindHash(hash)) return;
    auto context = std::make_unique<CContext>(nullptr, nullptr);
    context->source = source.text;
    context->target = target.text;
    if (dictionary.m_Contexts.SetAtHash(hash, source.text, context.get())) context.release();
}

}  // namespace

int ReadQuotedLine(IXFile* file, FileText& text) {
    Span span;
    int size;
    do {
        size = file->ReadLine(reinterpret_cast<char*>(g_line), kLineSize);
        if (!size) return 0;
    } while (!FindQuotedText(size, span));
    auto bytes = reinterpret_cast<const char*>(span.first);
    size_t length = span.end - span.first;
    text.escaped = HoldsNulOrBackslash(span);
    text.Assign(bytes, text.escaped ? strnlen(bytes, length) : length);
    return 1;
}

void ReadWldFile(CWld& dictionary, const char* path) {
    qx::Reference<IXFile> file(Fio_Open(path, 0));
    if (!file) throw CXMemException();
    FileText key, value;
    FontSettings font;
    while (ReadQuotedLine(file.Get(), key)) {
        // A key without a value gets the value before it.
        ReadQuotedLine(file.Get(), value);
        if (!font.Take(key.text, value.text)) AddText(dictionary, key, value);
    }
    font.Apply(dictionary);
}
