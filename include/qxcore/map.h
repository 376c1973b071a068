// The hash map of the library.
//
//     CTMap<const char*, IQXUnknown*> services;  // copies the names, counts the objects
//     services.SetAt("Printing", printer);
//     IQXUnknown* found;
//     if (services.Lookup("Printing", found, 1)) Use(found);  // with a reference of the caller's
//
//     CTMap<const char*, IQXUnknown*>::position at;  // all entries, one after the other
//     while (IQXUnknown** object = services.GetNext(at)) Use(*object);
//
// A map never grows: its chains get longer. It compares hashes and nothing else, so two texts with
// the same hash are one key, and nothing detects that. What it does with keys and values is told in
// container_rules.h.
//
// State: a new map has no table; the first operation makes one. RemoveAll is final: the map refuses
// whatever comes afterwards, with 0 or null, until its owner sets `destroyed` back to 0.
//
// Errors: keys, nodes and values come from `new`, the table from a heap; running out of memory
// throws CXMemException and leaves the map as it was. What the release of a value raises reaches
// the caller once the map is whole again. A value that goes may use the map: it finds the map
// without it, or with its successor in its place.
//
// Threading: none of its own; lookups alone may run side by side once the map has its table.
#ifndef QXCORE_MAP_H
#define QXCORE_MAP_H

#include <qxcore/container_rules.h>
#include <qxcore/enum.h>
#include <qxcore/heap.h>
#include <qxcore/map_index.h>

#include <cassert>
#include <memory>

inline constexpr unsigned kQXTableMark = 6502;

template <class K, class V>
class CTMap {
    using Keys = QXKeyRule<K>;
    using Values = QXValueRule<V>;
    using Argument = typename Values::Argument;

public:
    struct Node;

    // A place in a walk; {} is the start. Adding or removing during a walk is not detected, and a
    // walk whose node is removed stands on freed memory.
    struct position {
        int bucket = 0;
        Node* node = nullptr;
    };

    // REQUIRES: bucketCount > 0.
    constexpr explicit CTMap(unsigned bucketCount = 127);
    CTMap(const CTMap&) = delete;
    CTMap& operator=(const CTMap&) = delete;
    // As RemoveAll, but drops what the release of a value raises.
    virtual ~CTMap();

    // 1 and the value in `out`, or 0 with `out` as it was. With addRef the caller gets a reference
    // of his own on an interface; other values stay the map's.
    int Lookup(K key, V& out, int addRef = 0);
    // The same with a hash that the caller made by the rule of the key.
    int LookupHash(unsigned hash, V& out, int addRef = 0);

    // The stored value itself, or null; good until the entry is removed.
    V* Find(K key);
    V* FindHash(unsigned hash);

    // Adds or replaces: 1. A replaced entry keeps its place in the walk and takes the new text as
    // its key. 0 after the final clearing.
    int SetAt(K key, Argument value);
    int SetAtHash(unsigned hash, K key, Argument value);
    // 1, or 0 if the key is absent, or after the final clearing.
    int RemoveKey(K key);

    // The next value or key of the walk: bucket by bucket, in each the newest first. Null at the
    // end, and the position is at the start again; null after the final clearing. With addRef the
    // caller gets a reference as from Lookup.
    V* GetNext(position& at, int addRef = 0);
    K* GetNextKey(position& at);

    // The final clearing. A map that was never used stays as it is. All values go, also when the
    // release of one raises; the first failure then reaches the caller.
    void RemoveAll();

    Node** buckets = nullptr;  // the chains; made by the first operation
    unsigned count = 0;        // entries
    IHeap* heap = nullptr;     // holds the table; a default heap unless one is set before the first
                               // use
    unsigned bucketCount;
    unsigned tableMark = 0;  // kQXTableMark while there is a table
    unsigned destroyed = 0;  // 1 after the final clearing

private:
    class FreshKey;
    class Chains;

    bool MakeTable();
    QXCORE_NOINLINE void MakeNewTable();
    Node* NodeOf(unsigned hash) const;
    bool Advance(position& at);
    int Add(unsigned hash, K key, Argument value);
    void Index(Node* added);

    QXMapIndex m_index;
};

// The keys of a counted map, as T. The walk is the map's: after its end it starts over.
template <class Map, class T>
class _CMapKeyEnumOf : public _CCollectionEnum<Map, T> {
public:
    using _CCollectionEnum<Map, T>::_CCollectionEnum;

    int Next(unsigned count, T* out, unsigned* fetched) override;
    // 1 if a key remains.
    int Skip(unsigned count) override;
    void Reset() override;

private:
    typename Map::position m_position;
};

template <class K, class V, class KK = K, class VV = V>
class CTMapEnum;
template <class K, class V, class KK = K, class VV = V>
using _CMapKeyEnum = _CMapKeyEnumOf<CTMapEnum<K, V, KK, VV>, KK>;

