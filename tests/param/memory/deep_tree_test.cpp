// Trees and paths of many levels: whoever hands them in must not use up the stack of the host.
#include "param/small_stack.h"
#include "param/tree_text.h"
#include "support/scratch_directory.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

std::string Levels(int count, const char* level = "a\\") {
    std::string path;
    for (int i = 0; i < count; ++i) path += level;
    return path;
}

// A chain of nodes "a", each the only child of the one above it; the last has the value "leaf".
ParamPtr Chain(int levels) {
    ParamPtr root(new_MemParam());
    ParamPtr node(root->OpenSubParam("a", 1));
    for (int i = 1; i < levels; ++i) node = ParamPtr(node->CreateSubParam("a"));
    SetInt(node.Get(), "leaf", 7);
    return root;
}

}  // namespace

TEST(DeepTreeTest, ReleasingATreeWalksDownIt) {
    ParamPtr root = Chain(kManyLevels);
    OnSmallStack([&] { root.Release(); });
}

TEST(DeepTreeTest, ClearingANodeWalksDownItsTree) {
    ParamPtr root = Chain(kManyLevels);
    OnSmallStack([&] { root->Clear(); });
    EXPECT_EQ(TreeText(root.Get()), "");
}

TEST(DeepTreeTest, DeletingAChildWalksDownItsTree) {
    ParamPtr root = Chain(kManyLevels), other = Chain(kManyLevels);
    OnSmallStack([&] {
        root->DeleteSubParam("a");
        other->DeleteAllSubParams();
    });
    EXPECT_EQ(TreeText(root.Get()), "");
    EXPECT_EQ(TreeText(other.Get()), "");
}

TEST(DeepTreeTest, CreatingAnExistingChildWalksDownItsTree) {
    ParamPtr root = Chain(kManyLevels);
    OnSmallStack([&] { ParamPtr(root->CreateSubParam("a")); });
    EXPECT_EQ(TreeText(root.Get()), "a{}");
}

TEST(DeepTreeTest, APathIsCreatedOpenedAndReadLevelByLevel) {
    ParamPtr root(new_MemParam());
    std::string path = Levels(kManyLevels) + "leaf";
    OnSmallStack([&] {
        SetInt(ParamPtr(root->CreateSubParam(path.c_str())).Get(), "v", 1);
        EXPECT_EQ(GetInt(root.Get(), (path + "\\v").c_str()), 1);
        EXPECT_TRUE(ParamPtr(root->OpenSubParam(path.c_str(), 0)));
        EXPECT_FALSE(ParamPtr(root->OpenSubParam((path + "\\missing").c_str(), 0)));
        SetInt(root.Get(), (path + "\\w").c_str(), 2);
        EXPECT_EQ(GetInt(root.Get(), (path + "\\w").c_str()), 2);
        root.Release();
    });
}

TEST(DeepTreeTest, OpeningDropsTheFirstMissingLevelOfALongPath) {
    ParamPtr root(new_MemParam());
    std::string path = Levels(kManyLevels);
    OnSmallStack([&] {
        ParamPtr(root->OpenSubParam(("x\\" + path + "end").c_str(), 1));
        EXPECT_FALSE(ParamPtr(root->OpenSubParam("x", 0)));
        EXPECT_TRUE(ParamPtr(root->OpenSubParam((path + "end").c_str(), 0)));
    });
}

TEST(DeepTreeTest, AHeaderAndAKeyOfEmptyLevelsAreRead) {
    ScratchDirectory directory;
    std::string levels(kLevelsOfALine, '\\');
    std::string path =
        directory.Write("deep.ini", "[\\" + levels + "\r\n" + levels + "=i1\r\n[\\]\r\nk=i5\r\n");
    OnSmallStack([&] {
        ParamPtr root(new_MemParam());
        EXPECT_EQ(Param_IniFile2Param(path.c_str(), root.Get()), 1);
        EXPECT_EQ(GetInt(root.Get(), "k"), 5);
    });
}

TEST(DeepTreeTest, ANodeHeldInTheMiddleLivesOnWithWhatIsBelowIt) {
    ParamPtr root = Chain(1000);
    ParamPtr middle(root->OpenSubParam((Levels(499) + "a").c_str(), 0));
    ASSERT_TRUE(middle);
    root.Release();
    EXPECT_EQ(GetInt(middle.Get(), (Levels(500) + "leaf").c_str()), 7);
}
