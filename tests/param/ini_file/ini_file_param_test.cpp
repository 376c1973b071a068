// The live tree over an ini file: what stands in the file after each operation, and what the file,
// also one that others wrote, shows as a tree.
#include "param/ini_file_fixture.h"
#include "support/import_slot.h"
#include "support/slot.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>

namespace {

using IniFileParamTest = IniFileTest;

unsigned CountOf(IQXUnknown* object) {
    object->AddRef();
    return object->Release();
}

int g_writes, g_reads;

BOOL WINAPI CountedWrite(const char* section, const char* key, const char* text, const char* file) {
    ++g_writes;
    return WritePrivateProfileStringA(section, key, text, file);
}
DWORD WINAPI CountedRead(const char* section, const char* key, const char* missing, char* out,
                         DWORD size, const char* file) {
    ++g_reads;
    return GetPrivateProfileStringA(section, key, missing, out, size, file);
}

}  // namespace

TEST_F(IniFileParamTest, APlainValueIsReadAndWrittenByOneCallOfThePlatform) {
    ParamPtr root = Root();
    ReplacedImport write("WritePrivateProfileStringA", reinterpret_cast<void*>(&CountedWrite));
    ReplacedImport read("GetPrivateProfileStringA", reinterpret_cast<void*>(&CountedRead));
    ASSERT_TRUE(write && read);
    g_writes = g_reads = 0;
    SetInt(root.Get(), "x", 5);
    EXPECT_EQ(g_writes, 1);
    EXPECT_EQ(g_reads, 0);
    EXPECT_EQ(GetInt(root.Get(), "x"), 5);
    EXPECT_EQ(root->DeleteValue("x"), 1);
    EXPECT_EQ(g_writes, 2);
    EXPECT_EQ(g_reads, 1);
}

TEST_F(IniFileParamTest, ConstructionMakesTheFolderAndAFileWithTheMarkerOfTheRoot) {
    file = directory.PathOf("new\\deep\\settings.ini");
    ParamPtr root = Root();
    EXPECT_EQ(Lines(), "[\\]|@=e");
    EXPECT_EQ(Raw("\\", "@"), "e");
}

TEST_F(IniFileParamTest, AFolderThatCannotBeMadeLeavesANodeThatHoldsNothing) {
    directory.Write("blocked", "");
    file = directory.PathOf("blocked\\settings.ini");
    ParamPtr root = Root();
    ASSERT_TRUE(root);
    CQXVariant value(5);
    EXPECT_EQ(root->SetValue("a", &value), 0);
    EXPECT_EQ(GetInt(root.Get(), "a"), -1);
    EXPECT_EQ(NamesText(root->EnumValues()), "");
    EXPECT_EQ(NamesText(root->EnumSubParams()), "");
    ParamPtr(root->CreateSubParam("c"));
    EXPECT_FALSE(ParamPtr(root->OpenSubParam("c", 0)));
}

TEST_F(IniFileParamTest, AMarkerThatIsThereIsNotWrittenAgain) {
    Write("; mine\r\n[\\]\r\n@=s other\r\n");
    Root();
    EXPECT_EQ(Content(), "; mine\r\n[\\]\r\n@=s other\r\n");
}

TEST_F(IniFileParamTest, EnumValuesDeliversTheMarkerLikeAnyOtherKey) {
    ParamPtr root = Root();
    SetInt(root.Get(), "x", 1);
    EXPECT_EQ(NamesText(root->EnumValues()), "@,x");
    EXPECT_EQ(TreeText(root.Get()), "@=0: x=5:1");
}

TEST_F(IniFileParamTest, ChildrenAreSectionsByTheirPath) {
    ParamPtr root = Root(), a(root->CreateSubParam("ab")), b(a->CreateSubParam("cd"));
    SetInt(b.Get(), "x", 1);
    EXPECT_EQ(Lines(), "[\\]|@=e|[\\ab]|@=e|[\\ab\\cd]|@=e|x=i1");
    EXPECT_EQ(GetInt(root.Get(), "ab\\cd\\x"), 1);
}

