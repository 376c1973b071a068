// White-box: no export takes the bytes of a string table.
#include "translate/resources/string_translation.h"

#include "translate/dictionary/dictionary_fixture.h"

#include <vector>

class StringTranslationTest : public GlobalDictionary {};

// Entries of one letter whose translation has the most characters that a length word can tell: so
// many of them make more bytes than a block's size can tell, whatever is left of it in 32 bits.
TEST_F(StringTranslationTest, ABlockThatWouldBeLongerThanItsSizeCanTellIsLeftAsItIs) {
    Enter(g_Wld, "x", std::string(0xFFFF, 'y').c_str());
    constexpr size_t kEntries = 0x8001;  // times 0x10000 words of 2 bytes: 128 KB more than 4 GB
    std::vector<uint16_t> words;
    for (size_t i = 0; i < kEntries; ++i) words.insert(words.end(), {1, 'x'});
    uint32_t size = 4711;
    void* block =
        qx::TranslateStringTable(words.data(), static_cast<uint32_t>(words.size() * 2), {}, &size);
    EXPECT_EQ(nullptr, block);
    EXPECT_EQ(4711u, size);
}

TEST_F(StringTranslationTest, EntriesGrowToWhatALengthWordCanTell) {
    Enter(g_Wld, "x", std::string(0x10005, 'y').c_str());
    const uint16_t words[] = {1, 'x', 0, 1, 'z'};
    uint32_t size = 0;
    auto block = static_cast<uint16_t*>(qx::TranslateStringTable(words, sizeof words, {}, &size));
    ASSERT_NE(nullptr, block);
    EXPECT_EQ((0xFFFFu + 1 + 1 + 2) * 2, size);
    EXPECT_EQ(0xFFFF, block[0]);
    EXPECT_EQ('y', block[0xFFFF]);
    EXPECT_EQ(0, block[0x10000]);
    EXPECT_EQ(1, block[0x10001]);
    EXPECT_EQ('z', block[0x10002]);
    LocalFree(block);
}
