// CXString: narrow text in the runtime's multibyte code page, copied on write. CXStringW, its wide
// twin, is in wide_string.h; both are told once here, in CTString.
//
//     CXString name("letters");
//     name.ChangeFileExt("txt");                 // letters.txt
//     CXString shown = "[" + name + "]";         // copies and results are cheap: they share
//     if (shown.Find(L'.') >= 0) Show(shown);    // a string is a const char* where one is wanted
//     shown.Format("%d of %d", 3, 10);
//
// Positions and counts are characters, sizes are units: bytes in CXString, where a double-byte
// character has two, and 16-bit units in CXStringW, where every unit is a character. Which bytes
// belong together is what the runtime's code page says at the moment of the call (_getmbcp); a
// program that changes it with _setmbcp changes what the positions in its strings mean. In UTF-8
// positions are bytes. Half a double-byte character at the end of a text is no character: it counts
// in sizes of the whole text only, and no search finds it.
//
// Bad positions are clamped, never an error. A null text stands for an empty one. An argument may
// lie in the string's own text.
//
// Errors: whatever needs memory may throw CXMemException; the string then stays valid, with its old
// text or an empty one. Nothing else fails.
//
// Ownership: a string owns its text together with the copies that share it, and frees it with the
// global delete, so a string may be destroyed by another module than the one that made it. Pointers
// into the text (GetData, GetFileName, the conversion to const char*) are good until the string is
// changed or destroyed.
//
// Threading: copies share their text and count plainly, so a string and all its copies belong to
// one thread. Hand another thread a string made from the text, not a copy.
#ifndef QXCORE_STRING_H
#define QXCORE_STRING_H

#include <qxcore/export.h>
#include <qxcore/platform.h>

// Stands directly before the first character of every text.
struct tagXSTRINGHEADER {
    // The strings that share the text. -1 while it is locked by GetBuffer, and in the shared empty
    // text.
    int refs;
    // Loosely kept and never read; the length is where the terminator is.
    int size;
    // The capacity in units, the terminator included. It is what was asked for: there is no growth
    // in advance.
    int alloc;
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
    // Copies the text.
    QXCORE_API CTString(const Ch* s);
    // Shares the text, or copies one that is locked.
    CTString(const CTString& source);
    // The same. Assigning a string that shares with no other to itself empties it.
    CTString& operator=(const CTString& source);
    virtual ~CTString();

    // Sizes and single characters
    // ------------------------------------------------------------------

    // Characters. The text is scanned at each call, so keep the length in a local where it is
    // wanted often.
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

    // Copies into the caller's memory
    // --------------------------------------------------------------

    // Copy the text, or its first n characters, with a terminator. The result is the units without
    // the terminator. REQUIRES: buf has room for all of that.
    QXCORE_API int Copy(Ch* buf) const;
    QXCORE_API int Copy(Ch* buf, int n) const;
    // Copies the whole characters that fit into `size` units with the terminator; with size 0
    // writes nothing. In UTF-8 no sequence is cut either. REQUIRES: buf has room for `size` units.
    QXCORE_API int CopyFit(Ch* buf, int size) const;

    // Comparison
    // -----------------------------------------------------------------------------------

    // The results of the runtime's comparisons: below 0 when this text comes first, 0 when they are
    // the same, above 0 otherwise. I disregards case as the code page knows it, N compares n
    // characters at most. Compare, which is sensitive to case, is in the two classes.
    QXCORE_API int CompareI(const Ch* s) const;
    QXCORE_API int CompareN(const Ch* s, int n) const;
    QXCORE_API int CompareIN(const Ch* s, int n) const;

    // Search
    // ---------------------------------------------------------------------------------------

    // The index of the first character of what was found, from character `start` on, or -1. Nothing
    // is found in an empty string, not even an empty text; in others that one is found where the
    // search starts.
    QXCORE_API int Find(const Ch* s, int start = 0) const;
    // The first and the last character `ch`; 0 is the terminator, at the index GetLength(). In a
    // double-byte code page `ch` is a whole character as GetAt gives it, and a value that no
    // character has is not found; in other code pages of CXString its low byte counts alone.
    QXCORE_API int Find(wchar_t ch, int start = 0) const;
    QXCORE_API int FindRev(wchar_t ch) const;
    // The first and the last character that is in the set.
    QXCORE_API int FindOnOf(const Ch* set, int start = 0) const;
    QXCORE_API int FindRevOnOf(const Ch* set) const;

    // Change
    // ---------------------------------------------------------------------------------------

    // pos beyond the end, or negative, appends. A character 0 or an empty text changes nothing. In
    // CXString a character whose high byte leads no double-byte one is its low byte.
    QXCORE_API S& Insert(int pos, wchar_t ch);
    QXCORE_API S& Insert(int pos, const Ch* s);
    // A range is `count` characters after pos, or before it when count is negative; what lies
    // outside the text is not in it. A negative pos means the end.
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
    // As the runtime changes the case of a text.
    QXCORE_API void Upper();
    QXCORE_API void Lower();
    // A string resource: 1, or 0 when it is missing or empty; the text then stays.
    QXCORE_API int Load(HINSTANCE module, unsigned id);
    // printf with the runtime's own engine: %S, %hs and %I64d mean what they mean there, and an
    // exponent has at least two digits in the universal runtime and three in the older one. Always
    // the whole text, which may have the string itself among its arguments.
    QXCORE_API void Format(const Ch* format, ...);