TEST_F(IniFileParamTest, APathInAChildsNameReachesDeeperAndMakesNoSectionBetween) {
    ParamPtr root = Root();
    SetInt(ParamPtr(root->CreateSubParam("ab\\cd")).Get(), "x", 1);
    EXPECT_EQ(Lines(), "[\\]|@=e|[\\ab\\cd]|@=e|x=i1");
    EXPECT_TRUE(ParamPtr(root->OpenSubParam("ab\\cd", 0)));
    EXPECT_FALSE(ParamPtr(root->OpenSubParam("ab", 0)));
    ParamPtr(root->OpenSubParam("ef\\gh", 1));
    EXPECT_EQ(Lines(), "[\\]|@=e|[\\ab\\cd]|@=e|x=i1|[\\ef\\gh]|@=e");
}

TEST_F(IniFileParamTest, SetValueOfAPathMakesTheChildAndWritesNothingHere) {
    ParamPtr root = Root();
    SetInt(root.Get(), "ab\\b", 7);
    EXPECT_EQ(Lines(), "[\\]|@=e|[\\ab]|@=e|b=i7");
    SetInt(root.Get(), "ab\\c", 8);
    EXPECT_EQ(Lines(), "[\\]|@=e|[\\ab]|@=e|b=i7|c=i8");
    SetInt(root.Get(), "ab\\cd\\e", 9);
    EXPECT_EQ(Lines(), "[\\]|@=e|[\\ab]|@=e|b=i7|c=i8|[\\ab\\cd]|@=e|e=i9");
}

TEST_F(IniFileParamTest, CreateSubParamEmptiesAChildWithAllBelowIt) {
    ParamPtr root = Root();
    SetInt(root.Get(), "ab\\cd\\x", 1);
    SetInt(root.Get(), "ab\\y", 2);
    SetInt(root.Get(), "other\\z", 3);
    ParamPtr(root->CreateSubParam("ab"));
    EXPECT_EQ(Lines(), "[\\]|@=e|[\\other]|@=e|z=i3|[\\ab]|@=e");
}

TEST_F(IniFileParamTest, DeleteSubParamRemovesItsSectionsAndAMissingOneIsNoError) {
    ParamPtr root = Root();
    SetInt(root.Get(), "ab\\cd\\x", 1);
    SetInt(root.Get(), "abc\\x", 1);
    SetInt(root.Get(), "ab\\y", 1);
    root->DeleteSubParam("missing");
    root->DeleteSubParam("AB");
    EXPECT_EQ(Lines(), "[\\]|@=e|[\\abc]|@=e|x=i1");
}

TEST_F(IniFileParamTest, DeleteAllSubParamsKeepsTheValues) {
    ParamPtr root = Root();
    SetInt(root.Get(), "x", 1);
    SetInt(root.Get(), "ab\\cd\\x", 1);
    SetInt(root.Get(), "ef\\x", 1);
    ParamPtr(root->CreateSubParam("ab"));
    root->DeleteAllSubParams();
    EXPECT_EQ(Lines(), "[\\]|@=e|x=i1");
}

TEST_F(IniFileParamTest, DeleteAllValuesWritesTheMarkerAgain) {
    ParamPtr root = Root();
    SetInt(root.Get(), "x", 1);
    SetInt(root.Get(), "", 2);
    SetInt(root.Get(), "ab\\y", 3);
    EXPECT_EQ(Raw("\\", "@"), "i2");
    root->DeleteAllValues();
    EXPECT_EQ(Lines(), "[\\]|@=e|[\\ab]|@=e|y=i3");
}

TEST_F(IniFileParamTest, ClearRemovesTheSectionAndOnlyANewNodeBringsTheMarkerBack) {
    ParamPtr root = Root(), child(root->CreateSubParam("ab"));
    SetInt(child.Get(), "cd\\x", 1);
    child->Clear();
    EXPECT_EQ(Lines(), "[\\]|@=e");
    EXPECT_FALSE(ParamPtr(root->OpenSubParam("ab", 0)));
    EXPECT_EQ(NamesText(child->EnumValues()), "");
    SetInt(child.Get(), "y", 2);
    EXPECT_EQ(Lines(), "[\\]|@=e|[\\ab]|y=i2");
    ParamPtr again(root->OpenSubParam("ab", 0));
    EXPECT_EQ(TreeText(again.Get()), "y=5:2 @=0:");
}

