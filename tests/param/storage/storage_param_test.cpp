// Trees over storages: what stands in the file, when it gets there, and what Clear leaves.
#include "param/small_stack.h"
#include "param/storage/storage_fakes.h"
#include "param/tree_text.h"
#include "support/scratch_directory.h"
#include "support/slot.h"

#include <gtest/gtest.h>

#include <objbase.h>

#include <vector>

namespace {

struct ReleaseOle {
    void operator()(::IUnknown* object) const { object->Release(); }
};
using StoragePtr = qx::Reference<IXStorage>;
using StreamPtr = qx::Reference<IXStream>;

class StorageParamTest : public testing::Test {
protected:
    StoragePtr storage{new_Storage(nullptr, 0)};
    ParamPtr root{new_IXStorParam(storage.Get())};

    ParamPtr Create(const char* name) { return ParamPtr(root->CreateSubParam(name)); }
    ParamPtr Open(const char* name, int create = 0) {
        return ParamPtr(root->OpenSubParam(name, create));
    }
};

unsigned CountOf(IQXUnknown* object) {
    object->AddRef();
    return object->Release();
}

std::string Hex(const std::string& bytes) {
    std::string text;
    char digits[3];
    for (unsigned char byte : bytes) {
        snprintf(digits, sizeof digits, "%02x", byte);
        text += digits;
    }
    return text;
}

std::string HexOf(IXStorage* storage, const char* name) {
    StreamPtr stream(storage->OpenStream(name));
    if (!stream) return "none";
    std::string bytes(stream->GetLength(), '?');
    stream->Read(bytes.data(), static_cast<int>(bytes.size()));
    return Hex(bytes);
}

// The stream "PATH" of a file, read by the platform's own calls; levels are divided by "/".
std::string RawHexOf(const std::string& file, std::wstring path) {
    constexpr DWORD kRead = STGM_READ | STGM_SHARE_EXCLUSIVE;
    std::wstring wide(file.begin(), file.end());
    IStorage* found = nullptr;
    if (FAILED(StgOpenStorage(wide.c_str(), nullptr, kRead, nullptr, 0, &found))) return "no file";
    std::vector<std::unique_ptr<IStorage, ReleaseOle>> way;  // a closed storage closes those in it
    way.emplace_back(found);
    for (size_t cut; (cut = path.find(L'/')) != path.npos; path.erase(0, cut + 1)) {
        IStorage* next = nullptr;
        if (FAILED(way.back()->OpenStorage(path.substr(0, cut).c_str(), nullptr, kRead, nullptr, 0,
                                           &next)))
            return "no storage";
        way.emplace_back(next);
    }
    IStream* opened = nullptr;
    if (FAILED(way.back()->OpenStream(path.c_str(), nullptr, kRead, 0, &opened))) return "none";
    std::unique_ptr<IStream, ReleaseOle> stream(opened);
    std::string bytes(200, '?');
    ULONG read = 0;
    stream->Read(bytes.data(), static_cast<ULONG>(bytes.size()), &read);
    return Hex(bytes.substr(0, read));
}

void PutBytes(IXStorage* storage, const char* name, const std::string& bytes) {
    StreamPtr stream(storage->CreateStream(name));
    stream->Write(bytes.data(), static_cast<int>(bytes.size()));
}

// An object that writes itself, of a class that nobody registers.
class CThing : public CQXUnknownImpl<IPersistXStream> {
public:
    const char* GetClassName() override { return "TestThing"; }
    unsigned GetSizeMax() override { return 4; }
    void Load(IXStream*) override {}
    void Save(IXStream* stream) override { stream->WriteLong(0x01020304); }
};

// Stops the work on a document when it is told to. It lives on the stack.
class Stopper : public IProgress {
public:
    unsigned AddRef() override { return 1; }
    unsigned Release() override { return 1; }
    int QueryInterface(qx_type_info const&, IQXUnknown**) override { return 0; }
    int IsCancelled() override { return stops; }
    void SetRange(int, int) override {}

