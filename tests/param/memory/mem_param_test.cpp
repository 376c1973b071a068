#include "param/tree_text.h"
#include "support/slot.h"

#include <gtest/gtest.h>
#include <mbctype.h>

namespace {

class MemParamTest : public testing::Test {
protected:
    ParamPtr root{new_MemParam()};

    ParamPtr Create(const char* name) { return ParamPtr(root->CreateSubParam(name)); }
    ParamPtr Open(const char* name, int create = 0) {
        return ParamPtr(root->OpenSubParam(name, create));
    }
};

unsigned CountOf(IQXUnknown* object) {
    object->AddRef();
    return object->Release();
}

}  // namespace

TEST_F(MemParamTest, ANewRootIsEmptyAndHasOneReference) {
    EXPECT_EQ(TreeText(root.Get()), "");
    EXPECT_EQ(CountOf(root.Get()), 1u);
}

TEST_F(MemParamTest, AnEmptyOrNullValueNameIsTheDefaultName) {
    SetInt(root.Get(), "", 1);
    EXPECT_EQ(NamesText(root->EnumValues()), "@");
    SetInt(root.Get(), nullptr, 2);
    EXPECT_EQ(TreeText(root.Get()), "@=5:2");
    EXPECT_EQ(GetInt(root.Get(), "@"), 2);
    EXPECT_EQ(GetInt(root.Get(), ""), 2);
    EXPECT_EQ(GetInt(root.Get(), nullptr), 2);
    EXPECT_EQ(root->DeleteValue(nullptr), 1);
    EXPECT_EQ(TreeText(root.Get()), "");
}

TEST_F(MemParamTest, NamesDifferingInCaseAreOneValueWithItsFirstSpelling) {
    SetInt(root.Get(), "X", 1);
    SetInt(root.Get(), "x", 2);
    EXPECT_EQ(TreeText(root.Get()), "X=5:2");
}

TEST_F(MemParamTest, ValuesAndChildrenAreTwoNameSpaces) {
    SetInt(root.Get(), "same", 1);
    SetInt(Create("same").Get(), "inner", 2);
    EXPECT_EQ(TreeText(root.Get()), "same=5:1 same{inner=5:2}");
}

TEST_F(MemParamTest, NamesComeInTheOrderOfFirstCreationWhichReplacingKeeps) {
    for (const char* name : {"zeta", "alpha", "mid"}) SetInt(root.Get(), name, 1);
    SetInt(root.Get(), "ALPHA", 7);
    for (const char* name : {"two", "one", "three"}) Create(name);
    Create("ONE");
    EXPECT_EQ(TreeText(root.Get()), "zeta=5:1 alpha=5:7 mid=5:1 two{} one{} three{}");
}

TEST_F(MemParamTest, AValueKeepsItsTypeAndIsACopy) {
    CQXVariant text("hello"), out;
    root->SetValue("text", &text);
    text.value.string[0] = 'J';
    ASSERT_EQ(root->GetValue("text", &out), 1);
    EXPECT_EQ(ValueText(out), "10:hello");
    out.value.string[0] = 'C';
    CQXVariant again;
    root->GetValue("TEXT", &again);
    EXPECT_EQ(ValueText(again), "10:hello");
}

TEST_F(MemParamTest, GetValueClearsWhatTheOutVariantHeld) {
    IParam* held = new_MemParam();
    CQXVariant out(static_cast<IQXUnknown*>(held));
    EXPECT_EQ(CountOf(held), 2u);
    SetInt(root.Get(), "a", 5);
    EXPECT_EQ(root->GetValue("a", &out), 1);
    EXPECT_EQ(CountOf(held), 1u);
    EXPECT_EQ(ValueText(out), "5:5");
    held->Release();
}

TEST_F(MemParamTest, AMissAnswersZeroAndLeavesOut) {
    CQXVariant out("kept");
    EXPECT_EQ(root->GetValue("missing", &out), 0);
    EXPECT_EQ(root->GetValue("no\\such", &out), 0);
    EXPECT_EQ(ValueText(out), "10:kept");
}