TEST_F(IniFileParamTest, ClearOfTheRootRemovesWhatItLists) {
    ParamPtr root = Root();
    SetInt(root.Get(), "x", 1);
    SetInt(root.Get(), "ab\\cd\\x", 1);
    ParamPtr(root->CreateSubParam("ab"));
    Write(Content() + "[foreign]\r\nkey=text\r\n");
    root->Clear();
    EXPECT_EQ(Lines(), "[foreign]|key=text");
}

// A child of one letter with nothing below it is not listed, so Clear does not see it.
TEST_F(IniFileParamTest, AChildOfOneLetterAtTheRootIsNotListedAndOutlivesClear) {
    ParamPtr root = Root();
    ParamPtr(root->CreateSubParam("a"));
    EXPECT_EQ(NamesText(root->EnumSubParams()), "");
    EXPECT_TRUE(ParamPtr(root->OpenSubParam("a", 0)));
    root->Clear();
    EXPECT_EQ(Lines(), "[\\a]|@=e");
    ParamPtr(Root()->CreateSubParam("a\\b"));
    EXPECT_EQ(NamesText(Root()->EnumSubParams()), "a");
}

TEST_F(IniFileParamTest, AChildOfOneLetterBelowANodeIsListed) {
    ParamPtr node(Root()->CreateSubParam("node"));
    ParamPtr(node->CreateSubParam("a"));
    EXPECT_EQ(NamesText(node->EnumSubParams()), "a");
}

TEST_F(IniFileParamTest, EachAncestorIsListedOnceInTheOrderOfTheFile) {
    Write("[\\a\\b\\c]\r\nx=i1\r\n");
    EXPECT_EQ(NamesText(Root()->EnumSubParams()), "a");
    Write(
        "[\\zz\\x]\r\nx=i1\r\n[\\]\r\nx=i1\r\n[\\bb]\r\nx=i1\r\n[\\zz]\r\nx=i1\r\n[\\aa\\q\\r]\r\n"
        "x=i1\r\n[\\zz\\y]\r\nx=i1\r\n[\\bb\\x]\r\nx=i1\r\n");
    EXPECT_EQ(NamesText(Root()->EnumSubParams()), "zz,bb,aa");
}

TEST_F(IniFileParamTest, NamesThatDifferInCaseAreListedBothAndOpenTheSameSection) {
    Write("[\\Node\\x]\r\nv=i1\r\n[\\node\\y]\r\nv=i2\r\n[\\node]\r\nv=i3\r\n");
    EXPECT_EQ(NamesText(Root()->EnumSubParams()), "Node,node");
    EXPECT_EQ(GetInt(Root().Get(), "NODE\\v"), 3);
    EXPECT_EQ(NamesText(ParamPtr(Root()->OpenSubParam("NODE", 0))->EnumSubParams()), "x,y");
}

TEST_F(IniFileParamTest, ASectionThatOnlyBeginsAlikeIsNoChild) {
    Write(
        "[\\a]\r\n@=e\r\n[\\a\\b]\r\n@=e\r\n[\\ab]\r\n@=e\r\n[\\ab\\c]\r\n@=e\r\n[a\\z]\r\n@="
        "e\r\n");
    ParamPtr a(Root()->OpenSubParam("a", 0));
    EXPECT_EQ(NamesText(a->EnumSubParams()), "b");
    EXPECT_EQ(NamesText(Root()->EnumSubParams()), "a,ab");
}

TEST_F(IniFileParamTest, AListedChildWithoutASectionOfItsOwnCannotBeOpened) {
    Write("[\\]\r\n@=e\r\n[\\aa\\bb]\r\nx=i1\r\n");
    ParamPtr root = Root();
    EXPECT_EQ(NamesText(root->EnumSubParams()), "aa");
    EXPECT_FALSE(ParamPtr(root->OpenSubParam("aa", 0)));
    root->Clear();
    EXPECT_EQ(Lines(), "[\\aa\\bb]|x=i1");
}

// Such a child would open the node itself, and a walk would have no end.
TEST_F(IniFileParamTest, AChildWithoutANameIsNotListed) {
    Write(
        "[\\]\r\n@=e\r\n[\\a\\]\r\nx=i1\r\n[\\a\\\\b]\r\nx=i1\r\n[\\a]\r\nx=i1\r\n[\\a\\c]\r\nx="
        "i1\r\n");
    ParamPtr a(Root()->OpenSubParam("a", 0));
    EXPECT_EQ(NamesText(a->EnumSubParams()), "c");
    Write("[\\\\]\r\nx=i1\r\n[\\\\\\]\r\nx=i1\r\n");
    EXPECT_EQ(NamesText(Root()->EnumSubParams()), "");
}