    bool stops = false;
};

}  // namespace

TEST_F(StorageParamTest, TheNodeAnswersItsStorageForIXStorage) {
    IQXUnknown* out = nullptr;
    ASSERT_EQ(root->QueryInterface(qx_typeid<IXStorage>(), &out), 1);
    EXPECT_EQ(out, storage.Get());
    out->Release();
}

TEST_F(StorageParamTest, TheCallerKeepsHisReferenceAndTheNodeTakesOne) {
    EXPECT_EQ(CountOf(storage.Get()), 2u);
    root.Release();
    EXPECT_EQ(CountOf(storage.Get()), 1u);
}

TEST_F(StorageParamTest, AValueIsAStreamOfOneVariant) {
    char bytes[] = {1, 0, 2};
    struct Row {
        CQXVariant value;
        const char* bytes;
    };
    const Row rows[] = {
        {CQXVariant(), "000000000000"},
        {CQXVariant(1, QXVT_BOOL), "010001000000"},
        {CQXVariant(static_cast<unsigned char>(0xFE)), "0200fe"},
        {CQXVariant(static_cast<unsigned short>(0x1234)), "03003412"},
        {CQXVariant(-2), "0500feffffff"},
        {CQXVariant(-2.5), "080000000000000004c0"},
        {CQXVariant("ab"), "0a0003000000616200"},
        {CQXVariant(tagRECT{1, 2, 3, -1}), "0f00010000000200000003000000ffffffff"},
        {CQXVariant(tagQXBLOB{3, bytes}), "110003000000010002"},
        {CQXVariant(static_cast<IQXUnknown*>(nullptr)), "120000"},
    };
    for (const Row& row : rows) {
        std::string name = "type " + std::to_string(row.value.type);
        EXPECT_EQ(root->SetValue(name.c_str(), &row.value), 1);
        EXPECT_EQ(HexOf(storage.Get(), name.c_str()), row.bytes) << name;
        CQXVariant out(77);
        EXPECT_EQ(root->GetValue(name.c_str(), &out), 1) << name;
        EXPECT_TRUE(out == row.value) << name;
    }
}

TEST_F(StorageParamTest, AnObjectComesBackAlsoWhenNobodyKnowsItsClass) {
    auto thing = new CThing;
    CQXVariant value(static_cast<IQXUnknown*>(thing)), out;
    EXPECT_EQ(root->SetValue("object", &value), 1);
    std::string stored = HexOf(storage.Get(), "object");
    EXPECT_EQ(stored, "1200" + Hex(std::string("TestThing", 10)) + "0400000004030201");
    ASSERT_EQ(root->GetValue("object", &out), 1);
    ASSERT_EQ(out.type, QXVT_UNKNOWN);
    IQXUnknown* found = nullptr;
    ASSERT_EQ(out.value.unknown->QueryInterface(qx_typeid<IPersistXStream>(), &found), 1);
    EXPECT_STREQ(static_cast<IPersistXStream*>(found)->GetClassName(), "TestThing");
    found->Release();
    EXPECT_EQ(root->SetValue("copy", &out), 1);
    EXPECT_EQ(HexOf(storage.Get(), "copy"), stored);
    thing->Release();
}

TEST_F(StorageParamTest, AnEmptyNameMakesTheStreamOfTheDefaultName) {
    SetInt(root.Get(), "", 1);
    EXPECT_EQ(HexOf(storage.Get(), "@"), "050001000000");
    EXPECT_EQ(root->DeleteValue(""), 0);
    EXPECT_EQ(root->DeleteValue(nullptr), 0);
    EXPECT_EQ(root->DeleteValue("@"), 1);
    EXPECT_EQ(HexOf(storage.Get(), "@"), "none");
}