TEST_F(MemParamTest, AllVariantTypesAreHeld) {
    char bytes[] = {1, 2, 3};
    CQXVariant blob(tagQXBLOB{3, bytes}), object(static_cast<IQXUnknown*>(root.Get())), out;
    ParamPtr other(new_MemParam());
    EXPECT_EQ(other->SetValue("blob", &blob), 1);
    EXPECT_EQ(other->SetValue("object", &object), 1);
    EXPECT_EQ(CountOf(root.Get()), 3u);
    ASSERT_EQ(other->GetValue("blob", &out), 1);
    EXPECT_TRUE(out == blob);
    other.Release();
    EXPECT_EQ(CountOf(root.Get()), 2u);
}

TEST_F(MemParamTest, SetValueWithAPathStoresInTheChildAndUnderTheWholeNameHere) {
    SetInt(root.Get(), "a\\b", 7);
    EXPECT_EQ(NamesText(root->EnumValues()), "a\\b");
    EXPECT_EQ(GetInt(Open("a").Get(), "b"), 7);
    EXPECT_EQ(GetInt(root.Get(), "a\\b"), 7);
    SetInt(Open("a").Get(), "b", 8);
    EXPECT_EQ(GetInt(root.Get(), "a\\b"), 8);  // the copy under the whole name is never read
}

TEST_F(MemParamTest, DeleteValueOfAPathDeletesOnlyTheLiteralKey) {
    SetInt(root.Get(), "a\\b", 7);
    EXPECT_EQ(root->DeleteValue("a\\b"), 1);
    EXPECT_EQ(NamesText(root->EnumValues()), "");
    EXPECT_EQ(GetInt(Open("a").Get(), "b"), 7);
}

TEST_F(MemParamTest, GetValueSplitsAtTheLastDelimiter) {
    SetInt(Create("a\\b").Get(), "c", 3);
    EXPECT_EQ(GetInt(root.Get(), "a\\b\\c"), 3);
    EXPECT_EQ(GetInt(root.Get(), "A\\B\\C"), 3);
}

TEST_F(MemParamTest, AValuePathThatEndsWithADelimiterMeansTheDefaultValue) {
    SetInt(root.Get(), "a\\", 9);
    EXPECT_EQ(GetInt(Open("a").Get(), "@"), 9);
    EXPECT_EQ(GetInt(root.Get(), "a\\"), 9);
}

TEST_F(MemParamTest, DeletingAMissingValueIsNoError) {
    EXPECT_EQ(root->DeleteValue("missing"), 1);
    EXPECT_EQ(root->DeleteValue(""), 1);
}

TEST_F(MemParamTest, DeleteValueTakesANameThatAnEnumeratorDelivered) {
    SetInt(root.Get(), "a", 1);
    SetInt(root.Get(), "b", 2);
    NamesPtr names(root->EnumValues());
    const char* name;
    while (names->Next(1, &name, nullptr)) root->DeleteValue(name);
    EXPECT_EQ(TreeText(root.Get()), "");
}

TEST_F(MemParamTest, CreateSubParamOnAnExistingChildGivesTheSameObjectEmptied) {
    ParamPtr first = Create("a");
    SetInt(first.Get(), "x", 1);
    first->CreateSubParam("deep")->Release();
    ParamPtr second = Create("A");
    EXPECT_EQ(second.Get(), first.Get());
    EXPECT_EQ(TreeText(root.Get()), "a{}");
}

TEST_F(MemParamTest, CreateSubParamMakesTheWholeChain) {
    ParamPtr leaf = Create("a\\b\\c");
    SetInt(leaf.Get(), "v", 1);
    EXPECT_EQ(TreeText(root.Get()), "a{b{c{v=5:1}}}");
}

TEST_F(MemParamTest, CreateSubParamOfAPathClearsOnlyTheLeaf) {
    SetInt(Create("a").Get(), "kept", 1);
    SetInt(Create("a\\b").Get(), "gone", 1);
    Create("a\\b");
    EXPECT_EQ(TreeText(root.Get()), "a{kept=5:1 b{}}");
}

TEST_F(MemParamTest, OpenSubParamThatCreatesDropsAMissingFirstLevel) {
    ParamPtr child = Open("a\\b", 1);
    ASSERT_TRUE(child);
    EXPECT_EQ(TreeText(root.Get()), "b{}");
    EXPECT_EQ(Open("b").Get(), child.Get());
}

