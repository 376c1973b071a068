// What each operation does to a string whose text is locked by GetBuffer.
#include "strings/string_probe.h"

#include <functional>
#include <vector>

template <class S>
struct StringLockingTest : BothStrings<S> {
    struct Change {
        const char* name;
        std::function<void(S&)> apply;
        const char* expected;    // of "c:\a.b"
        bool needsRoom = false;  // more than "c:\a.b" has
    };

    static S Locked(int room) {
        S s = BothStrings<S>::T("c:\\a.b");
        s.GetBuffer(room);
        return s;
    }

    // The changes that write where the text is, if it has room.
    static std::vector<Change> ChangesInPlace() {
        static const auto x = Units<S>("x"), a = Units<S>("a");
        return {
            {"Insert of a character", [](S& s) { s.Insert(0, L'x'); }, "xc:\\a.b", true},
            {"Insert of a text", [](S& s) { s.Insert(99, x.c_str()); }, "c:\\a.bx", true},
            {"Replace", [](S& s) { s.Replace(0, 1, x.c_str()); }, "x:\\a.b"},
            {"Delete", [](S& s) { s.Delete(0, 1); }, ":\\a.b"},
            {"FindReplace of a text by a text", [](S& s) { s.FindReplace(a.c_str(), x.c_str()); },
             "c:\\x.b", true},
            {"FindReplace of a text by a character", [](S& s) { s.FindReplace(a.c_str(), L'x'); },
             "c:\\x.b", true},
            {"FindReplace of a character by a text", [](S& s) { s.FindReplace(L'a', x.c_str()); },
             "c:\\x.b", true},
            {"FindReplace of a character by a character", [](S& s) { s.FindReplace(L'a', L'x'); },
             "c:\\x.b", true},
            {"AddDirDelim", [](S& s) { s.AddDirDelim(); }, "c:\\a.b\\", true},
            {"AddFileExtDelim", [](S& s) { s.AddFileExtDelim(); }, "c:\\a.b.", true},
            {"ChangeFileExt", [](S& s) { s.ChangeFileExt(x.c_str()); }, "c:\\a.x"},
        };
    }

    // The changes that take a buffer of their own, or another text.
    static std::vector<Change> ChangesThroughABuffer() {
        static const auto format = Units<S>("%d"), text = Units<S>("new");
        return {
            {"TrimLeft", [](S& s) { s.TrimLeft(); }, "c:\\a.b"},
            {"TrimRight", [](S& s) { s.TrimRight(); }, "c:\\a.b"},
            {"Upper", [](S& s) { s.Upper(); }, "C:\\A.B"},
            {"Lower", [](S& s) { s.Lower(); }, "c:\\a.b"},
            {"Extract", [](S& s) { s.Extract(3, 1); }, "a"},
            {"Extract into itself", [](S& s) { s.Extract(3, 1, s); }, "a"},
            {"Format", [](S& s) { s.Format(format.c_str(), 7); }, "7"},
            {"Load", [](S& s) { s.Load(GetModuleHandleA(nullptr), 1); }, "abc"},
            {"assignment of a string", [](S& s) { s = S(text.c_str()); }, "new"},
            {"assignment of a narrow text", [](S& s) { s = "new"; }, "new"},
            {"assignment of a wide text", [](S& s) { s = L"new"; }, "new"},
            {"ReleaseBuffer", [](S& s) { s.ReleaseBuffer(); }, "c:\\a.b"},
        };
    }
};
TYPED_TEST_SUITE(StringLockingTest, BothStringClasses);

TYPED_TEST(StringLockingTest, AChangeThatFitsLeavesTheStringLocked) {
    for (auto& change : this->ChangesInPlace()) {
        SCOPED_TRACE(change.name);
        TypeParam s = this->Locked(20);
        auto text = s.GetData();
        change.apply(s);
        EXPECT_EQ(RefsOf(s), -1);
        EXPECT_EQ(s.GetData(), text);
        s.ReleaseBuffer();
        EXPECT_EQ(Ascii(s), change.expected);
    }
}

TYPED_TEST(StringLockingTest, AChangeThatDoesNotFitUnlocksTheString) {
    for (auto& change : this->ChangesInPlace()) {
        SCOPED_TRACE(change.name);
        TypeParam s = this->Locked(0);
        change.apply(s);
        EXPECT_EQ(RefsOf(s), change.needsRoom ? 1 : -1);
        EXPECT_EQ(Ascii(s), change.expected);
    }
}

TYPED_TEST(StringLockingTest, AChangeThroughABufferUnlocksTheString) {
    for (auto& change : this->ChangesThroughABuffer()) {
        SCOPED_TRACE(change.name);
        for (int room : {0, 40}) {
            TypeParam s = this->Locked(room);
            change.apply(s);
            EXPECT_EQ(Ascii(s), change.expected);
            EXPECT_EQ(RefsOf(s), 1);
        }
    }
}

TYPED_TEST(StringLockingTest, AReducedPathIsUnlocked) {
    TypeParam s(this->T("c:\\aaa\\bbb\\ccc\\file.txt"));
    s.GetBuffer(40);
    EXPECT_EQ(s.ReducePathString(15), 1);
    EXPECT_EQ(Ascii(s), "c:\\aaa\\...\\file.txt");
    EXPECT_EQ(RefsOf(s), 1);
}

TYPED_TEST(StringLockingTest, AChangeThatDoesNothingLeavesTheStringLocked) {
    const UnitOf<TypeParam>* none = nullptr;
    TypeParam s = this->Locked(0);
    auto text = s.GetData();
    s.Insert(0, none);
    s.Insert(0, wchar_t(0));
    s.Replace(0, 1, none);
    s.Delete(-1, 3);
    s.ReducePathString(99);
    EXPECT_EQ(s.Load(GetModuleHandleA(nullptr), 5000), 0);
    EXPECT_EQ(RefsOf(s), -1);
    EXPECT_EQ(s.GetData(), text);
    EXPECT_EQ(Ascii(s), "c:\\a.b");
}

TYPED_TEST(StringLockingTest, ReadingTakesTheTextAsItStands) {
    TypeParam s(this->T("c:\\a.b"));
    s.GetBuffer(20)[0] = 'd';
    EXPECT_EQ(s.GetLength(), 6);
    EXPECT_EQ(s.GetAt(0), L'd');
    EXPECT_EQ(s.Find(L'd'), 0);
    EXPECT_EQ(s.Compare(this->T("d:\\a.b")), 0);
    EXPECT_EQ(Ascii(s.FilePath()), "d:");
    EXPECT_EQ(Ascii(s.FileName()), "a.b");
    EXPECT_EQ(Ascii(s.FileExt()), "b");
    EXPECT_EQ(Ascii(s + s), "d:\\a.bd:\\a.b");
    TypeParam out;
    EXPECT_EQ(s.Extract(0, 2, out), 2);
    EXPECT_EQ(Ascii(out), "d:");
    EXPECT_EQ(RefsOf(s), -1);
}