TEST_F(StorageParamTest, AShorterValueKeepsTheRestOfTheLongerOneBehindIt) {
    CQXVariant text("abc"), out;
    root->SetValue("v", &text);
    SetInt(root.Get(), "v", 1);
    EXPECT_EQ(HexOf(storage.Get(), "v"),
              "050001000000"
              "61626300");
    EXPECT_EQ(root->GetValue("v", &out), 1);
    EXPECT_EQ(ValueText(out), "5:1");
}

TEST_F(StorageParamTest, BytesThatAreNoVariantReadAsMissing) {
    PutBytes(storage.Get(), "empty", "");
    PutBytes(storage.Get(), "unknown", std::string("\x13\0\1\2\3\4", 6));
    PutBytes(storage.Get(), "blob", std::string("\x11\0\xff\xff\xff\xff", 6));
    PutBytes(storage.Get(), "half blob", std::string("\x11\0", 2));
    PutBytes(storage.Get(), "object", std::string("\x12\0name", 6));
    for (const char* name : {"empty", "unknown", "blob", "half blob", "object"}) {
        CQXVariant out("old");
        EXPECT_EQ(root->GetValue(name, &out), 0) << name;
    }
    PutBytes(storage.Get(), "short", std::string("\5\0\x2a", 3));
    EXPECT_EQ(GetInt(root.Get(), "short"), 42);
}

TEST_F(StorageParamTest, AMissingNameClearsAndAMissingLevelKeepsTheVariant) {
    CQXVariant out("old");
    EXPECT_EQ(root->GetValue("missing\\name", &out), 0);
    EXPECT_EQ(ValueText(out), "10:old");
    EXPECT_EQ(root->GetValue("missing", &out), 0);
    EXPECT_EQ(ValueText(out), "0:");
}

TEST_F(StorageParamTest, OpeningAPathCreatesItsFirstLevelAlone) {
    EXPECT_FALSE(Open("a\\b", 1));
    EXPECT_EQ(TreeText(root.Get()), "a{}");
    Create("a\\b");
    EXPECT_TRUE(Open("a\\b", 1));
    EXPECT_EQ(TreeText(root.Get()), "a{b{}}");
}

TEST_F(StorageParamTest, AValueOfAPathStandsInTheChildOnly) {
    SetInt(root.Get(), "a\\b", 7);
    EXPECT_EQ(NamesText(storage->EnumStreams()), "");
    StoragePtr a(storage->OpenStorage("a"));
    EXPECT_EQ(HexOf(a.Get(), "b"), "050007000000");
}

TEST_F(StorageParamTest, ADeletedChildIsGoneFromTheStorage) {
    SetInt(Create("a\\b").Get(), "v", 1);
    Create("c");
    root->DeleteSubParam("a");
    EXPECT_EQ(NamesText(storage->EnumStorages()), "c");
    root->DeleteAllSubParams();
    EXPECT_EQ(NamesText(storage->EnumStorages()), "");
}

TEST_F(StorageParamTest, AHeldChildIsNotOpenedAgainAndIsReplacedWhereItIsCreated) {
    ParamPtr held = Create("a");
    SetInt(held.Get(), "v", 1);
    EXPECT_FALSE(Open("a"));
    root->DeleteSubParam("a");
    EXPECT_EQ(GetInt(held.Get(), "v"), 1);
    ParamPtr second = Open("a", 1);
    ASSERT_TRUE(second);
    EXPECT_EQ(TreeText(second.Get()), "");
    EXPECT_EQ(GetInt(held.Get(), "v"), -1);  // its storage is not in the file any more
    SetInt(held.Get(), "v", 2);
    held->Clear();
    held.Release();
    SetInt(second.Get(), "w", 3);
    EXPECT_EQ(GetInt(second.Get(), "w"), 3);
}

