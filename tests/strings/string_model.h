// A second, slow account of text for tests: a text as the list of its characters.
#ifndef QXCORE_TESTS_STRING_MODEL_H
#define QXCORE_TESTS_STRING_MODEL_H

#include "strings/string_probe.h"

#include <algorithm>
#include <random>
#include <vector>

// The kinds of text that the string classes tell apart, each with characters that only it has.
struct SingleByteText {
    using String = CXString;
    static constexpr int kCodePage = 1252;
    // The bytes of a double-byte character are two characters here.
    static std::vector<std::string> Special() { return {"\xE4", "\xC4", "\x83", "\xA0", "\xFF"}; }
};
struct DoubleByteText {
    using String = CXString;
    static constexpr int kCodePage = 932;
    static std::vector<std::string> Special() {
        return {kA, kI, kSo, kAa, kHalfA, "\x81\x40", "\x83\x61"};
    }
};
struct WideText {
    using String = CXStringW;
    static constexpr int kCodePage = 932;
    static std::vector<std::wstring> Special() {
        return {L"\u0120", L"\u3000", L"\u00E4", L"\u00C4", L"\u835C", L"\xD83D", L"\xDE00"};
    }
};
using TextKinds = testing::Types<SingleByteText, DoubleByteText, WideText>;

template <class S>
class TextModel {
public:
    using Unit = UnitOf<S>;
    using Text = std::basic_string<Unit>;
    using Characters = std::vector<Text>;

    explicit TextModel(const Text& text) {
        for (size_t i = 0, n; i < text.size(); i += n) {
            n = IsLead(text[i]) && i + 1 < text.size() ? 2 : 1;
            characters.push_back(text.substr(i, n));
        }
    }
    explicit TextModel(Characters characters) : characters(std::move(characters)) {}

    int Length() const { return static_cast<int>(characters.size()); }
    const Text& operator[](int i) const { return characters[i]; }
    Characters::const_iterator begin() const { return characters.begin(); }
    Characters::const_iterator end() const { return characters.end(); }

    // The characters from `from` up to `to`, both clamped.
    Text Part(int from, int to) const {
        Text part;
        for (int i = std::max(from, 0); i < std::min(to, Length()); ++i) part += characters[i];
        return part;
    }
    Text From(int from) const { return Part(from, Length()); }
    int Units(int from, int to) const { return static_cast<int>(Part(from, to).size()); }

    // The first and the last index at which `test` holds, or -1.
    template <class Test>
    int First(int start, Test test) const {
        for (int i = std::max(start, 0); i < Length(); ++i) {
            if (test(i)) return i;
        }
        return -1;
    }
    template <class Test>
    int Last(Test test) const {
        for (int i = Length() - 1; i >= 0; --i) {
            if (test(i)) return i;
        }
        return -1;
    }
    bool Has(const Text& character) const {
        return std::find(characters.begin(), characters.end(), character) != characters.end();
    }
    // The index from `start` on at which the other text stands. An empty one stands everywhere, the
    // end included.
    int Find(const TextModel& what, int start) const {
        if (!Length()) return -1;
        for (int i = std::max(start, 0); i + what.Length() <= Length(); ++i) {
            if (std::equal(what.begin(), what.end(), characters.begin() + i)) return i;
        }
        return -1;
    }

    // What the interfaces take for a character.
    static wchar_t Value(const Text& character) {
        if (character.size() == 2)
            return static_cast<wchar_t>(Byte(character[0]) << 8 | Byte(character[1]));
        return sizeof(Unit) == 1 ? Byte(character[0]) : static_cast<wchar_t>(character[0]);
    }

private:
    static unsigned char Byte(Unit unit) { return static_cast<unsigned char>(unit); }
    static bool IsLead(Unit unit) { return sizeof(Unit) == 1 && _ismbblead(Byte(unit)); }

    Characters characters;
};

// Texts of one kind at random, always the same ones.
template <class Kind>
class TextGenerator {
public:
    using S = Kind::String;
    using Model = TextModel<S>;

    int Number(int least, int most) {
        return least + static_cast<int>(random() % (most - least + 1));
    }
    // Up to `most` characters: those of an ASCII alphabet, and every third a special one.
    Model Any(int most, const char* alphabet) {
        typename Model::Characters characters;
        auto special = Kind::Special();
        for (int n = Number(0, most); n > 0; --n) {
            bool isSpecial = Number(0, 2) == 0;
            size_t count = isSpecial ? special.size() : strlen(alphabet);
            size_t i = random() % count;
            characters.push_back(isSpecial ? special[i] : typename Model::Text(1, alphabet[i]));
        }
        return Model(characters);
    }

private:
    std::mt19937 random{20260714};
};

#endif