TEST_F(IniFileParamTest, ADelimiterBehindTheRootIsDroppedFromAName) {
    Write("[\\]\r\n@=e\r\n[\\\\xy]\r\nv=i1\r\n");
    EXPECT_EQ(NamesText(Root()->EnumSubParams()), "xy");
}

TEST_F(IniFileParamTest, AFileOfAnotherProgramShowsNoTree) {
    Write("; comment\r\n[settings]\r\nkey=hello\r\nnumber=5\r\n");
    ParamPtr root = Root();
    EXPECT_EQ(TreeText(root.Get()), "@=0:");
    EXPECT_EQ(Lines(), "; comment|[settings]|key=hello|number=5|[\\]|@=e");
}

TEST_F(IniFileParamTest, CommentsAndLinesOfOthersStay) {
    Write(
        "; head\r\n[\\]\r\n@=e\r\n; about x\r\nx=i1\r\nline without a "
        "value\r\n[other]\r\nkey=1\r\n");
    ParamPtr root = Root();
    SetInt(root.Get(), "x", 2);
    SetInt(root.Get(), "y", 3);
    EXPECT_EQ(Lines(), "; head|[\\]|@=e|; about x|x=i2|line without a value|y=i3|[other]|key=1");
}

TEST_F(IniFileParamTest, EachTypeIsStoredAsItsLetterAndText) {
    ParamPtr root = Root();
    auto stored = [&](const CQXVariant& value) {
        EXPECT_NE(root->SetValue("k", &value), 0);
        return Raw("\\", "k");
    };
    EXPECT_EQ(stored(CQXVariant()), "e");
    EXPECT_EQ(stored(CQXVariant(5, 1)), "f1");
    EXPECT_EQ(stored(CQXVariant(static_cast<unsigned char>(0x1F))), "b1P");
    EXPECT_EQ(stored(CQXVariant(static_cast<unsigned short>(65535))), "w65535");
    EXPECT_EQ(stored(CQXVariant(4294967295ul)), "W4294967295");
    EXPECT_EQ(stored(CQXVariant(-7)), "i-7");
    EXPECT_EQ(stored(CQXVariant(4000000000u)), "u4000000000");
    EXPECT_EQ(stored(CQXVariant(-8l)), "l-8");
    EXPECT_EQ(stored(CQXVariant(2.5)), "R2.5");
    EXPECT_EQ(stored(CQXVariant(0.25f)), "r0.25");
    EXPECT_EQ(stored(CQXVariant("a b")), "sa b");
    EXPECT_EQ(stored(CQXVariant(tagSIZE{3, -4})), "z3,-4");
    EXPECT_EQ(stored(CQXVariant(tagRSIZE{1.5, 2.5})), "Z1.5,2.5");
    EXPECT_EQ(stored(CQXVariant(tagPOINT{5, 6})), "p5,6");
    EXPECT_EQ(stored(CQXVariant(tagRPOINT{0.5, -0.25})), "P0.5,-0.25");
    EXPECT_EQ(stored(CQXVariant(tagRECT{1, 2, 3, 4})), "t1,2,3,4");
    EXPECT_EQ(stored(CQXVariant(tagRRECT{0.5, 1.5, 2.5, 3.5})), "T0.5,1.5,2.5,3.5");
}

TEST_F(IniFileParamTest, DecimalsHaveAPointInEveryLocale) {
    ParamPtr root = Root();
    CQXVariant stored(tagRPOINT{0.5, -2.25}), back;
    if (!setlocale(LC_ALL, "German_Germany.1252")) GTEST_SKIP() << "no locale with a comma";
    EXPECT_EQ(root->SetValue("k", &stored), 1);
    EXPECT_EQ(root->GetValue("k", &back), 1);
    EXPECT_STREQ(setlocale(LC_ALL, nullptr), "German_Germany.1252");
    setlocale(LC_ALL, "C");
    EXPECT_EQ(Raw("\\", "k"), "P0.5,-2.25");
    EXPECT_TRUE(back == stored);
}

