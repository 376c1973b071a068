// Comparing, copying and listing trees, whatever their back ends are.
#include "param/recording_param.h"
#include "param/small_stack.h"
#include "param/tree_text.h"
#include "support/debugged_process.h"
#include "support/scratch_directory.h"

#include <gtest/gtest.h>

namespace {

ParamPtr NewTree() {
    return ParamPtr(new_MemParam());
}

// "x=1 a\y=2" as a tree.
ParamPtr Tree(std::initializer_list<std::pair<const char*, int>> values) {
    ParamPtr root = NewTree();
    for (auto [path, number] : values) {
        std::string text = path;
        size_t cut = text.rfind('\\');
        if (cut == std::string::npos) {
            SetInt(root.Get(), path, number);
        } else {
            std::string parent = text.substr(0, cut);
            ParamPtr node(root->OpenSubParam(parent.c_str(), 0));
            if (!node) node = ParamPtr(root->CreateSubParam(parent.c_str()));
            SetInt(node.Get(), text.c_str() + cut + 1, number);
        }
    }
    return root;
}

int Cmp(const ParamPtr& a, const ParamPtr& b) {
    return Param_Cmp(a.Get(), b.Get());
}

// A node of a host around one in memory, which passes on what it does not know, and one that
// answers itself to whatever it is asked.
template <bool passesOn>
class Around : public RecordingParam {
public:
    Around(IParam* node, std::string* calls)
        : RecordingParam((node->AddRef(), node), "h", calls), m_inner(node) {}
    int QueryInterface(qx_type_info const& id, IQXUnknown** out) override {
        if (passesOn) return m_inner->QueryInterface(id, out);
        return QXAnswerQuery(this, out);
    }
    int GetValue(const char* name, tagQXVARIANT* out) override {
        RecordingParam::GetValue(name, out);
        CQXVariant own("own");
        QXVariantCopy(out, &own);
        return 1;
    }

private:
    IParam* m_inner;
};

ParamPtr Chain(int levels) {
    ParamPtr root = NewTree();
    ParamPtr node(root->OpenSubParam("a", 1));
    for (int i = 1; i < levels; ++i) node = ParamPtr(node->CreateSubParam("a"));
    SetInt(node.Get(), "leaf", 7);
    return root;
}

}  // namespace

TEST(ParamCmpTest, ATreeContainsItself) {
    ParamPtr tree = Tree({{"x", 1}, {"a\\y", 2}, {"a\\b\\z", 3}});
    EXPECT_EQ(Cmp(tree, tree), 1);
}

TEST(ParamCmpTest, ANullTreeIsContainedNowhereAndContainsNothing) {
    ParamPtr tree = NewTree();
    EXPECT_EQ(Param_Cmp(nullptr, tree.Get()), 0);
    EXPECT_EQ(Param_Cmp(tree.Get(), nullptr), 0);
    EXPECT_EQ(Param_Cmp(nullptr, nullptr), 0);
}

TEST(ParamCmpTest, WhatOnlyTheSecondTreeHasIsIgnored) {
    ParamPtr a = Tree({{"x", 1}}), b = Tree({{"x", 1}, {"y", 2}, {"c\\z", 3}});
    EXPECT_EQ(Cmp(a, b), 1);
    EXPECT_EQ(Cmp(b, a), 0);
}

TEST(ParamCmpTest, EmptyTreesAreEqualAndAnEmptyOneIsInAny) {
    ParamPtr empty = NewTree(), other = NewTree(), tree = Tree({{"x", 1}});
    EXPECT_EQ(Cmp(empty, other), 1);
    EXPECT_EQ(Cmp(empty, tree), 1);
    EXPECT_EQ(Cmp(tree, empty), 0);
}

TEST(ParamCmpTest, AnEmptyChildMustBeThereToo) {
    ParamPtr a = NewTree(), b = NewTree();
    ParamPtr(a->CreateSubParam("c"));
    EXPECT_EQ(Cmp(a, b), 0);
    ParamPtr(b->CreateSubParam("C"));
    EXPECT_EQ(Cmp(a, b), 1);
}

TEST(ParamCmpTest, ValuesAreEqualByTypeAndValue) {
    ParamPtr a = Tree({{"x", 3}}), b = NewTree();
    CQXVariant asLong(3l);
    b->SetValue("x", &asLong);
    EXPECT_EQ(Cmp(a, b), 0);
    SetInt(b.Get(), "X", 3);
    EXPECT_EQ(Cmp(a, b), 1);
    SetInt(b.Get(), "X", 4);
    EXPECT_EQ(Cmp(a, b), 0);
    CQXVariant one(tagRPOINT{1, 2}), close(tagRPOINT{1.001, 2});
    a->SetValue("x", &one);
    b->SetValue("x", &close);
    EXPECT_EQ(Cmp(a, b), 1);
}

