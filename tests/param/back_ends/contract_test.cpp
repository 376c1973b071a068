// What every back end of IParam does, slot by slot, run over all of them; where they differ by
// design, the table of the back ends says what each does.
#include "param/back_ends/contract_back_ends.h"
#include "support/slot.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

class EveryParamTest : public testing::TestWithParam<BackEnd> {
protected:
    const BackEnd& kind = GetParam();
    std::unique_ptr<Place> place = kind.make();
    IParam* root = place->root.Get();

    ParamPtr Create(const char* name) { return ParamPtr(root->CreateSubParam(name)); }
    ParamPtr Open(const char* name, int create = 0) {
        return ParamPtr(root->OpenSubParam(name, create));
    }
    std::string Tree() { return SortedTree(root); }
    // "x=5:1 a{y=5:2 b{z=5:3}}"
    void Plant() {
        SetInt(root, "x", 1);
        ParamPtr a = Create("aa");
        SetInt(a.Get(), "y", 2);
        SetInt(ParamPtr(a->CreateSubParam("bb")).Get(), "z", 3);
    }
    bool IsWithoutForm(unsigned short type) { return Has(kind.withoutForm, type); }
    bool IsLosing(unsigned short type) { return Has(kind.losingForm, type); }

private:
    static bool Has(const std::vector<unsigned short>& types, unsigned short type) {
        return std::find(types.begin(), types.end(), type) != types.end();
    }
};

INSTANTIATE_TEST_SUITE_P(BackEnds, EveryParamTest, testing::ValuesIn(BackEnds()),
                         [](const auto& info) { return std::string(info.param.name); });

unsigned CountOf(IQXUnknown* object) {
    object->AddRef();
    return object->Release();
}

struct IStrange : IQXUnknown {
protected:
    ~IStrange() = default;
};

class CStrange : public CQXUnknownImpl<IQXUnknown> {};

// One value of each type but the object, none of them zero. Reals have a short decimal form.
std::vector<CQXVariant> OneOfEach() {
    static char bytes[] = {0, 1, 2, '\\', 0};
    unsigned char byte = 0x59;
    unsigned short word = 65535;
    unsigned long ulong = 4000000000ul;
    std::vector<CQXVariant> all = {
        CQXVariant(),
        CQXVariant(1, QXVT_BOOL),
        CQXVariant(byte),
        CQXVariant(word),
        CQXVariant(ulong),
        CQXVariant(-5),
        CQXVariant(4000000001u),
        CQXVariant(-7L),
        CQXVariant(0.5),
        CQXVariant(-2.25f),
        CQXVariant("some text"),
        CQXVariant(tagSIZE{3, -4}),
        CQXVariant(tagRSIZE{0.25, -8}),
        CQXVariant(tagPOINT{-5, 6}),
        CQXVariant(tagRPOINT{1.5, 2.5}),
        CQXVariant(tagRECT{1, 2, 30, 40}),
        CQXVariant(tagRRECT{0.5, 1, 2, 4.75}),
        CQXVariant(tagQXBLOB{sizeof bytes, bytes}),
    };
    return all;
}

}  // namespace
QX_DECLARE_TYPEID(IStrange, ".?AUIStrange@@");

// Children

TEST_P(EveryParamTest, ANewTreeIsEmptyAndHasOneReference) {
    EXPECT_EQ(Tree(), "");
    EXPECT_EQ(CountOf(root), 1u);
}

TEST_P(EveryParamTest, ACreatedChildIsEmptyListedAndFoundAgain) {
    ParamPtr child = Create("aa child");
    ASSERT_TRUE(child);
    EXPECT_EQ(CountOf(child.Get()), kind.second == Second::sameObject ? 2u : 1u);
    EXPECT_EQ(SortedTree(child.Get()), "");
    child.Release();
    EXPECT_EQ(NamesText(root->EnumSubParams()), "aa child");
    EXPECT_TRUE(Open("aa child"));
    EXPECT_TRUE(Open("AA CHILD"));
}

TEST_P(EveryParamTest, CreatingAnExistingChildEmptiesIt) {
    {
        ParamPtr a = Create("aa");
        SetInt(a.Get(), "x", 1);
        SetInt(ParamPtr(a->CreateSubParam("bb")).Get(), "y", 2);
    }
    EXPECT_TRUE(Create("AA"));
    EXPECT_EQ(Tree(), kind.createOfExisting);
}

