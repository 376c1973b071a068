// What a map does with its values.
#include "containers/watched.h"

#include <gtest/gtest.h>

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
