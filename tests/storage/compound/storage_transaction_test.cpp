// Transactions, reverting, foreign storages, and the modes that reach the platform.
#include "storage/compound/ole_fakes.h"
#include "storage/compound/storage_fixture.h"

namespace {

void Revert(IXStorage* storage) {
    static_cast<CStorage*>(storage)->Revert();
}

void MakeFile(const std::string& path) {
    Reference<IXStorage> storage(new_Storage(path.c_str(), 0));
    PutStream(storage.Get(), "one", "old");
    Reference<IXStorage> child(storage->CreateStorage("child", 0));
    PutStream(child.Get(), "leaf", "old leaf");
}

std::string ValueInFile(const std::string& path) {
    Reference<IXStorage> storage(open_Storage(path.c_str(), 1));
    return StreamOf(storage.Get(), "one");
}

std::string LeafInFile(const std::string& path) {
    Reference<IXStorage> storage(open_Storage(path.c_str(), 1)),
        child(storage->OpenStorage("child"));
    return StreamOf(child.Get(), "leaf");
}

DWORD RawMode(IXStorage* storage) {
    auto ole = static_cast<IStorage*>(Storage_GetOLEStorage(storage));
    STATSTG facts = {};
    ole->Stat(&facts, STATFLAG_NONAME);
    ole->Release();
    return facts.grfMode;
}

}  // namespace

TEST_F(StorageTest, ClosingATransactedStorageCommits) {
    std::string path = Path("t.stg");
    MakeFile(path);
    {
        Reference<IXStorage> storage(open_Storage(path.c_str(), 0));
        PutStream(storage.Get(), "one", "new");
    }
    EXPECT_EQ(ValueInFile(path), "new");
}

TEST_F(StorageTest, RevertIsTheWayOutOfATransaction) {
    std::string path = Path("t.stg");
    MakeFile(path);
    {
        Reference<IXStorage> storage(open_Storage(path.c_str(), 0));
        PutStream(storage.Get(), "one", "new");
        PutStream(storage.Get(), "two", "new too");
        Revert(storage.Get());
        EXPECT_EQ(StreamOf(storage.Get(), "one"), "old");
    }
    EXPECT_EQ(ValueInFile(path), "old");
    Reference<IXStorage> storage(open_Storage(path.c_str(), 1));
    EXPECT_EQ(Names(storage->EnumStreams()), List{"one"});
}

TEST_F(StorageTest, RevertGoesBackToTheLastCommit) {
    std::string path = Path("t.stg");
    MakeFile(path);
    {
        Reference<IXStorage> storage(open_Storage(path.c_str(), 0));
        PutStream(storage.Get(), "one", "committed");
        storage->Commit();
        PutStream(storage.Get(), "one", "dropped");
        Revert(storage.Get());
    }
    EXPECT_EQ(ValueInFile(path), "committed");
}

TEST_F(StorageTest, RevertOfADirectStorageDoesNothing) {
    std::string path = Path("t.stg");
    {
        Reference<IXStorage> storage(new_Storage(path.c_str(), 0));
        PutStream(storage.Get(), "one", "kept");
        Revert(storage.Get());
    }
    EXPECT_EQ(ValueInFile(path), "kept");
}

TEST_F(StorageTest, AChildOfATransactionReachesTheFileWhenBothClose) {
    std::string path = Path("t.stg");
    MakeFile(path);
    {
        Reference<IXStorage> storage(open_Storage(path.c_str(), 0)),
            child(storage->OpenStorage("child"));
        PutStream(child.Get(), "leaf", "new leaf");
    }
    EXPECT_EQ(LeafInFile(path), "new leaf");
}

TEST_F(StorageTest, AChildRevertsAlone) {
    std::string path = Path("t.stg");
    MakeFile(path);
    {
        Reference<IXStorage> storage(open_Storage(path.c_str(), 0)),
            child(storage->OpenStorage("child"));
        PutStream(child.Get(), "leaf", "new leaf");
        PutStream(storage.Get(), "one", "new");
        Revert(child.Get());
    }
    EXPECT_EQ(LeafInFile(path), "old leaf");
    EXPECT_EQ(ValueInFile(path), "new");
}

