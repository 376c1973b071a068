// CTString: sizes, copies, comparison and search. Nothing here changes the string.
#ifndef QXCORE_STRINGS_STRING_ACCESS_H
#define QXCORE_STRINGS_STRING_ACCESS_H

#include "strings/text_of.h"

#include <qxcore/string.h>

#include <cassert>

template <class S, class Ch>
int CTString<S, Ch>::GetLength() const {
    return static_cast<int>(qx::TextOf<Ch>::Count(data));
}

template <class S, class Ch>
int CTString<S, Ch>::GetSize() const {
    return data ? static_cast<int>(qx::TextOf<Ch>::Length(data)) : 0;
}

template <class S, class Ch>
int CTString<S, Ch>::GetSize(int n) const {
    return static_cast<int>(GetData(n) - data);
}

template <class S, class Ch>
int CTString<S, Ch>::GetSize(int pos, int n) const {
    const Ch* from = GetData(pos);
    return static_cast<int>(qx::TextOf<Ch>::Skip(from, static_cast<size_t>(n)) - from);
}

// A negative n is a huge number of characters.
template <class S, class Ch>
const Ch* CTString<S, Ch>::GetData(int n) const {
    return qx::TextOf<Ch>::Skip(data, static_cast<size_t>(n));
}

template <class S, class Ch>
wchar_t CTString<S, Ch>::GetAt(int n) const {
    return qx::TextOf<Ch>::At(GetData(n));
}

template <class S, class Ch>
int CTString<S, Ch>::Copy(Ch* buf) const {
    assert(buf);
    int size = GetSize();
    memcpy(buf, data, (size + 1) * sizeof(Ch));
    return size;
}

template <class S, class Ch>
int CTString<S, Ch>::Copy(Ch* buf, int n) const {
    assert(buf);
    int size = GetSize(n);
    memcpy(buf, data, size * sizeof(Ch));
    buf[size] = 0;
    return size;
}

template <class S, class Ch>
int CTString<S, Ch>::CopyFit(Ch* buf, int size) const {
    if (size < 1) return 0;
    assert(buf);
    int room = size - 1;
    int own = GetSize();
    int fit = static_cast<int>(qx::TextOf<Ch>::Fit(data, own < room ? own : room));
    memcpy(buf, data, fit * sizeof(Ch));
    buf[fit] = 0;
    return fit;
}

template <class S, class Ch>
int CTString<S, Ch>::CompareI(const Ch* s) const {
    return qx::TextOf<Ch>::CompareI(data, qx::TextOrEmpty(s));
}

template <class S, class Ch>
int CTString<S, Ch>::CompareN(const Ch* s, int n) const {
    return qx::TextOf<Ch>::CompareN(data, qx::TextOrEmpty(s), static_cast<size_t>(n));
}

template <class S, class Ch>
int CTString<S, Ch>::CompareIN(const Ch* s, int n) const {
    return qx::TextOf<Ch>::CompareIN(data, qx::TextOrEmpty(s), static_cast<size_t>(n));
}

// The character index of a place in the text; -1 for none.
template <class S, class Ch>
int CTString<S, Ch>::IndexOf(const Ch* found) const {
    return found ? static_cast<int>(qx::TextOf<Ch>::Count(data, found - data)) : -1;
}

// Where a search begins; null in an empty string and beyond the end.
template <class S, class Ch>
const Ch* CTString<S, Ch>::SearchFrom(int start) const {
    if (!*data) return nullptr;
    if (start <= 0) return data;
    const Ch* from = GetData(start);
    return qx::TextOf<Ch>::At(from) || IndexOf(from) == start ? from : nullptr;
}

template <class S, class Ch>
int CTString<S, Ch>::Find(const Ch* s, int start) const {
    const Ch* from = SearchFrom(start);
    return from && s ? IndexOf(qx::TextOf<Ch>::Find(from, s)) : -1;
}

template <class S, class Ch>
int CTString<S, Ch>::Find(wchar_t ch, int start) const {
    const Ch* from = SearchFrom(start);
    return from ? static_cast<int>(qx::TextOf<Ch>::IndexOf(data, from, ch)) : -1;
}

template <class S, class Ch>
int CTString<S, Ch>::FindOnOf(const Ch* set, int start) const {
    const Ch* from = SearchFrom(start);
    return from && set ? IndexOf(qx::TextOf<Ch>::FindAny(from, set)) : -1;
}

template <class S, class Ch>
int CTString<S, Ch>::FindRev(wchar_t ch) const {
    return *data ? static_cast<int>(qx::TextOf<Ch>::LastIndexOf(data, ch)) : -1;
}

template <class S, class Ch>
int CTString<S, Ch>::FindRevOnOf(const Ch* set) const {
    if (!*data || !set) return -1;
    return IndexOf(qx::TextOf<Ch>::FindLastAny(data, set));
}

#endif