TEST_F(MemParamTest, OpenSubParamThatCreatesKeepsAnExistingFirstLevel) {
    Create("a");
    ParamPtr child = Open("a\\b", 1);
    EXPECT_EQ(TreeText(root.Get()), "a{b{}}");
}

TEST_F(MemParamTest, OpenSubParamDropsEachMissingLevelButTheLast) {
    ParamPtr child = Open("a\\b\\c", 1);
    EXPECT_EQ(TreeText(root.Get()), "b{c{}}");  // "a" is dropped, and CreateSubParam makes the rest
}

TEST_F(MemParamTest, OpenSubParamOfAMissingChildIsNullUnlessItCreates) {
    EXPECT_FALSE(Open("a"));
    EXPECT_FALSE(Open("a\\b"));
    EXPECT_TRUE(Open("a", 1));
    EXPECT_FALSE(Open("a\\b"));
    EXPECT_EQ(TreeText(root.Get()), "a{}");
}

TEST_F(MemParamTest, OpenSubParamGivesAReferenceAndDoesNotClear) {
    ParamPtr child = Create("a");
    SetInt(child.Get(), "x", 1);
    EXPECT_EQ(CountOf(child.Get()), 2u);
    ParamPtr again = Open("a", 1);
    EXPECT_EQ(CountOf(child.Get()), 3u);
    EXPECT_EQ(TreeText(root.Get()), "a{x=5:1}");
}

TEST_F(MemParamTest, DeleteSubParamEmptiesAndRemovesTheChild) {
    ParamPtr held = Create("a");
    SetInt(held.Get(), "x", 1);
    root->DeleteSubParam("A");
    EXPECT_EQ(TreeText(root.Get()), "");
    EXPECT_EQ(TreeText(held.Get()), "");
    EXPECT_EQ(CountOf(held.Get()), 1u);
    root->DeleteSubParam("missing");
}

TEST_F(MemParamTest, DeleteSubParamOfAPathEmptiesTheLeafAndLeavesItInPlace) {
    SetInt(Create("a\\b").Get(), "x", 1);
    root->DeleteSubParam("a\\b");
    EXPECT_EQ(TreeText(root.Get()), "a{b{}}");
}

TEST_F(MemParamTest, DeleteAllSubParamsLeavesTheValuesAndTheNodeUsable) {
    for (const char* name : {"a", "b", "c"}) Create(name);
    SetInt(root.Get(), "x", 1);
    root->DeleteAllSubParams();
    EXPECT_EQ(TreeText(root.Get()), "x=5:1");
    Create("again");
    EXPECT_EQ(TreeText(root.Get()), "x=5:1 again{}");
}

TEST_F(MemParamTest, DeleteAllValuesLeavesTheChildren) {
    for (const char* name : {"a", "b", "c"}) SetInt(root.Get(), name, 1);
    Create("child");
    root->DeleteAllValues();
    EXPECT_EQ(TreeText(root.Get()), "child{}");
    SetInt(root.Get(), "again", 2);
    EXPECT_EQ(TreeText(root.Get()), "again=5:2 child{}");
}

TEST_F(MemParamTest, ClearEmptiesAndTheNodeStaysUsable) {
    SetInt(root.Get(), "x", 1);
    Create("a\\b");
    root->Clear();
    EXPECT_EQ(TreeText(root.Get()), "");
    SetInt(root.Get(), "y", 2);
    Create("c");
    EXPECT_EQ(TreeText(root.Get()), "y=5:2 c{}");
}

TEST_F(MemParamTest, AChildThatACallerHoldsSurvivesTheParentsClearDetached) {
    ParamPtr child = Create("a");
    SetInt(child.Get(), "x", 1);
    root->Clear();
    EXPECT_EQ(TreeText(child.Get()), "x=5:1");
    SetInt(child.Get(), "y", 2);
    EXPECT_EQ(TreeText(child.Get()), "x=5:1 y=5:2");
    EXPECT_EQ(TreeText(root.Get()), "");
}

TEST_F(MemParamTest, AChildSurvivesItsParent) {
    ParamPtr child = Create("a");
    root.Release();
    SetInt(child.Get(), "x", 1);
    EXPECT_EQ(TreeText(child.Get()), "x=5:1");
}