TEST_P(EveryParamTest, CreatingAHeldChildGivesTheObjectOrAnother) {
    ParamPtr held = Create("aa"), again = Create("aa");
    ASSERT_TRUE(again);
    EXPECT_EQ(again.Get() == held.Get(), kind.createOfExistingIsTheSame);
}

TEST_P(EveryParamTest, OpeningAMissingChildIsNullUnlessItCreates) {
    EXPECT_FALSE(Open("aa"));
    EXPECT_FALSE(Open("aa\\bb"));
    EXPECT_EQ(Tree(), "");
    EXPECT_TRUE(Open("aa", 1));
    EXPECT_FALSE(Open("aa\\bb"));
    EXPECT_EQ(Tree(), "aa{}");
}

TEST_P(EveryParamTest, OpeningAnExistingChildLeavesItsContents) {
    Plant();
    EXPECT_TRUE(Open("aa", 1));
    EXPECT_TRUE(Open("aa", 0));
    EXPECT_EQ(Tree(), "x=5:1 aa{y=5:2 bb{z=5:3}}");
}

TEST_P(EveryParamTest, AHeldChildOpensASecondTimeAsTheTableSays) {
    ParamPtr held = Create("aa");
    SetInt(held.Get(), "x", 1);
    ParamPtr second = Open("aa");
    if (kind.second == Second::refused) {
        EXPECT_FALSE(second);
    } else {
        ASSERT_TRUE(second);
        EXPECT_EQ(second.Get() == held.Get(), kind.second == Second::sameObject);
        EXPECT_EQ(GetInt(second.Get(), "x"), 1);
        SetInt(second.Get(), "x", 2);
        EXPECT_EQ(GetInt(held.Get(), "x"), 2);
    }
}

TEST_P(EveryParamTest, AnExistingPathOpensItsLeaf) {
    Plant();
    ParamPtr leaf = Open("aa\\bb");
    ASSERT_TRUE(leaf);
    EXPECT_EQ(GetInt(leaf.Get(), "z"), 3);
}

TEST_P(EveryParamTest, CreatingAPathMakesWhatTheTableSays) {
    ParamPtr leaf = Create("aa\\bb");
    ASSERT_TRUE(leaf);
    SetInt(leaf.Get(), "own", 1);
    EXPECT_EQ(GetInt(leaf.Get(), "own"), 1);
    leaf->DeleteValue("own");
    leaf.Release();
    EXPECT_EQ(Tree(), kind.createOfPath);
}

TEST_P(EveryParamTest, OpeningAPathThatCreatesMakesWhatTheTableSays) {
    EXPECT_EQ(bool(Open("aa\\bb", 1)), kind.openOfPathAnswers);
    EXPECT_EQ(Tree(), kind.openOfPath);
}

TEST_P(EveryParamTest, OpeningAPathUnderAnExistingChildMakesWhatTheTableSays) {
    Create("aa");
    EXPECT_EQ(bool(Open("aa\\bb", 1)), kind.openOfPathWithAAnswers);
    EXPECT_EQ(Tree(), kind.openOfPathWithA);
}

TEST_P(EveryParamTest, DeletingAChildTakesItsWholeSubtree) {
    Plant();
    Create("kept");
    root->DeleteSubParam("AA");
    EXPECT_EQ(Tree(), "x=5:1 kept{}");
    EXPECT_FALSE(Open("aa"));
    root->DeleteSubParam("aa");  // a missing one is no error
    root->DeleteSubParam("never\\there");
    EXPECT_EQ(Tree(), "x=5:1 kept{}");
}

TEST_P(EveryParamTest, DeletingAPathLeavesWhatTheTableSays) {
    ParamPtr(Create("aa")->CreateSubParam("bb"));
    root->DeleteSubParam("aa\\bb");
    EXPECT_EQ(Tree(), kind.deleteChildOfPath);
}

TEST_P(EveryParamTest, DeletingAllChildrenLeavesTheValuesAndTheNodeUsable) {
    Plant();
    for (const char* name : {"cc", "dd", "ee"}) Create(name);
    root->DeleteAllSubParams();
    EXPECT_EQ(Tree(), "x=5:1");
    EXPECT_TRUE(Create("again"));
    EXPECT_EQ(Tree(), "x=5:1 again{}");
}

