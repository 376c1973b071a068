// CXString: narrow text in the runtime's multibyte code page, copied on write. CXStringW, its wide
// twin, is in wide_string.h; both are told once here, in CTString.
//
// Positions and counts are characters, sizes are units: bytes in CXString, where a double-byte
// character has two, and 16-bit units in CXStringW, where every unit is a character. Bad positions
// are clamped, never an error. A null text stands for an empty one. Whatever needs memory may throw
// CXMemException; the string then stays valid.
//
// Threading: copies share their text and count plainly, so a string and all its copies belong to
// one thread. Hand another thread a string made from the text, not a copy.
#ifndef QXCORE_STRING_H
#define QXCORE_STRING_H

#include <qxcore/export.h>
#include <qxcore/platform.h>

// Stands directly before the first character of every text.
struct tagXSTRINGHEADER {
    int refs;  // strings that share the text; -1 while it is locked by GetBuffer, and in the shared
               // empty text
    int size;  // loosely kept and never read; the length is where the terminator is
    int alloc;  // capacity in units, the terminator included
};

// The text of all empty strings of one class, known by its address.
template <class Ch>
struct tagXSTRINGEMPTY {
    tagXSTRINGHEADER header;
    Ch text[2];
};
extern QXCORE_API tagXSTRINGEMPTY<char> __xstring_empty;
extern QXCORE_API tagXSTRINGEMPTY<wchar_t> __xstringw_empty;
inline char* __empty_text(char) {
    return __xstring_empty.text;
}
inline wchar_t* __empty_text(wchar_t) {
    return __xstringw_empty.text;
}

// The common shape of CXString and CXStringW: S is the class itself, Ch its unit.
template <class S, class Ch>
class CTString {
public:
    CTString() { Init(); }
    QXCORE_API CTString(const Ch* s);
    // Shares the text, or copies one that is locked.
    CTString(const CTString& source) : data(source.data) {
        if (Header()->refs > 0) {
            ++Header()->refs;
        } else {
            CopyText(source.data);
        }
    }
    // Assigning a string that shares with no other to itself empties it.
    CTString& operator=(const CTString& source) {
        if (source.Header()->refs < 1) {
            AssignUnshared(source);
        } else if (data != source.data) {
            ++source.Header()->refs;
            Release();
            data = source.data;
        } else if (Header()->refs == 1) {
            Release();
        }
        return *this;
    }
    virtual ~CTString() {
        if (Header()->refs > 1) {
            --Header()->refs;
        } else {
            Release();
        }
    }

    // Characters. The text is scanned at each call.
    QXCORE_API int GetLength() const;
    // Units of the whole text; of its first n characters; of n characters from pos on. A negative n
    // takes all.
    QXCORE_API int GetSize() const;
    QXCORE_API int GetSize(int n) const;
    QXCORE_API int GetSize(int pos, int n) const;
    // Points to character n, or to the terminator when the text is shorter.
    QXCORE_API const Ch* GetData(int n = 0) const;
    // Character n, a double-byte one as lead * 256 + trail; 0 at and beyond the end.
    QXCORE_API wchar_t GetAt(int n) const;
    operator const Ch*() const { return data; }

    // Copy the text, or its first n characters, with a terminator. The result is the units without
    // the terminator. REQUIRES: buf has room for all of that.
    QXCORE_API int Copy(Ch* buf) const;
    QXCORE_API int Copy(Ch* buf, int n) const;
    // Copies the whole characters that fit into `size` units with the terminator; with size 0
    // writes nothing.
    QXCORE_API int CopyFit(Ch* buf, int size) const;

    // The results of the runtime's comparisons; I disregards case, N compares n characters at most.
    QXCORE_API int CompareI(const Ch* s) const;
    QXCORE_API int CompareN(const Ch* s, int n) const;
    QXCORE_API int CompareIN(const Ch* s, int n) const;

