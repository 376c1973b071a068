// Each allocation of each operation failing in turn: nothing leaks, and what was there stays.
#include "storage/compound/storage_fixture.h"
#include "support/allocation_failure.h"

#include <functional>
#include <memory>

namespace {

template <class Kind>
std::unique_ptr<Kind> Fresh() {
    auto kind = std::make_unique<Kind>();
    kind->stream->Write("before", 6);
    return kind;
}

template <class Kind>
void CheckBefore(std::unique_ptr<Kind>& kind) {
    EXPECT_EQ(BytesOf(kind->stream.Get()).substr(0, 6), "before");
}

// A stream that holds one variant.
std::unique_ptr<MemoryKind> With(const CQXVariant& value) {
    auto kind = std::make_unique<MemoryKind>();
    kind->stream->WriteVariant(&value);
    kind->stream->Seek(0, 0);
    return kind;
}

void ReadOne(std::unique_ptr<MemoryKind>& kind) {
    CQXVariant variant;
    kind->stream->Seek(0, 0);
    kind->stream->ReadVariant(&variant);
}

struct Document {
    Reference<IXStorage> storage{new_Storage(nullptr, 0)};
    Document() {
        PutStream(storage.Get(), "one", "1");
        PutStream(storage.Get(), "two", "2");
        Reference<IXStorage>(storage->CreateStorage("sub", 0));
    }
};

void CheckDocument(std::unique_ptr<Document>& document) {
    EXPECT_EQ(StreamOf(document->storage.Get(), "one"), "1");
    EXPECT_EQ(Names(document->storage->EnumStreams()), (List{"one", "two"}));
}

}  // namespace

TEST(StreamMemoryTest, AGrowingWriteKeepsTheStreamWhenMemoryIsShort) {
    std::string block(50000, 'x');
    unsigned failures = FailEachAllocation(
        Fresh<MemoryKind>, [&](auto& kind) { kind->stream->Write(block.data(), 50000); },
        [](auto& kind) {
            EXPECT_EQ(BytesOf(kind->stream.Get()), "before");
            EXPECT_EQ(kind->stream->Tell(), 6);
        });
    EXPECT_GE(failures, 1u);
}

TEST(StreamMemoryTest, EveryTypedWriteKeepsTheStreamWhenMemoryIsShort) {
    CQXVariant number(5), object(static_cast<IQXUnknown*>(nullptr));
    const std::function<void(IXStream*)> writes[] = {
        [](IXStream* s) { s->WriteByte(1); },
        [](IXStream* s) { s->WriteShort(1); },
        [](IXStream* s) { s->WriteLong(1); },
        [](IXStream* s) { s->WriteDouble(1); },
        [](IXStream* s) { s->WriteString(""); },
        [&](IXStream* s) { s->WriteVariant(&number); },
        [&](IXStream* s) { s->WriteVariant(&object); },
        [](IXStream* s) { WriteObjectToXStream(s, nullptr); },
    };
    // A full block, so that the first byte more needs another.
    auto full = [] {
        auto kind = std::make_unique<MemoryKind>();
        kind->stream->Write("x", 1);
        kind->stream->Write(std::string(4095, 'x').data(), 4095);
        return kind;
    };
    for (const auto& write : writes) {
        unsigned failures = FailEachAllocation(
            full, [&](auto& kind) { write(kind->stream.Get()); },
            [&](auto& kind) {
                EXPECT_EQ(BytesOf(kind->stream.Get()), std::string(4096, 'x'));
                write(kind->stream.Get());
                EXPECT_GT(kind->stream->GetLength(), 4096);
            });
        EXPECT_EQ(failures, 1u);
    }
}

TEST(StreamMemoryTest, TypedReadsAndSeeksTakeNoMemory) {
    MemoryKind kind;
    kind.stream->Write("some bytes and\0 a text", 23);
    kind.stream->Seek(0, 0);
    char text[30];
    CQXVariant number;
    FailingAllocation failing(1);
    kind.stream->ReadByte();
    kind.stream->ReadShort();
    kind.stream->ReadLong();
    kind.stream->ReadDouble();
    kind.stream->Seek(-4, 1);
    kind.stream->ReadString(text, 20);
    kind.stream->Seek(0, 0);
    kind.stream->WriteVariant(&number);
    kind.stream->Seek(0, 0);
    kind.stream->ReadVariant(&number);
    kind.stream->GetLength();
    EXPECT_FALSE(failing.Happened());
}

