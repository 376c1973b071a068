// The bytes of values in the registry: ours to the bit, and what other programs leave there.
#include "param/registry/registry_key.h"
#include "param/tree_text.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace {

class RegistryValueTest : public testing::Test {
protected:
    TestKey key;
    ParamPtr root{new_IParamCUReg(key.Path().c_str())};

    std::string Stored(const CQXVariant& value) {
        EXPECT_EQ(root->SetValue("v", &value), 1);
        return key.Get("v");
    }
    // "ANSWER TYPE:VALUE" of what stands under "v".
    std::string Read() {
        CQXVariant out("old");
        int answer = root->GetValue("v", &out);
        return std::to_string(answer) + " " + ValueText(out);
    }
    std::string ReadOf(DWORD type, const std::string& bytes) {
        key.Put("v", type, bytes);
        return Read();
    }
};

template <size_t n>
std::string Raw(const char (&text)[n]) {
    return std::string(text, n - 1);
}

std::string Utf16(const std::string& text) {
    std::string bytes;
    for (char c : text) bytes += {c, 0};
    return bytes;
}

std::string Code(unsigned code) {
    return std::string(reinterpret_cast<char*>(&code), sizeof code);
}

// How many bytes stand behind each code; written down from the format, not taken from the library.
struct Payload {
    unsigned code;
    size_t bytes;
};
constexpr Payload kPayloads[] = {
    {0, 0}, {1, 4}, {2, 1},  {3, 2},   {4, 4},  {5, 4},   {6, 4},   {7, 4},
    {8, 8}, {9, 4}, {11, 8}, {12, 16}, {13, 8}, {14, 16}, {15, 16}, {16, 32},
};

}  // namespace

TEST_F(RegistryValueTest, EachTypeHasItsBytes) {
    unsigned char byte = 0xFE;
    unsigned short word = 0x1234;
    unsigned long ulong = 0x89ABCDEF;
    EXPECT_EQ(Stored(CQXVariant()), "3:00000000");
    EXPECT_EQ(Stored(CQXVariant(1, QXVT_BOOL)), "3:0100000001000000");
    EXPECT_EQ(Stored(CQXVariant(byte)), "3:02000000fe");
    EXPECT_EQ(Stored(CQXVariant(word)), "3:030000003412");
    EXPECT_EQ(Stored(CQXVariant(ulong)), "3:04000000efcdab89");
    EXPECT_EQ(Stored(CQXVariant(-2)), "3:05000000feffffff");
    EXPECT_EQ(Stored(CQXVariant(7u)), "3:0600000007000000");
    EXPECT_EQ(Stored(CQXVariant(-1L)), "3:07000000ffffffff");
    EXPECT_EQ(Stored(CQXVariant(-2.5)), "3:0800000000000000000004c0");
    EXPECT_EQ(Stored(CQXVariant(1.0f)), "3:090000000000803f");
    EXPECT_EQ(Stored(CQXVariant("ab")), "1:610062000000");
    EXPECT_EQ(Stored(CQXVariant(tagSIZE{1, -1})), "3:0b00000001000000ffffffff");
    EXPECT_EQ(Stored(CQXVariant(tagRSIZE{1, -2.5})), "3:0c000000000000000000f03f00000000000004c0");
    EXPECT_EQ(Stored(CQXVariant(tagPOINT{2, 3})), "3:0d0000000200000003000000");
    EXPECT_EQ(Stored(CQXVariant(tagRPOINT{0, 1})), "3:0e0000000000000000000000000000000000f03f");
    EXPECT_EQ(Stored(CQXVariant(tagRECT{1, 2, 3, -1})),
              "3:0f000000010000000200000003000000ffffffff");
    EXPECT_EQ(Stored(CQXVariant(tagRRECT{0, 1, -2.5, 0})),
              "3:100000000000000000000000000000000000f03f00000000000004c00000000000000000");
    char bytes[] = {1, 0, 2};
    EXPECT_EQ(Stored(CQXVariant(tagQXBLOB{3, bytes})), "3:1100000003000000010002");
    EXPECT_EQ(Stored(CQXVariant(tagQXBLOB{0, nullptr})), "3:1100000000000000");
}

TEST_F(RegistryValueTest, ABlobWithoutDataHasNoBytesWhateverItsSizeSays) {
    CQXVariant blob;
    blob.type = QXVT_BLOB;
    blob.value.blob = {500, nullptr};
    EXPECT_EQ(root->SetValue("v", &blob), 1);
    EXPECT_EQ(key.Get("v"), "3:1100000000000000");
}

