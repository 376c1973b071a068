// Enumerators over texts of their own: a text split at separators, a block of zero-terminated
// texts.
//
// Errors: a constructor throws CXMemException. Threading: one enumerator serves one thread at a
// time.
#ifndef QXCORE_STRING_ENUM_H
#define QXCORE_STRING_ENUM_H

#include <qxcore/enum.h>

// Copies of several texts. Both operations are for a new object, and leave it empty when they throw
// CXMemException.
class QXTextArray {
public:
    QXTextArray() = default;
    QXTextArray(const QXTextArray&) = delete;
    QXTextArray& operator=(const QXTextArray&) = delete;
    ~QXTextArray() {
        delete[] texts;
        delete[] characters;
    }

    // The pieces of `text` between any of the characters of `separators`, by the runtime's
    // multibyte code page. A run of separators counts as one, and no piece is empty. A null text
    // has none.
    QXCORE_API void Split(const char* separators, const char* text);
    // The texts of a block that ends with an empty text. A null block has none.
    QXCORE_API void CopyBlock(const char* block);

    unsigned count = 0;
    char** texts = nullptr;
    char* characters = nullptr;  // where the texts lie
};

// T is const char* or char*. The owner, if there is one, is held as long as the enumerator lives.
template <class T>
class _CTextArrayEnum : public CQXUnknownImpl<CTEnum<T>> {
public:
    ~_CTextArrayEnum() override {
        if (m_owner) m_owner->Release();
    }

    int Next(unsigned count, T* out, unsigned* fetched) override {
        unsigned delivered = 0;
        while (out && delivered < count && m_position < m_array.count)
            out[delivered++] = m_array.texts[m_position++];
        if (fetched) *fetched = delivered;
        return delivered > 0;
    }
    // Always 1, also beyond the end, where Next then delivers nothing.
    int Skip(unsigned count) override {
        m_position += count;
        return 1;
    }
    void Reset() override { m_position = 0; }

protected:
    QXTextArray m_array;

    void Hold(IQXUnknown* owner) {
        if (owner) owner->AddRef();
        m_owner = owner;
    }

private:
    unsigned m_position = 0;
    IQXUnknown* m_owner = nullptr;
};

template <class C>
class _CCharSeparatedStringsEnum : public _CTextArrayEnum<const C*> {
public:
    _CCharSeparatedStringsEnum(const C* separators, const C* text, IQXUnknown* owner = nullptr) {
        this->m_array.Split(separators, text);
        this->Hold(owner);
    }
};

template <class C>
class _CZeroDelimitedStringsEnum : public _CTextArrayEnum<const C*> {
public:
    explicit _CZeroDelimitedStringsEnum(const C* block, IQXUnknown* owner = nullptr) {
        this->m_array.CopyBlock(block);
        this->Hold(owner);
    }
};

#endif
