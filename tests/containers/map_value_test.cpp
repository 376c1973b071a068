// What a map does with its values.
#include "containers/watched.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace {

struct Edges {
    int left, top, right, bottom;
};

}  // namespace

TEST(MapValueTest, ACountedValueIsReferencedOnStoreAndReleasedOnRemoval) {
    Counted object;
    CTMap<const char*, IQXUnknown*> map;
    map.SetAt("a", &object);
    EXPECT_EQ(object.refs, 2u);
    map.RemoveKey("a");
    EXPECT_EQ(object.refs, 1u);
}

TEST(MapValueTest, ACountedOldValueIsReleasedOnReplacement) {
    Counted old, fresh;
    CTMap<const char*, IQXUnknown*> map;
    map.SetAt("a", &old);
    map.SetAt("a", &fresh);
    EXPECT_EQ(map.count, 1u);
    EXPECT_EQ(old.refs, 1u);
    EXPECT_EQ(fresh.refs, 2u);
}

TEST(MapValueTest, TheLastReferenceCanBeStoredAgainUnderItsKey) {
    int destroyed = 0;
    auto object = new Watched(&destroyed);
    CTMap<const char*, IQXUnknown*> map;
    map.SetAt("a", object);
    object->Release();
    map.SetAt("a", object);
    EXPECT_EQ(destroyed, 0);
    map.RemoveKey("a");
    EXPECT_EQ(destroyed, 1);
}

TEST(MapValueTest, CountedValuesAreReleasedByTheFinalClearingAndTheDestructor) {
    Counted object;
    CTMap<const char*, IQXUnknown*> cleared;
    cleared.SetAt("a", &object);
    cleared.SetAt("b", &object);
    cleared.RemoveAll();
    EXPECT_EQ(object.refs, 1u);
    {
        CTMap<const char*, IQXUnknown*> destroyed;
        destroyed.SetAt("a", &object);
    }
    EXPECT_EQ(object.refs, 1u);
}

TEST(MapValueTest, LookupAndWalkGiveAReferenceOnlyWhenAsked) {
    Counted object;
    CTMap<const char*, IQXUnknown*> map;
    map.SetAt("a", &object);
    IQXUnknown* found = nullptr;
    EXPECT_EQ(map.Lookup("a", found), 1);
    EXPECT_EQ(found, &object);
    EXPECT_EQ(object.refs, 2u);
    EXPECT_EQ(map.Lookup("a", found, 1), 1);
    EXPECT_EQ(object.refs, 3u);
    CTMap<const char*, IQXUnknown*>::position at, counted;
    EXPECT_EQ(*map.GetNext(at), &object);
    EXPECT_EQ(object.refs, 3u);
    EXPECT_EQ(*map.GetNext(counted, 1), &object);
    EXPECT_EQ(object.refs, 4u);
}

TEST(MapValueTest, AnInterfaceThatDerivesFromTheRootIsCountedToo) {
    int destroyed = 0;
    class Registrar : public CQXUnknownImpl<IRegisterIface> {
    public:
        explicit Registrar(int* destroyed) : destroyed(destroyed) {}
        ~Registrar() override { ++*destroyed; }
        int RegisterInterface(IQXUnknown*, qx_type_info const&, int) override { return 0; }
        int* destroyed;
    };
    CTMap<const unsigned long*, IRegisterIface*> map;
    IRegisterIface* object = new Registrar(&destroyed);
    map.SetAt(QXFoldedKey("Child"), object);
    object->Release();
    IRegisterIface* found = nullptr;
    EXPECT_EQ(map.Lookup(QXFoldedKey("CHILD"), found, 1), 1);
    map.RemoveAll();
    EXPECT_EQ(destroyed, 0);
    found->Release();
    EXPECT_EQ(destroyed, 1);
}

TEST(MapValueTest, ARefusedStoreTakesNoReference) {
    Counted object;
    CTMap<const char*, IQXUnknown*> map;
    map.SetAt("a", &object);
    map.RemoveAll();
    EXPECT_EQ(map.SetAt("a", &object), 0);
    EXPECT_EQ(object.refs, 1u);
}

TEST(MapValueTest, ANullInterfaceCanBeStored) {
    CTMap<const char*, IQXUnknown*> map;
    map.SetAt("a", nullptr);
    Counted object;
    IQXUnknown* found = &object;
    EXPECT_EQ(map.Lookup("a", found, 1), 1);
    EXPECT_EQ(found, nullptr);
    map.SetAt("a", &object);
    map.SetAt("a", nullptr);
    EXPECT_EQ(object.refs, 1u);
}

TEST(MapValueTest, OwnedValuesAreDeletedWithTheirNode) {
    int removed = 0, replaced = 0, cleared = 0;
    CTMap<int, Owned*> map;
    map.SetAt(1, new Owned(1, &removed));
    map.RemoveKey(1);
    EXPECT_EQ(removed, 1);
    map.SetAt(2, new Owned(2, &replaced));
    map.SetAt(2, new Owned(3, &cleared));
    EXPECT_EQ(replaced, 1);
    EXPECT_EQ(cleared, 0);
    map.RemoveAll();
    EXPECT_EQ(cleared, 1);
}

