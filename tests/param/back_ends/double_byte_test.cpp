// Names of Japanese characters in every back end, and as the platform's wide calls see them. In
// code page 932 their second bytes are those of a backslash.
#include "param/back_ends/contract_back_ends.h"
#include "param/registry/registry_key.h"

#include <gtest/gtest.h>
#include <mbctype.h>
#include <objbase.h>

namespace {

constexpr wchar_t kWideSo[] = L"\x30BD", kWideNou[] = L"\x80FD";

// Under 932, and under UTF-8.
class DoubleByteTest : public testing::Test {
protected:
    void SetUp() override {
        if (GetACP() == 932) _setmbcp(932);
    }

    const std::string so = GetACP() == 932 ? "\x83\x5C" : "\xE3\x82\xBD";
    const std::string nou = GetACP() == 932 ? "\x94\x5C" : "\xE8\x83\xBD";
};

class DoubleByteNameTest : public DoubleByteTest, public testing::WithParamInterface<BackEnd> {};

INSTANTIATE_TEST_SUITE_P(BackEnds, DoubleByteNameTest, testing::ValuesIn(BackEnds()),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace

TEST_P(DoubleByteNameTest, AByteThatLooksLikeABackslashDividesNoName) {
    std::unique_ptr<Place> place = GetParam().make();
    IParam* root = place->root.Get();
    const std::string path = nou + "\\" + so;
    CQXVariant text((nou + so).c_str());
    EXPECT_EQ(root->SetValue(so.c_str(), &text), 1);
    EXPECT_EQ(SortedTree(root), so + "=10:" + nou + so);
    EXPECT_TRUE(ParamPtr(root->CreateSubParam(path.c_str())));
    ParamPtr child(root->OpenSubParam(path.c_str(), 0));
    ASSERT_TRUE(child);
    SetInt(child.Get(), nou.c_str(), 5);
    EXPECT_EQ(GetInt(child.Get(), nou.c_str()), 5);
    EXPECT_EQ(NamesText(root->EnumSubParams()), nou);
    child.Release();
    root->DeleteValue(so.c_str());
    EXPECT_EQ(NamesText(root->EnumValues()).find(so), std::string::npos);
    root->DeleteSubParam(nou.c_str());
    EXPECT_FALSE(ParamPtr(root->OpenSubParam(nou.c_str(), 0)));
}

TEST_F(DoubleByteTest, TheRegistryHoldsTheCharacters) {
    TestKey key;
    ParamPtr root(new_IParamCUReg(key.Path().c_str()));
    CQXVariant text(nou.c_str());
    root->SetValue(so.c_str(), &text);
    wchar_t stored[4] = {};
    DWORD size = sizeof stored, type = 0;
    ASSERT_EQ(RegQueryValueExW(key.Raw(), kWideSo, nullptr, &type, reinterpret_cast<BYTE*>(stored),
                               &size),
              ERROR_SUCCESS);
    EXPECT_EQ(type, DWORD(REG_SZ));
    EXPECT_EQ(size, 2 * sizeof(wchar_t));
    EXPECT_STREQ(stored, kWideNou);
    ParamPtr(root->CreateSubParam(nou.c_str()));
    HKEY child = nullptr;
    EXPECT_EQ(RegOpenKeyExW(key.Raw(), kWideNou, 0, KEY_READ, &child), ERROR_SUCCESS);
    RegCloseKey(child);
}

TEST_F(DoubleByteTest, AStorageHoldsTheCharacters) {
    qx::Reference<IXStorage> storage(new_Storage(nullptr, 0));
    ParamPtr root(new_IXStorParam(storage.Get()));
    SetInt(root.Get(), so.c_str(), 7);
    ParamPtr(root->CreateSubParam(nou.c_str()));
    qx::Reference<IStorage> ole(static_cast<IStorage*>(Storage_GetOLEStorage(storage.Get())));
    qx::Reference<IStream> stream;
    ASSERT_EQ(
        ole->OpenStream(kWideSo, nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0, stream.Receive()),
        S_OK);
    char bytes[7] = {};
    ULONG read = 0;
    stream->Read(bytes, sizeof bytes, &read);
    EXPECT_EQ(std::string(bytes, read), std::string("\5\0\7\0\0\0", 6));
    qx::Reference<IStorage> child;
    EXPECT_EQ(ole->OpenStorage(kWideNou, nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, nullptr, 0,
                               child.Receive()),
              S_OK);
}
