// The enumerators that lists and maps give out.
#include "containers/watched.h"
#include "support/slot.h"

#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>

namespace {

using TextList = CTListEnum<const char*, const char*>;
using WritableTextList = CTListEnum<char*, const char*>;
using NameMap = CTMapEnum<const char*, int, const char*, int>;

template <class Collection>
class WatchedCollection : public Collection {
public:
    explicit WatchedCollection(int& destroyed) : destroyed(destroyed) {}
    ~WatchedCollection() override { ++destroyed; }

    int& destroyed;
};

// A list "a", "b", "c".
template <class List>
List* NewList() {
    auto list = new List;
    for (auto text : {"a", "b", "c"}) list->AddTail(text);
    return list;
}

// One-letter names are their own hashes, so they come in the order of the alphabet: 'a' is 97, 'z'
// is 122.
NameMap* NewMap() {
    auto map = new NameMap;
    for (auto name : {"c", "a", "b"}) map->SetAt(name, 0);
    return map;
}

}  // namespace

template <class Collection>
class CollectionEnumTest : public testing::Test {
public:
    CollectionEnumTest() {
        if constexpr (std::is_same_v<Collection, NameMap>) {
            collection = NewMap();
        } else {
            collection = NewList<Collection>();
        }
        names = collection->CreateEnum();
    }
    ~CollectionEnumTest() override {
        names->Release();
        collection->Release();
    }

    Collection* collection;
    CTEnum<const char*>* names;
    const char* out[5] = {};
    unsigned fetched = 9;
};

using Collections = testing::Types<TextList, WritableTextList, NameMap>;
TYPED_TEST_SUITE(CollectionEnumTest, Collections);

TYPED_TEST(CollectionEnumTest, NextDeliversInOrderUpToTheCount) {
    EXPECT_EQ(this->names->Next(2, this->out, &this->fetched), 1);
    EXPECT_EQ(this->fetched, 2u);
    EXPECT_STREQ(this->out[0], "a");
    EXPECT_STREQ(this->out[1], "b");
    EXPECT_EQ(this->names->Next(5, this->out, &this->fetched), 1);
    EXPECT_EQ(this->fetched, 1u);
    EXPECT_STREQ(this->out[0], "c");
    EXPECT_STREQ(this->out[1], "b");
}

TYPED_TEST(CollectionEnumTest, NextBehindTheLastItemDeliversNothing) {
    this->names->Next(3, this->out, nullptr);
    EXPECT_EQ(this->names->Next(1, this->out, &this->fetched), 0);
    EXPECT_EQ(this->fetched, 0u);
}

TYPED_TEST(CollectionEnumTest, FetchedMayBeNull) {
    EXPECT_EQ(this->names->Next(1, this->out, nullptr), 1);
    EXPECT_STREQ(this->out[0], "a");
}

TYPED_TEST(CollectionEnumTest, NextWithCountZeroAnswersZero) {
    EXPECT_EQ(this->names->Next(0, this->out, &this->fetched), 0);
    EXPECT_EQ(this->fetched, 0u);
    EXPECT_EQ(this->out[0], nullptr);
}

TYPED_TEST(CollectionEnumTest, NextWithoutAnArrayDeliversNothingAndStays) {
    EXPECT_EQ(this->names->Next(2, nullptr, &this->fetched), 0);
    EXPECT_EQ(this->fetched, 0u);
    this->names->Next(1, this->out, nullptr);
    EXPECT_STREQ(this->out[0], "a");
}

TYPED_TEST(CollectionEnumTest, SkipAnswersWhetherAnItemRemains) {
    EXPECT_EQ(this->names->Skip(0), 1);
    EXPECT_EQ(this->names->Skip(1), 1);
    EXPECT_EQ(this->names->Next(1, this->out, nullptr), 1);
    EXPECT_STREQ(this->out[0], "b");
    EXPECT_EQ(this->names->Skip(1), 0);
    EXPECT_EQ(this->names->Next(1, this->out, nullptr), 0);
}

TYPED_TEST(CollectionEnumTest, SkipBeyondTheEndAnswersZero) {
    EXPECT_EQ(this->names->Skip(1000), 0);
}

TYPED_TEST(CollectionEnumTest, ResetGoesBackToTheStart) {
    this->names->Next(2, this->out, nullptr);
    this->names->Reset();
    EXPECT_EQ(this->names->Next(1, this->out, nullptr), 1);
    EXPECT_STREQ(this->out[0], "a");
}

TYPED_TEST(CollectionEnumTest, ACollectionClearedMeanwhileDeliversNothing) {
    this->names->Next(1, this->out, nullptr);
    this->collection->RemoveAll();
    EXPECT_EQ(this->names->Next(1, this->out, &this->fetched), 0);
    EXPECT_EQ(this->fetched, 0u);
    EXPECT_EQ(this->names->Skip(1), 0);
}

TYPED_TEST(CollectionEnumTest, AClearedCollectionGivesNoEnumerator) {
    this->collection->RemoveAll();
    // A map that was never used would not be cleared; this one was.
    EXPECT_EQ(this->collection->CreateEnum(), nullptr);
}