TEST_F(StorageTest, RevertOfTheRootDropsAClosedChildToo) {
    std::string path = Path("t.stg");
    MakeFile(path);
    {
        Reference<IXStorage> storage(open_Storage(path.c_str(), 0));
        {
            Reference<IXStorage> child(storage->OpenStorage("child"));
            PutStream(child.Get(), "leaf", "new leaf");
        }
        Revert(storage.Get());
    }
    EXPECT_EQ(LeafInFile(path), "old leaf");
}

TEST_F(StorageTest, ANewTransactedFileCommitsWhenItCloses) {
    std::string path = Path("t.stg");
    {
        Reference<IXStorage> storage(new_Storage(path.c_str(), 2));
        PutStream(storage.Get(), "one", "1");
    }
    EXPECT_EQ(ValueInFile(path), "1");
}

TEST_F(StorageTest, TheReservedOperationAnswersZero) {
    Reference<IXStorage> storage(new_Storage(nullptr, 0));
    EXPECT_EQ(static_cast<CStorage*>(storage.Get())->Reserved(nullptr, nullptr, nullptr, nullptr),
              0);
}

TEST_F(StorageTest, TheModesOfTheRootFollowTheBits) {
    std::string path = Path("m.stg");
    EXPECT_EQ(RawMode(Reference<IXStorage>(new_Storage(path.c_str(), 0)).Get()) & ~STGM_CREATE,
              DWORD(STGM_SHARE_EXCLUSIVE | STGM_READWRITE));
    EXPECT_EQ(RawMode(Reference<IXStorage>(new_Storage(path.c_str(), 2)).Get()) & ~STGM_CREATE,
              DWORD(STGM_SHARE_EXCLUSIVE | STGM_READWRITE | STGM_TRANSACTED));
    EXPECT_EQ(RawMode(Reference<IXStorage>(open_Storage(path.c_str(), 1)).Get()),
              DWORD(STGM_SHARE_EXCLUSIVE | STGM_READ));
    EXPECT_EQ(RawMode(Reference<IXStorage>(open_Storage(path.c_str(), 0)).Get()),
              DWORD(STGM_SHARE_EXCLUSIVE | STGM_READWRITE | STGM_TRANSACTED));
}

// What the fake is asked for shows the modes of elements.
TEST(StorageModeTest, ElementsInheritTheModeButStreamsAreNeverTransacted) {
    struct {
        DWORD given, storage, stream;
    } rows[] = {
        {STGM_READWRITE, STGM_READWRITE, STGM_READWRITE},
        {STGM_WRITE, STGM_READWRITE, STGM_READWRITE},
        {STGM_READ, STGM_READ, STGM_READ},
        {STGM_READWRITE | STGM_TRANSACTED, STGM_READWRITE | STGM_TRANSACTED, STGM_READWRITE},
        {STGM_READ | STGM_TRANSACTED, STGM_READ | STGM_TRANSACTED, STGM_READ},
    };
    for (const auto& row : rows) {
        FakeStream stream;
        FakeStorage ole, child;
        ole.stream = &stream;
        ole.child = &child;
        ole.mode = row.given | STGM_SHARE_EXCLUSIVE | STGM_DELETEONRELEASE;
        Reference<IXStorage> storage(new_StorageByOleStorage(&ole));
        EXPECT_EQ(ole.lastStatFlags, DWORD(STATFLAG_NONAME));
        DWORD exclusive = STGM_SHARE_EXCLUSIVE;
        Reference<IXStream>(storage->CreateStream("a"));
        EXPECT_EQ(ole.lastMode, row.stream | exclusive | STGM_CREATE);
        Reference<IXStream>(storage->OpenStream("a"));
        EXPECT_EQ(ole.lastMode, row.stream | exclusive);
        Reference<IXStorage>(storage->CreateStorage("a", 2));
        EXPECT_EQ(ole.lastMode, row.storage | exclusive | STGM_CREATE);
        Reference<IXStorage>(storage->OpenStorage("a"));
        EXPECT_EQ(ole.lastMode, row.storage | exclusive);
    }
}

