#include "strings/string_probe.h"

#include <gtest/gtest.h>

TEST(StringSharingTest, ACopySharesUntilItIsChanged) {
    CXString a("x");
    CXString b(a);
    EXPECT_EQ(a.GetData(0), b.GetData(0));
    b.Insert(1, 'y');
    EXPECT_STREQ(a, "x");
    EXPECT_STREQ(b, "xy");
    EXPECT_NE(a.GetData(0), b.GetData(0));
}

TEST(StringSharingTest, BasicsWork) {
    CXString s = CXString("c:\\dir\\") + "a.txt";
    EXPECT_STREQ(s.FileName(), "a.txt");
    s.Format("%s: %d items, %.3f", "abc", 5, 1.5);
    EXPECT_STREQ(s, "abc: 5 items, 1.500");
    CXStringW w("abc");
    w.Format(L"%s-%S", L"wide", "narrow");
    EXPECT_STREQ(w, L"wide-narrow");
    EXPECT_EQ(s.Find("items"), 7);
    CXString p("c:\\aaa\\bbb\\ccc\\file.txt");
    EXPECT_EQ(p.ReducePathString(15), 1);
    EXPECT_STREQ(p, "c:\\aaa\\...\\file.txt");
}
