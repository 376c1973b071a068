// Trees in one text.
#include "param/small_stack.h"
#include "param/tree_text.h"
#include "support/scratch_directory.h"

#include <gtest/gtest.h>
#include <mbctype.h>

#include <algorithm>

namespace {

class TextFormTest : public testing::Test {
protected:
    ParamPtr tree{new_MemParam()};

    std::string Text() {
        CXString text("replaced");
        EXPECT_EQ(Param_Param2String(tree.Get(), text), 1);
        return text.GetData();
    }
    // The tree that a text gives, into the one that is there.
    std::string Tree(const std::string& text) {
        CXString string(text.c_str());
        EXPECT_EQ(Param_String2Param(string, tree.Get()), 1);
        EXPECT_STREQ(string, text.c_str());
        return TreeText(tree.Get());
    }
};

}  // namespace

TEST_F(TextFormTest, AnEmptyTreeIsTheHeaderOfTheRoot) {
    EXPECT_EQ(Text(), "[\\]|");
}

TEST_F(TextFormTest, EachLineEndsWithABar) {
    SetInt(tree.Get(), "v", 5);
    CQXVariant text("abc");
    ParamPtr(tree->CreateSubParam("a"))->SetValue("x", &text);
    ParamPtr(tree->CreateSubParam("a\\b"));
    EXPECT_EQ(Text(), "[\\]|v=i5|[\\a]|x=sabc|[\\a\\b]|");
}

TEST_F(TextFormTest, ATextGivesATreeAndTheTreeTheText) {
    const std::string text = "[\\]|a=i1|[\\b]|c=sx|";
    EXPECT_EQ(Tree(text), "a=5:1 b{c=10:x}");
    EXPECT_EQ(Text(), text);
}

TEST_F(TextFormTest, TheTargetIsNotEmptiedFirst) {
    SetInt(tree.Get(), "old", 1);
    EXPECT_EQ(Tree("[\\]|new=i2|old=i3"), "old=5:3 new=5:2");
}

TEST_F(TextFormTest, ANullTreeAnswersZeroAndLeavesTheText) {
    CXString text("[\\]|a=i1|");
    EXPECT_EQ(Param_Param2String(nullptr, text), 0);
    EXPECT_EQ(Param_String2Param(text, nullptr), 0);
    EXPECT_STREQ(text, "[\\]|a=i1|");
}

TEST_F(TextFormTest, AnEmptyTextGivesNothing) {
    EXPECT_EQ(Tree(""), "");
}

TEST_F(TextFormTest, ASemicolonCutsAValueAndABarSplitsItAlreadyInTheText) {
    CQXVariant semicolon("a;b"), bar("c|d=i5");
    tree->SetValue("x", &semicolon);
    tree->SetValue("y", &bar);
    EXPECT_EQ(Text(), "[\\]|x=sa|y=sc|d=i5|");
}

// The lines pass through the reader of lines: a line feed alone ends them, and blanks at the ends
// of a line go.
TEST_F(TextFormTest, LineEndsAndBlanksAtTheEndOfAValueAreLost) {
    CQXVariant blanks("a  "), lines("one\r\ntwo"), feed("one\n\ntwo");
    tree->SetValue("x", &blanks);
    tree->SetValue("y", &lines);
    EXPECT_EQ(Text(), "[\\]|x=sa|y=sone|two|");
    tree->SetValue("z", &feed);
    SetInt(tree.Get(), "late", 1);
    EXPECT_EQ(Text(), "[\\]|x=sa|y=sone|two|z=sone|");
}

// "#hash=i1" is a directive without an argument, "ab" a bare key, "x" no letter of a type, and "[x"
// is what a section begins with, whatever it is.
TEST_F(TextFormTest, ANameThatMakesAnotherLineComesBackAsThatLine) {
    for (const char* name : {"#hash", "ab;c", "key=x", "ok", "[x]"}) SetInt(tree.Get(), name, 1);
    const std::string text = Text();
    EXPECT_EQ(text, "[\\]|#hash=i1|ab|key=x=i1|ok=i1|[x]=i1|");
    tree = ParamPtr(new_MemParam());
    EXPECT_EQ(Tree(text), "ab=5:0 ok=5:1 ]=i1{}");
}

