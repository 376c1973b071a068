// The order of the slots, read from the objects' tables: hosts of another compiler call by number.
#include "storage/compound/storage_fixture.h"

namespace {

// A slot of an object's table as a function whose first argument is the object.
template <class Function>
auto Slot(void* object, int index) {
    return reinterpret_cast<Function*>((*static_cast<void***>(object))[index]);
}

}  // namespace

TEST(StreamSlotsTest, AStreamHasItsOperationsInOrder) {
    MemoryKind kind;
    IXStream* s = kind.stream.Get();
    EXPECT_EQ(Slot<unsigned(void*)>(s, 0)(s), 2u);  // AddRef
    EXPECT_EQ(Slot<unsigned(void*)>(s, 1)(s), 1u);  // Release
    EXPECT_EQ(
        Slot<int(void*, qx_type_info const&, void**)>(s, 2)(s, qx_typeid<IXStream>(), nullptr), 1);

    EXPECT_EQ(Slot<int(void*, const char*, int)>(s, 4)(s, "0123456789", 10), 10);  // Write
    EXPECT_EQ(Slot<int(void*, int, int)>(s, 5)(s, 4, 0), 4);                       // Seek
    EXPECT_EQ(Slot<int(void*)>(s, 6)(s), 4);                                       // Tell
    char two[3] = {};
    EXPECT_EQ(Slot<int(void*, char*, int)>(s, 3)(s, two, 2), 2);  // Read
    EXPECT_STREQ(two, "45");
    EXPECT_EQ(Slot<int(void*)>(s, 19)(s), 10);                          // GetLength
    EXPECT_STREQ(Slot<const char*(void*)>(s, 20)(s), "Memory stream");  // GetName

    s->Seek(0, 0);
    CQXVariant written(7), read;
    Slot<void(void*, unsigned char)>(s, 14)(s, 1);
    Slot<void(void*, unsigned short)>(s, 15)(s, 2);
    Slot<void(void*, unsigned)>(s, 16)(s, 3);
    Slot<void(void*, double)>(s, 17)(s, 4);
    Slot<void(void*, const char*)>(s, 18)(s, "five");
    Slot<void(void*, const tagQXVARIANT*)>(s, 13)(s, &written);
    EXPECT_EQ(s->Tell(), 1 + 2 + 4 + 8 + 5 + 6);
    s->Seek(0, 0);
    EXPECT_EQ(Slot<unsigned char(void*)>(s, 7)(s), 1);
    EXPECT_EQ(Slot<unsigned short(void*)>(s, 8)(s), 2);
    EXPECT_EQ(Slot<unsigned(void*)>(s, 9)(s), 3u);
    EXPECT_EQ(Slot<double(void*)>(s, 10)(s), 4.0);
    char text[12];
    EXPECT_EQ(Slot<int(void*, char*, int)>(s, 11)(s, text, 10), 5);
    EXPECT_STREQ(text, "five");
    EXPECT_EQ(Slot<int(void*, tagQXVARIANT*)>(s, 12)(s, &read), 1);
    EXPECT_TRUE(read == written);
}

TEST(StreamSlotsTest, AMemoryBlockHasItsSixOperationsInOrder) {
    MemoryKind kind;
    IQXUnknown* b = nullptr;
    ASSERT_EQ(kind.stream->QueryInterface(qx_typeid<IMemBlock>(), &b), 1);
    EXPECT_EQ(Slot<unsigned(void*)>(b, 0)(b), 3u);
    EXPECT_EQ(Slot<unsigned(void*)>(b, 1)(b), 2u);
    EXPECT_EQ(
        Slot<int(void*, qx_type_info const&, void**)>(b, 2)(b, qx_typeid<IMemBlock>(), nullptr), 1);
    Slot<void(void*, const char*, unsigned)>(b, 5)(b, "abc", 3);  // SetData
    EXPECT_EQ(Slot<unsigned(void*)>(b, 3)(b), 3u);                // GetSize
    EXPECT_EQ(memcmp(Slot<void*(void*)>(b, 4)(b), "abc", 3), 0);  // GetData
    b->Release();
}