TEST(ParamCmpTest, ADifferenceFarBelowIsFound) {
    ParamPtr a = Tree({{"a\\b\\c\\d\\x", 1}, {"a\\y", 2}}),
             b = Tree({{"a\\y", 2}, {"a\\b\\c\\d\\x", 1}});
    EXPECT_EQ(Cmp(a, b), 1);
    SetInt(ParamPtr(b->OpenSubParam("a\\b\\c\\d", 0)).Get(), "x", 9);
    EXPECT_EQ(Cmp(a, b), 0);
}

// The name is read down the path in both trees.
TEST(ParamCmpTest, AValueUnderAWholePathIsComparedByItsPath) {
    ParamPtr a = NewTree(), b = Tree({{"a\\b", 5}});
    SetInt(a.Get(), "a\\b", 5);
    EXPECT_EQ(Cmp(a, b), 1);
    SetInt(ParamPtr(b->OpenSubParam("a", 0)).Get(), "b", 6);
    EXPECT_EQ(Cmp(a, b), 0);
}

TEST(ParamCmpTest, AValueThatTheFirstCannotReadEqualsAnEmptyOne) {
    ParamPtr a = NewTree(), b = NewTree();
    SetInt(a.Get(), "a\\b", 5);
    a->DeleteAllSubParams();  // "a\b" stays as a name
    CQXVariant empty;
    ParamPtr child(b->CreateSubParam("a"));
    child->SetValue("b", &empty);
    EXPECT_EQ(Cmp(a, b), 1);
    SetInt(child.Get(), "b", 0);
    EXPECT_EQ(Cmp(a, b), 0);
}

TEST(ParamCmpTest, AListedChildThatDoesNotOpenIsContainedNowhere) {
    ScratchDirectory directory;
    std::string path = directory.Write("t.ini", "[\\]\r\n@=e\r\n[\\aa\\bb]\r\ny=i2\r\n");
    ParamPtr tree(new_IParamIniFile(path.c_str())), copy = NewTree();
    Param_CopyTo(tree.Get(), copy.Get());
    ParamPtr(copy->CreateSubParam("aa"));
    EXPECT_EQ(Cmp(tree, copy), 0);
    EXPECT_EQ(Cmp(tree, tree), 0);
}

TEST(ParamCmpTest, ValuesComeFirstAndTheWalkStopsAtTheFirstDifference) {
    std::string calls;
    auto a =
        qx::Make<RecordingParam>(Tree({{"x", 1}, {"y", 2}, {"c\\z", 3}}).Detach(), "a", &calls);
    ParamPtr b = Tree({{"x", 1}, {"y", 9}});
    EXPECT_EQ(Param_Cmp(a.Get(), b.Get()), 0);
    EXPECT_EQ(calls, "a:EnumValues a:GetValue(x) a:GetValue(y) ");
}

template <bool passesOn>
void ExpectAskedByItsInterface() {
    std::string calls;
    ParamPtr inner = Tree({{"x", 1}, {"y", 2}}), copy = NewTree(), target = NewTree();
    auto host = qx::Make<Around<passesOn>>(inner.Get(), &calls);
    Param_CopyTo(host.Get(), copy.Get());
    EXPECT_EQ(TreeText(copy.Get()), "x=10:own y=10:own");
    EXPECT_EQ(calls, "h:EnumSubParams h:EnumValues h:GetValue(x) h:GetValue(y) ");
    EXPECT_EQ(Param_Cmp(copy.Get(), host.Get()), 1);
    EXPECT_EQ(Param_Cmp(copy.Get(), inner.Get()), 0);
    CXString text;
    Param_Param2String(host.Get(), text);
    EXPECT_STREQ(text, "[\\]|x=sown|y=sown|");
    calls = "";
    Param_CopyTo(copy.Get(), host.Get());
    EXPECT_EQ(calls, "h:SetValue(x) h:SetValue(y) ");
}

TEST(ParamCopyToTest, AForeignNodeAroundOneOfOursIsAskedByItsInterface) {
    ExpectAskedByItsInterface<true>();
}

TEST(ParamCopyToTest, AForeignNodeThatAnswersToEveryQueryIsAskedByItsInterface) {
    ExpectAskedByItsInterface<false>();
}

TEST(ParamCopyToTest, ATreeCopiedOntoItselfStaysAsItIs) {
    const std::string longText(400, 'L');
    char bytes[] = {1, 2, 3};
    const CQXVariant values[] = {CQXVariant("short"), CQXVariant(longText.c_str()),
                                 CQXVariant(tagQXBLOB{3, bytes}), CQXVariant(7)};
    ParamPtr tree = Tree({{"c\\x", 1}}), equal = NewTree();
    for (int i = 0; i < 4; ++i) tree->SetValue(std::to_string(i).c_str(), &values[i]);
    Param_CopyTo(tree.Get(), equal.Get());
    for (int i = 0; i < 3; ++i) Param_CopyTo(tree.Get(), tree.Get());
    EXPECT_EQ(Cmp(tree, equal), 1);
    EXPECT_EQ(Cmp(equal, tree), 1);
    EXPECT_EQ(TreeText(tree.Get()), TreeText(equal.Get()));
}

