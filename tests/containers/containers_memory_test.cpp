// What the containers do when the n-th allocation fails.
#include "containers/watched.h"
#include "support/allocation_failure.h"

#include <gtest/gtest.h>
#include <qxcore/reference.h>

#include <cstring>
#include <memory>

namespace {

using IntMap = CTMap<int, int>;

template <class Map, class Key, class Value>
std::unique_ptr<Map> NewMap(Key key, Value value) {
    auto map = std::make_unique<Map>();
    map->SetAt(key, value);
    return map;
}

std::unique_ptr<IntMap> NewIntMap(int n) {
    auto map = std::make_unique<IntMap>();
    for (int key = 0; key < n; ++key) map->SetAt(key, key);
    return map;
}

// Adds a second key to a map that has one, each allocation failing in turn. The map keeps the first
// and takes the second afterwards.
template <class K, class V>
unsigned FailEachAddition(K first, K second, V value) {
    using Map = CTMap<K, V>;
    return FailEachAllocation([&] { return NewMap<Map>(first, value); },
                              [&](auto& map) { map->SetAt(second, value); },
                              [&](auto& map) {
                                  EXPECT_EQ(map->count, 1u);
                                  EXPECT_NE(map->Find(first), nullptr);
                                  EXPECT_EQ(map->Find(second), nullptr);
                                  EXPECT_EQ(map->SetAt(second, value), 1);
                                  EXPECT_EQ(map->count, 2u);
                              });
}

// The same for a list of texts.
template <class List>
unsigned FailEachListAddition() {
    return FailEachAllocation(
        [] {
            auto list = std::make_unique<List>();
            list->AddTail("a");
            return list;
        },
        [](auto& list) { list->AddTail("b"); },
        [](auto& list) {
            EXPECT_EQ(list->count, 1u);
            EXPECT_EQ(list->head, list->tail);
            list->AddTail("b");
            auto at = list->GetHeadPosition();
            EXPECT_STREQ(*list->GetNext(at), "a");
            EXPECT_STREQ(*list->GetNext(at), "b");
        });
}

// Stores an owned value, each allocation besides its own failing in turn.
template <class K>
unsigned FailEachOwnedStore(K first, K key) {
    using Map = CTMap<K, Owned*>;
    int destroyed = 0;
    std::unique_ptr<Owned> value;
    return FailEachAllocation(
        [&] {
            value = std::make_unique<Owned>(1, &destroyed);
            destroyed = 0;
            return NewMap<Map>(first, new Owned);
        },
        [&](auto& map) {
            map->SetAt(key, value.get());
            value.release();
        },
        [&](auto& map) {
            EXPECT_EQ(map->count, 1u);
            EXPECT_EQ(destroyed, 0);
            value.reset();
        });
}

// The keys 0 to n - 1 are found by hash and on a walk, and there is nothing else.
void ExpectKeys(IntMap& map, int n) {
    EXPECT_EQ(map.count, static_cast<unsigned>(n));
    int value = -1, walked = 0;
    for (int key = 0; key < n; ++key) {
        EXPECT_EQ(map.Lookup(key, value), 1);
        EXPECT_EQ(value, key);
    }
    EXPECT_EQ(map.Lookup(n, value), 0);
    IntMap::position at = {};
    while (map.GetNext(at)) ++walked;
    EXPECT_EQ(walked, n);
}

}  // namespace

TEST(ContainersMemoryTest, AMapWithoutATableFailsAndTriesAgain) {
    using Map = CTMap<const char*, int>;
    auto make = [] { return std::make_unique<Map>(); };
    auto check = [](auto& map) {
        EXPECT_EQ(map->count, 0u);
        EXPECT_EQ(map->SetAt("one", 1), 1);
        int value = 0;
        EXPECT_EQ(map->Lookup("one", value), 1);
    };
    EXPECT_EQ(FailEachAllocation(
                  make, [](auto& map) { map->SetAt("one", 1); }, check),
              2u);
    EXPECT_EQ(FailEachAllocation(
                  make, [](auto& map) { map->RemoveKey("one"); }, check),
              1u);
    EXPECT_EQ(FailEachAllocation(
                  make,
                  [](auto& map) {
                      Map::position at;
                      map->GetNext(at);
                  },
                  check),
              1u);
}

TEST(ContainersMemoryTest, AFailedAdditionLeavesTheMapAsItWas) {
    struct Rectangle {
        double left, top, right, bottom;
    };
    Counted object;
    auto folded = QXFoldedKey;
    // The one block that an addition takes besides those of its value; the text of the key stands
    // in it.
    constexpr unsigned kNode = 1;
    EXPECT_EQ((FailEachAddition<const char*, int>("one", "two", 1)), kNode);
    EXPECT_EQ((FailEachAddition<const char*, IQXUnknown*>("one", "two", &object)), kNode);
    EXPECT_EQ((FailEachAddition<const unsigned long*, IQXUnknown*>(folded("one"), folded("two"),
                                                                   &object)),
              kNode);
    EXPECT_EQ((FailEachAddition<const unsigned long*, CQXVariant>(folded("one"), folded("two"),
                                                                  CQXVariant(1))),
              kNode);
    EXPECT_EQ((FailEachAddition<unsigned, Rectangle>(1, 2, Rectangle{})), kNode);
    EXPECT_EQ(object.refs, 1u);
}

