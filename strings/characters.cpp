#include "strings/characters.h"

#include "strings/unit_scan.h"

#include <qxcore/platform.h>

#include <mbctype.h>

#include <atomic>
#include <cstring>

namespace qx {

namespace {

// The lead bytes of the code pages that were asked for. An entry never changes once it has its key,
// so that readers take no lock.
struct KnownCodePage {
    std::atomic<unsigned> key;
    LeadBytes leads;
};
constexpr unsigned kFree = 0, kBeingFilled = 1;
constinit KnownCodePage g_known[8] = {};

// The runtime and the system are asked apart: their tables need not agree.
enum Owner : unsigned { kRuntime, kProcess };

unsigned KeyOf(unsigned codePage, Owner owner) {
    return (codePage + 1) * 2 + owner;
}

unsigned CodePageOf(Owner owner) {
    return owner == kRuntime ? static_cast<unsigned>(_getmbcp()) : GetACP();
}

// Of the code page that the owner has in force at this moment.
LeadBytes AskForLeadBytes(Owner owner) {
    LeadBytes leads;
    for (unsigned c = 0x80; c <= 0xFF; ++c) {
        bool isLead = owner == kRuntime ? _ismbblead(c) : IsDBCSLeadByte(static_cast<BYTE>(c));
        leads.bits[c >> 6 & 1] |= uint64_t(isLead) << (c & 63);
    }
    return leads;
}

LeadBytes LeadBytesOf(unsigned codePage, Owner owner) {
    const unsigned key = KeyOf(codePage, owner);
    for (KnownCodePage& known : g_known) {
        unsigned found = known.key.load(std::memory_order_acquire);
        if (found == key) return known.leads;
        if (found != kFree) continue;
        LeadBytes leads = AskForLeadBytes(owner);
        if (CodePageOf(owner) != codePage) return leads;  // changed meanwhile
        if (known.key.compare_exchange_strong(found, kBeingFilled, std::memory_order_relaxed)) {
            known.leads = leads;
            known.key.store(key, std::memory_order_release);
        }
        return leads;
    }
    return AskForLeadBytes(owner);
}

bool IsContinuation(char c) {
    return (c & 0xC0) == 0x80;
}

// The bytes of the sequence that c begins in UTF-8; 1 also for what begins none.
size_t SequenceSize(char c) {
    auto byte = static_cast<unsigned char>(c);
    return byte < 0xC2 || byte > 0xF4 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
}

// The bytes before a sequence that goes on behind the first `size` bytes.
size_t WholeSequences(const char* text, size_t size) {
    for (size_t back = 1; back <= 3 && back <= size; ++back) {
        char c = text[size - back];
        if (!IsContinuation(c)) return SequenceSize(c) > back ? size - back : size;
    }
    return size;
}

}  // namespace

// A runtime that does not take UTF-8 for a multibyte code page numbers none in a UTF-8 process.
Characters Characters::OfRuntime() {
    unsigned codePage = CodePageOf(kRuntime);
    if (codePage == 0) return {LeadBytes(), GetACP() == CP_UTF8};
    return {LeadBytesOf(codePage, kRuntime), codePage == CP_UTF8};
}

Characters Characters::OfProcess() {
    unsigned codePage = CodePageOf(kProcess);
    return {LeadBytesOf(codePage, kProcess), codePage == CP_UTF8};
}

// Whether each of the first bytes is a character.
bool Characters::IsPlain(const char* text, size_t size) const {
    return !m_hasDoubleByte || ScanIsAscii(text, size);
}

const char* Characters::Skip(const char* text, size_t n) const {
    size_t size = ScanLength(text, n);
    if (IsPlain(text, size)) return text + size;
    for (size_t bytes; n && (bytes = WholeSizeAt(text)) != 0; text += bytes) --n;
    return text;
}

size_t Characters::Count(const char* text, size_t size) const {
    if (IsPlain(text, size)) return size;
    size_t count = 0;
    const char* end = text + size;
    for (size_t bytes; text < end && (bytes = WholeSizeAt(text)) != 0; text += bytes) ++count;
    return count;
}

const char* Characters::Find(const char* text, char c) const {
    assert(c && !Leads(c));
    const char* found = ScanForUnit(text, c);
    if (!found || IsPlain(text, static_cast<size_t>(found - text))) return found;
    for (size_t bytes; *text != c && (bytes = WholeSizeAt(text)) != 0;) text += bytes;
    return *text == c ? text : nullptr;
}

const char* Characters::FindLast(const char* text, char c) const {
    assert(c && !Leads(c));
    const char set[] = {c, 0};
    return FindLastAny(text, set);
}

// The set has to be plain too: a double-byte character of it must not match by one of its bytes.
const char* Characters::FindAny(const char* text, const char* set) const {
    if (IsPlain(set, ScanLength(set)) && IsPlain(text, ScanLength(text)))
        return ScanForAny(text, set);
    for (size_t bytes; (bytes = WholeSizeAt(text)) != 0; text += bytes) {
        if (IsIn(set, text)) return text;
    }
    return nullptr;
}

const char* Characters::FindLastAny(const char* text, const char* set) const {
    size_t size = ScanLength(text);
    if (IsPlain(set, ScanLength(set)) && IsPlain(text, size))
        return ScanBackForAny(text, text + size, set);
    const char* last = nullptr;
    for (size_t bytes; (bytes = WholeSizeAt(text)) != 0; text += bytes) {
        if (IsIn(set, text)) last = text;
    }
    return last;
}

const char* Characters::FindText(const char* text, const char* what) const {
    if (!*what) return text;
    while (const char* found = ScanForText(text, what)) {
        if (IsPlain(text, static_cast<size_t>(found - text))) {
            text = found;
        } else {
            for (size_t bytes; text < found && (bytes = WholeSizeAt(text)) != 0;) text += bytes;
        }
        if (WholeSizeAt(text) == 0) return nullptr;
        if (text == found) return found;
    }
    return nullptr;
}

bool Characters::IsIn(const char* set, const char* at) const {
    const size_t size = WholeSizeAt(at);
    for (size_t bytes; size && (bytes = WholeSizeAt(set)) != 0; set += bytes) {
        if (bytes == size && memcmp(set, at, size) == 0) return true;
    }
    return false;
}

size_t Characters::SequenceAt(const char* at) {
    assert(*at);
    size_t size = SequenceSize(*at);
    for (size_t i = 1; i < size; ++i) {
        if (!IsContinuation(at[i])) return 1;
    }
    return size;
}

// The bytes, at most `limit`, before the first character that ends behind them.
size_t Characters::WholePairs(const char* text, size_t limit) const {
    const char* at = text;
    for (const char* end = text + limit; at < end && *at;) {
        size_t bytes = SizeAt(at);
        if (bytes > static_cast<size_t>(end - at)) break;
        at += bytes;
    }
    return static_cast<size_t>(at - text);
}

size_t Characters::WholeBytes(const char* text, size_t limit) const {
    size_t size = ScanLength(text, limit);
    if (size < limit) return size;
    if (m_isUtf8) return IsContinuation(text[size]) ? WholeSequences(text, size) : size;
    return IsPlain(text, size) ? size : WholePairs(text, size);
}

size_t Characters::CopyWhole(char* buffer, size_t size, const char* text) const {
    assert(size > 0);
    size_t length = WholeBytes(text, size - 1);
    memmove(buffer, text, length);
    buffer[length] = 0;
    return length;
}

void Characters::EndAtWholeCharacter(char* buffer, size_t size) const {
    assert(size > 0);
    buffer[size - 1] = 0;
    size_t length = ScanLength(buffer);
    if (length < size - 1) return;
    buffer[m_isUtf8 ? WholeSequences(buffer, length) : WithoutHalf(buffer, length)] = 0;
}

}  // namespace qx