TEST(MapValueTest, AnOwnedValueStoredAgainStays) {
    int destroyed = 0;
    CTMap<const char*, Owned*> map;
    auto value = new Owned(1, &destroyed);
    map.SetAt("a", value);
    map.SetAt("a", value);
    EXPECT_EQ(destroyed, 0);
    map.RemoveKey("a");
    EXPECT_EQ(destroyed, 1);
}

TEST(MapValueTest, ARefusedOwnedValueStaysWithTheCaller) {
    int destroyed = 0;
    CTMap<const char*, Owned*> map;
    map.SetAt("a", new Owned);
    map.RemoveAll();
    Owned value(1, &destroyed);
    EXPECT_EQ(map.SetAt("a", &value), 0);
    EXPECT_EQ(destroyed, 0);
}

TEST(MapValueTest, AnEntryOfAnAttachedInterfaceReleasesItsObjectIfCounted) {
    Counted counted, uncounted;
    counted.AddRef();
    {
        CTMap<const char*, _tIQXUnknown*> map;
        map.SetAt("a", new _tIQXUnknown{"a", &counted, 1});
        map.SetAt("b", new _tIQXUnknown{"b", &uncounted, 0});
    }
    EXPECT_EQ(counted.refs, 1u);
    EXPECT_EQ(uncounted.refs, 1u);
}

TEST(MapValueTest, RecordsAreStoredByValue) {
    CTMap<unsigned int, Edges> map;
    Edges edges{1, 2, 3, 4};
    map.SetAt(7, edges);
    edges.left = 9;
    Edges found{};
    EXPECT_EQ(map.Lookup(7, found), 1);
    EXPECT_EQ(found.left, 1);
    EXPECT_EQ(found.bottom, 4);
    map.SetAt(7, edges);
    map.Lookup(7, found);
    EXPECT_EQ(found.left, 9);
}

TEST(MapValueTest, AVariantIsClearedOnRemovalReplacementAndClearing) {
    Counted removed, replaced, cleared;
    CTMap<const unsigned long*, CQXVariant> map;
    map.SetAt(QXFoldedKey("a"), CQXVariant(&removed));
    EXPECT_EQ(removed.refs, 2u);
    map.RemoveKey(QXFoldedKey("A"));
    EXPECT_EQ(removed.refs, 1u);
    map.SetAt(QXFoldedKey("b"), CQXVariant(&replaced));
    map.SetAt(QXFoldedKey("B"), CQXVariant(&cleared));
    EXPECT_EQ(replaced.refs, 1u);
    map.RemoveAll();
    EXPECT_EQ(cleared.refs, 1u);
}

TEST(MapValueTest, AValueStoredOverItselfStays) {
    CTMap<const unsigned long*, CQXVariant> map;
    map.SetAt(QXFoldedKey("a"), CQXVariant(7));
    CQXVariant* stored = map.Find(QXFoldedKey("a"));
    map.SetAt(QXFoldedKey("a"), *stored);
    EXPECT_EQ(stored->value.intVal, 7);
}

namespace {

// Looks into its map while it is destroyed.
struct Prying {
    Prying(CTMap<int, Prying*>& map, int& found) : map(map), found(found) {}
    ~Prying() {
        Prying* other = nullptr;
        found = map.Lookup(1, other) && other != this;
        map.RemoveKey(2);
    }

    CTMap<int, Prying*>& map;
    int& found;
};

}  // namespace

TEST(MapValueTest, ADestructorMayUseTheMapWhoseEntryGoes) {
    int found = 5, second = 5;
    CTMap<int, Prying*> map;
    map.SetAt(1, new Prying(map, found));
    map.SetAt(1, new Prying(map, found));
    EXPECT_EQ(found, 1);  // the new value was in place already
    map.RemoveKey(1);
    EXPECT_EQ(found, 0);
    EXPECT_EQ(map.count, 0u);
    map.SetAt(1, new Prying(map, found));
    map.SetAt(2, new Prying(map, second));
    found = second = 5;
    map.RemoveAll();
    EXPECT_EQ(found, 0);
    EXPECT_EQ(second, 0);
}

namespace {

using VariantMap = CTMap<int, CQXVariant>;

// Uses the map while it is destroyed, held by one of the map's variants.
class Intruder : public CQXUnknownImpl<IQXUnknown> {
public:
    template <class Act>
    static CQXVariant In(Act act) {
        auto object = new Intruder(act);
        CQXVariant variant(static_cast<IQXUnknown*>(object));
        object->Release();
        return variant;
    }
    ~Intruder() override { m_act(); }

private:
    explicit Intruder(std::function<void()> act) : m_act(std::move(act)) {}
    std::function<void()> m_act;
};

}  // namespace

TEST(MapValueTest, TheEndOfAReplacedVariantFindsTheNewOneInItsPlace) {
    VariantMap map;
    int found = 0;
    map.SetAt(1, Intruder::In([&] { found = map.Find(1)->value.intVal; }));
    map.SetAt(1, CQXVariant(7));
    EXPECT_EQ(found, 7);
}

