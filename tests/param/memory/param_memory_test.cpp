// What parameter trees do when memory runs out in the middle of an operation.
#include "param/tree_text.h"
#include "support/allocation_failure.h"

#include <gtest/gtest.h>

#include <clocale>

namespace {

ParamPtr SmallTree() {
    ParamPtr root(new_MemParam());
    SetInt(root.Get(), "a", 1);
    ParamPtr(root->CreateSubParam("child"));
    return root;
}

void ExpectUsable(ParamPtr& root) {
    SetInt(root.Get(), "later", 7);
    EXPECT_EQ(GetInt(root.Get(), "a"), 1);
    EXPECT_EQ(GetInt(root.Get(), "later"), 7);
    ParamPtr child(root->OpenSubParam("child", 0));
    ASSERT_TRUE(child);
    // Every name that is enumerated leads to its value or child.
    NamesPtr names(root->EnumSubParams());
    const char* name;
    while (names->Next(1, &name, nullptr))
        EXPECT_TRUE(ParamPtr(root->OpenSubParam(name, 0))) << name;
    NamesPtr values(root->EnumValues());
    while (values->Next(1, &name, nullptr)) {
        CQXVariant value;
        if (!strchr(name, '\\')) {
            EXPECT_EQ(root->GetValue(name, &value), 1) << name;
        }
    }
}

}  // namespace