TEST_F(RegistryValueTest, ANullTextIsAnEmptyOne) {
    CQXVariant text(static_cast<const char*>(nullptr));
    EXPECT_EQ(root->SetValue("v", &text), 1);
    EXPECT_EQ(key.Get("v"), "1:0000");
    EXPECT_EQ(Read(), "0 0:");
}

TEST_F(RegistryValueTest, AnObjectIsASilentNoOpAndSoIsACodeWithoutARow) {
    SetInt(root.Get(), "v", 1);
    std::string before = key.Get("v");
    CQXVariant object(static_cast<IQXUnknown*>(root.Get()));
    EXPECT_EQ(root->SetValue("v", &object), 0);
    for (unsigned short type : {19, 0x100, 0x4000, 0xFFFF}) {
        tagQXVARIANT strange = {};
        strange.type = type;
        EXPECT_EQ(root->SetValue("v", &strange), 0) << type;
    }
    EXPECT_EQ(key.Get("v"), before);
    EXPECT_EQ(root->SetValue("new", &object), 0);
    EXPECT_EQ(key.Get("new"), "none");
}

// A value of n bytes under any type that the platform does not take for text, each code in front,
// each length: what is missing is 0, what is too much is ignored.
TEST_F(RegistryValueTest, EveryLengthOfEveryCodeReadsWithZerosForWhatIsMissing) {
    std::string payload;
    for (int i = 1; i <= 40; ++i) payload.push_back(static_cast<char>(i));
    for (const Payload& row : kPayloads) {
        std::string whole = Code(row.code) + payload;
        for (size_t length = 0; length <= whole.size(); ++length) {
            key.Put("v", REG_BINARY, whole.substr(0, length));
            CQXVariant out("old");
            ASSERT_EQ(root->GetValue("v", &out), 1) << row.code << " " << length;
            // The code is in the first byte.
            EXPECT_EQ(out.type, length ? row.code : 0) << length;
            std::string expected = whole.substr(0, length);
            expected.resize(4 + row.bytes);
            EXPECT_EQ(memcmp(&out.value, expected.data() + 4, row.bytes), 0)
                << row.code << " " << length;
        }
    }
}

TEST_F(RegistryValueTest, ABlobKeepsTheBytesThatAreThere) {
    std::string whole = Code(QXVT_BLOB) + Code(6) + "abcdefgh";
    for (size_t length = 1; length <= whole.size(); ++length) {
        key.Put("v", REG_BINARY, whole.substr(0, length));
        CQXVariant out;
        ASSERT_EQ(root->GetValue("v", &out), 1) << length;
        ASSERT_EQ(out.type, QXVT_BLOB) << length;
        size_t there = length > 8 ? std::min<size_t>(length - 8, 6) : 0;
        ASSERT_EQ(out.value.blob.size, there) << length;
        EXPECT_EQ(memcmp(out.value.blob.data, "abcdef", there), 0);
    }
}

TEST_F(RegistryValueTest, ABlobOfAnyPromisedSizeKeepsTheBytesThatAreThere) {
    for (unsigned size : {6u, 7u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFCu, 0xFFFFFFFFu}) {
        key.Put("v", REG_BINARY, Code(QXVT_BLOB) + Code(size) + "abcde");
        CQXVariant out;
        ASSERT_EQ(root->GetValue("v", &out), 1) << size;
        ASSERT_EQ(out.value.blob.size, 5u) << size;
        EXPECT_EQ(memcmp(out.value.blob.data, "abcde", 5), 0);
    }
    key.Put("v", REG_BINARY, Code(QXVT_BLOB) + Code(2) + "abcde");
    CQXVariant out;
    ASSERT_EQ(root->GetValue("v", &out), 1);
    EXPECT_EQ(out.value.blob.size, 2u);
}

TEST_F(RegistryValueTest, ACodeWithoutABinaryFormReadsAsMissing) {
    for (unsigned code : {10u, 18u, 19u, 0x4000u, 0x10005u, 0x80000005u, 0xFFFFFFFFu})
        EXPECT_EQ(ReadOf(REG_BINARY, Code(code) + "payload of some length"), "0 0:") << code;
}

