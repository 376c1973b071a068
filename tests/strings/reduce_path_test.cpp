// ReducePathString, by hand and beside a second implementation that follows the rule's steps one by
// one.
#include "strings/string_probe.h"

#include <random>
#include <vector>

template <class S>
struct ReducePathTest : BothStrings<S> {
    static std::string Reduced(const char* path, int maxLen, int expectedResult = 1) {
        S s = BothStrings<S>::T(path), copy(s);
        EXPECT_EQ(s.ReducePathString(maxLen), expectedResult) << path << " " << maxLen;
        EXPECT_EQ(Ascii(copy), path);
        return Ascii(s);
    }
};
TYPED_TEST_SUITE(ReducePathTest, BothStringClasses);

TYPED_TEST(ReducePathTest, MiddleDirectoriesGoAndTheLimitIsAGoalOnly) {
    EXPECT_EQ(this->Reduced("c:\\aaa\\bbb\\ccc\\file.txt", 15), "c:\\aaa\\...\\file.txt");
}

TYPED_TEST(ReducePathTest, DirectoriesGoFromTheLeftUntilTheTextFits) {
    // Without "bbb" 20 characters remain, with the dots 24.
    EXPECT_EQ(this->Reduced("c:\\aaa\\bbb\\cc\\dd\\file.txt", 25),
              "c:\\aaa\\bbb\\cc\\dd\\file.txt");
    EXPECT_EQ(this->Reduced("c:\\aaa\\bbb\\cc\\dd\\file.txt", 24), "c:\\aaa\\...\\dd\\file.txt");
    EXPECT_EQ(this->Reduced("c:\\aaa\\bbbbbb\\cc\\dd\\f.txt", 24), "c:\\aaa\\...\\cc\\dd\\f.txt");
}

TYPED_TEST(ReducePathTest, ALimitThatIsNotBelowTheLengthChangesNothing) {
    EXPECT_EQ(this->Reduced("c:\\a\\b\\c", 8), "c:\\a\\b\\c");
    EXPECT_EQ(this->Reduced("c:\\a\\b\\c", 99), "c:\\a\\b\\c");
    EXPECT_EQ(this->Reduced("relative\\dir\\file.txt", 21), "relative\\dir\\file.txt");
    EXPECT_EQ(this->Reduced("", 0), "");
}

TYPED_TEST(ReducePathTest, PathsWithoutARootAreLeft) {
    for (const char* path : {"relative\\dir\\file.txt", "c:relative\\dir\\file.txt",
                             "c:/a/b/c/d.txt", "\\a\\b\\c\\d.txt", "/a/b/c", "c:", "x"}) {
        EXPECT_EQ(this->Reduced(path, 0, 0), path);
    }
}

TYPED_TEST(ReducePathTest, AServerWithoutAShareIsNoRoot) {
    EXPECT_EQ(this->Reduced("\\\\server", 3, 0), "\\\\server");
}

TYPED_TEST(ReducePathTest, NetworkPathsKeepTheServerAndTheShare) {
    EXPECT_EQ(this->Reduced("\\\\server\\share\\aaaa\\bbbb\\f.txt", 20),
              "\\\\server\\share\\...\\f.txt");
    EXPECT_EQ(this->Reduced("\\\\server\\f.txt", 3), "\\\\server\\f.txt");
}

TYPED_TEST(ReducePathTest, AFileInTheRootStays) {
    EXPECT_EQ(this->Reduced("c:\\longname.txt", 3), "c:\\longname.txt");
}

TYPED_TEST(ReducePathTest, TheOnlyDirectoryIsReplaced) {
    // It is the one before the last backslash, so it does not count as the first directory after
    // the root.
    EXPECT_EQ(this->Reduced("c:\\dir\\file.txt", 3), "c:\\...\\file.txt");
}

TYPED_TEST(ReducePathTest, NegativeLimitsAreTakenAsSmallOnes) {
    EXPECT_EQ(this->Reduced("c:\\aaa\\bbb\\ccc\\file.txt", -1), "c:\\aaa\\...\\file.txt");
}

