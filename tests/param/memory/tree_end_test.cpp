// What the objects in a tree see and may do while a part of it ends.
#include "param/tree_text.h"
#include "support/allocation_failure.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace {

// Calls back when its last reference goes.
class Witness : public CQXUnknownImpl<IQXUnknown> {
public:
    explicit Witness(std::function<void()> atEnd) : m_atEnd(std::move(atEnd)) {}
    ~Witness() override { m_atEnd(); }

private:
    std::function<void()> m_atEnd;
};

class TreeEndTest : public testing::Test {
protected:
    ParamPtr root{new_MemParam()};

    // Stores an object that the node alone holds.
    static void Put(IParam* node, const char* name, std::function<void()> atEnd) {
        auto object = new Witness(std::move(atEnd));
        CQXVariant value(static_cast<IQXUnknown*>(object));
        object->Release();
        node->SetValue(name, &value);
    }
    static void Attach(IParam* node, std::function<void()> atEnd) {
        IQXUnknown* table = nullptr;
        node->QueryInterface(qx_typeid<IRegisterIface>(), &table);
        auto object = new Witness(std::move(atEnd));
        static_cast<IRegisterIface*>(table)->RegisterInterface(object, qx_typeid<IXStream>(), 1);
        object->Release();
        table->Release();
    }
    static ParamPtr Child(IParam* node, const char* name) {
        return ParamPtr(node->OpenSubParam(name, 1));
    }
    std::function<void()> Says(const char* word) {
        return [this, word] { said += (said.empty() ? "" : " ") + std::string(word); };
    }

    std::string said;
};

}  // namespace

// The bucket of a name of one letter is the letter's number modulo 127: "a" comes before "b".
TEST_F(TreeEndTest, ANodeEndsWithItsValuesThenItsChildrenThenWhatIsAttached) {
    ParamPtr a = Child(root.Get(), "a"), b = Child(root.Get(), "b"), deep = Child(a.Get(), "x");
    Put(root.Get(), "v", Says("root"));
    Put(a.Get(), "v", Says("a"));
    Put(b.Get(), "v", Says("b"));
    Put(deep.Get(), "v", Says("a\\x"));
    Attach(root.Get(), Says("(root)"));
    Attach(a.Get(), Says("(a)"));
    Attach(b.Get(), Says("(b)"));
    Attach(deep.Get(), Says("(a\\x)"));
    a.Release();
    b.Release();
    deep.Release();
    root.Release();
    EXPECT_EQ(said, "root a a\\x (a\\x) (a) b (b) (root)");
}

// "a" and "a<" are in one bucket, "b" is in the next one.
TEST_F(TreeEndTest, ValuesEndBucketByBucketAndInEachTheNewestFirst) {
    for (int others : {0, 20, 200}) {
        said = "";
        ParamPtr node(new_MemParam());
        Put(node.Get(), "b", Says("b"));
        Put(node.Get(), "a", Says("a"));
        for (int i = 0; i < others; ++i) SetInt(node.Get(), std::to_string(i).c_str(), i);
        Put(node.Get(), "a<", Says("a<"));
        node.Release();
        EXPECT_EQ(said, "a< a b") << others;
    }
}

// Raises when its last reference goes, as a file that cannot be closed.
class Raising : public CQXUnknownImpl<IQXUnknown> {
public:
    unsigned Release() override {
        if (CQXUnknownImpl::Release()) return 1;
        throw CXFileException(QXERR_DEVICE, "raising", QXOP_WRITE);
    }
};

TEST_F(TreeEndTest, WhatAnEndingValueRaisesReachesTheCallerAndTheRestEnds) {
    for (const char* place : {"", "a", "a\\x"}) {
        said = "";
        ParamPtr node(new_MemParam()), deep(node->CreateSubParam("a\\x"));
        Put(node.Get(), "w", Says("w"));
        Put(Child(node.Get(), "a").Get(), "w", Says("a"));
        Put(deep.Get(), "w", Says("x"));
        Put(Child(node.Get(), "b").Get(), "w", Says("b"));
        auto object = new Raising;
        CQXVariant value(static_cast<IQXUnknown*>(object));
        ParamPtr where(*place ? node->OpenSubParam(place, 0) : (node->AddRef(), node.Get()));
        where->SetValue("v", &value);
        value.Clear();
        static_cast<IQXUnknown*>(object)->Release();
        deep.Release();
        where.Release();
        EXPECT_THROW(node->Clear(), CXFileException) << place;
        EXPECT_NE(said.find("a x b"), std::string::npos) << said;
        SetInt(node.Get(), "again", 5);
        EXPECT_TRUE(Child(node.Get(), "new"));
        EXPECT_EQ(GetInt(node.Get(), "again"), 5);
    }
}

