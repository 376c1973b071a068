// What trees over storages do when memory runs out: an operation answers null or 0, and the tree
// stays usable.
#include "param/tree_text.h"
#include "support/allocation_failure.h"

#include <gtest/gtest.h>

namespace {

using StoragePtr = qx::Reference<IXStorage>;

// "a", a text, and "child" with a level below it.
ParamPtr SmallTree() {
    StoragePtr storage(new_Storage(nullptr, 0));
    ParamPtr root(new_IXStorParam(storage.Get()));
    SetInt(root.Get(), "a", 1);
    CQXVariant text("some text");
    root->SetValue("text", &text);
    SetInt(ParamPtr(root->CreateSubParam("child\\deep")).Get(), "b", 2);
    return root;
}

void ExpectUsable(ParamPtr& root) {
    SetInt(root.Get(), "later", 7);
    EXPECT_EQ(GetInt(root.Get(), "later"), 7);
    EXPECT_TRUE(ParamPtr(root->CreateSubParam("new")));
    root->DeleteAllSubParams();
    root->DeleteAllValues();
    EXPECT_EQ(TreeText(root.Get()), "");
}

// What cannot be had is swallowed, so an operation does without instead of throwing.
unsigned FailEach(void (*act)(IParam* root)) {
    return FailEachAllocation(
        SmallTree, [act](ParamPtr& root) { act(root.Get()); }, ExpectUsable, true);
}

void Swallow(CTEnum<const char*>* names) {
    if (names) names->Release();
}

}  // namespace

TEST(StorageParamMemoryTest, ARootThatFindsNoMemoryIsNullAndHoldsNothing) {
    StoragePtr storage(new_Storage(nullptr, 0));
    auto make = [&](ParamPtr& root) {
        root = ParamPtr(new_IXStorParam(storage.Get()));
        if (!root) throw CXMemException();  // as FailEachAllocation counts failures
    };
    EXPECT_GT(FailEachAllocation([] { return ParamPtr(); }, make,
                                 [&](ParamPtr& root) {
                                     EXPECT_FALSE(root);
                                     storage->AddRef();
                                     EXPECT_EQ(storage->Release(), 1u);
                                 }),
              2u);
}

TEST(StorageParamMemoryTest, CreatingAndOpeningKeepTheTreeUsable) {
    EXPECT_GT(FailEach([](IParam* root) { ParamPtr(root->CreateSubParam("x\\y")); }), 0u);
    EXPECT_GT(FailEach([](IParam* root) { ParamPtr(root->CreateSubParam("child")); }), 0u);
    EXPECT_GT(FailEach([](IParam* root) { ParamPtr(root->OpenSubParam("child\\deep", 0)); }), 0u);
    EXPECT_GT(FailEach([](IParam* root) { ParamPtr(root->OpenSubParam("x", 1)); }), 0u);
}

TEST(StorageParamMemoryTest, DeletingGoesOnWhereItStopped) {
    EXPECT_GT(FailEach([](IParam* root) { root->DeleteSubParam("child"); }), 0u);
    EXPECT_GT(FailEach([](IParam* root) { root->DeleteAllSubParams(); }), 0u);
    EXPECT_GT(FailEach([](IParam* root) { root->DeleteAllValues(); }), 0u);
    EXPECT_GT(FailEach([](IParam* root) {
                  if (ParamPtr child{root->OpenSubParam("child", 0)}) child->Clear();
              }),
              0u);
}

TEST(StorageParamMemoryTest, ReadingWritingAndListingKeepTheTreeUsable) {
    EXPECT_GT(FailEach([](IParam* root) { Swallow(root->EnumValues()); }), 0u);
    EXPECT_GT(FailEach([](IParam* root) { Swallow(root->EnumSubParams()); }), 0u);
    EXPECT_GT(FailEach([](IParam* root) { SetInt(root, "new", 1); }), 0u);
    EXPECT_GT(FailEach([](IParam* root) { SetInt(root, "x\\y", 1); }), 0u);
    EXPECT_GT(FailEach([](IParam* root) {
                  CQXVariant out("old");
                  root->GetValue("text", &out);
              }),
              1u);
}
