// Enumerators over texts of their own: a text split at separators, a block of zero-terminated
// texts.
//
//     qx::Reference<CTEnum<const char*>> words(
//         new _CCharSeparatedStringsEnum<char>(" ,", "red, green"));
//     for (const char* word; words->Next(1, &word, nullptr);) Use(word);
//
// The texts are copied when the enumerator is made. What Next delivers stays the enumerator's and
// is good as long as it lives. An owner, if one is given, is held for that long too; nothing is
// asked of it.
//
// Errors: a constructor throws CXMemException. The operations never fail.
// Threading: one enumerator serves one thread at a time.
#ifndef QXCORE_STRING_ENUM_H
#define QXCORE_STRING_ENUM_H

#include <qxcore/enum.h>
#include <qxcore/reference.h>

// Copies of several texts in one block of memory, which is freed with the array. What the
// enumerators below are made of; a program's own enumerator may use it too:
//
//     QXTextArray fields;
//     fields.Split(",", line);
//     for (unsigned i = 0; i < fields.count; ++i) Use(fields.texts[i]);
class QXTextArray {
public:
    QXTextArray() = default;
    QXTextArray(const QXTextArray&) = delete;
    QXTextArray& operator=(const QXTextArray&) = delete;
    ~QXTextArray();

    // Both throw CXMemException and then hold no text. REQUIRES: the array is new.

    // The pieces of `text` between any of the characters of `separators`, by the runtime's
    // multibyte code page. A run of separators counts as one, and no piece is empty. A null text
    // has none; without any separator the whole text is the one piece. REQUIRES: separators is not
    // null.
    QXCORE_API void Split(const char* separators, const char* text);
    // The texts of a block that ends with an empty text. A null block has none.
    QXCORE_API void CopyBlock(const char* block);

    // How many texts there are, where each begins, and the memory that all of them lie in. Without
    // a text both pointers are null.
    unsigned count = 0;
    char** texts = nullptr;
    char* characters = nullptr;
};

// What the two enumerators have in common. T is const char* or char*.
template <class T>
class _CTextArrayEnum : public CQXUnknownImpl<CTEnum<T>> {
public:
    // Delivers up to `count` texts into `out` and their number into `fetched`, unless that is null.
    // 1 if there was one. A null `out` takes none.
    int Next(unsigned count, T* out, unsigned* fetched) override;
    // Always 1, also beyond the end, where Next then delivers nothing. The count is added without a
    // test, so a huge one can lead back to an earlier text.
    int Skip(unsigned count) override;
    // Back to the first text.
    void Reset() override;

protected:
    // Filled by the class derived from this one before anybody can ask.
    QXTextArray m_array;

    // Takes a reference on the owner, which may be null.
    void Hold(IQXUnknown* owner);

private:
    unsigned m_position = 0;
    qx::Reference<IQXUnknown> m_owner;
};

// The pieces of a text between separators, as QXTextArray::Split makes them: "a;;b" at ";" has the
// pieces "a" and "b". A separator may be a double-byte character. C is char.
template <class C>
class _CCharSeparatedStringsEnum : public _CTextArrayEnum<const C*> {
public:
    _CCharSeparatedStringsEnum(const C* separators, const C* text, IQXUnknown* owner = nullptr) {
        this->m_array.Split(separators, text);
        this->Hold(owner);
    }
};

// The texts of a block, one behind the other, each with its terminator, and an empty one behind the
// last: "one\0two\0" has two. This is the form of the platform's lists of names. C is char.
template <class C>
class _CZeroDelimitedStringsEnum : public _CTextArrayEnum<const C*> {
public:
    explicit _CZeroDelimitedStringsEnum(const C* block, IQXUnknown* owner = nullptr) {
        this->m_array.CopyBlock(block);
        this->Hold(owner);
    }
};

inline QXTextArray::~QXTextArray() {
    delete[] texts;
    delete[] characters;
}

template <class T>
inline int _CTextArrayEnum<T>::Next(unsigned count, T* out, unsigned* fetched) {
    unsigned delivered = 0;
    while (out && delivered < count && m_position < m_array.count)
        out[delivered++] = m_array.texts[m_position++];
    if (fetched) *fetched = delivered;
    return delivered > 0;
}

template <class T>
inline int _CTextArrayEnum<T>::Skip(unsigned count) {
    m_position += count;
    return 1;
}

template <class T>
inline void _CTextArrayEnum<T>::Reset() {
    m_position = 0;
}

template <class T>
inline void _CTextArrayEnum<T>::Hold(IQXUnknown* owner) {
    m_owner = qx::Hold(owner);
}

#endif
