// The enumerator interface through which collections are handed across modules.
//
//     CTEnum<const char*>* names = storage->EnumStreams();
//     const char* name;
//     while (names->Next(1, &name, nullptr)) Use(name);
//     names->Release();
//
// A collection must stand still while it is enumerated: adding and removing is not detected.
// Threading: one enumerator serves one thread at a time.
#ifndef QXCORE_ENUM_H
#define QXCORE_ENUM_H

#include <qxcore/unknown.h>

// T is const char*, char* or IQXUnknown*.
template <class T>
class CTEnum : public IQXUnknown {
public:
    // Delivers up to `count` items in order, and tells how many in *fetched, which may be null. 1
    // if there was at least one, 0 at the end. A text stays owned by the collection and valid as
    // long as the enumerator; an interface comes with a reference for the caller. REQUIRES: `out`
    // has room for `count` items.
    virtual int Next(unsigned count, T* out, unsigned* fetched) = 0;
    // Moves on without delivering. What the result tells depends on the collection.
    virtual int Skip(unsigned count) = 0;
    // Back to the start.
    virtual void Reset() = 0;

protected:
    ~CTEnum() = default;
};
QX_DECLARE_TYPEID(CTEnum<const char*>, ".?AV?$CTEnum@PEBD@@");
QX_DECLARE_TYPEID(CTEnum<char*>, ".?AV?$CTEnum@PEAD@@");
QX_DECLARE_TYPEID(CTEnum<IQXUnknown*>, ".?AV?$CTEnum@PEAUIQXUnknown@@@@");

// What the enumerators of counted collections share: each reference on the enumerator holds its
// collection too. A Collection is a counted object with a `destroyed` field.
template <class Collection, class T>
class _CCollectionEnum : public CQXUnknownImpl<CTEnum<T>> {
public:
    explicit _CCollectionEnum(Collection* collection) : m_collection(collection) {
        collection->AddRef();
    }

    unsigned AddRef() override;
    unsigned Release() override;

protected:
    Collection* m_collection;
    int m_started = 0;  // whether the walk has begun

    // Begins the walk unless it has begun.
    void Start() {
        if (!m_started) this->Reset();
    }
};

// ------------------------------------------------------------------------------------------------

template <class Collection, class T>
unsigned _CCollectionEnum<Collection, T>::AddRef() {
    m_collection->AddRef();
    return this->InternalAddRef();
}

// The collection goes last, since it may hold what the enumerator is made of.
template <class Collection, class T>
unsigned _CCollectionEnum<Collection, T>::Release() {
    Collection* collection = m_collection;
    unsigned refs = this->InternalRelease();
    collection->Release();
    return refs;
}

#endif