TEST_F(RegistryValueTest, EveryOtherRegistryTypeIsReadByItsFirst32Bits) {
    constexpr DWORD kUnknownType = 0x7777;
    for (DWORD type : {DWORD(REG_NONE), DWORD(REG_DWORD_BIG_ENDIAN), DWORD(REG_RESOURCE_LIST),
                       DWORD(REG_FULL_RESOURCE_DESCRIPTOR), DWORD(REG_RESOURCE_REQUIREMENTS_LIST),
                       DWORD(REG_QWORD), kUnknownType}) {
        EXPECT_EQ(ReadOf(type, Code(5) + Code(42)), "1 5:42") << type;
        EXPECT_EQ(ReadOf(type, ""), "1 0:") << type;
        EXPECT_EQ(ReadOf(type, Code(99) + Code(42)), "0 0:") << type;
    }
    EXPECT_EQ(ReadOf(REG_DWORD, Code(5)), "1 5:0");  // a number is taken for a code
    EXPECT_EQ(ReadOf(REG_DWORD, Code(42)), "0 0:");
    EXPECT_EQ(ReadOf(REG_DWORD, Code(17)).substr(0, 4), "1 17");
}

TEST_F(RegistryValueTest, TextsOfOtherTypesAreBytesToo) {
    EXPECT_EQ(ReadOf(REG_EXPAND_SZ, Utf16("%PATH%")), "0 0:");
    EXPECT_EQ(ReadOf(REG_MULTI_SZ, Utf16("one") + Utf16(std::string(2, '\0'))), "0 0:");
    // The narrow form of U+0005 and three terminators is the code 5.
    EXPECT_EQ(ReadOf(REG_EXPAND_SZ, Raw("\5\0\0\0\0\0\0\0")), "1 5:0");
}

TEST_F(RegistryValueTest, ATextComesWithOrWithoutItsTerminator) {
    EXPECT_EQ(ReadOf(REG_SZ, Utf16("text") + Utf16(std::string(1, '\0'))), "1 10:text");
    EXPECT_EQ(ReadOf(REG_SZ, Utf16("text")), "1 10:text");
    EXPECT_EQ(ReadOf(REG_SZ, Utf16("te") + Utf16(std::string(1, '\0')) + Utf16("xt")), "1 10:te");
}

TEST_F(RegistryValueTest, ATextBelowTwoBytesReadsAsMissing) {
    EXPECT_EQ(ReadOf(REG_SZ, ""), "0 0:");
    EXPECT_EQ(ReadOf(REG_SZ, Utf16(std::string(1, '\0'))), "0 0:");
    EXPECT_EQ(ReadOf(REG_SZ, Utf16("t")), "0 0:");
    EXPECT_EQ(ReadOf(REG_SZ, Utf16(std::string(2, '\0'))), "1 10:");
    EXPECT_EQ(ReadOf(REG_SZ, Utf16("t") + Utf16(std::string(1, '\0'))), "1 10:t");
}

TEST_F(RegistryValueTest, AnEmptyTextReadsAsMissing) {
    CQXVariant empty("");
    EXPECT_EQ(root->SetValue("v", &empty), 1);
    EXPECT_EQ(key.Get("v"), "1:0000");
    EXPECT_EQ(Read(), "0 0:");
}

TEST_F(RegistryValueTest, ValuesOfAMegabyteComeBack) {
    std::string bytes(1 << 20, '?');
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>('a' + i % 26);
    CQXVariant text(bytes.c_str()), blob(tagQXBLOB{1 << 20, bytes.data()}), out;
    EXPECT_EQ(root->SetValue("text", &text), 1);
    EXPECT_EQ(root->SetValue("blob", &blob), 1);
    ASSERT_EQ(root->GetValue("text", &out), 1);
    EXPECT_TRUE(out == text);
    ASSERT_EQ(root->GetValue("blob", &out), 1);
    EXPECT_TRUE(out == blob);
}

TEST_F(RegistryValueTest, TheDefaultValueOfAKeyIsTheValueWithoutAName) {
    RegSetValueA(key.Raw(), nullptr, REG_SZ, "default", 7);
    CQXVariant out;
    EXPECT_EQ(root->GetValue(nullptr, &out), 1);
    EXPECT_EQ(ValueText(out), "10:default");
    EXPECT_EQ(root->GetValue("@", &out), 0);  // a name like others here
    SetInt(root.Get(), "@", 4);
    NamesPtr names(root->EnumValues());
    const char* listed[3];
    unsigned count = 0;
    names->Next(3, listed, &count);
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(GetInt(root.Get(), "@"), 4);
}
