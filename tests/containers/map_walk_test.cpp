// The order of a map's walks, and the index of large maps, which must not be seen in it.
#include "containers/watched.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

using IntMap = CTMap<int, int>;
static_assert(std::is_aggregate_v<IntMap::position>);

std::vector<int> Keys(IntMap& map) {
    std::vector<int> keys;
    IntMap::position at = {};
    while (int* key = map.GetNextKey(at)) keys.push_back(*key);
    return keys;
}

std::vector<int> Values(IntMap& map) {
    std::vector<int> values;
    IntMap::position at = {};
    while (int* value = map.GetNext(at)) values.push_back(*value);
    return values;
}

// What the chains of 127 buckets give for the keys 0 to n - 1, added in this order.
std::vector<int> ExpectedOrder(int n) {
    std::vector<int> keys;
    for (int bucket = 0; bucket < 127; ++bucket) {
        int newest = bucket;
        while (newest + 127 < n) newest += 127;
        for (int key = newest; key >= 0; key -= 127) keys.push_back(key);
    }
    return keys;
}

}  // namespace

TEST(MapWalkTest, TheWalkGoesBucketByBucketNewestFirst) {
    IntMap map;
    for (int key : {5, 132, 126, 259, 3, 127}) map.SetAt(key, key * 10);
    EXPECT_EQ(Keys(map), (std::vector<int>{127, 3, 259, 132, 5, 126}));
    EXPECT_EQ(Values(map), (std::vector<int>{1270, 30, 2590, 1320, 50, 1260}));
}

TEST(MapWalkTest, NegativeKeysLieInTheBucketOfTheirBits) {
    IntMap map;
    for (int key : {16, -1, 14}) map.SetAt(key, 0);  // 4294967295 leaves 15 when divided by 127
    EXPECT_EQ(Keys(map), (std::vector<int>{14, -1, 16}));
}

TEST(MapWalkTest, TheBucketIsTheHashModuloTheBucketCount) {
    IntMap map(10);
    for (int key : {25, 9, 5, 10}) map.SetAt(key, 0);
    EXPECT_EQ(Keys(map), (std::vector<int>{10, 5, 25, 9}));
}

TEST(MapWalkTest, ReplacingAValueKeepsItsPlace) {
    IntMap map;
    for (int key : {1, 128, 255}) map.SetAt(key, 0);
    map.SetAt(1, 7);
    EXPECT_EQ(Values(map), (std::vector<int>{0, 0, 7}));
}

TEST(MapWalkTest, AfterTheEndThePositionIsTheStartAndTheWalkBeginsAgain) {
    IntMap map;
    map.SetAt(4, 40);
    map.SetAt(3, 30);
    IntMap::position at = {};
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(at.bucket, 0);
        EXPECT_EQ(at.node, nullptr);
        EXPECT_EQ(*map.GetNext(at), 30);
        EXPECT_EQ(at.bucket, 3);
        EXPECT_EQ(*map.GetNext(at), 40);
        EXPECT_EQ(at.bucket, 4);
        EXPECT_EQ(map.GetNext(at), nullptr);
    }
}

TEST(MapWalkTest, AWalkOverNothingStaysAtTheStart) {
    IntMap map;
    IntMap::position at = {};
    EXPECT_EQ(map.GetNext(at), nullptr);
    EXPECT_EQ(map.GetNextKey(at), nullptr);
    EXPECT_EQ(at.bucket, 0);
    EXPECT_EQ(at.node, nullptr);
}

TEST(MapWalkTest, APositionWithoutANodeBeginsAtItsBucket) {
    IntMap map;
    for (int key : {2, 5, 9}) map.SetAt(key, key);
    IntMap::position at = {5, nullptr};
    EXPECT_EQ(*map.GetNext(at), 5);
    EXPECT_EQ(*map.GetNext(at), 9);
    at = {100, nullptr};
    EXPECT_EQ(map.GetNext(at), nullptr);
    at = {-1, nullptr};
    EXPECT_EQ(map.GetNext(at), nullptr);
    EXPECT_EQ(at.bucket, 0);
}