TEST_F(MemParamTest, AnEnumeratorWalksTheLiveList) {
    SetInt(root.Get(), "a", 1);
    NamesPtr names(root->EnumValues());
    SetInt(root.Get(), "b", 2);
    const char* delivered[4];
    unsigned fetched = 0;
    EXPECT_EQ(names->Next(4, delivered, &fetched), 1);
    ASSERT_EQ(fetched, 2u);
    EXPECT_STREQ(delivered[1], "b");
    EXPECT_EQ(names->Next(1, delivered, &fetched), 0);
    names->Reset();
    EXPECT_EQ(names->Next(1, delivered, &fetched), 1);
    EXPECT_STREQ(delivered[0], "a");
}

TEST_F(MemParamTest, AnEnumeratorThatOutlivesItsNodeIsAtItsEnd) {
    SetInt(root.Get(), "a", 1);
    SetInt(root.Get(), "b", 1);
    NamesPtr names(root->EnumValues());
    const char* name;
    EXPECT_EQ(names->Next(1, &name, nullptr), 1);
    root.Release();
    EXPECT_EQ(names->Next(1, &name, nullptr), 0);
    names->Reset();
    EXPECT_EQ(names->Next(1, &name, nullptr), 0);
}

TEST_F(MemParamTest, AnEnumeratorHeldOverClearIsAtItsEnd) {
    SetInt(root.Get(), "a", 1);
    SetInt(root.Get(), "b", 1);
    NamesPtr names(root->EnumValues());
    const char* name;
    EXPECT_EQ(names->Next(1, &name, nullptr), 1);
    root->Clear();
    SetInt(root.Get(), "c", 1);
    EXPECT_EQ(names->Next(1, &name, nullptr), 0);
    names->Reset();
    EXPECT_EQ(NamesText(names.Detach()), "c");
}

TEST_F(MemParamTest, AnEnumeratorThatWasNotStartedBeforeClearWalksWhatCameAfterIt) {
    SetInt(root.Get(), "a", 1);
    NamesPtr values(root->EnumValues()), children(root->EnumSubParams());
    root->Clear();
    root->DeleteAllSubParams();
    SetInt(root.Get(), "b", 1);
    Create("child");
    EXPECT_EQ(NamesText(values.Detach()), "b");
    EXPECT_EQ(NamesText(children.Detach()), "child");
}

TEST_F(MemParamTest, AnEnumeratorPassesOverNamesThatAreDeletedBeforeIt) {
    for (const char* name : {"a", "b", "c", "d"}) SetInt(root.Get(), name, 1);
    NamesPtr names(root->EnumValues());
    const char* name;
    EXPECT_EQ(names->Next(1, &name, nullptr), 1);
    root->DeleteValue("b");
    root->DeleteValue("c");
    EXPECT_EQ(NamesText(names.Detach()), "d");
}

TEST_F(MemParamTest, AnEnumeratorSkipsNamesAndTellsWhetherOneRemains) {
    for (const char* name : {"a", "b", "c"}) SetInt(root.Get(), name, 1);
    NamesPtr names(root->EnumValues());
    EXPECT_EQ(names->Skip(2), 1);
    const char* name;
    EXPECT_EQ(names->Next(1, &name, nullptr), 1);
    EXPECT_STREQ(name, "c");
    EXPECT_EQ(names->Skip(1), 0);
    EXPECT_EQ(names->Next(0, &name, nullptr), 0);
    names->Reset();
    EXPECT_EQ(names->Next(1, nullptr, nullptr), 0);
    EXPECT_EQ(names->Skip(7), 0);
}

TEST_F(MemParamTest, AnEnumeratorIsAnEnumeratorOfTexts) {
    NamesPtr names(root->EnumValues());
    IQXUnknown* out = nullptr;
    EXPECT_EQ(names->QueryInterface(qx_typeid<CTEnum<const char*>>(), &out), 1);
    out->Release();
    EXPECT_EQ(names->QueryInterface(qx_typeid<CTEnum<char*>>(), &out), 0);
}

TEST_F(MemParamTest, ANameStaysWhileTheEnumeratorThatDeliveredItStandsThere) {
    for (const char* name : {"first", "second"}) SetInt(root.Get(), name, 1);
    NamesPtr names(root->EnumValues());
    const char *first, *second;
    EXPECT_EQ(names->Next(1, &first, nullptr), 1);
    root->DeleteValue("first");
    EXPECT_STREQ(first, "first");
    EXPECT_EQ(names->Next(1, &second, nullptr), 1);
    root->Clear();
    EXPECT_STREQ(second, "second");
}

