#include "containers/watched.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <type_traits>

namespace {

constinit CTMap<const char*, Owned*> g_startedWithoutCode(1397);

// The heap in the word before a block.
IHeap* HeapOf(void* block) {
    return static_cast<IHeap**>(block)[-1];
}

}  // namespace

TEST(MapTest, ANewMapHasNoTableAnd127Buckets) {
    CTMap<const char*, int> map;
    EXPECT_EQ(map.buckets, nullptr);
    EXPECT_EQ(map.count, 0u);
    EXPECT_EQ(map.heap, nullptr);
    EXPECT_EQ(map.bucketCount, 127u);
    EXPECT_EQ(map.tableMark, 0u);
    EXPECT_EQ(map.destroyed, 0u);
}

TEST(MapTest, TheFieldsLieInTheirOrder) {
    CTMap<const char*, int> map;
    auto at = [&](auto& field) {
        return reinterpret_cast<char*>(&field) - reinterpret_cast<char*>(&map);
    };
    EXPECT_EQ(at(map.buckets), 8);  // behind the table of virtual functions
    EXPECT_EQ(at(map.count), 16);
    EXPECT_EQ(at(map.heap), 24);
    EXPECT_EQ(at(map.bucketCount), 32);
    EXPECT_EQ(at(map.tableMark), 36);
    EXPECT_EQ(at(map.destroyed), 40);
}

TEST(MapTest, ANewMapAnswersLookupWithZeroAndMakesItsTableThen) {
    CTMap<const char*, int> map;
    int value = 5;
    EXPECT_EQ(map.Lookup("a", value), 0);
    EXPECT_EQ(value, 5);
    EXPECT_NE(map.buckets, nullptr);
    EXPECT_NE(map.heap, nullptr);
    EXPECT_EQ(map.tableMark, 6502u);
}

TEST(MapTest, EveryOperationMakesTheTable) {
    CTMap<int, int> added, removed, walked, keyWalked;
    CTMap<int, int>::position start, keyStart;
    added.SetAt(1, 1);
    removed.RemoveKey(1);
    walked.GetNext(start);
    keyWalked.GetNextKey(keyStart);
    for (auto* map : {&added, &removed, &walked, &keyWalked}) EXPECT_EQ(map->tableMark, 6502u);
}

TEST(MapTest, TheTableComesFromADefaultHeapThatTheMapKeeps) {
    CTMap<int, int> map;
    map.SetAt(1, 1);
    IHeap* heap = map.heap;
    bool isDefault = false;
    for (int i = 0; i < 4; ++i) isDefault = isDefault || Mem_DefaultHeap(0) == heap;
    EXPECT_TRUE(isDefault);
    EXPECT_EQ(HeapOf(map.buckets), heap);
    EXPECT_GE(heap->GetSize(map.buckets), 127 * sizeof(void*));
    map.SetAt(2, 2);
    EXPECT_EQ(map.heap, heap);
}

TEST(MapTest, AHeapThatIsSetBeforeTheFirstUseIsTaken) {
    IHeap* heap = new_MemoryHeap(0);
    {
        CTMap<int, int> map;
        map.heap = heap;
        map.SetAt(1, 1);
        EXPECT_EQ(map.heap, heap);
        EXPECT_EQ(HeapOf(map.buckets), heap);
    }
    heap->Release();
}

TEST(MapTest, AMapCanBeStartedWithoutCode) {
    EXPECT_EQ(g_startedWithoutCode.bucketCount, 1397u);
    EXPECT_EQ(g_startedWithoutCode.count, 0u);
}

TEST(MapTest, AStoredValueIsFound) {
    CTMap<const char*, int> map;
    EXPECT_EQ(map.SetAt("one", 1), 1);
    EXPECT_EQ(map.SetAt("two", 2), 1);
    int value = 0;
    EXPECT_EQ(map.Lookup("one", value), 1);
    EXPECT_EQ(value, 1);
    EXPECT_EQ(map.Lookup("two", value), 1);
    EXPECT_EQ(value, 2);
    EXPECT_EQ(map.Lookup("three", value), 0);
    EXPECT_EQ(map.count, 2u);
}

TEST(MapTest, TheSameKeyTwiceIsOneEntryWithTheNewerValue) {
    CTMap<const char*, int> map;
    map.SetAt("key", 1);
    EXPECT_EQ(map.SetAt("key", 2), 1);
    int value = 0;
    EXPECT_EQ(map.count, 1u);
    EXPECT_EQ(map.Lookup("key", value), 1);
    EXPECT_EQ(value, 2);
}

