#include "translate/resources/string_table.h"

#include "translate/dictionary/code_page.h"
#include "strings/text_buffer.h"
#include "translate/resources/word_at.h"

#include <qxcore/dictionary.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr size_t kMaxEntry = 1024;  // a longer one stays as it is
constexpr size_t kMaxLength = 0xFFFF;
constexpr uint32_t kSlack = 16;  // zero bytes behind the block

// The new text of one entry of n characters, written unless out is null. Answers its new length: of
// a translation the bytes, also where they are fewer characters; the rest of the entry is zero
// then.
size_t TranslateWideEntry(const uint8_t* text, uint16_t* out, size_t n, const char* key) {
    char source[kMaxEntry + 1] = "";
    const char* target = nullptr;
    // A text that takes more bytes than it has characters stays as it is.
    if (n <= kMaxEntry &&
        WideCharToMultiByte(CP_ACP, 0, reinterpret_cast<const wchar_t*>(text), static_cast<int>(n),
                            source, static_cast<int>(n), nullptr, nullptr)) {
        target = TranslateInContext(source, key);
    }
    if (!target) {
        if (out) memcpy(out, text, n * sizeof *out);
        return n;
    }
    size_t length = WholeBytes(target, kMaxLength);
    auto wide = reinterpret_cast<wchar_t*>(out);
    if (out) Widen(target, static_cast<int>(length), wide, static_cast<int>(length), 0);
    return length;
}

// One pass over the block, which writes unless out is null. Answers the words of the new block, and
// in *any whether an entry held text. An empty entry is one zero word.
size_t PassEntries(const uint8_t* block, size_t words, uint16_t* out, const char* key, bool* any) {
    size_t total = 0;
    for (size_t at = 0; at < words;) {
        size_t claimed = WordAt(block + 2 * at++);
        size_t n = std::min(claimed, words - at);
        size_t length =
            n ? TranslateWideEntry(block + 2 * at, out ? out + total + 1 : nullptr, n, key) : 0;
        if (out) out[total] = static_cast<uint16_t>(length);
        total += length + 1;
        at += n;
        *any = *any || n;
    }
    return total;
}

}  // namespace

void* TranslateStringTable(const void* block, uint32_t size, const char* key, uint32_t* newSize) {
    auto source = static_cast<const uint8_t*>(block);
    size_t words = size / sizeof(uint16_t);
    bool any = false;
    size_t total = PassEntries(source, words, nullptr, key, &any);
    if (!any) return nullptr;
    uint32_t bytes = static_cast<uint32_t>(total * sizeof(uint16_t));
    auto result = static_cast<uint16_t*>(LocalAlloc(LPTR, bytes + kSlack));
    if (!result) return nullptr;
    PassEntries(source, words, result, key, &any);
    *newSize = bytes;
    return result;
}