TEST_P(EveryParamTest, AChildOutlivesItsParent) {
    ParamPtr leaf(Create("aa")->CreateSubParam("bb"));
    place->root.Release();
    SetInt(leaf.Get(), "late", 7);
    EXPECT_EQ(GetInt(leaf.Get(), "late"), 7);
    leaf.Release();
    if (!kind.keeps) return;
    ParamPtr again = place->Reopen();
    EXPECT_EQ(SortedTree(again.Get()), "aa{bb{late=5:7}}");
}

// Values

TEST_P(EveryParamTest, AValueComesBackWithItsType) {
    unsigned short type = 0;
    for (const CQXVariant& value : OneOfEach()) {
        ASSERT_EQ(value.type, type);
        CQXVariant out(77);
        EXPECT_EQ(root->SetValue("v", &value), IsWithoutForm(type) ? 0 : 1) << type;
        if (!IsWithoutForm(type)) {
            EXPECT_EQ(root->GetValue("V", &out), 1) << type;
            CQXVariant expected = value;
            if (IsLosing(type)) memset(&expected.value, 0, sizeof expected.value);
            EXPECT_TRUE(out == expected) << type << ": " << ValueText(out);
        }
        ++type;
    }
}

TEST_P(EveryParamTest, AValueThatHasNoFormLeavesTheOldOne) {
    SetInt(root, "v", 1);
    for (const CQXVariant& value : OneOfEach()) {
        if (!IsWithoutForm(value.type)) continue;
        root->SetValue("v", &value);
        EXPECT_EQ(Tree(), "v=5:1");
    }
}

TEST_P(EveryParamTest, AStoredValueIsACopy) {
    CQXVariant text("hello"), out;
    root->SetValue("text", &text);
    text.value.string[0] = 'J';
    ASSERT_EQ(root->GetValue("text", &out), 1);
    out.value.string[0] = 'C';
    ASSERT_EQ(root->GetValue("text", &out), 1);
    EXPECT_STREQ(out.value.string, "hello");
}

TEST_P(EveryParamTest, GetValueReleasesWhatTheVariantHeld) {
    auto held = new CStrange;
    CQXVariant out(static_cast<IQXUnknown*>(held));
    SetInt(root, "aa", 5);
    EXPECT_EQ(root->GetValue("aa", &out), 1);
    EXPECT_EQ(CountOf(held), 1u);
    EXPECT_EQ(ValueText(out), "5:5");
    held->Release();
}

TEST_P(EveryParamTest, AValueIsReplacedWhateverTypesTheTwoHave) {
    for (CQXVariant first :
         {CQXVariant(1), CQXVariant("aa long text that goes"), CQXVariant(2.5)}) {
        for (CQXVariant second : {CQXVariant("bb"), CQXVariant(2), CQXVariant(tagPOINT{1, 2})}) {
            root->SetValue("Name", &first);
            root->SetValue("NAME", &second);
            CQXVariant out;
            EXPECT_EQ(root->GetValue("name", &out), 1);
            EXPECT_TRUE(out == second) << ValueText(out);
        }
    }
    EXPECT_EQ(Tree().find(' '), std::string::npos);  // one value it is
}

TEST_P(EveryParamTest, AnEmptyTextIsAValueOrNone) {
    CQXVariant empty(""), out(5);
    EXPECT_EQ(root->SetValue("v", &empty), 1);
    EXPECT_EQ(root->GetValue("v", &out), kind.emptyTextIsMissing ? 0 : 1);
    EXPECT_EQ(ValueText(out), kind.emptyTextIsMissing ? "0:" : "10:");
}

TEST_P(EveryParamTest, ATextOfAMegabyteComesBackAsFarAsTheTableSays) {
    std::string whole(1 << 20, '?');
    for (size_t i = 0; i < whole.size(); ++i) whole[i] = static_cast<char>('a' + i % 26);
    CQXVariant text(whole.c_str()), out;
    EXPECT_EQ(root->SetValue("v", &text), 1);
    ASSERT_EQ(root->GetValue("v", &out), 1);
    EXPECT_TRUE(whole.substr(0, kind.longestText) == out.value.string);
}