TEST(StorageModeTest, OnlyFlagsOfExactlyOneKeepFromCommitting) {
    struct {
        DWORD mode;
        std::string log;
    } rows[] = {
        {STGM_READ, "Release "},
        {STGM_READWRITE, "Commit Commit Release "},
        {STGM_READWRITE | STGM_TRANSACTED, "Commit Commit Release "},
        {STGM_READ | STGM_TRANSACTED, "Commit Commit Release "},
    };
    for (const auto& row : rows) {
        FakeStorage ole;
        ole.mode = row.mode;
        std::string log;
        ole.log = &log;
        {
            Reference<IXStorage> storage(new_StorageByOleStorage(&ole));
            storage->Commit();
        }
        EXPECT_EQ(log, row.log);
        EXPECT_EQ(ole.references, 1u);
    }
}

TEST(StorageModeTest, AFailedCommitIsNotInspected) {
    FakeStorage ole;
    ole.status = STG_E_MEDIUMFULL;
    Reference<IXStorage> storage(new_StorageByOleStorage(&ole));
    EXPECT_NO_THROW(storage->Commit());
    EXPECT_NO_THROW(storage.Release());
}

TEST(StorageModeTest, OnlyATransactedStorageReverts) {
    for (int transacted : {0L, STGM_TRANSACTED}) {
        FakeStorage ole;
        ole.mode = STGM_READWRITE | transacted;
        std::string log;
        ole.log = &log;
        Reference<IXStorage> storage(new_StorageByOleStorage(&ole));
        Revert(storage.Get());
        EXPECT_EQ(log, transacted ? "Revert " : "");
    }
}

TEST(StorageLifeTest, AChildClosesBeforeItsParent) {
    std::string log;
    FakeStorage ole, child;
    ole.child = &child;
    ole.log = child.log = &log;
    ole.name = "(root)";
    child.name = "(child)";
    Reference<IXStorage> inner;
    {
        Reference<IXStorage> storage(new_StorageByOleStorage(&ole));
        inner = Reference<IXStorage>(storage->OpenStorage("child"));
    }
    log.clear();
    inner.Release();
    EXPECT_EQ(log, "Commit(child) Release(child) Commit(root) Release(root) ");
}

TEST_F(StorageTest, AForeignStorageIsReferencedAndHasNoPath) {
    IStorage* ole = nullptr;
    std::wstring path = Widen(Path("raw.stg"));
    ASSERT_EQ(StgCreateDocfile(path.c_str(), STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE, 0,
                               &ole),
              S_OK);
    {
        Reference<IXStorage> storage(new_StorageByOleStorage(ole));
        EXPECT_STREQ(storage->GetPath(), "");
        EXPECT_EQ(storage->GetParent(), nullptr);
        PutStream(storage.Get(), "one", "1");
        auto back = static_cast<IStorage*>(Storage_GetOLEStorage(storage.Get()));
        EXPECT_EQ(back, ole);
        back->Release();
    }
    EXPECT_EQ(ole->Release(), 0u);
    EXPECT_EQ(ValueInFile(Path("raw.stg")), "1");
}

TEST_F(StorageTest, AStorageThatIsDeletedWhileItIsOpenClosesWithoutHarm) {
    for (int flags : {0, QXSTG_TRANSACTED | 0}) {
        Reference<IXStorage> root(new_Storage(nullptr, flags));
        Reference<IXStorage> child(root->CreateStorage("child", 0)),
            below(child->CreateStorage("a", 0));
        PutStream(below.Get(), "leaf", "old leaf");
        root->DeleteStorage("child");
        for (IXStorage* gone : {child.Get(), below.Get()}) {
            gone->Commit();
            Revert(gone);
            EXPECT_EQ(gone->OpenStream("leaf"), nullptr);
        }
        child.Release();
        below.Release();
        PutStream(root.Get(), "one", "new");
        EXPECT_EQ(StreamOf(root.Get(), "one"), "new");
    }
}

TEST_F(StorageTest, AStorageThatIsReplacedWhileItIsOpenLeavesTheNewOneAlone) {
    for (int flags : {0, QXSTG_TRANSACTED | 0}) {
        Reference<IXStorage> root(new_Storage(nullptr, flags));
        Reference<IXStorage> old(root->CreateStorage("child", 0));
        PutStream(old.Get(), "leaf", "old leaf");
        Reference<IXStorage> child(root->CreateStorage("child", 0));
        PutStream(child.Get(), "leaf", "new leaf");
        old->Commit();
        old.Release();
        EXPECT_EQ(StreamOf(child.Get(), "leaf"), "new leaf");
    }
}
