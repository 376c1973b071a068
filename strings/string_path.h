// CTString: the text as a file name.
#ifndef QXCORE_STRINGS_STRING_PATH_H
#define QXCORE_STRINGS_STRING_PATH_H

#include "strings/string_buffer.h"
#include "strings/text_of.h"

#include <qxcore/string.h>

namespace qx {

// What separates a directory part from a name, and a name from its extension.
template <class Ch>
inline constexpr Ch kNameDelims[] = {':', '\\', '/', 0};
template <class Ch>
inline constexpr Ch kExtDelims[] = {':', '\\', '/', '.', 0};

// Copies a part of a text with a terminator, unless only its size is asked for.
template <class Ch>
int CopyPart(Ch* buf, const Ch* from, const Ch* to) {
    if (buf) {
        memcpy(buf, from, (to - from) * sizeof(Ch));
        buf[to - from] = 0;
    }
    return static_cast<int>(to - from);
}

// The first backslash of a rooted path: after the drive, or after the name of a network server. -1
// for other paths.
template <class S>
int RootEnd(const S& path) {
    if (path.GetAt(1) == ':' && path.GetAt(2) == '\\') return 2;
    if (path.GetAt(0) == '\\' && path.GetAt(1) == '\\') return path.Find(L'\\', 2);
    return -1;
}

}  // namespace qx

template <class S, class Ch>
S& CTString<S, Ch>::AddDirDelim() {
    constexpr Ch kDelim[] = {'\\'};
    wchar_t last = GetAt(GetLength() - 1);
    if (last != '/' && last != '\\') ConcatCopy(kDelim, 1);
    return Self();
}

template <class S, class Ch>
S& CTString<S, Ch>::AddFileExtDelim() {
    constexpr Ch kDot[] = {'.'};
    if (GetAt(GetLength() - 1) != '.') ConcatCopy(kDot, 1);
    return Self();
}

template <class S, class Ch>
int CTString<S, Ch>::GetFilePath(Ch* buf) const {
    const Ch* delim = qx::TextOf<Ch>::FindLastAny(data, qx::kNameDelims<Ch>);
    if (!delim) return 0;
    return qx::CopyPart<Ch>(buf, data, *delim == ':' ? delim + 1 : delim);
}

template <class S, class Ch>
int CTString<S, Ch>::GetFileName(Ch* buf) const {
    const Ch* name = GetFileName();
    const Ch* ext = GetFileExt();
    return qx::CopyPart<Ch>(buf, name, ext ? ext - 1 : name + qx::TextOf<Ch>::Length(name));
}

template <class S, class Ch>
int CTString<S, Ch>::GetFileExt(Ch* buf) const {
    const Ch* ext = GetFileExt();
    return ext ? qx::CopyPart<Ch>(buf, ext, ext + qx::TextOf<Ch>::Length(ext)) : 0;
}

template <class S, class Ch>
const Ch* CTString<S, Ch>::GetFileName() const {
    const Ch* delim = qx::TextOf<Ch>::FindLastAny(data, qx::kNameDelims<Ch>);
    return delim ? delim + 1 : data;
}

template <class S, class Ch>
const Ch* CTString<S, Ch>::GetFileExt() const {
    const Ch* delim = qx::TextOf<Ch>::FindLastAny(data, qx::kExtDelims<Ch>);
    return delim && *delim == '.' ? delim + 1 : nullptr;
}

template <class S, class Ch>
S CTString<S, Ch>::FilePath() const {
    S path;
    GetFilePath(__CXBuff<S, Ch*>(path, GetFilePath(nullptr)).buffer);
    return path;
}

template <class S, class Ch>
S CTString<S, Ch>::FileName() const {
    return S(GetFileName());
}

template <class S, class Ch>
S CTString<S, Ch>::FileExt() const {
    return S(GetFileExt());
}

template <class S, class Ch>
void CTString<S, Ch>::ChangeFileExt(const Ch* ext) {
    ext = qx::TextOrEmpty(ext);
    if (*ext == '.') ++ext;
    size_t n = qx::TextOf<Ch>::Length(ext);
    S store;
    ext = Aside(ext, n, store);
    if (!GetFileExt()) {
        // For both, so that the dot does not come alone.
        ReallocBuffer(qx::RoomFor(GetSize() + 1, n));
        AddFileExtDelim();
    }
    const Ch* old = GetFileExt();
    ConcatCopyTo(old ? old - data : GetSize(), ext, n);
}

template <class S, class Ch>
int CTString<S, Ch>::ReducePathString(int maxLen) {
    constexpr Ch kEllipsis[] = {'.', '.', '.', '\\', 0};
    constexpr int kEllipsisLength = 4;
    int length = GetLength();
    if (maxLen >= length) return 1;
    int start = qx::RootEnd(Self());
    if (start < 0) return 0;
    int last = FindRev(L'\\');
    if (last <= start) return 1;
    int tail = length - last;
    int next = Find(L'\\', start + 1);
    if (next < last) start = next;  // the first directory stays
    if (tail + kEllipsisLength + 1 > maxLen) maxLen = tail + kEllipsisLength + 5;

    S path(Self());
    int p;
    do {
        p = path.Find(L'\\', start + 1);
        if (p < 0) break;
        path.Delete(start, p - start);
    } while (path.GetLength() + kEllipsisLength > maxLen && p < last);
    path.Insert(start + 1, kEllipsis);
    *this = path;
    return 1;
}

#endif
