// The hash map of the library.
//
// A map never grows: its chains get longer. It compares hashes and nothing else, so two texts with
// the same hash are one key, and nothing detects that. What it does with keys and values is told in
// container_rules.h.
//
// Memory: keys, nodes and values as of `new`; running out of memory throws CXMemException and
// leaves the map as it was. Threading: none of its own; lookups alone may run side by side once the
// map has its table.
#ifndef QXCORE_MAP_H
#define QXCORE_MAP_H

#include <qxcore/container_rules.h>
#include <qxcore/enum.h>
#include <qxcore/heap.h>
#include <qxcore/map_index.h>

inline constexpr unsigned kQXTableMark = 6502;

template <class K, class V>
class CTMap {
    using Keys = QXKeyRule<K>;
    using Values = QXValueRule<V>;
    using Argument = typename Values::Argument;

public:
    // The text of the key stands behind the node, in the same block; one that replaced it has a
    // block of its own.
    struct Node {
        struct KeyRoom {
            size_t bytes;
        };
        static void* operator new(size_t size, KeyRoom room) {
            return ::operator new(size + room.bytes);
        }
        static void operator delete(void* block, KeyRoom) { ::operator delete(block); }
        static void operator delete(void* block) { ::operator delete(block); }

        // REQUIRES: made by new (KeyRoom{Room(key)}).
        Node(K key, Argument value, unsigned hash)
            : value(value), key(Keys::Put(key, this + 1)), hash(hash) {}
        Node(const Node&) = delete;
        Node& operator=(const Node&) = delete;
        ~Node() { Keys::Free(key, this + 1); }

        void SetKey(K text) {
            K fresh = Keys::Copy(text);
            Keys::Free(key, this + 1);
            key = fresh;
        }

        Node* next = nullptr;
        QXHeldValue<V> value;
        K key;
        unsigned hash;
    };

    // A place in a walk; {} is the start. Adding or removing during a walk is not detected.
    struct position {
        int bucket = 0;
        Node* node = nullptr;
    };

    // REQUIRES: bucketCount > 0.
    constexpr explicit CTMap(unsigned bucketCount = 127) : bucketCount(bucketCount) {}
    CTMap(const CTMap&) = delete;
    CTMap& operator=(const CTMap&) = delete;
    virtual ~CTMap() { RemoveAll(); }

    // 1 and the value in `out`, or 0 with `out` as it was. With addRef the caller gets a reference
    // of his own on an interface; other values stay the map's.
    int Lookup(K key, V& out, int addRef = 0) { return LookupHash(Keys::Hash(key), out, addRef); }
    // The same with a hash that the caller made by the rule of the key.
    int LookupHash(unsigned hash, V& out, int addRef = 0) {
        V* value = FindHash(hash);
        if (!value) return 0;
        out = *value;
        if (addRef) Values::AddRef(out);
        return 1;
    }

    // The stored value itself, or null; good until the entry is removed.
    V* Find(K key) { return FindHash(Keys::Hash(key)); }
    V* FindHash(unsigned hash) {
        Node* node = MakeTable() ? NodeOf(hash) : nullptr;
        return node ? &node->value.value : nullptr;
    }

    // Adds or replaces; a replaced entry takes the new text as its key. 0 after the final clearing.
    int SetAt(K key, Argument value) { return SetAtHash(Keys::Hash(key), key, value); }
    int SetAtHash(unsigned hash, K key, Argument value);
    // 0 if absent, or after the final clearing.
    int RemoveKey(K key);

    // The next value or key of the walk: bucket by bucket, in each the newest first. Null at the
    // end, and the position is at the start again; null after the final clearing.
    V* GetNext(position& at, int addRef = 0) {
        if (!Advance(at)) return nullptr;
        V* value = &at.node->value.value;
        if (addRef) Values::AddRef(*value);
        return value;
    }
    K* GetNextKey(position& at) { return Advance(at) ? &at.node->key : nullptr; }

