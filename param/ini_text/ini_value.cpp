#include "param/ini_text/ini_value.h"

#include "param/ini_text/c_locale.h"
#include "strings/characters.h"

#include <array>
#include <cctype>
#include <cstdlib>
#include <iterator>

namespace qx {

namespace {

using Value = tagQXVALUE;

// A short decimal number that ends its text, which most numbers are: the runtime would say the
// same, later. Null where the runtime has to be asked.
const char* ReadShortDecimal(const char* text, unsigned long& number) {
    constexpr int kMaxDigits = 9;
    number = 0;
    const char* p = text;
    for (; *p >= '0' && *p <= '9'; ++p) number = number * 10 + static_cast<unsigned>(*p - '0');
    bool whole = *p == 0 && p != text && p - text <= kMaxDigits;
    return whole ? p : nullptr;
}

// Reads the numbers of one value, one after the other, each behind the comma that follows the one
// before it.
class NumberReader {
public:
    explicit NumberReader(const char* text) : m_text(text) {}

    void Read(long& number) { ReadInteger(strtol, number); }
    void Read(unsigned long& number) { ReadInteger(strtoul, number); }
    void Read(double& number) {
        ReadWith([](const char* p, char** end) { return strtod(p, end); }, number);
    }

    bool Good() const { return m_good; }

private:
    const char* m_text;
    bool m_first = true;
    bool m_good = true;

    // An "x" anywhere behind makes this number hexadecimal, also where it belongs to a later one.
    // The second byte of a character is no "x".
    static int Base(const char* text) {
        return Characters::OfRuntime().FindAny(text, "xX") ? 16 : 10;
    }

    template <class Convert, class Number>
    void ReadInteger(Convert convert, Number& number) {
        ReadWith(
            [convert](const char* p, char** end) -> Number {
                unsigned long value;
                if (const char* behind = ReadShortDecimal(p, value)) {
                    *end = const_cast<char*>(behind);
                    return static_cast<Number>(value);
                }
                return convert(p, end, Base(p));
            },
            number);
    }

    template <class Convert, class Number>
    void ReadWith(Convert convert, Number& number) {
        if (!m_first) StepBehindComma();
        m_first = false;
        if (!m_good) return;
        char* end;
        number = convert(m_text, &end);
        m_good = end != m_text;
        m_text = end;
    }