TEST(ParamCmpTest, AllReferencesAreGivenBack) {
    std::string calls;
    auto a = new RecordingParam(Tree({{"x", 1}, {"c\\d\\z", 3}}).Detach(), "a", &calls);
    ParamPtr b = Tree({{"x", 1}, {"c\\d\\z", 4}});
    EXPECT_EQ(Param_Cmp(a, b.Get()), 0);
    EXPECT_EQ(RecordingParam::alive, 1);
    EXPECT_EQ(a->Release(), 0u);
}

TEST(ParamCmpTest, ATreeOfAnyDepthIsWalked) {
    ParamPtr a = Chain(kTooManyCalls), b = Chain(kTooManyCalls);
    OnSmallStack([&] { EXPECT_EQ(Cmp(a, b), 1); });
}

TEST(ParamCopyToTest, ItIsAMergeThatReplacesWhatHasTheSameName) {
    ParamPtr source = Tree({{"x", 1}, {"a\\y", 2}}),
             target = Tree({{"w", 7}, {"X", 8}, {"a\\v", 9}, {"b\\u", 10}});
    Param_CopyTo(source.Get(), target.Get());
    EXPECT_EQ(TreeText(target.Get()), "w=5:7 X=5:1 a{v=5:9 y=5:2} b{u=5:10}");
    EXPECT_EQ(TreeText(source.Get()), "x=5:1 a{y=5:2}");
}

TEST(ParamCopyToTest, AllTypesAreCopied) {
    char bytes[] = {1, 2, 3};
    ParamPtr source = NewTree(), target = NewTree();
    CQXVariant blob(tagQXBLOB{3, bytes}), object(static_cast<IQXUnknown*>(target.Get())), text("t");
    source->SetValue("blob", &blob);
    source->SetValue("object", &object);
    source->SetValue("text", &text);
    ParamPtr copy = NewTree();
    Param_CopyTo(source.Get(), copy.Get());
    EXPECT_EQ(Cmp(source, copy), 1);
    EXPECT_EQ(Cmp(copy, source), 1);
}

TEST(ParamCopyToTest, ChildrenGoBeforeValues) {
    std::string calls;
    auto target = qx::Make<RecordingParam>(NewTree().Detach(), "t", &calls);
    ParamPtr source = Tree({{"x", 1}, {"a\\y", 2}, {"a\\b\\z", 3}});
    Param_CopyTo(source.Get(), target.Get());
    EXPECT_EQ(calls,
              "t:OpenSubParam(a) t:CreateSubParam(a) t\\a:OpenSubParam(b) t\\a:CreateSubParam(b) "
              "t\\a\\b:SetValue(z) t\\a:SetValue(y) t:SetValue(x) ");
}

TEST(ParamCopyToTest, BothTreesAreHeldDuringTheWalk) {
    std::string calls;
    auto source = new RecordingParam(Tree({{"a\\y", 2}}).Detach(), "s", &calls);
    source->atEnumSubParams = [&] { EXPECT_EQ(source->Release(), 1u); };
    ParamPtr target = NewTree();
    Param_CopyTo(source, target.Get());
    EXPECT_EQ(TreeText(target.Get()), "a{y=5:2}");
    EXPECT_EQ(RecordingParam::alive, 0);
}

TEST(ParamCopyToTest, AChildThatCannotBeOpenedIsSkipped) {
    ScratchDirectory directory;
    std::string path = directory.Write("t.ini", "[\\]\r\n@=e\r\nx=i1\r\n[\\aa\\bb]\r\ny=i2\r\n");
    ParamPtr source(new_IParamIniFile(path.c_str())), target = NewTree();
    Param_CopyTo(source.Get(), target.Get());
    EXPECT_EQ(TreeText(target.Get()), "@=0: x=5:1");
}

TEST(ParamCopyToTest, AValueThatCannotBeReadPassesOnAsEmpty) {
    ScratchDirectory directory;
    std::string path = directory.Write("t.ini", "[\\]\r\n@=e\r\nx=hello\r\n");
    ParamPtr source(new_IParamIniFile(path.c_str())), target = Tree({{"x", 5}});
    Param_CopyTo(source.Get(), target.Get());
    EXPECT_EQ(TreeText(target.Get()), "x=0: @=0:");
}