TEST_P(EveryParamTest, AValueOfNoNameHasTheNameOfTheTable) {
    SetInt(root, "", 1);
    EXPECT_EQ(GetInt(root, nullptr), 1);
    SetInt(root, nullptr, 2);
    EXPECT_EQ(GetInt(root, ""), 2);
    EXPECT_EQ(NamesText(root->EnumValues()), kind.nameOfNone);
    EXPECT_EQ(GetInt(root, kind.nameOfNone), 2);
    root->DeleteValue("");
    EXPECT_EQ(GetInt(root, ""), kind.noneIsDeletedByNone ? -1 : 2);
    root->DeleteValue(kind.nameOfNone);
    EXPECT_EQ(GetInt(root, ""), -1);
}

TEST_P(EveryParamTest, AChildOfNoNameIsWhatTheTableSays) {
    SetInt(root, "x", 1);
    EXPECT_EQ(bool(Open("")), kind.childOfNoName == Nameless::nodeItself);
    SetInt(Open("", 1).Get() ? Open("").Get() : Create("other").Get(), "inner", 2);
    const char* trees[] = {"x=5:1 {inner=5:2}", "inner=5:2 x=5:1", "x=5:1 other{inner=5:2}"};
    EXPECT_EQ(Tree(), trees[static_cast<int>(kind.childOfNoName)]);
}

TEST_P(EveryParamTest, AnEmptyLevelOfAPathIsWhatTheTableSays) {
    SetInt(root, "\\x", 7);
    EXPECT_EQ(Tree(), kind.setOfEmptyLevel);
}

TEST_P(EveryParamTest, NamesMayHaveAnyCharacterThatTheTableLeaves) {
    for (const char* name :
         {"two  words", "dots.in.it.", "a[1]", "#hash", "(a)", "it's \"so\"", "%s%n", "~a", "a,b",
          "a:b", "a/b", "a!b", "a=b", "a;b", "a|b", "a*?<>", "a\tb"}) {
        SCOPED_TRACE(name);
        bool isName = !strpbrk(name, kind.refusedInNames);
        CQXVariant value(1);
        EXPECT_EQ(root->SetValue(name, &value), isName);
        if (strpbrk(name, kind.cutInNames)) {
            EXPECT_EQ(GetInt(root, name), -1);
        } else {
            EXPECT_EQ(Tree(), isName ? std::string(name) + "=5:1" : "");
            EXPECT_EQ(GetInt(root, name), isName ? 1 : -1);
        }
        root->DeleteAllValues();
        EXPECT_EQ(bool(Create(name)), isName);
        EXPECT_EQ(Tree(), isName ? std::string(name) + "{}" : "");
        root->DeleteSubParam(name);
        EXPECT_EQ(Tree(), "");
    }
}

TEST_P(EveryParamTest, ValuesAndChildrenAreTwoNameSpacesWhereTheBackEndHasTwo) {
    SetInt(Create("same").Get(), "inner", 2);
    SetInt(root, "same", 1);
    EXPECT_EQ(Tree(), kind.oneNameSpace ? "same=5:1" : "same=5:1 same{inner=5:2}");
}

TEST_P(EveryParamTest, SettingAPathStoresWhatTheTableSays) {
    CQXVariant seven(7);
    EXPECT_EQ(root->SetValue("aa\\bb", &seven), 1);
    EXPECT_EQ(Tree(), kind.setOfPath);
    EXPECT_EQ(GetInt(root, "aa\\bb"), 7);
}

TEST_P(EveryParamTest, SettingADeepPathStoresWhatTheTableSays) {
    SetInt(root, "aa\\bb\\cc", 7);
    EXPECT_EQ(Tree(), kind.setOfDeepPath);
}

TEST_P(EveryParamTest, DeletingThePathOfAValueLeavesWhatTheTableSays) {
    Create("aa");
    SetInt(root, "aa\\bb", 7);
    root->DeleteValue("aa\\bb");
    EXPECT_EQ(Tree(), kind.deleteValueOfPath);
}

TEST_P(EveryParamTest, AMissAnswersZeroAndClearsOrKeepsTheVariant) {
    CQXVariant out("kept");
    EXPECT_EQ(root->GetValue("missing", &out), 0);
    EXPECT_EQ(ValueText(out), kind.missClears ? "0:" : "10:kept");
    out = "kept";
    EXPECT_EQ(root->GetValue("no\\such", &out), 0);
    EXPECT_EQ(ValueText(out), kind.missOfPathClears ? "0:" : "10:kept");
}

