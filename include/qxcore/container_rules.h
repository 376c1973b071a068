// What a container does with the keys and values it is given, decided by their types.
//
//     key                     is                        hash
//     const char*             text, copied              text
//     const unsigned long*    text, copied              folded text (declared so to tell the two
//     rules apart) an integer              itself                    the integer
//
//     value                   rule
//     I*, from IQXUnknown     counted: a reference is taken on store and dropped on removal
//     T*, another class       owned: deleted on removal; a failed or refused store leaves it with
//     the caller const char*, char*      text: copied into a block of new[], freed on removal
//     anything else           by value
//
// A type with a rule of its own specialises QXValueRule.
#ifndef QXCORE_CONTAINER_RULES_H
#define QXCORE_CONTAINER_RULES_H

#include <qxcore/hash.h>
#include <qxcore/unknown.h>

#include <cstring>
#include <type_traits>
#include <utility>

// A copy in a block of new[].
inline char* QXCopyText(const char* text) {
    size_t size = strlen(text) + 1;
    return static_cast<char*>(memcpy(new char[size], text, size));
}

// The key of a folded-text map: its byte string is declared as a pointer to unsigned long.
inline const unsigned long* QXFoldedKey(const char* text) {
    return reinterpret_cast<const unsigned long*>(text);
}

// Room tells the bytes that a copy of the key needs, and Put makes one in a place of that size.
// Copy makes one in a block of its own, which Free releases, and which it tells from one put into
// `room`.
template <class K>
struct QXKeyRule {
    static_assert(std::is_integral_v<K> && sizeof(K) <= sizeof(unsigned),
                  "a key is a text or a 32-bit integer");
    static unsigned Hash(K key) { return static_cast<unsigned>(key); }
    static bool Same(K, K) {
        return true;
    }  // of two keys with one hash: whether the text of one serves for both
    static size_t Room(K) { return 0; }
    static K Put(K key, void*) { return key; }
    static K Copy(K key) { return key; }
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

template <>
struct QXKeyRule<const unsigned long*> {
    using Texts = QXKeyRule<const char*>;
    static const char* Text(const unsigned long* key) { return reinterpret_cast<const char*>(key); }
    static unsigned Hash(const unsigned long* key) { return QXHashFolded(Text(key)).hash; }
    static bool Same(const unsigned long* a, const unsigned long* b) {
        return strcmp(Text(a), Text(b)) == 0;
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

// Take makes the stored value from an Argument, Replace puts another in its place, Drop lets it go,
// and AddRef gives a caller a reference of his own where there is such a thing. The new value is in
// place before the old one goes, so storing the same object again is safe, and so is a destructor
// that looks into the container.
template <class V>
struct QXByValue {
    using Argument = const V&;
    static const V& Take(const V& value) { return value; }
    static void Replace(V& stored, const V& value) {
        if (&stored != &value) stored = value;
    }
    static void Drop(V&) {}
    static void AddRef(V&) {}
};

template <class Rule, class V>
void QXReplacePointer(V*& stored, typename Rule::Argument value) {
    V* old = stored;
    stored = Rule::Take(value);
    Rule::Drop(old);
}

template <class T>
struct QXOwned {
    using Argument = T*;
    static T* Take(T* value) { return value; }
    static void Replace(T*& stored, T* value) {
        if (stored != value) QXReplacePointer<QXOwned>(stored, value);
    }
    static void Drop(T* stored) { delete stored; }
    static void AddRef(T*) {}
};

template <class I>
struct QXCounted {
    using Argument = I*;
    static I* Take(I* value) {
        AddRef(value);
        return value;
    }
    static void Replace(I*& stored, I* value) { QXReplacePointer<QXCounted>(stored, value); }
    static void Drop(I* stored) {
        if (stored) stored->Release();
    }
    static void AddRef(I* stored) {
        if (stored) stored->AddRef();
    }
};

template <class Text>
struct QXTextValue {
    using Argument = const char*;
    static char* Take(const char* value) { return value ? QXCopyText(value) : nullptr; }
    static void Replace(Text& stored, const char* value) {
        QXReplacePointer<QXTextValue>(stored, value);
    }
    static void Drop(const char* stored) { delete[] stored; }
    static void AddRef(const char*) {}
};

template <class V, class = void>
struct QXValueRule : QXByValue<V> {};
template <class T>
struct QXValueRule<T*, std::enable_if_t<std::is_class_v<T>>>
    : std::conditional_t<std::is_base_of_v<IQXUnknown, T>, QXCounted<T>, QXOwned<T>> {};
template <>
struct QXValueRule<const char*> : QXTextValue<const char*> {};
template <>
struct QXValueRule<char*> : QXTextValue<char*> {};

// A stored value. It lives in a node and nowhere else.
template <class V>
class QXHeldValue {
public:
    explicit QXHeldValue(typename QXValueRule<V>::Argument value)
        : value(QXValueRule<V>::Take(value)) {}
    QXHeldValue(const QXHeldValue&) = delete;
    QXHeldValue& operator=(const QXHeldValue&) = delete;
    ~QXHeldValue() { QXValueRule<V>::Drop(value); }

    V value;
};

#endif
