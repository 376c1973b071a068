#include "variant/number_text.h"
#include "variant/value_block.h"

#include <cassert>
#include <cstdint>

namespace qx {

namespace {

using Value = tagQXVALUE;

// Makes one form of another. `to` is zero at first and is written only on success.
using Converter = bool (*)(const Value& from, Value& to);

// ---- numbers

bool Zero(const Value&, Value&) {
    return true;
}

bool Fail(const Value&, Value&) {
    return false;
}

// A form of the value area: the type T of one member of the union. The type stands beside the
// member since members of one union lie in one place: compilers exist that tell a function for one
// of them from that for another by the place alone.
template <class T, T Value::*member>
struct Form {
    using Type = T;
    static T Of(const Value& value) { return value.*member; }
    static void Set(Value& value, T form) { value.*member = form; }
};

// Between forms as the language converts them: bits are kept, cut or widened, integers become
// reals.
template <class From, class To>
bool Cast(const Value& from, Value& to) {
    To::Set(to, static_cast<typename To::Type>(From::Of(from)));
    return true;
}

// A NaN is neither less nor greater than zero, so it is false.
template <class From>
bool Truth(const Value& from, Value& to) {
    to.boolVal = From::Of(from) < 0 || From::Of(from) > 0;
    return true;
}

// Toward zero. What does not fit gives the processor's answer, the smallest number.
int TruncateToInt(double v) {
    return v > -2147483649.0 && v < 2147483648.0 ? static_cast<int>(v) : INT32_MIN;
}

int64_t TruncateToInt64(double v) {
    return v >= -9223372036854775808.0 && v < 9223372036854775808.0 ? static_cast<int64_t>(v)
                                                                    : INT64_MIN;
}

template <class From>
bool Truncate(const Value& from, Value& to) {
    to.intVal = TruncateToInt(From::Of(from));
    return true;
}

template <class From>
bool TruncateAndCut(const Value& from, Value& to) {
    to.uintVal = static_cast<unsigned>(TruncateToInt64(From::Of(from)));
    return true;
}

// ---- text

template <class To>
bool Scan(const Value& from, Value& to) {
    typename To::Type number;
    if (!ScanNumber(from.string, number)) return false;
    To::Set(to, number);
    return true;
}

// A double that is converted to `unsigned long` is taken for a pointer to text: the row of every
// other number has text in this place. A real double there is a caller's error, which fails.
bool ScanDoubleAsText(const Value& from, Value& to) {
    return !IsBadStringPtrA(from.string, UINT_PTR(-1)) && ScanNumber(from.string, to.uintVal);
}

bool EmptyText(const Value&, Value& to) {
    to.string = CopyText("");
    return true;
}

// Not read back: text to bool fails.
bool YesOrNo(const Value& from, Value& to) {
    to.string = CopyText(from.boolVal ? "Yes" : "No");
    return true;
}

template <class From>
bool Text(const Value& from, Value& to) {
    to.string = NewNumberText(From::Of(from));
    return true;
}

// Reads 16 bits, so the byte behind the value must be zero.
bool TextOfByte(const Value& from, Value& to) {
    to.string = NewNumberText(unsigned{from.ui2Val});
    return true;
}

bool SameText(const Value& from, Value& to) {
    to.string = CopyText(from.string);
    return true;
}

// ---- geometry

// Not symmetric: -0.5 gives 0 and -0.50000011 gives -1.
int Round(double v) {
    return TruncateToInt(v >= 0 ? v + 0.5 : v - 0.4999999);
}

int Next(int v) {
    return static_cast<int>(static_cast<unsigned>(v) + 1);
}

int Previous(int v) {
    return static_cast<int>(static_cast<unsigned>(v) - 1);
}

bool RoundSize(const Value& from, Value& to) {
    to.size = {Round(from.rsize.cx), Round(from.rsize.cy)};
    return true;
}

bool WidenSize(const Value& from, Value& to) {
    to.rsize = {double(from.size.cx), double(from.size.cy)};
    return true;
}

bool RoundPoint(const Value& from, Value& to) {
    to.point = {Round(from.rpoint.x), Round(from.rpoint.y)};
    return true;
}

bool WidenPoint(const Value& from, Value& to) {
    to.rpoint = {double(from.point.x), double(from.point.y)};
    return true;
}

// Right and bottom differ by 1 between the two, so an integer rectangle comes back from a round
// trip.

bool RoundRect(const Value& from, Value& to) {
    const tagRRECT& r = from.rrect;
    to.rect = {Round(r.left), Round(r.top), Next(Round(r.right)), Next(Round(r.bottom))};
    return true;
}

bool WidenRect(const Value& from, Value& to) {
    const tagRECT& r = from.rect;
    to.rrect = {double(r.left), double(r.top), double(Previous(r.right)),
                double(Previous(r.bottom))};
    return true;
}

// ---- what is owned

bool SameBlob(const Value& from, Value& to) {
    to.blob = {from.blob.size, CopyBytes(from.blob.data, from.blob.size)};
    return true;
}

bool SameObject(const Value& from, Value& to) {
    to.unknown = WithReference(from.unknown);
    return true;
}

// ---- the tables

using u1 = Form<unsigned char, &Value::ui1Val>;
using u2 = Form<unsigned short, &Value::ui2Val>;
using u4 = Form<unsigned, &Value::uintVal>;  // all 32-bit integers share their bits
using i4 = Form<int, &Value::intVal>;
using d = Form<double, &Value::doubleVal>;
using f = Form<float, &Value::floatVal>;

constexpr Converter fail = Fail;
constexpr Converter zero = Zero;
constexpr Converter copy = Cast<u4, u4>;
constexpr Converter low1 = Cast<u1, u1>;
constexpr Converter low2 = Cast<u2, u2>;
constexpr Converter wide = Cast<u1, u2>;
constexpr Converter wid1 = Cast<u1, u4>;
constexpr Converter wid2 = Cast<u2, u4>;
template <class From>
constexpr Converter is = Truth<From>;
template <class From>
constexpr Converter trc = Truncate<From>;
template <class From>
constexpr Converter cut = TruncateAndCut<From>;
template <class From>
constexpr Converter dbl = Cast<From, d>;
template <class From>
constexpr Converter flt = Cast<From, f>;
template <class To>
constexpr Converter scn = Scan<To>;
template <class From>
constexpr Converter txt = Text<From>;
template <class F>
constexpr Converter same = Cast<F, F>;

// clang-format off

// A row is a target, a column a source.
constexpr Converter kScalars[][11] = {
//             EMPTY      BOOL     UI1       UI2      ULONG    INT      UINT     LONG     DOUBLE   FLOAT    STRING
/* BOOL   */  {zero,      copy,    is<u1>,   is<u2>,  is<u4>,  is<u4>,  is<u4>,  is<u4>,  is<d>,   is<f>,   fail},
/* UI1    */  {zero,      low1,    low1,     low1,    low1,    low1,    low1,    low1,    fail,    fail,    fail},
/* UI2    */  {zero,      low2,    wide,     low2,    low2,    low2,    low2,    low2,    fail,    fail,    fail},
/* ULONG  */  {zero,      copy,    wid1,     wid2,    copy,    copy,    copy,    copy,    ScanDoubleAsText, fail, fail},
/* INT    */  {zero,      copy,    wid1,     wid2,    copy,    copy,    copy,    copy,    trc<d>,  trc<f>,  scn<i4>},
/* UINT   */  {zero,      copy,    wid1,     wid2,    copy,    copy,    copy,    copy,    cut<d>,  cut<f>,  scn<u4>},
/* LONG   */  {zero,      copy,    wid1,     wid2,    copy,    copy,    copy,    copy,    trc<d>,  trc<f>,  scn<i4>},
/* DOUBLE */  {zero,      dbl<i4>, dbl<u1>,  dbl<u2>, dbl<u4>, dbl<i4>, dbl<u4>, dbl<i4>, dbl<d>,  dbl<f>,  scn<d>},
/* FLOAT  */  {zero,      flt<i4>, flt<u1>,  flt<u2>, flt<u4>, flt<i4>, flt<u4>, flt<i4>, flt<d>,  flt<f>,  scn<f>},
/* STRING */  {EmptyText, YesOrNo, TextOfByte, txt<u4>, txt<u4>, txt<i4>, txt<u4>, txt<i4>, txt<d>, txt<f>, SameText},
};

using size   = Form<tagSIZE, &Value::size>;
using rsize  = Form<tagRSIZE, &Value::rsize>;
using point  = Form<tagPOINT, &Value::point>;
using rpoint = Form<tagRPOINT, &Value::rpoint>;
using rect   = Form<tagRECT, &Value::rect>;
using rrect  = Form<tagRRECT, &Value::rrect>;
using object = Form<IQXUnknown*, &Value::unknown>;

constexpr Converter kCompounds[][8] = {
//                  SIZE         RSIZE        POINT        RPOINT       RECT        RRECT        BLOB      UNKNOWN
/* SIZE        */  {same<size>,  RoundSize,   fail,        fail,        fail,       fail,        fail,     fail},
/* RSIZE       */  {WidenSize,   same<rsize>, fail,        fail,        fail,       fail,        fail,     fail},
/* POINT       */  {fail,        fail,        same<point>, RoundPoint,  fail,       fail,        fail,     fail},
/* RPOINT      */  {fail,        fail,        WidenPoint,  same<rpoint>, fail,      fail,        fail,     fail},
/* RECT        */  {fail,        fail,        fail,        fail,        same<rect>, RoundRect,   fail,     fail},
/* RRECT       */  {fail,        fail,        fail,        fail,        WidenRect,  same<rrect>, fail,     fail},
/* BLOB        */  {fail,        fail,        fail,        fail,        fail,       fail,        SameBlob, fail},
/* UNKNOWN     */  {fail,        fail,        fail,        fail,        fail,       fail,        fail,     SameObject},
/* UNKNOWN_REF */  {fail,        fail,        fail,        fail,        fail,       fail,        fail,     same<object>},
};

// clang-format on

// The codes of the table: 0 to 18 stand for themselves, the last place for the one code behind them
// that matters, the borrowed object as a target, and any code above 18 as a source.
constexpr unsigned kCodes = 20;
constexpr unsigned kBehind = kCodes - 1;

constexpr Converter ConverterOf(unsigned from, unsigned to) {
    if (to == QXVT_EMPTY || from == kBehind) return zero;  // nothing to keep, nothing to convert
    bool scalar = from <= QXVT_STRING;
    if (to <= QXVT_STRING) return scalar ? kScalars[to - QXVT_BOOL][from] : fail;
    return scalar ? fail : kCompounds[to - QXVT_SIZE][from - QXVT_SIZE];
}

struct ConverterTable {
    constexpr ConverterTable() : converters() {
        for (unsigned to = 0; to < kCodes; ++to) {
            for (unsigned from = 0; from < kCodes; ++from)
                converters[to][from] = ConverterOf(from, to);
        }
    }
    Converter converters[kCodes][kCodes];
};

constexpr ConverterTable kTable;

// REQUIRES: dest is empty; a failure leaves it so.
inline bool Convert(tagQXVARIANT* dest, const tagQXVARIANT& src, unsigned short type) {
    assert(dest->type == QXVT_EMPTY);
    if (type > QXVT_UNKNOWN && type != QXVT_UNKNOWN_REF) return false;
    const auto& converters = kTable.converters[type <= QXVT_UNKNOWN ? type : kBehind];
    if (!converters[src.type <= QXVT_UNKNOWN ? src.type : kBehind](src.value, dest->value))
        return false;
    dest->type = type;
    return true;
}

int ConvertInPlace(tagQXVARIANT* v, unsigned short type) {
    CQXVariant work;
    if (!Convert(&work, *v, type)) return 0;
    OldValue old(v);
    *v = work.Detach();
    old.LetGo();
    return 1;
}

}  // namespace

}  // namespace qx

int QXVariantChangeType(tagQXVARIANT* dest, const tagQXVARIANT* src, unsigned short type) {
    if (dest == src) return qx::ConvertInPlace(dest, type);
    qx::OldValue old(dest);
    int converted = qx::Convert(dest, *src, type);
    old.LetGo();
    return converted;
}