    void StepBehindComma() {
        const char* comma = m_good ? Characters::OfRuntime().Find(m_text, ',') : nullptr;
        m_good = comma != nullptr;
        if (comma) m_text = comma + 1;
    }
};

template <class... Numbers>
bool ReadNumbers(const char* text, Numbers&... numbers) {
    NumberReader reader(text);
    (reader.Read(numbers), ...);
    return reader.Good();
}

template <class... Numbers>
bool ReadDecimals(const char* text, Numbers&... numbers) {
    CLocale locale;
    return ReadNumbers(text, numbers...);
}

void WriteDecimal(double number, CutText& out) {
    constexpr int kDigits = 14;
    char text[64];
    CLocale locale;
    out.Add(_gcvt(number, kDigits, text));
}

template <class... More>
void WriteDecimals(CutText& out, double number, More... more) {
    WriteDecimal(number, out);
    if constexpr (sizeof...(more) > 0) {
        out.Add(',');
        WriteDecimals(out, more...);
    }
}

// A nibble above 10 gives a letter that is no hexadecimal digit, and 10 gives ":": such a byte is
// not read back.
char NibbleText(unsigned nibble) {
    return static_cast<char>(nibble <= 10 ? '0' + nibble : 'A' + nibble);
}

void WriteByteDigits(const Value& value, CutText& out) {
    out.Add(NibbleText(value.ui1Val >> 4));
    out.Add(NibbleText(value.ui1Val & 15));
}

bool ReadFlag(char* text, Value& value) {
    if (isdigit(static_cast<unsigned char>(*text))) {
        value.boolVal = atoi(text);
        return value.boolVal == 0 || value.boolVal == 1;
    }
    value.boolVal = *text == 'Y' || *text == 'y';
    return value.boolVal || *text == 'N' || *text == 'n';
}

bool ReadWord(char* text, Value& value) {
    constexpr unsigned long kMax = 65535;
    unsigned long number = 0;
    if (!ReadNumbers(text, number) || number > kMax) return false;
    value.ui2Val = static_cast<unsigned short>(number);
    return true;
}

bool ReadFloat(char* text, Value& value) {
    double number = 0;
    if (!ReadDecimals(text, number)) return false;
    value.floatVal = static_cast<float>(number);
    return true;
}

// The digits are tested and not stored: the value stays 0.
bool ReadByteDigits(char* text, Value&) {
    auto isDigit = [](char c) { return isxdigit(static_cast<unsigned char>(c)) != 0; };
    return isDigit(text[0]) && isDigit(text[1]);
}

// Taken as it is, leading blanks included.
bool ReadText(char* text, Value& value) {
    value.string = text;
    return true;
}

void WriteText(const Value& value, CutText& out) {
    if (value.string) out.Add(value.string);
}

// Found by letter when reading and by type when writing.
struct IniType {
    char letter;
    unsigned short type;
    bool (*read)(char* text, Value& value);
    void (*write)(const Value& value, CutText& out);
};

constexpr IniType kIniTypes[] = {
    {'e', QXVT_EMPTY, [](char*, Value&) { return true; }, [](const Value&, CutText&) {}},
    {'f', QXVT_BOOL, ReadFlag,
     [](const Value& v, CutText& out) { out.Add(v.boolVal == 1 ? '1' : '0'); }},
    {'b', QXVT_UI1, ReadByteDigits, WriteByteDigits},
    {'w', QXVT_UI2, ReadWord, [](const Value& v, CutText& out) { out.AddNumbers(v.ui2Val); }},
    {'W', QXVT_ULONG, [](char* text, Value& v) { return ReadNumbers(text, v.ulongVal); },
     [](const Value& v, CutText& out) { out.AddNumbers(v.ulongVal); }},
    {'i', QXVT_INT, [](char* text, Value& v) { return ReadNumbers(text, v.longVal); },
     [](const Value& v, CutText& out) { out.AddNumbers(v.intVal); }},
    {'u', QXVT_UINT, [](char* text, Value& v) { return ReadNumbers(text, v.ulongVal); },
     [](const Value& v, CutText& out) { out.AddNumbers(v.uintVal); }},
    {'l', QXVT_LONG, [](char* text, Value& v) { return ReadNumbers(text, v.longVal); },
     [](const Value& v, CutText& out) { out.AddNumbers(v.longVal); }},
    {'R', QXVT_DOUBLE, [](char* text, Value& v) { return ReadDecimals(text, v.doubleVal); },
     [](const Value& v, CutText& out) { WriteDecimals(out, v.doubleVal); }},
    {'r', QXVT_FLOAT, ReadFloat,
     [](const Value& v, CutText& out) { WriteDecimals(out, v.floatVal); }},
    {'s', QXVT_STRING, ReadText, WriteText},
    {'z', QXVT_SIZE, [](char* text, Value& v) { return ReadNumbers(text, v.size.cx, v.size.cy); },
     [](const Value& v, CutText& out) { out.AddNumbers(v.size.cx, v.size.cy); }},
    {'Z', QXVT_RSIZE,
     [](char* text, Value& v) { return ReadDecimals(text, v.rsize.cx, v.rsize.cy); },
     [](const Value& v, CutText& out) { WriteDecimals(out, v.rsize.cx, v.rsize.cy); }},
    {'p', QXVT_POINT, [](char* text, Value& v) { return ReadNumbers(text, v.point.x, v.point.y); },
     [](const Value& v, CutText& out) { out.AddNumbers(v.point.x, v.point.y); }},
    {'P', QXVT_RPOINT,
     [](char* text, Value& v) { return ReadDecimals(text, v.rpoint.x, v.rpoint.y); },
     [](const Value& v, CutText& out) { WriteDecimals(out, v.rpoint.x, v.rpoint.y); }},
    {'t', QXVT_RECT,
     [](char* text, Value& v) {
         return ReadNumbers(text, v.rect.left, v.rect.top, v.rect.right, v.rect.bottom);
     },
     [](const Value& v, CutText& out) {
         out.AddNumbers(v.rect.left, v.rect.top, v.rect.right, v.rect.bottom);
     }},
    {'T', QXVT_RRECT,
     [](char* text, Value& v) {
         return ReadDecimals(text, v.rrect.left, v.rrect.top, v.rrect.right, v.rrect.bottom);
     },
     [](const Value& v, CutText& out) {
         WriteDecimals(out, v.rrect.left, v.rrect.top, v.rrect.right, v.rrect.bottom);
     }},
};
// The types stand in the order of their codes, so the code is the place of the row.
static_assert([] {
    for (size_t i = 0; i < std::size(kIniTypes); ++i) {
        if (kIniTypes[i].type != i) return false;
    }
    return true;
}());

// The row of each byte that is a letter of the table.
constexpr auto kRowOfLetter = [] {
    std::array<const IniType*, 256> rows = {};
    for (const IniType& row : kIniTypes) rows[static_cast<unsigned char>(row.letter)] = &row;
    return rows;
}();

}  // namespace

bool ReadIniValue(char* text, tagQXVARIANT& value) {
    const IniType* row = kRowOfLetter[static_cast<unsigned char>(*text)];
    if (!row) return false;
    value.type = row->type;
    return row->read(text + 1, value.value);
}

bool WriteIniValue(const tagQXVARIANT& value, CutText& out) {
    if (value.type >= std::size(kIniTypes)) return false;
    const IniType& row = kIniTypes[value.type];
    out.Add(row.letter);
    row.write(value.value, out);
    return true;
}

}  // namespace qx