TYPED_TEST(CollectionEnumTest, TwoEnumeratorsWalkByThemselves) {
    this->names->Next(2, this->out, nullptr);
    auto other = this->collection->CreateEnum();
    EXPECT_NE(other, this->names);
    other->Next(1, this->out, nullptr);
    EXPECT_STREQ(this->out[0], "a");
    other->Release();
    this->names->Next(1, this->out, nullptr);
    EXPECT_STREQ(this->out[0], "c");
}

TYPED_TEST(CollectionEnumTest, TheEnumeratorKnowsItsIdentityAndTheRoot) {
    IQXUnknown* found = nullptr;
    EXPECT_EQ(this->names->QueryInterface(qx_typeid<CTEnum<const char*>>(), &found), 1);
    EXPECT_EQ(found, this->names);
    found->Release();
    EXPECT_EQ(this->names->QueryInterface(qx_typeid<IQXUnknown>(), nullptr), 1);
    EXPECT_EQ(this->names->QueryInterface(qx_typeid<CTEnum<char*>>(), &found), 0);
    EXPECT_EQ(found, nullptr);
}

TYPED_TEST(CollectionEnumTest, EachReferenceToAnEnumeratorHoldsTheCollectionToo) {
    int destroyed = 0;
    auto collection = new WatchedCollection<TypeParam>(destroyed);
    auto names = collection->CreateEnum();
    EXPECT_EQ(names->AddRef(), 2u);
    EXPECT_EQ(collection->AddRef(), 4u);
    collection->Release();
    collection->Release();
    EXPECT_EQ(destroyed, 0);
    EXPECT_EQ(names->Release(), 1u);
    EXPECT_EQ(destroyed, 0);
    EXPECT_EQ(names->Release(), 0u);
    EXPECT_EQ(destroyed, 1);
}

TYPED_TEST(CollectionEnumTest, ACountedCollectionGoesWithItsLastReference) {
    int destroyed = 0;
    auto collection = new WatchedCollection<TypeParam>(destroyed);
    EXPECT_EQ(collection->AddRef(), 2u);
    EXPECT_EQ(collection->Release(), 1u);
    EXPECT_EQ(destroyed, 0);
    EXPECT_EQ(collection->QueryInterface(qx_typeid<IQXUnknown>(), nullptr), 1);
    EXPECT_EQ(collection->Release(), 0u);
    EXPECT_EQ(destroyed, 1);
}

TYPED_TEST(CollectionEnumTest, AnEmptyCollectionDeliversNothing) {
    auto collection = new TypeParam;
    auto names = collection->CreateEnum();
    ASSERT_NE(names, nullptr);
    EXPECT_EQ(names->Next(1, this->out, &this->fetched), 0);
    EXPECT_EQ(this->fetched, 0u);
    EXPECT_EQ(names->Skip(1), 0);
    names->Release();
    collection->Release();
}

TYPED_TEST(CollectionEnumTest, TheSlotsBehindTheRootsAreNextSkipReset) {
    auto next = Slot<int(void*, unsigned, const char**, unsigned*)>(this->names, 3);
    auto skip = Slot<int(void*, unsigned)>(this->names, 4);
    auto reset = Slot<void(void*)>(this->names, 5);
    EXPECT_EQ(skip(this->names, 1), 1);
    EXPECT_EQ(next(this->names, 1, this->out, &this->fetched), 1);
    EXPECT_STREQ(this->out[0], "b");
    reset(this->names);
    EXPECT_EQ(next(this->names, 1, this->out, &this->fetched), 1);
    EXPECT_STREQ(this->out[0], "a");
}

TEST(ListEnumTest, AListStaysAtItsEndUntilReset) {
    auto list = NewList<TextList>();
    auto names = list->CreateEnum();
    const char* out[5];
    names->Next(5, out, nullptr);
    EXPECT_EQ(names->Next(1, out, nullptr), 0);
    EXPECT_EQ(names->Next(1, out, nullptr), 0);
    names->Release();
    list->Release();
}

TEST(MapEnumTest, AMapStartsOverAfterItsEndWasReached) {
    auto map = NewMap();
    auto names = map->CreateEnum();
    const char* out[5] = {};
    unsigned fetched = 0;
    EXPECT_EQ(names->Next(5, out, &fetched), 1);
    EXPECT_EQ(fetched, 3u);
    EXPECT_EQ(names->Next(1, out, &fetched), 1);
    EXPECT_STREQ(out[0], "a");
    names->Release();
    map->Release();
}

TEST(EnumTest, EnumeratorsAreIdentifiedByTheirDecoratedNames) {
    EXPECT_STREQ(qx_typeid<CTEnum<const char*>>().name, ".?AV?$CTEnum@PEBD@@");
    EXPECT_STREQ(qx_typeid<CTEnum<char*>>().name, ".?AV?$CTEnum@PEAD@@");
    EXPECT_STREQ(qx_typeid<CTEnum<IQXUnknown*>>().name, ".?AV?$CTEnum@PEAUIQXUnknown@@@@");
}