TEST_F(StorageParamTest, APathOfManyLevelsIsWalkedDownAndClosedUpwards) {
    constexpr int kLevels = 1000;
    std::string path;
    for (int i = 0; i < kLevels; ++i) path += "a\\";
    OnSmallStack([&] {
        SetInt(Create((path + "leaf").c_str()).Get(), "v", 1);
        EXPECT_EQ(GetInt(root.Get(), (path + "leaf\\v").c_str()), 1);
    });
    OnSmallStack([&] { EXPECT_FALSE(Open((path + "missing").c_str())); });
    EXPECT_TRUE(Open((path + "leaf").c_str()));
}

TEST_F(StorageParamTest, AParentIsHeldByItsChild) {
    ParamPtr child = Create("a");
    constexpr int kFirstOwnSlot = 14 + kDestructorSlots;
    auto getParent = Slot<IParam*(IParam*)>(child.Get(), kFirstOwnSlot + 4);
    EXPECT_EQ(CountOf(root.Get()), 2u);
    ParamPtr parent(getParent(child.Get()));
    EXPECT_EQ(parent.Get(), root.Get());
    EXPECT_EQ(CountOf(root.Get()), 3u);
    EXPECT_EQ(Slot<IParam*(IParam*)>(root.Get(), kFirstOwnSlot + 4)(root.Get()), nullptr);
    parent.Release();
    child.Release();
    EXPECT_EQ(CountOf(root.Get()), 1u);
}

TEST_F(StorageParamTest, TheSlotsBehindThoseOfIParamStandInTheirOrder) {
    constexpr int kFirst = 14 + kDestructorSlots;
    IParam* node = root.Get();
    // The template's own count starts at 1 and is another one than the public count.
    EXPECT_EQ(Slot<unsigned(IParam*)>(node, kFirst)(node), 2u);
    EXPECT_EQ(Slot<unsigned(IParam*)>(node, kFirst + 1)(node), 1u);
    EXPECT_EQ(CountOf(node), 1u);
    using Query = int(IParam*, qx_type_info const&, IQXUnknown**);
    EXPECT_EQ(Slot<Query>(node, kFirst + 2)(node, qx_typeid<IParam>(), nullptr), 1);
    EXPECT_EQ(Slot<Query>(node, kFirst + 2)(node, qx_typeid<IXStorage>(), nullptr), 0);
    ParamPtr parent(new_MemParam());
    Slot<void(IParam*, IParam*)>(node, kFirst + 3)(node, parent.Get());
    EXPECT_EQ(CountOf(parent.Get()), 2u);
    EXPECT_EQ(ParamPtr(Slot<IParam*(IParam*)>(node, kFirst + 4)(node)).Get(), parent.Get());
    root.Release();
    EXPECT_EQ(CountOf(parent.Get()), 1u);
}

TEST(StorageParamFileTest, TheLastNodeOfAChainBringsAllIntoTheFile) {
    ScratchDirectory directory;
    std::string file = directory.PathOf("chain.document");
    ParamPtr leaf;
    {
        StoragePtr storage(new_Storage(file.c_str(), QXSTG_TRANSACTED));
        ParamPtr root(new_IXStorParam(storage.Get())), a(root->CreateSubParam("a"));
        SetInt(root.Get(), "early", 1);
        leaf = ParamPtr(a->CreateSubParam("b\\c"));
    }
    SetInt(leaf.Get(), "late", 2);  // everything above it is released, and still open
    leaf.Release();
    EXPECT_EQ(RawHexOf(file, L"early"), "050001000000");
    EXPECT_EQ(RawHexOf(file, L"a/b/c/late"), "050002000000");
}

TEST(StorageParamFileTest, AClosingChildCommitsItselfAndItsParent) {
    ScratchDirectory directory;
    std::string file = directory.PathOf("commit.document");
    StoragePtr storage(new_Storage(file.c_str(), QXSTG_TRANSACTED));
    ParamPtr root(new_IXStorParam(storage.Get()));
    SetInt(ParamPtr(root->CreateSubParam("a")).Get(), "kept", 1);
    SetInt(root.Get(), "dropped", 2);
    static_cast<CStorage*>(storage.Get())->Revert();
    EXPECT_EQ(TreeText(root.Get()), "a{kept=5:1}");
    root.Release();
    storage.Release();
    EXPECT_EQ(RawHexOf(file, L"a/kept"), "050001000000");
}