TEST_F(IniFileParamTest, WhatIsInfiniteOrNoNumberComesBackAsANumber) {
    ParamPtr root = Root();
    for (double number : {HUGE_VAL, -HUGE_VAL, nan("")}) {
        CQXVariant stored(number), back;
        EXPECT_EQ(root->SetValue("k", &stored), 1);
        ASSERT_EQ(root->GetValue("k", &back), 1);
        EXPECT_TRUE(std::isfinite(back.value.doubleVal));
    }
}

TEST_F(IniFileParamTest, BlobsAndObjectsHaveNoFormAndLeaveTheFileAlone) {
    ParamPtr root = Root();
    SetInt(root.Get(), "k", 1);
    std::string before = Content();
    char bytes[] = {1, 2};
    CQXVariant blob(tagQXBLOB{2, bytes}), object(static_cast<IQXUnknown*>(root.Get()));
    EXPECT_EQ(root->SetValue("k", &blob), 0);
    EXPECT_EQ(root->SetValue("k", &object), 0);
    EXPECT_EQ(Content(), before);
}

TEST_F(IniFileParamTest, GetValueReadsByTheLetter) {
    Write("[\\]\r\n@=e\r\na=hello\r\nb=i5\r\nc=s  text\r\nd=p1,2\r\nf=w70000\r\ng=b1F\r\nh=\r\n");
    ParamPtr root = Root();
    auto read = [&](const char* name) {
        CQXVariant value("old");
        int found = root->GetValue(name, &value);
        return std::to_string(found) + " " + ValueText(value);
    };
    EXPECT_EQ(read("a"), "0 0:");
    EXPECT_EQ(read("B"), "1 5:5");
    EXPECT_EQ(read("c"), "1 10:  text");
    EXPECT_EQ(read("d"), "1 13:1,2");
    EXPECT_EQ(read("f"), "0 0:");
    EXPECT_EQ(read("g"), "1 2:0");
    EXPECT_EQ(read("h"), "0 0:");
    EXPECT_EQ(read("missing"), "0 0:");
    EXPECT_EQ(read(""), "1 0:");
    EXPECT_EQ(read(nullptr), "1 0:");
}

TEST_F(IniFileParamTest, GetValueClearsOnAMissAndNotOnAMissingPath) {
    ParamPtr root = Root();
    ParamPtr(root->CreateSubParam("ab"));
    CQXVariant value("kept");
    EXPECT_EQ(root->GetValue("missing\\x", &value), 0);
    EXPECT_EQ(ValueText(value), "10:kept");
    EXPECT_EQ(root->GetValue("ab\\x", &value), 0);
    EXPECT_EQ(ValueText(value), "0:");
}

TEST_F(IniFileParamTest, AnEmptyOrNullNameIsTheDefaultName) {
    ParamPtr root = Root();
    SetInt(root.Get(), "", 1);
    EXPECT_EQ(Lines(), "[\\]|@=i1");
    SetInt(root.Get(), nullptr, 2);
    EXPECT_EQ(Lines(), "[\\]|@=i2");
    EXPECT_EQ(GetInt(root.Get(), ""), 2);
    SetInt(root.Get(), "ab\\", 3);
    EXPECT_EQ(Raw("\\ab", "@"), "i3");
}

TEST_F(IniFileParamTest, DeleteValueTakesItsNameAsItStands) {
    ParamPtr root = Root();
    SetInt(root.Get(), "x", 1);
    SetInt(root.Get(), "ab\\y", 2);
    EXPECT_NE(root->DeleteValue("missing"), 0);
    EXPECT_NE(root->DeleteValue("ab\\y"), 0);
    EXPECT_EQ(Lines(), "[\\]|@=e|x=i1|[\\ab]|@=e|y=i2");
    EXPECT_NE(root->DeleteValue("X"), 0);
    EXPECT_EQ(Lines(), "[\\]|@=e|[\\ab]|@=e|y=i2");
}

TEST_F(IniFileParamTest, DeleteValueOfANullNameRemovesTheSection) {
    ParamPtr root = Root(), child(root->CreateSubParam("ab"));
    SetInt(child.Get(), "x", 1);
    EXPECT_NE(child->DeleteValue(nullptr), 0);
    EXPECT_EQ(Lines(), "[\\]|@=e");
}

