// CTString: the operations that change the text.
#ifndef QXCORE_STRINGS_STRING_CHANGE_H
#define QXCORE_STRINGS_STRING_CHANGE_H

#include "strings/text_of.h"

#include <qxcore/string.h>

#include <algorithm>
#include <cassert>
#include <climits>
#include <cstdint>

namespace qx {

// A range of units.
struct UnitRange {
    int from;
    int to;
};

// The range of `count` characters from pos on, or before pos when count is negative, clamped to the
// text.
template <class S>
UnitRange RangeOf(const S& string, int pos, int count) {
    int64_t length = string.GetLength();
    int64_t start = pos < 0 || pos > length ? length : pos;
    int64_t end = start + count;
    int64_t a = std::max<int64_t>(std::min(start, end), 0);
    int64_t b = std::min(std::max(start, end), length);
    return {string.GetSize(static_cast<int>(a)), string.GetSize(static_cast<int>(b))};
}

// As the size of a buffer.
inline int Doubled(int size) {
    return size < INT_MAX / 2 ? size * 2 + 1 : INT_MAX;
}

}  // namespace qx

template <class S, class Ch>
S& CTString<S, Ch>::Insert(int pos, wchar_t ch) {
    return Insert(pos, qx::Spelled<Ch>(ch).text);
}

template <class S, class Ch>
S& CTString<S, Ch>::Insert(int pos, const Ch* s) {
    if (!s || !*s) return Self();
    S store;
    size_t n = qx::TextOf<Ch>::Length(s);
    s = Aside(s, n, store);
    size_t size = GetSize();
    size_t at = GetSize(pos);
    ReallocBuffer(size + n + 1);
    memmove(data + at + n, data + at, (size - at + 1) * sizeof(Ch));
    memcpy(data + at, s, n * sizeof(Ch));
    return Self();
}

template <class S, class Ch>
S& CTString<S, Ch>::Delete(int pos, int count) {
    qx::UnitRange range = qx::RangeOf(*this, pos, count);
    if (range.from == range.to) return Self();
    int size = GetSize();
    ReallocBuffer(static_cast<size_t>(size) + 1);
    memmove(data + range.from, data + range.to, (size - range.to + 1) * sizeof(Ch));
    return Self();
}

template <class S, class Ch>
S& CTString<S, Ch>::Replace(int pos, int count, const Ch* s) {
    qx::UnitRange range = qx::RangeOf(*this, pos, count);
    if (!s || !*s || range.from == range.to) return Self();
    S store;
    size_t n = qx::TextOf<Ch>::Length(s);
    s = Aside(s, n, store);
    ReplaceUnits(range.from, range.to, s, n);
    return Self();
}

// REQUIRES: s does not lie in the own text.
template <class S, class Ch>
void CTString<S, Ch>::ReplaceUnits(size_t from, size_t to, const Ch* s, size_t n) {
    assert(s < data || s > data + Header()->alloc);
    size_t size = GetSize();
    ReallocBuffer(std::max(size, size - (to - from) + n) + 1);
    memmove(data + from + n, data + to, (size - to + 1) * sizeof(Ch));
    memcpy(data + from, s, n * sizeof(Ch));
}

template <class S, class Ch>
int CTString<S, Ch>::Extract(int pos, int count, S& out) const {
    qx::UnitRange range = qx::RangeOf(*this, pos, count);
    int size = range.to - range.from;
    CTString source(*this);  // stays when `out` is this string
    __CXBuff<S, Ch*> locked(out, size);
    memcpy(locked.buffer, source.data + range.from, size * sizeof(Ch));
    locked.buffer[size] = 0;
    return size;
}

template <class S, class Ch>
int CTString<S, Ch>::Extract(int pos, int count) {
    return Extract(pos, count, Self());
}

// Room for the replacement is made before the search, so the text is separated even when nothing is
// found.
template <class S, class Ch>
int CTString<S, Ch>::FindReplace(const Ch* find, const Ch* replacement) {
    S findStore, replacementStore;
    find = qx::TextOrEmpty(find);
    find = Aside(find, qx::TextOf<Ch>::Length(find), findStore);
    replacement = qx::TextOrEmpty(replacement);
    size_t n = qx::TextOf<Ch>::Length(replacement);
    replacement = Aside(replacement, n, replacementStore);

    ReallocBuffer(GetSize() + n + 1);
    const Ch* found = *find ? qx::TextOf<Ch>::Find(data, find) : nullptr;
    if (!found) return 0;
    size_t at = found - data;
    ReplaceUnits(at, at + qx::TextOf<Ch>::Length(find), replacement, n);
    return 1;
}

template <class S, class Ch>
int CTString<S, Ch>::FindReplace(wchar_t find, wchar_t replacement) {
    return FindReplace(qx::SpelledInMemoryOrder<Ch>(find).text,
                       qx::SpelledInMemoryOrder<Ch>(replacement).text);
}

template <class S, class Ch>
int CTString<S, Ch>::FindReplace(const Ch* find, wchar_t replacement) {
    return FindReplace(find, qx::SpelledInMemoryOrder<Ch>(replacement).text);
}

template <class S, class Ch>
int CTString<S, Ch>::FindReplace(wchar_t find, const Ch* replacement) {
    return FindReplace(qx::SpelledInMemoryOrder<Ch>(find).text, replacement);
}

template <class S, class Ch>
void CTString<S, Ch>::TrimLeft() {
    if (data == __empty_text(Ch())) return;
    int size = GetSize();
    __CXBuff<S, Ch*> locked(Self(), size + 1);
    size_t space = qx::TextOf<Ch>::LeadingSpace(locked.buffer);
    memmove(locked.buffer, locked.buffer + space, (size - space + 1) * sizeof(Ch));
}

template <class S, class Ch>
void CTString<S, Ch>::TrimRight() {
    if (data == __empty_text(Ch())) return;
    int size = GetSize();
    __CXBuff<S, Ch*> locked(Self(), size + 1);
    size_t left = qx::TextOf<Ch>::TrimmedSize(locked.buffer);
    std::fill(locked.buffer + left, locked.buffer + size, Ch(0));
}

// The room is for characters that widen with their case.
template <class S, class Ch>
void CTString<S, Ch>::Upper() {
    if (data == __empty_text(Ch())) return;
    qx::TextOf<Ch>::Upper(__CXBuff<S, Ch*>(Self(), qx::Doubled(GetSize())).buffer);
}

template <class S, class Ch>
void CTString<S, Ch>::Lower() {
    if (data == __empty_text(Ch())) return;
    qx::TextOf<Ch>::Lower(__CXBuff<S, Ch*>(Self(), qx::Doubled(GetSize())).buffer);
}

// A text that fills the buffer, but for less than the largest character may need, may have been
// cut.
template <class S, class Ch>
int CTString<S, Ch>::Load(HINSTANCE module, unsigned id) {
    constexpr int kStep = 256;
    for (int size = kStep;; size += kStep) {
        S text;
        int loaded = qx::TextOf<Ch>::Load(module, id, __CXBuff<S, Ch*>(text, size).buffer, size);
        if (loaded <= 0) return 0;
        if (loaded < size - qx::TextOf<Ch>::LargestLoaded()) {
            *this = text;
            return 1;
        }
    }
}

#endif
