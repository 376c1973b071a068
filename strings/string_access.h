// CTString: sizes, copies, comparison and search. Nothing here changes the string.
#ifndef QXCORE_STRINGS_STRING_ACCESS_H
#define QXCORE_STRINGS_STRING_ACCESS_H

#include "strings/text_of.h"

#include <qxcore/string.h>

template <class S, class Ch>
int CTString<S, Ch>::GetLength() const {
    return static_cast<int>(TextOf<Ch>::Count(data, TextOf<Ch>::Length(data)));
}

template <class S, class Ch>
int CTString<S, Ch>::GetSize() const {
    return data ? static_cast<int>(TextOf<Ch>::Length(data)) : 0;
}

template <class S, class Ch>
int CTString<S, Ch>::GetSize(int n) const {
    return static_cast<int>(GetData(n) - data);
}

template <class S, class Ch>
int CTString<S, Ch>::GetSize(int pos, int n) const {
    const Ch* from = GetData(pos);
    return static_cast<int>(TextOf<Ch>::Skip(from, static_cast<size_t>(n)) - from);
}

// A negative n is a huge number of characters.
template <class S, class Ch>
const Ch* CTString<S, Ch>::GetData(int n) const {
    return TextOf<Ch>::Skip(data, static_cast<size_t>(n));
}

template <class S, class Ch>
wchar_t CTString<S, Ch>::GetAt(int n) const {
    return TextOf<Ch>::At(GetData(n));
}

template <class S, class Ch>
int CTString<S, Ch>::Copy(Ch* buf) const {
    int size = GetSize();
    memcpy(buf, data, (size + 1) * sizeof(Ch));
    return size;
}

template <class S, class Ch>
int CTString<S, Ch>::Copy(Ch* buf, int n) const {
    int size = GetSize(n);
    memcpy(buf, data, size * sizeof(Ch));
    buf[size] = 0;
    return size;
}

template <class S, class Ch>
int CTString<S, Ch>::CopyFit(Ch* buf, int size) const {
    if (size < 1) return 0;
    int room = size - 1;
    int own = GetSize();
    int fit = static_cast<int>(TextOf<Ch>::Fit(data, own < room ? own : room));
    memcpy(buf, data, fit * sizeof(Ch));
    buf[fit] = 0;
    return fit;
}

template <class S, class Ch>
int CTString<S, Ch>::CompareI(const Ch* s) const {
    return TextOf<Ch>::CompareI(data, TextOrEmpty(s));
}

template <class S, class Ch>
int CTString<S, Ch>::CompareN(const Ch* s, int n) const {
    return TextOf<Ch>::CompareN(data, TextOrEmpty(s), static_cast<size_t>(n));
}

template <class S, class Ch>
int CTString<S, Ch>::CompareIN(const Ch* s, int n) const {
    return TextOf<Ch>::CompareIN(data, TextOrEmpty(s), static_cast<size_t>(n));
}

// The character index of a place in the text; -1 for none.
template <class S, class Ch>
int CTString<S, Ch>::IndexOf(const Ch* found) const {
    return found ? static_cast<int>(TextOf<Ch>::Count(data, found - data)) : -1;
}

template <class S, class Ch>
int CTString<S, Ch>::Find(const Ch* s, int start) const {
    if (!*data || !s || start > GetLength()) return -1;
    return IndexOf(TextOf<Ch>::Find(GetData(start < 0 ? 0 : start), s));
}

// The character 0 is the terminator, which is found at the end.
template <class S, class Ch>
int CTString<S, Ch>::Find(wchar_t ch, int start) const {
    if (!*data || start > GetLength()) return -1;
    return ch ? Find(Spelled<Ch>(ch).text, start) : GetLength();
}

template <class S, class Ch>
int CTString<S, Ch>::FindOnOf(const Ch* set, int start) const {
    if (!*data || !set || start > GetLength()) return -1;
    return IndexOf(TextOf<Ch>::FindAny(GetData(start < 0 ? 0 : start), set));
}

template <class S, class Ch>
int CTString<S, Ch>::FindRev(wchar_t ch) const {
    if (!*data) return -1;
    return ch ? FindRevOnOf(Spelled<Ch>(ch).text) : GetLength();
}

template <class S, class Ch>
int CTString<S, Ch>::FindRevOnOf(const Ch* set) const {
    if (!*data || !set) return -1;
    return IndexOf(TextOf<Ch>::FindLastAny(data, set));
}

#endif