TEST_P(EveryParamTest, DeletingAValueAnswersWhatTheTableSays) {
    SetInt(root, "aa", 1);
    SetInt(root, "bb", 2);
    EXPECT_EQ(root->DeleteValue("AA"), kind.deleteAnswers);
    EXPECT_EQ(Tree(), "bb=5:2");
    EXPECT_EQ(root->DeleteValue("aa"), kind.deleteOfMissAnswers);
    EXPECT_EQ(Tree(), "bb=5:2");
}

TEST_P(EveryParamTest, DeletingAllValuesLeavesTheChildrenAndTheNodeUsable) {
    for (const char* name : {"aa", "bb", "cc", "dd"}) SetInt(root, name, 1);
    SetInt(Create("child").Get(), "inner", 1);
    root->DeleteAllValues();
    EXPECT_EQ(Tree(), "child{inner=5:1}");
    SetInt(root, "again", 2);
    EXPECT_EQ(Tree(), "again=5:2 child{inner=5:1}");
}

// Clear

TEST_P(EveryParamTest, ClearLeavesWhatTheTableSays) {
    Plant();
    root->Clear();
    EXPECT_EQ(Tree(), kind.clear);
}

TEST_P(EveryParamTest, AClearedNodeGoesOnOrIsAtItsEnd) {
    Plant();
    root->Clear();
    CQXVariant value(5), out;
    EXPECT_EQ(root->SetValue("new", &value), kind.clearedGoesOn);
    EXPECT_EQ(GetInt(root, "new"), kind.clearedGoesOn ? 5 : -1);
    EXPECT_EQ(bool(Create("child")), kind.clearedGoesOn);
}

TEST_P(EveryParamTest, ClearOfAChildLeavesWhatTheTableSays) {
    Plant();
    Open("aa")->Clear();
    EXPECT_EQ(Tree(), kind.clearOfChild);
}

// Enumeration

TEST_P(EveryParamTest, AnEnumeratorDeliversEachNameOnceAndFromTheStartAgain) {
    for (int i = 0; i < 40; ++i) SetInt(root, ("value " + std::to_string(i)).c_str(), i);
    NamesPtr names(root->EnumValues());
    for (int round = 0; round < 2; ++round) {
        std::vector<std::string> seen;
        const char* name;
        unsigned fetched = 9;
        while (names->Next(1, &name, &fetched)) {
            EXPECT_EQ(fetched, 1u);
            seen.push_back(name);
        }
        EXPECT_EQ(fetched, 0u);
        std::sort(seen.begin(), seen.end());
        seen.erase(std::unique(seen.begin(), seen.end()), seen.end());
        seen.erase(std::remove(seen.begin(), seen.end(), "@"), seen.end());
        EXPECT_EQ(seen.size(), 40u);
        names->Reset();
    }
}

TEST_P(EveryParamTest, AnEnumeratorDeliversSeveralNamesAtOnceAndSkips) {
    for (const char* name : {"aa", "bb", "cc", "dd", "ee"}) Create(name);
    NamesPtr names(root->EnumSubParams());
    const char* delivered[9] = {};
    unsigned fetched = 9;
    EXPECT_EQ(names->Next(0, delivered, &fetched), 0);
    EXPECT_EQ(names->Next(2, delivered, &fetched), 1);
    EXPECT_EQ(fetched, 2u);
    EXPECT_EQ(names->Skip(1), 1);
    EXPECT_EQ(names->Next(9, delivered, &fetched), 1);
    EXPECT_EQ(fetched, 2u);
    EXPECT_EQ(names->Next(9, delivered, &fetched), 0);
    names->Skip(1000);
    EXPECT_EQ(names->Next(1, delivered, nullptr), 0);
}

TEST_P(EveryParamTest, AnEmptyNodeHasEmptyEnumerators) {
    ParamPtr child = Create("aa");
    const char* name;
    unsigned fetched = 9;
    NamesPtr children(child->EnumSubParams());
    ASSERT_TRUE(children);
    EXPECT_EQ(children->Next(1, &name, &fetched), 0);
    EXPECT_EQ(fetched, 0u);
    EXPECT_TRUE(NamesPtr(child->EnumValues()));
}

