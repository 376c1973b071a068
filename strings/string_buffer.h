// CTString: the shared text and its header.
#ifndef QXCORE_STRINGS_STRING_BUFFER_H
#define QXCORE_STRINGS_STRING_BUFFER_H

#include "strings/text_of.h"

#include <qxcore/exception.h>
#include <qxcore/string.h>

#include <algorithm>
#include <cassert>
#include <climits>
#include <new>

namespace qx {

// The capacity for n units behind the first `size` ones and a terminator.
inline size_t RoomFor(size_t size, size_t n) {
    if (n > INT_MAX) throw CXMemException();
    return size + n + 1;
}

}  // namespace qx

// The global new gives zero-filled memory. Even a text without capacity has a terminator.
template <class S, class Ch>
Ch* CTString<S, Ch>::NewText(size_t n) {
    if (n > INT_MAX) throw CXMemException();
    auto header = static_cast<tagXSTRINGHEADER*>(
        ::operator new(sizeof(tagXSTRINGHEADER) + (n ? n : 1) * sizeof(Ch)));
    *header = {1, 0, static_cast<int>(n)};
    return reinterpret_cast<Ch*>(header + 1);
}

template <class S, class Ch>
void CTString<S, Ch>::Release() {
    tagXSTRINGHEADER* header = Header();
    if (data == __empty_text(Ch())) return;
    Init();
    if (header->refs < 0) header->refs = 1;
    if (--header->refs == 0) ::operator delete(header);
}

template <class S, class Ch>
void CTString<S, Ch>::AllocBuffer(size_t n) {
    Release();
    data = NewText(n);
}

template <class S, class Ch>
void CTString<S, Ch>::ReallocBuffer(size_t n) {
    if (Header()->refs < 2 && n <= static_cast<size_t>(Header()->alloc)) return;
    Ch* text = NewText(n);
    memcpy(text, data, std::min<size_t>(GetSize(), n ? n - 1 : 0) * sizeof(Ch));
    Release();
    data = text;
    Header()->size = static_cast<int>(n);
}

template <class S, class Ch>
void CTString<S, Ch>::AssignCopy(const Ch* s, size_t n) {
    if (s == data) return;
    if (!s) n = 0;
    Ch* text = NewText(qx::RoomFor(0, n));
    memcpy(text, qx::TextOrEmpty(s), n * sizeof(Ch));
    Release();  // not before: s may lie in the old text
    data = text;
    Header()->size = static_cast<int>(n);
}

// The text s of n units, copied into `store` when it lies in the string's own text, which is about
// to change.
template <class S, class Ch>
const Ch* CTString<S, Ch>::Aside(const Ch* s, size_t n, S& store) const {
    if (s < data || s > data + Header()->alloc) return s;
    store.AssignCopy(s, n);
    return store.data;
}

template <class S, class Ch>
void CTString<S, Ch>::ConcatCopy(const Ch* s, size_t n) {
    EndWith(GetSize(), s, n);
}

template <class S, class Ch>
void CTString<S, Ch>::ConcatCopyTo(size_t at, const Ch* s, size_t n) {
    EndWith(std::min<size_t>(at, GetSize()), s, n);
}

// Puts n units behind the first `at` ones, which the text has, and ends it there.
template <class S, class Ch>
void CTString<S, Ch>::EndWith(size_t at, const Ch* s, size_t n) {
    assert(s || !n);
    size_t room = qx::RoomFor(at, n);
    S store;
    s = Aside(s, n, store);
    ReallocBuffer(room);
    memcpy(data + at, s, n * sizeof(Ch));
    data[at + n] = 0;
    Header()->size = static_cast<int>(room);
}

template <class S, class Ch>
Ch* CTString<S, Ch>::GetBuffer(int n) {
    ReallocBuffer(static_cast<size_t>(std::max(n, 0)) + 1);
    Header()->refs = -1;
    return data;
}

template <class S, class Ch>
void CTString<S, Ch>::CopyText(const Ch* s) {
    Init();
    if (*s) AssignCopy(s, qx::TextOf<Ch>::Length(s));
}

template <class S, class Ch>
void CTString<S, Ch>::AssignUnshared(const CTString& source) {
    if (source.data == __empty_text(Ch())) {
        Release();
    } else {
        AssignCopy(source.data, source.GetSize());
    }
}

template <class S, class Ch>
CTString<S, Ch>::CTString(const Ch* s) {
    CopyText(qx::TextOrEmpty(s));
}

template <class S, class Ch>
S CTString<S, Ch>::Join(const Ch* a, size_t aSize, const Ch* b, size_t bSize) {
    S result;
    result.AllocBuffer(aSize + bSize + 1);
    memcpy(result.data, a, aSize * sizeof(Ch));
    memcpy(result.data + aSize, b, bSize * sizeof(Ch));
    result.Header()->size = static_cast<int>(aSize + bSize + 1);
    return result;
}

template <class S, class Ch>
S CTString<S, Ch>::Concat(const Ch* a, const Ch* b) {
    a = qx::TextOrEmpty(a);
    b = qx::TextOrEmpty(b);
    return Join(a, qx::TextOf<Ch>::Length(a), b, qx::TextOf<Ch>::Length(b));
}

template <class S, class Ch>
S CTString<S, Ch>::Concat(const Ch* a, wchar_t b) {
    return Concat(a, qx::Spelled<Ch>(b).text);
}

template <class S, class Ch>
S CTString<S, Ch>::Concat(wchar_t a, const Ch* b) {
    return Concat(qx::Spelled<Ch>(a).text, b);
}

#endif