TEST_F(IniFileParamTest, TwoNodesOverOneFileSeeEachOther) {
    ParamPtr one = Root(), two = Root();
    SetInt(one.Get(), "x", 1);
    EXPECT_EQ(GetInt(two.Get(), "x"), 1);
    SetInt(two.Get(), "ab\\y", 2);
    EXPECT_EQ(TreeText(one.Get()), "@=0: x=5:1 ab{@=0: y=5:2}");
    Write("[\\]\r\n@=e\r\nx=i9\r\n");
    EXPECT_EQ(TreeText(two.Get()), "@=0: x=5:9");
}

TEST_F(IniFileParamTest, EnumeratorsHoldTheNodeAndAreSnapshots) {
    IParam* root = new_IParamIniFile(file.c_str());
    SetInt(root, "x", 1);
    SetInt(root, "ab\\y", 1);
    NamesPtr values(root->EnumValues()), children(root->EnumSubParams());
    EXPECT_EQ(CountOf(root), 3u);
    root->Clear();
    EXPECT_EQ(root->Release(), 2u);
    EXPECT_EQ(NamesText(values.Detach()), "@,x");
    EXPECT_EQ(CountOf(root), 1u);
    EXPECT_EQ(NamesText(children.Detach()), "ab");
}

TEST_F(IniFileParamTest, AnEmptySectionGivesEmptyEnumerators) {
    ParamPtr root = Root();
    root->Clear();
    NamesPtr values(root->EnumValues()), children(root->EnumSubParams());
    const char* name;
    unsigned fetched = 7;
    EXPECT_EQ(values->Next(1, &name, &fetched), 0);
    EXPECT_EQ(fetched, 0u);
    EXPECT_EQ(children->Next(1, &name, &fetched), 0);
}

TEST_F(IniFileParamTest, OnlyAttachedInterfacesAreAnswered) {
    ParamPtr root = Root();
    IQXUnknown* out = nullptr;
    EXPECT_EQ(root->QueryInterface(qx_typeid<IParam>(), &out), 0);
    EXPECT_EQ(root->QueryInterface(qx_typeid<IQXUnknown>(), &out), 0);
    ASSERT_EQ(root->QueryInterface(qx_typeid<IRegisterIface>(), &out), 1);
    EXPECT_EQ(CountOf(root.Get()), 2u);
    static_cast<IRegisterIface*>(out)->RegisterInterface(root.Get(), qx_typeid<IParam>(), 0);
    out->Release();
    EXPECT_EQ(root->QueryInterface(qx_typeid<IParam>(), nullptr), 1);
}

TEST_F(IniFileParamTest, BehindTheInterfaceStandTheListingAndTheParent) {
    ParamPtr root = Root(), child(root->CreateSubParam("ab"));
    auto list = Slot<CTEnum<const char*>*(IParam*)>(root.Get(), 14);
    auto setParent = Slot<void(IParam*, IParam*)>(child.Get(), 15);
    auto getParent = Slot<IParam*(IParam*)>(child.Get(), 16);
    EXPECT_EQ(NamesText(list(root.Get())), "ab");
    EXPECT_EQ(getParent(root.Get()), nullptr);
    EXPECT_EQ(CountOf(root.Get()), 2u);
    EXPECT_EQ(ParamPtr(getParent(child.Get())).Get(), root.Get());
    setParent(child.Get(), root.Get());
    EXPECT_EQ(CountOf(root.Get()), 2u);
    ParamPtr other(new_MemParam());
    setParent(child.Get(), other.Get());
    EXPECT_EQ(CountOf(root.Get()), 1u);
    EXPECT_EQ(CountOf(other.Get()), 2u);
    child.Release();
    EXPECT_EQ(CountOf(other.Get()), 1u);
}

TEST_F(IniFileParamTest, AChildHoldsItsParent) {
    IParam* root = new_IParamIniFile(file.c_str());
    ParamPtr child(root->CreateSubParam("ab"));
    EXPECT_EQ(CountOf(root), 2u);
    root->Release();
    SetInt(child.Get(), "x", 1);
    EXPECT_EQ(GetInt(child.Get(), "x"), 1);
    EXPECT_EQ(CountOf(root), 1u);
}

