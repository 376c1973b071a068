// The text as a file name.
#include "strings/string_model.h"

template <class S>
struct StringPathTest : BothStrings<S> {
    using Unit = UnitOf<S>;

    // The directory part through the buffer form, and what it answered.
    static std::string Part(const S& path, int (S::*get)(Unit*) const, int expected) {
        EXPECT_EQ((path.*get)(nullptr), expected);
        Unit buf[64];
        std::fill_n(buf, 64, Unit('#'));
        EXPECT_EQ((path.*get)(buf), expected);
        EXPECT_EQ(buf[expected + 1], '#');
        return Ascii(S(buf));
    }
};
TYPED_TEST_SUITE(StringPathTest, BothStringClasses);

namespace {

struct PathRow {
    const char* path;
    const char* directory;  // null: the buffer is left alone
    const char* name;       // without extension
    const char* nameWithExt;
    const char* ext;  // null: none
};

constexpr PathRow kPaths[] = {
    {"c:\\a\\b.txt", "c:\\a", "b", "b.txt", "txt"},
    {"c:b.txt", "c:", "b", "b.txt", "txt"},
    {"c:\\b.txt", "c:", "b", "b.txt", "txt"},
    {"c:", "c:", "", "", nullptr},
    {"a.txt", nullptr, "a", "a.txt", "txt"},
    {"a", nullptr, "a", "a", nullptr},
    {"", nullptr, "", "", nullptr},
    {"a.b\\c", "a.b", "c", "c", nullptr},
    {"a.b/c", "a.b", "c", "c", nullptr},
    {"x.y:c", "x.y:", "c", "c", nullptr},
    {"/a", "", "a", "a", nullptr},
    {"\\\\server\\share\\f.e.x", "\\\\server\\share", "f.e", "f.e.x", "x"},
    {"dir\\", "dir", "", "", nullptr},
    {"name.", nullptr, "name", "name.", ""},
    {".ini", nullptr, "", ".ini", "ini"},
    {"c:\\.ini", "c:", "", ".ini", "ini"},
    {"..\\up.a", "..", "up", "up.a", "a"},
    {"http://host/dir/file.htm?q=a/b", "http://host/dir/file.htm?q=a", "b", "b", nullptr},
    {"mixed/dir\\f.c", "mixed/dir", "f", "f.c", "c"},
};

}  // namespace

TYPED_TEST(StringPathTest, PartsComeFromTheLastDelimiters) {
    using S = TypeParam;
    for (const PathRow& row : kPaths) {
        SCOPED_TRACE(row.path);
        S path = this->T(row.path);
        int nameSize = static_cast<int>(strlen(row.name));
        if (row.directory) {
            int size = static_cast<int>(strlen(row.directory));
            EXPECT_EQ(this->Part(path, &S::GetFilePath, size), row.directory);
        }
        EXPECT_EQ(Ascii(path.FilePath()), row.directory ? row.directory : "");
        EXPECT_EQ(
            this->Part(path, static_cast<int (S::*)(UnitOf<S>*) const>(&S::GetFileName), nameSize),
            row.name);
        EXPECT_EQ(path.GetFileName(), path.GetData(0) + strlen(row.path) - strlen(row.nameWithExt));
        EXPECT_EQ(Ascii(path.FileName()), row.nameWithExt);
        if (row.ext) {
            int size = static_cast<int>(strlen(row.ext));
            EXPECT_EQ(
                this->Part(path, static_cast<int (S::*)(UnitOf<S>*) const>(&S::GetFileExt), size),
                row.ext);
            EXPECT_EQ(path.GetFileExt(), path.GetData(0) + strlen(row.path) - size);
        } else {
            EXPECT_EQ(path.GetFileExt(), nullptr);
            EXPECT_EQ(path.GetFileExt(nullptr), 0);
        }
        EXPECT_EQ(Ascii(path.FileExt()), row.ext ? row.ext : "");
    }
}

TYPED_TEST(StringPathTest, GetFilePathOfABareNameLeavesTheBufferAlone) {
    UnitOf<TypeParam> buf[1] = {'#'};
    EXPECT_EQ(this->T("a.txt").GetFilePath(buf), 0);
    EXPECT_EQ(buf[0], '#');
}

TYPED_TEST(StringPathTest, GetFilePathOfARootedNameWritesATerminator) {
    UnitOf<TypeParam> buf[2] = {'#', '#'};
    EXPECT_EQ(this->T("/a").GetFilePath(buf), 0);
    EXPECT_EQ(buf[0], 0);
    EXPECT_EQ(buf[1], '#');
}