TEST(StreamMemoryTest, SetDataKeepsTheOldBytesWhenMemoryIsShort) {
    unsigned failures = FailEachAllocation(
        Fresh<MemoryKind>,
        [](auto& kind) {
            IQXUnknown* block = nullptr;
            kind->stream->QueryInterface(qx_typeid<IMemBlock>(), &block);
            Reference<IMemBlock> owner(static_cast<IMemBlock*>(block));
            owner->SetData("new", 3);
        },
        CheckBefore<MemoryKind>);
    EXPECT_GE(failures, 1u);
}

TEST(StreamMemoryTest, ANewStreamIsNullWhenMemoryIsShort) {
    unsigned failures = FailEachAllocation(
        [] { return 0; }, [](int) { Reference<IXStream> stream(new_StreamOnMemory()); }, [](int) {},
        true);
    failures += FailEachAllocation([] { return 0; },
                                   [](int) { Reference<IXStream> stream(new_EmptyStream()); },
                                   [](int) {}, true);
    EXPECT_EQ(failures, 2u);
    FailingAllocation failing(1);
    EXPECT_EQ(new_StreamOnMemory(), nullptr);
}

TEST(StreamMemoryTest, AVariantReadWithoutMemoryLeavesNothingBehind) {
    char bytes[] = "bytes";
    tagQXBLOB blob = {5, bytes};
    unsigned failures =
        FailEachAllocation([] { return With(CQXVariant("a text")); }, ReadOne, ReadOne);
    failures += FailEachAllocation([&] { return With(CQXVariant(blob)); }, ReadOne, ReadOne);
    EXPECT_GE(failures, 2u);
    auto withProxy = [] {
        auto kind = std::make_unique<MemoryKind>();
        Fill(kind->stream.Get(), Bytes({18, 0}) + "Absent" + Bytes({0, 2, 0, 0, 0, 'a', 'b'}));
        return kind;
    };
    EXPECT_GE(FailEachAllocation(withProxy, ReadOne, ReadOne),
              3u);  // the proxy, its name, its bytes
}

TEST(StreamMemoryTest, AWrapperIsNullAndTakesNoReferenceWhenMemoryIsShort) {
    IStream* ole = nullptr;
    ASSERT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, &ole), S_OK);
    {
        FailingAllocation failing(1);
        EXPECT_EQ(new_StreamByOleStream(ole), nullptr);
    }
    EXPECT_EQ(ole->Release(), 0u);
}

TEST(StorageMemoryTest, ElementsAreNullWhenMemoryIsShort) {
    unsigned failures = FailEachAllocation(
        std::make_unique<Document>,
        [](auto& document) { Reference<IXStream> s(document->storage->OpenStream("one")); },
        CheckDocument, true);
    failures += FailEachAllocation(
        std::make_unique<Document>,
        [](auto& document) {
            Reference<IXStorage> s(document->storage->CreateStorage("child", 0));
        },
        CheckDocument, true);
    failures += FailEachAllocation(
        std::make_unique<Document>,
        [](auto& document) { Reference<IXStorage> s(document->storage->OpenStorage("sub")); },
        CheckDocument, true);
    EXPECT_GE(failures, 3u);

    Document document;
    FailingAllocation failing(1);
    EXPECT_EQ(document.storage->CreateStream("three"), nullptr);
    EXPECT_TRUE(failing.Happened());
}

TEST(StorageMemoryTest, AnEnumerationWithoutMemoryThrows) {
    unsigned failures = FailEachAllocation(
        std::make_unique<Document>,
        [](auto& document) { document->storage->EnumStreams()->Release(); }, CheckDocument);
    EXPECT_GE(failures, 6u);  // the list, two nodes, two names, the enumerator
    failures = FailEachAllocation(
        std::make_unique<Document>,
        [](auto& document) { document->storage->EnumStorages()->Release(); }, CheckDocument);
    EXPECT_GE(failures, 4u);
}

TEST(StorageMemoryTest, ANewStorageWithoutMemoryIsNullOrThrows) {
    unsigned failures = FailEachAllocation(
        [] { return 0; }, [](int) { Reference<IXStorage> storage(new_Storage(nullptr, 0)); },
        [](int) {}, true);
    EXPECT_GE(failures, 1u);
}

