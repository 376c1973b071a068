// Each allocation of each operation failing in turn: nothing leaks, and what was there stays.
#include "storage/storage_fixture.h"
#include "support/allocation_failure.h"

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
    EXPECT_EQ(BytesOf(kind->stream).substr(0, 6), "before");
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
    Owned<IXStorage> storage{new_Storage(nullptr, 0)};
    Document() {
        PutStream(storage, "one", "1");
        PutStream(storage, "two", "2");
    }
};

void CheckDocument(std::unique_ptr<Document>& document) {
    EXPECT_EQ(StreamOf(document->storage, "one"), "1");
    EXPECT_EQ(Names(document->storage->EnumStreams()), (List{"one", "two"}));
}

}  // namespace

TEST(StreamMemoryTest, AGrowingWriteKeepsTheStreamWhenMemoryIsShort) {
    std::string block(50000, 'x');
    unsigned failures = FailEachAllocation(
        Fresh<MemoryKind>, [&](auto& kind) { kind->stream->Write(block.data(), 50000); },
        [](auto& kind) {
            EXPECT_EQ(BytesOf(kind->stream), "before");
            EXPECT_EQ(kind->stream->Tell(), 6);
        });
    EXPECT_GE(failures, 1u);
}

TEST(StreamMemoryTest, SetDataKeepsTheOldBytesWhenMemoryIsShort) {
    unsigned failures = FailEachAllocation(
        Fresh<MemoryKind>,
        [](auto& kind) {
            IQXUnknown* block = nullptr;
            kind->stream->QueryInterface(qx_typeid<IMemBlock>(), &block);
            Owned<IMemBlock> owner(static_cast<IMemBlock*>(block));
            owner->SetData("new", 3);
        },
        CheckBefore<MemoryKind>);
    EXPECT_GE(failures, 1u);
}

TEST(StreamMemoryTest, ANewStreamIsNullWhenMemoryIsShort) {
    unsigned failures = FailEachAllocation([] { return 0; }, [](int) { Owned<IXStream> stream(new_StreamOnMemory()); },
                                           [](int) {}, true);
    failures +=
        FailEachAllocation([] { return 0; }, [](int) { Owned<IXStream> stream(new_EmptyStream()); }, [](int) {}, true);
    EXPECT_EQ(failures, 2u);
    FailingAllocation failing(1);
    EXPECT_EQ(new_StreamOnMemory(), nullptr);
}

TEST(StreamMemoryTest, AVariantReadWithoutMemoryLeavesNothingBehind) {
    char bytes[] = "bytes";
    tagQXBLOB blob = {5, bytes};
    unsigned failures = FailEachAllocation([] { return With(CQXVariant("a text")); }, ReadOne, ReadOne);
    failures += FailEachAllocation([&] { return With(CQXVariant(blob)); }, ReadOne, ReadOne);
    EXPECT_GE(failures, 2u);
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
        std::make_unique<Document>, [](auto& document) { Owned<IXStream> s(document->storage->OpenStream("one")); },
        CheckDocument, true);
    failures += FailEachAllocation(
        std::make_unique<Document>,
        [](auto& document) { Owned<IXStorage> s(document->storage->CreateStorage("child", 0)); }, CheckDocument, true);
    EXPECT_GE(failures, 2u);
}

TEST(StorageMemoryTest, AnEnumerationWithoutMemoryThrows) {
    unsigned failures = FailEachAllocation(
        std::make_unique<Document>, [](auto& document) { document->storage->EnumStreams()->Release(); }, CheckDocument);
    EXPECT_GE(failures, 6u);  // the list, two nodes, two names, the enumerator
}

TEST(StorageMemoryTest, ANewStorageWithoutMemoryIsNullOrThrows) {
    unsigned failures = FailEachAllocation(
        [] { return 0; }, [](int) { Owned<IXStorage> storage(new_Storage(nullptr, 0)); }, [](int) {}, true);
    EXPECT_GE(failures, 1u);
}

TEST_F(StorageTest, AFileIsFreeAgainAfterAFailedOpening) {
    std::string path = Path("a.stg");
    Owned<IXStorage>(new_Storage(path.c_str(), 0));
    unsigned failures =
        FailEachAllocation([] { return 0; }, [&](int) { Owned<IXStorage> storage(open_Storage(path.c_str(), 0)); },
                           [&](int) { Owned<IXStorage> storage(open_Storage(path.c_str(), 0)); }, true);
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
    EXPECT_EQ(failures, 1u);
}

TEST(StorageMemoryTest, PropertyNamesWithoutMemoryAreNull) {
    Document document;
    IQXUnknown* out = nullptr;
    document.storage->QueryInterface(qx_typeid<IQXProperty>(), &out);
    Owned<IQXProperty> properties(static_cast<IQXProperty*>(out));
    {
        FailingAllocation failing(1);
        EXPECT_EQ(properties->EnumNames(), nullptr);
        EXPECT_TRUE(failing.Happened());
    }
    EXPECT_EQ(Names(properties->EnumNames()).size(), 9u);
}
