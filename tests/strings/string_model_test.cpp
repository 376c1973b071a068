// Every member beside a second implementation over lists of whole characters, on generated texts of
// each kind. What changes a string is tried on one that is alone, on one that shares its text, and
// on one that is locked.
#include "strings/string_model.h"

#include <cctype>
#include <mbstring.h>
#include <wctype.h>

template <class Kind>
struct StringModelTest : testing::Test {
    using S = Kind::String;
    using Model = TextModel<S>;
    using Text = Model::Text;
    using Unit = Model::Unit;

    struct Case {
        Model text;
        Model piece;
        int pos;    // from before the start to behind the end
        int count;  // in both directions, beyond both ends
        Text Whole() const { return text.From(0); }
        Text Piece() const { return piece.From(0); }
        // Where pos puts an insertion or the start of a range.
        int Place() const { return pos < 0 ? text.Length() : std::min(pos, text.Length()); }
        int RangeFrom() const { return std::max(std::min(Place(), Place() + count), 0); }
        int RangeTo() const { return std::min(std::max(Place(), Place() + count), text.Length()); }
    };

    template <class Check>
    void ForCases(Check check) {
        CodePage page(Kind::kCodePage);
        TextGenerator<Kind> generator;
        for (int i = 0; i < 200 && !this->HasFailure(); ++i) {
            Case c{generator.Any(9, "aAb \t\\"), generator.Any(3, "aAb \t\\"), 0, 0};
            int n = c.text.Length();
            c.pos = generator.Number(-2, n + 2);
            c.count = generator.Number(-n - 2, n + 2);
            SCOPED_TRACE(testing::Message()
                         << "case " << i << ": " << testing::PrintToString(c.Whole()) << ", "
                         << testing::PrintToString(c.Piece()) << ", " << c.pos << ", " << c.count);
            check(c);
        }
    }

    static Text TextOf(const S& s) { return s.GetData(0); }

    // The text after the change, which is the same for each state of the string.
    template <class Change>
    static Text Changed(const Text& text, Change change) {
        S alone(text.c_str());
        change(alone);

        S other(text.c_str()), sharing(other);
        change(sharing);
        EXPECT_EQ(TextOf(other), text);
        EXPECT_EQ(TextOf(sharing), TextOf(alone));

        S locked(text.c_str());
        locked.GetBuffer(static_cast<int>(text.size()));
        S copy(locked);
        change(locked);
        locked.ReleaseBuffer();
        EXPECT_EQ(TextOf(copy), text);
        EXPECT_EQ(TextOf(locked), TextOf(alone));
        return TextOf(alone);
    }
};
TYPED_TEST_SUITE(StringModelTest, TextKinds);

TYPED_TEST(StringModelTest, SizesAndPlacesCountWholeCharacters) {
    this->ForCases([](auto& c) {
        typename TestFixture::S s(c.Whole().c_str());
        int n = c.text.Length();
        EXPECT_EQ(s.GetLength(), n);
        EXPECT_EQ(s.GetSize(), c.text.Units(0, n));
        int pos = c.pos < 0 ? n : c.pos;
        EXPECT_EQ(s.GetSize(c.pos), c.text.Units(0, pos));
        EXPECT_EQ(s.GetData(c.pos) - s.GetData(0), c.text.Units(0, pos));
        EXPECT_EQ(s.GetSize(c.pos, c.count), c.text.Units(pos, c.count < 0 ? n : pos + c.count));
        EXPECT_EQ(s.GetAt(c.pos), pos < n ? c.text.Value(c.text[pos]) : 0);
    });
}

TYPED_TEST(StringModelTest, CopiesHoldWholeCharacters) {
    using Unit = TestFixture::Unit;
    this->ForCases([](auto& c) {
        typename TestFixture::S s(c.Whole().c_str());
        auto copied = [](auto copy, int expectedSize) {
            std::vector<Unit> buf(32, Unit('#'));
            EXPECT_EQ(copy(buf.data()), expectedSize);
            EXPECT_EQ(buf[expectedSize + 1], '#');
            return typename TestFixture::Text(buf.data());
        };
        EXPECT_EQ(copied([&](Unit* buf) { return s.Copy(buf); }, s.GetSize()), c.Whole());
        auto part = c.text.Part(0, c.count < 0 ? c.text.Length() : c.count);
        EXPECT_EQ(
            copied([&](Unit* buf) { return s.Copy(buf, c.count); }, static_cast<int>(part.size())),
            part);
        for (int room = 1; room < s.GetSize() + 3; ++room) {
            int fits = 0;
            while (fits < c.text.Length() && c.text.Units(0, fits + 1) < room) ++fits;
            part = c.text.Part(0, fits);
            EXPECT_EQ(copied([&](Unit* buf) { return s.CopyFit(buf, room); },
                             static_cast<int>(part.size())),
                      part);
        }
    });
}

