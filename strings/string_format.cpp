#include "strings/string_format.h"

#include <algorithm>
#include <climits>
#include <cstdarg>
#include <cstdint>
#include <type_traits>

namespace qx {

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
        return index < kTypes ? m_taken[Modifier(modifier)][index] : Taken::kNothing;
    }

private:
    static constexpr unsigned kTypes = 128;

    static constexpr int Modifier(char modifier) {
        return modifier == 'h' ? 1 : modifier == 'l' ? 2 : 0;
    }
    consteval void Enter(const FormatRow& row) {
        for (const char* m = row.modifiers; *m; ++m) {
            for (const char* t = row.types; *t; ++t)
                m_taken[Modifier(*m)][static_cast<int>(*t)] = row.taken;
        }
    }

    Taken m_taken[3][kTypes] = {};
};

constexpr FormatTable kNarrowTable(kNarrowRows);
constexpr FormatTable kWideTable(kWideRows);

template <class Ch>
constexpr const FormatTable& kTableOf = sizeof(Ch) == 1 ? kNarrowTable : kWideTable;

template <class Ch>
class FormatSizer {
public:
    FormatSizer(const Ch* format, char* args) : m_at(format), m_args(args) {}

    int64_t Walk() {
        while (*m_at) {
            if (*m_at++ != '%') {
                ++m_total;
            } else if (*m_at == '%') {
                ++m_at;
                ++m_total;
            } else {
                Directive();
            }
        }
        return m_total;
    }

private:
    void Directive() {
        bool hasWidth = Flags();
        if (!hasWidth) m_width = Digits();
        Precision();
        char modifier = Modifier();
        if (!*m_at) return;
        Ch type = *m_at++;
        Taken taken = kTableOf<Ch>.Find(modifier, type);
        // An argument that stays where it is shifts all later ones.
        if (taken == Taken::kNothing) m_inStep = false;
        m_total += Size(taken);
    }

    // Whether a width was among them.
    bool Flags() {
        bool hasWidth = false;
        for (;; ++m_at) {
            if (*m_at == '#') {
                m_total += 2;
            } else if (*m_at == '*') {
                m_width = va_arg(m_args, int);
                hasWidth = true;
            } else if (*m_at != '-' && *m_at != '+' && *m_at != '0' && *m_at != ' ') {
                return hasWidth;
            }
        }
    }

    // A negative precision is none, as it is for the engine.
    void Precision() {
        m_hasPrecision = *m_at == '.';
        m_precision = 0;
        if (!m_hasPrecision) return;
        ++m_at;
        if (*m_at == '*') {
            ++m_at;
            m_precision = va_arg(m_args, int);
            m_hasPrecision = m_precision >= 0;
            m_precision = std::max<int64_t>(m_precision, 0);
        } else {
            m_precision = Digits();
        }
    }

    char Modifier() {
        if (*m_at == 'h' || *m_at == 'l') return static_cast<char>(*m_at++);
        if (*m_at == 'F' || *m_at == 'L' || *m_at == 'N') ++m_at;
        return '-';
    }

    int64_t Digits() {
        int64_t value = 0;
        for (; *m_at >= '0' && *m_at <= '9'; ++m_at)
            value = std::min<int64_t>(value * 10 + (*m_at - '0'), INT_MAX);
        return value;
    }

    int64_t Size(Taken taken) {
        switch (taken) {
            case Taken::kChar:
                va_arg(m_args, int);
                return Bounded(kCharSize);
            case Taken::kNarrow:
                return Bounded(Length(va_arg(m_args, const char*)));
            case Taken::kWide:
                return Bounded(Length(va_arg(m_args, const wchar_t*)));
            case Taken::kDouble:
                va_arg(m_args, double);
                return std::max<int64_t>(m_width + m_precision, kDoubleLeast);
            case Taken::kInt:
                va_arg(m_args, int);
                return std::max<int64_t>(m_width + m_precision, kIntLeast);
            case Taken::kPointer:
                va_arg(m_args, void*);
                return std::max<int64_t>(m_width + m_precision, kIntLeast);
            case Taken::kCount:
                va_arg(m_args, void*);
                return 0;
            case Taken::kNothing:
                break;
        }
        return 0;
    }

    int64_t Bounded(int64_t size) const {
        size = std::max(size, m_width);
        return m_hasPrecision ? std::min(size, m_precision) : size;
    }

    // Once out of step, an argument may be anything: the platform's guarded functions answer 0 for
    // a bad address.
    int64_t Length(const char* s) const {
        if (!s) return kTextLeast;
        int64_t length = !m_inStep        ? lstrlenA(s)
                         : m_hasPrecision ? strnlen(s, m_precision)
                                          : ScanLength(s);
        return std::max<int64_t>(length, kTextLeast);
    }
    int64_t Length(const wchar_t* s) const {
        if (!s) return kTextLeast;
        int64_t length = !m_inStep        ? lstrlenW(s)
                         : m_hasPrecision ? wcsnlen(s, m_precision)
                                          : ScanLength(s);
        return std::max<int64_t>(length, kTextLeast);
    }

    const Ch* m_at;
    va_list m_args;  // a plain pointer on this platform, so it can be walked twice
    int64_t m_total = 0;
    int64_t m_width = 0;
    int64_t m_precision = 0;
    bool m_hasPrecision = false;
    bool m_inStep = true;
};

}  // namespace

template <class Ch>
int FormatSize(const Ch* format, char* args) {
    return static_cast<int>(std::clamp<int64_t>(FormatSizer<Ch>(format, args).Walk(), 0, INT_MAX));
}

template int FormatSize(const char* format, char* args);
template int FormatSize(const wchar_t* format, char* args);

}  // namespace qx
