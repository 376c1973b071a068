// Compound files behind urls, against a real server.
#include "file/url/ftp_fixture.h"
#include "storage/compound/storage_fixture.h"
#include "storage/document/document_kinds.h"
#include "support/allocation_failure.h"

using qx::Ask;
using qx::Reference;

namespace {

// What a test leaves in temporary files goes with it.
class UrlStorageTest : public FtpTest {
protected:
    ~UrlStorageTest() override { RemoveTempFiles(); }

    // A document of one stream and one sub-storage, served under the name.
    void Serve(const std::string& name) {
        std::string made = Path("made.stg");
        {
            Reference<IXStorage> storage(new_Storage(made.c_str(), 0));
            PutStream(storage.Get(), "one", "1");
            Reference<IXStorage> child(storage->CreateStorage("child", 0));
            PutStream(child.Get(), "leaf", "within");
            CQXVariant title("From afar");
            Ask<IQXProperty>(storage.Get())->SetProperty("Title", title);
        }
        server.Put(name, ContentOf(made));
        DeleteFileA(made.c_str());
    }

    std::string url = ServedFiles::Url("a.stg");
};

}  // namespace

TEST_F(UrlStorageTest, AFileBehindAUrlIsAStorage) {
    Serve("a.stg");
    for (int readOnly : {0, 1}) {
        Reference<IXStorage> storage(open_UrlStorage(url.c_str(), nullptr, readOnly));
        EXPECT_EQ(StreamOf(storage.Get(), "one"), "1");
        Reference<IXStorage> child(storage->OpenStorage("child"));
        EXPECT_EQ(StreamOf(child.Get(), "leaf"), "within");
        EXPECT_EQ(::Names(storage->EnumStorages()), List{"child"});
        EXPECT_EQ(storage->GetParent(), nullptr);
    }
}

TEST_F(UrlStorageTest, OpenStorageGoesThereForAUrl) {
    Serve("a.stg");
    Reference<IXStorage> storage(open_Storage(url.c_str(), 1));
    EXPECT_STREQ(storage->GetPath(), url.c_str());
    EXPECT_EQ(StreamOf(storage.Get(), "one"), "1");
    EXPECT_EQ(server.Count("RETR"), 1);
}

TEST_F(UrlStorageTest, OnlyTheRootAnswersTheUrl) {
    Serve("a.stg");
    std::string local = Path("local.stg");
    Reference<IXStorage> storage(open_UrlStorage(url.c_str(), local.c_str(), 1));
    EXPECT_STREQ(storage->GetPath(), url.c_str());
    Reference<IXStorage> child(storage->OpenStorage("child"));
    EXPECT_EQ(child->GetPath(), local);
}

TEST_F(UrlStorageTest, AQueryReachesTheInnerStorage) {
    Serve("a.stg");
    Reference<IXStorage> storage(open_UrlStorage(url.c_str(), nullptr, 1));
    Reference<IXStorage> inner = Ask<IXStorage>(storage.Get());
    EXPECT_NE(inner.Get(), storage.Get());
    EXPECT_STRNE(inner->GetPath(), url.c_str());
    EXPECT_EQ(Ask<IQXUnknown>(storage.Get()).Get(), inner.Get());
    EXPECT_EQ(storage->QueryInterface(qx_typeid<IXStorage>(), nullptr), 1);
    IQXUnknown* out = storage.Get();
    EXPECT_EQ(storage->QueryInterface(qx_typeid<IXStream>(), &out), 0);
    EXPECT_EQ(out, nullptr);
    Reference<IQXProperty> properties = Ask<IQXProperty>(storage.Get());
    CQXVariant title;
    ASSERT_TRUE(properties);
    EXPECT_EQ(properties->GetProperty("Title", &title), 1);
    EXPECT_TRUE(title == CQXVariant("From afar"));
}

// The parent of a child is the storage over the copy.
TEST_F(UrlStorageTest, WhatIsHandedOutBelongsToTheInnerStorage) {
    Serve("a.stg");
    Reference<IXStorage> storage(open_UrlStorage(url.c_str(), nullptr, 0));
    Reference<IXStorage> inner = Ask<IXStorage>(storage.Get());
    Reference<IXStorage> child(storage->OpenStorage("child"));
    EXPECT_EQ(Reference<IXStorage>(child->GetParent()).Get(), inner.Get());
    EXPECT_EQ(Thrown([&] { storage->OpenStorage("none"); }), "6 0 none");
    EXPECT_EQ(storage->OpenStream("none"), nullptr);
    EXPECT_EQ(Thrown([&] { storage->DeleteStream("none"); }), "6 4 ");
}

