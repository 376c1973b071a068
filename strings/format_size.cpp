#include "strings/format_size.h"

#include "strings/text_of.h"

#include <algorithm>
#include <climits>
#include <cstdarg>
#include <cstdint>
#include <type_traits>

namespace {

// What a directive takes from the arguments, and how it is sized.
enum class Taken : uint8_t { kNothing, kChar, kNarrow, kWide, kDouble, kInt, kPointer, kCount };

// Modifiers: 'h', 'l' and '-' for neither. "F", "L" and "N" count as neither.
struct FormatRow {
    const char* modifiers;
    const char* types;
    Taken taken;
};

constexpr FormatRow kCommonRows[] = {
    {"-hl", "cC", Taken::kChar},   {"-hl", "Gefg", Taken::kDouble}, {"-hl", "Xdioux", Taken::kInt},
    {"-hl", "p", Taken::kPointer}, {"-hl", "n", Taken::kCount},
};
constexpr FormatRow kNarrowRows[] = {
    {"-", "s", Taken::kNarrow},
    {"h", "sS", Taken::kNarrow},
    {"-", "S", Taken::kWide},
    {"l", "sS", Taken::kWide},
};
// "s" and "S" change sides.
constexpr FormatRow kWideRows[] = {
    {"-", "s", Taken::kWide},
    {"l", "sS", Taken::kWide},
    {"-", "S", Taken::kNarrow},
    {"h", "sS", Taken::kNarrow},
};

constexpr int kTextLeast = 1;
constexpr int kCharSize = 2;
constexpr int kIntLeast = 32;
constexpr int kDoubleLeast = 128;

// The rows spread out for look-up.
class FormatTable {
public:
    template <size_t n>
    consteval explicit FormatTable(const FormatRow (&rows)[n]) {
        for (const FormatRow& row : kCommonRows) Enter(row);
        for (const FormatRow& row : rows) Enter(row);
    }

    template <class Ch>
    Taken Find(char modifier, Ch type) const {
        using Unsigned = std::make_unsigned_t<Ch>;
        auto index = static_cast<Unsigned>(type);
        return index < kTypes ? taken[Modifier(modifier)][index] : Taken::kNothing;
    }

private:
    static constexpr unsigned kTypes = 128;

    static constexpr int Modifier(char modifier) {
        return modifier == 'h' ? 1 : modifier == 'l' ? 2 : 0;
    }
    consteval void Enter(const FormatRow& row) {
        for (const char* m = row.modifiers; *m; ++m) {
            for (const char* t = row.types; *t; ++t)
                taken[Modifier(*m)][static_cast<int>(*t)] = row.taken;
        }
    }

    Taken taken[3][kTypes] = {};
};

constexpr FormatTable kNarrowTable(kNarrowRows);
constexpr FormatTable kWideTable(kWideRows);

template <class Ch>
constexpr const FormatTable& kTableOf = sizeof(Ch) == 1 ? kNarrowTable : kWideTable;

template <class Ch>
class FormatSizer {
public:
    FormatSizer(const Ch* format, char* args) : at(format), args(args) {}

    int64_t Walk() {
        while (*at) {
            if (*at++ != '%') {
                ++total;
            } else if (*at == '%') {
                ++at;
                ++total;
            } else {
                Directive();
            }
        }
        return total;
    }

private:
    void Directive() {
        bool hasWidth = Flags();
        if (!hasWidth) width = Digits();
        Precision();
        char modifier = Modifier();
        if (!*at) return;
        Ch type = *at++;
        Taken taken = kTableOf<Ch>.Find(modifier, type);
        // An argument that stays where it is shifts all later ones.
        if (taken == Taken::kNothing) inStep = false;
        total += Size(taken);
    }

    // Whether a width was among them.
    bool Flags() {
        bool hasWidth = false;
        for (;; ++at) {
            if (*at == '#') {
                total += 2;
            } else if (*at == '*') {
                width = va_arg(args, int);
                hasWidth = true;
            } else if (*at != '-' && *at != '+' && *at != '0' && *at != ' ') {
                return hasWidth;
            }
        }
    }

    // A negative precision is none, as it is for the engine.
    void Precision() {
        hasPrecision = *at == '.';
        precision = 0;
        if (!hasPrecision) return;
        ++at;
        if (*at == '*') {
            ++at;
            precision = va_arg(args, int);
            hasPrecision = precision >= 0;
            precision = std::max<int64_t>(precision, 0);
        } else {
            precision = Digits();
        }
    }

    char Modifier() {
        if (*at == 'h' || *at == 'l') return static_cast<char>(*at++);
        if (*at == 'F' || *at == 'L' || *at == 'N') ++at;
        return '-';
    }

    int64_t Digits() {
        int64_t value = 0;
        for (; *at >= '0' && *at <= '9'; ++at)
            value = std::min<int64_t>(value * 10 + (*at - '0'), INT_MAX);
        return value;
    }

    int64_t Size(Taken taken) {
        switch (taken) {
            case Taken::kChar:
                va_arg(args, int);
                return Bounded(kCharSize);
            case Taken::kNarrow:
                return Bounded(Length(va_arg(args, const char*)));
            case Taken::kWide:
                return Bounded(Length(va_arg(args, const wchar_t*)));
            case Taken::kDouble:
                va_arg(args, double);
                return std::max<int64_t>(width + precision, kDoubleLeast);
            case Taken::kInt:
                va_arg(args, int);
                return std::max<int64_t>(width + precision, kIntLeast);
            case Taken::kPointer:
                va_arg(args, void*);
                return std::max<int64_t>(width + precision, kIntLeast);
            case Taken::kCount:
                va_arg(args, void*);
                return 0;
            case Taken::kNothing:
                break;
        }
        return 0;
    }

    int64_t Bounded(int64_t size) const {
        size = std::max(size, width);
        return hasPrecision ? std::min(size, precision) : size;
    }

    // Once out of step, an argument may be anything: the platform's guarded functions answer 0 for
    // a bad address.
    int64_t Length(const char* s) const {
        if (!s) return kTextLeast;
        int64_t length = !inStep        ? lstrlenA(s)
                         : hasPrecision ? strnlen(s, precision)
                                        : ScanLength(s);
        return std::max<int64_t>(length, kTextLeast);
    }
    int64_t Length(const wchar_t* s) const {
        if (!s) return kTextLeast;
        int64_t length = !inStep        ? lstrlenW(s)
                         : hasPrecision ? wcsnlen(s, precision)
                                        : ScanLength(s);
        return std::max<int64_t>(length, kTextLeast);
    }

    const Ch* at;
    va_list args;  // a plain pointer on this platform, so it can be walked twice
    int64_t total = 0;
    int64_t width = 0;
    int64_t precision = 0;
    bool hasPrecision = false;
    bool inStep = true;
};

}  // namespace

template <class Ch>
int FormatSize(const Ch* format, char* args) {
    return static_cast<int>(std::clamp<int64_t>(FormatSizer<Ch>(format, args).Walk(), 0, INT_MAX));
}

template int FormatSize(const char* format, char* args);
template int FormatSize(const wchar_t* format, char* args);
