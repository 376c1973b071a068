// What the platform's own calls write is read by us, and what we write is read by them.
#include "storage/compound/storage_fixture.h"

namespace {

constexpr DWORD kWrite = STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
constexpr DWORD kRead = STGM_READ | STGM_SHARE_EXCLUSIVE;

void RawPut(IStorage* storage, const wchar_t* name, const std::string& bytes) {
    Reference<IStream> stream;
    ASSERT_EQ(storage->CreateStream(name, kWrite, 0, 0, stream.Receive()), S_OK);
    ULONG written;
    EXPECT_EQ(stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), &written), S_OK);
}

std::string RawGet(IStorage* storage, const wchar_t* name) {
    Reference<IStream> stream;
    if (FAILED(storage->OpenStream(name, nullptr, kRead, 0, stream.Receive()))) return "(none)";
    STATSTG facts = {};
    stream->Stat(&facts, STATFLAG_NONAME);
    std::string bytes(facts.cbSize.LowPart, '?');
    ULONG read;
    stream->Read(bytes.data(), static_cast<ULONG>(bytes.size()), &read);
    return bytes;
}

}  // namespace

TEST_F(StorageTest, WhatThePlatformWritesIsRead) {
    std::string path = Path("raw.stg");
    {
        Reference<IStorage> root, child;
        ASSERT_EQ(StgCreateDocfile(Widen(path).c_str(), kWrite, 0, root.Receive()), S_OK);
        RawPut(root.Get(), L"small", "abc");
        RawPut(root.Get(), L"large", std::string(70000, 'L'));
        ASSERT_EQ(root->CreateStorage(L"sub", kWrite, 0, 0, child.Receive()), S_OK);
        RawPut(child.Get(), L"variant", Bytes({5, 0, 42, 0, 0, 0, 10, 0, 3, 0, 0, 0, 'o', 'k', 0}));
    }
    Reference<IXStorage> root(open_Storage(path.c_str(), 1)), child(root->OpenStorage("sub"));
    EXPECT_EQ(Names(root->EnumStreams()), (List{"large", "small"}));
    EXPECT_EQ(Names(root->EnumStorages()), List{"sub"});
    EXPECT_EQ(StreamOf(root.Get(), "small"), "abc");
    EXPECT_EQ(StreamOf(root.Get(), "large"), std::string(70000, 'L'));
    Reference<IXStream> stream(child->OpenStream("variant"));
    CQXVariant number, text;
    EXPECT_EQ(stream->ReadVariant(&number), 1);
    EXPECT_EQ(stream->ReadVariant(&text), 1);
    EXPECT_TRUE(number == CQXVariant(42));
    EXPECT_TRUE(text == CQXVariant("ok"));
}

TEST_F(StorageTest, WhatWeWriteIsReadByThePlatform) {
    std::string path = Path("ours.stg");
    {
        Reference<IXStorage> root(new_Storage(path.c_str(), 0)),
            child(root->CreateStorage("sub", 0));
        PutStream(root.Get(), "large", std::string(70000, 'L'));
        Reference<IXStream> stream(child->CreateStream("variant"));
        CQXVariant number(42), text("ok");
        stream->WriteVariant(&number);
        stream->WriteVariant(&text);
    }
    Reference<IStorage> root, child;
    ASSERT_EQ(StgOpenStorage(Widen(path).c_str(), nullptr, kRead, nullptr, 0, root.Receive()),
              S_OK);
    EXPECT_EQ(RawGet(root.Get(), L"large"), std::string(70000, 'L'));
    ASSERT_EQ(root->OpenStorage(L"sub", nullptr, kRead, nullptr, 0, child.Receive()), S_OK);
    EXPECT_EQ(RawGet(child.Get(), L"variant"),
              Bytes({5, 0, 42, 0, 0, 0, 10, 0, 3, 0, 0, 0, 'o', 'k', 0}));
}

TEST_F(StorageTest, TheStreamUnderAnElementIsThePlatforms) {
    Reference<IXStorage> storage(new_Storage(nullptr, 0));
    Reference<IXStream> stream(storage->CreateStream("one"));
    stream->Write("abcdef", 6);
    Reference<IStream> ole(static_cast<IStream*>(Stream_GetOLEStream(stream.Get())));
    STATSTG facts = {};
    EXPECT_EQ(ole->Stat(&facts, STATFLAG_DEFAULT), S_OK);
    EXPECT_STREQ(facts.pwcsName, L"one");
    EXPECT_EQ(facts.cbSize.QuadPart, 6u);
    CoTaskMemFree(facts.pwcsName);
}

TEST_F(StorageTest, AStreamOfThePlatformIsWrappedAndCommittedOnClose) {
    std::string path = Path("wrapped.stg");
    {
        Reference<IStorage> root;
        ASSERT_EQ(StgCreateDocfile(Widen(path).c_str(), kWrite, 0, root.Receive()), S_OK);
        Reference<IStream> ole;
        ASSERT_EQ(root->CreateStream(L"one", kWrite, 0, 0, ole.Receive()), S_OK);
        Reference<IXStream> stream(new_StreamByOleStream(ole.Get()));
        ole.Release();
        stream->WriteString("wrapped");
        stream->WriteLong(0x01020304);
    }
    Reference<IXStorage> storage(open_Storage(path.c_str(), 1));
    EXPECT_EQ(StreamOf(storage.Get(), "one"), std::string("wrapped") + Bytes({0, 4, 3, 2, 1}));
}