TEST_P(EveryParamTest, AnEnumeratorIsLiveOrASnapshot) {
    SetInt(root, "aa", 1);
    NamesPtr names(root->EnumValues());
    SetInt(root, "bb", 2);
    std::string seen = NamesText(names.Detach());
    EXPECT_EQ(seen.find('b') != std::string::npos, kind.enumerationIsLive) << seen;
}

TEST_P(EveryParamTest, EntriesMayBeDeletedDuringAWalk) {
    for (const char* name : {"aa", "bb", "cc", "dd", "ee"}) {
        SetInt(root, name, 1);
        Create(name);
    }
    const char* name;
    NamesPtr values(root->EnumValues());
    while (values->Next(1, &name, nullptr)) root->DeleteValue(std::string(name).c_str());
    NamesPtr children(root->EnumSubParams());
    while (children->Next(1, &name, nullptr)) root->DeleteSubParam(std::string(name).c_str());
    EXPECT_EQ(Tree(), "");
}

TEST_P(EveryParamTest, AnEnumeratorOutlivesItsNode) {
    SetInt(root, "aa", 1);
    Create("bb");
    NamesPtr values(root->EnumValues()), children(root->EnumSubParams());
    place->root.Release();
    EXPECT_EQ(NamesText(values.Detach()).find("aa") != std::string::npos, !kind.enumerationIsLive);
    EXPECT_EQ(NamesText(children.Detach()), kind.enumerationIsLive ? "" : "bb");
}

TEST_P(EveryParamTest, AnEnumeratorIsAnEnumeratorOfTexts) {
    NamesPtr names(root->EnumValues());
    IQXUnknown* out = nullptr;
    EXPECT_EQ(names->QueryInterface(qx_typeid<CTEnum<const char*>>(), &out), 1);
    out->Release();
    EXPECT_EQ(names->QueryInterface(qx_typeid<CTEnum<char*>>(), &out), 0);
}

// The object

TEST_P(EveryParamTest, QueryInterfaceAnswersWhatTheTableSaysAndNothingElse) {
    for (auto* id : {&qx_typeid<IQXUnknown>(), &qx_typeid<IParam>(), &qx_typeid<IXStorage>(),
                     &qx_typeid<IRegisterIface>(), &qx_typeid<IStrange>()}) {
        bool known = std::find(kind.answers.begin(), kind.answers.end(), id) != kind.answers.end();
        IQXUnknown* out = root;
        EXPECT_EQ(root->QueryInterface(*id, nullptr), known) << id->name;
        EXPECT_EQ(root->QueryInterface(*id, &out), known) << id->name;
        EXPECT_EQ(out != nullptr, known) << id->name;
        if (out) out->Release();
    }
    EXPECT_EQ(CountOf(root), 1u);
}

TEST_P(EveryParamTest, AChildAnswersForItselfAndHasATableOfItsOwn) {
    ParamPtr child = Create("aa");
    IQXUnknown *ofRoot = nullptr, *ofChild = nullptr;
    for (const qx_type_info* id : kind.answers) {
        ASSERT_EQ(root->QueryInterface(*id, &ofRoot), 1);
        ASSERT_EQ(child->QueryInterface(*id, &ofChild), 1);
        EXPECT_NE(ofRoot, ofChild) << id->name;
        ofRoot->Release();
        ofChild->Release();
    }
    ASSERT_EQ(child->QueryInterface(qx_typeid<IRegisterIface>(), &ofChild), 1);
    static_cast<IRegisterIface*>(ofChild)->RegisterInterface(root, qx_typeid<IStrange>(), 0);
    ofChild->Release();
    EXPECT_EQ(child->QueryInterface(qx_typeid<IStrange>(), nullptr), 1);
    EXPECT_EQ(root->QueryInterface(qx_typeid<IStrange>(), nullptr), 0);
}

TEST_P(EveryParamTest, NoCallLeavesAReferenceOnTheNodeBehind) {
    Plant();
    CQXVariant value(1), out;
    for (const char* name : {"missing", "missing\\deep", "aa\\missing", "aa\\bb\\missing", "x"}) {
        Open(name);
        root->GetValue(name, &out);
        root->DeleteSubParam(name);
        root->DeleteValue(name);
        EXPECT_EQ(CountOf(root), 1u) << name;
    }
    for (const char* name : {"new", "aa", "new\\deep", "aa\\bb"}) {
        Create(name);
        Open(name, 1);
        root->SetValue(name, &value);
        root->GetValue(name, &out);
        NamesText(root->EnumValues());
        NamesText(root->EnumSubParams());
        EXPECT_EQ(CountOf(root), 1u) << name;
    }
    root->DeleteAllSubParams();
    root->DeleteAllValues();
    EXPECT_EQ(CountOf(root), 1u);
    root->Clear();
    EXPECT_EQ(CountOf(root), 1u);
}

