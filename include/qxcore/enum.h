// The enumerator interface through which collections are handed across modules.
//
// A collection must stand still while it is enumerated. Threading: one enumerator serves one thread
// at a time.
#ifndef QXCORE_ENUM_H
#define QXCORE_ENUM_H

#include <qxcore/unknown.h>

template <class T>
class CTEnum : public IQXUnknown {
public:
    // Delivers up to `count` items in order and tells how many in *fetched, which may be null. 1 if
    // there was at least one. A text stays owned by the collection and valid as long as the
    // enumerator; an interface comes with a reference for the caller.
    virtual int Next(unsigned count, T* out, unsigned* fetched) = 0;
    // Moves on without delivering. What the result tells depends on the collection.
    virtual int Skip(unsigned count) = 0;
    virtual void Reset() = 0;

protected:
    ~CTEnum() = default;
};
QX_DECLARE_TYPEID(CTEnum<const char*>, ".?AV?$CTEnum@PEBD@@");
QX_DECLARE_TYPEID(CTEnum<char*>, ".?AV?$CTEnum@PEAD@@");
QX_DECLARE_TYPEID(CTEnum<IQXUnknown*>, ".?AV?$CTEnum@PEAUIQXUnknown@@@@");

// An enumerator whose references each hold its collection too: a counted object with a `destroyed`
// field.
template <class Collection, class T>
class _CCollectionEnum : public CQXUnknownImpl<CTEnum<T>> {
public:
    explicit _CCollectionEnum(Collection* collection) : m_collection(collection) {
        collection->AddRef();
    }

    unsigned AddRef() override {
        m_collection->AddRef();
        return this->InternalAddRef();
    }
    unsigned Release() override {
        Collection* collection = m_collection;
        unsigned refs = this->InternalRelease();
        collection->Release();
        return refs;
    }

protected:
    Collection* m_collection;
    int m_started = 0;

    void Start() {
        if (!m_started) this->Reset();
    }
};

#endif
