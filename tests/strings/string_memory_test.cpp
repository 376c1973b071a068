// What the strings do when memory runs out in the middle of an operation: the text before or after it stays, valid
// and not locked, a string that shared it keeps its own, and nothing is lost.
#include "strings/string_probe.h"
#include "support/allocation_failure.h"

#include <functional>

namespace {

template <class S>
class StringMemoryTest : public testing::Test {
protected:
    using Ch = UnitOf<S>;
    using Operation = std::function<void(S&)>;

    // The text of a literal in the class's units.
    static std::basic_string<Ch> T(const char* text) { return {text, text + strlen(text)}; }
    static std::basic_string<Ch> TextOf(const S& s) { return s.GetData(0); }

    // Each allocation of the operation fails once, on a string that shares its text with another one.
    void ExpectSafe(const char* text, Operation operation, unsigned allocations) {
        std::basic_string<Ch> before = T(text), after;
        {
            S whole(before.c_str());
            operation(whole);
            after = TextOf(whole);
        }
        struct Shared {
            S subject, other;
        };
        unsigned failures = FailEachAllocation(
            [&] {
                Shared shared{S(before.c_str()), S()};
                shared.other = shared.subject;
                return shared;
            },
            [&](Shared& shared) { operation(shared.subject); },
            [&](Shared& shared) {
                auto now = TextOf(shared.subject);
                EXPECT_TRUE(now == before || now == after || now.empty()) << text;
                EXPECT_TRUE(TextOf(shared.other) == before) << text;
                S copy(shared.subject);
                // A locked text is not shared.
                bool shares = copy.GetData(0) == shared.subject.GetData(0);
                EXPECT_TRUE(shares || now.empty()) << text;
                shared.subject.Insert(0, wchar_t('x'));
                EXPECT_TRUE(TextOf(shared.subject) == T("x") + now);
                operation(shared.other);
                EXPECT_TRUE(TextOf(shared.other) == after);
            });
        EXPECT_EQ(failures, allocations) << text;
    }
};

using Classes = testing::Types<CXString, CXStringW>;
TYPED_TEST_SUITE(StringMemoryTest, Classes);

#define TEXT_OF(literal) this->T(literal).c_str()

}  // namespace

TYPED_TEST(StringMemoryTest, MakingAStringFromATextTakesOneBlock) {
    auto text = this->T("some text");
    unsigned failures =
        FailEachAllocation([] { return TypeParam(); }, [&](TypeParam& s) { s = TypeParam(text.c_str()); },
                           [](TypeParam& s) { EXPECT_EQ(s.GetLength(), 0); });
    EXPECT_EQ(failures, 1u);
}

TYPED_TEST(StringMemoryTest, CopyingSharesAndTakesNoBlock) {
    unsigned failures = FailEachAllocation([&] { return TypeParam(TEXT_OF("shared")); },
                                           [](TypeParam& s) {
                                               TypeParam copy(s), another;
                                               another = copy;
                                           },
                                           [](TypeParam&) { FAIL(); });
    EXPECT_EQ(failures, 0u);
}

TYPED_TEST(StringMemoryTest, InsertingKeepsTheTextOrHasTheNewOne) {
    auto piece = this->T("new ");
    this->ExpectSafe(
        "abc", [](TypeParam& s) { s.Insert(1, wchar_t('x')); }, 1);
    this->ExpectSafe(
        "abc", [&](TypeParam& s) { s.Insert(1, piece.c_str()); }, 1);
}

TYPED_TEST(StringMemoryTest, DeletingAndReplacingKeepTheText) {
    auto piece = this->T("a longer piece");
    this->ExpectSafe(
        "abcdef", [](TypeParam& s) { s.Delete(1, 2); }, 1);
    this->ExpectSafe(
        "abcdef", [&](TypeParam& s) { s.Replace(1, 2, piece.c_str()); }, 1);
}