TEST(MapTest, AnEmptyTextIsAKey) {
    CTMap<const char*, int> map;
    map.SetAt("", 7);
    int value = 0;
    EXPECT_EQ(map.Lookup("", value), 1);
    EXPECT_EQ(value, 7);
    EXPECT_EQ(map.RemoveKey(""), 1);
}

TEST(MapTest, TextKeysAreCopied) {
    CTMap<const char*, int> map;
    char key[] = "abc";
    map.SetAt(key, 1);
    strcpy(key, "xyz");
    int value = 0;
    EXPECT_EQ(map.Lookup("abc", value), 1);
    EXPECT_EQ(map.Lookup(key, value), 0);
    CTMap<const char*, int>::position at;
    EXPECT_STREQ(*map.GetNextKey(at), "abc");
}

TEST(MapTest, TwoTextsWithOneHashAreOneKey) {
    CTMap<const char*, int> map;
    map.SetAt(kFirstOfTwins, 1);
    int value = 0;
    EXPECT_EQ(map.Lookup(kSecondOfTwins, value), 1);
    EXPECT_EQ(value, 1);
    EXPECT_EQ(map.RemoveKey(kSecondOfTwins), 1);
    EXPECT_EQ(map.count, 0u);
}

TEST(MapTest, AfterACollisionTheMapHoldsTheNewestText) {
    CTMap<const char*, int> map;
    map.SetAt(kFirstOfTwins, 1);
    EXPECT_EQ(map.SetAt(kSecondOfTwins, 2), 1);
    EXPECT_EQ(map.count, 1u);
    CTMap<const char*, int>::position at;
    EXPECT_STREQ(*map.GetNextKey(at), kSecondOfTwins);
    int value = 0;
    EXPECT_EQ(map.Lookup(kFirstOfTwins, value), 1);
    EXPECT_EQ(value, 2);
}

TEST(MapTest, NameAndNameInLowerCaseAreTwoTextKeys) {
    CTMap<const char*, int> map;
    map.SetAt("Name", 1);
    map.SetAt("name", 2);
    EXPECT_EQ(map.count, 2u);
}

TEST(MapTest, NameAndNameInLowerCaseAreOneFoldedKey) {
    CTMap<const unsigned long*, int> map;
    map.SetAt(QXFoldedKey("Name"), 1);
    map.SetAt(QXFoldedKey("name"), 2);
    EXPECT_EQ(map.count, 1u);
    int value = 0;
    EXPECT_EQ(map.Lookup(QXFoldedKey("NAME"), value), 1);
    EXPECT_EQ(value, 2);
    CTMap<const unsigned long*, int>::position at;
    EXPECT_STREQ(reinterpret_cast<const char*>(*map.GetNextKey(at)), "name");
}

TEST(MapTest, FoldedKeysAboveTheLatinLettersStayDifferent) {
    CTMap<const unsigned long*, int> map;
    map.SetAt(QXFoldedKey("\xC4"), 1);
    map.SetAt(QXFoldedKey("\xE4"), 2);
    EXPECT_EQ(map.count, 2u);
}

TEST(MapTest, FoldedTextsWithOneHashAreOneKey) {
    CTMap<const unsigned long*, int> map;
    map.SetAt(QXFoldedKey("MmmmM"), 1);
    int value = 0;
    EXPECT_EQ(map.Lookup(QXFoldedKey("NISIN"), value), 1);
}

TEST(MapTest, AnIntegerKeyIsItself) {
    CTMap<int, int> map;
    for (int key : {0, 1, -1, 128, 2147483647, -2147483647 - 1}) map.SetAt(key, key);
    EXPECT_EQ(map.count, 6u);
    int value = 5;
    EXPECT_EQ(map.Lookup(-1, value), 1);
    EXPECT_EQ(value, -1);
    EXPECT_EQ(map.Lookup(2, value), 0);
    CTMap<unsigned int, int> unsignedMap;
    unsignedMap.SetAt(0xFFFFFFFFu, 3);
    EXPECT_EQ(unsignedMap.Lookup(0xFFFFFFFFu, value), 1);
    EXPECT_EQ(value, 3);
}