// The object's own count is not touched by a query, which the inner storage answers.
TEST_F(UrlStorageTest, AQueryTakesItsReferenceWhereItIsAnswered) {
    Serve("a.stg");
    Reference<IXStorage> storage(open_UrlStorage(url.c_str(), nullptr, 1));
    Reference<IXStorage> inner = Ask<IXStorage>(storage.Get());
    unsigned held = CountOf(inner.Get());
    for (auto* id : {&qx_typeid<IQXUnknown>(), &qx_typeid<IXStorage>()}) {
        IQXUnknown* out = nullptr;
        EXPECT_EQ(storage->QueryInterface(*id, &out), 1);
        EXPECT_EQ(CountOf(inner.Get()), held + 1);
        out->Release();
    }
    for (auto* id :
         {&qx_typeid<IXStream>(), &qx_typeid<IXFile>(), &qx_typeid<IProgress>(),
          &qx_typeid<IDocStrorageInfo>(), &qx_typeid<IRegisterIface>(), &qx_typeid<IParam>()}) {
        IQXUnknown* out = storage.Get();
        EXPECT_EQ(storage->QueryInterface(*id, nullptr), 0) << id->name;
        EXPECT_EQ(storage->QueryInterface(*id, &out), 0) << id->name;
        EXPECT_EQ(out, nullptr) << id->name;
    }
    EXPECT_EQ(storage->QueryInterface(qx_typeid<IQXProperty>(), nullptr), 1);
    EXPECT_NE(Ask<IQXProperty>(storage.Get()).Get(), nullptr);
    EXPECT_EQ(CountOf(inner.Get()), held);
    EXPECT_EQ(CountOf(storage.Get()), 1u);
}

TEST_F(UrlStorageTest, ChangesReachTheLocalCopyAndNotTheServer) {
    Serve("a.stg");
    std::string served = server.ContentOf("a.stg"), local = Path("local.stg");
    {
        Reference<IXStorage> storage(open_UrlStorage(url.c_str(), local.c_str(), 0));
        PutStream(storage.Get(), "two", "2");
        storage->DeleteStream("one");
        storage->Commit();
        PutStream(storage.Get(), "three", "3");
    }
    EXPECT_TRUE(server.ContentOf("a.stg") == served);
    Reference<IXStorage> copy(open_Storage(local.c_str(), 1));
    EXPECT_EQ(StreamOf(copy.Get(), "two"), "2");
    EXPECT_EQ(StreamOf(copy.Get(), "three"), "3");
    EXPECT_EQ(StreamOf(copy.Get(), "one"), "(none)");
}

TEST_F(UrlStorageTest, AReadOnlyStorageTakesNoChanges) {
    Serve("a.stg");
    Reference<IXStorage> storage(open_UrlStorage(url.c_str(), nullptr, 1));
    EXPECT_EQ(storage->CreateStream("two"), nullptr);
}

TEST_F(UrlStorageTest, AGivenLocalPathIsOverwritten) {
    Serve("a.stg");
    std::string local = Path("local.stg");
    server.Put("old", std::string(100000, 'o'));
    ASSERT_NE(Fio_DownloadToFile(ServedFiles::Url("old").c_str(), local.c_str()), 0);
    Reference<IXStorage> storage(open_UrlStorage(url.c_str(), local.c_str(), 1));
    EXPECT_EQ(StreamOf(storage.Get(), "one"), "1");
    storage.Release();
    EXPECT_TRUE(ContentOf(local) == server.ContentOf("a.stg"));
    EXPECT_EQ(TempFiles(), List{});
}

TEST_F(UrlStorageTest, AnEmptyLocalPathIsATemporaryFile) {
    Serve("a.stg");
    Reference<IXStorage> storage(open_UrlStorage(url.c_str(), "", 1));
    EXPECT_EQ(TempFiles().size(), 1u);
    EXPECT_EQ(TempFiles()[0].substr(0, 3), "QXP");
}

// The deletion comes while the copy is still open.
TEST_F(UrlStorageTest, TheCopyStaysBehind) {
    Serve("a.stg");
    std::string local = Path("local.stg");
    Reference<IXStorage>(open_UrlStorage(url.c_str(), local.c_str(), 0));
    EXPECT_EQ(Names(), List{"local.stg"});
    Reference<IXStorage>(open_UrlStorage(url.c_str(), nullptr, 1));
    EXPECT_EQ(TempFiles().size(), 1u);
}

TEST_F(UrlStorageTest, TheCopyIsClosedWhenTheLastElementIsGone) {
    Serve("a.stg");
    std::string local = Path("local.stg");
    Reference<IXStorage> storage(open_UrlStorage(url.c_str(), local.c_str(), 1));
    Reference<IXStorage> child(storage->OpenStorage("child"));
    storage.Release();
    EXPECT_EQ(StreamOf(child.Get(), "leaf"), "within");
    EXPECT_FALSE(DeleteFileA(local.c_str()));
    child.Release();
    EXPECT_TRUE(DeleteFileA(local.c_str()));
}