// Around the sizes at which a node begins to find its items in other ways.
TEST_F(MemParamTest, ANodeOfAnySizeFindsEachOfItsNames) {
    constexpr int kMost = 300;
    auto name = [](int i) { return "name" + std::to_string(i); };
    for (int size : {1, 7, 8, 9, 126, 127, 128, 255, kMost}) {
        root->Clear();
        for (int i = 0; i < size; ++i) SetInt(root.Get(), name(i).c_str(), i);
        for (int i = 0; i < size; i += 2) SetInt(root.Get(), name(i).c_str(), 1000 + i);
        // From the middle outwards, so that no order favours a chain.
        for (int gone = 0; gone < size; ++gone) {
            for (int i = 0; i < size; i += 1 + size / 16) {
                int place = (i * 7 + size / 2) % size;
                bool isGone = (place + size - size / 2) % size < gone;
                int value = place % 2 ? place : 1000 + place;
                ASSERT_EQ(GetInt(root.Get(), name(place).c_str()), isGone ? -1 : value) << size;
            }
            root->DeleteValue(name((gone + size / 2) % size).c_str());
        }
        EXPECT_EQ(TreeText(root.Get()), "");
    }
}

TEST_F(MemParamTest, AValueIsReplacedByOnesOfAnySize) {
    const size_t sizes[] = {0, 5, 3, 255, 256, 300, 4, 100000, 1};
    for (size_t size : sizes) {
        std::string bytes(size, 'x');
        CQXVariant text(bytes.c_str()), blob(tagQXBLOB{static_cast<unsigned>(size), bytes.data()});
        for (const CQXVariant* value : {&text, &blob, &text}) {
            CQXVariant out;
            root->SetValue("v", value);
            EXPECT_EQ(root->GetValue("v", &out), 1);
            EXPECT_TRUE(out == *value) << size;
            root->SetValue(("new" + std::to_string(size)).c_str(), value);
        }
        SetInt(root.Get(), "v", 5);
        EXPECT_EQ(GetInt(root.Get(), "v"), 5);
    }
}

TEST_F(MemParamTest, ANullTextAndABlobWithoutDataStayWhatTheyAre) {
    CQXVariant text(static_cast<const char*>(nullptr)), blob(tagQXBLOB{7, nullptr}), out;
    root->SetValue("text", &text);
    root->SetValue("blob", &blob);
    EXPECT_EQ(root->GetValue("text", &out), 1);
    EXPECT_EQ(out.type, QXVT_STRING);
    EXPECT_EQ(out.value.string, nullptr);
    EXPECT_EQ(root->GetValue("blob", &out), 1);
    EXPECT_EQ(out.type, QXVT_BLOB);
    EXPECT_EQ(out.value.blob.size, 7u);
    EXPECT_EQ(out.value.blob.data, nullptr);
}

TEST_F(MemParamTest, TwoNamesWithOneHashAreOneItem) {
    SetInt(root.Get(), "Boskui", 1);
    SetInt(root.Get(), "cKYGVI", 2);
    EXPECT_EQ(GetInt(root.Get(), "Boskui"), 2);
    EXPECT_EQ(NamesText(root->EnumValues()), "Boskui");
    // The list compares texts, so the first spelling stays in it when the item goes under the other
    // name.
    root->DeleteValue("cKYGVI");
    EXPECT_EQ(NamesText(root->EnumValues()), "Boskui");
    EXPECT_EQ(GetInt(root.Get(), "Boskui"), -1);
}

TEST_F(MemParamTest, QueryInterfaceAnswersWhatIsAttachedAndNothingElse) {
    IQXUnknown* out = root.Get();
    EXPECT_EQ(root->QueryInterface(qx_typeid<IParam>(), &out), 0);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(root->QueryInterface(qx_typeid<IQXUnknown>(), &out), 0);
    EXPECT_EQ(root->QueryInterface(qx_typeid<IParam>(), nullptr), 0);
    ASSERT_EQ(root->QueryInterface(qx_typeid<IRegisterIface>(), &out), 1);
    auto table = static_cast<IRegisterIface*>(out);
    EXPECT_EQ(CountOf(root.Get()), 2u);
    EXPECT_EQ(table->RegisterInterface(root.Get(), qx_typeid<IParam>(), 0), 1);
    EXPECT_EQ(root->QueryInterface(qx_typeid<IParam>(), &out), 1);
    EXPECT_EQ(out, root.Get());
    out->Release();
    table->Release();
    EXPECT_EQ(CountOf(root.Get()), 1u);
}