TEST(MapTest, RemoveKeyAnswersWhetherThereWasSomething) {
    CTMap<const char*, int> map;
    EXPECT_EQ(map.RemoveKey("a"), 0);
    map.SetAt("a", 1);
    map.SetAt("b", 2);
    EXPECT_EQ(map.RemoveKey("a"), 1);
    EXPECT_EQ(map.RemoveKey("a"), 0);
    EXPECT_EQ(map.count, 1u);
    int value = 0;
    EXPECT_EQ(map.Lookup("a", value), 0);
    EXPECT_EQ(map.Lookup("b", value), 1);
}

TEST(MapTest, EntriesOfOneChainAreRemovedFromAnyPlace) {
    for (int removed : {1, 128, 255}) {  // one chain: all leave 1 when divided by 127
        CTMap<int, int> map;
        for (int key : {1, 128, 255}) map.SetAt(key, key);
        EXPECT_EQ(map.RemoveKey(removed), 1);
        int value;
        for (int key : {1, 128, 255}) EXPECT_EQ(map.Lookup(key, value), key != removed);
    }
}

TEST(MapTest, AHashMadeByTheCallerFindsTheEntry) {
    CTMap<const char*, int> map;
    map.SetAt("menu/File", 4);
    unsigned hash = QXHashText("File").Behind(QXHashText("menu/").hash);
    int value = 0;
    EXPECT_EQ(map.LookupHash(hash, value), 1);
    EXPECT_EQ(value, 4);
    EXPECT_EQ(map.LookupHash(hash + 1, value), 0);
    ASSERT_NE(map.FindHash(hash), nullptr);
    EXPECT_EQ(map.FindHash(hash), map.Find("menu/File"));
    *map.Find("menu/File") = 5;
    map.Lookup("menu/File", value);
    EXPECT_EQ(value, 5);
}

TEST(MapTest, TheFinalClearingRefusesFurtherEntries) {
    CTMap<const char*, int> map;
    map.SetAt("a", 1);
    map.RemoveAll();
    EXPECT_EQ(map.destroyed, 1u);
    EXPECT_EQ(map.count, 0u);
    EXPECT_EQ(map.tableMark, 0u);
    EXPECT_EQ(map.buckets, nullptr);
    EXPECT_EQ(map.SetAt("a", 1), 0);
    EXPECT_EQ(map.RemoveKey("a"), 0);
    CTMap<const char*, int>::position at, keyAt;
    EXPECT_EQ(map.GetNext(at), nullptr);
    EXPECT_EQ(map.GetNextKey(keyAt), nullptr);
}

TEST(MapTest, LookupAfterTheFinalClearingAnswersZeroAndMakesNoTable) {
    CTMap<const char*, int> map;
    map.SetAt("a", 1);
    map.RemoveAll();
    int value = 0;
    EXPECT_EQ(map.Lookup("a", value), 0);
    EXPECT_EQ(map.LookupHash(97, value), 0);
    EXPECT_EQ(map.buckets, nullptr);
    EXPECT_EQ(map.tableMark, 0u);
}

TEST(MapTest, TheFinalClearingOfAnUnusedMapDoesNothing) {
    CTMap<const char*, int> map;
    map.RemoveAll();
    EXPECT_EQ(map.destroyed, 0u);
    EXPECT_EQ(map.buckets, nullptr);
    EXPECT_EQ(map.SetAt("a", 1), 1);
    EXPECT_EQ(map.count, 1u);
}

TEST(MapTest, AMapThatWasOnlyLookedUpIsClearedForGood) {
    CTMap<const char*, int> map;
    int value = 0;
    map.Lookup("a", value);
    map.RemoveAll();
    EXPECT_EQ(map.destroyed, 1u);
    EXPECT_EQ(map.SetAt("a", 1), 0);
}

TEST(MapTest, AClearedMapIsUsedAgainWhenItsOwnerSaysSo) {
    CTMap<const char*, int> map;
    map.SetAt("a", 1);
    IHeap* heap = map.heap;
    map.RemoveAll();
    map.destroyed = 0;
    EXPECT_EQ(map.buckets, nullptr);
    EXPECT_EQ(map.SetAt("b", 2), 1);
    EXPECT_EQ(map.tableMark, 6502u);
    EXPECT_EQ(map.heap, heap);
    int value = 0;
    EXPECT_EQ(map.Lookup("a", value), 0);
    EXPECT_EQ(map.Lookup("b", value), 1);
    EXPECT_EQ(map.count, 1u);
}
