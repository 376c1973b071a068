// Texts at every place of a sixteen-byte block and right before a page that may not be read: what
// the operations find, and that they look at nothing behind the terminator's page.
#include "strings/string_probe.h"

#include <algorithm>
#include <functional>

namespace {

// Two pages, the second of which faults.
class PageEnd {
public:
    PageEnd()
        : pages(static_cast<char*>(VirtualAlloc(nullptr, 2 * kPage, MEM_RESERVE, PAGE_NOACCESS))) {
        VirtualAlloc(pages, kPage, MEM_COMMIT, PAGE_READWRITE);
    }
    ~PageEnd() { VirtualFree(pages, 0, MEM_RELEASE); }
    PageEnd(const PageEnd&) = delete;
    PageEnd& operator=(const PageEnd&) = delete;

    // The text with its terminator, `gap` units before the end of the page; the units before it are
    // no terminators.
    template <class Ch>
    const Ch* Put(const std::basic_string<Ch>& text, size_t gap) {
        Ch* end = reinterpret_cast<Ch*>(pages + kPage);
        std::fill(reinterpret_cast<Ch*>(pages), end, Ch('#'));
        Ch* place = end - gap - text.size() - 1;
        std::copy_n(text.c_str(), text.size() + 1, place);
        return place;
    }

private:
    static constexpr size_t kPage = 4096;
    char* pages;
};

constexpr size_t kLongest = 40;
constexpr size_t kGaps = 17;

// "abcd...": each unit of the text is another one, from 'a' to 'z' and from 'A' on.
template <class S>
std::basic_string<UnitOf<S>> DistinctUnits(size_t n) {
    std::basic_string<UnitOf<S>> text;
    for (size_t i = 0; i < n; ++i)
        text += static_cast<UnitOf<S>>(i < 26 ? 'a' + i : 'A' + (i - 26));
    return text;
}

}  // namespace

template <class S>
struct StringScanTest : BothStrings<S> {
    using Text = std::basic_string<UnitOf<S>>;

    // Calls with a string whose own text stands before the page's end, for each length from
    // `shortest` on.
    void ForEachPlace(size_t shortest, std::function<void(const S&, const Text&)> check) {
        PageEnd page;
        for (size_t n = shortest; n <= kLongest; ++n) {
            for (size_t gap = 0; gap < kGaps; ++gap) {
                Text text = DistinctUnits<S>(n);
                StringProbe<S> s;
                s.data = const_cast<UnitOf<S>*>(page.Put(text, gap));
                SCOPED_TRACE(testing::Message() << n << " units, " << gap << " before the end");
                check(s, text);
                s.Init();
            }
        }
    }

    // The same for a text that is an argument.
    void ForEachArgument(size_t shortest,
                         std::function<void(const UnitOf<S>*, const Text&)> check) {
        ForEachPlace(shortest, [&](const S& s, const Text& text) { check(s.GetData(0), text); });
    }
};
TYPED_TEST_SUITE(StringScanTest, BothStringClasses);

TYPED_TEST(StringScanTest, LengthsEndAtTheTerminator) {
    this->ForEachPlace(0, [](const TypeParam& s, const auto& text) {
        int n = static_cast<int>(text.size());
        EXPECT_EQ(s.GetLength(), n);
        EXPECT_EQ(s.GetSize(), n);
        for (int part : {0, 1, n / 2, n, n + 1, 99})
            EXPECT_EQ(s.GetSize(part), std::min(part, n)) << part;
    });
}

TYPED_TEST(StringScanTest, EachUnitIsAtItsIndex) {
    this->ForEachPlace(1, [](const TypeParam& s, const auto& text) {
        int n = static_cast<int>(text.size());
        for (int i : {0, n / 2, n - 1}) {
            EXPECT_EQ(s.GetAt(i), text[i]) << i;
            EXPECT_EQ(s.Find(wchar_t(text[i])), i);
            EXPECT_EQ(s.Find(wchar_t(text[i]), i), i);
            EXPECT_EQ(s.Find(wchar_t(text[i]), i + 1), -1);
            EXPECT_EQ(s.Find(text.substr(i).c_str()), i);
            EXPECT_EQ(s.Find(text.substr(i, 2).c_str()), i);
            EXPECT_EQ(s.FindOnOf(text.substr(i, 1).c_str()), i);
            EXPECT_EQ(s.FindRev(wchar_t(text[i])), i);
            EXPECT_EQ(s.FindRevOnOf(text.substr(i, 1).c_str()), i);
        }
        EXPECT_EQ(s.Find(L'#'), -1);
        EXPECT_EQ(s.FindRev(L'#'), -1);
        EXPECT_EQ(s.Find((text + text).c_str()), -1);
    });
}

TYPED_TEST(StringScanTest, ATextAtThePagesEndIsFoundInAnother) {
    this->ForEachArgument(1, [this](const UnitOf<TypeParam>* what, const auto& text) {
        int n = static_cast<int>(text.size());
        EXPECT_EQ(TypeParam((text + text).c_str()).Find(what, 1), n);
        EXPECT_EQ(TypeParam((text.substr(0, n - 1) + text).c_str()).Find(what), n - 1);
        EXPECT_EQ(TypeParam((text.substr(0, n - 1) + UnitOf<TypeParam>('#')).c_str()).Find(what),
                  -1);
        EXPECT_EQ(this->T("-").FindOnOf(what), -1);
    });
}

TYPED_TEST(StringScanTest, TextsAreComparedUpToTheTerminator) {
    this->ForEachArgument(1, [](const UnitOf<TypeParam>* other, const auto& text) {
        EXPECT_EQ(TypeParam(text.c_str()).Compare(other), 0);
        for (size_t i : {size_t(0), text.size() / 2, text.size() - 1}) {
            auto less = text, greater = text;
            less[i] = '-';
            greater[i] = '~';
            EXPECT_LT(TypeParam(less.c_str()).Compare(other), 0) << i;
            EXPECT_GT(TypeParam(greater.c_str()).Compare(other), 0) << i;
        }
        EXPECT_GT(TypeParam((text + UnitOf<TypeParam>('-')).c_str()).Compare(other), 0);
        EXPECT_LT(TypeParam(text.substr(0, text.size() - 1).c_str()).Compare(other), 0);
    });
}

TEST(StringScanNarrowTest, OneByteAboveAsciiIsSeenAtEachPlace) {
    CodePage page(932);
    for (size_t n = 0; n <= kLongest; ++n) {
        for (size_t at = 0; at <= n; ++at) {
            CXString s = CXString(std::string(at, 'x').c_str()) + kSo +
                         std::string(n - at, 'y').c_str() + "\\";
            ASSERT_EQ(s.GetLength(), static_cast<int>(n) + 2) << n << " " << at;
            ASSERT_EQ(s.Find(L'\\'), static_cast<int>(n) + 1) << n << " " << at;
            ASSERT_EQ(s.FindRev(L'\\'), static_cast<int>(n) + 1) << n << " " << at;
            ASSERT_EQ(s.GetAt(static_cast<int>(at)), 0x835C) << n << " " << at;
        }
    }
}
