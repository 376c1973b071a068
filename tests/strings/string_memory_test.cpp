// What the strings do when memory runs out in the middle of an operation: the text before or after
// it stays, valid and not locked, a string that shared it keeps its own, and nothing is lost.
#include "strings/string_probe.h"
#include "support/allocation_failure.h"

#include <functional>
#include <memory>

namespace {

template <class S>
class StringMemoryTest : public testing::Test {
protected:
    using Ch = UnitOf<S>;
    using Operation = std::function<void(S&)>;

    // The text of a literal in the class's units.
    static std::basic_string<Ch> T(const char* text) { return {text, text + strlen(text)}; }
    static std::basic_string<Ch> TextOf(const S& s) { return s.GetData(0); }

    // Each allocation of the operation fails once, on a string that shares its text with another
    // one.
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
    unsigned failures = FailEachAllocation([] { return TypeParam(); },
                                           [&](TypeParam& s) { s = TypeParam(text.c_str()); },
                                           [](TypeParam& s) { EXPECT_EQ(s.GetLength(), 0); });
    EXPECT_EQ(failures, 1u);
}

TYPED_TEST(StringMemoryTest, AssigningATextKeepsTheOldOne) {
    auto text = this->T("some text");
    this->ExpectSafe(
        "abc", [&](TypeParam& s) { s = text.c_str(); }, 1);
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

TYPED_TEST(StringMemoryTest, CopyingALockedStringTakesABlockAndLeavesItLocked) {
    struct Locked {
        TypeParam source, target;
    };
    auto make = [this] {
        auto strings = std::make_unique<Locked>(
            Locked{TypeParam(TEXT_OF("locked")), TypeParam(TEXT_OF("old"))});
        strings->source.GetBuffer(6);
        return strings;
    };
    auto check = [this](std::unique_ptr<Locked>& strings) {
        EXPECT_EQ(RefsOf(strings->source), -1);
        EXPECT_TRUE(this->TextOf(strings->source) == this->T("locked"));
        auto target = this->TextOf(strings->target);
        EXPECT_TRUE(target == this->T("old") || target.empty());
    };
    EXPECT_EQ(FailEachAllocation(
                  make, [](auto& strings) { TypeParam copy(strings->source); }, check),
              1u);
    EXPECT_EQ(FailEachAllocation(
                  make, [](auto& strings) { strings->target = strings->source; }, check),
              1u);
}

TYPED_TEST(StringMemoryTest, ReadingTakesNoBlock) {
    auto other = this->T("C:\\dir\\FILE.txt"), set = this->T(":\\/.");
    unsigned failures = FailEachAllocation(
        [&] { return TypeParam(TEXT_OF("c:\\dir\\file.txt")); },
        [&](TypeParam& s) {
            typename TestFixture::Ch buf[32];
            s.GetLength(), s.GetSize(), s.GetSize(3), s.GetSize(1, 2), s.GetData(3), s.GetAt(3);
            s.Copy(buf), s.Copy(buf, 3), s.CopyFit(buf, 3);
            s.Compare(other.c_str()), s.CompareI(other.c_str());
            s.CompareN(other.c_str(), 3), s.CompareIN(other.c_str(), 3);
            s.Find(set.c_str()), s.Find(L'd'), s.FindOnOf(set.c_str()), s.FindRev(L'd'),
                s.FindRevOnOf(set.c_str());
            s.GetFilePath(buf), s.GetFileName(buf), s.GetFileExt(buf), s.GetFileName(),
                s.GetFileExt();
            s.FreeExtra(), s.CharToOemA(), s.OemToCharA(), s.ReleaseBuffer();
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

TYPED_TEST(StringMemoryTest, ExtractingIntoAnotherStringKeepsBoth) {
    struct Pair {
        TypeParam source, out;
    };
    unsigned failures = FailEachAllocation(
        [this] {
            return Pair{TypeParam(TEXT_OF("abcdef")), TypeParam(TEXT_OF("o"))};
        },
        [](Pair& pair) { pair.source.Extract(1, 3, pair.out); },
        [this](Pair& pair) {
            EXPECT_TRUE(this->TextOf(pair.source) == this->T("abcdef"));
            EXPECT_TRUE(this->TextOf(pair.out) == this->T("o"));
            EXPECT_EQ(pair.source.Extract(1, 3, pair.out), 3);
            EXPECT_TRUE(this->TextOf(pair.out) == this->T("bcd"));
        });
    EXPECT_EQ(failures, 1u);
}

TYPED_TEST(StringMemoryTest, FindReplaceKeepsTheTextInAllForms) {
    auto find = this->T("cd"), replacement = this->T("a longer piece");
    this->ExpectSafe(
        "abcdef", [&](TypeParam& s) { s.FindReplace(find.c_str(), replacement.c_str()); }, 1);
    this->ExpectSafe(
        "abcdef", [&](TypeParam& s) { s.FindReplace(find.c_str(), L'x'); }, 1);
    this->ExpectSafe(
        "abcdef", [&](TypeParam& s) { s.FindReplace(L'c', replacement.c_str()); }, 1);
    this->ExpectSafe(
        "abcdef", [](TypeParam& s) { s.FindReplace(L'c', L'x'); }, 1);
}

// The own text is set aside first.
TYPED_TEST(StringMemoryTest, OperationsWithTheOwnTextKeepIt) {
    this->ExpectSafe(
        "abc", [](TypeParam& s) { s.Insert(1, s); }, 2);
    this->ExpectSafe(
        "abcd", [](TypeParam& s) { s.Replace(1, 2, s); }, 2);
    this->ExpectSafe(
        "abc", [](TypeParam& s) { s.FindReplace(s.GetData(1), s); }, 3);
    this->ExpectSafe(
        "name.e", [](TypeParam& s) { s.ChangeFileExt(s.GetData(1)); }, 2);
    this->ExpectSafe(
        "abc", [](TypeParam& s) { s.Extract(1, 2, s); }, 1);
    this->ExpectSafe(
        "abc", [](TypeParam& s) { s = s.GetData(1); }, 1);
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

TYPED_TEST(StringMemoryTest, LoadingKeepsTheTextAtEachTry) {
    auto load = [](unsigned id) {
        return [id](TypeParam& s) { s.Load(GetModuleHandleA(nullptr), id); };
    };
    this->ExpectSafe("old", load(1), 1);
    this->ExpectSafe("old", load(600), 3);
}

TYPED_TEST(StringMemoryTest, PathMembersKeepTheText) {
    auto extension = this->T("backup");
    this->ExpectSafe(
        "c:\\dir", [](TypeParam& s) { s.AddDirDelim(); }, 1);
    this->ExpectSafe(
        "name", [](TypeParam& s) { s.AddFileExtDelim(); }, 1);
    this->ExpectSafe(
        "name.txt", [&](TypeParam& s) { s.ChangeFileExt(extension.c_str()); }, 1);
    this->ExpectSafe(
        "name", [&](TypeParam& s) { s.ChangeFileExt(extension.c_str()); }, 1);
}

TYPED_TEST(StringMemoryTest, ReducingAPathKeepsItUntilTheWorkIsDone) {
    auto reduce = [](TypeParam& s) { s.ReducePathString(3); };
    this->ExpectSafe("c:\\aaa\\bbb\\ccc\\file.txt", reduce, 1);
    // The dots take more than the directory gives.
    this->ExpectSafe("c:\\d\\file.txt", reduce, 2);
}

TYPED_TEST(StringMemoryTest, ValuesMadeFromAStringThrowAndLeaveIt) {
    using S = TypeParam;
    auto text = this->T(" and more");
    const std::function<S(S&)> makers[] = {
        [](S& s) { return s + s; },
        [&](S& s) { return s + text.c_str(); },
        [&](S& s) { return text.c_str() + s; },
        [](S& s) { return s + L'x'; },
        [](S& s) { return L'x' + s; },
        [](S& s) { return s.FilePath(); },
        [](S& s) { return s.FileName(); },
        [](S& s) { return s.FileExt(); },
    };
    for (auto& make : makers) {
        SCOPED_TRACE(&make - makers);
        unsigned failures = FailEachAllocation(
            [&] { return S(TEXT_OF("c:\\dir\\file.txt")); }, [&](S& s) { make(s); },
            [&](S& s) {
                EXPECT_TRUE(this->TextOf(s) == this->T("c:\\dir\\file.txt"));
                EXPECT_EQ(RefsOf(s), 1);
                EXPECT_GT(make(s).GetLength(), 0);
            });
        EXPECT_EQ(failures, 1u);
    }
}

TYPED_TEST(StringMemoryTest, FormattingKeepsTheText) {
    auto format = this->T("%d items"), large = this->T("%700d items");
    this->ExpectSafe(
        "old", [&](TypeParam& s) { s.Format(format.c_str(), 12345); }, 1);
    this->ExpectSafe(
        "old", [&](TypeParam& s) { s.Format(large.c_str(), 12345); }, 1);
}

TYPED_TEST(StringMemoryTest, TakingABufferLeavesTheStringUnlocked) {
    using Ch = typename TestFixture::Ch;
    this->ExpectSafe(
        "abc",
        [](TypeParam& s) {
            s.GetBuffer(1000);
            s.ReleaseBuffer();
        },
        1);
    this->ExpectSafe(
        "abc", [](TypeParam& s) { __CXBuff<TypeParam, Ch*> guard(s, 1000); }, 1);
}

TYPED_TEST(StringMemoryTest, TheOperationsOfTheClassItselfLeaveAValidString) {
    using P = StringProbe<TypeParam>;
    auto text = this->T("a longer text");
    size_t n = text.size();
    const std::function<void(P&)> operations[] = {
        [](P& s) { s.AllocBuffer(40); },
        [](P& s) { s.ReallocBuffer(40); },
        [&](P& s) { s.AssignCopy(text.c_str(), n); },
        [&](P& s) { s.ConcatCopy(text.c_str(), n); },
        [&](P& s) { s.ConcatCopyTo(1, text.c_str(), n); },
    };
    for (auto& operation : operations) {
        SCOPED_TRACE(&operation - operations);
        unsigned failures = FailEachAllocation(
            [&] { return P(TEXT_OF("abc")); }, operation,
            [&](P& s) {
                EXPECT_TRUE(this->TextOf(s) == this->T("abc") || this->TextOf(s).empty());
                EXPECT_TRUE(RefsOf(s) == 1 || s.data == TypeParam().GetData(0));
                operation(s);
                EXPECT_EQ(RefsOf(s), 1);
            });
        EXPECT_EQ(failures, 1u);
    }
}

TEST(StringConversionMemoryTest, ConvertingBetweenTheKindsLeavesAValidString) {
    unsigned narrow =
        FailEachAllocation([] { return CXString("old"); }, [](CXString& s) { s = L"new text"; },
                           [](CXString& s) {
                               s = L"again";
                               EXPECT_STREQ(s, "again");
                           });
    unsigned wide =
        FailEachAllocation([] { return CXStringW(L"old"); }, [](CXStringW& s) { s = "new text"; },
                           [](CXStringW& s) {
                               s = "again";
                               EXPECT_STREQ(s, L"again");
                           });
    EXPECT_EQ(narrow, 1u);
    EXPECT_EQ(wide, 1u);
    EXPECT_EQ(FailEachAllocation([] { return 0; }, [](int) { CXString made(L"text"); }, [](int) {}),
              1u);
    EXPECT_EQ(FailEachAllocation([] { return 0; }, [](int) { CXStringW made("text"); }, [](int) {}),
              1u);
}

// The runtime must not read on behind such a text, so the whole characters are compared in a copy.
TEST(StringCutTextMemoryTest, ComparingATextThatEndsInALeadByteTakesABlockForIt) {
    CodePage page(932);
    auto make = [] { return CXString("ab\x82"); };
    auto check = [](CXString& s) { EXPECT_STREQ(s, "ab\x82"); };
    EXPECT_EQ(FailEachAllocation(
                  make, [](CXString& s) { s.Compare("ab\x83"); }, check),
              2u);
    EXPECT_EQ(FailEachAllocation(
                  make, [](CXString& s) { s.CompareI("AB"); }, check),
              1u);
    EXPECT_EQ(FailEachAllocation(
                  make, [](CXString& s) { s.CompareN("ab", 2); }, check),
              1u);
    EXPECT_EQ(FailEachAllocation(
                  make, [](CXString& s) { s.CompareIN("AB", 2); }, check),
              1u);
}