TEST(StorageParamFileTest, WhatThePlatformsCallsWriteIsRead) {
    ScratchDirectory directory;
    std::string file = directory.PathOf("raw.document");
    {
        constexpr DWORD kWrite = STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
        std::wstring wide(file.begin(), file.end());
        IStorage *root = nullptr, *child = nullptr;
        IStream* stream = nullptr;
        ASSERT_EQ(StgCreateDocfile(wide.c_str(), kWrite, 0, &root), S_OK);
        ASSERT_EQ(root->CreateStorage(L"child", kWrite, 0, 0, &child), S_OK);
        ASSERT_EQ(child->CreateStream(L"text", kWrite, 0, 0, &stream), S_OK);
        stream->Write("\x0a\0\3\0\0\0ok\0", 9, nullptr);
        stream->Release();
        child->Release();
        root->Release();
    }
    StoragePtr storage(open_Storage(file.c_str(), 1));
    EXPECT_EQ(TreeText(ParamPtr(new_IXStorParam(storage.Get())).Get()), "child{text=10:ok}");
}

TEST(StorageParamFileTest, AStorageOpenedForReadingIsReadAndNothingElse) {
    ScratchDirectory directory;
    std::string file = directory.PathOf("read.document");
    {
        StoragePtr storage(new_Storage(file.c_str(), 0));
        ParamPtr root(new_IXStorParam(storage.Get()));
        SetInt(ParamPtr(root->CreateSubParam("a")).Get(), "v", 1);
        SetInt(root.Get(), "w", 2);
    }
    auto fileBytes = [&] {
        std::string bytes(1 << 16, '?');
        FILE* opened = fopen(file.c_str(), "rb");
        bytes.resize(fread(bytes.data(), 1, bytes.size(), opened));
        fclose(opened);
        return bytes;
    };
    std::string before = fileBytes();
    {
        StoragePtr storage(open_Storage(file.c_str(), 1));
        ParamPtr root(new_IXStorParam(storage.Get()));
        EXPECT_EQ(TreeText(root.Get()), "w=5:2 a{v=5:1}");
        CQXVariant value(3);
        EXPECT_EQ(root->SetValue("w", &value), 0);
        EXPECT_EQ(root->SetValue("new", &value), 0);
        EXPECT_EQ(root->SetValue("a\\v", &value), 0);
        EXPECT_EQ(root->DeleteValue("w"), 0);
        EXPECT_FALSE(ParamPtr(root->CreateSubParam("a")));
        EXPECT_FALSE(ParamPtr(root->OpenSubParam("new", 1)));
        root->DeleteSubParam("a");
        root->DeleteAllValues();
        root->DeleteAllSubParams();
        root->Clear();
        EXPECT_EQ(TreeText(root.Get()), "w=5:2 a{v=5:1}");
    }
    EXPECT_EQ(fileBytes(), before);
}

TEST_F(StorageParamTest, ClearEndsTheNodeAndDeletesItsStorageInTheParent) {
    ParamPtr a = Create("a");
    SetInt(ParamPtr(a->CreateSubParam("b")).Get(), "v", 1);
    SetInt(a.Get(), "v", 1);
    a->Clear();
    EXPECT_EQ(NamesText(storage->EnumStorages()), "");
    EXPECT_EQ(a->QueryInterface(qx_typeid<IXStorage>(), nullptr), 0);
    a.Release();
    Create("a");
    EXPECT_EQ(TreeText(root.Get()), "a{}");
}