TEST_F(MemParamTest, ADoubleByteNameWhoseSecondByteIsABackslashIsNoPath) {
    int before = _getmbcp();
    _setmbcp(932);
    SetInt(root.Get(), "\x83\x5C", 5);
    EXPECT_EQ(NamesText(root->EnumValues()), "\x83\x5C");
    EXPECT_EQ(GetInt(root.Get(), "\x83\x5C"), 5);
    Create("\x83\x5C\\x");
    EXPECT_EQ(NamesText(root->EnumSubParams()), "\x83\x5C");
    _setmbcp(before);
}

TEST_F(MemParamTest, ALeadByteAtTheEndOfANameDoesNotHideItsEnd) {
    int before = _getmbcp();
    _setmbcp(932);
    SetInt(root.Get(), "a\\b\x83", 5);
    EXPECT_EQ(GetInt(root.Get(), "a\\b\x83"), 5);
    EXPECT_EQ(NamesText(root->EnumSubParams()), "a");
    _setmbcp(before);
}

TEST_F(MemParamTest, BehindTheInterfaceStandTheCountAndTheLookupOfTheTemplate) {
    constexpr int kFirst = 14 + kDestructorSlots;
    IParam* node = root.Get();
    // The template's own count starts at 1 and is another one than the public count.
    EXPECT_EQ(Slot<unsigned(IParam*)>(node, kFirst)(node), 2u);
    EXPECT_EQ(Slot<unsigned(IParam*)>(node, kFirst + 1)(node), 1u);
    EXPECT_EQ(CountOf(node), 1u);
    using Query = int(IParam*, qx_type_info const&, IQXUnknown**);
    EXPECT_EQ(Slot<Query>(node, kFirst + 2)(node, qx_typeid<IParam>(), nullptr), 1);
    EXPECT_EQ(Slot<Query>(node, kFirst + 2)(node, qx_typeid<IRegisterIface>(), nullptr), 0);
}

TEST_F(MemParamTest, TheSlotsOfANodeStandInTheirOrder) {
    auto slots = *reinterpret_cast<void***>(root.Get());
    using Make = IParam* (*)(IParam*, const char*);
    using Open = IParam* (*)(IParam*, const char*, int);
    using ByName = void (*)(IParam*, const char*);
    using Plain = void (*)(IParam*);
    using Names = CTEnum<const char*>* (*)(IParam*);
    using Get = int (*)(IParam*, const char*, tagQXVARIANT*);
    using Set = int (*)(IParam*, const char*, const tagQXVARIANT*);
    IParam* node = root.Get();
    ParamPtr(reinterpret_cast<Make>(slots[3])(node, "a"));
    ParamPtr(reinterpret_cast<Open>(slots[4])(node, "b", 1));
    EXPECT_EQ(NamesText(reinterpret_cast<Names>(slots[7])(node)), "a,b");
    reinterpret_cast<ByName>(slots[5])(node, "a");
    EXPECT_EQ(NamesText(node->EnumSubParams()), "b");
    reinterpret_cast<Plain>(slots[6])(node);
    EXPECT_EQ(NamesText(node->EnumSubParams()), "");
    CQXVariant value(5), out;
    EXPECT_EQ(reinterpret_cast<Set>(slots[9])(node, "v", &value), 1);
    EXPECT_EQ(reinterpret_cast<Get>(slots[8])(node, "v", &out), 1);
    EXPECT_EQ(NamesText(reinterpret_cast<Names>(slots[12])(node)), "v");
    reinterpret_cast<ByName>(slots[10])(node, "v");
    EXPECT_EQ(GetInt(node, "v"), -1);
    SetInt(node, "w", 1);
    reinterpret_cast<Plain>(slots[11])(node);
    EXPECT_EQ(GetInt(node, "w"), -1);
    SetInt(node, "w", 1);
    reinterpret_cast<Plain>(slots[13])(node);
    EXPECT_EQ(TreeText(node), "");
}