TEST(ParamCopyToTest, WhatTheTargetCannotHoldIsLost) {
    ScratchDirectory directory;
    std::string path = directory.PathOf("t.ini");
    char bytes[] = {1, 2, 3};
    CQXVariant blob(tagQXBLOB{3, bytes});
    ParamPtr source = Tree({{"x", 1}}), target(new_IParamIniFile(path.c_str()));
    source->SetValue("blob", &blob);
    Param_CopyTo(source.Get(), target.Get());
    EXPECT_EQ(TreeText(target.Get()), "@=0: x=5:1");
}

TEST(ParamCopyToTest, APartOfATreeIsCopiedIntoTheNodeAboveIt) {
    ParamPtr tree = Tree({{"a\\x", 1}, {"a\\b\\y", 2}});
    Param_CopyTo(ParamPtr(tree->OpenSubParam("a", 0)).Get(), tree.Get());
    EXPECT_EQ(TreeText(tree.Get()), "x=5:1 a{x=5:1 b{y=5:2}} b{y=5:2}");
}

TEST(ParamCopyToTest, ANameThatIsAPathGoesDownThePathAgain) {
    ParamPtr source = NewTree(), target = NewTree();
    SetInt(source.Get(), "a\\b", 7);
    Param_CopyTo(source.Get(), target.Get());
    EXPECT_EQ(TreeText(target.Get()), "a\\b a{b=5:7}");
    EXPECT_EQ(GetInt(target.Get(), "a\\b"), 7);
}

TEST(ParamCopyToTest, AMissingEnumeratorIsAMissingInterface) {
    for (bool ofChildren : {true, false}) {
        std::string calls;
        auto source = qx::Make<RecordingParam>(Tree({{"a\\y", 2}}).Detach(), "s", &calls);
        (ofChildren ? source->noSubParams : source->noValues) = true;
        ParamPtr target = NewTree();
        try {
            Param_CopyTo(source.Get(), target.Get());
            ADD_FAILURE() << "nothing was thrown";
        } catch (CXIFaceException& e) {
            EXPECT_EQ(e.GetCode(), QXERR_BAD_USE);
            EXPECT_TRUE(*e.type == qx_typeid<CTEnum<const char*>>());
        }
        EXPECT_EQ(TreeText(target.Get()), ofChildren ? "" : "a{y=5:2}");
        EXPECT_EQ(RecordingParam::alive, 1);
    }
}

TEST(ParamCopyToTest, AnExceptionOfABackEndPassesThroughAndLeavesNoReference) {
    std::string calls;
    {
        auto target = qx::Make<RecordingParam>(NewTree().Detach(), "t", &calls);
        target->failAt = "SetValue(z)";
        ParamPtr source = Tree({{"a\\b\\z", 3}, {"x", 1}});
        EXPECT_THROW(Param_CopyTo(source.Get(), target.Get()), CXFileException);
        EXPECT_EQ(RecordingParam::alive, 1);
    }
    EXPECT_EQ(RecordingParam::alive, 0);
}

TEST(ParamCopyToTest, ATreeOfAnyDepthIsWalked) {
    ParamPtr source = Chain(kTooManyCalls), target = NewTree();
    OnSmallStack([&] { Param_CopyTo(source.Get(), target.Get()); });
    EXPECT_EQ(Cmp(source, target), 1);
}

TEST(DumpParamTest, TheNamesGoToTheDebuggerValuesFirstAndChildrenUnderTheirHeaders) {
    DebuggedRun run = RunDebugged("param_peer.exe dump");
    ASSERT_TRUE(run.started);
    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_NE(run.output.find(" v \n w%s \n--- c ---\n x \n--- deep ---\n--- d ---\n"),
              std::string::npos)
        << run.output;
}

TEST(DumpParamTest, AChildThatCannotBeOpenedHasItsHeader) {
    DebuggedRun run = RunDebugged("param_peer.exe dump_ini");
    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_NE(run.output.find(" @ \n--- aa ---\n--- cc ---\n @ \n"), std::string::npos)
        << run.output;
}

TEST(DumpParamTest, AMissingEnumeratorIsAMissingInterface) {
    for (bool ofChildren : {true, false}) {
        std::string calls;
        auto node = qx::Make<RecordingParam>(NewTree().Detach(), "s", &calls);
        (ofChildren ? node->noSubParams : node->noValues) = true;
        try {
            Dump_Param(node.Get());
            ADD_FAILURE() << "nothing was thrown";
        } catch (CXIFaceException& e) {
            EXPECT_TRUE(*e.type == qx_typeid<CTEnum<const char*>>());
        }
    }
    EXPECT_EQ(RecordingParam::alive, 0);
}

TEST(DumpParamTest, ATreeOfAnyDepthIsWalked) {
    ParamPtr tree = Chain(kTooManyCalls);
    OnSmallStack([&] { Dump_Param(tree.Get()); });
}
