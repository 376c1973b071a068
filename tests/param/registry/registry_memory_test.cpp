// What trees over registry keys do when memory runs out in the middle of an operation.
#include "param/registry/registry_key.h"
#include "param/tree_text.h"
#include "support/allocation_failure.h"

#include <gtest/gtest.h>

namespace {

DWORD OpenHandles() {
    DWORD count = 0;
    GetProcessHandleCount(GetCurrentProcess(), &count);
    return count;
}

// A key with "a", a text, and "child" with two levels below it.
struct SmallKey {
    SmallKey() {
        SetInt(root.Get(), "a", 1);
        CQXVariant text("some text");
        root->SetValue("text", &text);
        SetInt(ParamPtr(root->CreateSubParam("child\\deep")).Get(), "b", 2);
    }

    TestKey key;
    ParamPtr root{new_IParamCUReg(key.Path().c_str())};
};

std::unique_ptr<SmallKey> MakeSmallKey() {
    return std::make_unique<SmallKey>();
}

void ExpectUsable(std::unique_ptr<SmallKey>& small) {
    IParam* root = small->root.Get();
    SetInt(root, "later", 7);
    EXPECT_EQ(GetInt(root, "later"), 7);
    ParamPtr(root->CreateSubParam("new"));
    EXPECT_TRUE(ParamPtr(root->OpenSubParam("new", 0)));
    root->DeleteAllSubParams();
    root->DeleteAllValues();
    EXPECT_EQ(TreeText(root), "");
}

unsigned FailEach(void (*act)(IParam* root)) {
    return FailEachAllocation(
        MakeSmallKey, [act](std::unique_ptr<SmallKey>& small) { act(small->root.Get()); },
        ExpectUsable);
}

}  // namespace

TEST(RegistryMemoryTest, AKeyThatFindsNoMemoryForItsNodeIsClosedAndTheFailurePassedOn) {
    TestKey key;
    ParamPtr(new_IParamCUReg(key.Path().c_str()));
    DWORD before = OpenHandles();
    unsigned failures = FailEachAllocation(
        [] { return ParamPtr(); },
        [&](ParamPtr& root) { root = ParamPtr(new_IParamCUReg(key.Path().c_str())); },
        [](ParamPtr& root) { EXPECT_FALSE(root); });
    EXPECT_GT(failures, 2u);
    EXPECT_EQ(OpenHandles(), before);
}

TEST(RegistryMemoryTest, CreatingAndOpeningKeepTheTreeUsable) {
    EXPECT_GT(FailEach([](IParam* root) { ParamPtr(root->CreateSubParam("x\\y")); }), 0u);
    EXPECT_GT(FailEach([](IParam* root) { ParamPtr(root->CreateSubParam("child")); }), 0u);
    EXPECT_GT(FailEach([](IParam* root) { ParamPtr(root->OpenSubParam("child", 0)); }), 0u);
    EXPECT_GT(FailEach([](IParam* root) { ParamPtr(root->OpenSubParam("x", 1)); }), 0u);
}

TEST(RegistryMemoryTest, DeletingGoesOnWhereItStopped) {
    EXPECT_GT(FailEach([](IParam* root) { root->DeleteSubParam("child"); }), 0u);
    EXPECT_GT(FailEach([](IParam* root) { root->DeleteAllSubParams(); }), 0u);
    EXPECT_GT(FailEach([](IParam* root) { root->DeleteAllValues(); }), 0u);
    EXPECT_GT(FailEach([](IParam* root) { root->Clear(); }), 0u);
}

TEST(RegistryMemoryTest, ReadingWritingAndListingKeepTheTreeUsable) {
    EXPECT_GT(FailEach([](IParam* root) { NamesText(root->EnumValues()); }), 0u);
    EXPECT_GT(FailEach([](IParam* root) { NamesText(root->EnumSubParams()); }), 0u);
    EXPECT_GT(FailEach([](IParam* root) {
                  std::string bytes(1000, 'b');
                  tagQXVARIANT blob = {};
                  blob.type = QXVT_BLOB;
                  blob.value.blob = {1000, bytes.data()};
                  root->SetValue("new", &blob);
              }),
              0u);
    EXPECT_GT(FailEach([](IParam* root) {
                  CQXVariant out("old");
                  root->GetValue("text", &out);
              }),
              0u);
}

TEST(RegistryMemoryTest, PlainValuesNeedNoMemory) {
    SmallKey small;
    const CQXVariant number(5), rectangle(tagRRECT{1, 2, 3, 4});
    CQXVariant out;
    FailingAllocation failing(1);
    for (const CQXVariant* value : {&number, &rectangle}) {
        EXPECT_EQ(small.root->SetValue("x", value), 1);
        EXPECT_EQ(small.root->GetValue("x", &out), 1);
        EXPECT_EQ(small.root->DeleteValue("x"), ERROR_SUCCESS);
    }
    EXPECT_FALSE(failing.Happened());
}

TEST(RegistryMemoryTest, AValueThatFindsNoMemoryStaysInTheRegistry) {
    auto read = [](std::unique_ptr<SmallKey>& small) {
        CQXVariant out;
        small->root->GetValue("text", &out);
    };
    auto stillThere = [](std::unique_ptr<SmallKey>& small) {
        EXPECT_EQ(small->key.Get("text").substr(0, 10), "1:73006f00");
    };
    EXPECT_GT(FailEachAllocation(MakeSmallKey, read, stillThere), 0u);
    EXPECT_GT(FailEachAllocation(
                  MakeSmallKey,
                  [](std::unique_ptr<SmallKey>& small) {
                      char bytes[300] = {};
                      CQXVariant blob(tagQXBLOB{sizeof bytes, bytes});
                      small->root->SetValue("text", &blob);
                  },
                  stillThere),
              0u);
}
