// Transactions, reverting, foreign storages, and the modes that reach the platform.
#include "storage/compound/ole_fakes.h"
#include "storage/compound/storage_fixture.h"

namespace {

void Revert(IXStorage* storage) {
    static_cast<CStorage*>(storage)->Revert();
}

void MakeFile(const std::string& path) {
    Owned<IXStorage> storage(new_Storage(path.c_str(), 0));
    PutStream(storage, "one", "old");
    Owned<IXStorage> child(storage->CreateStorage("child", 0));
    PutStream(child, "leaf", "old leaf");
}

std::string ValueInFile(const std::string& path) {
    Owned<IXStorage> storage(open_Storage(path.c_str(), 1));
    return StreamOf(storage, "one");
}

std::string LeafInFile(const std::string& path) {
    Owned<IXStorage> storage(open_Storage(path.c_str(), 1)), child(storage->OpenStorage("child"));
    return StreamOf(child, "leaf");
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
        Owned<IXStorage> storage(open_Storage(path.c_str(), 0));
        PutStream(storage, "one", "new");
    }
    EXPECT_EQ(ValueInFile(path), "new");
}

TEST_F(StorageTest, RevertIsTheWayOutOfATransaction) {
    std::string path = Path("t.stg");
    MakeFile(path);
    {
        Owned<IXStorage> storage(open_Storage(path.c_str(), 0));
        PutStream(storage, "one", "new");
        PutStream(storage, "two", "new too");
        Revert(storage);
        EXPECT_EQ(StreamOf(storage, "one"), "old");
    }
    EXPECT_EQ(ValueInFile(path), "old");
    Owned<IXStorage> storage(open_Storage(path.c_str(), 1));
    EXPECT_EQ(Names(storage->EnumStreams()), List{"one"});
}

TEST_F(StorageTest, RevertGoesBackToTheLastCommit) {
    std::string path = Path("t.stg");
    MakeFile(path);
    {
        Owned<IXStorage> storage(open_Storage(path.c_str(), 0));
        PutStream(storage, "one", "committed");
        storage->Commit();
        PutStream(storage, "one", "dropped");
        Revert(storage);
    }
    EXPECT_EQ(ValueInFile(path), "committed");
}

TEST_F(StorageTest, RevertOfADirectStorageDoesNothing) {
    std::string path = Path("t.stg");
    {
        Owned<IXStorage> storage(new_Storage(path.c_str(), 0));
        PutStream(storage, "one", "kept");
        Revert(storage);
    }
    EXPECT_EQ(ValueInFile(path), "kept");
}

TEST_F(StorageTest, AChildOfATransactionReachesTheFileWhenBothClose) {
    std::string path = Path("t.stg");
    MakeFile(path);
    {
        Owned<IXStorage> storage(open_Storage(path.c_str(), 0)),
            child(storage->OpenStorage("child"));
        PutStream(child, "leaf", "new leaf");
    }
    EXPECT_EQ(LeafInFile(path), "new leaf");
}

TEST_F(StorageTest, AChildRevertsAlone) {
    std::string path = Path("t.stg");
    MakeFile(path);
    {
        Owned<IXStorage> storage(open_Storage(path.c_str(), 0)),
            child(storage->OpenStorage("child"));
        PutStream(child, "leaf", "new leaf");
        PutStream(storage, "one", "new");
        Revert(child);
    }
    EXPECT_EQ(LeafInFile(path), "old leaf");
    EXPECT_EQ(ValueInFile(path), "new");
}

TEST_F(StorageTest, RevertOfTheRootDropsAClosedChildToo) {
    std::string path = Path("t.stg");
    MakeFile(path);
    {
        Owned<IXStorage> storage(open_Storage(path.c_str(), 0));
        {
            Owned<IXStorage> child(storage->OpenStorage("child"));
            PutStream(child, "leaf", "new leaf");
        }
        Revert(storage);
    }
    EXPECT_EQ(LeafInFile(path), "old leaf");
}

TEST_F(StorageTest, ANewTransactedFileCommitsWhenItCloses) {
    std::string path = Path("t.stg");
    {
        Owned<IXStorage> storage(new_Storage(path.c_str(), 2));
        PutStream(storage, "one", "1");
    }
    EXPECT_EQ(ValueInFile(path), "1");
}

TEST_F(StorageTest, TheReservedOperationAnswersZero) {
    Owned<IXStorage> storage(new_Storage(nullptr, 0));
    EXPECT_EQ(static_cast<CStorage*>(storage.Get())->Reserved(nullptr, nullptr, nullptr, nullptr),
              0);
}