TYPED_TEST(StringPathTest, AddDirDelimEndsTheTextWithOneDelimiter) {
    TypeParam s(this->T("c:\\a")), copy(s);
    EXPECT_EQ(&s.AddDirDelim(), &s);
    EXPECT_EQ(Ascii(s), "c:\\a\\");
    EXPECT_EQ(Ascii(copy), "c:\\a");
    EXPECT_EQ(Ascii(this->T("c:/a/").AddDirDelim()), "c:/a/");
    EXPECT_EQ(Ascii(this->T("c:\\a\\").AddDirDelim()), "c:\\a\\");
    EXPECT_EQ(Ascii(this->T("c:").AddDirDelim()), "c:\\");
    EXPECT_EQ(Ascii(TypeParam().AddDirDelim()), "\\");
}

TYPED_TEST(StringPathTest, AddFileExtDelimEndsTheTextWithOneDot) {
    TypeParam s(this->T("a"));
    EXPECT_EQ(&s.AddFileExtDelim(), &s);
    EXPECT_EQ(Ascii(s), "a.");
    EXPECT_EQ(Ascii(s.AddFileExtDelim()), "a.");
    EXPECT_EQ(Ascii(TypeParam().AddFileExtDelim()), ".");
}

TYPED_TEST(StringPathTest, ChangeFileExtSetsOrReplacesTheExtension) {
    struct {
        const char *path, *ext, *expected;
    } rows[] = {
        {"a.txt", ".bak", "a.bak"},
        {"a.txt", "bak", "a.bak"},
        {"a", "bak", "a.bak"},
        {"a", ".bak", "a.bak"},
        {"a.txt", "", "a."},
        {"a", "", "a."},
        {"a.txt", ".", "a."},
        {"a.", "x", "a.x"},
        {"a.t", "longer", "a.longer"},
        {"a.longer", "t", "a.t"},
        {"d.x\\a", "t", "d.x\\a.t"},
        {"d\\", "t", "d\\.t"},
        {"", "t", ".t"},
        {"a.b.c", "d", "a.b.d"},
        {"a.b", "..d", "a..d"},
    };
    for (auto& row : rows) {
        SCOPED_TRACE(std::string(row.path) + " + " + row.ext);
        TypeParam s = this->T(row.path), copy(s);
        s.ChangeFileExt(this->T(row.ext));
        EXPECT_EQ(Ascii(s), row.expected);
        EXPECT_EQ(Ascii(copy), row.path);
    }
}

TYPED_TEST(StringPathTest, ChangeFileExtTakesItsOwnTextAndNullSafely) {
    TypeParam s(this->T("name.e"));
    s.ChangeFileExt(s.GetData(1));
    EXPECT_EQ(Ascii(s), "name.ame.e");
    s.ChangeFileExt(nullptr);
    EXPECT_EQ(Ascii(s), "name.ame.");
}

// Paths put together from parts, so that what each member has to give is known.
template <class Kind>
struct StringPathPartsTest : testing::Test {
    using S = Kind::String;
    using Text = std::basic_string<UnitOf<S>>;

    struct Parts {
        Text directory, delim;  // the delimiter goes, unless it is the directory's own ':'
        Text name;
        bool hasExt;
        Text ext;
        Text NameWithExt() const { return hasExt ? name + Units<S>(".") + ext : name; }
        Text Whole() const { return directory + delim + NameWithExt(); }
    };

    template <class Check>
    void ForPaths(Check check) {
        CodePage page(Kind::kCodePage);
        Text special;
        for (auto& character : Kind::Special()) special += character;
        auto slash = Units<S>("/"), backslash = Units<S>("\\"), none = Text();
        std::pair<Text, Text> directories[] = {
            {none, none},
            {none, slash},
            {none, backslash},
            {Units<S>("c:"), none},
            {Units<S>("c:"), backslash},
            {Units<S>("c:\\dir.d"), backslash},
            {Units<S>("c:") + special, slash},
            {Units<S>("\\\\server\\share"), backslash},
            {Units<S>("\\\\") + special, backslash},
            {Units<S>("relative"), backslash},
            {Units<S>("."), backslash},
            {Units<S>(".."), slash},
            {special + Units<S>("."), backslash},
        };
        for (auto& [directory, delim] : directories) {
            for (auto& name : {none, Units<S>("name"), special, Units<S>("n") + special}) {
                check(Parts{directory, delim, name, false, none});
                for (auto& ext : {none, Units<S>("txt"), special}) {
                    check(Parts{directory, delim, name, true, ext});
                    check(Parts{directory, delim, name + Units<S>(".x"), true, ext});
                }
            }
        }
    }