    // The character index of what was found, or -1. Nothing is found in an empty string, not even
    // an empty text.
    QXCORE_API int Find(const Ch* s, int start = 0) const;
    QXCORE_API int Find(wchar_t ch, int start = 0) const;
    QXCORE_API int FindOnOf(const Ch* set,
                            int start = 0) const;  // the first character that is in the set
    QXCORE_API int FindRev(wchar_t ch) const;
    QXCORE_API int FindRevOnOf(const Ch* set) const;  // the last character that is in the set

    // pos beyond the end, or negative, appends. A character 0 or an empty text changes nothing.
    QXCORE_API S& Insert(int pos, wchar_t ch);
    QXCORE_API S& Insert(int pos, const Ch* s);
    // A range is `count` characters after pos, or before it when count is negative. A negative pos
    // means the end.
    QXCORE_API S& Delete(int pos, int count);
    // Neither deletes nor inserts: with an empty range or an empty text nothing changes.
    QXCORE_API S& Replace(int pos, int count, const Ch* s);
    // Puts the range into `out`, or makes it the whole text. The result is its size in units.
    QXCORE_API int Extract(int pos, int count, S& out) const;
    QXCORE_API int Extract(int pos, int count);

    // Replaces the first occurrence: 1, or 0 when there is none. An empty replacement removes what
    // was found. A double-byte character given as wchar_t stands for its bytes low byte first, so
    // it does not match itself.
    QXCORE_API int FindReplace(const Ch* find, const Ch* replacement);
    QXCORE_API int FindReplace(wchar_t find, wchar_t replacement);
    QXCORE_API int FindReplace(const Ch* find, wchar_t replacement);
    QXCORE_API int FindReplace(wchar_t find, const Ch* replacement);

    // White space is what the runtime says of a single byte; in CXStringW of the low byte of each
    // unit, so that U+0120 is trimmed and U+3000 is not.
    QXCORE_API void TrimLeft();
    QXCORE_API void TrimRight();
    QXCORE_API void Upper();
    QXCORE_API void Lower();
    // A string resource: 1, or 0 when it is missing or empty; the text then stays.
    QXCORE_API int Load(HINSTANCE module, unsigned id);

    // A writable text of the string's own with room for n units and the terminator. The string is
    // locked until ReleaseBuffer: copies made meanwhile take a copy of the text. A shared text
    // longer than n is cut.
    QXCORE_API Ch* GetBuffer(int n);
    // Ends it. The length is where the terminator is, whatever n says.
    void ReleaseBuffer(int n = -1) {
        (void)n;
        if (Header()->refs < 0 && data != __empty_text(Ch())) Header()->refs = 1;
    }

    // Do nothing.
    void FreeExtra() {}
    void CharToOemA() {}
    void OemToCharA() {}

    // The text as a file name: ':', '\' and '/' end a directory part, the last '.' after them
    // starts the extension. There are no URLs here; the last '/' wins.

    // Append '\' unless the text ends with '\' or '/'; append '.' unless it ends with '.'.
    QXCORE_API S& AddDirDelim();
    QXCORE_API S& AddFileExtDelim();
    // Copy a part with its terminator and answer its units; a null buf asks for them. A missing
    // part answers 0 and leaves buf alone, so ask first. The directory keeps a drive's ':' and
    // loses its last slash.
    QXCORE_API int GetFilePath(Ch* buf) const;
    QXCORE_API int GetFileName(Ch* buf) const;  // without the extension, unlike the other two forms
    QXCORE_API int GetFileExt(Ch* buf) const;   // without the dot
    // Point into the text: the name with its extension; the extension, or null when there is no
    // dot.
    QXCORE_API const Ch* GetFileName() const;
    QXCORE_API const Ch* GetFileExt() const;
    QXCORE_API S FilePath() const;
    QXCORE_API S FileName() const;
    QXCORE_API S FileExt() const;
    // Sets or replaces the extension, given with or without its dot. An empty one leaves the dot.
    QXCORE_API void ChangeFileExt(const Ch* ext);
    // Replaces middle directories of "X:\..." or "\\server\..." by "...\" for display. 1 when
    // handled, 0 for other paths. maxLen is a goal in characters: the file name stays, and the
    // first directory where others follow.
    QXCORE_API int ReducePathString(int maxLen);