namespace {

// The steps over a list of characters; double-byte ones have codes of their own here.
using Text = std::vector<int>;

int FindFrom(const Text& s, int from) {
    for (int i = from; i < static_cast<int>(s.size()); ++i) {
        if (s[i] == '\\') return i;
    }
    return -1;
}

int At(const Text& s, int i) {
    return i < static_cast<int>(s.size()) ? s[i] : 0;
}

int ReduceBySteps(Text& s, int maxLen) {
    Text work = s;
    int length = static_cast<int>(work.size());
    // 1
    if (!(maxLen < length)) return 1;
    // 2
    int start = 0;
    bool rooted = At(work, 1) == ':' && At(work, 2) == '\\';
    if (rooted) start = 2;
    // 3
    if (!rooted) {
        if (!(At(work, 0) == '\\' && At(work, 1) == '\\')) return 0;
        start = FindFrom(work, 2);
        if (start == -1) return 0;
    }
    // 4
    int last = -1;
    for (int i = 0; i < length; ++i) {
        if (work[i] == '\\') last = i;
    }
    if (last == -1 || last <= start) return 1;
    // 5
    int tail = length - last;
    // 6
    int next = FindFrom(work, start + 1);
    if (next < last) start = next;
    // 7
    if (tail + 4 + 1 > maxLen) maxLen = tail + 4 + 5;
    // 8
    for (;;) {
        int p = FindFrom(work, start + 1);
        if (p == -1) break;
        work.erase(work.begin() + start, work.begin() + p);
        if (static_cast<int>(work.size()) + 4 <= maxLen) break;
        if (!(p < last)) break;
    }
    // 9
    const int dots[] = {'.', '.', '.', '\\'};
    work.insert(work.begin() + std::min<size_t>(start + 1, work.size()), dots, dots + 4);
    s = work;
    return 1;
}

// Names of 0 to 9 characters behind the different starts of a path.
Text GeneratedPath(std::mt19937& random) {
    static const char* const starts[] = {
        "c:\\", "\\\\srv\\", "\\\\", "", "c:", "/", "\\", "c:\\\\", "\\\\\\"};
    static const int units[] = {'a', 'b', '.', ' ', '/', ':', 0x835C, 0x82A0, 0xB1};
    Text s;
    for (const char* p = starts[random() % std::size(starts)]; *p; ++p) s.push_back(*p);
    for (int names = static_cast<int>(random() % 7); names > 0; --names) {
        for (int n = static_cast<int>(random() % 10); n > 0; --n)
            s.push_back(units[random() % std::size(units)]);
        s.push_back('\\');
    }
    for (int n = static_cast<int>(random() % 10); n > 0; --n)
        s.push_back(units[random() % std::size(units)]);
    return s;
}

// In code page 932 for the narrow class.
template <class S>
S Spelled(const Text& s) {
    S text;
    __CXBuff<S, UnitOf<S>*> locked(text, static_cast<int>(s.size()) * 2);
    auto p = locked.buffer;
    for (int ch : s) {
        if (sizeof *p == 1 && ch > 0xFF) *p++ = static_cast<UnitOf<S>>(ch >> 8);
        *p++ = static_cast<UnitOf<S>>(ch);
    }
    *p = 0;
    return text;
}

}  // namespace

TYPED_TEST(ReducePathTest, GeneratedPathsGoTheWayOfTheSteps) {
    CodePage page(932);
    std::mt19937 random(20260714);
    int handled = 0, changed = 0;
    for (int i = 0; i < 10000; ++i) {
        Text path = GeneratedPath(random);
        int maxLen = static_cast<int>(random() % 45) - 2;
        TypeParam s = Spelled<TypeParam>(path);
        Text expected = path;
        int result = ReduceBySteps(expected, maxLen);
        ASSERT_EQ(s.ReducePathString(maxLen), result) << i;
        ASSERT_EQ(s.Compare(Spelled<TypeParam>(expected)), 0) << i;
        handled += result;
        changed += path != expected;
    }
    // The generator reaches both answers and real changes.
    EXPECT_GT(handled, 1000);
    EXPECT_LT(handled, 9000);
    EXPECT_GT(changed, 1000);
}

TEST(ReducePathJapaneseTest, TheLimitCountsCharactersAndTrailBytesAreNoBackslashes) {
    CodePage page(932);
    CXString s = CXString("c:\\") + kSo + kSo + "\\" + kA + kA + kA + "\\" + kI + "\\" + kU + ".x";
    // 3 + 2 + 1 + 3 + 1 + 1 + 1 + 3 characters are 15.
    EXPECT_EQ(s.GetLength(), 15);
    CXString same(s);
    EXPECT_EQ(same.ReducePathString(15), 1);
    EXPECT_EQ(same.Compare(s), 0);
    EXPECT_EQ(s.ReducePathString(14), 1);
    // tail is 4, so the limit stays; without the three characters and their backslash 11 remain,
    // and 4 more are too many; without the next directory 9 remain.
    CXString expected = CXString("c:\\") + kSo + kSo + "\\...\\" + kU + ".x";
    EXPECT_STREQ(s, expected);
}