TEST(MapWalkTest, ALargeMapIsWalkedInTheOrderOfItsChains) {
    constexpr int n = 3000;
    IntMap map;
    for (int key = 0; key < n; ++key) map.SetAt(key, key);
    EXPECT_EQ(map.bucketCount, 127u);
    EXPECT_EQ(map.count, static_cast<unsigned>(n));
    EXPECT_EQ(Keys(map), ExpectedOrder(n));
}

TEST(MapWalkTest, ALargeMapReplacesInPlaceAndCountsOnce) {
    constexpr int n = 1000;
    IntMap map;
    for (int round = 0; round < 2; ++round) {
        for (int key = 0; key < n; ++key) map.SetAt(key, key + round);
    }
    EXPECT_EQ(map.count, static_cast<unsigned>(n));
    EXPECT_EQ(Keys(map), ExpectedOrder(n));
    int value = 0;
    EXPECT_EQ(map.Lookup(999, value), 1);
    EXPECT_EQ(value, 1000);
    EXPECT_EQ(map.Lookup(1000, value), 0);
}

TEST(MapWalkTest, TextsWithOneHashAreOneKeyInALargeMapToo) {
    CTMap<const char*, int> map;
    for (int i = 0; i < 1000; ++i) map.SetAt(("key " + std::to_string(i)).c_str(), i);
    map.SetAt(kFirstOfTwins, -1);
    map.SetAt(kSecondOfTwins, -2);
    EXPECT_EQ(map.count, 1001u);
    int value = 0;
    EXPECT_EQ(map.Lookup(kFirstOfTwins, value), 1);
    EXPECT_EQ(value, -2);
    for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ(map.Lookup(("key " + std::to_string(i)).c_str(), value), 1);
        ASSERT_EQ(value, i);
    }
    EXPECT_EQ(map.Lookup("key 1000", value), 0);
}

TEST(MapWalkTest, ALargeMapIsClearedAndUsedAgain) {
    IntMap map;
    for (int round = 0; round < 3; ++round) {
        for (int key = 0; key < 500; ++key) map.SetAt(key, round);
        int value = -1;
        EXPECT_EQ(map.Lookup(499, value), 1);
        EXPECT_EQ(value, round);
        map.RemoveAll();
        EXPECT_EQ(map.Lookup(499, value), 0);
        map.destroyed = 0;
        EXPECT_EQ(map.Lookup(499, value), 0);
    }
}

TEST(MapWalkTest, AdditionsAndRemovalsInAnyOrderAgreeWithAModel) {
    std::mt19937 random(3);
    for (int keyRange : {60, 400, 5000}) {
        IntMap map;
        std::map<int, int> model;
        for (int step = 0; step < 20000; ++step) {
            // Growing and shrinking phases; keys that differ in high bits alone as well as
            // neighbours.
            int key = static_cast<int>(random() % keyRange);
            if (key % 3 == 0) key = static_cast<int>(static_cast<unsigned>(key) << 20);
            bool grows = step / 4000 % 2 == 0;
            if (random() % 4 < (grows ? 3u : 1u)) {
                ASSERT_EQ(map.SetAt(key, step), 1);
                model[key] = step;
            } else {
                ASSERT_EQ(map.RemoveKey(key), static_cast<int>(model.erase(key)));
            }
            int probe = static_cast<int>(random() % keyRange), value = -1;
            auto expected = model.find(probe);
            ASSERT_EQ(map.Lookup(probe, value), expected != model.end());
            ASSERT_EQ(value, expected == model.end() ? -1 : expected->second);
        }
        ASSERT_EQ(map.count, model.size());
        ASSERT_EQ(Keys(map).size(), model.size());
        for (auto& [key, number] : model) {
            int value = -1;
            ASSERT_EQ(map.Lookup(key, value), 1);
            ASSERT_EQ(value, number);
        }
    }
}