// A map that is counted itself and gives out enumerators of its keys, as KK. Each reference on an
// enumerator holds the map too.
template <class K, class V, class KK, class VV>
class CTMapEnum : public CTMap<K, V>, public CQXUnknownImpl<IQXUnknown> {
public:
    constexpr explicit CTMapEnum(unsigned bucketCount = 127) : CTMap<K, V>(bucketCount) {}

    // A reference for the caller, or null after the final clearing.
    CTEnum<KK>* CreateEnum();
};

// ---- nodes -------------------------------------------------------------------------------------

// The text of the key stands behind the node, in the same block; one that replaced it has a block
// of its own.
template <class K, class V>
struct CTMap<K, V>::Node {
    struct KeyRoom {
        size_t bytes;
    };
    static void* operator new(size_t size, KeyRoom room) {
        return ::operator new(size + room.bytes);
    }
    static void operator delete(void* block, KeyRoom) { ::operator delete(block); }
    static void operator delete(void* block) { ::operator delete(block); }

    // Made by new (KeyRoom{Room(key)}) and no other way, so that Put finds its room.
    Node(K key, Argument value, unsigned hash)
        : value(value), key(Keys::Put(key, this + 1)), hash(hash) {}
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;
    ~Node() { Keys::Free(key, this + 1); }

    // Frees the node, which no chain holds any more, and passes on what its value's release raises.
    static void Dispose(Node* node) {
        std::unique_ptr<Node> freed(node);
        node->value.LetGo();
    }

    Node* next = nullptr;
    QXHeldValue<V> value;
    K key;
    unsigned hash;
};

// The key that a replaced entry will have, made before anything changes.
template <class K, class V>
class CTMap<K, V>::FreshKey {
public:
    FreshKey(Node& node, K text)
        : m_node(node), m_differs(!Keys::Same(node.key, text)), m_key(text) {
        if (m_differs) m_key = Keys::Copy(text);
    }
    FreshKey(const FreshKey&) = delete;
    FreshKey& operator=(const FreshKey&) = delete;
    ~FreshKey() {
        if (m_differs) Keys::Free(m_key, nullptr);
    }

    // Afterwards the node is not looked at any more.
    void Put() {
        if (!m_differs) return;
        m_differs = false;
        Keys::Free(m_node.key, &m_node + 1);
        m_node.key = m_key;
    }

private:
    Node& m_node;
    bool m_differs;
    K m_key;
};

// The chains of a map that has let them go, so that whoever a value calls at its end finds a map
// without a table and may even start a new one.
template <class K, class V>
class CTMap<K, V>::Chains {
public:
    Chains(IHeap* heap, Node** buckets, unsigned count)
        : m_heap(heap), m_buckets(buckets), m_count(count) {}
    Chains(const Chains&) = delete;
    Chains& operator=(const Chains&) = delete;
    // What is left goes, without a word of what it raises.
    ~Chains() {
        while (Node* node = Cut()) delete node;
        m_heap->Free(m_buckets);
    }

    void Dispose() {
        while (Node* node = Cut()) Node::Dispose(node);
    }

private:
    Node* Cut() {
        for (; m_at < m_count; ++m_at) {
            Node*& chain = m_buckets[m_at];
            if (chain) return std::exchange(chain, chain->next);
        }
        return nullptr;
    }

    IHeap* m_heap;
    Node** m_buckets;
    unsigned m_count;
    unsigned m_at = 0;
};

// ---- the map -----------------------------------------------------------------------------------

template <class K, class V>
constexpr CTMap<K, V>::CTMap(unsigned bucketCount) : bucketCount(bucketCount) {
    assert(bucketCount > 0);
}

template <class K, class V>
CTMap<K, V>::~CTMap() {
    try {
        RemoveAll();
    } catch (...) {
    }
}

// Every operation comes here first. False after the final clearing.
template <class K, class V>
bool CTMap<K, V>::MakeTable() {
    if (destroyed) return false;
    if (!tableMark) MakeNewTable();
    return true;
}

template <class K, class V>
void CTMap<K, V>::MakeNewTable() {
    if (!heap) heap = Mem_DefaultHeap(0);
    buckets = static_cast<Node**>(heap->Alloc(bucketCount * sizeof(Node*)));
    tableMark = kQXTableMark;
}

template <class K, class V>
typename CTMap<K, V>::Node* CTMap<K, V>::NodeOf(unsigned hash) const {
    if (m_index.InUse()) return static_cast<Node*>(m_index.Find(hash));
    Node* node = buckets[hash % bucketCount];
    while (node && node->hash != hash) node = node->next;
    return node;
}

template <class K, class V>
int CTMap<K, V>::Lookup(K key, V& out, int addRef) {
    return LookupHash(Keys::Hash(key), out, addRef);
}

template <class K, class V>
int CTMap<K, V>::LookupHash(unsigned hash, V& out, int addRef) {
    V* value = FindHash(hash);
    if (!value) return 0;
    out = *value;
    if (addRef) Values::AddRef(out);
    return 1;
}

