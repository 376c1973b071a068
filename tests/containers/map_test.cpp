#include <gtest/gtest.h>
#include <qxcore.h>

TEST(MapTest, ANewMapAnswersLookupWithZeroAndMakesItsTableThen) {
    CTMap<const char*, int> map;
    int value = 5;
    EXPECT_EQ(map.buckets, nullptr);
    EXPECT_EQ(map.Lookup("a", value), 0);
    EXPECT_EQ(value, 5);
    EXPECT_NE(map.buckets, nullptr);
    EXPECT_EQ(map.tableMark, 6502u);
}