TYPED_TEST(StringMemoryTest, ExtractingKeepsTheText) {
    this->ExpectSafe(
        "abcdef", [](TypeParam& s) { s.Extract(1, 3); }, 1);
}

TYPED_TEST(StringMemoryTest, FindReplaceKeepsTheText) {
    auto find = this->T("cd"), replacement = this->T("a longer piece");
    this->ExpectSafe(
        "abcdef", [&](TypeParam& s) { s.FindReplace(find.c_str(), replacement.c_str()); }, 1);
}

TYPED_TEST(StringMemoryTest, TrimmingAndCaseKeepTheText) {
    this->ExpectSafe(
        "  abc  ", [](TypeParam& s) { s.TrimLeft(); }, 1);
    this->ExpectSafe(
        "  abc  ", [](TypeParam& s) { s.TrimRight(); }, 1);
    this->ExpectSafe(
        "abc", [](TypeParam& s) { s.Upper(); }, 1);
    this->ExpectSafe(
        "ABC", [](TypeParam& s) { s.Lower(); }, 1);
}

TYPED_TEST(StringMemoryTest, PathMembersKeepTheText) {
    auto extension = this->T("backup");
    this->ExpectSafe(
        "c:\\dir", [](TypeParam& s) { s.AddDirDelim(); }, 1);
    this->ExpectSafe(
        "name", [](TypeParam& s) { s.AddFileExtDelim(); }, 1);
    this->ExpectSafe(
        "name.txt", [&](TypeParam& s) { s.ChangeFileExt(extension.c_str()); }, 1);
}

TYPED_TEST(StringMemoryTest, ConcatenatingThrowsAndLeavesBothSides) {
    auto tail = this->T(" and more");
    unsigned failures =
        FailEachAllocation([&] { return TypeParam(TEXT_OF("text")); }, [&](TypeParam& s) { s = s + tail.c_str(); },
                           [&](TypeParam& s) { EXPECT_TRUE(this->TextOf(s) == this->T("text")); });
    EXPECT_EQ(failures, 1u);
}

TYPED_TEST(StringMemoryTest, FormattingLeavesAValidString) {
    auto format = this->T("%d items");
    unsigned failures = FailEachAllocation([&] { return TypeParam(TEXT_OF("old")); },
                                           [&](TypeParam& s) { s.Format(format.c_str(), 12345); },
                                           [&](TypeParam& s) {
                                               EXPECT_TRUE(s.GetLength() == 0 || this->TextOf(s) == this->T("old"));
                                               s.Format(format.c_str(), 7);
                                               EXPECT_TRUE(this->TextOf(s) == this->T("7 items"));
                                           });
    EXPECT_GE(failures, 1u);
}

TYPED_TEST(StringMemoryTest, TakingABufferLeavesTheStringUnlocked) {
    unsigned failures = FailEachAllocation([&] { return TypeParam(TEXT_OF("abc")); },
                                           [](TypeParam& s) {
                                               s.GetBuffer(1000);
                                               s.ReleaseBuffer();
                                           },
                                           [&](TypeParam& s) {
                                               TypeParam copy(s);
                                               EXPECT_TRUE(this->TextOf(copy) == this->TextOf(s));
                                           });
    EXPECT_EQ(failures, 1u);
}

TEST(StringConversionMemoryTest, ConvertingBetweenTheKindsLeavesAValidString) {
    unsigned narrow = FailEachAllocation([] { return CXString("old"); }, [](CXString& s) { s = L"new text"; },
                                         [](CXString& s) {
                                             s = L"again";
                                             EXPECT_STREQ(s, "again");
                                         });
    unsigned wide = FailEachAllocation([] { return CXStringW(L"old"); }, [](CXStringW& s) { s = "new text"; },
                                       [](CXStringW& s) {
                                           s = "again";
                                           EXPECT_STREQ(s, L"again");
                                       });
    EXPECT_GE(narrow, 1u);
    EXPECT_GE(wide, 1u);
}