TEST_F(TreeEndTest, WhatEndsMayQueryAndReleaseTheEndingNode) {
    IParam* node = root.Get();
    Put(node, "v", [&, node] {
        IQXUnknown* table = nullptr;
        EXPECT_EQ(node->QueryInterface(qx_typeid<IRegisterIface>(), &table), 1);
        table->Release();
        node->AddRef();
        EXPECT_EQ(node->Release(), 1u);
        Says("v")();
    });
    root.Release();
    EXPECT_EQ(said, "v");
}

TEST_F(TreeEndTest, AnEndingNodeTakesNothingMore) {
    IParam* node = root.Get();
    Put(node, "v", [&, node] {
        CQXVariant value(1);
        EXPECT_EQ(node->SetValue("late", &value), 0);
        EXPECT_EQ(node->EnumValues(), nullptr);
    });
    Put(Child(node, "a").Get(), "v", [&, node] {
        EXPECT_EQ(node->CreateSubParam("late"), nullptr);
        EXPECT_EQ(node->OpenSubParam("late\\deep", 1), nullptr);
        EXPECT_EQ(node->EnumSubParams(), nullptr);
        Says("asked")();
    });
    root.Release();
    EXPECT_EQ(said, "asked");
}

TEST_F(TreeEndTest, ANodeTakesNoChildWhileItsChildrenAreCleared) {
    IParam* node = root.Get();
    for (const char* name : {"a", "b", "c"}) {
        Put(Child(node, name).Get(), "v", [&, node] {
            EXPECT_EQ(node->CreateSubParam("late"), nullptr);
            Says("asked")();
        });
    }
    root->Clear();
    EXPECT_EQ(said, "asked asked asked");
    EXPECT_EQ(TreeText(root.Get()), "");
    EXPECT_TRUE(Child(node, "again"));
}

TEST_F(TreeEndTest, ClearingOnceMoreWhileClearingChangesNothing) {
    IParam* node = root.Get();
    int ended = 0;
    for (const char* name : {"a", "b", "c"}) {
        Put(Child(node, name).Get(), "v", [&, node] {
            node->Clear();
            EXPECT_EQ(node->CreateSubParam("late"), nullptr);
            ++ended;
        });
        Put(node, name, [&, node] {
            CQXVariant value(1);
            node->Clear();
            EXPECT_EQ(node->SetValue("late", &value), 0);
            ++ended;
        });
    }
    root->Clear();
    EXPECT_EQ(ended, 6);
    EXPECT_EQ(TreeText(root.Get()), "");
}

TEST_F(TreeEndTest, AReplacedValueEndsWhenTheNewOneStandsInItsPlace) {
    IParam* node = root.Get();
    Put(node, "v", [&, node] {
        EXPECT_EQ(GetInt(node, "v"), 5);
        EXPECT_EQ(node->DeleteValue("v"), 1);
        Says("gone")();
    });
    SetInt(node, "v", 5);
    EXPECT_EQ(said, "gone");
    EXPECT_EQ(TreeText(node), "");
}

TEST_F(TreeEndTest, AValueThatFindsNoMemoryLeavesTheOldOne) {
    auto make = [] {
        ParamPtr node(new_MemParam());
        CQXVariant text("old text");
        node->SetValue("v", &text);
        return node;
    };
    auto replace = [](ParamPtr& node) {
        tagQXVARIANT borrowed = {};
        borrowed.type = QXVT_STRING;
        char text[] = "another text";
        borrowed.value.string = text;
        node->SetValue("v", &borrowed);
    };
    auto isOld = [](ParamPtr& node) { EXPECT_EQ(TreeText(node.Get()), "v=10:old text"); };
    EXPECT_GT(FailEachAllocation(make, replace, isOld), 0u);
}