TEST(StorageSlotsTest, AStorageHasItsOperationsInOrder) {
    Reference<IXStorage> storage(new_Storage(nullptr, 2));
    IXStorage* s = storage.Get();
    EXPECT_EQ(Slot<unsigned(void*)>(s, 0)(s), 2u);
    EXPECT_EQ(Slot<unsigned(void*)>(s, 1)(s), 1u);
    EXPECT_EQ(
        Slot<int(void*, qx_type_info const&, void**)>(s, 2)(s, qx_typeid<IXStorage>(), nullptr), 1);
    Reference<IXStorage> child(Slot<IXStorage*(void*, const char*, int)>(s, 3)(s, "child", 0));
    EXPECT_EQ(Reference<IXStorage>(Slot<IXStorage*(void*)>(child.Get(), 6)(child.Get())).Get(),
              s);  // GetParent
    child.Release();
    child = Reference<IXStorage>(
        Slot<IXStorage*(void*, const char*)>(s, 4)(s, "child"));  // OpenStorage
    child.Release();
    Reference<IXStream>(Slot<IXStream*(void*, const char*)>(s, 8)(s, "leaf"));  // CreateStream
    EXPECT_TRUE(Reference<IXStream>(Slot<IXStream*(void*, const char*)>(s, 9)(s, "leaf")).Get());
    EXPECT_EQ(Names(Slot<CTEnum<const char*>*(void*)>(s, 7)(s)), List{"child"});
    EXPECT_EQ(Names(Slot<CTEnum<const char*>*(void*)>(s, 12)(s)), List{"leaf"});
    EXPECT_STREQ(Slot<const char*(void*)>(s, 13)(s), "");  // GetPath

    Slot<void(void*)>(s, 11)(s);                                           // Commit
    EXPECT_EQ(Slot<HRESULT(void*, const char*)>(s, 5)(s, "child"), S_OK);  // DeleteStorage
    EXPECT_EQ(Slot<HRESULT(void*, const char*)>(s, 10)(s, "leaf"), S_OK);  // DeleteStream
    static_cast<CStorage*>(s)->Revert();
    EXPECT_EQ(Names(s->EnumStreams()), List{"leaf"});
}

// Behind the interface stand the destructor, whose slots are the compiler's affair, and the
// template's three.
TEST(StorageSlotsTest, RevertAndTheReservedOperationStandLast) {
#if defined(_MSC_VER)
    constexpr int kDestructorSlots = 1;
#else
    constexpr int kDestructorSlots = 2;
#endif
    constexpr int kRevert = 14 + kDestructorSlots + 3;
    Reference<IXStorage> storage(new_Storage(nullptr, 2));
    IXStorage* s = storage.Get();
    PutStream(s, "leaf", "1");
    Slot<void(void*)>(s, kRevert)(s);
    EXPECT_EQ(Names(s->EnumStreams()), List{});
    EXPECT_EQ(Slot<int(void*, void*, void*, void*, void*)>(s, kRevert + 1)(s, s, s, s, s), 0);
}

TEST(PropertySlotsTest, PropertiesHaveTheirOperationsInOrder) {
    Reference<IXStorage> storage(new_Storage(nullptr, 0));
    IQXUnknown* p = nullptr;
    ASSERT_EQ(storage->QueryInterface(qx_typeid<IQXProperty>(), &p), 1);
    EXPECT_EQ(Slot<unsigned(void*)>(p, 0)(p), 2u);
    EXPECT_EQ(Slot<unsigned(void*)>(p, 1)(p), 1u);
    EXPECT_EQ(
        Slot<int(void*, qx_type_info const&, void**)>(p, 2)(p, qx_typeid<IQXProperty>(), nullptr),
        1);
    CQXVariant text("T"), read;
    EXPECT_EQ(Slot<int(void*, const char*, CQXVariant&)>(p, 4)(p, "Title", text), 1);
    EXPECT_EQ(Slot<int(void*, const char*, CQXVariant*)>(p, 3)(p, "Title", &read), 1);
    EXPECT_TRUE(read == text);
    Slot<void(void*, void*)>(p, 6)(p, nullptr);
    Slot<void(void*, void*)>(p, 7)(p, nullptr);
    EXPECT_EQ(Slot<int(void*, const char*)>(p, 8)(p, "Title"), 1);  // RemoveName
    EXPECT_EQ(Names(Slot<CTEnum<const char*>*(void*)>(p, 5)(p)).size(), 8u);
    Slot<void(void*)>(p, 9)(p);  // RemoveAllNames
    EXPECT_EQ(Slot<CTEnum<const char*>*(void*)>(p, 5)(p), nullptr);
    p->Release();
}

TEST(ProgressSlotsTest, IsCancelledIsThirdAndSetRangeSixth) {
    struct Sink : CQXUnknownImpl<IProgress> {
        int IsCancelled() override { return 5; }
        void SetRange(int low, int high) override { sum = low + high; }
        int sum = 0;
    };
    auto sink = new Sink;
    auto p = static_cast<IProgress*>(sink);
    EXPECT_EQ(Slot<int(void*)>(p, 3)(p), 5);
    Slot<void(void*, int, int)>(p, 6)(p, 1, 100);
    EXPECT_EQ(sink->sum, 101);
    sink->Release();
}