TEST_P(EveryParamTest, InterfacesAreAttachedReplacedAndTakenOff) {
    IQXUnknown* out = nullptr;
    ASSERT_EQ(root->QueryInterface(qx_typeid<IRegisterIface>(), &out), 1);
    auto table = static_cast<IRegisterIface*>(out);
    EXPECT_EQ(CountOf(root), 2u);
    auto first = new CStrange, second = new CStrange;
    EXPECT_EQ(table->RegisterInterface(nullptr, qx_typeid<IStrange>(), 0), 0);
    EXPECT_EQ(table->RegisterInterface(first, qx_typeid<IStrange>(), 1), 1);
    EXPECT_EQ(CountOf(first), 2u);
    EXPECT_EQ(table->RegisterInterface(second, qx_typeid<IStrange>(), 1), 1);
    EXPECT_EQ(CountOf(first), 1u);
    EXPECT_EQ(root->QueryInterface(qx_typeid<IStrange>(), &out), 1);
    EXPECT_EQ(out, second);
    out->Release();
    EXPECT_EQ(table->RegisterInterface(nullptr, qx_typeid<IStrange>(), 0), 1);
    EXPECT_EQ(root->QueryInterface(qx_typeid<IStrange>(), &out), 0);
    EXPECT_EQ(table->RegisterInterface(second, qx_typeid<IStrange>(), 1), 1);
    EXPECT_EQ(table->Release(), 1u);
    place->root.Release();
    EXPECT_EQ(CountOf(second), 1u);  // the table went with the node
    first->Release();
    second->Release();
}

TEST_P(EveryParamTest, TheSlotsStandInTheirOrder) {
    SetInt(root, "v", 1);
    EXPECT_EQ(Slot<unsigned(IParam*)>(root, 0)(root), 2u);
    EXPECT_EQ(Slot<unsigned(IParam*)>(root, 1)(root), 1u);
    EXPECT_EQ(Slot<int(IParam*, qx_type_info const&, IQXUnknown**)>(root, 2)(
                  root, qx_typeid<IRegisterIface>(), nullptr),
              1);
    using ByName = IParam*(IParam*, const char*);
    EXPECT_TRUE(ParamPtr(Slot<ByName>(root, 3)(root, "aa")));
    EXPECT_TRUE(ParamPtr(Slot<IParam*(IParam*, const char*, int)>(root, 4)(root, "bb", 1)));
    Slot<void(IParam*, const char*)>(root, 5)(root, "aa");
    using Names = CTEnum<const char*>*(IParam*);
    EXPECT_EQ(NamesText(Slot<Names>(root, 7)(root)), "bb");
    Slot<void(IParam*)>(root, 6)(root);
    EXPECT_EQ(Tree(), "v=5:1");
    CQXVariant out, two(2);
    EXPECT_EQ(Slot<int(IParam*, const char*, tagQXVARIANT*)>(root, 8)(root, "v", &out), 1);
    Slot<int(IParam*, const char*, const tagQXVARIANT*)>(root, 9)(root, "w", &two);
    Slot<int(IParam*, const char*)>(root, 10)(root, "v");
    EXPECT_NE(NamesText(Slot<Names>(root, 12)(root)).find('w'), std::string::npos);
    EXPECT_EQ(Tree(), "w=5:2");
    Slot<void(IParam*)>(root, 11)(root);
    EXPECT_EQ(Tree(), "");
    SetInt(root, "v", 1);
    Slot<void(IParam*)>(root, 13)(root);
    EXPECT_EQ(Tree(), "");
}

// The place

TEST_P(EveryParamTest, WhatTheLastReleaseLeavesIsThereAgain) {
    Plant();
    place->root.Release();
    ParamPtr again = place->Reopen();
    ASSERT_EQ(bool(again), kind.keeps);
    if (again) {
        EXPECT_EQ(SortedTree(again.Get()), "x=5:1 aa{y=5:2 bb{z=5:3}}");
    }
}
