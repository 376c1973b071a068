#include "translate/dictionary/quoted_lines.h"

#include "strings/characters.h"
#include "translate/dictionary/dictionary.h"

#include <mbctype.h>
#include <mbstring.h>

#include <cstdint>
#include <cstring>

namespace qx {

namespace {

// A longer line is read as several. The line reader puts its terminator behind a full buffer.
constexpr int kLineSize = 8192;
// Keeps its bytes from line to line and from file to file: behind a last line without a line feed
// stands what an earlier line left there.
constinit char g_line[kLineSize + 1] = "";

// The white space at a place is that of the runtime, which knows double-byte spaces.
bool IsSpace(const Characters& characters, const char* at) {
    if (*at >= 0) return *at == ' ' || (*at >= '\t' && *at <= '\r');
    auto byte = [at](int i) { return static_cast<unsigned>(static_cast<unsigned char>(at[i])); };
    return _ismbcspace(characters.SizeAt(at) == 2 ? byte(0) << 8 | byte(1) : byte(0)) != 0;
}

// Some bytes of the line buffer.
struct Span {
    const char* first;
    const char* end;
};

// The text of the line in the buffer, whose `size` bytes leave out the line feed; nothing when the
// line holds none. A comment, which begins with a semicolon, is one of the lines that do not begin
// with a quote.
//
// Trimming ends on the byte behind the line, normally the line feed. Where a last line has none, a
// stale byte stands there; unless that is a space, it is taken for the closing quote and the quote
// itself stays in the text.
bool FindQuotedText(int size, Span& text) {
    auto characters = Characters::OfRuntime();
    const char* behind = g_line + size;
    const char* first = g_line;
    while (IsSpace(characters, first)) first = characters.Next(first);
    const char* last = behind;
    while (last > first && IsSpace(characters, last)) last = characters.Previous(first, last);
    if (last <= first || first + 1 >= behind || *first != '"') return false;
    // The last byte goes whatever it is; nothing tests for the quote.
    if (last + 1 < behind && *last && characters.SizeAt(last) == 2) ++last;
    text = {first + 1, last};
    return true;
}

// The bytes that need a closer look, found eight at a time: nearly no text has one.
bool HoldsNulOrBackslash(const Span& span) {
    constexpr uint64_t kOnes = 0x0101010101010101, kHighBits = kOnes << 7;
    auto holdsZero = [](uint64_t bytes) { return (bytes - kOnes) & ~bytes & kHighBits; };
    uint64_t found = 0;
    const char* at = span.first;
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
void QuotedText::Assign(const char* bytes, size_t size) {
    text = CXString();
    __CXBuff<CXString, char*> buffer(text, static_cast<int>(size));
    memcpy(buffer.buffer, bytes, size);
    buffer.buffer[size] = 0;
}

void QuotedText::Unescape() {
    if (isEscaped) UnescapeText(text);
    isEscaped = false;
}

bool ReadQuotedLine(IXFile* file, QuotedText& text) {
    Span span;
    int size;
    do {
        size = file->ReadLine(g_line, kLineSize);
        if (!size) return false;
    } while (!FindQuotedText(size, span));
    size_t length = span.end - span.first;
    text.isEscaped = HoldsNulOrBackslash(span);
    text.Assign(span.first, text.isEscaped ? strnlen(span.first, length) : length);
    return true;
}

}  // namespace qx