    // What a buffer form gives; empty where it leaves the buffer alone.
    static Text Given(const S& path, int (S::*get)(UnitOf<S>*) const) {
        UnitOf<S> buf[64] = {};
        int size = (path.*get)(nullptr);
        EXPECT_EQ((path.*get)(buf), size);
        EXPECT_EQ(Text(buf).size(), static_cast<size_t>(size));
        return buf;
    }
};
TYPED_TEST_SUITE(StringPathPartsTest, TextKinds);

TYPED_TEST(StringPathPartsTest, EachPartIsTakenFromEachKindOfPath) {
    using S = TestFixture::S;
    using Text = TestFixture::Text;
    this->ForPaths([this](const auto& parts) {
        S path(parts.Whole().c_str());
        SCOPED_TRACE(testing::PrintToString(parts.Whole()));
        EXPECT_EQ(this->Given(path, &S::GetFilePath), parts.directory);
        EXPECT_EQ(Text(path.FilePath()), parts.directory);
        EXPECT_EQ(this->Given(path, &S::GetFileName), parts.name);
        EXPECT_EQ(Text(path.GetFileName()), parts.NameWithExt());
        EXPECT_EQ(Text(path.FileName()), parts.NameWithExt());
        auto ext = path.GetFileExt();
        EXPECT_EQ(ext != nullptr, parts.hasExt);
        EXPECT_EQ(ext ? Text(ext) : Text(), parts.ext);
        EXPECT_EQ(this->Given(path, &S::GetFileExt), parts.ext);
        EXPECT_EQ(Text(path.FileExt()), parts.ext);
    });
}

TYPED_TEST(StringPathPartsTest, DelimitersAndExtensionsArePutBehindEachKindOfPath) {
    using S = TestFixture::S;
    using Text = TestFixture::Text;
    this->ForPaths([](const auto& parts) {
        SCOPED_TRACE(testing::PrintToString(parts.Whole()));
        auto dot = Units<S>("."), backslash = Units<S>("\\"), ext = Units<S>("e");
        bool endsInDelim = parts.NameWithExt().empty() && !parts.delim.empty();
        bool endsInDot = parts.hasExt && parts.ext.empty();
        S path(parts.Whole().c_str()), copy(path);
        EXPECT_EQ(Text(S(path).AddDirDelim()), parts.Whole() + (endsInDelim ? Text() : backslash));
        EXPECT_EQ(Text(S(path).AddFileExtDelim()), parts.Whole() + (endsInDot ? Text() : dot));
        for (auto& given : {ext, dot + ext}) {
            S changed(path);
            changed.ChangeFileExt(given.c_str());
            EXPECT_EQ(Text(changed), parts.directory + parts.delim + parts.name + dot + ext);
        }
        EXPECT_EQ(Text(copy), parts.Whole());
    });
}

struct StringPathJapaneseTest : JapaneseTest {};

TEST_F(StringPathJapaneseTest, ATrailByteIsNoDelimiter) {
    CXString path = CXString("c:\\") + kSo + "\\" + kA + kSo + ".t" + kSo;
    char buf[32];
    EXPECT_EQ(path.GetFilePath(nullptr), 5);
    EXPECT_EQ(path.GetFilePath(buf), 5);
    EXPECT_STREQ(buf, "c:\\\x83\x5C");
    EXPECT_EQ(path.GetFileName(buf), 4);
    EXPECT_STREQ(buf, "\x82\xA0\x83\x5C");
    EXPECT_EQ(path.GetFileExt(buf), 3);
    EXPECT_STREQ(buf, "t\x83\x5C");
    EXPECT_STREQ(path.FilePath(), "c:\\\x83\x5C");
    EXPECT_STREQ(path.FileName(), "\x82\xA0\x83\x5C.t\x83\x5C");
    EXPECT_STREQ(path.FileExt(), "t\x83\x5C");
    path.ChangeFileExt(kA);
    EXPECT_STREQ(path, "c:\\\x83\x5C\\\x82\xA0\x83\x5C.\x82\xA0");
}

TEST_F(StringPathJapaneseTest, ADelimiterIsAddedAfterACharacterThatEndsInItsByte) {
    EXPECT_STREQ(CXString(kSo).AddDirDelim(), "\x83\x5C\\");
    EXPECT_STREQ(CXString(kSo).AddDirDelim().AddDirDelim(), "\x83\x5C\\");
}

TEST_F(StringPathJapaneseTest, AByteBelongsToItsPathInASingleByteCodePage) {
    CodePage page(1252);
    EXPECT_STREQ(CXString("a\x83\\b").FilePath(), "a\x83");
}
