// What ini files, texts, streams and tree operations do when memory runs out in the middle.
#include "param/ini_file_fixture.h"
#include "support/allocation_failure.h"

#include <gtest/gtest.h>

namespace {

ParamPtr NewTree() {
    ParamPtr tree(new_MemParam());
    CQXVariant text("some text");
    tree->SetValue("text", &text);
    ParamPtr child(tree->CreateSubParam("child\\deep"));
    child->SetValue("x", &text);
    return tree;
}

using FormsMemoryTest = IniFileTest;

}  // namespace

TEST_F(FormsMemoryTest, EachOperationOfALiveTreeThrowsAndTheTreeGoesOn) {
    auto make = [&] {
        ParamPtr root = Root();
        SetInt(root.Get(), "node\\child\\x", 1);
        SetInt(root.Get(), "node\\y", 2);
        return root;
    };
    auto usable = [](ParamPtr& root) {
        SetInt(root.Get(), "later", 7);
        EXPECT_EQ(GetInt(root.Get(), "later"), 7);
        SetInt(root.Get(), "node\\later", 8);
        EXPECT_EQ(GetInt(root.Get(), "node\\later"), 8);
    };
    CQXVariant text("text");
    auto fail = [&](auto act) { EXPECT_GT(FailEachAllocation(make, act, usable), 0u); };
    fail([](ParamPtr& r) { ParamPtr(r->CreateSubParam("node")); });
    fail([](ParamPtr& r) { ParamPtr(r->OpenSubParam("node", 0)); });
    fail([](ParamPtr& r) { ParamPtr(r->OpenSubParam("new", 1)); });
    fail([](ParamPtr& r) { r->DeleteSubParam("node"); });
    fail([](ParamPtr& r) { r->DeleteAllSubParams(); });
    fail([](ParamPtr& r) { NamesPtr(r->EnumSubParams()); });
    fail([](ParamPtr& r) { NamesPtr(r->EnumValues()); });
    fail([](ParamPtr& r) { r->DeleteAllValues(); });
    fail([](ParamPtr& r) { r->Clear(); });
    fail([&](ParamPtr& r) { r->SetValue("node\\t", &text); });
    fail([](ParamPtr& r) {
        CQXVariant out;
        r->GetValue("node\\y", &out);
    });
}

TEST_F(FormsMemoryTest, PlainValuesOfALiveTreeNeedNoMemory) {
    ParamPtr root = Root();
    CQXVariant number(5);
    FailingAllocation failing(1);
    EXPECT_NE(root->SetValue("x", &number), 0);
    CQXVariant out;
    EXPECT_EQ(root->GetValue("x", &out), 1);
    EXPECT_NE(root->DeleteValue("x"), 0);
    EXPECT_FALSE(failing.Happened());
}

TEST_F(FormsMemoryTest, ANodeThatFindsNoMemoryIsNull) {
    auto make = [&](ParamPtr& root) {
        root = ParamPtr(new_IParamIniFile(file.c_str()));
        if (!root) throw CXMemException();  // as FailEachAllocation counts failures
    };
    EXPECT_GT(FailEachAllocation([] { return ParamPtr(); }, make,
                                 [](ParamPtr& root) { EXPECT_FALSE(root); }),
              0u);
}

TEST_F(FormsMemoryTest, AWriterLeavesTheTargetAndNothingBesideIt) {
    auto make = [&] {
        directory.Write("settings.ini", "old");
        return NewTree();
    };
    auto stays = [&](ParamPtr&) {
        EXPECT_EQ(Content(), "old");
        WIN32_FIND_DATAA found;
        HANDLE search = FindFirstFileA(directory.PathOf("*.tmp").c_str(), &found);
        EXPECT_EQ(search, INVALID_HANDLE_VALUE) << found.cFileName;
        if (search != INVALID_HANDLE_VALUE) FindClose(search);
    };
    auto write = [&](ParamPtr& tree) { Param_Param2IniFile(tree.Get(), file.c_str()); };
    EXPECT_GT(FailEachAllocation(make, write, stays), 3u);
    EXPECT_EQ(Content().substr(0, 7), "\r\n[\\]\r\n");
}

TEST_F(FormsMemoryTest, ATextThatFindsNoMemoryStaysOrIsWhole) {
    struct Subject {
        ParamPtr tree = NewTree();
        CXString text = "old";
    };
    auto make = [] { return std::make_unique<Subject>(); };
    auto write = [](std::unique_ptr<Subject>& subject) {
        if (!Param_Param2String(subject->tree.Get(), subject->text)) throw CXMemException();
    };
    auto stays = [](std::unique_ptr<Subject>& subject) { EXPECT_STREQ(subject->text, "old"); };
    EXPECT_GT(FailEachAllocation(make, write, stays), 3u);
}

TEST_F(FormsMemoryTest, ATreeThatIsReadKeepsWhatCameBefore) {
    auto make = [] { return ParamPtr(new_MemParam()); };
    auto usable = [](ParamPtr& tree) {
        SetInt(tree.Get(), "later", 7);
        EXPECT_EQ(GetInt(tree.Get(), "later"), 7);
    };
    CXString text("[\\]|a=i1|[\\b]|c=sx|");
    auto read = [&](ParamPtr& tree) {
        if (!Param_String2Param(text, tree.Get())) throw CXMemException();
    };
    EXPECT_GT(FailEachAllocation(make, read, usable), 5u);
}

TEST_F(FormsMemoryTest, StreamsCopiesAndComparisonsLeakNothing) {
    struct Subject {
        ParamPtr tree = NewTree(), other = ParamPtr(new_MemParam());
        qx::Reference<IXStream> stream{new_StreamOnMemory()};
    };
    auto make = [] { return std::make_unique<Subject>(); };
    auto saved = [] {
        auto subject = std::make_unique<Subject>();
        SaveParamToXStream(subject->stream.Get(), subject->tree.Get());
        subject->stream->Seek(0, 0);
        return subject;
    };
    auto usable = [](std::unique_ptr<Subject>& s) {
        EXPECT_EQ(TreeText(s->tree.Get()), "text=10:some text child{deep{x=10:some text}}");
        SetInt(s->other.Get(), "later", 7);
        EXPECT_EQ(GetInt(s->other.Get(), "later"), 7);
    };
    using S = std::unique_ptr<Subject>;
    auto save = [](S& s) { SaveParamToXStream(s->stream.Get(), s->tree.Get()); };
    auto load = [](S& s) { LoadParamFromXStream(s->stream.Get(), s->other.Get()); };
    auto copy = [](S& s) { Param_CopyTo(s->tree.Get(), s->other.Get()); };
    auto compare = [](S& s) { Param_Cmp(s->tree.Get(), s->tree.Get()); };
    auto list = [](S& s) { Dump_Param(s->tree.Get()); };
    EXPECT_GT(FailEachAllocation(make, save, usable), 3u);
    EXPECT_GT(FailEachAllocation(saved, load, usable), 5u);
    EXPECT_GT(FailEachAllocation(make, copy, usable), 5u);
    EXPECT_GT(FailEachAllocation(make, compare, usable), 3u);
    EXPECT_GT(FailEachAllocation(make, list, usable), 3u);
}
