// What a container does with the keys and values it is given, decided by their types.
//
//     key                     is                        hash
//     const char*             text, copied              of the text
//     const unsigned long*    text, copied              of the text without regard to case
//     an integer              itself                    the integer
//
//     value                   rule
//     I*, from IQXUnknown     counted: a reference is taken on store and dropped on removal
//     T*, another class       owned: deleted on removal; a store that fails or is refused leaves it
//                             with the caller
//     const char*, char*      text: copied into a block of new[], freed on removal
//     anything else           by value
//
// A key without regard to case is declared as a pointer to unsigned long, so that the two rules for
// texts are two types:
//
//     CTMap<const unsigned long*, CQXVariant> values;
//     values.SetAt(QXFoldedKey("Width"), CQXVariant(640));
//
// A type with a rule of its own specialises QXValueRule.
//
// Errors: what allocates throws CXMemException before anything has changed. What the release of a
// counted value raises reaches the caller of the operation that lets it go, once the container is
// whole again; a container's own end drops it.
#ifndef QXCORE_CONTAINER_RULES_H
#define QXCORE_CONTAINER_RULES_H

#include <qxcore/hash.h>
#include <qxcore/unknown.h>

#include <cstddef>
#include <cstring>
#include <type_traits>
#include <utility>

// A copy in a block of new[].
inline char* QXCopyText(const char* text) {
    size_t size = strlen(text) + 1;
    return static_cast<char*>(memcpy(new char[size], text, size));
}

// A text as the key of a map without regard to case.
inline const unsigned long* QXFoldedKey(const char* text) {
    return reinterpret_cast<const unsigned long*>(text);
}

// ---- keys

// How a container hashes and keeps a key. This is the rule of integers, which are kept as they are;
// those of texts follow.
template <class K>
struct QXKeyRule {
    static_assert(std::is_integral_v<K> && sizeof(K) <= sizeof(unsigned),
                  "a key is a text or a 32-bit integer");

    // What a container compares: keys of one hash are one key.
    static unsigned Hash(K key) { return static_cast<unsigned>(key); }
    // Of two keys with one hash: whether a copy of one serves for the other.
    static bool Same(K, K) { return true; }
    // A copy of the key in a place of Room bytes.
    static size_t Room(K) { return 0; }
    static K Put(K key, void*) { return key; }
    // A copy in a block of its own.
    static K Copy(K key) { return key; }
    // Frees a block of Copy; a key that was put into `room` stays.
    static void Free(K, const void*) {}
};

template <>
struct QXKeyRule<const char*> {
    static unsigned Hash(const char* key) { return QXHashText(key).hash; }
    static bool Same(const char* a, const char* b) { return strcmp(a, b) == 0; }
    static size_t Room(const char* key) { return strlen(key) + 1; }
    static const char* Put(const char* key, void* room) {
        return strcpy(static_cast<char*>(room), key);
    }
    static const char* Copy(const char* key) { return QXCopyText(key); }
    static void Free(const char* key, const void* room) {
        if (key != room) delete[] key;
    }
};

// As that of texts, but for the hash.
template <>
struct QXKeyRule<const unsigned long*> {
    using Texts = QXKeyRule<const char*>;

    static const char* Text(const unsigned long* key) { return reinterpret_cast<const char*>(key); }
    static unsigned Hash(const unsigned long* key) { return QXHashFolded(Text(key)).hash; }
    static bool Same(const unsigned long* a, const unsigned long* b) {
        return Texts::Same(Text(a), Text(b));
    }
    static size_t Room(const unsigned long* key) { return Texts::Room(Text(key)); }
    static const unsigned long* Put(const unsigned long* key, void* room) {
        return QXFoldedKey(Texts::Put(Text(key), room));
    }
    static const unsigned long* Copy(const unsigned long* key) {
        return QXFoldedKey(Texts::Copy(Text(key)));
    }
    static void Free(const unsigned long* key, const void* room) { Texts::Free(Text(key), room); }
};

// ---- values

struct QXNothingMore {
    void operator()() const {}
};

// Copies on store. V is copied, swapped and destroyed like any C++ value.
template <class V>
struct QXByValue {
    // In which form a caller hands the value to the container.
    using Argument = const V&;

    // Makes the stored value of an argument.
    static const V& Take(const V& value) { return value; }
    // Puts another value in the place of a stored one. The new value is made first, and nothing can
    // fail from then on; `commit` runs, the new value is in place, and last of all the old one
    // goes. Whoever that calls may use the container, and remove this very entry.
    template <class Commit = QXNothingMore>
    static void Replace(V& stored, const V& value, Commit commit = {}) {
        using std::swap;
        V fresh(value);
        commit();
        swap(stored, fresh);
    }
    // Lets a stored value go, before it is destroyed.
    static void LetGo(V&) {}
    // Gives a caller a reference of his own, where there is such a thing.
    static void AddRef(V&) {}
};

// A value that is reached by a pointer; Rule tells what Take and Drop do with it.
template <class Rule, class V, class A>
struct QXByPointer {
    using Argument = A;

    template <class Commit = QXNothingMore>
    static void Replace(V& stored, A value, Commit commit = {}) {
        V fresh = Rule::Take(value);
        commit();
        V old = std::exchange(stored, fresh);
        if (!Rule::kOwns || old != fresh) Rule::Drop(old);
    }
    static void LetGo(V& stored) { Rule::Drop(std::exchange(stored, nullptr)); }
    static void AddRef(V) {}

    static constexpr bool kOwns = false;  // whether two stores of one pointer are one ownership
};

template <class T>
struct QXOwned : QXByPointer<QXOwned<T>, T*, T*> {
    static constexpr bool kOwns = true;
    static T* Take(T* value) { return value; }
    static void Drop(T* stored) { delete stored; }
};

template <class I>
struct QXCounted : QXByPointer<QXCounted<I>, I*, I*> {
    static I* Take(I* value) {
        AddRef(value);
        return value;
    }
    static void Drop(I* stored) {
        if (stored) stored->Release();
    }
    static void AddRef(I* stored) {
        if (stored) stored->AddRef();
    }
};

// Text is const char* or char*. A null text stays null.
template <class Text>
struct QXTextValue : QXByPointer<QXTextValue<Text>, Text, const char*> {
    static char* Take(const char* value) { return value ? QXCopyText(value) : nullptr; }
    static void Drop(const char* stored) { delete[] stored; }
};

// The rule of a value of type V.
template <class V, class = void>
struct QXValueRule : QXByValue<V> {};
template <class T>
struct QXValueRule<T*, std::enable_if_t<std::is_class_v<T>>>
    : std::conditional_t<std::is_base_of_v<IQXUnknown, T>, QXCounted<T>, QXOwned<T>> {};
template <>
struct QXValueRule<const char*> : QXTextValue<const char*> {};
template <>
struct QXValueRule<char*> : QXTextValue<char*> {};

// A stored value. It lives in a node of a container and nowhere else.
template <class V>
class QXHeldValue {
    using Rule = QXValueRule<V>;

public:
    explicit QXHeldValue(typename Rule::Argument value) : value(Rule::Take(value)) {}
    QXHeldValue(const QXHeldValue&) = delete;
    QXHeldValue& operator=(const QXHeldValue&) = delete;
    // Drops what a release raises; who wants to know of it calls LetGo before.
    ~QXHeldValue();

    void LetGo() { Rule::LetGo(value); }

    V value;
};

// ------------------------------------------------------------------------------------------------

template <class V>
QXHeldValue<V>::~QXHeldValue() {
    try {
        LetGo();
    } catch (...) {
    }
}

#endif