TEST_F(StorageParamTest, ClearOfARootLeavesItsStorageEmptyAndDetached) {
    SetInt(Create("a").Get(), "v", 1);
    SetInt(root.Get(), "v", 1);
    root->Clear();
    EXPECT_EQ(CountOf(storage.Get()), 1u);
    EXPECT_EQ(NamesText(storage->EnumStorages()), "");
    EXPECT_EQ(NamesText(storage->EnumStreams()), "");
    ParamPtr again(new_IXStorParam(storage.Get()));
    SetInt(again.Get(), "v", 2);
    EXPECT_EQ(TreeText(again.Get()), "v=5:2");
}

TEST_F(StorageParamTest, AChildIsHeldOverTheEndOfItsParent) {
    ParamPtr a = Create("a"), b(a->CreateSubParam("b"));
    SetInt(b.Get(), "v", 1);
    a->Clear();
    EXPECT_EQ(NamesText(storage->EnumStorages()), "");
    CQXVariant value(2), out;
    b->SetValue("w", &value);
    EXPECT_EQ(b->GetValue("v", &out), 0);
    EXPECT_FALSE(ParamPtr(b->CreateSubParam("c")));
    b->DeleteAllValues();
    b->DeleteAllSubParams();
    b->Clear();
    b.Release();
    a.Release();
    EXPECT_EQ(TreeText(root.Get()), "");
    SetInt(Create("a").Get(), "again", 3);
    EXPECT_EQ(TreeText(root.Get()), "a{again=5:3}");
}

// A document that the user stops raises in each operation of its streams.
TEST_F(StorageParamTest, AStoppedDocumentIsTreatedAsAFailureLikeOthers) {
    SetInt(root.Get(), "v", 1);
    Stopper stopper;
    StoragePtr watched;
    ASSERT_EQ(new_CIXDocStorage(storage.Get(), &stopper, watched.Receive(), 0), 1);
    ParamPtr node(new_IXStorParam(watched.Get()));
    EXPECT_EQ(GetInt(node.Get(), "v"), 1);
    stopper.stops = true;
    CQXVariant value(2), out("old");
    EXPECT_EQ(node->GetValue("v", &out), 0);
    EXPECT_EQ(node->SetValue("v", &value), 0);
    EXPECT_EQ(node->SetValue("new", &value), 0);
    stopper.stops = false;
    EXPECT_EQ(GetInt(node.Get(), "v"), 1);
    node.Release();
    watched.Release();
}

TEST_F(StorageParamTest, AClearedNodeAnswersThatThereIsNothing) {
    root->Clear();
    CQXVariant value(1), out;
    EXPECT_EQ(root->SetValue("v", &value), 0);
    EXPECT_EQ(root->SetValue("a\\v", &value), 0);
    EXPECT_EQ(root->GetValue("v", &out), 0);
    EXPECT_EQ(root->GetValue("a\\v", &out), 0);
    EXPECT_EQ(root->DeleteValue("v"), 0);
    EXPECT_FALSE(Create("a"));
    EXPECT_FALSE(Open("a", 1));
    EXPECT_EQ(root->EnumValues(), nullptr);
    EXPECT_EQ(root->EnumSubParams(), nullptr);
    root->DeleteSubParam("a");
    root->DeleteAllSubParams();
    root->DeleteAllValues();
    root->Clear();
    EXPECT_EQ(NamesText(storage->EnumStreams()), "");
}

TEST_F(StorageParamTest, ClearLeavesAnAttachmentOfTheCallersInPlace) {
    IQXUnknown* out = nullptr;
    root->QueryInterface(qx_typeid<IRegisterIface>(), &out);
    auto table = static_cast<IRegisterIface*>(out);
    StoragePtr other(new_Storage(nullptr, 0));
    table->RegisterInterface(other.Get(), qx_typeid<IXStorage>(), 1);
    root->Clear();
    ASSERT_EQ(root->QueryInterface(qx_typeid<IXStorage>(), &out), 1);
    EXPECT_EQ(out, other.Get());
    out->Release();
    table->Release();
}