    // printf with the runtime's own engine. Always the whole text.
    QXCORE_API void Format(const Ch* format, ...);

    friend S operator+(const S& a, const S& b) { return Concat(a.data, b.data); }
    friend S operator+(const S& a, const Ch* b) { return Concat(a.data, b); }
    friend S operator+(const Ch* a, const S& b) { return Concat(a, b.data); }
    friend S operator+(const S& a, wchar_t b) { return Concat(a.data, b); }
    friend S operator+(wchar_t a, const S& b) { return Concat(a, b.data); }

protected:
    Ch* data;  // the first character; never null

    tagXSTRINGHEADER* Header() const { return reinterpret_cast<tagXSTRINGHEADER*>(data) - 1; }

    void Init() { data = __empty_text(Ch()); }
    // Gives the text up, unlocking it first, and makes the string empty.
    QXCORE_API void Release();
    // A zero-filled text of n units in place of the old one.
    QXCORE_API void AllocBuffer(size_t n);
    // Before every write: separates a shared text, and makes room for n units with the terminator.
    QXCORE_API void ReallocBuffer(size_t n);
    QXCORE_API void AssignCopy(const Ch* s, size_t n);
    QXCORE_API void ConcatCopy(const Ch* s, size_t n);
    // Puts n units at unit `at` and ends the text there.
    QXCORE_API void ConcatCopyTo(size_t at, const Ch* s, size_t n);
    int GetAllocSize() const { return Header()->alloc; }
    // The units that Format sets aside: exact or generous for the directives it knows. It takes
    // nothing for %E and %I64d, so what follows them is measured by the wrong arguments.
    QXCORE_API int FormatV(const Ch* format, char* args);

private:
    QXCORE_API void CopyText(const Ch* s);
    QXCORE_API void AssignUnshared(const CTString& source);
    QXCORE_API static S Concat(const Ch* a, const Ch* b);
    QXCORE_API static S Concat(const Ch* a, wchar_t b);
    QXCORE_API static S Concat(wchar_t a, const Ch* b);
    static S Join(const Ch* a, size_t aSize, const Ch* b, size_t bSize);
    static Ch* NewText(size_t n);
    void EndWith(size_t at, const Ch* s, size_t n);
    const Ch* Aside(const Ch* s, size_t n, S& store) const;
    const Ch* SearchFrom(int start) const;
    int IndexOf(const Ch* found) const;
    void ReplaceUnits(size_t from, size_t to, const Ch* s, size_t n);
    void FormatLarge(int size, const Ch* format, char* args);
    S& Self() { return static_cast<S&>(*this); }
};

class CXString : public CTString<CXString, char> {
public:
    CXString() = default;
    CXString(const char* s) : CTString(s) {}
    // Converts in the system's ANSI code page.
    CXString(const wchar_t* s) { Convert(s); }
    CXString(const CXString&) = default;
    CXString& operator=(const CXString&) = default;
    QXCORE_API CXString& operator=(const char* s);
    CXString& operator=(const wchar_t* s) {
        Convert(s);
        return *this;
    }

    // The result of the runtime's comparison.
    QXCORE_API int Compare(const char* s) const;

private:
    QXCORE_API void Convert(const wchar_t* s);
};

// Keeps a string locked for a scope, so that an exception cannot leave it so: __CXBuff<CXString,
// char*>.
template <class S, class P>
class __CXBuff {
public:
    __CXBuff(S& string, int n) : buffer(string.GetBuffer(n)), string(string) {}
    __CXBuff(const __CXBuff&) = delete;
    __CXBuff& operator=(const __CXBuff&) = delete;
    virtual ~__CXBuff() { string.ReleaseBuffer(-1); }

    P buffer;
    S& string;
};

#endif
