// Failures of the platform's storages, each status with its code.
#include "storage/compound/ole_fakes.h"
#include "storage/compound/storage_fixture.h"
#include "support/import_slot.h"

namespace {

HRESULT g_status;  // what the replaced calls answer

HRESULT WINAPI FailingCreate(const OLECHAR*, DWORD, DWORD, IStorage** out) {
    *out = nullptr;
    return g_status;
}

HRESULT WINAPI FailingCreateOnBytes(ILockBytes*, DWORD, DWORD, IStorage** out) {
    *out = nullptr;
    return g_status;
}

HRESULT WINAPI FailingBytes(HGLOBAL, BOOL, ILockBytes** out) {
    *out = nullptr;
    return g_status;
}

HRESULT WINAPI FailingOpen(const OLECHAR*, IStorage*, DWORD, SNB, DWORD, IStorage** out) {
    *out = nullptr;
    return g_status;
}

HRESULT WINAPI FailingAllocator(DWORD, IMalloc** out) {
    *out = nullptr;
    return g_status;
}

// Each status through one replaced call of the platform: what `call` throws is the status's code
// and `rest`.
template <class Function, class Call>
void ExpectEveryStatus(const char* function, Function* failing, const std::string& rest,
                       Call call) {
    ReplacedImport replaced(function, reinterpret_cast<void*>(failing));
    ASSERT_TRUE(replaced) << function;
    for (const StatusRow& row : FailingStatusRows()) {
        g_status = static_cast<HRESULT>(row.status);
        EXPECT_EQ(Thrown(call), std::to_string(row.code) + rest)
            << function << " " << std::hex << row.status;
    }
}

}  // namespace

TEST(StorageFailureTest, EveryStatusIsMapped) {
    FakeStorage ole;
    Reference<IXStorage> storage(new_StorageByOleStorage(&ole));
    for (const StatusRow& row : FailingStatusRows()) {
        SCOPED_TRACE(row.status);
        ole.status = static_cast<HRESULT>(row.status);
        std::string code = std::to_string(row.code);
        EXPECT_EQ(Thrown([&] { storage->CreateStorage("part", 0); }), code + " 0 part");
        EXPECT_EQ(Thrown([&] { storage->OpenStorage("part"); }), code + " 0 part");
        EXPECT_EQ(Thrown([&] { storage->DeleteStorage("part"); }), code + " 4 ");
        EXPECT_EQ(Thrown([&] { storage->DeleteStream("part"); }), code + " 4 ");
        EXPECT_EQ(Thrown([&] { storage->EnumStorages(); }), code);
        EXPECT_EQ(Thrown([&] { storage->EnumStreams(); }), code);
        EXPECT_EQ(storage->CreateStream("part"), nullptr);
        EXPECT_EQ(storage->OpenStream("part"), nullptr);
    }
}

TEST(StorageFailureTest, AForeignStorageThatTellsNothingIsRefusedWithoutAName) {
    FakeStorage ole;
    for (const StatusRow& row : FailingStatusRows()) {
        ole.statStatus = static_cast<HRESULT>(row.status);
        EXPECT_EQ(Thrown([&] { new_StorageByOleStorage(&ole); }), std::to_string(row.code) + " 0 ");
        EXPECT_EQ(ole.references, 1u);
    }
}

TEST(StorageFailureTest, ADeletionAnswersTheStatus) {
    FakeStorage ole;
    Reference<IXStorage> storage(new_StorageByOleStorage(&ole));
    ole.status = S_FALSE;
    EXPECT_EQ(storage->DeleteStream("part"), S_FALSE);
}

TEST_F(StorageTest, AFileThatCannotBeCreatedIsNamed) {
    std::string path = Path("a.stg");
    ExpectEveryStatus("StgCreateDocfile", FailingCreate, " 0 " + path,
                      [&] { new_Storage(path.c_str(), 0); });
}

TEST_F(StorageTest, ATemporaryFileThatCannotBeFilledGoesAndThePathIsAsGiven) {
    TemporaryFilesIn here(Directory());
    ExpectEveryStatus("StgCreateDocfile", FailingCreate, " 0 given",
                      [] { new_Storage("given", QXSTG_TEMPORARY); });
    EXPECT_TRUE(RemoveDirectoryA(Directory().c_str())) << "something is left";
}

TEST(StorageFailureTest, AMemoryStorageThatCannotBeMadeHasNoName) {
    auto make = [] { new_Storage(nullptr, 0); };
    ExpectEveryStatus("CreateILockBytesOnHGlobal", FailingBytes, " 0 ", make);
    ExpectEveryStatus("StgCreateDocfileOnILockBytes", FailingCreateOnBytes, " 0 ", make);
}

TEST_F(StorageTest, AFileThatCannotBeOpenedIsNamed) {
    std::string path = Path("a.stg");
    Reference<IXStorage>(new_Storage(path.c_str(), 0));
    for (int readOnly : {0, 1}) {
        ExpectEveryStatus("StgOpenStorage", FailingOpen, " 0 " + path,
                          [&] { open_Storage(path.c_str(), readOnly); });
    }
}

TEST(StorageFailureTest, AnEnumerationWithoutTheTaskAllocatorIsAPlainException) {
    Reference<IXStorage> storage(new_Storage(nullptr, 0));
    PutStream(storage.Get(), "one", "1");
    ExpectEveryStatus("CoGetMalloc", FailingAllocator, "", [&] { storage->EnumStreams(); });
    EXPECT_EQ(Names(storage->EnumStreams()), List{"one"});
}
