#include "containers/watched.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

namespace {

// The rule as it is told, byte by byte.
unsigned HashByByte(const std::string& text, bool fold) {
    unsigned h = 0;
    for (char c : text) {
        if (fold && c >= 'A' && c <= 'Z') c += 32;
        h = h * 257 + static_cast<unsigned>(static_cast<signed char>(c));
    }
    return h;
}

std::string RandomText(std::mt19937& random, size_t length) {
    std::string text;
    for (size_t i = 0; i < length; ++i) text += static_cast<char>(1 + random() % 255);
    return text;
}

}  // namespace

TEST(HashTest, EachByteIsAddedTo257TimesTheHash) {
    EXPECT_EQ(QXHashText("").hash, 0u);
    EXPECT_EQ(QXHashText("a").hash, 97u);
    EXPECT_EQ(QXHashText("ab").hash, 97u * 257 + 98);
    EXPECT_EQ(QXHashText("abc").hash, 6432038u);
}

TEST(HashTest, BytesAbove127Subtract) {
    EXPECT_EQ(QXHashText("\xFF").hash, 0xFFFFFFFFu);
    EXPECT_EQ(QXHashText("\x80").hash, 0xFFFFFF80u);
    EXPECT_EQ(QXHashText("a\xFF").hash, 97u * 257 - 1);
}

TEST(HashTest, TheHashWrapsAroundAt32Bits) {
    EXPECT_EQ(QXHashText("mmmmm").hash, 625361953u);
}

TEST(HashTest, ReallyDifferentTextsHaveTheSameHash) {
    EXPECT_EQ(QXHashText(kFirstOfTwins).hash, QXHashText(kSecondOfTwins).hash);
    EXPECT_EQ(QXHashText("Commmmmand").hash, QXHashText("Conisinand").hash);
    EXPECT_EQ(QXHashFolded("MMMMM").hash, QXHashFolded("nisin").hash);
}

TEST(HashTest, TheFoldedHashLowersLatinLettersOnly) {
    EXPECT_EQ(QXHashFolded("NaMe").hash, QXHashText("name").hash);
    EXPECT_EQ(QXHashFolded("AZ").hash, QXHashText("az").hash);
    EXPECT_EQ(QXHashFolded("@[`{").hash, QXHashText("@[`{").hash);
}

TEST(HashTest, TheFoldedHashLeavesBytesAbove127AsTheyAre) {
    EXPECT_EQ(QXHashFolded("\xC4").hash, 0xFFFFFFC4u);
    EXPECT_EQ(QXHashFolded("\xC4\xE4").hash, QXHashText("\xC4\xE4").hash);
    EXPECT_NE(QXHashFolded("\xC4").hash, QXHashFolded("\xE4").hash);
}

TEST(HashTest, EveryLengthGivesTheValuesOfTheByteByByteRule) {
    std::mt19937 random(1);
    for (size_t length = 0; length < 70; ++length) {
        std::string text = RandomText(random, length);
        EXPECT_EQ(QXHashText(text.c_str()).hash, HashByByte(text, false)) << length;
        EXPECT_EQ(QXHashFolded(text.c_str()).hash, HashByByte(text, true)) << length;
    }
}

TEST(HashTest, WhatLiesAroundATextDoesNotCount) {
    std::mt19937 random(4);
    alignas(16) char bytes[128];
    for (char around : {'\0', 'A', '\xFF'}) {
        for (size_t before = 0; before < 16; ++before) {
            for (size_t length = 0; length < 50; ++length) {
                std::string text = RandomText(random, length);
                memset(bytes, around, sizeof bytes);
                strcpy(bytes + 16 + before, text.c_str());
                ASSERT_EQ(QXHashText(bytes + 16 + before).hash, HashByByte(text, false));
                ASSERT_EQ(QXHashFolded(bytes + 16 + before).hash, HashByByte(text, true));
                ASSERT_EQ(QXHashText(bytes + 16 + before).Behind(1),
                          HashByByte("\x01" + text, false));
            }
        }
    }
}

TEST(HashTest, ATextThatEndsAtAnUnmappedPageIsReadNoFurther) {
    constexpr size_t kPage = 4096;
    auto region = static_cast<char*>(VirtualAlloc(nullptr, 3 * kPage, MEM_RESERVE, PAGE_NOACCESS));
    char* page =
        static_cast<char*>(VirtualAlloc(region + kPage, kPage, MEM_COMMIT, PAGE_READWRITE));
    std::mt19937 random(5);
    for (size_t length = 0; length < 40; ++length) {
        std::string text = RandomText(random, length);
        char* atEnd = strcpy(page + kPage - length - 1, text.c_str());
        EXPECT_EQ(QXHashText(atEnd).hash, HashByByte(text, false));
        EXPECT_EQ(QXHashText(strcpy(page, text.c_str())).hash, HashByByte(text, false));
    }
    VirtualFree(region, 0, MEM_RELEASE);
}

TEST(HashTest, TheHashBehindAPrefixIsTheHashOfTheWholeText) {
    std::mt19937 random(2);
    for (size_t length = 0; length < 40; ++length) {
        std::string prefix = RandomText(random, random() % 20), text = RandomText(random, length);
        unsigned behind = QXHashText(text.c_str()).Behind(QXHashText(prefix.c_str()).hash);
        EXPECT_EQ(behind, HashByByte(prefix + text, false));
    }
    EXPECT_EQ(QXHashText("b").Behind(97), 97u * 257 + 98);
}