TEST_F(TextFormTest, ValuesWithoutATextFormAreLeftOut) {
    char bytes[] = {1};
    CQXVariant blob(tagQXBLOB{1, bytes});
    tree->SetValue("blob", &blob);
    SetInt(tree.Get(), "x", 1);
    EXPECT_EQ(Text(), "[\\]|x=i1|");
}

TEST_F(TextFormTest, AnIncludeNamesAFileByItself) {
    ScratchDirectory directory;
    std::string path = directory.Write("part.ini", "x=i1\r\n[\\b]\r\n");
    EXPECT_EQ(Tree("[\\a]|#include " + path + "\r\ny=i2|"), "a{x=5:1} b{y=5:2}");
    CXString text("[\\]|a=i1|#include no_such_file.ini\r\nb=i2|");
    tree->Clear();
    EXPECT_THROW(Param_String2Param(text, tree.Get()), CXFileException);
    EXPECT_EQ(TreeText(tree.Get()), "a=5:1");
}

// 8192 bytes are read as one line: what follows begins a line of its own in the middle of a value.
TEST_F(TextFormTest, ATextIsCutAt8192BytesBetweenLineEnds) {
    std::string text = "[\\]|x=i1|";
    for (int i = 0; text.size() < 8192; ++i) text += "k" + std::to_string(10000 + i) + "=i7|";
    size_t begin = text.rfind("|", 8191) + 1;  // of the line that the seam divides
    ASSERT_NE(begin, 8192u);
    text += "last=i8|";
    Tree(text);
    std::string head = text.substr(begin, 8192 - begin);
    EXPECT_EQ(head, "k10");
    EXPECT_EQ(GetInt(tree.Get(), "k10"), 0);  // a bare key
    EXPECT_EQ(GetInt(tree.Get(), text.substr(8192, text.find('=', 8192) - 8192).c_str()), 7);
    EXPECT_EQ(GetInt(tree.Get(), "last"), 8);
    EXPECT_EQ(GetInt(tree.Get(), text.substr(begin, 6).c_str()), -1);
}

TEST_F(TextFormTest, ALongTextWithLineEndsIsReadWhole) {
    std::string text = "[\\]";
    for (int i = 0; i < 5000; ++i) text += "\r\nkey" + std::to_string(i) + "=i" + std::to_string(i);
    Tree(text);
    for (int i : {0, 1, 2500, 4999})
        EXPECT_EQ(GetInt(tree.Get(), ("key" + std::to_string(i)).c_str()), i);
}

TEST_F(TextFormTest, ATextOfManyValuesIsWrittenWhole) {
    std::string expected = "[\\]|";
    for (int i = 0; i < std::min(20000, kTooManyCalls); ++i) {
        SetInt(tree.Get(), ("key" + std::to_string(i)).c_str(), i);
        expected += "key" + std::to_string(i) + "=i" + std::to_string(i) + "|";
    }
    EXPECT_TRUE(Text() == expected);
}

TEST_F(TextFormTest, ATreeOfAnyDepthIsWalked) {
    std::string path;
    for (int i = 0; i < std::min(2000, kTooManyCalls); ++i) path += "a\\";
    SetInt(ParamPtr(tree->CreateSubParam((path + "a").c_str())).Get(), "x", 1);
    OnSmallStack([&] { Text(); });
}

// The last byte of a text in a double-byte code page belongs to it, though its characters are
// fewer.
TEST_F(TextFormTest, ADoubleByteTextIsReadToItsLastByte) {
    int before = _getmbcp();
    _setmbcp(932);
    EXPECT_EQ(Tree("[\\\x83\x5C]|\x83\x7C=s\x83\x7C\x83\x5C|last=i5"),
              "\x83\x5C{\x83\x7C=10:\x83\x7C\x83\x5C last=5:5}");
    EXPECT_EQ(Text(), "[\\]|[\\\x83\x5C]|\x83\x7C=s\x83\x7C\x83\x5C|last=i5|");
    _setmbcp(before);
}