TEST(ContainersMemoryTest, AFailedReplacementKeepsTheOldEntry) {
    using Map = CTMap<const char*, int>;
    unsigned failures = FailEachAllocation([] { return NewMap<Map>(kFirstOfTwins, 1); },
                                           [](auto& map) { map->SetAt(kSecondOfTwins, 2); },
                                           [](auto& map) {
                                               Map::position at;
                                               EXPECT_STREQ(*map->GetNextKey(at), kFirstOfTwins);
                                               int value = 0;
                                               EXPECT_EQ(map->Lookup(kFirstOfTwins, value), 1);
                                               EXPECT_EQ(value, 1);
                                           });
    EXPECT_EQ(failures, 1u);  // the key
}

TEST(ContainersMemoryTest, AKeyThatTookAnotherTextGoesWithItsEntry) {
    using Map = CTMap<const char*, int>;
    long before = LiveBlocks();
    {
        auto map = NewMap<Map>(kFirstOfTwins, 1);
        for (auto key : {kSecondOfTwins, kFirstOfTwins, kFirstOfTwins, kSecondOfTwins})
            map->SetAt(key, 2);
        Map::position at;
        EXPECT_STREQ(*map->GetNextKey(at), kSecondOfTwins);
        EXPECT_EQ(map->SetAt("other", 3), 1);
        EXPECT_EQ(map->RemoveKey(kFirstOfTwins), 1);
        EXPECT_EQ(map->count, 1u);
    }
    EXPECT_EQ(LiveBlocks(), before);
}

TEST(ContainersMemoryTest, AFailedAdditionTakesNoReference) {
    using Map = CTMap<const unsigned long*, IQXUnknown*>;
    Counted old, object;
    auto make = [&] { return NewMap<Map>(QXFoldedKey("one"), &old); };
    auto check = [&](auto&) {
        EXPECT_EQ(old.refs, 2u);
        EXPECT_EQ(object.refs, 1u);
    };
    EXPECT_EQ(FailEachAllocation(
                  make, [&](auto& map) { map->SetAt(QXFoldedKey("two"), &object); }, check),
              1u);
    EXPECT_EQ(FailEachAllocation(
                  make, [&](auto& map) { map->SetAt(QXFoldedKey("ONE"), &object); }, check),
              1u);
    EXPECT_EQ(old.refs, 1u);
    EXPECT_EQ(object.refs, 1u);
}

TEST(ContainersMemoryTest, AnOwnedValueThatCouldNotBeStoredStaysWithTheCaller) {
    EXPECT_EQ(FailEachOwnedStore("one", "one"),
              0u);  // a replacement of the same text takes nothing
    EXPECT_EQ(FailEachOwnedStore("one", "two"), 1u);
    EXPECT_EQ(FailEachOwnedStore(1, 2), 1u);
}

TEST(ContainersMemoryTest, AVariantThatCannotBeCopiedLeavesTheMapUsable) {
    using Map = CTMap<const unsigned long*, CQXVariant>;
    CQXVariant text("a text that takes a block");
    for (auto key : {"one", "two"}) {
        unsigned failures = FailEachAllocation(
            [] { return NewMap<Map>(QXFoldedKey("one"), CQXVariant(1)); },
            [&](auto& map) { map->SetAt(QXFoldedKey(key), text); },
            [&](auto& map) {
                EXPECT_EQ(map->count, 1u);
                EXPECT_NE(map->Find(QXFoldedKey("one")), nullptr);
                EXPECT_EQ(map->SetAt(QXFoldedKey(key), text), 1);
                EXPECT_STREQ(map->Find(QXFoldedKey(key))->value.string, text.value.string);
            });
        bool replaces = strcmp(key, "one") == 0;
        EXPECT_EQ(failures,
                  replaces ? 1u : 2u);  // the text alone, or the node with its key and the text
    }
}

TEST(ContainersMemoryTest, AVariantThatCannotBeCopiedKeepsTheOldEntry) {
    using Map = CTMap<const char*, CQXVariant>;
    CQXVariant text("a text that takes a block");
    Counted object;
    unsigned failures =
        FailEachAllocation([&] { return NewMap<Map>(kFirstOfTwins, CQXVariant(&object)); },
                           [&](auto& map) { map->SetAt(kSecondOfTwins, text); },
                           [&](auto& map) {
                               Map::position at;
                               EXPECT_STREQ(*map->GetNextKey(at), kFirstOfTwins);
                               CQXVariant* stored = map->Find(kFirstOfTwins);
                               EXPECT_EQ(stored->type, QXVT_UNKNOWN);
                               EXPECT_EQ(stored->value.unknown, &object);
                               EXPECT_EQ(object.refs, 2u);
                           });
    EXPECT_EQ(failures, 2u);  // the key and the text
    EXPECT_EQ(object.refs, 1u);
}