TEST_F(StorageTest, TheModesOfTheRootFollowTheBits) {
    std::string path = Path("m.stg");
    EXPECT_EQ(RawMode(Owned<IXStorage>(new_Storage(path.c_str(), 0))) & ~STGM_CREATE,
              DWORD(STGM_SHARE_EXCLUSIVE | STGM_READWRITE));
    EXPECT_EQ(RawMode(Owned<IXStorage>(new_Storage(path.c_str(), 2))) & ~STGM_CREATE,
              DWORD(STGM_SHARE_EXCLUSIVE | STGM_READWRITE | STGM_TRANSACTED));
    EXPECT_EQ(RawMode(Owned<IXStorage>(open_Storage(path.c_str(), 1))),
              DWORD(STGM_SHARE_EXCLUSIVE | STGM_READ));
    EXPECT_EQ(RawMode(Owned<IXStorage>(open_Storage(path.c_str(), 0))),
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
        Owned<IXStorage> storage(new_StorageByOleStorage(&ole));
        EXPECT_EQ(ole.lastStatFlags, DWORD(STATFLAG_NONAME));
        DWORD exclusive = STGM_SHARE_EXCLUSIVE;
        Owned<IXStream>(storage->CreateStream("a"));
        EXPECT_EQ(ole.lastMode, row.stream | exclusive | STGM_CREATE);
        Owned<IXStream>(storage->OpenStream("a"));
        EXPECT_EQ(ole.lastMode, row.stream | exclusive);
        Owned<IXStorage>(storage->CreateStorage("a", 2));
        EXPECT_EQ(ole.lastMode, row.storage | exclusive | STGM_CREATE);
        Owned<IXStorage>(storage->OpenStorage("a"));
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
            Owned<IXStorage> storage(new_StorageByOleStorage(&ole));
            storage->Commit();
        }
        EXPECT_EQ(log, row.log);
        EXPECT_EQ(ole.references, 1u);
    }
}

TEST(StorageModeTest, AFailedCommitIsNotInspected) {
    FakeStorage ole;
    ole.status = STG_E_MEDIUMFULL;
    Owned<IXStorage> storage(new_StorageByOleStorage(&ole));
    EXPECT_NO_THROW(storage->Commit());
    EXPECT_NO_THROW(storage.Reset());
}

TEST(StorageModeTest, OnlyATransactedStorageReverts) {
    for (int transacted : {0L, STGM_TRANSACTED}) {
        FakeStorage ole;
        ole.mode = STGM_READWRITE | transacted;
        std::string log;
        ole.log = &log;
        Owned<IXStorage> storage(new_StorageByOleStorage(&ole));
        Revert(storage);
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
    Owned<IXStorage> inner;
    {
        Owned<IXStorage> storage(new_StorageByOleStorage(&ole));
        inner.Reset(storage->OpenStorage("child"));
    }
    log.clear();
    inner.Reset();
    EXPECT_EQ(log, "Commit(child) Release(child) Commit(root) Release(root) ");
}

TEST_F(StorageTest, AForeignStorageIsReferencedAndHasNoPath) {
    IStorage* ole = nullptr;
    std::wstring path = Widen(Path("raw.stg"));
    ASSERT_EQ(StgCreateDocfile(path.c_str(), STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE, 0,
                               &ole),
              S_OK);
    {
        Owned<IXStorage> storage(new_StorageByOleStorage(ole));
        EXPECT_STREQ(storage->GetPath(), "");
        EXPECT_EQ(storage->GetParent(), nullptr);
        PutStream(storage, "one", "1");
        auto back = static_cast<IStorage*>(Storage_GetOLEStorage(storage));
        EXPECT_EQ(back, ole);
        back->Release();
    }
    EXPECT_EQ(ole->Release(), 0u);
    EXPECT_EQ(ValueInFile(Path("raw.stg")), "1");
}

TEST_F(StorageTest, AStorageThatIsDeletedWhileItIsOpenClosesWithoutHarm) {
    for (int flags : {0, QXSTG_TRANSACTED | 0}) {
        Owned<IXStorage> root(new_Storage(nullptr, flags));
        Owned<IXStorage> child(root->CreateStorage("child", 0)),
            below(child->CreateStorage("a", 0));
        PutStream(below, "leaf", "old leaf");
        root->DeleteStorage("child");
        for (IXStorage* gone : {child.Get(), below.Get()}) {
            gone->Commit();
            Revert(gone);
            EXPECT_EQ(gone->OpenStream("leaf"), nullptr);
        }
        child.Reset();
        below.Reset();
        PutStream(root, "one", "new");
        EXPECT_EQ(StreamOf(root, "one"), "new");
    }
}

TEST_F(StorageTest, AStorageThatIsReplacedWhileItIsOpenLeavesTheNewOneAlone) {
    for (int flags : {0, QXSTG_TRANSACTED | 0}) {
        Owned<IXStorage> root(new_Storage(nullptr, flags));
        Owned<IXStorage> old(root->CreateStorage("child", 0));
        PutStream(old, "leaf", "old leaf");
        Owned<IXStorage> child(root->CreateStorage("child", 0));
        PutStream(child, "leaf", "new leaf");
        old->Commit();
        old.Reset();
        EXPECT_EQ(StreamOf(child, "leaf"), "new leaf");
    }
}
