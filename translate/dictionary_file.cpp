#include "translate/dictionary_file.h"

#include "core/reference.h"
#include "translate/dictionary.h"

#include <qxcore/exception.h>

#include <mbctype.h>
#include <mbstring.h>

#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

using Byte = unsigned char;

// A longer line is read as several. The line reader puts its terminator behind a full buffer.
constexpr int kLineSize = 8192;
// Keeps its bytes from line to line and from file to file: behind a last line without a line feed stands what an
// earlier line left there.
constinit Byte g_line[kLineSize + 1] = {};

bool IsDoubleByte(const Byte* at) {
    return _ismbblead(*at) && at[1];
}

bool IsSpace(const Byte* at) {
    if (*at < 0x80) return *at == ' ' || (*at >= '\t' && *at <= '\r');
    return _ismbcspace(IsDoubleByte(at) ? at[0] << 8 | at[1] : at[0]) != 0;
}

struct Span {
    const Byte* first;
    const Byte* end;
};

// The text of the line in the buffer, whose `size` bytes leave out the line feed; nothing when the line holds none. A
// comment, which begins with a semicolon, is one of the lines that do not begin with a quote.
//
// Trimming ends on the byte behind the line, normally the line feed. Where a last line has none, a stale byte stands
// there; unless that is a space, it is taken for the closing quote and the quote itself stays in the text.
bool FindQuotedText(int size, Span& text) {
    const Byte* behind = g_line + size;
    const Byte* first = g_line;
    while (IsSpace(first)) first += IsDoubleByte(first) ? 2 : 1;
    const Byte* last = behind;
    while (last > first && IsSpace(last)) last = _mbsdec(first, last);
    if (last <= first || first + 1 >= behind || *first != '"') return false;
    // The last byte goes whatever it is; nothing tests for the quote.
    if (last + 1 < behind && IsDoubleByte(last)) ++last;
    text = {first + 1, last};
    return true;
}

// Keeps the string's memory where it can, so that reading a line allocates nothing.
void Assign(CXString& text, const Span& span) {
    size_t size = strnlen(reinterpret_cast<const char*>(span.first), span.end - span.first);
    __CXBuff<CXString, char*> buffer(text, static_cast<int>(size));
    memcpy(buffer.buffer, span.first, size);
    buffer.buffer[size] = 0;
}

// The dialog font as the settings of one file give it.
class FontSettings {
public:
    // False when the key is no setting.
    bool Take(const CXString& key, const CXString& value) {
        if (key.Compare("DialogFontName") == 0) {
            value.CopyFit(m_name, sizeof m_name);
        } else if (key.Compare("DialogFontScript") == 0) {
            m_script = atoi(value);
        } else if (key.Compare("DialogFontSize") == 0) {
            m_size = atoi(value);
        } else {
            return false;
        }
        ++m_count;
        return true;
    }

    // Only a file with three settings changes the font. They are counted, not told apart: one key written three
    // times is enough.
    void Apply(CWld& dictionary) const {
        if (m_count >= 3) dictionary.SetDialogFont(m_script, m_size, m_name);
    }

private:
    char m_name[512] = "";
    int m_script = 0;
    int m_size = 0;
    int m_count = 0;
};

// The first translation of a text stands, also an empty one.
void AddText(CWld& dictionary, CXString& source, CXString& target) {
    UnescapeText(source);
    UnescapeText(target);
    if (dictionary.m_Contexts.Find(source)) return;
    auto context = std::make_unique<CContext>(source, target);
    if (dictionary.m_Contexts.SetAt(source, context.get())) context.release();
}

}  // namespace

int ReadQuotedLine(IXFile* file, CXString& text) {
    Span span;
    int size;
    do {
        size = file->ReadLine(reinterpret_cast<char*>(g_line), kLineSize);
        if (!size) return 0;
    } while (!FindQuotedText(size, span));
    Assign(text, span);
    return 1;
}

void ReadWldFile(CWld& dictionary, const char* path) {
    Reference<IXFile> file(Fio_Open(path, 0));
    if (!file) throw CXMemException();
    CXString key, value;
    FontSettings font;
    while (ReadQuotedLine(file.Get(), key)) {
        // A key without a value gets the value before it.
        ReadQuotedLine(file.Get(), value);
        if (!font.Take(key, value)) AddText(dictionary, key, value);
    }
    font.Apply(dictionary);
}
