// Every member of CXString in code page 932 beside a second implementation, on texts of bytes at
// random: what they hold are lead bytes and trail bytes in any order, texts that end in half a
// character, searches for halves and for values that no character has.
#include "strings/string_probe.h"

#include <algorithm>
#include <cctype>
#include <mbstring.h>
#include <random>
#include <vector>

namespace {

using Bytes = std::string;

unsigned char Byte(char c) {
    return static_cast<unsigned char>(c);
}

bool Leads(unsigned byte) {
    return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
}

// A text as its characters, and the half of one that it may end in. By the plain rule: from the
// left a lead byte takes the byte behind it.
struct Model {
    std::vector<Bytes> characters;
    Bytes half;

    explicit Model(const Bytes& text) {
        for (size_t at = 0; at < text.size(); at += 2) {
            if (!Leads(Byte(text[at]))) {
                characters.push_back(text.substr(at--, 1));
            } else if (at + 1 < text.size()) {
                characters.push_back(text.substr(at, 2));
            } else {
                half = text.substr(at);
            }
        }
    }

    int Length() const { return static_cast<int>(characters.size()); }
    Bytes Part(int from, int to) const {
        Bytes part;
        for (int i = std::max(from, 0); i < std::min(to, Length()); ++i) part += characters[i];
        return part;
    }
    Bytes Whole() const { return Part(0, Length()); }
    Bytes Text() const { return Whole() + half; }
    // From a character on, the half one included.
    Bytes From(int i) const { return Part(i, Length()) + half; }

    wchar_t At(int i) const {
        if (i < 0 || i >= Length()) return 0;
        const Bytes& one = characters[i];
        return static_cast<wchar_t>(one.size() == 2 ? Byte(one[0]) * 256 + Byte(one[1])
                                                    : Byte(one[0]));
    }

    // Where a search may begin: -1 in an empty text and beyond the end.
    int Start(int start) const {
        return Text().empty() || start > Length() ? -1 : std::max(start, 0);
    }

    int Find(const Bytes& what, int start) const {
        int i = Start(start);
        if (i < 0 || what.empty()) return i;
        for (; i < Length(); ++i) {
            if (From(i).compare(0, what.size(), what) == 0) return i;
        }
        return -1;
    }
    template <class Test>
    int First(int start, Test test) const {
        int i = Start(start);
        if (i < 0) return -1;
        while (i < Length() && !test(i)) ++i;
        return i < Length() ? i : -1;
    }
    template <class Test>
    int Last(Test test) const {
        int i = Length() - 1;
        while (i >= 0 && !test(i)) --i;
        return i;
    }
    int Find(wchar_t value, int start) const {
        if (!value) return Start(start) < 0 ? -1 : Length();
        return First(start, [&](int i) { return At(i) == value; });
    }
    int FindRev(wchar_t value) const {
        if (!value) return Text().empty() ? -1 : Length();
        return Last([&](int i) { return At(i) == value; });
    }
    bool Has(const Bytes& one) const {
        return std::find(characters.begin(), characters.end(), one) != characters.end();
    }
    int FindOnOf(const Model& set, int start) const {
        return First(start, [&](int i) { return set.Has(characters[i]); });
    }
    int FindRevOnOf(const Model& set) const {
        return Last([&](int i) { return set.Has(characters[i]); });
    }
};

// The width is 2 when the high byte is a lead byte.
Bytes Spelled(wchar_t value) {
    Bytes text;
    if (Leads(value >> 8)) text += static_cast<char>(value >> 8);
    text += static_cast<char>(value);
    return text.c_str();  // up to a zero
}

Bytes SpelledLowFirst(wchar_t value) {
    Bytes text = Spelled(value);
    return {text.rbegin(), text.rend()};
}

// ReducePathString by its steps, on lists of characters.
int Reduce(Model& path, int maxLen) {
    auto find = [&](int from) { return path.Find(L'\\', from); };
    int length = path.Length();
    if (maxLen >= length) return 1;
    int start = 0;
    if (path.At(1) == ':' && path.At(2) == '\\') {
        start = 2;
    } else {
        if (path.At(0) != '\\' || path.At(1) != '\\') return 0;
        start = find(2);
        if (start < 0) return 0;
    }
    int last = path.FindRev(L'\\');
    if (last <= start) return 1;
    int tail = length - last, next = find(start + 1);
    if (next < last) start = next;
    if (tail + 4 + 1 > maxLen) maxLen = tail + 4 + 5;
    int p;
    do {
        p = find(start + 1);
        if (p < 0) break;
        path = Model(path.Part(0, start) + path.From(p));
    } while (path.Length() + 4 > maxLen && p < last);
    path = Model(path.Part(0, start + 1) + "...\\" + path.From(start + 1));
    return 1;
}

constexpr char kAlphabet[] =
    "\x81\x82\x83\x9F\xE0\xFC\x40\x5C\x41\x61\x7A\x80\xA0\xB1\xDF\xFD\xFF./: \tx";

struct StringBytesTest : JapaneseTest {
    static constexpr int kCases = 1200;