TEST_F(IniFileParamTest, AChainOfNodesEndsWithItsLastChild) {
    ParamPtr node = Root();
    for (int i = 0; i < 300; ++i) node = ParamPtr(node->CreateSubParam("n"));
    OnSmallStack([&] { node.Release(); }, 64 * 1024);
}

TEST_F(IniFileParamTest, ALongTextIsStoredWholeAndAPathHasALimit) {
    ParamPtr root = Root();
    std::string text(30000, 't');
    CQXVariant value(text.c_str()), back;
    EXPECT_NE(root->SetValue("long", &value), 0);
    ASSERT_EQ(root->GetValue("long", &back), 1);
    EXPECT_TRUE(back == value);
    // A path is cut behind 8191 bytes.
    std::string leaf(9000, 'k');
    SetInt(root.Get(), ("ab\\" + leaf).c_str(), 5);
    EXPECT_EQ(NamesText(ParamPtr(root->OpenSubParam("ab", 0))->EnumValues()),
              "@," + leaf.substr(0, 8191 - 3));
    EXPECT_EQ(GetInt(root.Get(), ("ab\\" + leaf).c_str()), 5);
}

// To the platform such a name would be none: it would delete or list the whole section.
TEST_F(IniFileParamTest, ANameThatThePlatformCannotTakeHoldsNothingAndHarmsNothing) {
    ParamPtr root = Root();
    SetInt(root.Get(), "x", 1);
    SetInt(root.Get(), "ab\\y", 2);
    for (size_t size : {32767, 40000, 66000}) {
        std::string name(size, 'n');
        CQXVariant value(5), out("old");
        EXPECT_EQ(root->SetValue(name.c_str(), &value), 0);
        EXPECT_EQ(root->GetValue(name.c_str(), &out), 0);
        EXPECT_EQ(ValueText(out), "0:");
        EXPECT_EQ(root->DeleteValue(name.c_str()), 0);
        EXPECT_FALSE(ParamPtr(root->OpenSubParam(name.c_str(), 0)));
        ParamPtr child(root->CreateSubParam(name.c_str()));
        EXPECT_EQ(child->SetValue("x", &value), 0);
        EXPECT_EQ(TreeText(child.Get()), "");
        child->DeleteAllValues();
        child->Clear();
        root->DeleteSubParam(name.c_str());
        EXPECT_EQ(Lines(), "[\\]|@=e|x=i1|[\\ab]|@=e|y=i2");
    }
}

TEST_F(IniFileParamTest, AListingEndsAtItsLimit) {
    std::string text = "[\\]\r\n";
    for (int i = 0; i < 7000; ++i) text += "key" + std::to_string(1000000 + i) + "=i1\r\n";
    Write(text);
    ParamPtr root = Root();
    NamesPtr names(root->EnumValues());
    unsigned count = 0;
    const char* name;
    while (names->Next(1, &name, nullptr)) {
        EXPECT_EQ(strncmp(name, "key1", 4), 0);
        ++count;
    }
    EXPECT_GT(count, 64000u / 11 - 2);
    EXPECT_LT(count, 64000u / 11 + 2);
}

TEST_F(IniFileParamTest, ManyChildrenAreListedEachOnce) {
    std::string text = "[\\]\r\n@=e\r\n";
    for (int i = 0; i < 4000; ++i) {
        text += "[\\n" + std::to_string(1000 + i) + "\\x]\r\n@=e\r\n";
        if (i % 3 == 0) text += "[\\n" + std::to_string(1000 + i) + "]\r\n@=e\r\n";
    }
    Write(text);
    std::string expected;
    for (int i = 0; i < 4000; ++i) expected += (i ? ",n" : "n") + std::to_string(1000 + i);
    EXPECT_EQ(NamesText(Root()->EnumSubParams()), expected);
}

TEST_F(IniFileParamTest, ADirectoryInPlaceOfTheFileHoldsNothing) {
    CreateDirectoryA(file.c_str(), nullptr);
    ParamPtr root = Root();
    CQXVariant value(1);
    EXPECT_EQ(root->SetValue("x", &value), 0);
    EXPECT_EQ(TreeText(root.Get()), "");
    root->Clear();
}
