// What parameter trees do when memory runs out in the middle of an operation.
#include "param/tree_text.h"
#include "support/allocation_failure.h"

#include <gtest/gtest.h>

namespace {

ParamPtr SmallTree() {
    ParamPtr root(new_MemParam());
    SetInt(root.get(), "a", 1);
    ParamPtr(root->CreateSubParam("child"));
    return root;
}

void ExpectUsable(ParamPtr& root) {
    SetInt(root.get(), "later", 7);
    EXPECT_EQ(GetInt(root.get(), "a"), 1);
    EXPECT_EQ(GetInt(root.get(), "later"), 7);
    ParamPtr child(root->OpenSubParam("child", 0));
    ASSERT_TRUE(child);
    // Every name that is enumerated leads to its value or child.
    NamesPtr names(root->EnumSubParams());
    const char* name;
    while (names->Next(1, &name, nullptr)) EXPECT_TRUE(ParamPtr(root->OpenSubParam(name, 0))) << name;
    NamesPtr values(root->EnumValues());
    while (values->Next(1, &name, nullptr)) {
        CQXVariant value;
        if (!strchr(name, '\\')) {
            EXPECT_EQ(root->GetValue(name, &value), 1) << name;
        }
    }
}

}  // namespace

TEST(ParamMemoryTest, MakingARootLeaksNothing) {
    EXPECT_GT(FailEachAllocation([] { return ParamPtr(); }, [](ParamPtr& root) { root.reset(new_MemParam()); },
                                 [](ParamPtr& root) { EXPECT_FALSE(root); }),
              0u);
}

TEST(ParamMemoryTest, StoringAValueStoresItWholeOrNotAtAll) {
    auto store = [](ParamPtr& root) {
        CQXVariant text("some text");
        root->SetValue("new", &text);
    };
    EXPECT_GT(FailEachAllocation(SmallTree, store, ExpectUsable), 0u);
}

TEST(ParamMemoryTest, StoringUnderAPathKeepsTheTreeUsable) {
    auto store = [](ParamPtr& root) { SetInt(root.get(), "x\\y\\z", 5); };
    EXPECT_GT(FailEachAllocation(SmallTree, store, ExpectUsable), 0u);
}

TEST(ParamMemoryTest, CreatingAChainKeepsTheTreeUsable) {
    auto create = [](ParamPtr& root) { ParamPtr(root->CreateSubParam("x\\y\\z")); };
    EXPECT_GT(FailEachAllocation(SmallTree, create, ExpectUsable), 0u);
}

TEST(ParamMemoryTest, ClearingAndDeletingNeedNoMemory) {
    ParamPtr root = SmallTree();
    ParamPtr(root->CreateSubParam("other"));
    SetInt(root.get(), "b", 2);
    {
        FailingAllocation failing(1);
        root->DeleteValue("b");
        root->OpenSubParam("child", 0)->Release();
        root->CreateSubParam("child")->Release();  // an existing child is only cleared
        root->Clear();
        EXPECT_FALSE(failing.Happened());
    }
    EXPECT_EQ(TreeText(root.get()), "");
}

TEST(ParamMemoryTest, EnumeratingLeaksNothing) {
    EXPECT_GT(FailEachAllocation(
                  SmallTree, [](ParamPtr& root) { NamesPtr(root->EnumValues()); }, ExpectUsable),
              0u);
}

TEST(ParamMemoryTest, ReadingIniTextKeepsWhatWasRead) {
    FILE* file = fopen("param_memory_test.ini", "wb");
    fputs("[\\]\r\nb=i2\r\n[\\child\\deep]\r\nt=stext\r\nr=R2.5\r\n[\\child]\r\nc=p1,2\r\n", file);
    fclose(file);
    auto read = [](ParamPtr& root) { Param_IniFile2Param("param_memory_test.ini", root.get()); };
    // Opening the file without memory gives no file, and reading no file is 0.
    bool mayDoWithout = true;
    EXPECT_GT(FailEachAllocation(SmallTree, read, ExpectUsable, mayDoWithout), 0u);
    remove("param_memory_test.ini");
}