    // The final clearing: the map takes nothing more afterwards, until its owner sets `destroyed`
    // back to 0. A map that was never used stays as it is.
    void RemoveAll();

    Node** buckets = nullptr;  // made by the first operation
    unsigned count = 0;
    IHeap* heap =
        nullptr;  // holds the table; a default heap unless one is set before the first use
    unsigned bucketCount;
    unsigned tableMark = 0;  // kQXTableMark while there is a table
    unsigned destroyed = 0;

private:
    // Every operation comes here first. False after the final clearing.
    bool MakeTable() {
        if (destroyed) return false;
        if (!tableMark) MakeNewTable();
        return true;
    }
    QXCORE_NOINLINE void MakeNewTable();

    Node* NodeOf(unsigned hash) const {
        if (m_index.InUse()) return static_cast<Node*>(m_index.Find(hash));
        Node* node = buckets[hash % bucketCount];
        while (node && node->hash != hash) node = node->next;
        return node;
    }

    bool Advance(position& at);
    void Index(Node* added);

    QXMapIndex m_index;
};

template <class K, class V>
void CTMap<K, V>::MakeNewTable() {
    if (!heap) heap = Mem_DefaultHeap(0);
    buckets = static_cast<Node**>(heap->Alloc(bucketCount * sizeof(Node*)));
    tableMark = kQXTableMark;
}

template <class K, class V>
int CTMap<K, V>::SetAtHash(unsigned hash, K key, Argument value) {
    if (!MakeTable()) return 0;
    if (Node* node = NodeOf(hash)) {
        if (!Keys::Same(node->key, key)) node->SetKey(key);
        Values::Replace(node->value.value, value);
        return 1;
    }
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
        delete node;
        return 1;
    }
    return 0;
}

template <class K, class V>
void CTMap<K, V>::RemoveAll() {
    if (destroyed || !tableMark) return;
    destroyed = 1;
    m_index.Drop();
    for (unsigned bucket = 0; bucket < bucketCount; ++bucket) {
        while (Node* node = buckets[bucket]) {
            buckets[bucket] = node->next;
            delete node;
        }
    }
    heap->Free(buckets);
    buckets = nullptr;
    count = 0;
    tableMark = 0;
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

// The index begins when chains are longer than one on average, and is tried again from time to time
// without memory.
template <class K, class V>
void CTMap<K, V>::Index(Node* added) {
    auto add = [this](Node* node) {
        if constexpr (std::is_pointer_v<V>) {
            m_index.Add(node->hash, node, node->value.value);
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

// The keys of a counted map. The walk is the map's: after its end it starts over.
template <class Map, class T>
class _CMapKeyEnumOf : public _CCollectionEnum<Map, T> {
public:
    using _CCollectionEnum<Map, T>::_CCollectionEnum;

    int Next(unsigned count, T* out, unsigned* fetched) override {
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
    // 1 if a key remains.
    int Skip(unsigned count) override {
        this->Start();
        while (count--) {
            if (!this->m_collection->GetNextKey(m_position)) return 0;
        }
        auto ahead = m_position;
        return this->m_collection->GetNextKey(ahead) != nullptr;
    }
    void Reset() override {
        m_position = {};
        this->m_started = 1;
    }

private:
    typename Map::position m_position;
};

template <class K, class V, class KK = K, class VV = V>
class CTMapEnum;
template <class K, class V, class KK = K, class VV = V>
using _CMapKeyEnum = _CMapKeyEnumOf<CTMapEnum<K, V, KK, VV>, KK>;

// A map that is counted itself and gives out enumerators of its keys, as KK.
template <class K, class V, class KK, class VV>
class CTMapEnum : public CTMap<K, V>, public CQXUnknownImpl<IQXUnknown> {
public:
    constexpr explicit CTMapEnum(unsigned bucketCount = 127) : CTMap<K, V>(bucketCount) {}

    // A reference for the caller, or null after the final clearing.
    CTEnum<KK>* CreateEnum() {
        return this->destroyed ? nullptr : new _CMapKeyEnum<K, V, KK, VV>(this);
    }
};

#endif
