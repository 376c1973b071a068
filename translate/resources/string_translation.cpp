#include "translate/resources/string_translation.h"

#include "strings/characters.h"
#include "translate/dictionary/code_page.h"
#include "translate/resources/string_walk.h"

namespace qx {

namespace {

constexpr size_t kMaxEntry = 1024;  // a longer one stays as it is
constexpr size_t kMaxLength = 0xFFFF;
constexpr uint32_t kSlack = 16;  // zero bytes behind the block

// An entry as the dictionary sees it.
class SourceEntry {
public:
    explicit SourceEntry(const StringEntry& entry) : m_entry(entry) {
        auto length = static_cast<int>(entry.length);
        auto wide = reinterpret_cast<const wchar_t*>(entry.text);
        m_isLong = entry.length > kMaxEntry;
        m_isNarrow = !m_isLong &&
                     WideCharToMultiByte(CP_ACP, 0, wide, length, m_text, length, nullptr, nullptr);
    }
    // The translation, or the source text itself, which goes with this object; null for an entry
    // that stays as it is.
    const char* Target(const Place& place) const {
        if (m_isNarrow) return TranslateAt(m_text, place);
        if (place.call) {
            InCodePage text(m_entry.text, m_entry.length);
            Tell(*place.call, text.text, nullptr, m_isLong ? QXLOOKUP_LONG : QXLOOKUP_WIDE);
        }
        return nullptr;
    }

private:
    const StringEntry& m_entry;
    char m_text[kMaxEntry + 1] = "";
    bool m_isLong;
    bool m_isNarrow;  // a text that takes more bytes than it has characters is not
};

// Writes the new text of one entry unless out is null. Answers its new length: of a translation the
// bytes, also where they are fewer characters; the rest of the entry is zero then.
size_t TranslateWideEntry(const StringEntry& entry, uint16_t* out, const Place& place) {
    SourceEntry source(entry);
    const char* target = source.Target(place);
    if (!target) {
        if (out) memcpy(out, entry.text, entry.length * sizeof *out);
        return entry.length;
    }
    size_t length = Characters::OfProcess().WholeBytes(target, kMaxLength);
    auto wide = reinterpret_cast<wchar_t*>(out);
    if (out) Widen(target, static_cast<int>(length), wide, static_cast<int>(length), 0);
    return length;
}

// What a pass over the block makes of it.
struct NewBlock {
    uint64_t words;
    bool hasText;
};

// One pass, which writes unless out is null.
NewBlock PassEntries(const void* block, uint32_t size, uint16_t* out, const Place& place) {
    NewBlock made = {};
    WalkStrings(block, size, [&](const StringEntry& entry) {
        uint16_t* at = out ? out + made.words : nullptr;
        size_t length = entry.length ? TranslateWideEntry(entry, at ? at + 1 : nullptr, place) : 0;
        if (at) *at = static_cast<uint16_t>(length);
        made.words += length + 1;
        made.hasText = made.hasText || entry.length;
    });
    return made;
}

}  // namespace

void* TranslateStringTable(const void* block, uint32_t size, const Place& place,
                           uint32_t* newSize) {
    NewBlock made = PassEntries(block, size, nullptr, place);
    uint64_t bytes = made.words * sizeof(uint16_t);
    if (!made.hasText || bytes > UINT32_MAX - kSlack) return nullptr;
    auto result = static_cast<uint16_t*>(LocalAlloc(LPTR, bytes + kSlack));
    if (!result) return nullptr;
    // What was told in the first pass is not told again.
    PassEntries(block, size, result, {place.hash});
    *newSize = static_cast<uint32_t>(bytes);
    return result;
}

}  // namespace qx
