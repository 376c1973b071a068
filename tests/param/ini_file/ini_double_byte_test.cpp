// Ini files in a code page whose characters have several bytes, of which one may look like a
// backslash or a letter. The process runs under 932, and under UTF-8.
#include "param/ini_file_fixture.h"

#include <gtest/gtest.h>
#include <mbctype.h>

namespace {

class IniDoubleByteTest : public IniFileTest {
protected:
    void SetUp() override {
        if (GetACP() != 932) GTEST_SKIP() << "about code page 932";
        _setmbcp(932);
    }
};

class IniCutTest : public IniFileTest {
protected:
    // A character of several bytes of the process's code page.
    std::string Character() const { return GetACP() == 932 ? "\x83\x5C" : "\xE3\x81\x82"; }
    std::string Repeated(size_t count) const {
        std::string all;
        while (count-- > 0) all += Character();
        return all;
    }
    // As much of a text of such characters as fits.
    std::string Fitting(size_t bytes) const { return Repeated(bytes / Character().size()); }
};

}  // namespace

TEST_F(IniDoubleByteTest, AByteThatLooksLikeABackslashDividesNoPath) {
    ParamPtr root = Root();
    SetInt(root.Get(), "\x83\x5C", 1);
    SetInt(root.Get(), "x\x83\x5C\\\x94\x5C", 2);
    EXPECT_EQ(Lines(), "[\\]|@=e|\x83\x5C=i1|[\\x\x83\x5C]|@=e|\x94\x5C=i2");
    EXPECT_EQ(NamesText(root->EnumValues()), "@,\x83\x5C");
    EXPECT_EQ(NamesText(root->EnumSubParams()), "x\x83\x5C");
    EXPECT_EQ(GetInt(root.Get(), "\x83\x5C"), 1);
    EXPECT_EQ(GetInt(root.Get(), "x\x83\x5C\\\x94\x5C"), 2);
}

TEST_F(IniDoubleByteTest, AChildOfOneCharacterIsListed) {
    ParamPtr root = Root();
    ParamPtr(root->CreateSubParam("\x83\x5C"));
    EXPECT_EQ(NamesText(root->EnumSubParams()), "\x83\x5C");
    root->Clear();
    EXPECT_EQ(Lines(), "");
}

// The second bytes of 83 41 and 83 61 are the letters A and a.
TEST_F(IniDoubleByteTest, CharactersThatDifferInTheirSecondByteAreTwoNames) {
    Write(
        "[\\]\r\n@=e\r\n[\\\x83\x41]\r\n@=e\r\n[\\\x83\x41\\b]\r\n@=e\r\n[\\\x83\x61\\c]\r\n@="
        "e\r\n");
    EXPECT_EQ(NamesText(ParamPtr(Root()->OpenSubParam("\x83\x41", 0))->EnumSubParams()), "b");
    EXPECT_EQ(NamesText(Root()->EnumSubParams()), "\x83\x41,\x83\x61");
}

TEST_F(IniDoubleByteTest, AWholeTreeIsWrittenAndReadBack) {
    ParamPtr tree(new_MemParam()), back(new_MemParam());
    CQXVariant text("\x83\x7C\x83\x5C");
    ParamPtr child(tree->CreateSubParam("\x83\x5C\\\x83\x7C"));
    child->SetValue("\x83\x3D\x94\x5C", &text);
    Param_Param2IniFile(tree.Get(), file.c_str());
    Param_IniFile2Param(file.c_str(), back.Get());
    EXPECT_EQ(TreeText(back.Get()), TreeText(tree.Get()));
    EXPECT_EQ(Content(),
              "\r\n[\\]\r\n\r\n[\\\x83\x5C]\r\n\r\n[\\\x83\x5C\\\x83\x7C]\r\n"
              "\x83\x3D\x94\x5C=s\x83\x7C\x83\x5C\r\n");
}

TEST_F(IniCutTest, ALineIsCutAtAWholeCharacter) {
    for (const char* name : {"k", "ke", "key"}) {
        ParamPtr tree(new_MemParam());
        CQXVariant text(Repeated(5000).c_str());
        tree->SetValue(name, &text);
        SetInt(tree.Get(), "next", 5);
        Param_Param2IniFile(tree.Get(), file.c_str());
        std::string head = std::string("\r\n[\\]\r\n") + name + "=s";
        EXPECT_EQ(Content(), head + Fitting(8189 - strlen(name) - 2) + "\r\nnext=i5\r\n");
    }
}

TEST_F(IniCutTest, AValueIsCutAtAWholeCharacter) {
    for (const char* before : {"", "x", "xy"}) {
        ParamPtr root = Root();
        CQXVariant text((before + Repeated(20000)).c_str()), back;
        EXPECT_EQ(root->SetValue("long", &text), 1);
        ASSERT_EQ(root->GetValue("long", &back), 1);
        EXPECT_TRUE(back.value.string == before + Fitting(32765 - strlen(before)));
    }
}

TEST_F(IniCutTest, AValuesPathIsCutAtAWholeCharacter) {
    ParamPtr root = Root();
    std::string leaf = Repeated(5000);
    SetInt(root.Get(), ("ab\\" + leaf).c_str(), 5);
    EXPECT_EQ(NamesText(ParamPtr(root->OpenSubParam("ab", 0))->EnumValues()),
              "@," + Fitting(8191 - 3));
}

TEST_F(IniCutTest, AListingIsCutAtAWholeCharacter) {
    std::string text = "[\\]\r\n";
    for (int i = 0; i < 4000; ++i) text += Repeated(8) + std::to_string(1000 + i) + "=i1\r\n";
    Write(text);
    NamesPtr names(Root()->EnumValues());
    const char* name;
    std::string last;
    unsigned count = 0;
    for (; names->Next(1, &name, nullptr); ++count) {
        if (!last.empty()) {
            EXPECT_EQ(last.size(), 8 * Character().size() + 4);
        }
        last = name;
    }
    EXPECT_GT(count, 1000u);
    std::string whole = Repeated(8) + "1000";
    for (size_t at = 0; at < last.size() && at < 8 * Character().size(); at += Character().size())
        EXPECT_EQ(last.substr(at, Character().size()), Character());
}
