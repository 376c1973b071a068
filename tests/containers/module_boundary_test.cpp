// Collections that one module makes and another walks, fills or frees.
#include "containers/collections_module.h"
#include "containers/watched.h"
#include "support/allocation_failure.h"

#include <gtest/gtest.h>
#include <qxcore/reference.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

// The plug-in, loaded while the program runs.
const CollectionsModule& Plugin() {
    static const CollectionsModule& plugin = *[] {
        HMODULE module = LoadLibraryA("test_collections_module.dll");
        auto get = reinterpret_cast<GetCollectionsModule>(
            reinterpret_cast<void*>(GetProcAddress(module, "Collections")));
        return get();
    }();
    return plugin;
}

std::vector<std::string> NamesOf(CTEnum<const char*>* names) {
    std::vector<std::string> all;
    for (const char* name; names->Next(1, &name, nullptr);) all.push_back(name);
    return all;
}

const std::vector<std::string> kOneTwoThree = {"one", "two", "three"};

class ModuleBoundaryTest : public testing::Test {
protected:
    void SetUp() override {
        Plugin();
        before = LiveBlocks();
    }
    void TearDown() override { EXPECT_EQ(LiveBlocks(), before); }

    long before = 0;
};

}  // namespace

TEST_F(ModuleBoundaryTest, AnEnumeratorOfAnotherModulesListIsWalkedAndReleasedHere) {
    qx::Reference<CTEnum<const char*>> names(Plugin().listNames());
    EXPECT_EQ(NamesOf(names.Get()), kOneTwoThree);
    names->Reset();
    EXPECT_EQ(names->Skip(2), 1);
    EXPECT_EQ(NamesOf(names.Get()), std::vector<std::string>{"three"});
}

TEST_F(ModuleBoundaryTest, AnEnumeratorOfAnotherModulesMapIsWalkedAndReleasedHere) {
    qx::Reference<CTEnum<const char*>> names(Plugin().mapNames());
    auto walked = NamesOf(names.Get());
    std::sort(walked.begin(), walked.end());
    EXPECT_EQ(walked, (std::vector<std::string>{"one", "three", "two"}));
}

TEST_F(ModuleBoundaryTest, AnEnumeratorOfAnotherModuleHoldsItsOwnerHere) {
    Counted owner;
    {
        qx::Reference<CTEnum<const char*>> pieces(Plugin().pieces("one two  three", &owner));
        EXPECT_EQ(owner.refs, 2u);
        EXPECT_EQ(NamesOf(pieces.Get()), kOneTwoThree);
    }
    EXPECT_EQ(owner.refs, 1u);
}

TEST_F(ModuleBoundaryTest, EnumeratorsAnswerTheRecordsOfBothModules) {
    qx::Reference<CTEnum<const char*>> theirs(Plugin().listNames());
    EXPECT_EQ(theirs->QueryInterface(qx_typeid<CTEnum<const char*>>(), nullptr), 1);
    EXPECT_EQ(theirs->QueryInterface(qx_typeid<CTEnum<char*>>(), nullptr), 0);
    _CZeroDelimitedStringsEnum<char> ours("one\0");
    EXPECT_EQ(Plugin().asksForNames(&ours), 1);
}

TEST_F(ModuleBoundaryTest, OurEnumeratorsAreWalkedAndReleasedByAnotherModule) {
    auto list = new CTListEnum<const char*>;
    for (auto name : {"a", "b"}) list->AddTail(name);
    auto names = list->CreateEnum();
    list->Release();
    EXPECT_EQ(Plugin().walk(names), 2u);

    auto map = new CTMapEnum<const char*, int>;
    map->SetAt("a", 1);
    names = map->CreateEnum();
    map->Release();
    EXPECT_EQ(Plugin().walk(names), 1u);

    EXPECT_EQ(Plugin().walk(new _CZeroDelimitedStringsEnum<char>("x\0y\0z\0")), 3u);
}

TEST_F(ModuleBoundaryTest, AMapOfAnotherModuleIsFilledAndDeletedHere) {
    auto object = qx::Make<CQXUnknownImpl<IQXUnknown>>();
    ObjectMap* map = Plugin().newMap();
    EXPECT_EQ(map->SetAt("ours", object.Get()), 1);
    EXPECT_EQ(Plugin().store(map, "theirs", object.Get()), 1);
    EXPECT_EQ(Plugin().store(map, "ours", object.Get()), 1);
    EXPECT_EQ(map->count, 2u);
    IQXUnknown* found = nullptr;
    EXPECT_EQ(map->Lookup("theirs", found), 1);
    EXPECT_EQ(found, object.Get());
    EXPECT_EQ(map->RemoveKey("theirs"), 1);
    delete map;
    EXPECT_EQ(object->AddRef(), 2u);
    object->Release();
}

TEST_F(ModuleBoundaryTest, OurMapIsFilledAndDeletedByAnotherModule) {
    auto object = qx::Make<CQXUnknownImpl<IQXUnknown>>();
    auto map = new ObjectMap;
    // Past the size where a map keeps an index, from both sides.
    for (int i = 0; i < 300; ++i) {
        std::string name = std::to_string(i);
        EXPECT_EQ(i % 2 ? map->SetAt(name.c_str(), object.Get())
                        : Plugin().store(map, name.c_str(), object.Get()),
                  1);
    }
    IQXUnknown* found = nullptr;
    for (int i = 0; i < 300; ++i) EXPECT_EQ(map->Lookup(std::to_string(i).c_str(), found), 1);
    Plugin().deleteMap(map);
    EXPECT_EQ(object->AddRef(), 2u);
    object->Release();
}

TEST_F(ModuleBoundaryTest, AListIsFilledInOneModuleAndDeletedInTheOther) {
    NameList* theirs = Plugin().newList();
    theirs->AddTail("a text of ours");
    EXPECT_EQ(theirs->RemoveAt(theirs->GetHeadPosition()), 1);
    theirs->AddTail("another");
    delete theirs;
    auto ours = new NameList;
    ours->AddTail("a text of ours");
    Plugin().deleteList(ours);
}