TEST(MapValueTest, TheEndOfAReplacedVariantMayRemoveItsEntry) {
    VariantMap map;
    map.SetAt(1, Intruder::In([&] { EXPECT_EQ(map.RemoveKey(1), 1); }));
    EXPECT_EQ(map.SetAt(1, CQXVariant("a text that takes a block")), 1);
    EXPECT_EQ(map.count, 0u);
    EXPECT_EQ(map.SetAt(1, CQXVariant(8)), 1);
}

TEST(MapValueTest, TheEndOfAReplacedVariantMayReplaceItsSuccessor) {
    VariantMap map;
    map.SetAt(1, Intruder::In([&] { map.SetAt(1, CQXVariant("from the end")); }));
    map.SetAt(1, CQXVariant("from outside"));
    EXPECT_STREQ(map.Find(1)->value.string, "from the end");
}

TEST(MapValueTest, TheEndOfAReplacedVariantMayClearTheMap) {
    VariantMap map;
    map.SetAt(1, Intruder::In([&] { map.RemoveAll(); }));
    EXPECT_EQ(map.SetAt(1, CQXVariant(7)), 1);
    EXPECT_EQ(map.count, 0u);
    EXPECT_EQ(map.SetAt(1, CQXVariant(7)), 0);
}

TEST(MapValueTest, AVariantOfTheMapCanBeStoredOverTheOneThatHoldsIt) {
    VariantMap map;
    auto inner = std::make_unique<CQXVariant>("inner");
    CQXVariant& kept = *inner;
    map.SetAt(1, Intruder::In([&] { inner.reset(); }));
    map.SetAt(1, kept);  // goes with the object that the old value holds
    EXPECT_STREQ(map.Find(1)->value.string, "inner");
}

// ---- a map that is used while it is cleared

TEST(MapValueTest, WhatAnOwnerAddsWhileItsMapIsClearedIsKept) {
    Counted late;
    CTMap<int, CQXVariant> map;
    for (int key = 0; key < 5; ++key) {
        map.SetAt(key, Intruder::In([&] {
                      map.destroyed = 0;  // an owner that uses its map again
                      map.SetAt(100, CQXVariant(&late));
                  }));
    }
    map.RemoveAll();
    EXPECT_EQ(map.count, 1u);
    ASSERT_NE(map.Find(100), nullptr);
    EXPECT_EQ(late.refs, 2u);
    map.RemoveAll();
    EXPECT_EQ(late.refs, 1u);
}

// ---- values whose release raises

TEST(MapValueTest, ARemovalPassesOnWhatTheReleaseRaises) {
    int destroyed = 0;
    CTMap<int, IQXUnknown*> map;
    IQXUnknown* object = new Raising(&destroyed);
    map.SetAt(1, object);
    map.SetAt(2, nullptr);
    object->Release();
    EXPECT_THROW(map.RemoveKey(1), CXException);
    EXPECT_EQ(destroyed, 1);
    EXPECT_EQ(map.count, 1u);
    EXPECT_EQ(map.Find(1), nullptr);
}

TEST(MapValueTest, AReplacementPassesOnWhatTheOldValuesReleaseRaises) {
    int destroyed = 0;
    Counted fresh;
    CTMap<const char*, IQXUnknown*> map;
    IQXUnknown* object = new Raising(&destroyed);
    map.SetAt(kFirstOfTwins, object);
    object->Release();
    EXPECT_THROW(map.SetAt(kSecondOfTwins, &fresh), CXException);
    EXPECT_EQ(destroyed, 1);
    EXPECT_EQ(*map.Find(kFirstOfTwins), &fresh);
    CTMap<const char*, IQXUnknown*>::position at;
    EXPECT_STREQ(*map.GetNextKey(at), kSecondOfTwins);
}

TEST(MapValueTest, TheFinalClearingReleasesAllAndPassesOnTheFirstFailure) {
    int destroyed = 0;
    CTMap<int, IQXUnknown*> map;
    for (int key = 0; key < 300; ++key) {
        IQXUnknown* object = new Raising(&destroyed);
        map.SetAt(key, object);
        object->Release();
    }
    EXPECT_THROW(map.RemoveAll(), CXException);
    EXPECT_EQ(destroyed, 300);
    EXPECT_EQ(map.count, 0u);
    EXPECT_EQ(map.destroyed, 1u);
    map.RemoveAll();
}

TEST(MapValueTest, TheEndOfAMapDropsWhatReleasesRaise) {
    int destroyed = 0;
    {
        CTMap<int, IQXUnknown*> map;
        CTMap<int, CQXVariant> variants;
        CTMap<int, _tIQXUnknown*> attached;
        for (int key = 0; key < 3; ++key) {
            IQXUnknown* object = new Raising(&destroyed);
            map.SetAt(key, object);
            object->Release();
            object = new Raising(&destroyed);
            variants.SetAt(key, CQXVariant(object));
            object->Release();
            attached.SetAt(key, new _tIQXUnknown{"", new Raising(&destroyed), 1});
        }
    }
    EXPECT_EQ(destroyed, 9);
}