    // A writable text of the string's own with room for n units and the terminator. The string is
    // locked until ReleaseBuffer: copies made meanwhile take a copy of the text. A shared text
    // longer than n is cut. __CXBuff, below, does both calls for a scope.
    QXCORE_API Ch* GetBuffer(int n);
    // Ends it. The length is where the terminator is, whatever n says.
    void ReleaseBuffer(int n = -1);

    // Do nothing: no capacity is given back, and no conversion takes place.
    void FreeExtra() {}
    void CharToOemA() {}
    void OemToCharA() {}

    // The text as a file name
    // ----------------------------------------------------------------------
    //
    // ':', '\' and '/' end a directory part, the last '.' after them starts the extension. There
    // are no URLs here; the last '/' wins.

    // Append '\' unless the text ends with '\' or '/'; append '.' unless it ends with '.'.
    QXCORE_API S& AddDirDelim();
    QXCORE_API S& AddFileExtDelim();
    // Copy a part with its terminator and answer its units; a null buf asks for them. A missing
    // part answers 0 and leaves buf alone, so ask first. The directory keeps a drive's ':' and
    // loses its last slash, the name comes without its extension, unlike in the other two forms,
    // and the extension without its dot. REQUIRES: buf is null or has room for all of that.
    QXCORE_API int GetFilePath(Ch* buf) const;
    QXCORE_API int GetFileName(Ch* buf) const;
    QXCORE_API int GetFileExt(Ch* buf) const;
    // Point into the text: the name with its extension; the extension, or null when there is no
    // dot.
    QXCORE_API const Ch* GetFileName() const;
    QXCORE_API const Ch* GetFileExt() const;
    // The same as strings of their own; a missing part is empty.
    QXCORE_API S FilePath() const;
    QXCORE_API S FileName() const;
    QXCORE_API S FileExt() const;
    // Sets or replaces the extension, given with or without its dot. An empty one leaves the dot.
    QXCORE_API void ChangeFileExt(const Ch* ext);
    // Replaces middle directories of "X:\..." or "\\server\..." by "...\" for display. 1 when
    // handled, 0 for other paths. maxLen is a goal in characters: the file name stays, and the
    // first directory where others follow.
    QXCORE_API int ReducePathString(int maxLen);

    // Concatenation: a new string that holds both; a character 0 adds nothing.
    friend S operator+(const S& a, const S& b) { return Concat(a.data, b.data); }
    friend S operator+(const S& a, const Ch* b) { return Concat(a.data, b); }
    friend S operator+(const Ch* a, const S& b) { return Concat(a, b.data); }
    friend S operator+(const S& a, wchar_t b) { return Concat(a.data, b); }
    friend S operator+(wchar_t a, const S& b) { return Concat(a, b.data); }

protected:
    // The first character; never null.
    Ch* data;

    tagXSTRINGHEADER* Header() const { return reinterpret_cast<tagXSTRINGHEADER*>(data) - 1; }

    // Makes the string empty without a look at its old text.
    void Init() { data = __empty_text(Ch()); }
    // Gives the text up, unlocking it first, and makes the string empty.
    QXCORE_API void Release();
    // A zero-filled text of n units, the terminator included, in place of the old one.
    QXCORE_API void AllocBuffer(size_t n);
    // Before every write: separates a shared text, and makes room for n units with the terminator.
    QXCORE_API void ReallocBuffer(size_t n);
    // Makes n units the text; puts them behind it; puts them at unit `at` and ends the text behind
    // them. REQUIRES: s has n units, or is null.
    QXCORE_API void AssignCopy(const Ch* s, size_t n);
    QXCORE_API void ConcatCopy(const Ch* s, size_t n);
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

// Text in the runtime's multibyte code page. Conversions to and from wide text go through the
// system's ANSI code page, which is the runtime's too unless the program chose another; characters
// that it does not have become what the system puts in their place.
class CXString : public CTString<CXString, char> {
public:
    CXString() = default;
    CXString(const char* s) : CTString(s) {}
    CXString(const wchar_t* s) { Convert(s); }
    CXString(const CXString&) = default;
    CXString& operator=(const CXString&) = default;
    QXCORE_API CXString& operator=(const char* s);
    CXString& operator=(const wchar_t* s);

    // The result of the runtime's comparison, sensitive to case.
    QXCORE_API int Compare(const char* s) const;

private:
    QXCORE_API void Convert(const wchar_t* s);
};

// Keeps a string locked for a scope, so that an exception cannot leave it so:
//
//     __CXBuff<CXString, char*> text(name, 260);
//     GetModuleFileNameA(module, text.buffer, 260);
//
// P is a pointer to the string's unit. The string outlives the scope.
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

// What follows is for the compiler: bodies that must be where a string is used.

template <class S, class Ch>
inline CTString<S, Ch>::CTString(const CTString& source) : data(source.data) {
    if (Header()->refs > 0) {
        ++Header()->refs;
    } else {
        CopyText(source.data);
    }
}

template <class S, class Ch>
inline CTString<S, Ch>& CTString<S, Ch>::operator=(const CTString& source) {
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

template <class S, class Ch>
inline CTString<S, Ch>::~CTString() {
    if (Header()->refs > 1) {
        --Header()->refs;
    } else {
        Release();
    }
}

template <class S, class Ch>
inline void CTString<S, Ch>::ReleaseBuffer(int n) {
    (void)n;
    if (Header()->refs < 0 && data != __empty_text(Ch())) Header()->refs = 1;
}

inline CXString& CXString::operator=(const wchar_t* s) {
    Convert(s);
    return *this;
}

#endif