    std::mt19937 random{20261121};

    int Number(int least, int most) {
        return least + static_cast<int>(random() % static_cast<unsigned>(most - least + 1));
    }
    Bytes Any(int most, const char* alphabet = kAlphabet) {
        Bytes text;
        auto count = static_cast<int>(strlen(alphabet));
        for (int n = Number(0, most); n > 0; --n) text += alphabet[Number(0, count - 1)];
        return text;
    }
    // A part of the text, so that searches hit; or any.
    Bytes Piece(const Bytes& text) {
        if (Number(0, 1) || text.empty()) return Any(3);
        return text.substr(Number(0, static_cast<int>(text.size()) - 1), Number(1, 3));
    }
    // A character's value, a half's, one with a high byte that leads nothing, or any.
    wchar_t Value(const Model& text) {
        auto letter = [&] { return Byte(kAlphabet[Number(0, sizeof kAlphabet - 2)]); };
        switch (Number(0, 4)) {
            case 0:
                return text.At(Number(0, std::max(text.Length() - 1, 0)));
            case 1:
                return letter();
            case 2:
                return static_cast<wchar_t>(letter() << 8 | letter());
            case 3:
                return static_cast<wchar_t>(letter() << 8);
            default:
                return static_cast<wchar_t>(random());
        }
    }

