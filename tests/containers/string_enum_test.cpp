#include "containers/watched.h"

#include <gtest/gtest.h>
#include <mbctype.h>

#include <string>
#include <vector>

namespace {

using SplitText = _CCharSeparatedStringsEnum<char>;
using TextBlock = _CZeroDelimitedStringsEnum<char>;
using Texts = std::vector<std::string>;

// The runtime's multibyte code page, while it lives.
class CodePage {
public:
    explicit CodePage(int codePage) : old(_getmbcp()) { _setmbcp(codePage); }
    ~CodePage() { _setmbcp(old); }

    int old;
};

template <class Enum>
Texts All(Enum* texts) {
    Texts all;
    const char* text;
    while (texts->Next(1, &text, nullptr)) all.push_back(text);
    texts->Release();
    return all;
}

Texts Split(const char* separators, const char* text) {
    return All(new SplitText(separators, text));
}

template <size_t N>
Texts Block(const char (&block)[N]) {
    return All(new TextBlock(block));
}

}  // namespace

TEST(StringEnumTest, ATextIsSplitAtSeparatorsAndARunCountsAsOne) {
    EXPECT_EQ(Split(";", "a;;b"), (Texts{"a", "b"}));
    EXPECT_EQ(Split(",.", "12,34"), (Texts{"12", "34"}));
    EXPECT_EQ(Split(",.", ".12,.34,"), (Texts{"12", "34"}));
}

TEST(StringEnumTest, ATextWithoutSeparatorsIsOnePiece) {
    EXPECT_EQ(Split(";", "abc"), (Texts{"abc"}));
    EXPECT_EQ(Split("", "a;b"), (Texts{"a;b"}));
}

TEST(StringEnumTest, EmptyPiecesDoNotExist) {
    EXPECT_EQ(Split(";", ""), Texts{});
    EXPECT_EQ(Split(";", ";;;"), Texts{});
}

TEST(StringEnumTest, ANullTextGivesAnEmptyEnumerator) {
    auto texts = new SplitText(";", nullptr);
    const char* out[2] = {"x", "y"};
    unsigned fetched = 5;
    EXPECT_EQ(texts->Next(2, out, &fetched), 0);
    EXPECT_EQ(fetched, 0u);
    EXPECT_STREQ(out[0], "x");
    texts->Release();
}

TEST(StringEnumTest, ADoubleByteCharacterIsNotSplitAtItsTrailByte) {
    CodePage japanese(932);
    // The second byte of the first character is a backslash, that of the other a vertical bar.
    EXPECT_EQ(Split("\\", "\x83\x5C\\b"), (Texts{"\x83\x5C", "b"}));
    EXPECT_EQ(Split("|", "\x83\x7C|\x83\x7C\x83\x7C"), (Texts{"\x83\x7C", "\x83\x7C\x83\x7C"}));
}

TEST(StringEnumTest, InASingleByteCodePageEveryByteIsACharacter) {
    CodePage latin(1252);
    EXPECT_EQ(Split("\\", "\x83\x5C\\b"), (Texts{"\x83", "b"}));
}

TEST(StringEnumTest, ASeparatorOfTwoBytesSeparatesAsAWhole) {
    CodePage japanese(932);
    EXPECT_EQ(Split("\x81\x40",
                    "a\x81\x40\x81\x40"
                    "b@c"),
              (Texts{"a", "b@c"}));
    EXPECT_EQ(Split("\x81\x40",
                    "\x83\x40"
                    "d"),
              (Texts{"\x83\x40"
                     "d"}));
    EXPECT_EQ(Split(";\x81\x40,",
                    "1;2\x81\x40"
                    "3,4"),
              (Texts{"1", "2", "3", "4"}));
}

TEST(StringEnumTest, ALongDoubleByteTextIsCopiedWhole) {
    CodePage japanese(932);
    std::string character = "\x83\x5C", whole;
    for (int i = 0; i < 500; ++i) whole += character;
    EXPECT_EQ(Split(";", (whole + ";" + whole).c_str()), (Texts{whole, whole}));
}

TEST(StringEnumTest, ALeadByteAtTheEndIsACharacterOfItsOwn) {
    CodePage japanese(932);
    EXPECT_EQ(Split(";", "a;\x83"), (Texts{"a", "\x83"}));
    EXPECT_EQ(Split("\x83", "a;\x83"), (Texts{"a;"}));
    EXPECT_EQ(Split("\x83\x40", "a\x83"), (Texts{"a\x83"}));
    EXPECT_EQ(Split("\x83", "\x83\x5C;"), (Texts{"\x83\x5C;"}));
}

TEST(StringEnumTest, ABlockGivesItsTextsUpToTheEmptyOne) {
    EXPECT_EQ(Block("one\0two\0"), (Texts{"one", "two"}));
    EXPECT_EQ(Block("one\0\0two\0"), (Texts{"one"}));
    EXPECT_EQ(Block("\0one\0"), Texts{});
    EXPECT_EQ(All(new TextBlock(nullptr)), Texts{});
}