TEST(ParamMemoryTest, ARootThatFindsNoMemoryIsNull) {
    auto make = [](ParamPtr& root) {
        root = ParamPtr(new_MemParam());
        if (!root) throw CXMemException();  // as FailEachAllocation counts failures
    };
    EXPECT_GT(FailEachAllocation([] { return ParamPtr(); }, make,
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
    auto store = [](ParamPtr& root) { SetInt(root.Get(), "x\\y\\z", 5); };
    EXPECT_GT(FailEachAllocation(SmallTree, store, ExpectUsable), 0u);
}

TEST(ParamMemoryTest, CreatingAChainKeepsTheTreeUsable) {
    auto create = [](ParamPtr& root) { ParamPtr(root->CreateSubParam("x\\y\\z")); };
    EXPECT_GT(FailEachAllocation(SmallTree, create, ExpectUsable), 0u);
}

TEST(ParamMemoryTest, ClearingAndDeletingNeedNoMemory) {
    ParamPtr root = SmallTree();
    ParamPtr(root->CreateSubParam("other"));
    SetInt(root.Get(), "b", 2);
    {
        FailingAllocation failing(1);
        root->DeleteValue("b");
        root->OpenSubParam("child", 0)->Release();
        root->CreateSubParam("child")->Release();  // an existing child is only cleared
        root->Clear();
        EXPECT_FALSE(failing.Happened());
    }
    EXPECT_EQ(TreeText(root.Get()), "");
}

TEST(ParamMemoryTest, EnumeratingLeaksNothing) {
    EXPECT_GT(FailEachAllocation(
                  SmallTree, [](ParamPtr& root) { NamesPtr(root->EnumValues()); }, ExpectUsable),
              0u);
}

TEST(ParamMemoryTest, ReadingAValueLeavesItWhereItIs) {
    auto make = [] {
        ParamPtr root = SmallTree();
        ParamPtr child(root->OpenSubParam("child", 0));
        CQXVariant text("some text");
        child->SetValue("t", &text);
        return root;
    };
    auto read = [](ParamPtr& root) {
        CQXVariant value("old");
        root->GetValue("child\\t", &value);
    };
    auto stillThere = [](ParamPtr& root) {
        ExpectUsable(root);
        EXPECT_NE(TreeText(root.Get()).find("t=10:some text"), std::string::npos);
    };
    EXPECT_GT(FailEachAllocation(make, read, stillThere), 1u);
}

TEST(ParamMemoryTest, OpeningAPathKeepsTheTreeUsable) {
    EXPECT_GT(FailEachAllocation(
                  SmallTree, [](ParamPtr& root) { ParamPtr(root->OpenSubParam("child\\x", 1)); },
                  ExpectUsable),
              0u);
    EXPECT_GT(
        FailEachAllocation(
            SmallTree, [](ParamPtr& root) { ParamPtr(root->OpenSubParam("x", 1)); }, ExpectUsable),
        0u);
}

TEST(ParamMemoryTest, DeletingAllValuesOrChildrenGoesOnWhereItStopped) {
    auto make = [] {
        ParamPtr root(new_MemParam());
        for (const char* name : {"a", "b", "c"}) {
            SetInt(root.Get(), name, 1);
            ParamPtr(root->CreateSubParam(name));
        }
        return root;
    };
    auto goOn = [](ParamPtr& root) {
        root->DeleteAllValues();
        root->DeleteAllSubParams();
        EXPECT_EQ(TreeText(root.Get()), "");
    };
    EXPECT_GT(FailEachAllocation(
                  make, [](ParamPtr& root) { root->DeleteAllValues(); }, goOn),
              0u);
    EXPECT_GT(FailEachAllocation(
                  make, [](ParamPtr& root) { root->DeleteAllSubParams(); }, goOn),
              0u);
    EXPECT_GT(FailEachAllocation(
                  make, [](ParamPtr& root) { root->DeleteSubParam("b"); }, goOn),
              0u);
}

TEST(ParamMemoryTest, ReadingIniTextKeepsWhatWasRead) {
    FILE* file = fopen("param_memory_test.ini", "wb");
    fputs("[\\]\r\nb=i2\r\n[\\child\\deep]\r\nt=stext\r\nr=R2.5\r\n[\\child]\r\nc=p1,2\r\n", file);
    fclose(file);
    auto read = [](ParamPtr& root) { Param_IniFile2Param("param_memory_test.ini", root.Get()); };
    // Opening the file without memory gives no file, and reading no file is 0.
    bool mayDoWithout = true;
    EXPECT_GT(FailEachAllocation(SmallTree, read, ExpectUsable, mayDoWithout), 0u);
    remove("param_memory_test.ini");
}

TEST(ParamMemoryTest, ReadingIncludesKeepsWhatWasReadAndClosesTheFiles) {
    auto write = [](const char* name, const char* text) {
        FILE* file = fopen(name, "wb");
        fputs(text, file);
        fclose(file);
    };
    write("param_memory_outer.ini",
          "[\\]\r\nb=i2\r\n#include .\\param_memory_inner.ini\r\nc=i3\r\n");
    write("param_memory_inner.ini", "[\\child]\r\nt=stext\r\n");
    auto read = [](ParamPtr& root) { Param_IniFile2Param("param_memory_outer.ini", root.Get()); };
    auto check = [](ParamPtr& root) {
        ExpectUsable(root);
        FILE* file = fopen("param_memory_inner.ini", "r+b");  // nobody holds it
        ASSERT_NE(file, nullptr);
        fclose(file);
    };
    bool mayDoWithout = true;  // the outer file, as above
    EXPECT_GT(FailEachAllocation(SmallTree, read, check, mayDoWithout), 0u);
    remove("param_memory_outer.ini");
    remove("param_memory_inner.ini");
}

TEST(ParamMemoryTest, ADecimalThatFindsNoMemoryLeavesTheLocaleAsItWas) {
    std::string before = setlocale(LC_ALL, nullptr);
    ASSERT_NE(setlocale(LC_ALL, "German_Germany.1252"), nullptr);
    std::string inside = setlocale(LC_ALL, nullptr);
    FILE* file = fopen("param_memory_locale.ini", "wb");
    fputs("[\\]\r\nb=R2.5\r\n", file);
    fclose(file);
    auto read = [](ParamPtr& root) { Param_IniFile2Param("param_memory_locale.ini", root.Get()); };
    auto check = [&](ParamPtr& root) {
        ExpectUsable(root);
        EXPECT_EQ(setlocale(LC_ALL, nullptr), inside);
    };
    EXPECT_GT(FailEachAllocation(SmallTree, read, check, true), 0u);
    EXPECT_EQ(setlocale(LC_ALL, nullptr), inside);
    setlocale(LC_ALL, before.c_str());
    remove("param_memory_locale.ini");
}