    struct Case {
        Bytes text;
        Model model;
        Bytes piece;
        wchar_t value;
        int pos, count;
        CXString String() const { return CXString(text.c_str()); }
    };
    template <class Check>
    void ForCases(Check check) {
        for (int i = 0; i < kCases && !HasFailure(); ++i) {
            Bytes text = Any(10);
            Model model(text);
            int n = model.Length();
            Case c{
                text, model, Piece(text), Value(model), Number(-2, n + 3), Number(-n - 2, n + 2)};
            check(c);
            EXPECT_FALSE(HasFailure()) << "case " << i << ": " << testing::PrintToString(c.text)
                                       << ", " << testing::PrintToString(c.piece) << ", "
                                       << unsigned(c.value) << ", " << c.pos << ", " << c.count;
        }
    }
};

TEST_F(StringBytesTest, SizesPlacesAndCopies) {
    ForCases([](const Case& c) {
        CXString s = c.String();
        int n = c.model.Length(), pos = c.pos < 0 ? n : c.pos;
        auto units = [&](int from, int to) {
            return static_cast<int>(c.model.Part(from, to).size());
        };
        EXPECT_EQ(s.GetLength(), n);
        EXPECT_EQ(s.GetSize(), static_cast<int>(c.text.size()));
        EXPECT_EQ(s.GetSize(c.pos), units(0, pos));
        EXPECT_EQ(s.GetSize(c.pos, c.count), units(pos, c.count < 0 ? n : pos + c.count));
        EXPECT_EQ(s.GetData(c.pos) - s.GetData(), units(0, pos));
        EXPECT_EQ(s.GetAt(c.pos), c.model.At(pos));
        char buf[64];
        EXPECT_EQ(s.Copy(buf), static_cast<int>(c.text.size()));
        EXPECT_EQ(buf, c.text);
        EXPECT_EQ(s.Copy(buf, c.pos), units(0, pos));
        EXPECT_EQ(buf, c.model.Part(0, pos));
        for (int room = 1; room < 14; ++room) {
            int fits = n;
            while (units(0, fits) >= room) --fits;
            EXPECT_EQ(s.CopyFit(buf, room), units(0, fits));
            EXPECT_EQ(buf, c.model.Part(0, fits));
        }
    });
}

TEST_F(StringBytesTest, Searches) {
    ForCases([](const Case& c) {
        CXString s = c.String();
        Model set(c.piece);
        EXPECT_EQ(s.Find(c.piece.c_str(), c.pos), c.model.Find(c.piece, c.pos));
        EXPECT_EQ(s.Find(c.piece.c_str()), c.model.Find(c.piece, 0));
        EXPECT_EQ(s.Find("", c.pos), c.model.Start(c.pos));
        EXPECT_EQ(s.Find(c.value, c.pos), c.model.Find(c.value, c.pos));
        EXPECT_EQ(s.Find(c.value), c.model.Find(c.value, 0));
        EXPECT_EQ(s.FindRev(c.value), c.model.FindRev(c.value));
        EXPECT_EQ(s.Find(wchar_t(0), c.pos), c.model.Find(wchar_t(0), c.pos));
        EXPECT_EQ(s.FindOnOf(c.piece.c_str(), c.pos), c.model.FindOnOf(set, c.pos));
        EXPECT_EQ(s.FindRevOnOf(c.piece.c_str()), c.model.FindRevOnOf(set));
    });
}

TEST_F(StringBytesTest, Comparisons) {
    ForCases([](const Case& c) {
        // Often the same at the start. Half characters do not count.
        Bytes other = c.model.Part(0, c.pos) + c.piece;
        Bytes own = c.model.Whole(), others = Model(other).Whole();
        auto x = reinterpret_cast<const unsigned char*>(own.c_str());
        auto y = reinterpret_cast<const unsigned char*>(others.c_str());
        size_t n = static_cast<size_t>(std::max(c.count, 0));
        CXString s = c.String();
        EXPECT_EQ(s.Compare(other.c_str()), own == others ? 0 : _mbscmp(x, y));
        EXPECT_EQ(s.CompareI(other.c_str()), _mbsicmp(x, y));
        EXPECT_EQ(s.CompareN(other.c_str(), static_cast<int>(n)), _mbsncmp(x, y, n));
        EXPECT_EQ(s.CompareIN(other.c_str(), static_cast<int>(n)), _mbsnicmp(x, y, n));
    });
}

TEST_F(StringBytesTest, InsertionAndRanges) {
    ForCases([](const Case& c) {
        int n = c.model.Length(), place = c.pos < 0 ? n : std::min(c.pos, n);
        auto around = [&](int from, const Bytes& between, int to) {
            return c.model.Part(0, from) + between + c.model.From(to);
        };
        EXPECT_EQ(Bytes(c.String().Insert(c.pos, c.piece.c_str())), around(place, c.piece, place));
        Bytes inserted = c.value ? Spelled(c.value) : Bytes();
        EXPECT_EQ(Bytes(c.String().Insert(c.pos, c.value)), around(place, inserted, place));

        int from = std::max(std::min(place, place + c.count), 0);
        int to = std::min(std::max(place, place + c.count), n);
        EXPECT_EQ(Bytes(c.String().Delete(c.pos, c.count)), around(from, "", to));
        EXPECT_EQ(Bytes(c.String().Replace(c.pos, c.count, c.piece.c_str())),
                  from == to || c.piece.empty() ? c.text : around(from, c.piece, to));
        Bytes range = c.model.Part(from, to);
        CXString out("old"), own = c.String();
        EXPECT_EQ(own.Extract(c.pos, c.count, out), static_cast<int>(range.size()));
        EXPECT_EQ(Bytes(out), range);
        EXPECT_EQ(own.Extract(c.pos, c.count), static_cast<int>(range.size()));
        EXPECT_EQ(Bytes(own), range);
    });
}

TEST_F(StringBytesTest, Replacement) {
    ForCases([this](const Case& c) {
        auto expect = [&](auto find, auto replacement, const Bytes& findText,
                          const Bytes& replacementText) {
            CXString s = c.String();
            int at = findText.empty() ? -1 : c.model.Find(findText, 0);
            Bytes before = c.model.Part(0, at);
            EXPECT_EQ(s.FindReplace(find, replacement), at >= 0);
            EXPECT_EQ(Bytes(s), at < 0 ? c.text
                                       : before + replacementText +
                                             c.text.substr(before.size() + findText.size()));
        };
        Bytes other = Any(4);
        wchar_t value = Value(c.model);
        expect(c.piece.c_str(), other.c_str(), c.piece, other);
        expect(c.value, value, SpelledLowFirst(c.value), SpelledLowFirst(value));
        expect(c.piece.c_str(), value, c.piece, SpelledLowFirst(value));
        expect(c.value, other.c_str(), SpelledLowFirst(c.value), other);
    });
}

TEST_F(StringBytesTest, TrimmingAndCase) {
    ForCases([](const Case& c) {
        auto stays = [&](int i) {
            const Bytes& one = c.model.characters[i];
            return one.size() == 2 || !isspace(Byte(one[0]));
        };
        int first = 0, last = c.model.Last(stays);
        while (first < c.model.Length() && !stays(first)) ++first;
        CXString left = c.String(), right = c.String(), upper = c.String(), lower = c.String();
        left.TrimLeft();
        EXPECT_EQ(Bytes(left), c.model.From(first));
        right.TrimRight();
        EXPECT_EQ(Bytes(right), c.model.half.empty() ? c.model.Part(0, last + 1) : c.text);

        Bytes expected = c.model.Whole();
        _mbsupr(reinterpret_cast<unsigned char*>(expected.data()));
        upper.Upper();
        EXPECT_EQ(Bytes(upper), expected + c.model.half);
        expected = c.model.Whole();
        _mbslwr(reinterpret_cast<unsigned char*>(expected.data()));
        lower.Lower();
        EXPECT_EQ(Bytes(lower), expected + c.model.half);
    });
}

TEST_F(StringBytesTest, ConcatenationAndFormat) {
    ForCases([](const Case& c) {
        CXString s = c.String(), t(c.piece.c_str());
        Bytes spelled = c.value ? Spelled(c.value) : Bytes();
        EXPECT_EQ(Bytes(s + t), c.text + c.piece);
        EXPECT_EQ(Bytes(s + c.piece.c_str()), c.text + c.piece);
        EXPECT_EQ(Bytes(c.piece.c_str() + s), c.piece + c.text);
        EXPECT_EQ(Bytes(s + c.value), c.text + spelled);
        EXPECT_EQ(Bytes(c.value + s), spelled + c.text);
        CXString formatted;
        formatted.Format("[%s] %d %s", c.text.c_str(), c.pos, c.piece.c_str());
        EXPECT_EQ(Bytes(formatted), "[" + c.text + "] " + std::to_string(c.pos) + " " + c.piece);
    });
}

TEST_F(StringBytesTest, FileNames) {
    ForCases([this](const Case& c) {
        const Model names(":\\/"), extensions(":\\/.");
        int slash = c.model.FindRevOnOf(names), dot = c.model.FindRevOnOf(extensions);
        bool hasExtension = dot >= 0 && c.model.At(dot) == '.';
        Bytes path = slash < 0 ? Bytes() : c.model.Part(0, slash + (c.model.At(slash) == ':'));
        Bytes name = c.model.From(slash + 1);
        Bytes extension = hasExtension ? c.model.From(dot + 1) : Bytes();
        Bytes bare = hasExtension ? c.model.Part(slash + 1, dot) : name;

        CXString s = c.String();
        char buf[64] = "untouched";
        EXPECT_EQ(s.GetFilePath(nullptr), static_cast<int>(path.size()));
        EXPECT_EQ(s.GetFilePath(buf), static_cast<int>(path.size()));
        EXPECT_EQ(buf, slash < 0 ? "untouched" : path);
        EXPECT_EQ(s.GetFileName(buf), static_cast<int>(bare.size()));
        EXPECT_EQ(buf, bare);
        EXPECT_EQ(Bytes(s.GetFileName()), name);
        EXPECT_EQ(s.GetFileExt() != nullptr, hasExtension);
        EXPECT_EQ(s.GetFileExt(nullptr), static_cast<int>(extension.size()));
        EXPECT_EQ(Bytes(s.FilePath()), path);
        EXPECT_EQ(Bytes(s.FileName()), name);
        EXPECT_EQ(Bytes(s.FileExt()), extension);

        wchar_t last = c.model.At(c.model.Length() - 1);
        bool isDir = last == '\\' || last == '/';
        EXPECT_EQ(Bytes(c.String().AddDirDelim()), isDir ? c.text : c.text + "\\");
        EXPECT_EQ(Bytes(c.String().AddFileExtDelim()), last == '.' ? c.text : c.text + ".");
    });
}

TEST_F(StringBytesTest, AnExtensionChangesBehindTheLastDot) {
    ForCases([](const Case& c) {
        Bytes wanted = c.piece.substr(c.piece[0] == '.');
        int dot = c.model.FindRevOnOf(Model(":\\/."));
        bool hasExtension = dot >= 0 && c.model.At(dot) == '.';
        CXString s = c.String();
        s.ChangeFileExt(c.piece.c_str());
        // A dot behind half a character becomes its trail byte.
        EXPECT_EQ(Bytes(s), (hasExtension ? c.model.Part(0, dot + 1) : c.text + ".") + wanted);
    });
}

TEST_F(StringBytesTest, PathsAreReducedByCharacters) {
    int reduced = 0;
    for (int i = 0; i < kCases && !HasFailure(); ++i) {
        Bytes text = Number(0, 1) ? "c:\\" : "\\\\s\\";
        for (int n = Number(1, 6); n > 0; --n) text += Any(4, "\x83\x81\x41\x5Cxy\\") + "\\";
        text += Any(4, "\x83\x5C\x41.x");
        Model expected(text);
        int limit = Number(0, expected.Length() + 1);
        int result = Reduce(expected, limit);
        CXString s(text.c_str());
        EXPECT_EQ(s.ReducePathString(limit), result) << testing::PrintToString(text) << limit;
        EXPECT_EQ(Bytes(s), expected.Text()) << testing::PrintToString(text) << limit;
        reduced += expected.Text() != text;
    }
    EXPECT_GT(reduced, kCases / 10);
}

}  // namespace