TEST(ContainersMemoryTest, ALargeMapDoesWithoutItsIndex) {
    // Around the sizes where an index begins or grows.
    for (int n : {120, 126, 127, 128, 129, 253, 254, 255, 256, 257}) {
        unsigned failures =
            FailEachAllocation([n] { return NewIntMap(n); }, [n](auto& map) { map->SetAt(n, n); },
                               [n](auto& map) {
                                   bool added = map->count == static_cast<unsigned>(n) + 1;
                                   ExpectKeys(*map, added ? n + 1 : n);
                                   for (int key = n; key < n + 300; ++key)
                                       EXPECT_EQ(map->SetAt(key, key), 1);
                                   ExpectKeys(*map, n + 300);
                                   EXPECT_EQ(map->RemoveKey(n + 299), 1);
                                   ExpectKeys(*map, n + 299);
                               },
                               true);
        EXPECT_GE(failures, 1u) << n;
    }
}

TEST(ContainersMemoryTest, AFailedAdditionLeavesTheListAsItWas) {
    EXPECT_EQ(FailEachListAddition<CTPList<const char*>>(), 2u);  // the node and the text
    EXPECT_EQ(FailEachListAddition<CTPList<char*>>(), 2u);
    EXPECT_EQ(FailEachListAddition<CTListEnum<const char*>>(), 2u);
}

TEST(ContainersMemoryTest, ARecordThatCouldNotBeListedStaysWithTheCaller) {
    int destroyed = 0;
    auto act = [&](auto& list) {
        auto record = std::make_unique<Owned>(1, &destroyed);
        try {
            list->AddTail(record.get());
        } catch (CXMemException&) {
            EXPECT_EQ(destroyed, 0);
            throw;
        }
        record.release();
    };
    auto check = [&](auto& list) {
        EXPECT_EQ(list->count, 0u);
        destroyed = 0;
    };
    EXPECT_EQ(FailEachAllocation([] { return std::make_unique<CTPList<Owned*>>(); }, act, check),
              2u);
}

TEST(ContainersMemoryTest, AnEnumeratorThatCannotBeMadeHoldsNothing) {
    using List = CTListEnum<const char*, const char*>;
    using Map = CTMapEnum<const char*, int, const char*, int>;
    auto act = [](auto& collection) { collection->CreateEnum()->Release(); };
    auto check = [](auto& collection) {
        EXPECT_EQ(collection->AddRef(), 2u);
        collection->Release();
    };
    EXPECT_EQ(FailEachAllocation([] { return qx::Reference<List>(new List); }, act, check), 1u);
    EXPECT_EQ(FailEachAllocation([] { return qx::Reference<Map>(new Map); }, act, check), 1u);
}

TEST(ContainersMemoryTest, AnEnumeratorOverTextsThatCannotBeMadeHoldsNothing) {
    Counted owner;
    auto make = [] { return 0; };
    auto check = [&](int) { EXPECT_EQ(owner.refs, 1u); };
    auto split = [&](int) {
        (new _CCharSeparatedStringsEnum<char>(";", "a;b", &owner))->Release();
    };
    auto block = [&](int) { (new _CZeroDelimitedStringsEnum<char>("a\0b\0", &owner))->Release(); };
    EXPECT_EQ(FailEachAllocation(make, split, check), 3u);  // the object, its text and the array
    EXPECT_EQ(FailEachAllocation(make, block, check), 3u);
}

TEST(ContainersMemoryTest, AFailedAttachmentKeepsTheOldOne) {
    Counted old, fresh;
    unsigned failures = FailEachAllocation(
        [&] {
            auto table = std::make_unique<CAttachedInterfaces>();
            table->Register(&old, qx_typeid<IHeap>(), 1);
            return table;
        },
        [&](auto& table) { table->Register(&fresh, qx_typeid<IHeap>(), 1); },
        [&](auto& table) {
            IQXUnknown* found = nullptr;
            EXPECT_EQ(table->Query(qx_typeid<IHeap>(), &found), 1);
            EXPECT_EQ(found, &old);
            found->Release();
            EXPECT_EQ(fresh.refs, 1u);
            EXPECT_EQ(old.refs, 2u);
        });
    EXPECT_EQ(failures, 1u);  // the entry; its key stands in the table already
    EXPECT_EQ(old.refs, 1u);
    EXPECT_EQ(fresh.refs, 1u);
}

TEST(ContainersMemoryTest, AFailedFirstAttachmentLeavesNothingAttached) {
    Counted object;
    unsigned failures =
        FailEachAllocation([] { return std::make_unique<CAttachedInterfaces>(); },
                           [&](auto& table) { table->Register(&object, qx_typeid<IHeap>(), 1); },
                           [&](auto& table) {
                               EXPECT_EQ(object.refs, 1u);
                               EXPECT_EQ(table->Query(qx_typeid<IHeap>(), nullptr), 0);
                               EXPECT_EQ(table->Register(&object, qx_typeid<IHeap>(), 1), 1);
                               EXPECT_EQ(table->Query(qx_typeid<IHeap>(), nullptr), 1);
                           });
    EXPECT_EQ(failures, 3u);  // the entry, the table and the node with its key
    EXPECT_EQ(object.refs, 1u);
}