TEST_F(StorageParamTest, ARootOverASubStorageIsClearedUnderTheNameRoot) {
    StoragePtr sub(storage->CreateStorage("settings", 0));
    StoragePtr(storage->CreateStorage("Root", 0));
    ParamPtr node(new_IXStorParam(sub.Get()));
    SetInt(node.Get(), "v", 1);
    node->Clear();
    EXPECT_EQ(NamesText(storage->EnumStorages()), "settings");
    EXPECT_EQ(NamesText(sub->EnumStreams()), "");
}

TEST_F(StorageParamTest, SubStoragesAreAskedForWithTheMode2) {
    std::string log;
    FakeXStorage child("b", log), fake("a", log);
    fake.child = &child;
    fake.missing = true;
    ParamPtr node(new_IXStorParam(&fake));
    ParamPtr(node->CreateSubParam("x"))->AddRef();
    ParamPtr made(node->OpenSubParam("y", 1));
    EXPECT_EQ(log, "a create x 2, a open y, a create y 2");
    made->Release();  // the extra reference of the first child stays: both fakes are on the stack
    made.Detach();
}

TEST_F(StorageParamTest, AClosingChildCommitsItselfThenItselfAndItsParentsStorage) {
    std::string log;
    FakeXStorage above("a", log), below("b", log, &above);
    above.child = &below;
    ParamPtr parent(new_IXStorParam(&above)), child(parent->CreateSubParam("b"));
    log.clear();
    child.Release();
    EXPECT_EQ(log, "b commit, b commit, a commit");
    log.clear();
    parent.Release();
    EXPECT_EQ(log, "a commit, a commit");
}

TEST_F(StorageParamTest, AChildThatHeldTheLastReferenceOnItsParentClosesIntoTheClosedOne) {
    std::string log;
    FakeXStorage above("a", log), below("b", log, &above);
    above.child = &below;
    ParamPtr parent(new_IXStorParam(&above)), child(parent->CreateSubParam("b"));
    parent.Release();
    log.clear();
    child.Release();
    EXPECT_EQ(log, "b commit, a commit, a commit, b commit, a commit");
}

TEST_F(StorageParamTest, ClearDeletesWhatIsListedThenCommitsThenGoesFromTheParent) {
    std::string log;
    FakeXStorage above("a", log), below("b", log, &above);
    above.child = &below;
    ParamPtr parent(new_IXStorParam(&above)), child(parent->CreateSubParam("b"));
    log.clear();
    child->Clear();
    EXPECT_EQ(log,
              "b list storages, b delete storage one, b delete storage two, b list streams, "
              "b delete stream value, b commit, a delete storage b, a commit");
    log.clear();
    child.Release();
    EXPECT_EQ(log, "");  // nothing is left to commit
}

TEST_F(StorageParamTest, NoOperationLetsAnExceptionOut) {
    std::string log;
    FakeXStorage fake("a", log);
    ParamPtr node(new_IXStorParam(&fake));
    fake.failing = true;
    CQXVariant value(1), out;
    EXPECT_FALSE(ParamPtr(node->CreateSubParam("x")));
    EXPECT_FALSE(ParamPtr(node->OpenSubParam("x", 1)));
    node->DeleteSubParam("x");
    node->DeleteAllSubParams();
    EXPECT_EQ(node->EnumSubParams(), nullptr);
    EXPECT_EQ(node->GetValue("x", &out), 0);
    EXPECT_EQ(node->GetValue("x\\y", &out), 0);
    EXPECT_EQ(node->SetValue("x", &value), 0);
    EXPECT_EQ(node->SetValue("x\\y", &value), 0);
    EXPECT_EQ(node->DeleteValue("x"), 0);
    node->DeleteAllValues();
    EXPECT_EQ(node->EnumValues(), nullptr);
    node->Clear();
    log.clear();
    node.Release();
    EXPECT_EQ(log, "a commit, a commit");  // the failed Clear left the storage where it was
}