template <class K, class V>
V* CTMap<K, V>::Find(K key) {
    return FindHash(Keys::Hash(key));
}

template <class K, class V>
V* CTMap<K, V>::FindHash(unsigned hash) {
    Node* node = MakeTable() ? NodeOf(hash) : nullptr;
    return node ? &node->value.value : nullptr;
}

template <class K, class V>
int CTMap<K, V>::SetAt(K key, Argument value) {
    return SetAtHash(Keys::Hash(key), key, value);
}

template <class K, class V>
int CTMap<K, V>::SetAtHash(unsigned hash, K key, Argument value) {
    if (!MakeTable()) return 0;
    Node* node = NodeOf(hash);
    if (!node) return Add(hash, key, value);
    FreshKey fresh(*node, key);
    Values::Replace(node->value.value, value, [&fresh] { fresh.Put(); });
    return 1;
}

template <class K, class V>
int CTMap<K, V>::Add(unsigned hash, K key, Argument value) {
    auto node = new (typename Node::KeyRoom{Keys::Room(key)}) Node(key, value, hash);
    Node*& chain = buckets[hash % bucketCount];
    node->next = chain;
    chain = node;
    ++count;
    Index(node);
    return 1;
}

template <class K, class V>
int CTMap<K, V>::RemoveKey(K key) {
    if (!MakeTable()) return 0;
    unsigned hash = Keys::Hash(key);
    for (Node** link = &buckets[hash % bucketCount]; Node* node = *link; link = &node->next) {
        if (node->hash != hash) continue;
        *link = node->next;
        --count;
        if (m_index.InUse()) m_index.Remove(hash);
        Node::Dispose(node);
        return 1;
    }
    return 0;
}

template <class K, class V>
V* CTMap<K, V>::GetNext(position& at, int addRef) {
    if (!Advance(at)) return nullptr;
    V* value = &at.node->value.value;
    if (addRef) Values::AddRef(*value);
    return value;
}

template <class K, class V>
K* CTMap<K, V>::GetNextKey(position& at) {
    return Advance(at) ? &at.node->key : nullptr;
}

// To the next node of the chain, or to the first of the next chain that has one. At the end back to
// the start.
template <class K, class V>
bool CTMap<K, V>::Advance(position& at) {
    if (!MakeTable()) return false;
    if (at.node) {
        at.node = at.node->next;
        if (at.node) return true;
        ++at.bucket;
    }
    for (auto bucket = static_cast<unsigned>(at.bucket); bucket < bucketCount; ++bucket) {
        if (!buckets[bucket]) continue;
        at = {static_cast<int>(bucket), buckets[bucket]};
        return true;
    }
    at = {};
    return false;
}

template <class K, class V>
void CTMap<K, V>::RemoveAll() {
    if (destroyed || !tableMark) return;
    destroyed = 1;
    Chains chains(heap, std::exchange(buckets, nullptr), bucketCount);
    m_index.Drop();
    count = 0;
    tableMark = 0;
    chains.Dispose();
}

// The index begins when chains are longer than one on average, and is tried again from time to time
// without memory.
template <class K, class V>
void CTMap<K, V>::Index(Node* added) {
    auto add = [this](Node* node) {
        if constexpr (std::is_pointer_v<V>) {
            const V& value = node->value.value;
            m_index.Add(node->hash, node, value, QXReadBehind<V>::Of(value));
        } else {
            m_index.Add(node->hash, node, node);
        }
    };
    if (m_index.InUse()) {
        add(added);
    } else if (count % bucketCount == 0) {
        m_index.Start(count);
        position at;
        while (m_index.InUse() && Advance(at)) add(at.node);
    }
}

// ---- enumerators -------------------------------------------------------------------------------

template <class Map, class T>
int _CMapKeyEnumOf<Map, T>::Next(unsigned count, T* out, unsigned* fetched) {
    this->Start();
    unsigned delivered = 0;
    while (out && delivered < count) {
        auto key = this->m_collection->GetNextKey(m_position);
        if (!key) break;
        out[delivered++] = *key;
    }
    if (fetched) *fetched = delivered;
    return delivered > 0;
}

template <class Map, class T>
int _CMapKeyEnumOf<Map, T>::Skip(unsigned count) {
    this->Start();
    while (count--) {
        if (!this->m_collection->GetNextKey(m_position)) return 0;
    }
    auto ahead = m_position;
    return this->m_collection->GetNextKey(ahead) != nullptr;
}

template <class Map, class T>
void _CMapKeyEnumOf<Map, T>::Reset() {
    m_position = {};
    this->m_started = 1;
}

template <class K, class V, class KK, class VV>
CTEnum<KK>* CTMapEnum<K, V, KK, VV>::CreateEnum() {
    return this->destroyed ? nullptr : new _CMapKeyEnum<K, V, KK, VV>(this);
}

#endif