TEST_F(UrlStorageTest, WhateverKeepsTheFileFromBeingBroughtIsTheNetworkWithoutAName) {
    Serve("a.stg");
    std::string rows[] = {
        ServedFiles::Url("none.stg"),                         // a missing file
        "ftp://user:wrong@" + ServedFiles::kHost + "/a.stg",  // a wrong password
        ServedFiles::Url("none/deeper/a.stg"),                // a missing directory
    };
    for (const std::string& bad : rows) {
        calls.Forget();
        long before = LiveBlocks();
        EXPECT_EQ(Thrown([&] { open_UrlStorage(bad.c_str(), nullptr, 0); }), "13 0 ") << bad;
        EXPECT_EQ(Thrown([&] { open_Storage(bad.c_str(), 1); }), "13 0 ") << bad;
        EXPECT_FALSE(calls.Texts().empty());
        EXPECT_EQ(calls.OpenHandles(), 0) << bad;
        calls.Forget();
        EXPECT_EQ(LiveBlocks(), before) << bad;
    }
    EXPECT_EQ(Thrown([&] { open_UrlStorage(url.c_str(), Path("none\\a").c_str(), 0); }), "13 0 ");
    EXPECT_EQ(Thrown([&] { open_UrlStorage("c:\\a.stg", nullptr, 0); }), "13 0 ");
    EXPECT_EQ(Thrown([&] { open_UrlStorage(nullptr, nullptr, 0); }), "13 0 ");
    EXPECT_EQ(TempFiles(), List{});
}

TEST_F(UrlStorageTest, AFileThatIsNoStorageIsRefusedUnderItsLocalPath) {
    server.Put("a.stg", "no compound file");
    std::string local = Path("local.stg");
    EXPECT_EQ(Thrown([&] { open_UrlStorage(url.c_str(), local.c_str(), 1); }), "15 0 " + local);
    EXPECT_EQ(Names(), List{"local.stg"});
    EXPECT_EQ(Thrown([&] { open_UrlStorage(url.c_str(), nullptr, 1); }).substr(0, 5), "15 0 ");
    EXPECT_EQ(TempFiles(), List{});
}

TEST_F(UrlStorageTest, AStorageThatFindsNoMemoryIsNullAndLeavesNoFile) {
    Serve("a.stg");
    calls.Stop();  // watching takes memory
    constexpr bool kMayDoWithout = true;
    unsigned failures = FailEachAllocation(
        [] { return 0; },
        [&](int) {
            Reference<IXStorage> storage(open_UrlStorage(url.c_str(), nullptr, 1));
            if (!storage) throw CXMemException();
        },
        [&](int) { EXPECT_EQ(TempFiles(), List{}); }, kMayDoWithout);
    EXPECT_GT(failures, 4u);  // the object and its texts, the crack, the storage over the copy
}

TEST_F(UrlStorageTest, WithoutATemporaryFileThereIsNoDownload) {
    Serve("a.stg");
    TemporaryFilesIn nowhere(Path("none"));
    EXPECT_EQ(Thrown([&] { open_UrlStorage(url.c_str(), nullptr, 1); }), "13 0 ");
    EXPECT_EQ(server.Count("RETR"), 0);
}

TEST_F(UrlStorageTest, AUrlInReadOnlyMemoryIsLeftAsItIs) {
    Serve("a.stg");
    auto page =
        static_cast<char*>(VirtualAlloc(nullptr, 0x1000, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    strcpy(page, url.c_str());
    DWORD old;
    VirtualProtect(page, 0x1000, PAGE_READONLY, &old);
    Reference<IXStorage> storage(open_Storage(page, 1));
    EXPECT_EQ(StreamOf(storage.Get(), "one"), "1");
    VirtualFree(page, 0, MEM_RELEASE);
}

TEST_F(UrlStorageTest, AStorageBehindAUrlMayBeWatched) {
    Serve("a.stg");
    Reference<IXStorage> storage(open_Storage(url.c_str(), 1));
    auto sink = qx::Make<TestSink>();
    Reference<IXStorage> document = Watch(storage.Get(), sink.Get());
    EXPECT_STREQ(document->GetPath(), url.c_str());
    Reference<IXStorage> child(document->OpenStorage("child"));
    EXPECT_EQ(Reference<IXStorage>(child->GetParent()).Get(), Ask<IXStorage>(storage.Get()).Get());
    Reference<IXStream> stream(document->OpenStream("one"));
    sink->answer = [] { return 1; };
    EXPECT_EQ(Thrown([&] { stream->ReadByte(); }), "1");
}