TEST(StringEnumTest, ABlockIsMeasuredInBytes) {
    CodePage japanese(932);
    EXPECT_EQ(Block("\x83\x5C\x83\x5C\0\x83\x40\0z\0"),
              (Texts{"\x83\x5C\x83\x5C", "\x83\x40", "z"}));
}

TEST(StringEnumTest, TheTextsAreCopiesThatLiveAsLongAsTheEnumerator) {
    char text[] = "a;b", block[] = "c\0d\0";
    auto split = new SplitText(";", text);
    auto zeroed = new TextBlock(block);
    text[0] = block[0] = 'x';
    EXPECT_EQ(All(split), (Texts{"a", "b"}));
    EXPECT_EQ(All(zeroed), (Texts{"c", "d"}));
    EXPECT_STREQ(text, "x;b");
}

template <class Enum>
class TextArrayEnumTest : public testing::Test {
public:
    static CTEnum<const char*>* New(const char* text = "a;b", IQXUnknown* owner = nullptr) {
        if constexpr (std::is_same_v<Enum, SplitText>) {
            return new SplitText(";", text, owner);
        } else {
            return new TextBlock(text ? "a\0b\0" : nullptr, owner);
        }
    }

    const char* out[5] = {};
    unsigned fetched = 9;
};

using TextArrayEnums = testing::Types<SplitText, TextBlock>;
TYPED_TEST_SUITE(TextArrayEnumTest, TextArrayEnums);

TYPED_TEST(TextArrayEnumTest, NextDeliversUpToTheCountOrTheEnd) {
    auto texts = this->New();
    EXPECT_EQ(texts->Next(1, this->out, &this->fetched), 1);
    EXPECT_EQ(this->fetched, 1u);
    EXPECT_STREQ(this->out[0], "a");
    EXPECT_EQ(texts->Next(5, this->out, &this->fetched), 1);
    EXPECT_EQ(this->fetched, 1u);
    EXPECT_STREQ(this->out[0], "b");
    EXPECT_EQ(texts->Next(5, this->out, &this->fetched), 0);
    EXPECT_EQ(this->fetched, 0u);
    texts->Release();
}

TYPED_TEST(TextArrayEnumTest, NextWithCountZeroAnswersZero) {
    auto texts = this->New();
    EXPECT_EQ(texts->Next(0, this->out, &this->fetched), 0);
    EXPECT_EQ(this->fetched, 0u);
    texts->Release();
}

TYPED_TEST(TextArrayEnumTest, SkipBeyondTheEndAnswersOneAndTheNextNextZero) {
    auto texts = this->New();
    EXPECT_EQ(texts->Skip(1000), 1);
    EXPECT_EQ(texts->Next(1, this->out, &this->fetched), 0);
    EXPECT_EQ(this->fetched, 0u);
    EXPECT_EQ(texts->Skip(0), 1);
    texts->Reset();
    EXPECT_EQ(texts->Skip(1), 1);
    EXPECT_EQ(texts->Next(5, this->out, &this->fetched), 1);
    EXPECT_STREQ(this->out[0], "b");
    EXPECT_EQ(this->fetched, 1u);
    texts->Release();
}

TYPED_TEST(TextArrayEnumTest, SkipAddsWithoutATestSoThatItCanWrapBack) {
    auto texts = this->New();
    EXPECT_EQ(texts->Skip(0xFFFFFFFFu), 1);
    EXPECT_EQ(texts->Next(1, this->out, nullptr), 0);
    EXPECT_EQ(texts->Skip(2), 1);
    EXPECT_EQ(texts->Next(1, this->out, nullptr), 1);
    EXPECT_STREQ(this->out[0], "b");
    texts->Release();
}

TYPED_TEST(TextArrayEnumTest, TheOwnerIsHeldUntilTheEnumeratorGoes) {
    Counted owner;
    auto texts = this->New("a;b", &owner);
    EXPECT_EQ(owner.refs, 2u);
    texts->AddRef();
    EXPECT_EQ(owner.refs, 2u);
    texts->Release();
    EXPECT_EQ(owner.refs, 2u);
    texts->Release();
    EXPECT_EQ(owner.refs, 1u);
}

TYPED_TEST(TextArrayEnumTest, AnEnumeratorOverNothingHoldsItsOwnerToo) {
    Counted owner;
    auto texts = this->New(nullptr, &owner);
    EXPECT_EQ(owner.refs, 2u);
    texts->Release();
    EXPECT_EQ(owner.refs, 1u);
}

TYPED_TEST(TextArrayEnumTest, TheEnumeratorKnowsItsIdentityAndTheRoot) {
    auto texts = this->New();
    IQXUnknown* found = nullptr;
    EXPECT_EQ(texts->QueryInterface(qx_typeid<CTEnum<const char*>>(), &found), 1);
    found->Release();
    EXPECT_EQ(texts->QueryInterface(qx_typeid<IQXUnknown>(), &found), 1);
    found->Release();
    EXPECT_EQ(texts->QueryInterface(qx_typeid<CTEnum<IQXUnknown*>>(), &found), 0);
    EXPECT_EQ(found, nullptr);
    texts->Release();
}