TYPED_TEST(StringModelTest, SearchesFindWholeCharacters) {
    this->ForCases([](auto& c) {
        typename TestFixture::S s(c.Whole().c_str());
        auto piece = c.Piece();
        auto inPiece = [&](int i) { return c.piece.Has(c.text[i]); };
        EXPECT_EQ(s.Find(piece.c_str(), c.pos), c.text.Find(c.piece, c.pos));
        EXPECT_EQ(s.FindOnOf(piece.c_str(), c.pos), c.text.First(c.pos, inPiece));
        EXPECT_EQ(s.FindRevOnOf(piece.c_str()), c.text.Last(inPiece));
        for (auto& character : c.piece) {
            auto isIt = [&](int i) { return c.text[i] == character; };
            EXPECT_EQ(s.Find(c.text.Value(character), c.pos), c.text.First(c.pos, isIt));
            EXPECT_EQ(s.FindRev(c.text.Value(character)), c.text.Last(isIt));
        }
    });
}

TYPED_TEST(StringModelTest, ComparisonsAreTheRuntimes) {
    this->ForCases([](auto& c) {
        typename TestFixture::S s(c.Whole().c_str());
        // Often the same at the start.
        auto other = c.text.Part(0, c.pos) + c.Piece();
        size_t n = c.count < 0 ? 0 : c.count;
        int count = static_cast<int>(n);
        auto own = c.Whole();
        if constexpr (sizeof(typename TestFixture::Unit) == 1) {
            auto x = reinterpret_cast<const unsigned char*>(own.c_str());
            auto y = reinterpret_cast<const unsigned char*>(other.c_str());
            EXPECT_EQ(s.Compare(other.c_str()), _mbscmp(x, y));
            EXPECT_EQ(s.CompareI(other.c_str()), _mbsicmp(x, y));
            EXPECT_EQ(s.CompareN(other.c_str(), count), _mbsncmp(x, y, n));
            EXPECT_EQ(s.CompareIN(other.c_str(), count), _mbsnicmp(x, y, n));
        } else {
            EXPECT_EQ(s.Compare(other.c_str()), own < other ? -1 : own > other);
            EXPECT_EQ(s.CompareI(other.c_str()), _wcsicmp(own.c_str(), other.c_str()));
            EXPECT_EQ(s.CompareN(other.c_str(), count), wcsncmp(own.c_str(), other.c_str(), n));
            EXPECT_EQ(s.CompareIN(other.c_str(), count), _wcsnicmp(own.c_str(), other.c_str(), n));
        }
    });
}

TYPED_TEST(StringModelTest, InsertPutsWholeCharactersBetweenOthers) {
    this->ForCases([](auto& c) {
        auto before = c.text.Part(0, c.Place()), after = c.text.From(c.Place());
        auto piece = c.Piece();
        EXPECT_EQ(TestFixture::Changed(c.Whole(), [&](auto& s) { s.Insert(c.pos, piece.c_str()); }),
                  before + piece + after);
        for (auto& character : c.piece) {
            EXPECT_EQ(TestFixture::Changed(
                          c.Whole(), [&](auto& s) { s.Insert(c.pos, c.text.Value(character)); }),
                      before + character + after);
        }
    });
}

TYPED_TEST(StringModelTest, RangesAreClampedAndTakeWholeCharacters) {
    using S = TestFixture::S;
    this->ForCases([](auto& c) {
        auto before = c.text.Part(0, c.RangeFrom()),
             range = c.text.Part(c.RangeFrom(), c.RangeTo()), after = c.text.From(c.RangeTo());
        auto whole = c.Whole(), piece = c.Piece();
        EXPECT_EQ(TestFixture::Changed(whole, [&](S& s) { s.Delete(c.pos, c.count); }),
                  before + after);
        EXPECT_EQ(
            TestFixture::Changed(whole, [&](S& s) { s.Replace(c.pos, c.count, piece.c_str()); }),
            range.empty() || piece.empty() ? whole : before + piece + after);
        int size = static_cast<int>(range.size());
        EXPECT_EQ(
            TestFixture::Changed(whole, [&](S& s) { EXPECT_EQ(s.Extract(c.pos, c.count), size); }),
            range);
        EXPECT_EQ(
            TestFixture::Changed(
                piece,
                [&](S& out) { EXPECT_EQ(S(whole.c_str()).Extract(c.pos, c.count, out), size); }),
            range);
    });
}