TEST_F(StorageTest, ANewFileIsFreeAgainAfterAFailedCreation) {
    std::string path = Path("folder\\a.stg");
    auto create = [&](int) { Reference<IXStorage> storage(new_Storage(path.c_str(), 0)); };
    EXPECT_GE(FailEachAllocation([] { return 0; }, create, create, true),
              2u);  // the path, the object
}

TEST_F(StorageTest, ATemporaryStorageWithoutMemoryLeavesNoFile) {
    TemporaryFilesIn here(Directory());
    auto create = [](int) {
        Reference<IXStorage> storage(new_Storage(nullptr, QXSTG_TEMPORARY));
        if (!storage) return;
        char path[MAX_PATH];
        strcpy(path, storage->GetPath());
        storage.Release();
        EXPECT_TRUE(DeleteFileA(path)) << path;
    };
    EXPECT_GE(FailEachAllocation([] { return 0; }, create, create, true), 1u);
    EXPECT_TRUE(RemoveDirectoryA(Directory().c_str())) << "something is left";
}

TEST(StorageMemoryTest, AForeignStorageIsNotReferencedWhenMemoryIsShort) {
    Document document;
    auto ole = static_cast<IStorage*>(Storage_GetOLEStorage(document.storage.Get()));
    unsigned references = CountOf(ole);
    {
        FailingAllocation failing(1);
        EXPECT_EQ(new_StorageByOleStorage(ole), nullptr);
    }
    EXPECT_EQ(CountOf(ole), references);
    ole->Release();
}

TEST_F(StorageTest, AFileIsFreeAgainAfterAFailedOpening) {
    std::string path = Path("a.stg");
    Reference<IXStorage>(new_Storage(path.c_str(), 0));
    unsigned failures = FailEachAllocation(
        [] { return 0; }, [&](int) { Reference<IXStorage> storage(open_Storage(path.c_str(), 0)); },
        [&](int) { Reference<IXStorage> storage(open_Storage(path.c_str(), 0)); }, true);
    EXPECT_GE(failures, 1u);
}

TEST(StorageMemoryTest, PropertiesWithoutMemoryAreRefused) {
    unsigned failures = FailEachAllocation(
        std::make_unique<Document>,
        [](auto& document) {
            IQXUnknown* out = nullptr;
            int answer = document->storage->QueryInterface(qx_typeid<IQXProperty>(), &out);
            EXPECT_EQ(answer, out != nullptr);
            if (out) out->Release();
        },
        CheckDocument, true);
    EXPECT_GE(failures, 10u);  // the object, the map, its table, and the names
}

TEST(StorageMemoryTest, APropertyWithoutMemoryIsNotThereAndTheValueStays) {
    struct Titled : Document {
        Titled() {
            storage->QueryInterface(qx_typeid<IQXProperty>(), &object);
            CQXVariant title("A title");
            Properties()->SetProperty("Title", title);
        }
        ~Titled() { object->Release(); }
        IQXProperty* Properties() const { return static_cast<IQXProperty*>(object); }
        int Read() { return Properties()->GetProperty("Title", &value); }

        IQXUnknown* object = nullptr;
        CQXVariant value{7};
        int answer = -1;
    };
    unsigned failures = FailEachAllocation(
        std::make_unique<Titled>, [](auto& document) { document->answer = document->Read(); },
        [](auto& document) {
            EXPECT_EQ(document->answer, 0);
            EXPECT_TRUE(document->value == CQXVariant(7));
            EXPECT_EQ(document->Read(), 1);
            EXPECT_STREQ(document->value, "A title");
        },
        true);
    EXPECT_EQ(failures, 2u);  // the look over the set, and the text
}

TEST(StorageMemoryTest, PropertyNamesWithoutMemoryAreNull) {
    Document document;
    IQXUnknown* out = nullptr;
    document.storage->QueryInterface(qx_typeid<IQXProperty>(), &out);
    Reference<IQXProperty> properties(static_cast<IQXProperty*>(out));
    {
        FailingAllocation failing(1);
        EXPECT_EQ(properties->EnumNames(), nullptr);
        EXPECT_TRUE(failing.Happened());
    }
    EXPECT_EQ(Names(properties->EnumNames()).size(), 9u);
}