TYPED_TEST(StringModelTest, FindReplaceReplacesTheFirstOccurrence) {
    using S = TestFixture::S;
    using Text = TestFixture::Text;
    this->ForCases([this](auto& c) {
        auto whole = c.Whole(), find = c.Piece();
        Text replacements[] = {Text(), this->Changed(find, [](S& s) { s.Upper(); }), Text(5, '-')};
        for (auto& replacement : replacements) {
            int at = c.piece.Length() ? c.text.Find(c.piece, 0) : -1;
            Text expected =
                at < 0 ? whole
                       : c.text.Part(0, at) + replacement + c.text.From(at + c.piece.Length());
            EXPECT_EQ(this->Changed(whole,
                                    [&](S& s) {
                                        EXPECT_EQ(s.FindReplace(find.c_str(), replacement.c_str()),
                                                  at >= 0);
                                    }),
                      expected);
        }
    });
}

TYPED_TEST(StringModelTest, FindReplaceTakesACharacterAsItsUnitsLowOneFirst) {
    using S = TestFixture::S;
    using Text = TestFixture::Text;
    this->ForCases([this](auto& c) {
        auto whole = c.Whole();
        for (auto& character : c.piece) {
            wchar_t value = c.text.Value(character);
            Text spelled(character.rbegin(), character.rend()), letter(1, 'a');
            auto changed = [&](auto find, auto replacement) {
                return this->Changed(whole, [&](S& s) { s.FindReplace(find, replacement); });
            };
            auto changedByTexts = [&](const Text& find, const Text& replacement) {
                return changed(find.c_str(), replacement.c_str());
            };
            EXPECT_EQ(changed(value, L'-'), changedByTexts(spelled, Text(1, '-')));
            EXPECT_EQ(changed(value, letter.c_str()), changedByTexts(spelled, letter));
            EXPECT_EQ(changed(letter.c_str(), value), changedByTexts(letter, spelled));
            EXPECT_EQ(changed(L'a', value), changedByTexts(letter, spelled));
        }
    });
}

TYPED_TEST(StringModelTest, TrimmingTakesSingleUnitsOfWhiteSpace) {
    using S = TestFixture::S;
    using Unit = TestFixture::Unit;
    this->ForCases([this](auto& c) {
        auto stays = [&](int i) {
            Unit unit = c.text[i][0];
            if (c.text[i].size() == 2) return true;
            return sizeof(Unit) == 1 ? !isspace(static_cast<unsigned char>(unit))
                                     : !iswspace(unit & 0xFF);
        };
        int first = c.text.First(0, stays), last = c.text.Last(stays);
        EXPECT_EQ(this->Changed(c.Whole(), [](S& s) { s.TrimLeft(); }),
                  c.text.From(first < 0 ? c.text.Length() : first));
        EXPECT_EQ(this->Changed(c.Whole(), [](S& s) { s.TrimRight(); }), c.text.Part(0, last + 1));
    });
}

TYPED_TEST(StringModelTest, TheCaseIsTheRuntimes) {
    using S = TestFixture::S;
    this->ForCases([this](auto& c) {
        auto upper = c.Whole(), lower = c.Whole();
        if constexpr (sizeof(typename TestFixture::Unit) == 1) {
            _mbsupr(reinterpret_cast<unsigned char*>(upper.data()));
            _mbslwr(reinterpret_cast<unsigned char*>(lower.data()));
        } else {
            _wcsupr(upper.data());
            _wcslwr(lower.data());
        }
        EXPECT_EQ(this->Changed(c.Whole(), [](S& s) { s.Upper(); }), upper);
        EXPECT_EQ(this->Changed(c.Whole(), [](S& s) { s.Lower(); }), lower);
    });
}

TYPED_TEST(StringModelTest, ConcatenationPutsTextsBehindEachOther) {
    using S = TestFixture::S;
    this->ForCases([this](auto& c) {
        auto whole = c.Whole(), piece = c.Piece();
        EXPECT_EQ(this->Changed(whole, [&](S& s) { s = s + S(piece.c_str()); }), whole + piece);
        EXPECT_EQ(this->Changed(whole, [&](S& s) { s = s + piece.c_str(); }), whole + piece);
        EXPECT_EQ(this->Changed(whole, [&](S& s) { s = piece.c_str() + s; }), piece + whole);
        for (auto& character : c.piece) {
            wchar_t value = c.text.Value(character);
            EXPECT_EQ(this->Changed(whole, [&](S& s) { s = s + value; }), whole + character);
            EXPECT_EQ(this->Changed(whole, [&](S& s) { s = value + s; }), character + whole);
        }
    });
}
